#include "OrvNodeGraph/OrvNgPort.h"

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QFont>
#include <QFontMetrics>
#include <QGraphicsLayout>
#include <QGraphicsSceneResizeEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

struct OrvNgPort::Colors
{
    QColor m_Port;
    QColor m_NoConnection;
    QColor m_Clustered;
    QColor m_ClusteredNoConnection;
    QColor m_Highlight;

    bool operator==(const Colors& other) const
    {
        return m_Port == other.m_Port && m_NoConnection == other.m_NoConnection
            && m_Clustered == other.m_Clustered
            && m_ClusteredNoConnection == other.m_ClusteredNoConnection
            && m_Highlight == other.m_Highlight;
    }
};

namespace {

constexpr double kFarthest = 1e8; // item coordinates; beyond, edges would no longer be drawn

/// The application's font in bold. One object for all ports: fonts that share their data also share
/// the font engine that was looked up for them, and the lookup is what costs.
QFont boldFont()
{
    static QFont s_Regular;
    static QFont s_Bold;
    if (s_Bold.weight() != QFont::Bold || s_Regular != QFont()) {
        s_Regular = QFont();
        s_Bold = s_Regular;
        s_Bold.setWeight(QFont::Bold);
    }
    return s_Bold;
}

} // namespace

OrvNgPort::OrvNgPort(OrvNgExtendedNode* node, const QString&, const QString& name, bool boldText)
    : QGraphicsWidget(node)
    , m_Colors(currentColors())
    , m_OriginalPortName(name)
    , m_TextItem(new OrvNgLodTextItem(QString(), this))
    , m_Node(node)
{
    m_TextItem->setBrush(OrvNgStyle::instance().getPortTextBrush());
    if (boldText)
        m_TextItem->setFont(boldFont());
    setAcceptHoverEvents(true);
    setFlag(ItemUsesExtendedStyleOption, false); // paint() needs no exposed rectangle
}

/// The style's colours of this moment, shared with the ports made before while they are the same.
std::shared_ptr<const OrvNgPort::Colors> OrvNgPort::currentColors()
{
    static std::weak_ptr<const Colors> s_Latest;
    const OrvNgStyle& style = OrvNgStyle::instance();
    const Colors colors{style.getPortColor(), style.getPortNoConnectionColor(),
        style.getClusteredPortColor(), style.getClusteredPortNoConnectionColor(),
        style.getPortHighlightColor()};
    std::shared_ptr<const Colors> shared = s_Latest.lock();
    if (!shared || !(*shared == colors)) {
        shared = std::make_shared<const Colors>(colors);
        s_Latest = shared;
    }
    return shared;
}

void OrvNgPort::setText(const QString& text)
{
    m_TextItem->setText(text);
    m_TextSize = text.isEmpty() // an empty line would still be as high as its font
        ? QSizeF(0.0, 0.0)
        : QFontMetrics(m_TextItem->font()).size(Qt::TextSingleLine, text);
    prepareGeometryChange();
    m_BoundsRect
        = QRectF(0.0, 0.0, m_TextSize.width() + kPortWidth, qMax(kPortHeight, m_TextSize.height()));
    placeText();
    applySizeRule();
}

QString OrvNgPort::text() const
{
    return m_TextItem->text();
}

void OrvNgPort::setOriginalPortName(const QString& name)
{
    m_OriginalPortName = name;
    update();
}

void OrvNgPort::setClustered(bool clustered)
{
    m_Clustered = clustered;
    update();
}

void OrvNgPort::setMouseHovered(bool hovered)
{
    if (m_MouseHovered == hovered)
        return;
    m_MouseHovered = hovered;
    update();
}

void OrvNgPort::setSpecialPortColor(const QColor& color)
{
    m_SpecialPortColor = color;
    update();
}

void OrvNgPort::setVisible(bool visible)
{
    prepareGeometryChange();
    QGraphicsWidget::setVisible(visible);
    applySizeRule();
}

QVariant OrvNgPort::itemChange(GraphicsItemChange change, const QVariant& value)
{
    // Whoever shows or hides the port as a plain item gets the room right as well.
    if (change == ItemVisibleHasChanged)
        applySizeRule();
    return QGraphicsWidget::itemChange(change, value);
}

/// The layouts above learn nothing by themselves: Qt invalidates only the outermost one, and the
/// port list keeps its cached size.
void OrvNgPort::applySizeRule()
{
    const QSizeF room = isShown() ? m_BoundsRect.size() : QSizeF();
    if (room == m_Room)
        return;
    m_Room = room;
    setMinimumSize(room);
    setMaximumHeight(qMax(0.0, room.height()));
    QGraphicsLayoutItem* list = parentLayoutItem();
    if (!list || !list->isLayout())
        return;
    static_cast<QGraphicsLayout*>(list)->invalidate();
    if (m_Node)
        m_Node->portRoomChanged();
}

OrvNgExtendedNode* OrvNgPort::node() const
{
    return m_Node;
}

double OrvNgPort::textItemWidth() const
{
    return m_TextItem->boundingRect().width();
}

void OrvNgPort::placeText()
{
    m_TextItem->setPos(textPos());
}

void OrvNgPort::resizeEvent(QGraphicsSceneResizeEvent* event)
{
    QGraphicsWidget::resizeEvent(event);
    placeText();
}

void OrvNgPort::setGeometry(const QRectF& rect)
{
    const double farthest = std::max({std::abs(rect.left()), std::abs(rect.top()),
        std::abs(rect.right()), std::abs(rect.bottom())});
    if (!(farthest <= kFarthest)) // nor what is not a number
        return;
    // The base class announces a new size only for widgets at (0, 0).
    if (rect.size() != size())
        prepareGeometryChange();
    QGraphicsWidget::setGeometry(rect);
}

QRectF OrvNgPort::portRect()
{
    return QRectF(squarePos(), QSizeF(kPortWidth, kPortHeight));
}

QRectF OrvNgPort::portRectMappedToParent()
{
    return QRectF(mapToParent(squarePos()), QSizeF(kPortWidth, kPortHeight));
}

QRectF OrvNgPort::portRectMappedToScene()
{
    return QRectF(mapToScene(squarePos()), QSizeF(kPortWidth, kPortHeight));
}

QPointF OrvNgPort::portCenterPos()
{
    if (isShown() || !parentItem())
        return squarePos() + QPointF(kPortWidth * 0.5, kPortHeight * 0.5);
    return mapFromParent(parentItem()->boundingRect().center());
}

QRectF OrvNgPort::boundingRect() const
{
    return isShown() ? m_BoundsRect : QRectF();
}

QColor OrvNgPort::squareColor() const
{
    if (m_SpecialPortColor.isValid())
        return m_SpecialPortColor;
    if (isConnected())
        return m_Clustered ? m_Colors->m_Clustered : m_Colors->m_Port;
    return m_Clustered ? m_Colors->m_ClusteredNoConnection : m_Colors->m_NoConnection;
}

void OrvNgPort::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (!isShown())
        return;
    if (m_MouseHovered)
        painter->fillRect(rect(), m_Colors->m_Highlight);
    painter->fillRect(portRect(), squareColor());
}
