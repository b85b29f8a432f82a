#include "OrvNodeGraph/OrvNgFarLines.h"

#include "OrvNodeGraph/OrvNgFarLooks.h"

#include <QGraphicsPathItem>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QRegion>

#include <cmath>

namespace {

constexpr double kSmallestArrow
    = 2.0; // device pixels; a smaller one is no more than the line's end
constexpr double kFlatness = 0.15; // device pixels by which a chain of lines may be off

QTransform toPixels(const OrvNgFarPictures::Shot& shot)
{
    return shot.m_ToView * QTransform::fromScale(shot.m_PixelRatio, shot.m_PixelRatio);
}

/// All four channels times factor / 256.
quint32 scaled(quint32 color, quint32 factor)
{
    constexpr quint32 kEven = 0x00ff00ff;
    return ((((color & kEven) * factor) >> 8) & kEven)
        | ((((color >> 8) & kEven) * factor) & ~kEven);
}

} // namespace

OrvNgFarLines::OrvNgFarLines(
    QPainter* painter, QImage* canvas, const QRegion& clip, const OrvNgFarPictures::Shot& shot)
    : m_Painter(painter)
    , m_Pixels(reinterpret_cast<quint32*>(canvas->bits()))
    , m_Stride(canvas->bytesPerLine() / int(sizeof(quint32)))
    , m_Shot(shot)
    , m_ToPixels(toPixels(shot))
    , m_Scale(std::sqrt(m_ToPixels.m11() * m_ToPixels.m22()))
{
    for (const QRect& rect : clip)
        m_Clip.append(rect & canvas->rect());
}

void OrvNgFarLines::draw(const OrvNgFarEdge& edge)
{
    const double width = edge.m_IsCosmetic ? qMax(1.0, edge.m_Width) : edge.m_Width * m_Scale;
    if (width >= 1.0) {
        drawThick(edge);
        return;
    }
    QColor color = edge.m_Color;
    color.setAlphaF(color.alphaF() * width);
    drawThin(edge.m_Points, color);
    const auto extent
        = [&edge](int a, int b) { return (edge.m_Arrow[a] - edge.m_Arrow[b]).manhattanLength(); };
    if (edge.m_HasArrow && extent(0, 1) * m_Scale >= kSmallestArrow)
        drawArrow(edge);
}

void OrvNgFarLines::drawThick(const OrvNgFarEdge& edge)
{
    if (!edge.m_Points.isEmpty()) {
        m_Painter->setWorldTransform(m_Shot.m_ToView);
        m_Painter->strokePath(edge.m_Line->path(), edge.m_Line->pen());
        m_Painter->resetTransform();
    }
    if (edge.m_HasArrow)
        drawArrow(edge);
}

void OrvNgFarLines::drawArrow(const OrvNgFarEdge& edge)
{
    QPointF corners[3];
    for (int i = 0; i < 3; ++i)
        corners[i] = m_Shot.m_ToView.map(edge.m_Arrow[i]);
    m_Painter->setPen(Qt::NoPen);
    m_Painter->setBrush(edge.m_ArrowColor);
    m_Painter->drawConvexPolygon(corners, 3);
}

/// Points close to the line between their neighbours are left out. Which they are depends on the scale
/// alone, so that an edge looks the same wherever the view has been scrolled to.
void OrvNgFarLines::drawThin(const QVector<QPointF>& points, const QColor& color)
{
    if (points.size() < 2)
        return;
    m_Color = qPremultiply(color.rgba());
    const double tolerance = kFlatness / m_Scale;
    QPointF from = points.constFirst();
    QPointF start = m_ToPixels.map(from);
    for (int i = 1; i < points.size(); ++i) {
        const QPointF& point = points.at(i);
        if (i + 1 < points.size()) {
            const QPointF chord = points.at(i + 1) - from;
            const QPointF own = point - from;
            const double area = std::abs(chord.x() * own.y() - chord.y() * own.x());
            if (area <= tolerance * (std::abs(chord.x()) + std::abs(chord.y())))
                continue;
        }
        const QPointF end = m_ToPixels.map(point);
        for (const QRect& clip : qAsConst(m_Clip))
            drawLine(start, end, clip);
        from = point;
        start = end;
    }
}

/// Walks along the longer axis; at each pixel's middle the light is shared between the two pixels nearest
/// across, in steps of 1/256. The pixel at the end belongs to the next line of the chain.
void OrvNgFarLines::drawLine(const QPointF& from, const QPointF& to, const QRect& clip)
{
    const QPointF way = to - from;
    const bool isSteep = std::abs(way.y()) > std::abs(way.x());
    const auto along = [isSteep](const QPointF& p) { return isSteep ? p.y() : p.x(); };
    const auto across = [isSteep](const QPointF& p) { return isSteep ? p.x() : p.y(); };
    const bool isBackwards = along(way) < 0.0;
    const QPointF& low = isBackwards ? to : from;
    const double length = std::abs(along(way));
    if (!(length > 0.0))
        return;
    const double slope = across(way) / along(way);
    const int firstInClip = isSteep ? clip.top() : clip.left();
    const int lastInClip = isSteep ? clip.bottom() : clip.right();
    const int firstRow = isSteep ? clip.left() : clip.top();
    const int rows = isSteep ? clip.width() : clip.height();
    const double begin = qMax(std::ceil(along(low) - 0.5), double(firstInClip));
    const double end = qMin(std::ceil(along(low) + length - 0.5) - 1.0, double(lastInClip));
    if (!(begin <= end))
        return;
    const int alongStep = isSteep ? m_Stride : 1;
    const int acrossStep = isSteep ? 1 : m_Stride;
    const auto light
        = quint32(256.0 * std::sqrt(1.0 + slope * slope)); // a slanted line cuts more of a column
    const double first = across(low) + (begin + 0.5 - along(low)) * slope - 0.5;
    for (int i = int(begin); i <= int(end); ++i) {
        const double place = first + (i - int(begin)) * slope - firstRow + 1.0;
        if (!(place >= 0.0 && place <= rows + 1.0))
            continue;
        const int steps = int(place * 256.0);
        const int row = (steps >> 8) - 1; // of the clip; one before and one behind it may share their light
        const int pixel = i * alongStep + (firstRow + row) * acrossStep;
        const quint32 lightBelow = light * quint32(steps & 255) >> 8;
        if (row >= 0 && row < rows)
            blend(m_Pixels[pixel], light - lightBelow);
        if (row + 1 < rows)
            blend(m_Pixels[pixel + acrossStep], lightBelow);
    }
}

void OrvNgFarLines::blend(quint32& pixel, quint32 light) const
{
    const quint32 color = scaled(m_Color, qMin(256U, light));
    pixel = color + scaled(pixel, 256U - (color >> 24));
}
