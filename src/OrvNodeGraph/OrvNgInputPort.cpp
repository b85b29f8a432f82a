#include "OrvNodeGraph/OrvNgInputPort.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"

#include <algorithm>

namespace {

constexpr double kTextGap = 2.0;

}

OrvNgInputPort::OrvNgInputPort(
    OrvNgExtendedNode* node, const QString& text, const QString& name, bool boldText, Birth birth)
    : OrvNgPort(node, text, name, boldText, birth)
{
    setText(text);
}

QPointF OrvNgInputPort::squarePos() const
{
    return QPointF(0.0, 0.0);
}

QPointF OrvNgInputPort::textPos() const
{
    return QPointF(kPortWidth + kTextGap, textTop());
}

bool OrvNgInputPort::isConnected() const
{
    if (!node())
        return false;
    const auto hasSource = [this](const QString& input) {
        const OrvNgEdge* edge = node()->input(input);
        return edge && edge->sourceNode();
    };
    const QString name = originalPortName();
    if (hasSource(name))
        return true;
    const bool standsForMembers = isClustered() && node()->hasInputCluster(name)
        && node()->portListMode() == OrvNgExtendedNode::PORT_LIST_GROUPED;
    if (!standsForMembers)
        return false;
    const QStringList members = node()->inputClusterPortName2ClusterList(name);
    return std::any_of(members.cbegin(), members.cend(), hasSource);
}
