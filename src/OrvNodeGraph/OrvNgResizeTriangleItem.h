#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QBrush>
#include <QGraphicsItem>

class OrvNgBackdropNode;
class QGraphicsPolygonItem;

/// The handle in a corner of a backdrop: dragging it resizes the backdrop, down to the style's minimum. The
/// opposite corner stays where it is, and nothing snaps. A finished resize is one undo step; a drag that
/// loses the mouse before its release is taken back.
///
/// Called by  OrvNgBackdropNode, which places it; the scene (mouse).
/// Uses       its parent, an OrvNgBackdropNode; without one it does nothing.
/// Tells      the host's undo manager.
class ORVNODEGRAPH_EXPORT OrvNgResizeTriangleItem : public QGraphicsItem
{
public:
    /// size is the length of both legs in scene units; corner says which corner of the backdrop it serves.
    OrvNgResizeTriangleItem(
        float size, const QBrush& brush, QGraphicsItem* parent, Qt::Corner corner);

    /// The colour while the mouse is not over the handle.
    void setFillColor(const QColor& color);
    void resetBrush();
    /// Resizes the backdrop as if the mouse had come from where it was pressed to a point in scene
    /// coordinates. What is not finite is ignored.
    void resizeParent(const QPointF& scenePos);

    QRectF boundingRect() const override { return m_Bounds; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    bool sceneEvent(QEvent* event) override;

private:
    OrvNgBackdropNode* backdrop() const;
    QPointF scenePosOf(const QGraphicsSceneMouseEvent& event) const;
    void applyToParent(OrvNgBackdropNode& backdrop, const QRectF& rect, const QPointF& pos);
    void pushUndoStep(OrvNgBackdropNode* backdrop);

    QGraphicsPolygonItem* m_Triangle = nullptr;
    QRectF m_Bounds;
    QBrush m_Brush;
    QPointF m_PressScenePos;
    QPointF m_BackdropPressPos; ///< scene coordinates
    QRectF m_BackdropPressRect; ///< the backdrop's coordinates
    Qt::Corner m_Corner;
    bool m_IsResizing = false; ///< between press and release
};
