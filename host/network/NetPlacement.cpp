#include "network/NetPlacement.h"

#include <QRectF>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal kUnitWidth = 138;
constexpr qreal kUnitHeight = 116;
constexpr qreal kPixelSpan = 200;
constexpr int kPixelMaxCount = 200;
constexpr qreal kNear = 1000;

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

struct Split
{
    QVector<int> placed; // have a position in the file
    QVector<int> loose;
};

QVector<QPointF> arrangeAll(const QVector<NetPlacementItem>& items,
    const QVector<NetLayoutEdge>& edges, const NetLayoutOptions& options)
{
    QVector<NetLayoutNode> boxes;
    boxes.reserve(items.size());
    for (const NetPlacementItem& item : items)
        boxes.append({item.size});
    return NetLayout::arrange(boxes, edges, options);
}

// Half the size of the layout around it is near, and so is as much as a screen shows.
bool fitsAmong(const QRectF& placedBounds, const QVector<NetPlacementItem>& items,
    const QVector<QPointF>& automatic)
{
    if (placedBounds.isNull())
        return true;
    QRectF bounds;
    for (int i = 0; i < items.size(); ++i)
        bounds |= QRectF(automatic.at(i), items.at(i).size);
    const qreal x = std::max(bounds.width() / 2, kNear);
    const qreal y = std::max(bounds.height() / 2, kNear);
    return bounds.adjusted(-x, -y, x, y).contains(placedBounds);
}

void placeBeside(const QVector<NetPlacementItem>& items, const QVector<NetLayoutEdge>& edges,
    const NetLayoutOptions& options, const Split& split, QVector<QPointF>* corners)
{
    QVector<int> looseNumber(items.size(), -1);
    QVector<NetPlacementItem> looseItems;
    for (const int i : split.loose) {
        looseNumber[i] = looseItems.size();
        looseItems.append(items.at(i));
    }
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
    const QVector<QPointF> arranged = arrangeAll(looseItems, looseEdges, options);
    for (int i = 0; i < split.loose.size(); ++i)
        (*corners)[split.loose.at(i)] = arranged.at(i);

    const QRectF fixedBounds = boundsOf(items, *corners, split.placed);
    const QRectF looseBounds = boundsOf(items, *corners, split.loose);
    const qreal left = feedsPlaced > 0
        ? fixedBounds.left() - options.columnGap - looseBounds.width()
        : fixedBounds.right() + options.columnGap;
    const QPointF shift(std::round(left), std::round(fixedBounds.top()));
    for (const int i : split.loose)
        (*corners)[i] += shift;
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

void NetPlacement::rememberUnit(NetScope* scope)
{
    QVector<QPointF> positions;
    for (const NetNode& node : qAsConst(scope->nodes)) {
        if (node.hasPosition)
            positions.append(node.position);
    }
    for (const NetBackdrop& backdrop : qAsConst(scope->backdrops))
        positions.append(backdrop.rect.topLeft());
    scope->inPixels = unitOf(positions) == Unit::Pixel;
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

QRectF NetPlacement::toFile(const QRectF& sceneRect, Unit unit)
{
    const QPointF scale = scaleOf(unit);
    return {toFile(sceneRect.topLeft(), unit),
        QSizeF(sceneRect.width() / scale.x(), sceneRect.height() / scale.y())};
}

QVector<QPointF> NetPlacement::place(const QVector<NetPlacementItem>& items,
    const QVector<NetLayoutEdge>& edges, Unit unit, const NetLayoutOptions& options)
{
    QVector<QPointF> corners(items.size());
    Split split;
    for (int i = 0; i < items.size(); ++i) {
        const bool placed = items.at(i).hasPosition;
        (placed ? split.placed : split.loose).append(i);
        if (placed)
            corners[i] = toScene(items.at(i).filePosition, unit);
    }
    if (split.loose.isEmpty())
        return corners;
    const QVector<QPointF> automatic = arrangeAll(items, edges, options);
    if (fitsAmong(boundsOf(items, corners, split.placed), items, automatic)) {
        for (const int i : qAsConst(split.loose))
            corners[i] = automatic.at(i);
        return corners;
    }
    placeBeside(items, edges, options, split, &corners);
    return corners;
}
