#pragma once

#include "network/NetLayout.h"
#include "network/NetScope.h"

/// A box to place: its size, and its position in the file when it has one.
struct NetPlacementItem
{
    QSizeF size; ///< scene pixels
    bool hasPosition = false;
    QPointF filePosition; ///< unit of the file
};

/// Decides where the boxes of a scope go: where the file says, or by automatic layout.
///
/// Files give positions in units of one small node (138 x 116 pixels), a few in pixels; nothing in
/// them says which, but a span of more than 200 units would be an absurdly large graph.
///
/// Called by  the scene controller, once per scope, when all node sizes are known.
/// Uses       NetLayout.
/// Tells      nobody.
class NetPlacement
{
public:
    enum class Unit {
        Node, ///< one default node with room for a short edge: 138 x 116 pixels
        Pixel
    };

    /// The unit of the file positions of one scope. Pixels when they span more than 200 in x or in
    /// y and there are fewer than 200 of them.
    static Unit unitOf(const QVector<QPointF>& filePositions);
    /// The unit of a scope of the model, as it was decided on reading: moves do not change it.
    static Unit unitOf(const NetScope& scope) { return scope.inPixels ? Unit::Pixel : Unit::Node; }
    /// Decides it, by the positions of its nodes and backdrops. NetReader does so, once.
    static void rememberUnit(NetScope* scope);
    static QPointF toScene(const QPointF& filePosition, Unit unit);
    static QPointF toFile(const QPointF& scenePosition, Unit unit);
    static QRectF toScene(const QRectF& fileRect, Unit unit);
    static QRectF toFile(const QRectF& sceneRect, Unit unit);

    /// Top left corner of every box in scene pixels. Boxes with a position keep it.
    ///
    /// The others stand where automatic layout of all boxes, from (0, 0), puts them, if the positioned
    /// ones lie in or near its bounds: then a user moved a few boxes of an automatic layout, and finds
    /// the rest as it was. Else the positions are another program's, and the others are laid out by
    /// themselves beside the positioned ones, on the side where most of their connections lead (sources
    /// left, else right), tops aligned.
    static QVector<QPointF> place(const QVector<NetPlacementItem>& items,
        const QVector<NetLayoutEdge>& edges, Unit unit, const NetLayoutOptions& options = {});
};
