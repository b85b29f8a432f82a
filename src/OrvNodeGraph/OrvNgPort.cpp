#include "OrvNodeGraph/OrvNgPort.h"

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextCache.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QPen>
#include <QStyleOptionGraphicsItem>

#include <algorithm>
#include <cmath>

struct OrvNgPort::Colors
{
    QColor m_Port;
    QColor m_NoConnection;
    QColor m_Clustered;
    QColor m_ClusteredNoConnection;
    QColor m_Highlight;
    float m_LodThreshold;

    bool operator==(const Colors& other) const
    {
        return m_Port == other.m_Port && m_NoConnection == other.m_NoConnection
            && m_Clustered == other.m_Clustered
            && m_ClusteredNoConnection == other.m_ClusteredNoConnection
            && m_Highlight == other.m_Highlight
            && qFuzzyCompare(m_LodThreshold, other.m_LodThreshold);
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

OrvNgPort::OrvNgPort(OrvNgExtendedNode* node, const QString& /*text*/, const QString& name,
    bool boldText, Birth birth)
    : m_Colors(currentColors())
    , m_OriginalPortName(name)
    , m_Node(node)
    , m_Stacked(birth == Birth::HiddenInNode)
{
    if (boldText)
        m_Font = boldFont();
    if (m_Stacked) {
        QGraphicsWidget::setVisible(false);
        setMaximumHeight(0.0);
        setAttribute(Qt::WA_Resized); // else the base class sizes the port each time it is shown
    }
    setAcceptHoverEvents(true);
    setFlag(ItemUsesExtendedStyleOption, false); // paint() needs no exposed rectangle
    // Last: outside a scene none of the above has anybody to tell.
    setParentItem(node);
}

/// Of a widget that is deleted within a scene, the framework passes its place at the head of the scene's focus chain
/// on to the next widget in the chain, even to one that has left the scene and whose deletion the scene then misses.
OrvNgPort::~OrvNgPort()
{
    if (scene())
        scene()->removeItem(this);
}

/// The style's colours of this moment, shared with the ports made before while they are the same.
std::shared_ptr<const OrvNgPort::Colors> OrvNgPort::currentColors()
{
    static std::weak_ptr<const Colors> s_Latest;
    const OrvNgStyle& style = OrvNgStyle::instance();
    const Colors colors{style.getPortColor(), style.getPortNoConnectionColor(),
        style.getClusteredPortColor(), style.getClusteredPortNoConnectionColor(),
        style.getPortHighlightColor(), style.getSceneLODSwitchThreshold()};
    std::shared_ptr<const Colors> shared = s_Latest.lock();
    if (!shared || !(*shared == colors)) {
        shared = std::make_shared<const Colors>(colors);
        s_Latest = shared;
    }
    return shared;
}

void OrvNgPort::setText(const QString& text)
{
    m_Text = text;
    const OrvNgTextCache::Entry& entry = OrvNgTextCache::find(text, m_Font);
    m_TextSize = entry.lineSize();
    m_TextWidth = entry.drawnWidth();
    if (isShown())
        prepareGeometryChange();
    m_BoundsRect
        = QRectF(0.0, 0.0, m_TextSize.width() + kPortWidth, qMax(kPortHeight, m_TextSize.height()));
    applySizeRule();
    update();
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
    if (visible == isShown())
        return;
    // Within a node that holds its parts the scene knows no bounds of a port. A scene without views would
    // take the announcement of empty bounds for a change of everything. But while somebody hears of the scene's
    // changes, only the node can tell where a hidden port was.
    if (!parentItem() || !parentItem()->flags().testFlag(ItemContainsChildrenInShape))
        prepareGeometryChange();
    else if (!visible)
        parentItem()->update(mapRectToParent(m_BoundsRect));
    QGraphicsWidget::setVisible(visible);
    applySizeRule(); // within a hidden node no change of the item is told
}

/// The base class repaints itself when the window becomes active and when it ceases to be, which a port does
/// not show.
bool OrvNgPort::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate)
        return true;
    return QGraphicsWidget::event(event);
}

QVariant OrvNgPort::itemChange(GraphicsItemChange change, const QVariant& value)
{
    // Whoever shows or hides the port as a plain item gets the room right as well.
    if (change == ItemVisibleHasChanged)
        applySizeRule();
    return QGraphicsWidget::itemChange(change, value);
}

void OrvNgPort::applySizeRule()
{
    const QSizeF room = isShown() ? m_BoundsRect.size() : QSizeF();
    if (room == m_Room)
        return;
    m_Room = room;
    setMinimumSize(room);
    setMaximumHeight(qMax(0.0, room.height()));
    if (m_Stacked && m_Node)
        m_Node->portRoomChanged();
}

/// The base class would resize the port at every change of its limits; its node does so once, when it
/// places it.
void OrvNgPort::updateGeometry()
{
    if (m_Stacked)
        QGraphicsLayoutItem::updateGeometry();
    else
        QGraphicsWidget::updateGeometry();
}

OrvNgExtendedNode* OrvNgPort::node() const
{
    return m_Node;
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
    drawText(painter);
}

void OrvNgPort::drawText(QPainter* painter) const
{
    const double levelOfDetail
        = QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter->worldTransform());
    if (m_Text.isEmpty() || levelOfDetail <= double(m_Colors->m_LodThreshold))
        return;
    painter->setPen(QPen(OrvNgStyle::instance().getPortTextBrush(), 0.0));
    OrvNgTextCache::find(m_Text, m_Font).draw(painter, textPos());
}
