#pragma once

#include <QBackingStore>
#include <QImage>
#include <QWidget>

#include <algorithm>
#include <cstdlib>

/// What a widget shows on the screen: its part of the window's pixels, and nothing is painted for it.
inline QImage screenPicture(const QWidget& widget)
{
    const QPaintDevice* device = widget.window()->backingStore()->paintDevice();
    const auto* window = dynamic_cast<const QImage*>(device);
    const double ratio = widget.devicePixelRatioF();
    const QRect area(widget.mapTo(widget.window(), QPoint()) * ratio, widget.size() * ratio);
    return window ? window->copy(area) : QImage();
}

/// By how much the channels of two pictures differ at most, of 255; 255 for pictures of two sizes.
inline int difference(const QImage& a, const QImage& b)
{
    int most = a.size() == b.size() ? 0 : 255;
    for (int i = 0; most < 255 && i < a.width() * a.height(); ++i) {
        const QRgb p = a.pixel(i % a.width(), i / a.width());
        const QRgb q = b.pixel(i % a.width(), i / a.width());
        most = std::max({most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
            std::abs(qBlue(p) - qBlue(q))});
    }
    return most;
}
