#include "OrvNodeGraph/OrvNgFarPictures.h"

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgInputPort.h"
#include "OrvNodeGraph/OrvNgOutputPort.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>
#include <cstring>
#include <typeinfo>

namespace {

constexpr int kPhases = 4; // places within a pixel, in each direction
constexpr int kMargin
    = 4; // device pixels around a node's bounds: outlines of the selected and the hovered
constexpr int kSharedBy
    = 8; // nodes; below that painting a node is cheaper than making its pictures
constexpr double kWidestPicture = 2000.0; // device pixels
constexpr double kLargestNode = 100.0 * 1000.0; // pixels; its picture takes sixteen times as many
constexpr double kSmallestPort
    = 1.5; // device pixels; smaller ones vanish or swell when painted as they are
constexpr qint64 kMostPixels = qint64(4) * 1024 * 1024; // 16 MB, and as much again for the large ones

/// A quarter of the size in both directions, shifted right and down by so many of the large pixels. The
/// outermost pixels are empty anyway.
QImage reduce(const QImage& large, int shiftX, int shiftY)
{
    constexpr quint64 kEven
        = 0x00ff00ff00ff00ffULL; // two channels of two pixels, with room for sums
    QImage small(large.width() / kPhases, large.height() / kPhases, large.format());
    small.fill(Qt::transparent);
    for (int y = 1; y < small.height(); ++y) {
        auto* out = reinterpret_cast<quint32*>(small.scanLine(y));
        const uchar* in = large.constScanLine(y * kPhases - shiftY) - ptrdiff_t(shiftX) * 4;
        for (int x = 1; x < small.width(); ++x) {
            quint64 even = 0x0008000800000000ULL; // for rounding
            quint64 odd = even;
            for (int row = 0; row < kPhases; ++row) {
                quint64 pixels[2];
                std::memcpy(pixels,
                    in + ptrdiff_t(row) * large.bytesPerLine() + ptrdiff_t(x) * kPhases * 4, 16);
                even += (pixels[0] & kEven) + (pixels[1] & kEven);
                odd += ((pixels[0] >> 8) & kEven) + ((pixels[1] >> 8) & kEven);
            }
            const auto mean = [](quint64 sums) {
                return ((quint32(sums) + quint32(sums >> 32)) >> 4) & 0x00ff00ffU;
            };
            out[x] = mean(even) | (mean(odd) << 8);
        }
    }
    return small;
}

/// What is visible below a node that has a look is ports, and texts and buttons that do not show.
void paintPorts(
    QPainter* painter, const QGraphicsItem& parent, const QTransform& toView, QWidget* viewport)
{
    static const QStyleOptionGraphicsItem s_Option; // ports do not look at it
    const QList<QGraphicsItem*> children = parent.childItems();
    for (QGraphicsItem* child : children) {
        if (!child->isVisible())
            continue;
        const QPointF pos = child->pos();
        const QTransform childToView = QTransform::fromTranslate(pos.x(), pos.y()) * toView;
        if (typeid(*child) == typeid(OrvNgInputPort) || typeid(*child) == typeid(OrvNgOutputPort)) {
            painter->setWorldTransform(childToView);
            child->paint(painter, &s_Option, viewport);
        }
        paintPorts(painter, *child, childToView, viewport);
    }
}

} // namespace

void OrvNgFarPictures::begin(const Shot& shot)
{
    const double scaleX = shot.m_ToView.m11() * shot.m_PixelRatio;
    const double scaleY = shot.m_ToView.m22() * shot.m_PixelRatio;
    if (scaleX != m_ScaleX || scaleY != m_ScaleY || shot.m_PixelRatio != m_Shot.m_PixelRatio)
        clear();
    m_ScaleX = scaleX;
    m_ScaleY = scaleY;
    m_Shot = shot;
}

void OrvNgFarPictures::clear()
{
    m_IsShared.clear();
    m_Pictures.clear();
    m_Large.clear();
    m_Pixels = 0;
}

bool OrvNgFarPictures::isShared(const OrvNgExtendedNode& node, int look, int uses)
{
    const auto known = m_IsShared.constFind(look);
    if (known != m_IsShared.constEnd())
        return *known;
    const QRectF bounds = node.boundingRect();
    const bool isShared = (uses >= kSharedBy || OrvNgPort::kPortWidth * m_ScaleX < kSmallestPort)
        && bounds.width() * bounds.height() * m_ScaleX * m_ScaleY < kLargestNode;
    m_IsShared.insert(look, isShared);
    return isShared;
}

void OrvNgFarPictures::draw(QPainter* painter, OrvNgExtendedNode& node, int look, int uses,
    const QPointF& topLeft, double width)
{
    if (!isShared(node, look, uses) || width * m_ScaleX > kWidestPicture) {
        paintNode(painter, node, m_Shot.m_ToView.map(topLeft));
        return;
    }
    const double ratio = m_Shot.m_PixelRatio;
    const double left = topLeft.x() * m_ScaleX + m_Shot.m_ToView.dx() * ratio;
    const double top = topLeft.y() * m_ScaleY + m_Shot.m_ToView.dy() * ratio;
    const double stepX = std::floor(left * kPhases + 0.5);
    const double stepY = std::floor(top * kPhases + 0.5);
    const double pixelX = std::floor(stepX / kPhases);
    const double pixelY = std::floor(stepY / kPhases);
    const int phaseX = int(stepX - pixelX * kPhases);
    const int phaseY = int(stepY - pixelY * kPhases);
    const auto steps = quint64(std::lround(width * m_ScaleX * kPhases)) & 0xffffffU;
    const quint64 key = (quint64(look) << 32) | (steps << 8) | quint64(phaseX << 4 | phaseY);

    auto picture = m_Pictures.find(key);
    if (picture == m_Pictures.end()) {
        if (m_Pixels > kMostPixels) {
            m_Pictures.clear();
            m_Pixels = 0;
        }
        picture = m_Pictures.insert(key, make(node, key >> 8, phaseX, phaseY));
        m_Pixels += qint64(picture->width()) * picture->height();
    }
    painter->drawPixmap(QPointF((pixelX - kMargin) / ratio, (pixelY - kMargin) / ratio), *picture);
}

/// The node's picture at a place within a pixel, taken from one of four times the size: each pixel is the
/// mean of sixteen. Small parts keep their share of a pixel so, where painting at this size would round them
/// to whole pixels or to none.
QPixmap OrvNgFarPictures::make(OrvNgExtendedNode& node, quint64 key, int phaseX, int phaseY)
{
    if (const QImage* large = m_Large.object(key))
        return toPixmap(reduce(*large, phaseX, phaseY));
    auto* const painted = new QImage(paintLarge(node));
    const QImage reduced = reduce(*painted, phaseX, phaseY);
    m_Large.insert(key, painted, painted->width() * painted->height()); // may delete it
    return toPixmap(reduced);
}

QPixmap OrvNgFarPictures::toPixmap(const QImage& image) const
{
    QPixmap pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(m_Shot.m_PixelRatio);
    return pixmap;
}

QImage OrvNgFarPictures::paintLarge(OrvNgExtendedNode& node) const
{
    const QRectF bounds = node.boundingRect();
    const double ratio = m_Shot.m_PixelRatio;
    const int width = int(std::ceil(bounds.width() * m_ScaleX)) + 1 + 2 * kMargin;
    const int height = int(std::ceil(bounds.height() * m_ScaleY)) + 1 + 2 * kMargin;
    QImage image(width * kPhases, height * kPhases, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio * kPhases); // items see the scale of the view
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintNode(&painter, node, QPointF(kMargin, kMargin) / ratio);
    return image;
}

/// corner is that of the node's bounds, in the painter's coordinates.
void OrvNgFarPictures::paintNode(
    QPainter* painter, OrvNgExtendedNode& node, const QPointF& corner) const
{
    const QPointF origin = node.boundingRect().topLeft();
    const QTransform toView = QTransform::fromTranslate(-origin.x(), -origin.y())
        * QTransform::fromScale(m_ScaleX / m_Shot.m_PixelRatio, m_ScaleY / m_Shot.m_PixelRatio)
        * QTransform::fromTranslate(corner.x(), corner.y());
    QStyleOptionGraphicsItem option;
    option.exposedRect = node.boundingRect();
    painter->setWorldTransform(toView);
    node.paint(painter, &option, m_Shot.m_Viewport);
    paintPorts(painter, node, toView, m_Shot.m_Viewport);
    painter->resetTransform();
}
