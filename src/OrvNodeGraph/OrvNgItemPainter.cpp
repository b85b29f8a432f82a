#include "OrvNodeGraph/OrvNgItemPainter.h"

#include <QGraphicsScene>
#include <QGraphicsWidget>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace {

constexpr QRectF kCountable(-1e9, -1e9, 2e9, 2e9); // coordinates that an int holds

QStyleOptionGraphicsItem optionFor(QGraphicsItem* item)
{
    QStyleOptionGraphicsItem option;
    option.exposedRect = item->boundingRect();
    option.rect = (option.exposedRect & kCountable).toRect();
    option.state = QStyle::State_None;
    option.styleObject = item->toGraphicsObject();
    const auto set = [&option](bool on, QStyle::StateFlag flag) { option.state.setFlag(flag, on); };
    set(item->isSelected(), QStyle::State_Selected);
    set(item->isEnabled(), QStyle::State_Enabled);
    set(item->hasFocus(), QStyle::State_HasFocus);
    set(item->scene() && item->scene()->mouseGrabberItem() == item, QStyle::State_Sunken);
    // Looking for the mouse is dear; only who can be hovered shows it.
    set(item->acceptHoverEvents() && item->isUnderMouse(), QStyle::State_MouseOver);
    return option;
}

void clipToShape(QPainter* painter, const QGraphicsItem* item)
{
    painter->setClipPath(item->shape(), Qt::IntersectClip);
}

void paintAlone(QPainter* painter, QGraphicsItem* item, const QTransform& toView, QWidget* widget)
{
    if (item->flags() & QGraphicsItem::ItemHasNoContents)
        return;
    painter->save();
    painter->setWorldTransform(item->deviceTransform(toView));
    if (item->flags() & QGraphicsItem::ItemClipsToShape)
        clipToShape(painter, item);
    painter->setOpacity(item->effectiveOpacity());
    const QStyleOptionGraphicsItem option = optionFor(item);
    item->paint(painter, &option, widget);
    painter->restore();
}

void paintTree(QPainter* painter, QGraphicsItem* item, const QTransform& toView, QWidget* widget)
{
    if (!item->isVisible())
        return;
    const QList<QGraphicsItem*> children = item->childItems();
    const bool isTransparent = item->effectiveOpacity() < 0.001; // the framework's own limit
    if (isTransparent && children.isEmpty())
        return;
    const bool clipsChildren
        = !children.isEmpty() && (item->flags() & QGraphicsItem::ItemClipsChildrenToShape);
    if (clipsChildren) {
        painter->save();
        painter->setWorldTransform(item->deviceTransform(toView));
        clipToShape(painter, item);
    }
    int next = 0;
    for (; next < children.size(); ++next) {
        if (!(children.at(next)->flags() & QGraphicsItem::ItemStacksBehindParent))
            break;
        paintTree(painter, children.at(next), toView, widget);
    }
    if (!isTransparent)
        paintAlone(painter, item, toView, widget);
    for (; next < children.size(); ++next)
        paintTree(painter, children.at(next), toView, widget);
    if (clipsChildren)
        painter->restore();
}

} // namespace

bool OrvNgItemPainter::needsFramework(const QGraphicsItem* item)
{
    if (item->graphicsEffect() || (item->flags() & QGraphicsItem::ItemIgnoresTransformations)
        || item->isWindow())
        return true;
    const QList<QGraphicsItem*> children = item->childItems();
    for (const QGraphicsItem* child : children) {
        if (needsFramework(child))
            return true;
    }
    return false;
}

void OrvNgItemPainter::paint(
    QPainter* painter, QGraphicsItem* item, const QTransform& toView, QWidget* widget)
{
    painter->save();
    paintTree(painter, item, toView, widget);
    painter->restore();
}
