#include "OrvNodeGraph/OrvNgUINode.h"

#include "OrvNodeGraph/OrvNgFrameRect.h"
#include "OrvNodeGraph/OrvNgModelSelection.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextColor.h"

#include "OrvCore/OrvText.h"

#include <QGraphicsPolygonItem>
#include <QGraphicsTextItem>
#include <QPainter>
#include <QPen>

namespace {

constexpr int kMaxLabelLength = 0x10000;
constexpr double kCutCorner = 5.0; // scene units, along both sides
constexpr double kZValue = 1.0;
constexpr double kHoveredOutlineWidth = 3.0; // screen pixels; the box hides the inner half
constexpr double kSelectedOutlineWidth = 4.0;

QPolygonF boxOutline(double width, double height)
{
    return QPolygonF(
        {{width, 0.0}, {kCutCorner, 0.0}, {0.0, kCutCorner}, {0.0, height}, {width, height}});
}

} // namespace

OrvNgUINode::OrvNgUINode(QGraphicsItem* parent)
    : OrvNgNode(parent)
    , m_NodeBackgroundColour(OrvNgStyle::instance().getBackdropNodeBackgroundColor())
    , m_Label(QStringLiteral("C"))
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    m_Shape = new QGraphicsPolygonItem(this);
    m_Shape->setBrush(m_NodeBackgroundColour);
    m_Shape->setPen(QPen(style.getNodeOutlineBrush().color(), 1.0));

    m_Text = new QGraphicsTextItem(this);
    m_Text->setDefaultTextColor(style.getNodeTextBrush().color());
    m_Text->setPlainText(tr("This is a test comment"));
    // A text item takes drops and hover for its editor, which notes do not have.
    m_Text->setAcceptDrops(false);
    m_Text->setAcceptHoverEvents(false);
    m_Text->setAcceptedMouseButtons(Qt::NoButton);

    setNodeBrush(m_NodeBackgroundColour);
    setRect(QRectF(
        0, 0, int(style.getMinimumNodeWidth()), int(style.getMinimumStickyNoteNodeHeight())));
    setZValue(kZValue);
}

OrvNgUINode::~OrvNgUINode()
{
    aboutToBeDestroyed();
}

void OrvNgUINode::setNodeBackgroundColour(const QColor& Color)
{
    if (!Color.isValid())
        return;
    m_NodeBackgroundColour = Color;
    setNodeBrush(m_NodeBackgroundColour);
    paintBox(m_NodeBackgroundColour);
}

void OrvNgUINode::setLabel(const QString& Text)
{
    m_Label = Text.left(kMaxLabelLength);
    if (OrvIsHtmlText(m_Label)) {
        OrvReplaceConsecutiveSpacesWithNbsp(m_Label);
        m_Text->setHtml(m_Label);
    } else {
        m_Text->setPlainText(m_Label);
    }
    paintBox(m_Shape->brush());
    positionLabelText();
}

void OrvNgUINode::setRect(const QRectF& rect)
{
    if (!OrvNgFrameRect::isFinite(rect))
        return;
    const OrvNgStyle& style = OrvNgStyle::instance();
    prepareGeometryChange();
    m_Rect = OrvNgFrameRect::atLeast(rect,
        {double(style.getMinimumNodeWidth()), double(style.getMinimumStickyNoteNodeHeight())});
    m_Shape->setPolygon(boxOutline(m_Rect.width(), m_Rect.height()));
    centerText();
    reAdjustEdges();
    notifySceneOfChange();
}

void OrvNgUINode::centerText()
{
    m_Text->setPos(m_Rect.center() - m_Text->boundingRect().center());
}

void OrvNgUINode::positionLabelText()
{
    setRect(m_Text->boundingRect());
}

void OrvNgUINode::setSelectedBrush(bool selected)
{
    paintBox(
        selected ? OrvNgStyle::instance().getSelectedNodeBrush() : QBrush(m_NodeBackgroundColour));
}

/// Text that does not say its own colour stays readable on whatever the box is filled with.
void OrvNgUINode::paintBox(const QBrush& brush)
{
    m_Shape->setBrush(brush);
    m_Text->setDefaultTextColor(
        OrvNgTextColor::readable(OrvNgStyle::instance().getNodeTextBrush().color(), brush.color()));
}

void OrvNgUINode::setCorrectColor()
{
    m_Shape->setPen(QPen(OrvNgStyle::instance().getNodeOutlineBrush().color(), 1.0));
    setSelectedBrush(isSelected());
}

QVariant OrvNgUINode::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedChange) {
        OrvNgModelSelection::tell(parent(), value.toBool(), m_IsTellingParent);
        setSelectedBrush(value.toBool());
    }
    return OrvNgNode::itemChange(change, value);
}

// Painting: the box item draws itself, above these outlines; a filled body would show in its cut corner

void OrvNgUINode::drawSelectedOutline(QPainter* painter)
{
    if (!isSelected())
        return;
    painter->setPen(QPen(OrvNgStyle::instance().getSelectedNodeColor(),
        kSelectedOutlineWidth * outlineWidthScale()));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolygon(m_Shape->polygon());
}

void OrvNgUINode::drawShape(QPainter* painter)
{
    if (!hovered())
        return;
    painter->setPen(QPen(hoveredOutlineColor(), kHoveredOutlineWidth * outlineWidthScale()));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolygon(m_Shape->polygon());
}
