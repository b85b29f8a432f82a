#pragma once

class OrvNgNode;

/// Internal. Moves the connections of one node to another that takes its place.
///
/// Called by  OrvNgNode::replace.
/// Uses       OrvNgNode, OrvNgEdge.
/// Tells      the host, through each node whose input changed.
namespace OrvNgHandOver {

/// Inputs go to the free input of the same name, else to the next free one; a connection that finds none
/// is lost. Outputs go to the output of the same name, else to the one at the same place, else to the
/// first; without any the inputs they fed become free. Stops where a host's slot removed one of the nodes.
void moveConnections(OrvNgNode* from, OrvNgNode* to);

} // namespace OrvNgHandOver
