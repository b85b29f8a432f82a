#pragma once

#include <QString>

class OrvNgEdge;
class OrvNgNode;

/// Internal. What the user does to connections, made from rest: no end of the edge is loose.
///
/// Each operation changes everything first and tells the destination nodes afterwards, so that a slot of the
/// host sees the finished state and may delete whatever it likes, the edge included. Refused, with nothing
/// changed, where an end is missing or the same node, an edge is locked, or the destination does not accept
/// the source.
///
/// Called by  OrvNgEdge.
/// Uses       the public interface of edges and nodes, OrvUndoManager (one step for what replaces something).
/// Tells      the host, through the nodes' notifications.
namespace OrvNgEdgeWiring {

enum class Result {
    Connected, ///< made, or there already
    Refused
};

/// Gives the edge, which has a destination, another source.
Result connectSource(OrvNgEdge& edge, OrvNgNode* node, const QString& output);
/// Gives an input of a node the edge's source, and frees the edge if it is an input itself.
Result connectDest(OrvNgEdge& edge, OrvNgNode* node, const QString& input);
/// Puts a node between the ends of the edge, with its first output.
void insertNode(OrvNgEdge& edge, OrvNgNode* node, OrvNgEdge* freeInput);

/// Whether an input has the source that the edge has, or is the edge.
bool isSameConnection(const OrvNgEdge& edge, const OrvNgEdge& input);

void reportLocked(const QString& input);
void reportNoOutput();

} // namespace OrvNgEdgeWiring
