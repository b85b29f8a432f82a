#pragma once

#include <QPointF>
#include <QStringList>

class OrvNgNode;
class QGraphicsItem;

/// Internal. Where a carried edge end may be dropped: which node is meant, which of its ports, and which
/// points of it can take the end.
///
/// Called by  OrvNgEdge, at the end of a drag.
/// Uses       OrvNgNode, OrvNgEdgeEnds (ports).
/// Tells      nobody.
namespace OrvNgEdgeDrop {

enum class Side { Input, Output };

struct Target
{
    OrvNgNode* m_Node = nullptr; ///< null: nothing that an end could be dropped on
    QString m_Point; ///< of the port that was hit; null for the body of the node
};

/// Of the items at the loose end, topmost first: the node with a port of that side under the point, else the
/// topmost node around the point, else the topmost at all. Nodes with a point on that side go first.
Target find(const QList<QGraphicsItem*>& items, const QPointF& scenePos, Side side);

/// The inputs that the user may reconnect: not hidden and not locked by their tags.
QStringList openInputs(OrvNgNode* node);

} // namespace OrvNgEdgeDrop
