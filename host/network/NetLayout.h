#pragma once

#include <QPointF>
#include <QSizeF>
#include <QVector>

/// A box to lay out: its size in scene pixels.
struct NetLayoutNode
{
    QSizeF size;
};

/// A connection between two boxes, by their positions in the list of boxes. Offsets say how far
/// below the top edge of its box the connection ends, in scene pixels; they order what hangs on a
/// tall node. Negative: at half the height.
struct NetLayoutEdge
{
    int source = -1;
    int dest = -1;
    qreal sourceOffset = -1;
    qreal destOffset = -1;
};

/// Gaps between boxes, in scene pixels.
struct NetLayoutOptions
{
    qreal nodeGap = 24; ///< between boxes above each other
    qreal columnGap = 70; ///< between columns
};

/// Automatic layout, left to right: sources on the left of what they feed. Graphviz does the work,
/// in this process; the result depends on nothing but the arguments.
///
/// Called by  NetPlacement, for what has no position in the file, and the scene controller's
/// "arrange". Uses       Graphviz (libgvc, engine "dot"). Tells      nobody.
class NetLayout
{
public:
    /// Top left corner of every box, in whole scene pixels; the upper left corner of all of them is
    /// (0, 0). Edges that name no box, or one box twice, are left out; a cycle is laid out as if
    /// one of its edges pointed the other way. Safe to call from any thread; calls wait for each
    /// other.
    static QVector<QPointF> arrange(const QVector<NetLayoutNode>& nodes,
        const QVector<NetLayoutEdge>& edges, const NetLayoutOptions& options = {});
};
