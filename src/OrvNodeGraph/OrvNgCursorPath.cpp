#include "OrvNodeGraph/OrvNgCursorPath.h"

#include <QPainterPathStroker>

#include <algorithm>

namespace {

constexpr double kCreep = 5.0; // scene units, along both axes together
constexpr double kOutlineWidth = 1.0; // scene units
constexpr double kCurveThreshold = 5.0;

} // namespace

QList<QPointF> OrvNgCursorPath::corners() const
{
    return isEmpty() ? QList<QPointF>() : QList<QPointF>{m_TopLeft, m_BottomRight};
}

void OrvNgCursorPath::append(const QPointF& scenePos, qint64 time)
{
    const QPointF& leftTop = isEmpty() ? scenePos : m_TopLeft;
    const QPointF& rightBottom = isEmpty() ? scenePos : m_BottomRight;
    m_TopLeft = {std::min(leftTop.x(), scenePos.x()), std::min(leftTop.y(), scenePos.y())};
    m_BottomRight
        = {std::max(rightBottom.x(), scenePos.x()), std::max(rightBottom.y(), scenePos.y())};
    m_Points.append(scenePos);
    m_Times.append(time);
}

void OrvNgCursorPath::follow(const QPointF& scenePos, qint64 time)
{
    if (m_ReplaceLast && !m_Points.isEmpty()) {
        m_Points.removeLast();
        m_Times.removeLast();
    }
    m_ReplaceLast
        = !m_Points.isEmpty() && (scenePos - m_Points.constLast()).manhattanLength() < kCreep;
    append(scenePos, time);
}

void OrvNgCursorPath::forgetOlderThan(qint64 interval)
{
    while (!m_Times.isEmpty() && m_Times.constLast() - m_Times.constFirst() >= interval) {
        m_Points.removeFirst();
        m_Times.removeFirst();
    }
}

void OrvNgCursorPath::clear()
{
    m_Points.clear();
    m_Times.clear();
    m_ReplaceLast = false;
}

QPainterPath OrvNgCursorPath::polyline(const QList<QPointF>& points)
{
    QPainterPath path;
    for (const QPointF& point : points) {
        if (path.elementCount() == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    return path;
}

QRectF OrvNgCursorPath::bounds(const QList<QPointF>& points, double margin)
{
    if (points.size() < 2)
        return QRectF();
    const double side = qMax(2.0 * margin, 1.0);
    QRectF bounds;
    for (const QPointF& point : points) {
        // Deliberate: the squares lie to the right of their points.
        bounds |= QRectF(point.x() + margin, point.y() - margin, side, side);
    }
    return bounds;
}

QPainterPath OrvNgCursorPath::outline(const QList<QPointF>& points)
{
    QPainterPathStroker stroker;
    stroker.setCurveThreshold(kCurveThreshold);
    stroker.setWidth(kOutlineWidth);
    return stroker.createStroke(polyline(points));
}
