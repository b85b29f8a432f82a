#include "OrvNodeGraph/OrvNgEdgeRouter.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Router = OrvNgEdgeRoute (*)(const QPointF&, const QPointF&);

constexpr double kBack = 11.25;
const Router kSide = &OrvNgEdgeRouter::sideToSide;
const Router kTop = &OrvNgEdgeRouter::sideToTop;
const Router kFromTop = &OrvNgEdgeRouter::topToSide;
const Router kLine = &OrvNgEdgeRouter::straight;
const Router kRouters[] = {kSide, kTop, kFromTop, kLine};

double distance(const QPointF& a, const QPointF& b)
{
    return QLineF(a, b).length();
}

/// A line or a curve of a path, with the directions (QLineF's angles) of its ends.
struct Piece
{
    QLineF m_Chord;
    double m_StartAngle = 0.0;
    double m_EndAngle = 0.0;
};

std::vector<Piece> piecesOf(const QPainterPath& path)
{
    std::vector<Piece> pieces;
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF from = path.elementAt(i - 1);
        Piece piece;
        const int last = path.elementAt(i).isCurveTo() ? i + 2 : i;
        piece.m_Chord = QLineF(from, path.elementAt(last));
        piece.m_StartAngle = QLineF(from, path.elementAt(i)).angle();
        piece.m_EndAngle = QLineF(path.elementAt(last - 1), path.elementAt(last)).angle();
        i = last;
        pieces.push_back(piece);
    }
    return pieces;
}

/// Beside a side port, on a top or on a bare end.
QPointF tipOf(Router router, const QPointF& dest)
{
    return router == kSide || router == kFromTop ? dest - QPointF(6.0, 0.0) : dest;
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
        if (!qIsFinite(path.elementAt(i).x + path.elementAt(i).y))
            return QStringLiteral("element %1 is not finite").arg(i);
        size = std::max({size, std::abs(path.elementAt(i).x), std::abs(path.elementAt(i).y)});
    }
    if (!qIsFinite(route.m_ArrowAngle))
        return QStringLiteral("the arrow has no direction");
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

class tst_OrvNgEdgeRouter : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void farAndCloseEnds_giveSmoothBoundedRoutes()
    {
        std::mt19937 random(20240607);
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        std::uniform_real_distribution<double> magnitude(-3.0, 7.0);
        for (int i = 0; i < 10000; ++i) {
            const double scale = std::pow(10.0, magnitude(random));
            const QPointF source(1000.0 * unit(random), 1000.0 * unit(random));
            QPointF offset(scale * unit(random), scale * unit(random));
            if (i % 10 < 2) // a column or a level
                (i % 10 == 0 ? offset.rx() : offset.ry()) = 0.0;
            const QPointF dest = source + offset;
            for (const Router router : kRouters) {
                const OrvNgEdgeRoute route = router(source, dest);
                // Small bends have corners: level ends, and columns that coincide.
                const QPointF run = dest - source;
                const bool smooth = router == kSide
                    ? std::abs(run.y()) >= 0.0001 || run.x() > 17.25
                    : std::abs(run.x() - (router == kTop ? 6.0 : 17.25)) >= 0.0001;
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
        for (const Router router : kRouters) {
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
