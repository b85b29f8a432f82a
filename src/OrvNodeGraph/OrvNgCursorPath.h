#pragma once

#include <QList>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>

/// Internal. The way of the cursor while its points are tracked, in scene coordinates, with the time of
/// each point in milliseconds. While the cursor creeps, the newest point slides along instead of piling
/// up points.
///
/// Called by  OrvNgView, OrvNgShakeDetector.
/// Uses       nothing: values in, values out.
/// Tells      nobody.
class OrvNgCursorPath
{
public:
    bool isEmpty() const { return m_Points.isEmpty(); }
    const QList<QPointF>& points() const { return m_Points; }
    /// The part that the last follow() changed: the newest segment with the corner at its beginning.
    QList<QPointF> newestStretch() const { return m_Points.mid(qMax(0, m_Points.size() - 3)); }

    /// Two corners of a box around all points since clear(), dropped ones included; empty without points.
    QList<QPointF> corners() const;

    /// Adds a point as it is.
    void append(const QPointF& scenePos, qint64 time);
    /// Adds a point in place of the newest one when that lies within 5 units of its predecessor.
    void follow(const QPointF& scenePos, qint64 time);
    /// Drops the points that are as old as interval, or older, at the time of the newest one.
    void forgetOlderThan(qint64 interval);
    void clear();

    static QPainterPath polyline(const QList<QPointF>& points);
    /// The union of a square for each point; null for fewer than two points.
    static QRectF bounds(const QList<QPointF>& points, double margin);
    /// The outline, one unit wide, of the path along the points.
    static QPainterPath outline(const QList<QPointF>& points);

private:
    QList<QPointF> m_Points;
    QList<qint64> m_Times; ///< one for each point
    QPointF m_TopLeft; ///< of the box, widened with each point: looking at all of them takes long
    QPointF m_BottomRight;
    bool m_ReplaceLast = false;
};
