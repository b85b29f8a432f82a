#include "OrvNodeGraph/OrvNgLodTextItem.h"

#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextCache.h"

#include <QFont>
#include <QPainter>
#include <QPen>
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
    if (!isReadable(painter))
        return;
    // The base class lays the text out at every paint; it also draws outlines and selection frames.
    const bool isPlain = pen().style() == Qt::NoPen
        && !(option->state & (QStyle::State_Selected | QStyle::State_HasFocus));
    if (!isPlain) {
        QGraphicsSimpleTextItem::paint(painter, option, widget);
        return;
    }
    painter->setPen(QPen(brush(), 0.0));
    OrvNgTextCache::find(text(), font()).draw(painter, QPointF());
}
