#include "OrvNodeGraph/OrvNgEdgeRouter.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

/// How far the line ends before the arrow's tip, so that it does not show beside the tip.
constexpr double kArrowSafeLength = 11.25;
/// The arrow's length; also the run and the largest radius of the turns of an edge that has to go
/// back.
constexpr double kBackRun = 15.0;
constexpr double kHalfPortWidth = 6.0;
/// Heights, radii and lengths below this make no visible bend.
constexpr double kStraightBelow = 0.0001;
/// Corners this small are corners: their arcs would drown in the rounding of large coordinates.
constexpr double kSmallestCorner = 0.000001;
/// Corners use this much of the room they have, so that neighbouring arcs never meet exactly.
constexpr double kCornerShare = 0.99;
/// Beyond it a coordinate cannot tell the arrow's base from its tip.
constexpr double kFarthest = 1e12;

/// A direction along an axis, in the degrees that QPainterPath::arcTo() takes.
enum Heading { Right = 0, Up = 90, Left = 180, Down = 270 };

QPointF unitVector(int heading)
{
    switch ((heading + 360) % 360) {
    case Right:
        return {1.0, 0.0};
    case Up:
        return {0.0, -1.0};
    case Left:
        return {-1.0, 0.0};
    default:
        return {0.0, 1.0};
    }
}

bool isRoutable(const QPointF& point)
{
    // Written so that NaN fails it.
    return std::abs(point.x()) <= kFarthest && std::abs(point.y()) <= kFarthest;
}

/// +1 where the destination lies below the source, else -1.
double sideOf(const QPointF& source, const QPointF& dest)
{
    return dest.y() > source.y() ? 1.0 : -1.0;
}

QPointF sidePortTip(const QPointF& dest)
{
    return {dest.x() - kHalfPortWidth, dest.y()};
}

QPainterPath pathFrom(const QPointF& start, int elements)
{
    QPainterPath path;
    path.reserve(elements);
    path.moveTo(start);
    return path;
}

/// A line to the corner, coming along heading, and a quarter turn (90 to the left, -90 to the
/// right) around it.
void roundCorner(QPainterPath& path, const QPointF& corner, int heading, int turn, double radius)
{
    if (radius < kSmallestCorner) {
        path.lineTo(corner);
        return;
    }
    const QPointF centre = corner + radius * (unitVector(heading + turn) - unitVector(heading));
    const QRectF circle(centre.x() - radius, centre.y() - radius, 2.0 * radius, 2.0 * radius);
    path.arcTo(circle, heading - turn, turn);
}

/// Lets the path run straight to the arrow: to where its base is when its tip is on tip and it
/// points along direction, a unit vector. A line shorter than the arrow gets no line.
void runToArrow(OrvNgEdgeRoute& route, const QPointF& tip, const QPointF& direction, double length)
{
    route.m_Path.lineTo(tip - direction * std::min(kArrowSafeLength, length));
    route.m_ArrowTip = tip;
    route.m_ArrowAngle = QLineF(QPointF(), direction).angle();
}

/// One arc and the straight line that touches it, seen from where the arc begins.
struct TangentTurn
{
    double m_Radius = 0.0;
    double m_Angle = 0.0; ///< radians turned, 0 to 2π
    double m_LineLength = 0.0;
};

/// The turn that leads to a point `ahead` along the heading and `aside` (not negative) on the side
/// to which the arc turns. The radius is the whole way ahead, so that a point farther aside gets a
/// right angle; a point behind gets a tight loop.
TangentTurn turnTowards(double ahead, double aside)
{
    TangentTurn turn;
    turn.m_Radius = ahead < 0.0 ? std::min(-ahead, kBackRun) : ahead;
    const double fromCentre = aside - turn.m_Radius;
    // The factors keep the line exact where the point is almost on the circle. Of the two tangents
    // this is the one with the point in front; atan2 takes the place of asin(radius / distance),
    // whose argument may round to more than 1.
    const double square
        = (ahead - turn.m_Radius) * (ahead + turn.m_Radius) + fromCentre * fromCentre;
    turn.m_LineLength = std::sqrt(std::max(0.0, square));
    turn.m_Angle = std::atan2(fromCentre, ahead) + std::atan2(turn.m_Radius, turn.m_LineLength);
    // Ahead, an angle that rounds to less than 0 is level and must not become a full circle.
    if (ahead < 0.0 && turn.m_Angle < 0.0)
        turn.m_Angle += 4.0 * kHalfPi;
    return turn;
}

/// An arc about centre from the angle start by sweep, radians, clockwise on the screen; the path
/// must be at its first point already. QPainterPath::arcTo() is not used here: it only approximates
/// the ends of arcs that are no quarters (by 0.0003 of the radius), which shows as a kink at the
/// tangent.
void tangentArc(
    QPainterPath& path, const QPointF& centre, double radius, double start, double sweep)
{
    if (radius * std::abs(sweep) < kSmallestCorner)
        return;
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kHalfPi - 1e-9)));
    const double step = sweep / pieces;
    const double handle = radius * 4.0 / 3.0 * std::tan(step / 4.0);
    QPointF radial(std::cos(start), std::sin(start));
    for (int piece = 1; piece <= pieces; ++piece) {
        const double angle = start + step * piece;
        const QPointF next(std::cos(angle), std::sin(angle));
        path.cubicTo(centre + radius * radial + handle * QPointF(-radial.y(), radial.x()),
            centre + radius * next - handle * QPointF(-next.y(), next.x()), centre + radius * next);
        radial = next;
    }
}

/// For turns without a radius: straight over the corner to the tip.
OrvNgEdgeRoute overCorner(const QPointF& source, const QPointF& corner, const QPointF& tip)
{
    OrvNgEdgeRoute route;
    route.m_Path = pathFrom(source, 3);
    QLineF last(corner, tip);
    if (last.length() < kStraightBelow)
        last.setP1(source);
    else
        route.m_Path.lineTo(corner);
    const double length = last.length();
    const QPointF direction
        = length > 0.0 ? QPointF(last.dx(), last.dy()) / length : QPointF(1.0, 0.0);
    runToArrow(route, tip, direction, length);
    return route;
}

/// Out to the right, over half of the way up or down, on to the right.
void routeForward(QPainterPath& path, const QPointF& source, const QPointF& base)
{
    const double height = std::abs(base.y() - source.y());
    const double halfRun = (base.x() - source.x()) / 2.0;
    const double middle = source.x() + halfRun;
    const int vertical = base.y() > source.y() ? Down : Up;
    const int turn = vertical == Down ? -90 : 90;
    const double radius
        = height < kStraightBelow ? 0.0 : kCornerShare * std::min(halfRun, height / 3.0);
    roundCorner(path, {middle, source.y()}, Right, turn, radius);
    roundCorner(path, {middle, base.y()}, vertical, -turn, radius);
}

/// Out to the right, half of the way up or down, back to the left, the other half, in from the
/// left.
void routeBackward(QPainterPath& path, const QPointF& source, const QPointF& base)
{
    const double height = std::abs(base.y() - source.y());
    const double outer = source.x() + kBackRun;
    const double inner = base.x() - kBackRun;
    const double between = source.y() + (base.y() - source.y()) / 2.0;
    const int vertical = base.y() > source.y() ? Down : Up;
    const int turn = vertical == Down ? -90 : 90;
    const double radius
        = height < kStraightBelow ? 0.0 : kCornerShare * std::min(kBackRun, height / 4.0);
    roundCorner(path, {outer, source.y()}, Right, turn, radius);
    roundCorner(path, {outer, between}, vertical, turn, radius);
    roundCorner(path, {inner, between}, Left, -turn, radius);
    roundCorner(path, {inner, base.y()}, vertical, -turn, radius);
}

} // namespace

namespace OrvNgEdgeRouter {

OrvNgEdgeRoute sideToSide(const QPointF& source, const QPointF& dest)
{
    OrvNgEdgeRoute route;
    if (!isRoutable(source) || !isRoutable(dest))
        return route;
    const QPointF tip = sidePortTip(dest);
    const QPointF base(tip.x() - kArrowSafeLength, tip.y());
    route.m_Path = pathFrom(source, 18);
    if (base.x() > source.x())
        routeForward(route.m_Path, source, base);
    else
        routeBackward(route.m_Path, source, base);
    runToArrow(route, tip, {1.0, 0.0}, kArrowSafeLength);
    return route;
}

OrvNgEdgeRoute sideToTop(const QPointF& source, const QPointF& dest)
{
    if (!isRoutable(source) || !isRoutable(dest))
        return {};
    // The curve begins beside the port's square, not on it.
    const QPointF start(source.x() + kHalfPortWidth, source.y());
    const TangentTurn turn = turnTowards(dest.x() - start.x(), std::abs(dest.y() - start.y()));
    if (turn.m_Radius < kStraightBelow)
        return overCorner(source, {dest.x(), source.y()}, dest);
    const double side = sideOf(source, dest);
    const QPointF centre(start.x(), start.y() + side * turn.m_Radius);
    OrvNgEdgeRoute route;
    route.m_Path = pathFrom(source, 15);
    route.m_Path.lineTo(start);
    tangentArc(route.m_Path, centre, turn.m_Radius, -side * kHalfPi, side * turn.m_Angle);
    runToArrow(
        route, dest, {std::cos(turn.m_Angle), side * std::sin(turn.m_Angle)}, turn.m_LineLength);
    return route;
}

OrvNgEdgeRoute topToSide(const QPointF& source, const QPointF& dest)
{
    if (!isRoutable(source) || !isRoutable(dest))
        return {};
    // Worked out backwards, as the turn of an edge that leaves the arrow's base to the left.
    const QPointF tip = sidePortTip(dest);
    const QPointF base(tip.x() - kArrowSafeLength, tip.y());
    const TangentTurn turn = turnTowards(base.x() - source.x(), std::abs(base.y() - source.y()));
    OrvNgEdgeRoute route;
    route.m_Path = pathFrom(source, 15);
    if (turn.m_Radius < kStraightBelow) {
        route.m_Path.lineTo(source.x(), base.y());
    } else {
        const double side = sideOf(source, dest);
        const QPointF centre(base.x(), base.y() - side * turn.m_Radius);
        const double start = side * (kHalfPi + turn.m_Angle);
        route.m_Path.lineTo(centre + turn.m_Radius * QPointF(std::cos(start), std::sin(start)));
        tangentArc(route.m_Path, centre, turn.m_Radius, start, -side * turn.m_Angle);
    }
    runToArrow(route, tip, {1.0, 0.0}, kArrowSafeLength);
    return route;
}

OrvNgEdgeRoute straight(const QPointF& source, const QPointF& dest)
{
    if (!isRoutable(source) || !isRoutable(dest))
        return {};
    return overCorner(source, source, dest);
}

OrvNgEdgeRoute degenerate(const QPointF& point)
{
    OrvNgEdgeRoute route;
    if (!isRoutable(point))
        return route;
    route.m_Path.moveTo(point);
    route.m_Path.lineTo(point);
    route.m_ArrowTip = point;
    return route;
}

bool findIntersectionPoint(const QLineF& line, const QRectF& rect, QPointF& point)
{
    const QLineF sides[]
        = {{rect.topLeft(), rect.topRight()}, {rect.topRight(), rect.bottomRight()},
            {rect.bottomRight(), rect.bottomLeft()}, {rect.bottomLeft(), rect.topLeft()}};
    std::optional<QPointF> nearest;
    double shortest = 0.0;
    for (const QLineF& side : sides) {
        QPointF hit;
        if (line.intersects(side, &hit) != QLineF::BoundedIntersection)
            continue;
        const double distance = QLineF(line.p1(), hit).length();
        if (!nearest || distance < shortest) {
            nearest = hit;
            shortest = distance;
        }
    }
    if (nearest)
        point = *nearest;
    return nearest.has_value();
}

} // namespace OrvNgEdgeRouter
