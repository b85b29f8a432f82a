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

/// The same top left corner; width and height at least those of minimum.
inline QRectF atLeast(const QRectF& rect, const QSizeF& minimum)
{
    return QRectF(rect.topLeft(),
        QSizeF(qMax(minimum.width(), qMin(rect.width(), kMaxExtent)),
            qMax(minimum.height(), qMin(rect.height(), kMaxExtent))));
}

} // namespace OrvNgFrameRect
