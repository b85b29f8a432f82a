#pragma once

#include "network/NetLayout.h"

/// A network in which every connection runs between neighbouring columns: what Graphviz is given
/// the second time. The first boxes are the network's own, in order; the others are lanes.
struct NetLaneGraph
{
    QVector<QSizeF> sizes;
    QVector<NetLayoutEdge> edges;
    QVector<int> weights; ///< of the edges: how much a straight one is worth
};

/// Keeps the way of long connections free of boxes.
///
/// An edge is drawn level from its source to the middle of the way, then up or down, then level to its
/// destination. Each column that it passes therefore gets a lane, a box of a pixel: those before the
/// middle tied to the source's height, those behind it to the destination's.
///
/// Called by  NetLayout. Uses  nothing. Tells  nobody.
namespace NetLanes {

/// ranks: the column of each box, counted from the left. corners: where a first layout put the boxes.
NetLaneGraph reserve(const QVector<QSizeF>& sizes, const QVector<NetLayoutEdge>& edges,
    const QVector<int>& ranks, const QVector<QPointF>& corners);

/// Whether any connection passes a column, so that lanes are worth a second layout.
bool areNeeded(const QVector<NetLayoutEdge>& edges, const QVector<int>& ranks);

} // namespace NetLanes
