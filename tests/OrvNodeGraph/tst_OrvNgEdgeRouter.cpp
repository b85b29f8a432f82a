#include "OrvNodeGraph/OrvNgEdgeRouter.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>

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

/// Beside a side port, on a top or on a bare end.
QPointF tipOf(Router router, const QPointF& dest)
{
    return router == kSide || router == kFromTop ? dest - QPointF(6.0, 0.0) : dest;
}

/// In degrees; 0 where one of them is not a number.
double angleBetween(double a, double b)
{
    const double angle = std::abs(a - b);
    return angle >= 0.0 ? std::min(angle, std::abs(360.0 - angle)) : 0.0;
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

    double before = qQNaN(); // the direction (QLineF's angle) at the end of the last piece
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF from = path.elementAt(i - 1);
        const double start = QLineF(from, path.elementAt(i)).angle();
        i += path.elementAt(i).isCurveTo() ? 2 : 0;
        const bool isSeen = distance(from, path.elementAt(i)) >= visible;
        if (smooth && isSeen && angleBetween(before, start) > 1e-3)
            return QStringLiteral("a kink from %1 to %2 degrees").arg(before).arg(start);
        before = isSeen ? QLineF(path.elementAt(i - 1), path.elementAt(i)).angle() : qQNaN();
    }
    if (smooth && angleBetween(before, route.m_ArrowAngle) > 1e-3)
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
