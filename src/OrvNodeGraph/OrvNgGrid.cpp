#include "OrvNodeGraph/OrvNgGrid.h"

#include <QHash>
#include <QLineF>
#include <QPaintEngine>
#include <QStyleOptionGraphicsItem>

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
constexpr int kManyBands = 64; // from here on one picture is faster

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

/// Whether all pixel rows across the vertical lines are alike, and all columns across the
/// horizontal ones, so that one of each tells the whole grid.
bool isUniform(const QPainter* painter, const QRectF& rect)
{
    const QTransform device = painter->deviceTransform();
    const QRectF area = device.mapRect(rect);
    return painter->paintEngine()->type() == QPaintEngine::Raster
        && device.type() <= QTransform::TxScale && device.m11() > 0.0 && device.m22() > 0.0
        && area.width() + std::abs(area.left()) < kFarthestPixel
        && area.height() + std::abs(area.top()) < kFarthestPixel
        && painter->pen().style() == Qt::SolidLine
        && painter->pen().brush().style() == Qt::SolidPattern;
}

/// One row of pixels across the vertical lines, or one column across the horizontal ones, taken
/// from the middle of an area of device pixels. Where many lines fall into one pixel it is only the
/// first part, to be repeated.
QImage gridStrip(const QPainter* painter, const QRectF& rect, const QRect& pixels,
    Qt::Orientation orientation, const GridLines& lines)
{
    const bool isRow = orientation == Qt::Vertical;
    const QTransform device = painter->deviceTransform();
    const double scale = isRow ? device.m11() : device.m22();
    int length = isRow ? pixels.width() : pixels.height();
    if (lines.step() * scale < kDenseSpacing)
        length = qMin(length, kDenseTile);

    const double begin = isRow ? rect.left() : rect.top();
    const double end = begin + length / scale + painter->pen().widthF();
    QVector<QLineF> drawn;
    for (qint64 i = 0; double(i) < lines.count() && lines[i] < end; ++i)
        drawn.append(gridLine(rect, orientation, lines[i]));

    const QPoint origin = isRow ? QPoint(pixels.left(), pixels.center().y())
                                : QPoint(pixels.center().x(), pixels.top());
    QImage strip(
        isRow ? length : kStripBreadth, isRow ? 1 : length, QImage::Format_ARGB32_Premultiplied);
    strip.fill(Qt::transparent);
    QPainter stripPainter(&strip);
    stripPainter.setRenderHints(painter->renderHints());
    stripPainter.setPen(painter->pen());
    stripPainter.setTransform(device * QTransform::fromTranslate(-origin.x(), -origin.y()));
    stripPainter.drawLines(drawn);
    return strip;
}

} // namespace

bool OrvNgGrid::Frame::operator==(const Frame& other) const
{
    return m_ToDevice == other.m_ToDevice && qFuzzyCompare(m_PixelRatio, other.m_PixelRatio)
        && m_Exposed == other.m_Exposed && m_Cell == other.m_Cell && m_Pen == other.m_Pen
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
    const Frame frame{toDevice, toDevice.m11() / painter->worldTransform().m11(), exposed, spacing,
        pen, isOpaque ? background.color() : QColor(), painter->renderHints()};
    if (!(frame == m_Kept)) {
        m_Kept = frame;
        makeRow(gridStrip(painter, exposed, pixels, Qt::Vertical, columns), pixels.width());
        makeBands(gridStrip(painter, exposed, pixels, Qt::Horizontal, rows), pixels.height());
        makePicture(pixels.size());
    }
    paintKept(painter, pixels);
}

void OrvNgGrid::makeRow(const QImage& strip, int width)
{
    // In full, because a narrow tile is slow to repeat.
    const bool isOpaque = m_Kept.m_Background.isValid();
    QImage row(width, 1, isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    row.fill(isOpaque ? m_Kept.m_Background : QColor(Qt::transparent));
    QPainter(&row).fillRect(row.rect(), QBrush(strip));
    m_Row = QPixmap::fromImage(row);
    m_Row.setDevicePixelRatio(m_Kept.m_PixelRatio);
}

void OrvNgGrid::makeBands(const QImage& strip, int height)
{
    m_Bands.clear();
    const auto colorAt = [&](int y) { return strip.pixel(strip.width() / 2, y % strip.height()); };
    for (int y = 0, next = 0; y < height; y = next) {
        const QRgb color = colorAt(y);
        for (next = y + 1; next < height && colorAt(next) == color;)
            ++next;
        if (qAlpha(color) > 0)
            m_Bands.append({y, next - y, QColor::fromRgba(qUnpremultiply(color))});
    }
}

/// Pixel rows of one colour are blended once and then copied, into memory that is kept.
void OrvNgGrid::makePicture(const QSize& pixels)
{
    m_HasPicture = m_Bands.size() >= kManyBands && m_Kept.m_Background.isValid();
    if (!m_HasPicture)
        return;
    const QImage row = m_Row.toImage().convertToFormat(QImage::Format_RGB32);
    if (m_Picture.size() != pixels)
        m_Picture = QImage(pixels, QImage::Format_RGB32);
    const auto copyRow = [&](const uchar* from, int y) {
        std::memcpy(m_Picture.scanLine(y), from, size_t(pixels.width()) * sizeof(QRgb));
    };
    QHash<QRgb, QImage> blendedRows;
    int y = 0;
    for (const Band& band : qAsConst(m_Bands)) {
        for (; y < band.m_Top; ++y)
            copyRow(row.constBits(), y);
        QImage& blended = blendedRows[band.m_Color.rgba()];
        if (blended.isNull()) {
            blended = row;
            QPainter(&blended).fillRect(blended.rect(), band.m_Color);
        }
        for (; y < band.m_Top + band.m_Height; ++y)
            copyRow(blended.constBits(), y);
    }
    for (; y < pixels.height(); ++y)
        copyRow(row.constBits(), y);
    m_Picture.setDevicePixelRatio(m_Kept.m_PixelRatio);
}

/// pixels is the exposed area in device pixels.
void OrvNgGrid::paintKept(QPainter* painter, const QRect& pixels) const
{
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform, false);
    painter->setWorldTransform(QTransform());
    const QTransform fromPixels = painter->deviceTransform().inverted();
    if (!m_HasPicture) {
        painter->drawTiledPixmap(fromPixels.mapRect(QRectF(pixels)), m_Row);
        for (const Band& band : m_Bands) {
            const QRectF area(
                pixels.left(), pixels.top() + band.m_Top, pixels.width(), band.m_Height);
            painter->fillRect(fromPixels.mapRect(area), band.m_Color);
        }
    } else {
        painter->drawImage(fromPixels.map(QPointF(pixels.topLeft())), m_Picture);
    }
    painter->restore();
}
