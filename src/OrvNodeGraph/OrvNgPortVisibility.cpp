#include "OrvNodeGraph/OrvNgPortVisibility.h"

namespace {

constexpr int kModeCount = 5;

}

bool OrvNgPortVisibility::isValid(OrvNgExtendedNode::PortListMode mode)
{
    return static_cast<unsigned>(mode) < static_cast<unsigned>(kModeCount);
}

bool OrvNgPortVisibility::isShown(OrvNgExtendedNode::PortListMode mode, const Port& port)
{
    switch (mode) {
    case OrvNgExtendedNode::PORT_LIST_EXPANDED:
        return !port.m_IsCluster;
    case OrvNgExtendedNode::PORT_LIST_GROUPED:
        return port.m_IsCluster || !port.m_IsClusterMember;
    case OrvNgExtendedNode::PORT_LIST_ONLY_CONNECTED:
        return !port.m_IsCluster && port.m_IsConnected;
    case OrvNgExtendedNode::PORT_LIST_T2B:
    case OrvNgExtendedNode::PORT_LIST_COLLAPSED:
        break;
    }
    return false;
}

OrvNgExtendedNode::PortListMode OrvNgPortVisibility::nextMode(
    OrvNgExtendedNode::PortListMode current, bool hasClusters)
{
    OrvNgExtendedNode::PortListMode next = OrvNgExtendedNode::PORT_LIST_GROUPED;
    if (current != OrvNgExtendedNode::PORT_LIST_EXPANDED
        && current != OrvNgExtendedNode::PORT_LIST_T2B)
        next = static_cast<OrvNgExtendedNode::PortListMode>((current + 1) % kModeCount);
    if (next == OrvNgExtendedNode::PORT_LIST_GROUPED && !hasClusters)
        next = OrvNgExtendedNode::PORT_LIST_ONLY_CONNECTED;
    return next;
}
