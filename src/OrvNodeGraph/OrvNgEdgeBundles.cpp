#include "OrvNodeGraph/OrvNgEdgeBundles.h"

#include "OrvNodeGraph/OrvNgEdge.h"

namespace {

/// Where an edge begins and ends. Edges lie on one line when they come from the same place of the
/// same node and end at the same place of this one; no name stands for a place that all points
/// share.
using Line = QPair<const OrvNgNode*, QPair<QString, QString>>;

QString sourcePlace(const OrvNgEdge& edge)
{
    const auto* source = qobject_cast<const OrvNgExtendedNode*>(edge.sourceNode());
    return source && OrvNgEdgeBundles::bundlesEdges(source->portListMode())
        ? QString()
        : edge.sourceOutputPoint();
}

QString inputPlace(const OrvNgExtendedNode& node, const OrvNgEdge& edge)
{
    const QString input = edge.text();
    if (node.portListMode() != OrvNgExtendedNode::PORT_LIST_GROUPED)
        return QString();
    return node.inputPortBelongsToCluster(input) ? node.inputPort2ClusterName(input) : input;
}

} // namespace

bool OrvNgEdgeBundles::bundlesEdges(OrvNgExtendedNode::PortListMode mode)
{
    return mode == OrvNgExtendedNode::PORT_LIST_GROUPED
        || mode == OrvNgExtendedNode::PORT_LIST_COLLAPSED;
}

QList<OrvNgEdge*> OrvNgEdgeBundles::representatives(OrvNgExtendedNode& node)
{
    QList<OrvNgEdge*> result;
    if (!bundlesEdges(node.portListMode()))
        return result;
    QSet<Line> lines;
    for (OrvNgEdge* edge : node.inputs()) {
        const OrvNgNode* source = edge->sourceNode();
        if (!source || !edge->isVisible())
            continue;
        const Line line(source, {sourcePlace(*edge), inputPlace(node, *edge)});
        if (!lines.contains(line)) {
            lines.insert(line);
            result.append(edge);
        }
    }
    return result;
}
