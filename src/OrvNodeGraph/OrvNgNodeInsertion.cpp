#include "OrvNodeGraph/OrvNgNodeInsertion.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgSceneNodes.h"

#include <QGraphicsPathItem>

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

// Asking the scene for what lies under the node would find every port and text of it, at every move.
OrvNgNode* backdropAround(const OrvNgNode& node)
{
    const QRectF bounds = node.sceneBoundingRect();
    const auto isAbove = [](const OrvNgNode& a, const OrvNgNode& b) {
        const QSizeF sizeA = a.boundingRect().size(); // of the same level the inner one
        const QSizeF sizeB = b.boundingRect().size();
        return a.zValue() != b.zValue()
            ? a.zValue() > b.zValue()
            : sizeA.width() * sizeA.height() < sizeB.width() * sizeB.height();
    };
    OrvNgNode* topmost = nullptr;
    const QSet<OrvNgNode*> frames = OrvNgSceneNodes::frames(node.scene());
    for (OrvNgNode* other : frames) {
        if (other != &node && other->isVisible() && other->sceneBoundingRect().contains(bounds)
            && (!topmost || isAbove(*other, *topmost)))
            topmost = other;
    }
    return topmost;
}

} // namespace OrvNgNodeInsertion
