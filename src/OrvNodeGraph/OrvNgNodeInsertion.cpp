#include "OrvNodeGraph/OrvNgNodeInsertion.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgNode.h"

#include <QGraphicsPathItem>
#include <QGraphicsScene>

namespace OrvNgNodeInsertion {

OrvNgEdge* edgeUnder(const QGraphicsItem& probe, OrvNgNode& node)
{
    const QList<QGraphicsItem*> items = probe.collidingItems(Qt::IntersectsItemShape);
    for (QGraphicsItem* item : items) {
        auto* edge = dynamic_cast<OrvNgEdge*>(item);
        // The edge's shape is more than its path: a label or an arrow takes nothing in.
        if (edge && edge->isFullConnected() && !node.containsEdge(edge) && edge->mainEdge()
            && probe.collidesWithItem(edge->mainEdge(), Qt::IntersectsItemShape))
            return edge;
    }
    return nullptr;
}

OrvNgNode* backdropAround(const OrvNgNode& node)
{
    if (!node.scene())
        return nullptr;
    const QRectF bounds = node.sceneBoundingRect();
    const QList<QGraphicsItem*> items
        = node.scene()->items(bounds, Qt::IntersectsItemBoundingRect, Qt::DescendingOrder);
    for (QGraphicsItem* item : items) {
        auto* other = dynamic_cast<OrvNgNode*>(item);
        if (other && other != &node && other->isBackdrop()
            && other->sceneBoundingRect().contains(bounds))
            return other;
    }
    return nullptr;
}

} // namespace OrvNgNodeInsertion
