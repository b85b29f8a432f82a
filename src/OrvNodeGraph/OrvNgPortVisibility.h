#pragma once

#include "OrvNodeGraph/OrvNgExtendedNode.h"

/// Internal. Which ports a port list mode shows, and which mode a click on the header proposes
/// next.
///
/// Called by  OrvNgExtendedNode.
/// Uses       nothing.
/// Tells      nobody.
namespace OrvNgPortVisibility {

/// What decides about a port, besides the tags of its edge.
struct Port
{
    bool m_IsCluster = false;
    bool m_IsClusterMember = false;
    bool m_IsConnected = false;
};

/// False for a value outside the enumeration, as a host may cast one from an integer.
bool isValid(OrvNgExtendedNode::PortListMode mode);

bool isShown(OrvNgExtendedNode::PortListMode mode, const Port& port);

/// The cycle is expanded, grouped, only connected, collapsed; a node without clusters skips
/// grouped. The top-to-bottom mode joins it at grouped and is never proposed.
OrvNgExtendedNode::PortListMode nextMode(OrvNgExtendedNode::PortListMode current, bool hasClusters);

} // namespace OrvNgPortVisibility
