#include "OrvNodeGraph/OrvNgEdgeRouter.h"
#include "support/TestTable.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Router = OrvNgEdgeRoute (*)(const QPointF&, const QPointF&);
using Points = QVector<QPointF>;

constexpr double kBack = 11.25;

double distance(const QPointF& a, const QPointF& b)
{
    return QLineF(a, b).length();
}

bool isFinite(const QPointF& point)
{
    return qIsFinite(point.x()) && qIsFinite(point.y());
}

/// A line or a curve of a path, with the directions (QLineF's angles) of its ends.
struct Piece
{
    QLineF m_Chord;
    bool m_IsCurve = false;
    double m_StartAngle = 0.0;
    double m_EndAngle = 0.0;
};

std::vector<Piece> piecesOf(const QPainterPath& path)
{
    std::vector<Piece> pieces;
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF from = path.elementAt(i - 1);
        Piece piece;
        piece.m_IsCurve = path.elementAt(i).isCurveTo();
        const int last = piece.m_IsCurve ? i + 2 : i;
        piece.m_Chord = QLineF(from, path.elementAt(last));
        piece.m_StartAngle = QLineF(from, path.elementAt(i)).angle();
        piece.m_EndAngle = QLineF(path.elementAt(last - 1), path.elementAt(last)).angle();
        i = last;
        pieces.push_back(piece);
    }
    return pieces;
}

/// Where lines begin and end; an arc made of several curves counts as one.
Points verticesOf(const QPainterPath& path)
{
    Points points{path.elementAt(0)};
    bool inCurve = false;
    for (const Piece& piece : piecesOf(path)) {
        if (inCurve && piece.m_IsCurve)
            points.removeLast();
        points.append(piece.m_Chord.p2());
        inCurve = piece.m_IsCurve;
    }
    return points;
}

/// Beside a side port, on a top or on a bare end.
QPointF tipOf(Router router, const QPointF& dest)
{
    const bool toSide
        = router == &OrvNgEdgeRouter::sideToSide || router == &OrvNgEdgeRouter::topToSide;
    return toSide ? dest - QPointF(6.0, 0.0) : dest;
}

double angleBetween(double a, double b)
{
    const double angle = std::abs(a - b);
    return std::min(angle, std::abs(360.0 - angle));
}

/// What is wrong with a route between two ends, empty for a good one. Pieces too short to have a
/// direction at the ends' magnitude are passed over, with the joints at their ends.
QString faultOf(const OrvNgEdgeRoute& route, const QPointF& source, bool smooth)
{
    const QPainterPath& path = route.m_Path;
    double size = 1.0;
    for (int i = 0; i < path.elementCount(); ++i) {
        if (!isFinite(path.elementAt(i)))
            return QStringLiteral("element %1 is not finite").arg(i);
        size = std::max({size, std::abs(path.elementAt(i).x), std::abs(path.elementAt(i).y)});
    }
    if (!isFinite(route.m_ArrowTip) || !qIsFinite(route.m_ArrowAngle))
        return QStringLiteral("the arrow is not finite");
    if (path.isEmpty() && path.elementCount() != 1)
        return QStringLiteral("there is no path");
    if (QPointF(path.elementAt(0)) != source)
        return QStringLiteral("the path does not start at the source");

    const double visible = std::max(1e-5, 1e-7 * size);
    const QPointF base = route.m_ArrowTip - QLineF::fromPolar(kBack, route.m_ArrowAngle).p2();
    const double gap = distance(path.currentPosition(), base);
    const double toTip = distance(path.currentPosition(), route.m_ArrowTip);
    if (gap > 1e-6 + 1e-11 * size && toTip > kBack)
        return QStringLiteral("the path ends %1 beside the arrow's base").arg(gap);

    const Piece* previous = nullptr;
    const std::vector<Piece> pieces = piecesOf(path);
    for (const Piece& piece : pieces) {
        if (piece.m_Chord.length() < visible) {
            previous = nullptr;
            continue;
        }
        const double kink = previous ? angleBetween(previous->m_EndAngle, piece.m_StartAngle) : 0.0;
        if (smooth && kink > 1e-3)
            return QStringLiteral("a kink of %1 degrees").arg(kink);
        previous = &piece;
    }
    if (smooth && previous && angleBetween(previous->m_EndAngle, route.m_ArrowAngle) > 1e-3)
        return QStringLiteral("the arrow points elsewhere than the line");
    return {};
}

} // namespace

Q_DECLARE_METATYPE(Router)

class tst_OrvNgEdgeRouter : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void route_data()
    {
        const Router side = &OrvNgEdgeRouter::sideToSide;
        const Router top = &OrvNgEdgeRouter::sideToTop;
        const Router back = &OrvNgEdgeRouter::topToSide;
        const Router line = &OrvNgEdgeRouter::straight;
        const TestTable<Router, QPointF, Points, double> table(
            "router", "dest", "vertices", "angle");
        const auto row
            = [&table](const char* name, Router router, const QPointF& dest, const Points& vertices,
                  double angle) { table(name, router, dest, vertices, angle); };

        // Side ports on both ends. The port's centre lies 17.25 right of the arrow's base.
        row("side: radius by the height, up", side, {117.25, -30},
            {{0, 0}, {40.1, 0}, {50, -9.9}, {50, -20.1}, {59.9, -30}, {100, -30}}, 0);
        row("side: behind, radius by the run back", side, {-82.75, 300},
            {{0, 0}, {0.15, 0}, {15, 14.85}, {15, 135.15}, {0.15, 150}, {-100.15, 150},
                {-115, 164.85}, {-115, 285.15}, {-100.15, 300}, {-100, 300}},
            0);

        // From a side port into a top: the arc begins 6 beside the port.
        row("top: below, a right angle", top, {106, 300},
            {{0, 0}, {6, 0}, {106, 100}, {106, 288.75}}, 270);
        row("top: behind, more than half a turn", top, {-19, 15},
            {{0, 0}, {6, 0}, {-3, 27}, {-10, 21.75}}, 143.130102354);

        row("back: a right angle", back, {117.25, 300}, {{0, 0}, {0, 200}, {100, 300}}, 0);
        row("back: behind", back, {-7.75, 15}, {{0, 0}, {-16, -12}, {-25, 15}}, 0);

        row("straight", line, {30, 40}, {{0, 0}, {23.25, 31}}, 306.869897646);
    }

    void route()
    {
        QFETCH(Router, router);
        QFETCH(QPointF, dest);
        QFETCH(Points, vertices);
        QFETCH(double, angle);
        // The same picture upside down, and where coordinates have other signs.
        for (const double down : {1.0, -1.0}) {
            const QTransform place(1.0, 0.0, 0.0, down, down < 0.0 ? -310.5 : 0.0, 77.25);
            const QPointF source = place.map(QPointF());
            const OrvNgEdgeRoute found = router(source, place.map(dest));
            QCOMPARE(faultOf(found, source, true), QString());
            QVERIFY(distance(found.m_ArrowTip, tipOf(router, place.map(dest))) < 1e-9);
            QVERIFY(angleBetween(found.m_ArrowAngle, down * angle) < 1e-7);
            const Points points = verticesOf(found.m_Path);
            QCOMPARE(points.size(), vertices.size());
            for (int i = 0; i < points.size(); ++i)
                QVERIFY(distance(points.at(i), place.map(vertices.at(i))) < 1e-9);
        }
    }

    void farAndCloseEnds_giveSmoothBoundedRoutes()
    {
        std::mt19937 random(20240607);
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        std::uniform_real_distribution<double> magnitude(-3.0, 7.0);
        const Router routers[] = {&OrvNgEdgeRouter::sideToSide, &OrvNgEdgeRouter::sideToTop,
            &OrvNgEdgeRouter::topToSide, &OrvNgEdgeRouter::straight};
        for (int i = 0; i < 10000; ++i) {
            const double scale = std::pow(10.0, magnitude(random));
            const QPointF source(1000.0 * unit(random), 1000.0 * unit(random));
            QPointF offset(scale * unit(random), scale * unit(random));
            if (i % 10 < 2) // a column or a level
                (i % 10 == 0 ? offset.rx() : offset.ry()) = 0.0;
            const QPointF dest = source + offset;
            for (const Router router : routers) {
                const OrvNgEdgeRoute route = router(source, dest);
                // Small bends have corners: level ends, and columns that coincide.
                const bool behind = dest.x() - 17.25 <= source.x();
                const bool smooth = router == routers[0]
                    ? std::abs(dest.y() - source.y()) >= 0.0001 || !behind
                    : std::abs(dest.x() - source.x() - (router == routers[1] ? 6.0 : 17.25))
                        >= 0.0001;
                QCOMPARE(faultOf(route, source, smooth), QString());
                QVERIFY(distance(route.m_ArrowTip, tipOf(router, dest)) < 1e-9);
                // 17.25 for the arrow and the port, 30 for a loop or the run back on either side.
                const QRectF room
                    = QRectF(source, dest).normalized().adjusted(-47.25, -30.1, 21.1, 30.1);
                const QRectF bounds = route.m_Path.boundingRect();
                QVERIFY(room.contains(bounds.topLeft()) && room.contains(bounds.bottomRight()));
            }
        }
    }

    void endsNobodyCanReach_giveNoRoute()
    {
        for (const Router router : {&OrvNgEdgeRouter::sideToSide, &OrvNgEdgeRouter::sideToTop,
                 &OrvNgEdgeRouter::topToSide, &OrvNgEdgeRouter::straight}) {
            for (const QPointF& bad :
                {QPointF(qQNaN(), 0), QPointF(0, qInf()), QPointF(1e300, 0)}) {
                QVERIFY(router({1, 2}, bad).m_Path.isEmpty());
                QVERIFY(router(bad, {1, 2}).m_Path.isEmpty());
            }
        }
    }

    void intersection()
    {
        const QRectF body(0, 0, 100, 50);
        QPointF found;
        QVERIFY(OrvNgEdgeRouter::findIntersectionPoint({300, 25, -300, 25}, body, found));
        QCOMPARE(found, QPointF(100, 25)); // where it enters
        QVERIFY(!OrvNgEdgeRouter::findIntersectionPoint({-100, 25, -1, 25}, body, found));
    }
};

QTEST_APPLESS_MAIN(tst_OrvNgEdgeRouter)
#include "tst_OrvNgEdgeRouter.moc"
