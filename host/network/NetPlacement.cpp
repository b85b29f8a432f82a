#include "network/NetPlacement.h"

#include <QRectF>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal kUnitWidth = 138;
constexpr qreal kUnitHeight = 116;
constexpr qreal kPixelSpan = 200;
constexpr int kPixelMaxCount = 200;

QPointF scaleOf(NetPlacement::Unit unit)
{
    return unit == NetPlacement::Unit::Pixel ? QPointF(1, 1) : QPointF(kUnitWidth, kUnitHeight);
}

QRectF boundsOf(const QVector<NetPlacementItem>& items, const QVector<QPointF>& corners,
    const QVector<int>& which)
{
    QRectF bounds;
    for (const int i : which)
        bounds |= QRectF(corners.at(i), items.at(i).size);
    return bounds;
}

} // namespace

NetPlacement::Unit NetPlacement::unitOf(const QVector<QPointF>& filePositions)
{
    if (filePositions.isEmpty() || filePositions.size() >= kPixelMaxCount)
        return Unit::Node;
    const auto [left, right] = std::minmax_element(filePositions.cbegin(), filePositions.cend(),
        [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); });
    const auto [top, bottom] = std::minmax_element(filePositions.cbegin(), filePositions.cend(),
        [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); });
    const bool wide = right->x() - left->x() > kPixelSpan || bottom->y() - top->y() > kPixelSpan;
    return wide ? Unit::Pixel : Unit::Node;
}

NetPlacement::Unit NetPlacement::unitOf(const NetScope& scope)
{
    QVector<QPointF> positions;
    for (const NetNode& node : scope.nodes) {
        if (node.hasPosition)
            positions.append(node.position);
    }
    for (const NetBackdrop& backdrop : scope.backdrops)
        positions.append(backdrop.rect.topLeft());
    return unitOf(positions);
}

QPointF NetPlacement::toScene(const QPointF& filePosition, Unit unit)
{
    const QPointF scale = scaleOf(unit);
    return {filePosition.x() * scale.x(), filePosition.y() * scale.y()};
}

QPointF NetPlacement::toFile(const QPointF& scenePosition, Unit unit)
{
    const QPointF scale = scaleOf(unit);
    return {scenePosition.x() / scale.x(), scenePosition.y() / scale.y()};
}

QRectF NetPlacement::toScene(const QRectF& fileRect, Unit unit)
{
    return {toScene(fileRect.topLeft(), unit), toScene(fileRect.bottomRight(), unit)};
}

QVector<QPointF> NetPlacement::place(const QVector<NetPlacementItem>& items,
    const QVector<NetLayoutEdge>& edges, Unit unit, const NetLayoutOptions& options)
{
    QVector<QPointF> corners(items.size());
    QVector<int> placed;
    QVector<int> loose;
    QVector<int> looseNumber(items.size(), -1);
    QVector<NetLayoutNode> looseNodes;
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i).hasPosition) {
            corners[i] = toScene(items.at(i).filePosition, unit);
            placed.append(i);
            continue;
        }
        looseNumber[i] = loose.size();
        loose.append(i);
        looseNodes.append({items.at(i).size});
    }
    if (loose.isEmpty())
        return corners;

    int feedsPlaced = 0; // connections from loose to placed boxes, less those the other way
    QVector<NetLayoutEdge> looseEdges;
    for (const NetLayoutEdge& edge : edges) {
        if (std::min(edge.source, edge.dest) < 0
            || std::max(edge.source, edge.dest) >= items.size())
            continue;
        const int source = looseNumber.at(edge.source);
        const int dest = looseNumber.at(edge.dest);
        if (source >= 0 && dest >= 0)
            looseEdges.append({source, dest, edge.sourceOffset, edge.destOffset});
        feedsPlaced += (source >= 0 ? 1 : 0) - (dest >= 0 ? 1 : 0);
    }
    const QVector<QPointF> arranged = NetLayout::arrange(looseNodes, looseEdges, options);
    for (int i = 0; i < loose.size(); ++i)
        corners[loose.at(i)] = arranged.at(i);
    if (placed.isEmpty())
        return corners;

    const QRectF fixedBounds = boundsOf(items, corners, placed);
    const QRectF looseBounds = boundsOf(items, corners, loose);
    const qreal left = feedsPlaced > 0
        ? fixedBounds.left() - options.columnGap - looseBounds.width()
        : fixedBounds.right() + options.columnGap;
    const QPointF shift(std::round(left), std::round(fixedBounds.top()));
    for (const int i : qAsConst(loose))
        corners[i] += shift;
    return corners;
}
