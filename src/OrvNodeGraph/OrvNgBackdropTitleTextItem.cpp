#include "OrvNodeGraph/OrvNgBackdropTitleTextItem.h"

#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPen>
#include <QStyleOptionGraphicsItem>

namespace {

constexpr double kReadablePixels = 12.0; // font size on the screen that the text grows to
constexpr double kMaxGrowth = 2.8; // still above the first node that the frame was put around
constexpr int kMostCharacters = 4096; // of a line; measuring more takes noticeable time
constexpr int kLargestPixelSize = 1000; // font engines cannot take any
constexpr double kVisiblePixels = 3.0; // smaller than that is noise

} // namespace

OrvNgBackdropTitleTextItem::OrvNgBackdropTitleTextItem(QGraphicsItem* parent)
    : QGraphicsSimpleTextItem(parent)
{
    QFont titleFont = font();
    const int height = int(OrvNgStyle::instance().getBackdropNodeTitleTextHeight());
    titleFont.setPixelSize(qBound(1, height, kLargestPixelSize));
    titleFont.setWeight(QFont::DemiBold);
    titleFont.setHintingPreference(QFont::PreferNoHinting); // keeps its width at every zoom
    setFont(titleFont);
    measure();
}

void OrvNgBackdropTitleTextItem::setTitleText(const QString& text)
{
    prepareGeometryChange();
    setText(text);
    m_Line = text.left(kMostCharacters).simplified();
    measure();
}

void OrvNgBackdropTitleTextItem::setRoom(const QSizeF& room)
{
    if (room == m_Room)
        return;
    prepareGeometryChange();
    m_Room = room.expandedTo(QSizeF(0, 0));
    m_ShownGrowth = 0.0;
}

void OrvNgBackdropTitleTextItem::measure()
{
    const QFontMetricsF metrics(font());
    m_LineWidth = metrics.horizontalAdvance(m_Line);
    m_LineHeight = metrics.height();
    m_Ascent = metrics.ascent();
    m_ShownGrowth = 0.0;
    update();
}

double OrvNgBackdropTitleTextItem::growthAt(double levelOfDetail) const
{
    const double limit = qMax(1.0, qMin(kMaxGrowth, m_Room.height() / m_LineHeight));
    const double pixels = font().pixelSize() * levelOfDetail;
    return pixels * limit <= kReadablePixels ? limit : qMax(1.0, kReadablePixels / pixels);
}

QRectF OrvNgBackdropTitleTextItem::boundingRect() const
{
    return QRectF(0, 0, m_Room.width(), qMin(m_Room.height(), kMaxGrowth * m_LineHeight));
}

QRectF OrvNgBackdropTitleTextItem::textRect() const
{
    return QRectF(0, 0, qMin(m_LineWidth, m_Room.width()), qMin(m_LineHeight, m_Room.height()));
}

QPainterPath OrvNgBackdropTitleTextItem::shape() const
{
    QPainterPath path;
    path.addRect(textRect());
    return path;
}

bool OrvNgBackdropTitleTextItem::contains(const QPointF& point) const
{
    return textRect().contains(point);
}

void OrvNgBackdropTitleTextItem::fitTo(double growth)
{
    if (growth == m_ShownGrowth)
        return;
    m_ShownGrowth = growth;
    m_Shown = QFontMetricsF(font()).elidedText(m_Line, Qt::ElideRight, m_Room.width() / growth);
}

void OrvNgBackdropTitleTextItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    const double scale
        = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
    const double growth = growthAt(scale);
    if (font().pixelSize() * scale * growth < kVisiblePixels || m_Line.isEmpty())
        return;
    const auto* backdrop = dynamic_cast<const OrvNgBackdropNode*>(parentItem());
    if (backdrop && backdrop->isMinimapRendering())
        return;
    fitTo(growth);
    painter->save();
    painter->scale(growth, growth);
    painter->setFont(font());
    painter->setPen(brush().color());
    painter->drawText(QPointF(0.0, m_Ascent), m_Shown);
    painter->restore();
}
