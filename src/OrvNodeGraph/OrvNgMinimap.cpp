#include "OrvNodeGraph/OrvNgMinimap.h"

#include <QPainter>
#include <QScopeGuard>
#include <QTransform>

#include <cmath>

namespace {

constexpr int kShare = 5; // of the view's height
constexpr QRgb kFrameColor = qRgb(20, 20, 20);
constexpr QRgb kVisibleColor = qRgb(230, 230, 230);
constexpr QRgb kVisibleFill = qRgba(255, 255, 255, 24);

float aspectOf(const QSize& size)
{
    return float(size.width()) / float(qMax(1, size.height()));
}

double extent(double length)
{
    return length > 0.0 ? length : 1.0;
}

} // namespace

QSize OrvNgMinimapFrame::sizeFor(const QSize& viewSize)
{
    const int height = qMax(0, viewSize.height() / kShare);
    return QSize(int(aspectOf(viewSize) * float(height)), height);
}

OrvNgMinimapFrame::OrvNgMinimapFrame(
    const QSize& viewSize, const QSize& viewportSize, const QRectF& bounds, double aspect)
    : m_Bounds(bounds.topLeft(), QSizeF(extent(bounds.width()), extent(bounds.height())))
{
    const QSize size = sizeFor(viewSize);
    m_Rect = QRect(
        QPoint(viewportSize.width() - size.width(), viewportSize.height() - size.height()), size);
    const float viewAspect = aspectOf(viewSize);
    const bool isAsHighAsBounds = double(viewAspect) > aspect || !(viewAspect > 0.0F);
    m_UnitsPerHeight
        = m_Bounds.height() * double(isAsHighAsBounds ? 1.0F : float(aspect) / viewAspect);
}

QPointF OrvNgMinimapFrame::toScene(const QPoint& viewPos) const
{
    const QPointF inside(viewPos - m_Rect.topLeft());
    return m_Bounds.topLeft() + inside * (m_UnitsPerHeight / qMax(1, m_Rect.height()));
}

/// Cut in doubles: a view far out covers more pixels of the minimap than an int counts.
QRect OrvNgMinimapFrame::toViewport(const QRectF& sceneRect) const
{
    const double scale = m_Rect.height() / m_UnitsPerHeight;
    const QRectF inside(
        (sceneRect.topLeft() - m_Bounds.topLeft()) * scale, sceneRect.size() * scale);
    const QRectF cut = inside & QRectF(QPointF(), m_Rect.size());
    return cut.isEmpty() ? QRect() : cut.toAlignedRect().translated(m_Rect.topLeft()) & m_Rect;
}

void OrvNgMinimap::paint(QPainter* painter, const OrvNgMinimapFrame& frame,
    const PaintScene& paintScene, const QRectF& visible, const QColor& background,
    double pixelRatio)
{
    const QSize pixels(int(std::ceil(frame.m_Rect.width() * pixelRatio)),
        int(std::ceil(frame.m_Rect.height() * pixelRatio)));
    if (m_PaintsSinceRender >= kStale || m_Picture.size() != pixels) {
        if (m_Picture.size() != pixels)
            m_Picture = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        render(paintScene, frame, background, pixelRatio);
        m_PaintsSinceRender = 0;
    } else {
        ++m_PaintsSinceRender;
    }
    painter->drawImage(frame.m_Rect.topLeft(), m_Picture);

    const auto drawInside = [painter](const QRect& rect, QRgb color) {
        painter->setPen(QPen(QColor::fromRgba(color), 1.0));
        const QRect drawn = rect.adjusted(0, 0, -1, -1); // the pen goes around it
        painter->drawRects(&drawn, 1);
    };
    painter->setBrush(Qt::NoBrush);
    drawInside(frame.m_Rect, kFrameColor);
    const QRect shown = frame.toViewport(visible);
    if (shown.isNull())
        return;
    painter->setBrush(QColor::fromRgba(kVisibleFill));
    drawInside(shown, kVisibleColor);
}

void OrvNgMinimap::render(const PaintScene& paintScene, const OrvNgMinimapFrame& frame,
    const QColor& background, double pixelRatio)
{
    m_Picture.setDevicePixelRatio(pixelRatio);
    m_Picture.fill(background);
    m_IsRendering = true;
    const auto lower = qScopeGuard([this] { m_IsRendering = false; });
    const double scale = qMin(frame.m_Rect.width() / frame.m_Bounds.width(),
        frame.m_Rect.height() / frame.m_Bounds.height());
    paintScene(&m_Picture,
        QTransform::fromTranslate(-frame.m_Bounds.left(), -frame.m_Bounds.top())
            * QTransform::fromScale(scale, scale));
}
