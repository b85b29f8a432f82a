// OrvNgNode under the mouse: selection, drags, snapping, and what a drag would insert the node into.

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgNodeInsertion.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>

#include <cmath>

namespace {

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgNode";

// Beyond this a scene rectangle no longer fits the integers of scroll bars and paint engines.
constexpr double kMaxCoordinate = 1e8;

// Snaps a coordinate so that it, moved by half the body's extent, lies on a grid line; halves go up.
double snapped(double value, int half, int gridStep)
{
    const qint64 step = qMax(gridStep, 1);
    const auto line = static_cast<qint64>(std::floor((half + value) / double(step) + 0.5));
    return double(line * step - half);
}

} // namespace

// Positions

void OrvNgNode::savePosition()
{
    m_PreviousPosition = scenePos();
}

QVariant OrvNgNode::positionChange(const QVariant& value)
{
    const QPointF wanted = value.toPointF();
    if (!std::isfinite(wanted.x()) || !std::isfinite(wanted.y()))
        return pos();
    const QPointF inReach(qBound(-kMaxCoordinate, wanted.x(), kMaxCoordinate),
        qBound(-kMaxCoordinate, wanted.y(), kMaxCoordinate));

    const OrvShaderNetworkManager* grid = OrvShaderNetworkManager::instance();
    if (!grid->snapToGrid())
        return inReach;
    const int halfWidth = int(nodeShapeRect().width() * 0.5);
    const int halfHeight = int(OrvNgStyle::instance().getNodeHeight() * 0.5F);
    return QPointF(snapped(inReach.x(), halfWidth, grid->gridWidth()),
        snapped(inReach.y(), halfHeight, grid->gridHeight()));
}

// Selection

OrvNgNode::OrvNgSelectMode OrvNgNode::resolveSelectionMode(
    const QFlags<Qt::KeyboardModifier>& modifiers)
{
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (shift && control)
        return SelectToggle;
    if (shift)
        return SelectAdd;
    return control ? SelectRemove : SelectReplace;
}

bool OrvNgNode::isSelectMousePressEvent(QGraphicsSceneMouseEvent* event) const
{
    return event->button() == Qt::LeftButton && flags().testFlag(ItemIsSelectable);
}

bool OrvNgNode::isSelectMouseReleaseEvent(QGraphicsSceneMouseEvent* event) const
{
    return isSelectMousePressEvent(event)
        && event->scenePos() == event->buttonDownScenePos(Qt::LeftButton);
}

// Every step may call the host, which may delete this node.
void OrvNgNode::pressSelects(OrvNgSelectMode mode)
{
    switch (mode) {
    case SelectToggle:
        setSelected(!isSelected());
        return;
    case SelectRemove:
        setSelected(false);
        return;
    case SelectReplace:
        if (!isSelected() && scene()) { // else a drag moves the whole selection
            const QPointer<OrvNgNode> self(this);
            scene()->clearSelection();
            if (!self)
                return;
        }
        break;
    case SelectAdd:
        break;
    }
    setSelected(true);
}

// Mouse

void OrvNgNode::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    startDrag();
    if (!isSelectMousePressEvent(event)) {
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    // The item's own press handling would select by other rules.
    event->accept();
    m_SelectionMode = resolveSelectionMode(event->modifiers());
    const QPointer<OrvNgNode> self(this);
    pressSelects(m_SelectionMode);
    if (self)
        m_MayDrag = isSelected();
}

void OrvNgNode::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        QGraphicsItem::mouseMoveEvent(event);
        return;
    }
    if (!m_MayDrag)
        return; // the item's own handling would move it, selected or not, and the others with it
    const QPointer<OrvNgNode> self(this);
    QGraphicsItem::mouseMoveEvent(event);
    if (self && m_LeftButtonHeld)
        highlightTargets();
}

// After the move: what is highlighted is what takes the node in where it stands now.
void OrvNgNode::highlightTargets()
{
    if (m_CanAutoInsert)
        highlightEdge(
            m_InsertionProbe ? OrvNgNodeInsertion::edgeUnder(*m_InsertionProbe, *this) : nullptr);
    highlightBackdrop(OrvNgNodeInsertion::backdropAround(*this));
}

void OrvNgNode::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_LeftButtonHeld = false;
        const QPointer<OrvNgNode> self(this);
        highlightBackdrop(nullptr);
        if (!self)
            return;
        if (isSelectMouseReleaseEvent(event)) {
            // The item's own handling ends the drag, but must not select by the click once more.
            QGraphicsSceneMouseEvent nothing(QEvent::GraphicsSceneMouseRelease);
            QGraphicsItem::mouseReleaseEvent(&nothing);
            event->accept();
            return;
        }
    }
    QGraphicsItem::mouseReleaseEvent(event);
}

bool OrvNgNode::sceneEvent(QEvent* event)
{
    // Somebody else takes the mouse in the middle of the drag: no release will come.
    if (event->type() == QEvent::UngrabMouse && m_LeftButtonHeld)
        cancelDrag();
    return QGraphicsItem::sceneEvent(event);
}

void OrvNgNode::startDrag()
{
    savePosition();
    highlightEdge(nullptr); // the host did not ask for the insertion after the last drag
    m_MayDrag = true;
    // An edge that was pulled out of this node by the same press may hold the mouse already.
    const QGraphicsItem* grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    m_LeftButtonHeld = !grabber || grabber == this;
    OrvNgEdge* freeInput = nullptr;
    m_CanAutoInsert = canBeInsertedIntoAnEdge(freeInput);
    m_FreeInputEdge = freeInput;
}

void OrvNgNode::cancelDrag()
{
    m_LeftButtonHeld = false;
    m_MayDrag = false; // until the next press, also if the mouse comes back
    m_CanAutoInsert = false;
    m_FreeInputEdge.clear();
    highlightEdge(nullptr);
    highlightBackdrop(nullptr);
}

// Insertion

void OrvNgNode::setInsertionProbe(QGraphicsItem* probe)
{
    if (probe && probe->parentItem() != this) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] The insertion probe has to be a child of the node"));
        return;
    }
    m_InsertionProbe = probe;
}

OrvNgEdge* OrvNgNode::highlightedEdge() const
{
    return m_HighlightedEdge;
}

void OrvNgNode::highlightEdge(OrvNgEdge* edge)
{
    if (m_HighlightedEdge && m_HighlightedEdge != edge)
        m_HighlightedEdge->unHightlightForNodeInsert();
    m_HighlightedEdge = edge;
    if (edge)
        edge->hightlightForNodeInsert(); // again for the same edge: hovering may have recoloured it
}

void OrvNgNode::highlightBackdrop(OrvNgNode* backdrop)
{
    if (m_HighlightedBackdrop == backdrop)
        return;
    const QPointer<OrvNgNode> next(backdrop);
    const QPointer<OrvNgNode> last(m_HighlightedBackdrop);
    m_HighlightedBackdrop = backdrop;
    if (last)
        last->unHightlightBackdropForNodeInsert();
    if (next)
        next->hightlightBackdropForNodeInsert();
}

bool OrvNgNode::canBeInsertedIntoAnEdge(OrvNgEdge*& freeInput)
{
    freeInput = nullptr;
    if (!isAutoInsertOn())
        return false;
    freeInput = getNextFreeInputEdgeOnNode();
    return freeInput && !m_Outputs.isEmpty();
}

void OrvNgNode::setupNodeForInsertionIntoEdge(OrvNgEdge* edge)
{
    OrvNgEdge* freeInput = nullptr;
    m_CanAutoInsert = canBeInsertedIntoAnEdge(freeInput);
    m_FreeInputEdge = freeInput;
    if (!m_CanAutoInsert || !edge)
        return;
    if (m_HighlightedEdge && m_HighlightedEdge != edge)
        m_HighlightedEdge->unHightlightForNodeInsert();
    m_HighlightedEdge = edge;
    if (!m_OutputPoints.isEmpty())
        insertThisNodeIntoHighlightedEdge();
}

void OrvNgNode::processAutoinsert()
{
    if (m_CanAutoInsert)
        insertThisNodeIntoHighlightedEdge();
}

void OrvNgNode::insertThisNodeIntoHighlightedEdge()
{
    // Cleared first: a host that asks again while it hears of the new connections finds nothing to do.
    const QPointer<OrvNgEdge> edge = m_HighlightedEdge;
    m_HighlightedEdge.clear();
    // What the press or the drag found may have changed until the host asks.
    OrvNgEdge* freeInput = inputForInsertion();
    if (edge && freeInput && edge->isFullConnected() && !containsEdge(edge))
        edge->insertNodeIntoEdge(this, freeInput);
    if (edge)
        edge->unHightlightForNodeInsert();
}

// The input that was free at the press, or one that is free now; null when all are taken.
OrvNgEdge* OrvNgNode::inputForInsertion()
{
    if (m_FreeInputEdge && m_Inputs.contains(m_FreeInputEdge) && !m_FreeInputEdge->sourceNode())
        return m_FreeInputEdge;
    return getNextFreeInputEdgeOnNode();
}
