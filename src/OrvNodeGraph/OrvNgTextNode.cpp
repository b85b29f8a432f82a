#include "OrvNodeGraph/OrvNgTextNode.h"

#include "OrvNodeGraph/OrvNgFrameRect.h"
#include "OrvNodeGraph/OrvNgModelSelection.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsSimpleTextItem>

namespace {

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgTextNode";
constexpr double kTextMargin = 6.0; // scene units, both sides together

QRectF markerRect()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const float width = style.getAutoInsertItemWidth();
    const float height = style.getAutoInsertItemHeight();
    return QRectF(int(-width / 2.0F), int(-height / 2.0F), int(width), int(height));
}

} // namespace

OrvNgTextNode::OrvNgTextNode(QGraphicsItem* parent)
    : OrvNgNode(parent)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    m_Text = new QGraphicsSimpleTextItem(tr("Text Node Test"), this);
    m_Text->setBrush(style.getNodeTextBrush());
    m_AutoInsertMarker = new QGraphicsEllipseItem(markerRect(), this);
    m_AutoInsertMarker->setVisible(false);
    setInsertionProbe(m_AutoInsertMarker);
    setRect(QRectF(0, 0, int(style.getMinimumNodeWidth()), int(style.getNodeHeight())));
    OrvNgTextNode::setCorrectColor();
}

OrvNgTextNode::~OrvNgTextNode()
{
    aboutToBeDestroyed();
}

void OrvNgTextNode::setText(const QString& text)
{
    setObjectName(text);
    m_Text->setText(text);
    positionText();
}

QString OrvNgTextNode::text()
{
    return m_Text->text();
}

void OrvNgTextNode::increaseSize(int factor)
{
    if (factor <= 0) {
        orvNgReport(kFile, __LINE__, QStringLiteral("[ !! ] Factor must be atleast 1"));
        return;
    }
    QRectF rect = m_Rect;
    rect.setWidth((factor + 1.0) * double(OrvNgStyle::instance().getMinimumNodeWidth()));
    setRect(rect);
}

void OrvNgTextNode::setRect(const QRectF& rect)
{
    if (!OrvNgFrameRect::isFinite(rect))
        return;
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QRectF wanted = OrvNgFrameRect::atLeast(
        rect, {double(style.getMinimumNodeWidth()), double(style.getNodeHeight())});
    const bool brushFits
        = wanted.topLeft() == m_Rect.topLeft() && wanted.bottomLeft() == m_Rect.bottomLeft();
    prepareGeometryChange();
    m_Rect = wanted;
    m_AutoInsertMarker->setPos(m_Rect.center());
    centerText();
    if (!brushFits)
        setNodeBrush(resolvedBrush());
    reAdjustEdges();
    notifySceneOfChange();
}

void OrvNgTextNode::centerText()
{
    m_Text->setPos(m_Rect.center() - m_Text->boundingRect().center());
}

void OrvNgTextNode::positionText()
{
    setRect(m_Text->boundingRect().adjusted(0.0, 0.0, kTextMargin, kTextMargin));
}

void OrvNgTextNode::setCorrectColor()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    setNodeBrush(resolvedBrush());
    m_Text->setBrush(
        hasState(StateBypassed) ? style.getBypassedNodeTextBrush() : style.getNodeTextBrush());
}

QVariant OrvNgTextNode::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedChange) {
        setCorrectColor();
        OrvNgModelSelection::tell(parent(), value.toBool(), m_IsTellingParent);
    }
    return OrvNgNode::itemChange(change, value);
}

void OrvNgTextNode::paint(
    QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    OrvNgNode::paint(painter, option, widget);
}
