#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QGraphicsRectItem>

class QGraphicsSceneMouseEvent;

/// The bar at the top of a backdrop. Presses on it go on to the backdrop, and it is selected exactly while
/// the backdrop is.
///
/// Called by  OrvNgBackdropNode.
/// Uses       nothing.
/// Tells      nobody.
class ORVNODEGRAPH_EXPORT OrvNgBackdropTitleBarItem : public QGraphicsRectItem
{
public:
    /// parent is the backdrop.
    explicit OrvNgBackdropTitleBarItem(QGraphicsItem* parent);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
};
