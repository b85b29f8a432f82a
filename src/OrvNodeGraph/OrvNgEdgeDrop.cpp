#include "OrvNodeGraph/OrvNgEdgeDrop.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgEdgeEnds.h"

#include <QGraphicsItem>

namespace {

using OrvNgEdgeDrop::Side;

OrvNgNode* nodeOf(QGraphicsItem* item)
{
    for (; item; item = item->parentItem()) {
        if (auto* node = dynamic_cast<OrvNgNode*>(item))
            return node;
    }
    return nullptr;
}

bool hasPoint(OrvNgNode* node, Side side)
{
    return side == Side::Input ? node->inputCount() > 0 : node->outputPointCount() > 0;
}

// Frames and notes lie behind and beside the network; they take no connections.
bool isCandidate(OrvNgNode* node)
{
    return !node->isBackdrop() && !node->isBeingDeleted() && !node->isSystemShaderNode()
        && node->isVisible() && (hasPoint(node, Side::Input) || hasPoint(node, Side::Output));
}

QList<OrvNgNode*> candidates(const QList<QGraphicsItem*>& items, Side side)
{
    QList<OrvNgNode*> fitting;
    QList<OrvNgNode*> others; // they can only refuse, which is an answer too
    for (QGraphicsItem* item : items) {
        OrvNgNode* node = nodeOf(item);
        if (!node || fitting.contains(node) || others.contains(node) || !isCandidate(node))
            continue;
        (hasPoint(node, side) ? fitting : others).append(node);
    }
    return fitting + others;
}

QString pointAt(OrvNgNode* node, const QPointF& scenePos, Side side)
{
    return side == Side::Input ? OrvNgEdgeEnds::inputUnder(node, scenePos)
                               : OrvNgEdgeEnds::outputUnder(node, scenePos);
}

} // namespace

OrvNgEdgeDrop::Target OrvNgEdgeDrop::find(
    const QList<QGraphicsItem*>& items, const QPointF& scenePos, Side side)
{
    const QList<OrvNgNode*> nodes = candidates(items, side);
    for (OrvNgNode* node : nodes) {
        const QString point = pointAt(node, scenePos, side);
        if (!point.isNull())
            return {node, point};
    }
    for (OrvNgNode* node : nodes) {
        if (node->sceneBoundingRect().contains(scenePos))
            return {node, {}};
    }
    return {nodes.value(0, nullptr), {}};
}

QStringList OrvNgEdgeDrop::openInputs(OrvNgNode* node)
{
    QStringList open;
    const QStringList names = node->sortedInputPoints();
    for (const QString& name : names) {
        const OrvNgEdge* edge = node->input(name);
        if (edge && edge->isReconnectable() && !edge->hasTag(QStringLiteral("_hidden")))
            open.append(name);
    }
    return open;
}
