#include "OrvNodeGraph/OrvNgDotNode.h"

#include "OrvNodeGraph/OrvNgNodeBrush.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsPixmapItem>
#include <QPen>
#include <QPixmap>
#include <QScopedValueRollback>

#include <cmath>

namespace {

constexpr double kInset = 3.0; // of the selection disc and of an icon, from the disc's edge
constexpr double kOutlineWidth = 1.0;
constexpr int kHoverLightness = 170; // percent
const QLatin1String kInput("Input");
const QLatin1String kOutput("Output");

// Nothing at all for a disc that has no room for an inner one.
QRectF innerRect(const QRectF& bounds)
{
    const QRectF inner = bounds.adjusted(kInset, kInset, -kInset, -kInset);
    return inner.isValid() ? inner : QRectF(bounds.center(), QSizeF(0.0, 0.0));
}

} // namespace

OrvNgDotNode::OrvNgDotNode(QGraphicsItem* parent)
    : OrvNgNode(parent)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    setShapeType(ShapeCapsule); // round, so that the rings of selection and hovering are too

    m_Disc = new QGraphicsEllipseItem(this);
    m_Disc->setPen(QPen(QBrush(style.getNodeOutlineBrush().color()), kOutlineWidth, Qt::SolidLine,
        Qt::SquareCap, Qt::BevelJoin));
    m_SelectionDisc = new QGraphicsEllipseItem(this);
    m_SelectionDisc->setBrush(style.getSelectedNodeBrush());
    m_SelectionDisc->setPen(Qt::NoPen);
    setInsertionProbe(m_Disc);

    resizeDisc(qMax(1, style.getDotNodeSize()));
}

OrvNgDotNode::~OrvNgDotNode()
{
    aboutToBeDestroyed();
}

void OrvNgDotNode::resizeDisc(double diameter)
{
    prepareGeometryChange();
    m_Disc->setRect(0.0, 0.0, diameter, diameter);
    m_DiscBounds = m_Disc->boundingRect();
    m_SelectionDisc->setRect(innerRect(m_DiscBounds));
    OrvNgDotNode::setCorrectColor(); // its gradient spans the disc
    reAdjustEdges();
}

QRectF OrvNgDotNode::boundingRect() const
{
    return m_DiscBounds;
}

// Identity and state

void OrvNgDotNode::setText(const QString& text)
{
    setObjectName(text);
}

QString OrvNgDotNode::text()
{
    return objectName();
}

void OrvNgDotNode::setLocked(bool locked)
{
    showState(StateLocked, locked);
}

void OrvNgDotNode::setBypassed(bool bypassed)
{
    showState(StateBypassed, bypassed);
}

void OrvNgDotNode::setCached(bool cached)
{
    showState(StateCached, cached);
}

QBrush OrvNgDotNode::nodeUniColour()
{
    return nodeBrush();
}

QString OrvNgDotNode::inputPointPrettyName(const QString& name)
{
    return name == kInput ? QString() : OrvNgNode::inputPointPrettyName(name);
}

QString OrvNgDotNode::outputPointPrettyName(const QString& name)
{
    return name == kOutput ? QString() : OrvNgNode::outputPointPrettyName(name);
}

// Look

void OrvNgDotNode::setCorrectColor()
{
    OrvNgNodeBrush::State state; // a dot does not show the others
    state.m_Override = isDebug();
    state.m_OverrideColor = debugColor();
    state.m_Bypassed = hasState(StateBypassed);
    state.m_Cached = hasState(StateCached);
    state.m_NodeColor = nodeColor();
    state.m_NodeColor2 = nodeColor2();
    setNodeBrush(OrvNgNodeBrush::resolve(state, boundingRect()));
    m_Disc->setBrush(nodeBrush());
    m_SelectionDisc->setVisible(isSelected());
}

void OrvNgDotNode::setPixmap(const QPixmap& pixmap, const QPoint& offset)
{
    if (pixmap.isNull())
        return;
    const auto width = static_cast<float>(pixmap.width());
    const auto height = static_cast<float>(pixmap.height());
    const auto diagonal = static_cast<double>(std::sqrt(width * width + height * height));
    resizeDisc(diagonal + 2.0 * kInset);

    // Deliberate: the icon of an earlier call stays, below the new one.
    m_Icon = new QGraphicsPixmapItem(pixmap, this);
    m_Icon->setTransformationMode(Qt::SmoothTransformation);
    m_Icon->setPos((diagonal - pixmap.width()) / 2.0 + kInset + offset.x(),
        (diagonal - pixmap.height()) / 2.0 + kInset + offset.y());
}

void OrvNgDotNode::drawShape(QPainter* painter)
{
    // The disc is the body: a second one below it would soften its edge.
    if (hovered())
        OrvNgNode::drawShape(painter);
}

QColor OrvNgDotNode::hoveredOutlineColor()
{
    // The body's own colour would hardly show around the dark outline.
    return OrvNgNode::hoveredOutlineColor().lighter(kHoverLightness);
}

// Selection

QVariant OrvNgDotNode::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedChange) {
        tellParentSelected(value.toBool());
        setCorrectColor();
    } else if (change == ItemSelectedHasChanged) {
        setCorrectColor(); // only now does isSelected() tell the new state
    }
    return OrvNgNode::itemChange(change, value);
}

void OrvNgDotNode::tellParentSelected(bool selected)
{
    auto* model = qobject_cast<OrvSerializableObject*>(parent());
    if (!model || m_InParentSelection)
        return;
    // The host's object may select this node in turn.
    const QScopedValueRollback<bool> guard(m_InParentSelection, true);
    model->setSelected(selected);
}
