#pragma once

#include "OrvNodeGraph/OrvNgExtendedNode.h"

/// Internal. Which input edges of an extended node lie on top of each other, so that one label is
/// enough for all of them.
///
/// Called by  OrvNgExtendedNode.
/// Uses       the node's input edges and clusters.
/// Tells      nobody.
namespace OrvNgEdgeBundles {

/// Edges from several points of a node in this mode lie on top of each other.
bool bundlesEdges(OrvNgExtendedNode::PortListMode mode);

/// The first shown input edge of each bundle, in the order of the inputs; none unless the node's
/// mode bundles edges.
QList<OrvNgEdge*> representatives(OrvNgExtendedNode& node);

} // namespace OrvNgEdgeBundles
