#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <OrvCoreModules/OrvSvgManager.h>

#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QSvgRenderer>

namespace {

double levelOfDetail(const QTransform& transform)
{
    return QStyleOptionGraphicsItem::levelOfDetailFromTransform(transform);
}

/// The view that an event of one of its widgets comes from; null when it is no view's.
const QGraphicsView* viewOf(const QWidget* widget)
{
    const auto* view = qobject_cast<const QGraphicsView*>(widget);
    if (!view && widget)
        view = qobject_cast<const QGraphicsView*>(widget->parentWidget());
    return view;
}

} // namespace

OrvNgNodeHeaderButton::OrvNgNodeHeaderButton(OrvNgExtendedNode* node)
    : QGraphicsItem(node)
    , m_Node(node)
    , m_LodThreshold(OrvNgStyle::instance().getSceneLODSwitchThreshold())
{
}

void OrvNgNodeHeaderButton::setSide(double side)
{
    if (side == m_Side)
        return;
    prepareGeometryChange();
    m_Side = side;
}

bool OrvNgNodeHeaderButton::isDrawnAt(double levelOfDetail) const
{
    return levelOfDetail > static_cast<double>(m_LodThreshold);
}

void OrvNgNodeHeaderButton::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (!m_Node || !isDrawnAt(levelOfDetail(painter->worldTransform())))
        return;
    lightenHeaderEnd(painter);
    drawModeIcon(painter);
}

void OrvNgNodeHeaderButton::lightenHeaderEnd(QPainter* painter) const
{
    const QRectF rect = boundingRect();
    painter->save();
    painter->setClipRect(rect.adjusted(-0.5, -0.5, 0.5, 0.5), Qt::IntersectClip);
    painter->setCompositionMode(QPainter::CompositionMode_Plus);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(35, 35, 35, 255));
    // The node's own outline, begun outside the clip, so that only its right end shows.
    OrvNgNode::drawNodeShape(painter, rect.adjusted(-rect.width(), 0.0, 0.0, 0.0),
        m_Node->shapeType(), m_Node->category());
    painter->restore();
}

void OrvNgNodeHeaderButton::drawModeIcon(QPainter* painter) const
{
    const QString name = iconName();
    if (name.isEmpty())
        return;
    if (QSvgRenderer* renderer = OrvSvgManager::instance()->renderer(name))
        renderer->render(painter, boundingRect().translated(iconOffset(), 0.0));
}

QString OrvNgNodeHeaderButton::iconName() const
{
    switch (m_Node->portListMode()) {
    case OrvNgExtendedNode::PORT_LIST_EXPANDED:
        return QStringLiteral("NodeExpanded");
    case OrvNgExtendedNode::PORT_LIST_GROUPED:
        return QStringLiteral("NodeStreamCollapsed");
    case OrvNgExtendedNode::PORT_LIST_ONLY_CONNECTED:
        return QStringLiteral("NodeOnlyConnected");
    case OrvNgExtendedNode::PORT_LIST_COLLAPSED:
        return QStringLiteral("NodeFullyCollapsed");
    case OrvNgExtendedNode::PORT_LIST_T2B:
        break;
    }
    return QString();
}

/// Outlines whose right end slants leave less room there: the icon moves in.
double OrvNgNodeHeaderButton::iconOffset() const
{
    switch (m_Node->resolvedShapeType()) {
    case OrvNgNode::ShapeHexagon:
    case OrvNgNode::ShapeRoundedHexagon:
        return -0.05 * m_Side;
    case OrvNgNode::ShapeFunnel:
    case OrvNgNode::ShapeTrapezoid:
        return -0.1 * m_Side;
    default:
        return 0.0;
    }
}

void OrvNgNodeHeaderButton::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    const QGraphicsView* view = viewOf(event->widget());
    if (!m_Node || (view && !isDrawnAt(levelOfDetail(view->transform())))) {
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    event->accept();
    m_Node->notifyNodePortListModeChanged(m_Node->nextPortListMode());
    // The host may have deleted the node, and this button with it: nothing may follow.
}
