#include "OrvNodeGraph/OrvNgLodTextItem.h"

#include "OrvNodeGraph/OrvNgStyle.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

OrvNgLodTextItem::OrvNgLodTextItem(const QString& text, QGraphicsItem* parent)
    : QGraphicsSimpleTextItem(text, parent)
    , m_LodThreshold(OrvNgStyle::instance().getSceneLODSwitchThreshold())
{
}

bool OrvNgLodTextItem::isReadable(const QPainter* painter) const
{
    return QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform())
        > static_cast<qreal>(m_LodThreshold);
}

void OrvNgLodTextItem::paint(
    QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    if (isReadable(painter))
        QGraphicsSimpleTextItem::paint(painter, option, widget);
}
