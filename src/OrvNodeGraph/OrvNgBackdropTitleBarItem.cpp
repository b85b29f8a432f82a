#include "OrvNodeGraph/OrvNgBackdropTitleBarItem.h"

#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QPen>

OrvNgBackdropTitleBarItem::OrvNgBackdropTitleBarItem(QGraphicsItem* parent)
    : QGraphicsRectItem(parent)
{
    setPen(Qt::NoPen);
    setFlag(ItemIsSelectable);
}

void OrvNgBackdropTitleBarItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    // Without the base class's dashed frame of selected items: the brush shows the selection.
    painter->fillRect(rect(), brush());
}

QVariant OrvNgBackdropTitleBarItem::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedChange && parentItem())
        return parentItem()->isSelected();
    return QGraphicsRectItem::itemChange(change, value);
}

void OrvNgBackdropTitleBarItem::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    event->ignore();
}
