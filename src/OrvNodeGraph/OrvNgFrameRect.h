#pragma once

#include <QRectF>
#include <QSizeF>
#include <QtGlobal>

#include <cmath>

/// Internal. Which rectangles the node kinds with a rectangle of their own take on.
///
/// Called by  OrvNgUINode, OrvNgTextNode, OrvNgBackdropNode, OrvNgResizeTriangleItem.
/// Uses       nothing.
/// Tells      nobody.
namespace OrvNgFrameRect {

/// Beyond this a scene rectangle no longer fits the integers of scroll bars and paint engines.
constexpr double kMaxExtent = 1e8;

inline bool isFinite(const QRectF& rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width())
        && std::isfinite(rect.height());
}

/// The same top left corner, and width and height at least those of minimum; all as far as they are within
/// reach.
inline QRectF atLeast(const QRectF& rect, const QSizeF& minimum)
{
    const auto within = [](double value) { return qBound(-kMaxExtent, value, kMaxExtent); };
    return QRectF(within(rect.x()), within(rect.y()),
        within(qMax(qMax(0.0, minimum.width()), rect.width())),
        within(qMax(qMax(0.0, minimum.height()), rect.height())));
}

} // namespace OrvNgFrameRect
