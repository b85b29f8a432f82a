#pragma once

#include <QString>

class OrvNgEdge;
class OrvNgNode;
class QPointF;

/// Internal. What an edge needs to know of the nodes at its ends beyond the base node: whether they show
/// ports, and which ports stand for several connection points at once.
///
/// A null node is allowed everywhere and has none of these.
///
/// Called by  OrvNgEdge only; the one place where edges meet extended nodes.
/// Uses       OrvNgExtendedNode.
/// Tells      the end nodes that their connections changed.
namespace OrvNgEdgeEnds {

/// Laid out with ports at its sides; all other nodes count as top to bottom.
bool isSidePortNode(const OrvNgNode* node);
bool showsInputPort(OrvNgNode* node, const QString& input);
bool showsOutputPort(OrvNgNode* node, const QString& output);

/// The point exists, or stands for a cluster of outputs.
bool hasOutput(OrvNgNode* node, const QString& output);

/// The shown port whose square, or else whose whole row, lies under a scene point; null for none.
QString inputUnder(OrvNgNode* node, const QPointF& scenePos);
QString outputUnder(OrvNgNode* node, const QPointF& scenePos);
/// Whether a scene point lies on the port of the node at which the edge hangs.
bool isOnPortOf(OrvNgNode* node, OrvNgEdge* edge, const QPointF& scenePos);

/// The point belongs to, or is, a cluster of a node in the grouped mode.
bool isClusteredInput(OrvNgNode* node, const QString& input);
bool isClusteredOutput(OrvNgNode* node, const QString& output);

/// Several points of the node attach edges at the same place as this one. The key says which place: equal
/// keys on one node lie on top of each other. An empty key stands for a place of the point's own.
QString sharedInputPlace(OrvNgNode* node, const QString& input);
QString sharedOutputPlace(OrvNgNode* node, const QString& output);

/// Brings port visibility and port colours of a node in line with its connections.
void connectionsChanged(OrvNgNode* node);

/// Brings port visibility in line with the tags of the node's edges.
void tagsChanged(OrvNgNode* node);

} // namespace OrvNgEdgeEnds
