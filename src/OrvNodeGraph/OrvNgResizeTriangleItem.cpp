#include "OrvNodeGraph/OrvNgResizeTriangleItem.h"

#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgBackdropNodeRectChangeUndo.h"
#include "OrvNodeGraph/OrvNgFrameRect.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgSnapPause.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include "OrvCore/OrvUndoManager.h"

#include <QCoreApplication>
#include <QCursor>
#include <QEvent>
#include <QGraphicsPolygonItem>
#include <QGraphicsSceneMouseEvent>
#include <QPen>

namespace {

QPolygonF triangle(Qt::Corner corner, double s)
{
    switch (corner) {
    case Qt::TopLeftCorner:
        return QPolygonF({{0, 0}, {0, s}, {s, 0}});
    case Qt::TopRightCorner:
        return QPolygonF({{0, 0}, {s, 0}, {s, s}});
    case Qt::BottomLeftCorner:
        return QPolygonF({{s, s}, {0, s}, {0, 0}});
    case Qt::BottomRightCorner:
        break;
    }
    return QPolygonF({{s, 0}, {0, s}, {s, s}});
}

bool isLeft(Qt::Corner corner)
{
    return corner == Qt::TopLeftCorner || corner == Qt::BottomLeftCorner;
}

bool isTop(Qt::Corner corner)
{
    return corner == Qt::TopLeftCorner || corner == Qt::TopRightCorner;
}

bool isSameSize(const QSizeF& a, const QSizeF& b)
{
    return qFuzzyCompare(a.width(), b.width()) && qFuzzyCompare(a.height(), b.height());
}

} // namespace

OrvNgResizeTriangleItem::OrvNgResizeTriangleItem(
    float size, const QBrush& brush, QGraphicsItem* parent, Qt::Corner corner)
    : QGraphicsItem(parent)
    , m_Bounds(0.0, 0.0, double(size), double(size))
    , m_Brush(brush)
    , m_Corner(corner)
{
    m_Triangle = new QGraphicsPolygonItem(triangle(corner, double(size)), this);
    m_Triangle->setPen(Qt::NoPen);
    m_Triangle->setBrush(m_Brush);
    m_Triangle->setAcceptedMouseButtons(Qt::NoButton); // presses are the handle's
    setFlag(ItemHasNoContents);
    setAcceptHoverEvents(true);
    setCursor(isLeft(corner) == isTop(corner) ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor);
}

void OrvNgResizeTriangleItem::setFillColor(const QColor& color)
{
    m_Brush.setColor(color);
    resetBrush();
}

void OrvNgResizeTriangleItem::resetBrush()
{
    m_Triangle->setBrush(m_Brush);
}

OrvNgBackdropNode* OrvNgResizeTriangleItem::backdrop() const
{
    return dynamic_cast<OrvNgBackdropNode*>(parentItem());
}

/// Qt's position in item coordinates lags behind when the parent has moved since the last paint, as it does
/// with every move here. Events that no view sent have nothing else.
QPointF OrvNgResizeTriangleItem::scenePosOf(const QGraphicsSceneMouseEvent& event) const
{
    return event.widget() ? event.scenePos() : mapToScene(event.pos());
}

void OrvNgResizeTriangleItem::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*)
{
    // The triangle draws.
}

void OrvNgResizeTriangleItem::hoverEnterEvent(QGraphicsSceneHoverEvent*)
{
    m_Triangle->setBrush(OrvNgStyle::instance().getSelectablePrefferedEdgePen().brush());
}

void OrvNgResizeTriangleItem::hoverLeaveEvent(QGraphicsSceneHoverEvent*)
{
    resetBrush();
}

void OrvNgResizeTriangleItem::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    OrvNgBackdropNode* const frame = backdrop();
    if (!frame || !event->buttons().testFlag(Qt::LeftButton)) {
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    event->accept();
    if (m_IsResizing)
        return; // another button, in the middle of the drag
    m_IsResizing = true;
    m_PressScenePos = scenePosOf(*event);
    m_BackdropPressPos = frame->scenePos();
    m_BackdropPressRect = frame->boundingRect();
    frame->savePosition();
    frame->saveBoundingRect();
    frame->refreshChildrenList(false);
}

void OrvNgResizeTriangleItem::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    const QPointer<OrvNgBackdropNode> frame(backdrop());
    if (!frame || !m_IsResizing || !event->buttons().testFlag(Qt::LeftButton)) {
        QGraphicsItem::mouseMoveEvent(event);
        return;
    }
    event->accept();
    resizeParent(scenePosOf(*event));
    if (frame) // a listener may have deleted it, and this handle with it
        frame->refreshChildrenList(false);
}

void OrvNgResizeTriangleItem::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    const QPointer<OrvNgBackdropNode> frame(backdrop());
    if (!frame || !m_IsResizing || event->button() != Qt::LeftButton) {
        QGraphicsItem::mouseReleaseEvent(event);
        return;
    }
    event->accept();
    m_IsResizing = false;
    resizeParent(scenePosOf(*event));
    if (frame)
        frame->refreshChildrenList(false);
    if (frame)
        frame->restackAmongNeighbours();
    if (frame)
        pushUndoStep(frame);
}

bool OrvNgResizeTriangleItem::sceneEvent(QEvent* event)
{
    // No release will come: without it there is no undo step, so there must be no change.
    if (event->type() == QEvent::UngrabMouse && m_IsResizing) {
        m_IsResizing = false;
        if (OrvNgBackdropNode* frame = backdrop())
            applyToParent(*frame, m_BackdropPressRect, m_BackdropPressPos);
    }
    return QGraphicsItem::sceneEvent(event);
}

void OrvNgResizeTriangleItem::resizeParent(const QPointF& scenePos)
{
    OrvNgBackdropNode* const frame = backdrop();
    const QPointF moved = scenePos - m_PressScenePos;
    if (!frame || !OrvNgFrameRect::isFinite(QRectF(moved, QSizeF())))
        return;
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QSizeF old = m_BackdropPressRect.size();
    const QSizeF size = OrvNgFrameRect::atLeast(
        QRectF(0, 0, old.width() + (isLeft(m_Corner) ? -moved.x() : moved.x()),
            old.height() + (isTop(m_Corner) ? -moved.y() : moved.y())),
        QSizeF(style.getMinimumBackdropNodeWidth(), style.getMinimumBackdropNodeHeight()))
                            .size();
    QPointF pos = m_BackdropPressPos;
    if (isLeft(m_Corner))
        pos.rx() += old.width() - size.width();
    if (isTop(m_Corner))
        pos.ry() += old.height() - size.height();
    applyToParent(*frame, QRectF(m_BackdropPressRect.topLeft(), size), pos);
}

void OrvNgResizeTriangleItem::applyToParent(
    OrvNgBackdropNode& frame, const QRectF& rect, const QPointF& pos)
{
    const QPointer<OrvNgBackdropNode> guarded(&frame);
    if (!isSameSize(rect.size(), frame.boundingRect().size()))
        frame.setRect(rect);
    if (guarded && pos != frame.pos()) {
        const OrvNgSnapPause exact;
        frame.setPos(pos);
    }
}

void OrvNgResizeTriangleItem::pushUndoStep(OrvNgBackdropNode* frame)
{
    const QPointer<OrvNgBackdropNode> guarded(frame);
    // Pushing places the frame once more, where it is.
    const OrvNgSnapPause exact;
    const OrvUndoManager::AutoMacro macro(
        QCoreApplication::translate("OrvNgResizeTriangleItem", "Resize Backdrop Node \"%1\"")
            .arg(frame->text()));
    OrvUndoManager::instance().push(new OrvNgBackdropNodeRectChangeUndo(frame));
    if (guarded)
        OrvUndoManager::instance().push(new OrvNgNodePositionChangeUndo(frame));
}
