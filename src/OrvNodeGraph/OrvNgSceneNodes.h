#pragma once

#include <QSet>

class OrvNgNode;
class QGraphicsScene;

/// Internal. Which nodes are in a scene, without walking all of its items: a scene of ten thousand nodes
/// holds well over a hundred thousand.
///
/// Called by  OrvNgNode (enter, leave), OrvNgView (nodes).
/// Uses       nothing.
/// Tells      nobody.
namespace OrvNgSceneNodes {

/// Files the node under its present scene, if it has one, and nowhere else.
void enter(OrvNgNode* node);
void leave(OrvNgNode* node);

/// All nodes of the scene, child items and hidden ones included, in no order. Empty for null.
QSet<OrvNgNode*> nodes(const QGraphicsScene* scene);
/// Those of them that are frames (OrvNgNode::isBackdrop()). A drag asks at every move.
QSet<OrvNgNode*> frames(const QGraphicsScene* scene);

} // namespace OrvNgSceneNodes
