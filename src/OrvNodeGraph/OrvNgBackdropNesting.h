#pragma once

#include <QRectF>
#include <QVector>

/// Internal. Which backdrop lies in which, and the nesting levels that put inner ones above outer ones.
///
/// Called by  OrvNgBackdropNode.
/// Uses       nothing; values in, values out.
/// Tells      nobody.
namespace OrvNgBackdropNesting {

struct Frame
{
    QRectF m_SceneRect;
    double m_ZValue = 0.0;
    int m_Order = 0; ///< nesting level
};

/// The z value of a nesting level, computed in single precision. Levels beyond 899 share the last value
/// below the edges, which lie at -1.
double zValue(int order, float base);

/// Whether the inner rectangle lies in the outer one. Equal ones do not: they would lift each other for ever.
bool isInside(const QRectF& inner, const QRectF& outer);

/// The levels of all frames after each that is not above a frame around it went one level above that.
/// Frames as given, level by level from the largest: a second call with the result changes nothing.
QVector<int> raisedOrders(QVector<Frame> frames, float base);

} // namespace OrvNgBackdropNesting
