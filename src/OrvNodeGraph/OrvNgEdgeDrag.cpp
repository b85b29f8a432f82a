// The part of OrvNgEdge that the user's mouse drives: picking an end up, carrying it, dropping it, and the
// changes of connections that follow.

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgEdgeDrop.h"
#include "OrvNodeGraph/OrvNgEdgeEnds.h"
#include "OrvNodeGraph/OrvNgEdgePens.h"
#include "OrvNodeGraph/OrvNgEdgeWiring.h"
#include "OrvNodeGraph/OrvNgPlantedFault.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QAction>
#include <QGraphicsEllipseItem>
#include <QGraphicsPathItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QMenu>

#include <cmath>

namespace {

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgEdge";

constexpr float kPickedShareOfPath = 0.2F;

constexpr char kInputName[] = "inputName";
constexpr char kOutputPointName[] = "outputPointName";
constexpr char kNode[] = "nodeUnderThis";

void reportText(int line, const char* format, const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    orvNgReport(kFile, line, QString::asprintf(format, bytes.constData()));
}

QAction* addChoice(
    QMenu& menu, const QString& text, const char* property, const QString& point, OrvNgNode* node)
{
    QAction* action = menu.addAction(text);
    action->setProperty(property, point);
    action->setProperty(kNode, QVariant::fromValue(node));
    action->setCheckable(true);
    return action;
}

} // namespace

// Picking an end

OrvNgEdge::LooseEnd OrvNgEdge::endAt(const QPointF& pos)
{
    if (!isFullConnected() || isDragging() || !mainEdge() || !boundingRect().contains(pos))
        return LooseEnd::None;
    QPointF sourceEnd = m_StraightLine.p1();
    QPointF destEnd = m_Arrow->pos();
    if (isConnectedToInputPort() || isConnectedToOutputPort()) {
        sourceEnd = mapFromScene(m_SourceNode->outputPortSourcePos(m_SourceOutputPoint));
        destEnd = mapFromScene(m_DestNode->inputPortDestPos(m_Text));
    }
    const float radius = std::max(float(OrvNgStyle::instance().getEdgeClickRadius()),
        kPickedShareOfPath * float(m_Line->path().length()));
    const double toSource = QLineF(pos, sourceEnd).length();
    const double toDest = QLineF(pos, destEnd).length();
    // On a very short edge the arrow lies nearer to the other end than to its own tip.
    const bool onArrow = m_Arrow->shape().contains(m_Arrow->mapFromParent(pos));
    const bool isSource = toSource < toDest && !onArrow;
    if ((isSource ? toSource : toDest) >= double(radius) || !shape().contains(pos))
        return LooseEnd::None;
    return isSource ? LooseEnd::Source : LooseEnd::Dest;
}

OrvNgNode* OrvNgEdge::getClosestNodeToMouseClick(const QPointF& pos)
{
    switch (endAt(pos)) {
    case LooseEnd::Source:
        return m_SourceNode;
    case LooseEnd::Dest:
        return m_DestNode;
    case LooseEnd::None:
        break;
    }
    return nullptr;
}

void OrvNgEdge::highlightEdgeBasedOnClosestNode(const QPointF& pos)
{
    if (isReconnectable() && getClosestNodeToMouseClick(pos))
        applyPen(pens().hover());
    else
        setEdgeColor();
}

// Nothing is told to the host from the two: deleting an item while the scene hands hover events out is not
// safe.

void OrvNgEdge::hoverEnterEvent(QGraphicsSceneHoverEvent* event)
{
    highlightEdgeBasedOnClosestNode(event->pos());
    QGraphicsItem::hoverEnterEvent(event);
}

void OrvNgEdge::hoverLeaveEvent(QGraphicsSceneHoverEvent* event)
{
    if (isReconnectable())
        setEdgeColor();
    QGraphicsItem::hoverLeaveEvent(event);
}

// Carrying an end

OrvNgEdge::Drag& OrvNgEdge::startDrag()
{
    if (!m_Drag) {
        m_Drag = std::make_unique<Drag>();
        m_Drag->m_WasConnected = m_SourceNode && m_HomeNode;
        // At once: an edge that hid for a moment, while it has no source, would lose the mouse.
        setFlag(FlagDragging, true);
    }
    return *m_Drag;
}

/// Takes the source end off its node without telling anybody: the drop decides whether that stands.
void OrvNgEdge::liftSource()
{
    Drag& drag = startDrag();
    drag.m_IsLifted = true;
    drag.m_LiftedSource = m_SourceNode;
    drag.m_LiftedPoint = m_SourceOutputPoint;
    setSourceNode(nullptr, QString());
}

void OrvNgEdge::detachFromDestNode()
{
    if (!m_DestNode)
        return;
    startDrag();
    m_DestNode.clear();
    invalidateAdjustment();
}

void OrvNgEdge::grabEdge(const QPointF& pos, bool fromPort, bool isOutput)
{
    if (m_IsDestroyed)
        return;
    startDrag();
    setZValue(kCarriedZ);
    m_Grabbed = isOutput;
    m_GrabbedFromPort = fromPort;
    m_LoosePoint = mapToScene(pos);
    invalidateAdjustment();
    adjust();
}

void OrvNgEdge::followMouse(const QPointF& scenePos)
{
    if (std::isfinite(scenePos.x()) && std::isfinite(scenePos.y()))
        m_LoosePoint = scenePos;
    adjust();
}

/// Ends the drag with everything as it was before. True when the connection was lost meanwhile, because the
/// source node died: the host has yet to be told.
bool OrvNgEdge::comeHome()
{
    const std::unique_ptr<Drag> drag = std::move(m_Drag);
    setFlag(FlagDragging, false);
    setZValue(kZ);
    m_Grabbed = false;
    m_GrabbedFromPort = false;
    if (!m_DestNode)
        m_DestNode = m_HomeNode;
    invalidateAdjustment();
    if (drag && drag->m_IsLifted && drag->m_LiftedSource)
        setSourceNode(drag->m_LiftedSource, drag->m_LiftedPoint);
    adjust(); // also when the source takes no edges any more, because it is about to die
    setEdgeColor();
    return drag && drag->m_WasConnected && !m_SourceNode;
}

void OrvNgEdge::tellFreed()
{
    if (m_DestNode)
        m_DestNode->notifyInputSourceChange(nullptr, QString(), QString(m_Text));
}

void OrvNgEdge::removeIfTemporary()
{
    if (m_SourceNode && m_SourceNode->temporaryOutputEdge() == this)
        m_SourceNode->removeTemporaryOutputEdge();
}

// Dropping it

void OrvNgEdge::releaseMouse(const QPoint& globalPos, const QPointF& scenePos, bool cancelled)
{
    if (!m_Drag || m_Drag->m_IsReleasing)
        return;
    m_Drag->m_IsReleasing = true;
    const QPointer<OrvNgEdge> self(this);
    const bool fromPort = m_GrabbedFromPort;
    DropResult result = DropResult::Refused;
    if (!cancelled && scene()) {
        followMouse(scenePos);
        result = checkAndCreateNewConnectionFromEdgeToNode(itemsAtLooseEnd(), globalPos, scenePos);
    }
    // The menu of a drop and the host's slots run before this line.
    const bool isGone = !self && !OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::ThisAfterSlot);
    if (isGone || m_IsDestroyed || m_IsDying)
        return;
    if (m_Drag) {
        const bool isLost = comeHome();
        if (isLost)
            tellFreed();
        else if (result == DropResult::NoTarget && !fromPort)
            detachFromSourceNode();
    }
    if (self)
        removeIfTemporary();
}

QList<QGraphicsItem*> OrvNgEdge::itemsAtLooseEnd() const
{
    const QGraphicsItem* end = m_Arrow;
    if (looseEnd() == LooseEnd::Source)
        end = m_GrabCircle;
    return end ? end->collidingItems(Qt::IntersectsItemShape) : QList<QGraphicsItem*>();
}

OrvNgEdge::DropResult OrvNgEdge::checkAndCreateNewConnectionFromEdgeToNode(
    const QList<QGraphicsItem*>& items, const QPoint& globalPos, const QPointF& scenePos)
{
    using namespace OrvNgEdgeDrop;
    const bool isSourceLoose = looseEnd() == LooseEnd::Source;
    const Target target = find(items, scenePos, isSourceLoose ? Side::Output : Side::Input);
    if (!target.m_Node)
        return DropResult::NoTarget;
    return isSourceLoose ? dropSource(target.m_Node, target.m_Point, globalPos)
                         : dropDest(target.m_Node, target.m_Point, globalPos);
}

OrvNgEdge::DropResult OrvNgEdge::dropDest(
    OrvNgNode* node, const QString& input, const QPoint& globalPos)
{
    if (!m_SourceNode)
        return DropResult::NoTarget; // it died on the way
    if (node == m_SourceNode)
        return DropResult::Refused;
    if (!input.isNull())
        return settleOn(LooseEnd::Dest, node, input);

    const QStringList open = OrvNgEdgeDrop::openInputs(node);
    QStringList accepted;
    for (const QString& name : open) {
        if (node->input(name) == this
            || node->acceptsInputSource(m_SourceNode, m_SourceOutputPoint, name))
            accepted.append(name);
    }
    if (accepted.isEmpty() && !open.isEmpty()) {
        node->notifyInputSourceRefused(m_SourceNode, QString(m_SourceOutputPoint),
            open.size() == 1 ? open.constFirst() : QString());
        return DropResult::Refused; // the edge may be gone
    }
    return choose(LooseEnd::Dest, node, accepted, globalPos);
}

OrvNgEdge::DropResult OrvNgEdge::dropSource(
    OrvNgNode* node, const QString& output, const QPoint& globalPos)
{
    if (node == m_DestNode)
        return DropResult::Refused;
    if (!output.isNull())
        return settleOn(LooseEnd::Source, node, output);

    const QStringList outputs = node->sortedOutputPoints();
    if (outputs.isEmpty()) {
        OrvNgEdgeWiring::reportNoOutput();
        return DropResult::Refused;
    }
    QStringList accepted;
    for (const QString& name : outputs) {
        if (m_DestNode->acceptsInputSource(node, name, m_Text))
            accepted.append(name);
    }
    if (accepted.isEmpty()) {
        m_DestNode->notifyInputSourceRefused(node, outputs.constFirst(), QString(m_Text));
        return DropResult::Refused; // the edge may be gone
    }
    return choose(LooseEnd::Source, node, accepted, globalPos);
}

/// One point is taken at once; of several the user chooses. Nothing has changed before.
OrvNgEdge::DropResult OrvNgEdge::choose(
    LooseEnd end, OrvNgNode* node, const QStringList& points, const QPoint& globalPos)
{
    if (points.isEmpty())
        return DropResult::Refused;
    if (points.size() == 1)
        return settleOn(end, node, points.constFirst());

    const bool isDest = end == LooseEnd::Dest;
    QMenu menu;
    for (const QString& point : points) {
        const QString text
            = isDest ? node->inputPointPrettyName(point) : node->outputPointPrettyName(point);
        // A dot's points are without a label, but an entry needs one.
        QAction* action = addChoice(menu, text.isEmpty() ? point : text,
            isDest ? kInputName : kOutputPointName, point, node);
        action->setChecked(isDest ? OrvNgEdgeWiring::isSameConnection(*this, *node->input(point))
                                  : isPresentSource(node, point));
    }
    connect(&menu, &QMenu::triggered, this,
        isDest ? &OrvNgEdge::onInputPointSelected : &OrvNgEdge::onOutputPointSelected);
    // It offers nothing any more once one of them is gone.
    connect(this, &QObject::destroyed, &menu, &QWidget::close);
    connect(node, &QObject::destroyed, &menu, &QWidget::close);
    const QPointer<OrvNgEdge> self(this);
    m_Drag->m_MenuNode = node;
    menu.exec(globalPos);
    return self && m_Drag ? DropResult::Refused : DropResult::Connected;
}

bool OrvNgEdge::isPresentSource(const OrvNgNode* node, const QString& output) const
{
    if (m_Drag && m_Drag->m_IsLifted)
        return m_Drag->m_LiftedSource == node && m_Drag->m_LiftedPoint == output;
    return m_SourceNode == node && m_SourceOutputPoint == output;
}

void OrvNgEdge::onInputPointSelected(QAction* action)
{
    takeChoice(LooseEnd::Dest, action, kInputName);
}

void OrvNgEdge::onOutputPointSelected(QAction* action)
{
    takeChoice(LooseEnd::Source, action, kOutputPointName);
}

/// The node of an action may have died while the menu was open: only the guarded one is believed.
void OrvNgEdge::takeChoice(LooseEnd end, const QAction* action, const char* property)
{
    if (!action || !m_Drag || !m_Drag->m_MenuNode || m_Drag->m_MenuNode->isBeingDeleted())
        return;
    OrvNgNode* node = m_Drag->m_MenuNode;
    const QString point = action->property(property).toString();
    if (action->property(kNode).value<OrvNgNode*>() == node && !point.isNull())
        settleOn(end, node, point);
}

/// The end of a drag on a point of a node: first everything is put back, then the connection is made from
/// rest, so that no slot of the host sees a half state.
OrvNgEdge::DropResult OrvNgEdge::settleOn(LooseEnd end, OrvNgNode* node, const QString& point)
{
    using namespace OrvNgEdgeWiring;
    const QPointer<OrvNgEdge> self(this);
    const bool isLost = comeHome();
    const Result result = end == LooseEnd::Dest ? connectDest(*this, node, point)
                                                : connectSource(*this, node, point);
    if (result == Result::Connected)
        return DropResult::Connected;
    if (self && isLost)
        tellFreed();
    return DropResult::Refused;
}

// What the user does to connections

void OrvNgEdge::setNewSourceNodeToEdge(OrvNgNode* node, const QString& outputPointName)
{
    settleOn(LooseEnd::Source, node, outputPointName);
}

void OrvNgEdge::setNewDestNodeToEdge(OrvNgNode* node, const QString& inputName)
{
    settleOn(LooseEnd::Dest, node, inputName);
}

void OrvNgEdge::insertNodeIntoEdge(OrvNgNode* node, OrvNgEdge* freeInput)
{
    OrvNgEdgeWiring::insertNode(*this, node, freeInput);
}

// Events

void OrvNgEdge::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (isDragging() && m_GrabbedFromPort) {
        release(event, event->button() != Qt::LeftButton);
        return;
    }
    if (event->button() != Qt::LeftButton || !isVisible() || !isFullConnected()) {
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    if (!isReconnectable()) {
        OrvNgEdgeWiring::reportLocked(m_Text);
        return; // accepted: nothing below the edge reacts to the press
    }
    switch (endAt(event->pos())) {
    case LooseEnd::Dest:
        reportText(__LINE__, "[ -- ] * Detaching at dest input point '%s'", m_Text);
        detachFromDestNode();
        break;
    case LooseEnd::Source:
        reportText(__LINE__, "[ -- ] * Detaching at source output point '%s'", m_SourceOutputPoint);
        liftSource();
        break;
    case LooseEnd::None:
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    grabEdge(event->pos(), false, false);
}

void OrvNgEdge::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    if (!isDragging()) {
        QGraphicsItem::mouseMoveEvent(event);
        return;
    }
    followMouse(event->scenePos());
    if (m_Drag && m_GrabbedFromPort && event->buttons() == Qt::LeftButton
        && !OrvNgEdgeEnds::isOnPortOf(
            m_Grabbed ? m_SourceNode : m_DestNode, this, event->scenePos()))
        m_Drag->m_LeftPort = true;
}

void OrvNgEdge::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (isDragging() && m_GrabbedFromPort)
        return; // the end stays on the cursor until the next press
    if (isDragging() && event->button() == Qt::LeftButton) {
        release(event, false);
        return;
    }
    QGraphicsItem::mouseReleaseEvent(event);
}

void OrvNgEdge::release(const QGraphicsSceneMouseEvent* event, bool cancelled)
{
    const QPointer<OrvNgEdge> self(this);
    releaseMouse(event->screenPos(), event->scenePos(), cancelled);
    if (self)
        giveUpMouse();
}

/// Whoever takes the mouse away, a hidden view or another item, ends the drag with nothing changed. Later: the
/// scene still counts this edge among its grabbers, and could not stand its being hidden or deleted.
bool OrvNgEdge::sceneEvent(QEvent* event)
{
    if (event->type() == QEvent::UngrabMouse && isDragging()) {
        QMetaObject::invokeMethod(
            this, [this] { cancelIfAbandoned(); }, Qt::QueuedConnection);
    }
    return QGraphicsItem::sceneEvent(event);
}

void OrvNgEdge::cancelIfAbandoned()
{
    if (isDragging() && !(scene() && scene()->mouseGrabberItem() == this))
        releaseMouse(QPoint(), m_LoosePoint, true);
}
