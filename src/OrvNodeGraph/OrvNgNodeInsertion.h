#pragma once

class OrvNgEdge;
class OrvNgNode;
class QGraphicsItem;

/// Internal. What lies under a dragged node and would take it in.
///
/// Called by  OrvNgNode, at every mouse move of a drag.
/// Uses       the scene's index: neither function walks all items.
/// Tells      nobody.
namespace OrvNgNodeInsertion {

/// The topmost edge whose path the probe's shape touches, connected at both ends and none of node's own.
/// Null when there is none.
OrvNgEdge* edgeUnder(const QGraphicsItem& probe, OrvNgNode& node);

/// The topmost backdrop whose bounds hold all of node's. Null when there is none.
OrvNgNode* backdropAround(const OrvNgNode& node);

} // namespace OrvNgNodeInsertion
