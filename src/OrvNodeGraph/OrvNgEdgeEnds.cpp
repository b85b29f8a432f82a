#include "OrvNodeGraph/OrvNgEdgeEnds.h"

#include "OrvNodeGraph/OrvNgExtendedNode.h"

namespace {

bool isInMode(const OrvNgExtendedNode* node, OrvNgExtendedNode::PortListMode mode)
{
    return node && node->portListMode() == mode;
}

/// All hidden ports of one side attach at the same end of the header.
QString collapsedPlace()
{
    return QStringLiteral("header");
}

/// Never equal to collapsedPlace(), whatever the cluster is called.
QString clusterPlace(const QString& cluster)
{
    return QStringLiteral("cluster:") + cluster;
}

} // namespace

bool OrvNgEdgeEnds::isSidePortNode(const OrvNgNode* node)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    return extended && extended->portListMode() != OrvNgExtendedNode::PORT_LIST_T2B;
}

bool OrvNgEdgeEnds::showsInputPort(OrvNgNode* node, const QString& input)
{
    auto* extended = qobject_cast<OrvNgExtendedNode*>(node);
    return extended
        && (extended->isInputPortVisible(input)
            || (extended->inputPortBelongsToCluster(input)
                && extended->isInputPortVisible(extended->inputPort2ClusterName(input))));
}

bool OrvNgEdgeEnds::showsOutputPort(OrvNgNode* node, const QString& output)
{
    auto* extended = qobject_cast<OrvNgExtendedNode*>(node);
    return extended
        && (extended->isOutputPortVisible(output)
            || (extended->outputPortBelongsToCluster(output)
                && extended->isOutputPortVisible(extended->outputPort2ClusterName(output))));
}

bool OrvNgEdgeEnds::hasOutput(OrvNgNode* node, const QString& output)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    return node
        && (node->outputPoints().contains(output)
            || (extended && extended->hasOutputCluster(output)));
}

QString OrvNgEdgeEnds::inputUnder(OrvNgNode* node, const QPointF& scenePos)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    return extended ? extended->inputPointUnderPos(scenePos) : QString();
}

QString OrvNgEdgeEnds::outputUnder(OrvNgNode* node, const QPointF& scenePos)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    return extended ? extended->outputPointUnderPos(scenePos) : QString();
}

bool OrvNgEdgeEnds::isOnPortOf(OrvNgNode* node, OrvNgEdge* edge, const QPointF& scenePos)
{
    auto* extended = qobject_cast<OrvNgExtendedNode*>(node);
    return extended && extended->portForEdgeContains(edge, scenePos);
}

bool OrvNgEdgeEnds::isClusteredInput(OrvNgNode* node, const QString& input)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    return isInMode(extended, OrvNgExtendedNode::PORT_LIST_GROUPED)
        && (extended->inputPortBelongsToCluster(input) || extended->hasInputCluster(input));
}

bool OrvNgEdgeEnds::isClusteredOutput(OrvNgNode* node, const QString& output)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    return isInMode(extended, OrvNgExtendedNode::PORT_LIST_GROUPED)
        && (extended->outputPortBelongsToCluster(output) || extended->hasOutputCluster(output));
}

QString OrvNgEdgeEnds::sharedInputPlace(OrvNgNode* node, const QString& input)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    if (isInMode(extended, OrvNgExtendedNode::PORT_LIST_COLLAPSED))
        return collapsedPlace();
    if (!isClusteredInput(node, input))
        return QString();
    return clusterPlace(
        extended->hasInputCluster(input) ? input : extended->inputPort2ClusterName(input));
}

QString OrvNgEdgeEnds::sharedOutputPlace(OrvNgNode* node, const QString& output)
{
    const auto* extended = qobject_cast<const OrvNgExtendedNode*>(node);
    if (isInMode(extended, OrvNgExtendedNode::PORT_LIST_COLLAPSED))
        return collapsedPlace();
    if (!isClusteredOutput(node, output))
        return QString();
    return clusterPlace(
        extended->hasOutputCluster(output) ? output : extended->outputPort2ClusterName(output));
}

void OrvNgEdgeEnds::connectionsChanged(OrvNgNode* node)
{
    auto* extended = qobject_cast<OrvNgExtendedNode*>(node);
    if (!extended)
        return;
    if (isInMode(extended, OrvNgExtendedNode::PORT_LIST_ONLY_CONNECTED)
        || isInMode(extended, OrvNgExtendedNode::PORT_LIST_GROUPED))
        extended->applyPortVisibilityMode();
    extended->updateTextVisibility();
    extended->update(); // the squares' colours tell what is connected
}

void OrvNgEdgeEnds::tagsChanged(OrvNgNode* node)
{
    auto* extended = qobject_cast<OrvNgExtendedNode*>(node);
    if (!extended)
        return;
    extended->applyPortVisibilityMode();
    extended->updateTextVisibility();
}
