#include "OrvNodeGraph/OrvNgGrid.h"

#include <QHash>
#include <QLineF>
#include <QPaintEngine>
#include <QStyleOptionGraphicsItem>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double kHiddenLevelOfDetail = 0.007;
constexpr double kLargestReserve = 65536.0; // lines
constexpr double kDenseSpacing = 0.25; // device pixels
constexpr int kDenseTile = 16; // device pixels
constexpr double kFarthestPixel = 32767.0; // from the device's origin; beyond, Qt's images end
constexpr int kStripBreadth = 16; // Qt misplaces thick horizontal lines in a narrower image
constexpr double kMostLines = 4e6; // more than any screen shows
constexpr int kPhases = 64; // Qt places a thin line to this part of a device pixel
constexpr int kStampPitch = 5; // device pixels: the three a thin line can touch, and a gap
constexpr int kRowsReserve = 64;
constexpr int kSlabBytes = 128 * 1024; // stays in the processor's cache while it is painted

/// The parallel lines of one direction that cross a range of scene coordinates.
class GridLines
{
public:
    GridLines(double from, double to, int spacing)
        : m_Step(spacing)
        , m_First(std::floor(from / m_Step + 0.5) * m_Step)
        , m_Count(qMax(0.0, std::ceil((to - m_First) / m_Step)))
    {
    }

    double step() const { return m_Step; }
    double count() const { return m_Count; }
    double operator[](qint64 index) const { return m_First + double(index) * m_Step; }

private:
    double m_Step;
    double m_First;
    double m_Count;
};

QLineF gridLine(const QRectF& rect, Qt::Orientation orientation, double at)
{
    return orientation == Qt::Vertical ? QLineF(at, rect.top(), at, rect.bottom())
                                       : QLineF(rect.left(), at, rect.right(), at);
}

void drawLineByLine(
    QPainter* painter, const QRectF& rect, const GridLines& columns, const GridLines& rows)
{
    QVector<QLineF> lines;
    // Deliberate: the product, not the sum. Bounded, because far out it would be gigabytes.
    lines.reserve(int(qMin(columns.count() * rows.count(), kLargestReserve)));
    for (qint64 i = 0; double(i) < columns.count(); ++i)
        lines.append(gridLine(rect, Qt::Vertical, columns[i]));
    for (qint64 i = 0; double(i) < rows.count(); ++i)
        lines.append(gridLine(rect, Qt::Horizontal, rows[i]));
    painter->drawLines(lines);
}

/// Premultiplied colours, with the rounding of Qt's raster engine.
QRgb blended(QRgb top, QRgb under)
{
    const uint rest = 255u - uint(qAlpha(top));
    const auto scaled = [rest](uint pair) {
        const uint product = (pair & 0xff00ffu) * rest;
        return ((product + ((product >> 8) & 0xff00ffu) + 0x800080u) >> 8) & 0xff00ffu;
    };
    return top + (scaled(under) | scaled(under >> 8) << 8);
}

QRgb* pixelRow(QImage& image, int y)
{
    return reinterpret_cast<QRgb*>(image.scanLine(y));
}

/// Whether all pixel rows across the vertical lines are alike, and all columns across the
/// horizontal ones, so that one of each tells the whole grid.
bool isUniform(const QPainter* painter, const QRectF& rect)
{
    const QTransform& device = painter->deviceTransform();
    const QRectF area = device.mapRect(rect);
    return painter->paintEngine()->type() == QPaintEngine::Raster
        && device.type() <= QTransform::TxScale && device.m11() > 0.0 && device.m22() > 0.0
        && area.width() + std::abs(area.left()) < kFarthestPixel
        && area.height() + std::abs(area.top()) < kFarthestPixel
        && painter->pen().style() == Qt::SolidLine
        && painter->pen().brush().style() == Qt::SolidPattern;
}

/// Draws the strips of pixels across the lines of one direction. Each is an image of one row, also
/// across horizontal lines, where it runs downwards.
class GridStrip
{
public:
    /// pixels is the scene rectangle in device pixels, and the strip is taken from its middle.
    GridStrip(const QPainter* painter, const QRectF& rect, const QRect& pixels,
        Qt::Orientation orientation);

    /// Where many lines fall into one pixel it is only one pixel, to be repeated.
    QImage draw(const GridLines& lines) const;

private:
    QImage drawDense(double step) const;
    QImage drawOneByOne(const QVector<double>& lines, int length) const;
    QImage stamp(const QVector<double>& lines, int length) const;
    bool hasThinLines() const;

    const QPainter* m_Painter;
    QRectF m_Rect;
    bool m_IsRow; ///< across vertical lines
    int m_Length; ///< device pixels
    QTransform m_ToStrip; ///< from scene coordinates to device pixels of the strip
    double m_Scale; ///< along the strip
    double m_Offset;
};

GridStrip::GridStrip(
    const QPainter* painter, const QRectF& rect, const QRect& pixels, Qt::Orientation orientation)
    : m_Painter(painter)
    , m_Rect(rect)
    , m_IsRow(orientation == Qt::Vertical)
    , m_Length(m_IsRow ? pixels.width() : pixels.height())
{
    const QPoint origin = m_IsRow ? QPoint(pixels.left(), pixels.center().y())
                                  : QPoint(pixels.center().x(), pixels.top());
    m_ToStrip = painter->deviceTransform() * QTransform::fromTranslate(-origin.x(), -origin.y());
    // The lines cross the whole strip, also where less than its breadth is exposed.
    const QSizeF breadth(kStripBreadth / m_ToStrip.m11(), kStripBreadth / m_ToStrip.m22());
    m_Rect.adjust(-breadth.width(), -breadth.height(), breadth.width(), breadth.height());
    m_Scale = m_IsRow ? m_ToStrip.m11() : m_ToStrip.m22();
    m_Offset = m_IsRow ? m_ToStrip.dx() : m_ToStrip.dy();
}

QImage GridStrip::draw(const GridLines& lines) const
{
    if (lines.step() * m_Scale < kDenseSpacing)
        return drawDense(lines.step());
    QVector<double> places;
    places.reserve(int(qMin(lines.count(), kLargestReserve)));
    for (qint64 i = 0; double(i) < lines.count(); ++i)
        places.append(lines[i]);
    return places.size() > kPhases && hasThinLines() ? stamp(places, m_Length)
                                                     : drawOneByOne(places, m_Length);
}

/// All pixels are nearly alike. Their mean does not depend on where the exposed area begins, which would
/// show wherever only a part is painted.
QImage GridStrip::drawDense(double step) const
{
    QVector<double> places;
    for (double at = -kDenseTile; at < 2.0 * kDenseTile; at += step * m_Scale)
        places.append((at - m_Offset) / m_Scale);
    const QImage tile = drawOneByOne(places, kDenseTile);
    int sum[4] = {};
    for (int i = 0; i < kDenseTile; ++i) {
        const QRgb pixel = reinterpret_cast<const QRgb*>(tile.constScanLine(0))[i];
        for (int channel = 0; channel < 4; ++channel)
            sum[channel] += int(pixel >> (8 * channel) & 0xffu);
    }
    QImage mean(1, 1, QImage::Format_ARGB32_Premultiplied);
    mean.fill(
        qRgba(sum[2] / kDenseTile, sum[1] / kDenseTile, sum[0] / kDenseTile, sum[3] / kDenseTile));
    return mean;
}

QImage GridStrip::drawOneByOne(const QVector<double>& lines, int length) const
{
    QVector<QLineF> drawn;
    drawn.reserve(lines.size());
    for (double at : lines)
        drawn.append(gridLine(m_Rect, m_IsRow ? Qt::Vertical : Qt::Horizontal, at));
    QImage strip(m_IsRow ? length : kStripBreadth, m_IsRow ? 1 : length,
        QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::transparent);
    QPainter painter(&strip);
    painter.setRenderHints(m_Painter->renderHints());
    painter.setPen(m_Painter->pen());
    painter.setTransform(m_ToStrip);
    painter.drawLines(drawn);
    painter.end();
    if (m_IsRow)
        return strip;
    QImage row(length, 1, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < length; ++y)
        pixelRow(row, 0)[y] = pixelRow(strip, y)[kStripBreadth / 2];
    return row;
}

/// A thin line leaves the same pixels wherever it has the same place within its pixel. So one line
/// is drawn for each such place, and its pixels are blended in for all the others.
QImage GridStrip::stamp(const QVector<double>& lines, int length) const
{
    QVector<double> samples;
    for (int phase = 0; phase < kPhases; ++phase) {
        const double at = phase * kStampPitch + 2 + (phase + 0.5) / kPhases;
        samples.append((at - m_Offset) / m_Scale);
    }
    QImage stamps = drawOneByOne(samples, kPhases * kStampPitch);
    QImage strip(length, 1, QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::transparent);
    const QRgb* const allTouched = pixelRow(stamps, 0) + 1;
    QRgb* const pixels = pixelRow(strip, 0);
    for (double at : lines) {
        const int place = int((at * m_Scale + m_Offset) * kPhases); // towards 0, as Qt rounds it
        const int phase = place & (kPhases - 1);
        const int first = (place - phase) / kPhases - 1;
        const QRgb* const touched = allTouched + qptrdiff(phase) * kStampPitch;
        for (int i = qMax(0, -first); i < 3 && first + i < length; ++i) {
            if (touched[i] != 0)
                pixels[first + i] = blended(touched[i], pixels[first + i]);
        }
    }
    return strip;
}

/// At most one device pixel wide, and antialiased: otherwise the place of a line is rounded in
/// other ways.
bool GridStrip::hasThinLines() const
{
    const QPen pen = m_Painter->pen();
    const double scale = pen.isCosmetic() ? 1.0 : qMax(m_ToStrip.m11(), m_ToStrip.m22());
    return pen.widthF() * scale <= 1.0 && m_Painter->testRenderHint(QPainter::Antialiasing);
}

} // namespace

bool OrvNgGrid::Frame::operator==(const Frame& other) const
{
    return m_ToDevice == other.m_ToDevice && m_Exposed == other.m_Exposed
        && m_Pixels == other.m_Pixels && m_Cell == other.m_Cell && m_Pen == other.m_Pen
        && m_Background == other.m_Background && m_Hints == other.m_Hints;
}

void OrvNgGrid::paint(QPainter* painter, const QRectF& exposed, const QSize& cell, const QPen& pen,
    const QBrush& background)
{
    const double levelOfDetail
        = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
    if (!(levelOfDetail > kHiddenLevelOfDetail)) {
        painter->fillRect(exposed, background);
        return;
    }
    const QSize spacing = cell.expandedTo(QSize(1, 1));
    const GridLines columns(exposed.left(), exposed.right(), spacing.width());
    const GridLines rows(exposed.top(), exposed.bottom(), spacing.height());
    painter->setPen(pen);
    const bool hasLines = columns.count() + rows.count() < kMostLines;
    if (!hasLines || !isUniform(painter, exposed)) {
        painter->fillRect(exposed, background);
        if (hasLines)
            drawLineByLine(painter, exposed, columns, rows);
        return;
    }
    const bool isOpaque = background.style() == Qt::SolidPattern && background.isOpaque();
    if (!isOpaque)
        painter->fillRect(exposed, background);
    const QTransform toDevice = painter->deviceTransform();
    const QRect pixels = toDevice.mapRect(exposed).toAlignedRect();
    if (pixels.isEmpty())
        return;
    const Frame frame{toDevice, exposed, pixels, spacing, pen,
        isOpaque ? background.color() : QColor(), painter->renderHints()};
    if (!(frame == m_Kept)) {
        m_Kept = frame;
        makeRows(GridStrip(painter, exposed, pixels, Qt::Vertical).draw(columns),
            GridStrip(painter, exposed, pixels, Qt::Horizontal).draw(rows), pixels.size());
    }
    paintKept(painter, pixels);
}

/// The first row is the one that no horizontal line touches.
void OrvNgGrid::makeRows(const QImage& across, const QImage& down, const QSize& pixels)
{
    const QVector<QRgb> colors = assignRows(down, pixels.height());
    reserveRows(QSize(pixels.width(), colors.size()));
    QPainter painter(&m_Rows);
    const QRect first(0, 0, pixels.width(), 1);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(
        first, m_Kept.m_Background.isValid() ? m_Kept.m_Background : QColor(Qt::transparent));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.fillRect(first, QBrush(across));
    for (int i = 1; i < colors.size(); ++i) {
        std::memcpy(m_Rows.scanLine(i), m_Rows.constScanLine(0), size_t(m_Rows.bytesPerLine()));
        painter.fillRect(first.translated(0, i), QColor::fromRgba(qUnpremultiply(colors[i])));
    }
}

/// Returns the premultiplied colours of the different rows, and notes where each is.
QVector<QRgb> OrvNgGrid::assignRows(const QImage& down, int height)
{
    const QRgb* const strip = reinterpret_cast<const QRgb*>(down.constScanLine(0));
    QVector<QRgb> colors{0};
    QHash<QRgb, int> rowOf{{0, 0}};
    m_RowAt.resize(height);
    for (int y = 0; y < height; ++y) {
        const QRgb color = strip[y % down.width()];
        auto row = rowOf.find(color);
        if (row == rowOf.end()) {
            row = rowOf.insert(color, colors.size());
            colors.append(color);
        }
        m_RowAt[y] = *row;
    }
    return colors;
}

/// Keeps the memory, because fresh memory is slow.
void OrvNgGrid::reserveRows(const QSize& pixels)
{
    const QImage::Format format = m_Kept.m_Background.isValid()
        ? QImage::Format_RGB32
        : QImage::Format_ARGB32_Premultiplied;
    if (m_Rows.format() == format && m_Rows.width() == pixels.width()
        && m_Rows.height() >= pixels.height())
        return;
    m_Rows = QImage(pixels + QSize(0, kRowsReserve), format);
    const int height = qMax(1, kSlabBytes / m_Rows.bytesPerLine());
    m_Slab = QImage(pixels.width(), height, format);
}

/// pixels is the exposed area in device pixels.
void OrvNgGrid::paintKept(QPainter* painter, const QRect& pixels)
{
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
    painter->setWorldTransform(QTransform());
    painter->setWorldTransform(painter->deviceTransform().inverted()); // to device pixels
    const int step = m_Slab.height();
    for (int top = 0; top < pixels.height(); top += step) {
        const int height = qMin(step, pixels.height() - top);
        const int* const rows = m_RowAt.constData() + top;
        if (top == 0 || !std::equal(rows, rows + height, rows - step)) {
            for (int y = 0; y < height; ++y)
                std::memcpy(m_Slab.scanLine(y), m_Rows.constScanLine(rows[y]),
                    size_t(m_Slab.bytesPerLine()));
        }
        painter->drawImage(
            pixels.topLeft() + QPoint(0, top), m_Slab, QRect(0, 0, pixels.width(), height));
    }
    painter->restore();
}
