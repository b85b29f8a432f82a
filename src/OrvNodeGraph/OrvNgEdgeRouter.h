#pragma once

#include <QLineF>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>

/// Internal. What an edge draws between its two ends, in scene coordinates.
struct OrvNgEdgeRoute
{
    QPainterPath m_Path; ///< from the source end to the base of the arrow
    QPointF m_ArrowTip;
    double m_ArrowAngle = 0.0; ///< degrees, counter-clockwise as QLineF::angle(); 0 points right
};

/// Internal. The routes of edges: points in, path and arrow out; y grows downwards.
///
/// A line ends where the arrow's base is. Where the last straight part is shorter than the arrow there is
/// none, and the arrow covers the end of the arc before it. Ends that are not finite, or farther than 1e12
/// from the origin, give an empty path.
///
/// Called by  OrvNgEdge::adjust.
/// Uses       nothing: neither item nor style.
/// Tells      nobody.
namespace OrvNgEdgeRouter {

/// Both ends at side ports: out to the right, down or up, in from the left. With the destination behind,
/// the way leads back through the middle of the height. The tip is at the left edge of the port whose
/// centre is dest, here and in topToSide().
OrvNgEdgeRoute sideToSide(const QPointF& source, const QPointF& dest);

/// From a side port into the top of a node: one arc, then straight to the arrow, whose tip is dest.
OrvNgEdgeRoute sideToTop(const QPointF& source, const QPointF& dest);

/// From a node without side ports into a side port: straight, then one arc into the horizontal.
OrvNgEdgeRoute topToSide(const QPointF& source, const QPointF& dest);

/// Both ends without side ports: a straight line to the arrow, whose tip is dest.
OrvNgEdgeRoute straight(const QPointF& source, const QPointF& dest);

/// An edge whose two ends coincide.
OrvNgEdgeRoute degenerate(const QPointF& point);

/// Moves the end p2 of the line to where the line leaves rect: of the hits on its four sides the one
/// nearest to p1. False, and point untouched, when the line meets none of them.
bool findIntersectionPoint(const QLineF& line, const QRectF& rect, QPointF& point);

} // namespace OrvNgEdgeRouter
