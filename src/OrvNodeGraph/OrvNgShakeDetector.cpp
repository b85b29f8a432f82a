#include "OrvNodeGraph/OrvNgShakeDetector.h"

#include "OrvNodeGraph/OrvNgCursorPath.h"

#include <cmath>

namespace {

constexpr qint64 kInterval = 500; // milliseconds
constexpr int kReversals = 4;
constexpr double kShortestSegment = 0.0001; // scene units
constexpr double kReversalCosine = -0.7071067690849304; // in single precision

QPointF direction(const QPointF& from, const QPointF& to)
{
    const QPointF way = to - from;
    const double length = std::hypot(way.x(), way.y());
    return length > kShortestSegment ? way / length : QPointF();
}

} // namespace

bool OrvNgShakeDetector::isShaken(OrvNgCursorPath& path)
{
    path.forgetOlderThan(kInterval);
    const QList<QPointF>& points = path.points();
    int reversals = 0;
    for (int i = 2; i < points.size(); ++i) {
        const QPointF before = direction(points.at(i - 2), points.at(i - 1));
        const QPointF after = direction(points.at(i - 1), points.at(i));
        if (QPointF::dotProduct(before, after) < kReversalCosine && ++reversals == kReversals)
            return true;
    }
    return false;
}
