// What the view does with the mouse while it does not navigate: selecting, hovering, carrying edges,
// cutting, shaking.
#include "OrvNodeGraph/OrvNgCursorPath.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgGuardedItem.h"
#include "OrvNodeGraph/OrvNgPlantedFault.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgRubberBand.h"
#include "OrvNodeGraph/OrvNgSelectionRule.h"
#include "OrvNodeGraph/OrvNgShakeDetector.h"
#include "OrvNodeGraph/OrvNgView.h"

#include "OrvCore/OrvUndoManager.h"
#include "OrvCoreModules/OrvGui.h"

#include <QGraphicsScene>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QSet>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr int kStretchLength = 8; // points of a path that are looked up at once
constexpr double kPathMargin = 5.0; // scene units, around the repainted path
constexpr QPointF kNowhere(1e9, 1e9); // scene coordinates no cursor is at

/// Where an item stands among selected ones: nodes by their id, then other items, then null.
int selectionRank(const QGraphicsItem* item)
{
    if (const auto* node = dynamic_cast<const OrvNgNode*>(item))
        return node->selectionId();
    return item ? std::numeric_limits<int>::max() - 1 : std::numeric_limits<int>::max();
}

QList<QPointF> finitePoints(QList<QPointF> points)
{
    const auto isBad = [](const QPointF& p) { return !qIsFinite(p.x()) || !qIsFinite(p.y()); };
    points.erase(std::remove_if(points.begin(), points.end(), isBad), points.end());
    return points;
}

template <typename Item> Item* firstOf(const QList<QGraphicsItem*>& items)
{
    for (QGraphicsItem* item : items) {
        if (auto* found = dynamic_cast<Item*>(item))
            return found;
    }
    return nullptr;
}

template <typename Item> QSet<Item*> toSet(const QList<Item*>& items)
{
    return QSet<Item*>(items.cbegin(), items.cend());
}

/// The band in scene coordinates, for asking one item after the other.
class BandArea
{
public:
    BandArea(const QPolygonF& polygon, bool isRectangle, Qt::ItemSelectionMode mode)
        : m_Polygon(polygon)
        , m_Rect(polygon.boundingRect())
        , m_ComparesRectangles(isRectangle && mode == Qt::IntersectsItemBoundingRect)
        , m_Mode(mode)
    {
    }

    const QPolygonF& polygon() const { return m_Polygon; }

    bool reaches(const QGraphicsItem* item) const
    {
        if (!item->isVisible())
            return false;
        if (m_ComparesRectangles && item->sceneTransform().type() <= QTransform::TxScale)
            return m_Rect.intersects(withArea(item->sceneBoundingRect()));
        QPainterPath path;
        path.addPolygon(m_Polygon);
        path.closeSubpath();
        return item->collidesWithPath(item->mapFromScene(path), m_Mode);
    }

private:
    /// Qt's rectangles without width or height intersect nothing.
    static QRectF withArea(const QRectF& rect)
    {
        constexpr double kThin = 1e-5;
        return rect.isEmpty() ? rect.adjusted(-kThin, -kThin, kThin, kThin) : rect;
    }

    QPolygonF m_Polygon;
    QRectF m_Rect;
    bool m_ComparesRectangles;
    Qt::ItemSelectionMode m_Mode;
};

/// Over an item with a cursor of its own the base class keeps the one from before, to bring it back later;
/// that would be the cursor of a mode that has ended. Entering its hand mode makes it forget.
void forgetStoredCursor(QGraphicsView& view)
{
    if (view.dragMode() != QGraphicsView::NoDrag)
        return;
    view.setDragMode(QGraphicsView::ScrollHandDrag);
    view.setDragMode(QGraphicsView::NoDrag);
}

} // namespace

// Selection lists

bool OrvNgView::OrvNgSelectionIdSorter(const QGraphicsItem* a, const QGraphicsItem* b)
{
    if (!a || !b)
        return a && !b;
    const auto* nodeA = dynamic_cast<const OrvNgNode*>(a);
    const auto* nodeB = dynamic_cast<const OrvNgNode*>(b);
    if (!nodeA || !nodeB)
        return nodeA && !nodeB;
    return nodeA->selectionId() < nodeB->selectionId();
}

/// By the order of OrvNgSelectionIdSorter(), but each item's type is asked for once only.
QList<QGraphicsItem*> OrvNgView::sortedBySelectionOrder(QList<QGraphicsItem*> items)
{
    QVector<std::pair<int, QGraphicsItem*>> ranked;
    ranked.reserve(items.size());
    for (QGraphicsItem* item : qAsConst(items))
        ranked.append({selectionRank(item), item});
    std::stable_sort(ranked.begin(), ranked.end(),
        [](const auto& a, const auto& b) { return a.first < b.first; });
    for (int i = 0; i < items.size(); ++i)
        items[i] = ranked.at(i).second;
    return items;
}

QList<QGraphicsItem*> OrvNgView::sortedSelection()
{
    return scene() ? sortedBySelectionOrder(scene()->selectedItems()) : QList<QGraphicsItem*>();
}

QList<QGraphicsItem*> OrvNgView::mergeItemLists(QList<QGraphicsItem*> a, QList<QGraphicsItem*> b)
{
    QSet<QGraphicsItem*> known = toSet(a);
    for (QGraphicsItem* item : qAsConst(b)) {
        const int before = known.size();
        known.insert(item);
        if (known.size() > before)
            a.append(item);
    }
    return a;
}

QList<QGraphicsItem*> OrvNgView::lastSelectionCombinedWith(QList<QGraphicsItem*> items)
{
    QList<QGraphicsItem*> last;
    for (const QGraphicsItem* key : qAsConst(m_OrderAtPress)) {
        if (QGraphicsItem* item = m_SelectionAtPress.value(key).in(scene()))
            last.append(item);
        else if (OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::RawSelectionAtPress))
            last.append(const_cast<QGraphicsItem*>(key));
    }
    return mergeItemLists(last, items);
}

// Press

void OrvNgView::mousePressEvent(QMouseEvent* event)
{
    press(event);
}

/// The second press of a quick pair arrives here, and must do what any other does.
void OrvNgView::mouseDoubleClickEvent(QMouseEvent* event)
{
    press(event);
}

void OrvNgView::press(QMouseEvent* event)
{
    noticeScene();
    if (pressStartsInMinimap(event))
        return;
    if (drawingEdgeSeverPath()) {
        pressWithRazor(event);
        return;
    }
    if (pressStartsNavigation(event))
        return;
    if (m_CursorTrackingMode == CURSOR_TRACKING_SEVER_EDGES) {
        pressWithRazor(event);
        return;
    }
    rememberSelection(event->modifiers());
    passPressToItems(event);
    if (!isInteractive() || isNavigating() || pressHoldsNode(event) || event->isAccepted())
        return;
    pressOnEmptySpace(event);
}

/// Not interactive, the view shows no reaction of the items while it cuts.
void OrvNgView::pressWithRazor(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_Path->append(mapToScene(event->pos()), m_Clock.elapsed());
    setInteractive(false);
    event->accept();
}

void OrvNgView::rememberSelection(Qt::KeyboardModifiers modifiers)
{
    m_SelectionMode = OrvNgNode::resolveSelectionMode(modifiers);
    m_SelectionAtPress.clear();
    m_OrderAtPress = sortedSelection();
    for (QGraphicsItem* item : qAsConst(m_OrderAtPress))
        m_SelectionAtPress.insert(item, OrvNgGuardedItem(item));
}

/// In the hand-drag mode the scene does not clear the selection: only a left press may.
void OrvNgView::passPressToItems(QMouseEvent* event)
{
    const DragMode before = dragMode();
    const auto restore = qScopeGuard([&] { setDragMode(before); });
    if (event->button() != Qt::LeftButton)
        setDragMode(QGraphicsView::ScrollHandDrag);
    const bool wasFree = scene() && !scene()->mouseGrabberItem();
    if (event->type() == QEvent::MouseButtonDblClick)
        QGraphicsView::mouseDoubleClickEvent(event);
    else
        QGraphicsView::mousePressEvent(event);
    if (wasFree)
        m_PressGaveMouse = scene() && scene()->mouseGrabberItem();
}

bool OrvNgView::pressHoldsNode(const QMouseEvent* event)
{
    QGraphicsItem* const grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    if (!dynamic_cast<OrvNgNode*>(grabber))
        return false;
    if (m_ShakeDetectionEnabled && m_CursorTrackingMode == CURSOR_TRACKING_NONE
        && event->button() == Qt::LeftButton) {
        setCursorTrackingMode(CURSOR_TRACKING_SHAKE);
        m_Path->append(mapToScene(event->pos()), m_Clock.elapsed());
    }
    return true;
}

void OrvNgView::pressOnEmptySpace(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    m_Band->arm(event->pos());
    if (m_SelectionMode == OrvNgNode::SelectReplace)
        return;
    // Qt has cleared the selection unless Control is held. A click beside the nodes must not lose
    // what the user is adding to.
    const QList<QGraphicsItem*> order = m_OrderAtPress;
    for (const QGraphicsItem* key : order) {
        QGraphicsItem* const item = m_SelectionAtPress.value(key).in(scene());
        if (item && !item->isSelected())
            item->setSelected(true);
    }
}

// Move

void OrvNgView::mouseMoveEvent(QMouseEvent* event)
{
    noticeScene();
    OrvGui::stealFocusGently(this);
    if (!scene())
        QGraphicsView::mouseMoveEvent(event);
    trackCursor(event->pos());
    if (moveDrawsSeverPath(event))
        return;
    detectShake();
    if (event->buttons() == Qt::NoButton) { // a release may have been lost
        cancelNavigation();
        cancelDragSelect();
        giveUpLostGrab();
    }
    followMinimapDrag(event->pos());
    followHover(event->pos());
    followZoomDrag(event);
    advanceWhileDragging(true);
    if (!moveDrawsBand(event))
        QGraphicsView::mouseMoveEvent(event);
}

void OrvNgView::trackCursor(const QPoint& viewPos)
{
    if (m_CursorTrackingMode != CURSOR_TRACKING_NONE && !m_Path->isEmpty())
        m_Path->follow(mapToScene(viewPos), m_Clock.elapsed());
}

/// Only the newest stretch of the path is looked up: the whole of a long path would take too long
/// at each move.
bool OrvNgView::moveDrawsSeverPath(QMouseEvent* event)
{
    if (isNavigating() || !drawingEdgeSeverPath())
        return false;
    markEdgesToSever(edgesCrossingPath(m_Path->newestStretch()));
    updateViewportRect(viewportCursorPathBounds(m_Path->corners(), kPathMargin));
    event->accept();
    return true;
}

void OrvNgView::detectShake()
{
    if (m_CursorTrackingMode != CURSOR_TRACKING_SHAKE || !OrvNgShakeDetector::isShaken(*m_Path))
        return;
    setCursorTrackingMode(CURSOR_TRACKING_NONE);
    Q_EMIT shakeToExtractTriggered();
}

/// The node comes last, because a slot of the host may delete anything when it is told. That is why
/// the node found is guarded, and why nothing else found is used afterwards.
void OrvNgView::followHover(const QPoint& viewPos)
{
    OrvNgNode* node = nullptr;
    OrvNgEdge* edge = nullptr;
    OrvNgPort* port = nullptr;
    if (!isNavigating() && !(m_MinimapShown && isInMinimap(viewPos)))
        itemsUnderPos(viewPos, &node, &edge, &port);
    hoverEdge(edge && edge->isFullConnected() ? edge : nullptr, mapToScene(viewPos));
    hoverPort(carriedEdge() ? port : nullptr);
    hoverNode(node);
}

void OrvNgView::hoverEdge(OrvNgEdge* edge, const QPointF& scenePos)
{
    // An edge lies at the scene's origin: its coordinates are the scene's.
    if (m_HighlightedEdge && m_HighlightedEdge != edge)
        m_HighlightedEdge->highlightEdgeBasedOnClosestNode(scenePos);
    m_HighlightedEdge = edge;
    if (edge)
        edge->highlightEdgeBasedOnClosestNode(scenePos);
}

void OrvNgView::hoverPort(OrvNgPort* port)
{
    if (m_HoveredPort == port)
        return;
    if (m_HoveredPort) {
        m_HoveredPort->setMouseHovered(false);
        m_HoveredPort->update();
    }
    m_HoveredPort = port;
    if (port)
        port->setMouseHovered(true);
}

void OrvNgView::hoverNode(OrvNgNode* node)
{
    if (m_HoveredNode == node)
        return;
    if (OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::RawHoveredNode)) {
        static OrvNgNode* s_Hovered = nullptr;
        if (OrvNgNode* former = std::exchange(s_Hovered, node))
            former->setHovered(false);
    }
    const QPointer<OrvNgNode> old = m_HoveredNode;
    m_HoveredNode = node;
    if (old)
        old->setHovered(false);
    if (m_HoveredNode && m_HoveredNode == node)
        node->setHovered(true);
}

void OrvNgView::clearHover()
{
    hoverEdge(nullptr, kNowhere);
    hoverPort(nullptr);
    hoverNode(nullptr);
}

/// What a press gave the mouse to and still holds it without a button has lost its release. An edge
/// that was pulled out of a port is carried without a button.
void OrvNgView::giveUpLostGrab()
{
    if (!std::exchange(m_PressGaveMouse, false))
        return;
    QGraphicsItem* const grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    const auto* edge = dynamic_cast<OrvNgEdge*>(grabber);
    if (dynamic_cast<OrvNgNode*>(grabber) || (edge && !edge->isGrabbedFromPort()))
        grabber->ungrabMouse();
}

// Rubber band

bool OrvNgView::moveDrawsBand(QMouseEvent* event)
{
    if (!m_Band->isArmed() || !scene())
        return m_Band->isActive();
    event->accept();
    if (!m_Band->activate(event->pos()))
        return false;
    const QRect before = m_Band->rect();
    if (!m_Band->follow(event->pos()))
        return true;
    const QRect now = m_Band->rect();
    selectByBand(before);
    updateViewportRect(before | now);
    return true;
}

/// First looks at all items, then changes those that differ: each change may make the host delete
/// others, end the band or take the scene away.
void OrvNgView::selectByBand(const QRect& before)
{
    const BandArea band(mapToScene(m_Band->rect()), isUnrotated(), rubberBandSelectionMode());
    const auto mode = static_cast<OrvNgNode::OrvNgSelectMode>(m_SelectionMode);
    QVector<std::pair<OrvNgGuardedItem, bool>> changes;
    const QList<QGraphicsItem*> candidates = itemsToJudge(before);
    for (QGraphicsItem* item : candidates) {
        const bool isInBand = band.reaches(item) && canBandSelect(item, band.polygon());
        const bool wasSelected = m_SelectionAtPress.value(item).in(scene()) == item;
        const bool isSelected = item->isSelected();
        if (!isInBand && !wasSelected && !isSelected)
            continue;
        const bool select = OrvNgSelectionRule::selects(mode, isInBand, wasSelected);
        if (select != isSelected)
            changes.append({OrvNgGuardedItem(item), select});
    }
    for (const auto& change : qAsConst(changes)) {
        QGraphicsItem* const item = change.first.in(scene());
        if (item && m_Band->isActive())
            item->setSelected(change.second);
    }
}

/// The items whose part in the selection the new rectangle may change: at first, and when the view has
/// scrolled or zoomed, all that are concerned; then only those at the strips that the band has won or
/// lost.
QList<QGraphicsItem*> OrvNgView::itemsToJudge(const QRect& before)
{
    const QTransform toViewport = viewportTransform();
    if (!before.isNull() && toViewport == m_BandTransform)
        return selectableItemsIn(QRegion(before).xored(m_Band->rect()));
    m_BandTransform = toViewport;
    return lastSelectionCombinedWith(
        mergeItemLists(selectableItemsIn(m_Band->rect()), scene()->selectedItems()));
}

/// Those whose bounds meet a part of the viewport, topmost first within each rectangle of the region.
QList<QGraphicsItem*> OrvNgView::selectableItemsIn(const QRegion& region)
{
    QList<QGraphicsItem*> selectable;
    for (const QRect& part : region) {
        const QPolygonF area = mapToScene(part);
        // Comparing rectangles is many times faster than comparing paths.
        const QList<QGraphicsItem*> found = isUnrotated()
            ? scene()->items(
                area.boundingRect(), Qt::IntersectsItemBoundingRect, Qt::DescendingOrder)
            : scene()->items(area, Qt::IntersectsItemBoundingRect, Qt::DescendingOrder);
        for (QGraphicsItem* item : found) {
            if (item->flags().testFlag(QGraphicsItem::ItemIsSelectable))
                selectable.append(item);
        }
    }
    return selectable;
}

bool OrvNgView::canBandSelect(QGraphicsItem*, const QPolygonF&) const
{
    return true;
}

void OrvNgView::cancelDragSelect()
{
    const bool wasActive = m_Band->isActive();
    const QRect rect = m_Band->rect();
    m_Band->clear();
    if (wasActive)
        updateViewportRect(rect);
}

// Release

void OrvNgView::mouseReleaseEvent(QMouseEvent* event)
{
    noticeScene();
    if (!scene()) {
        cancelNavigation();
        QGraphicsView::mouseReleaseEvent(event);
        return;
    }
    if (m_CursorTrackingMode == CURSOR_TRACKING_SHAKE)
        setCursorTrackingMode(CURSOR_TRACKING_NONE);
    if (releaseSeversEdges(event) || releaseEndsPan(event))
        return;
    endZoomDrag();
    endMinimapDrag();
    m_AutoScrollTimer.stop();
    passReleaseToItems(event);
}

bool OrvNgView::releaseSeversEdges(QMouseEvent* event)
{
    if (m_CursorTrackingMode == CURSOR_TRACKING_SEVER_EDGES && event->buttons() == Qt::NoButton)
        setInteractive(true);
    if (!drawingEdgeSeverPath() || event->button() != Qt::LeftButton)
        return false;
    const QList<QPointF> path = m_Path->points();
    clearTracking();
    severEdgesAlongPath(path);
    setInteractive(true);
    event->accept();
    return true;
}

/// An edge that was pulled out of a port stays on the cursor until the next click.
void OrvNgView::passReleaseToItems(QMouseEvent* event)
{
    const QPointer<OrvNgEdge> edge = carriedEdge();
    QGraphicsView::mouseReleaseEvent(event);
    m_SelectionMode = OrvNgNode::SelectReplace;
    cancelDragSelect();
    if (edge && edge->isGrabbedFromPort() && edge->isVisible() && scene()
        && edge->scene() == scene() && scene()->mouseGrabberItem() != edge)
        edge->grabMouse();
    if (!carriedEdge())
        hoverPort(nullptr); // no edge is left that the port could take
}

OrvNgEdge* OrvNgView::carriedEdge() const
{
    return scene() ? dynamic_cast<OrvNgEdge*>(scene()->mouseGrabberItem()) : nullptr;
}

/// For an edge out of a port, which waits for a click that will not come.
void OrvNgView::cancelCarriedEdge()
{
    const QPointer<OrvNgEdge> edge = carriedEdge();
    if (!edge || !edge->isGrabbedFromPort())
        return;
    edge->releaseMouse(QPoint(), QPointF(), true);
    if (edge && carriedEdge() == edge)
        edge->ungrabMouse();
}

// Edges on the cursor

void OrvNgView::pickUpEdge()
{
    pickUpEdge(mapFromGlobal(QCursor::pos()));
}

void OrvNgView::pickUpEdge(const QPoint& LocalPos)
{
    if (isNavigating() || !scene())
        return;
    QGraphicsItem* const grabber = scene()->mouseGrabberItem();
    if (!grabber) {
        auto* node = firstOf<OrvNgNode>(items(LocalPos));
        if (auto* extended = dynamic_cast<OrvNgExtendedNode*>(node))
            extended->grabEdgeForPortUnderPos(mapToScene(LocalPos));
        return;
    }
    const QPointer<OrvNgEdge> edge = dynamic_cast<OrvNgEdge*>(grabber);
    if (!edge || !edge->isGrabbedFromPort())
        return;
    edge->releaseMouse(mapToGlobal(LocalPos), mapToScene(LocalPos), false);
    if (edge && edge->scene() && edge->scene()->mouseGrabberItem() == edge)
        edge->ungrabMouse();
}

void OrvNgView::itemsUnderPos(
    const QPoint& pos, OrvNgNode** node, OrvNgEdge** edge, OrvNgPort** port)
{
    const auto look = [](auto** wanted, QGraphicsItem* item) {
        if (wanted && !*wanted)
            *wanted = dynamic_cast<std::remove_reference_t<decltype(**wanted)>*>(item);
        return !wanted || *wanted;
    };
    if (node)
        *node = nullptr;
    if (edge)
        *edge = nullptr;
    if (port)
        *port = nullptr;
    if (!node && !edge && !port)
        return;
    const QList<QGraphicsItem*> under = items(pos);
    for (QGraphicsItem* item : under) {
        const bool hasNode = look(node, item);
        const bool hasEdge = look(edge, item);
        const bool hasPort = look(port, item);
        if (hasNode && hasEdge && hasPort)
            return;
    }
}

void OrvNgView::setPosByViewportPos(QGraphicsItem* item, const QPoint& pos)
{
    if (!item) {
        orvNgReport("src/OrvNodeGraph/OrvNgView", 1425, QStringLiteral("item is NULL"));
        return;
    }
    item->setPos(item->mapToParent(item->mapFromScene(mapToScene(pos))));
}

// Cutting

bool OrvNgView::drawingEdgeSeverPath() const
{
    return m_CursorTrackingMode == CURSOR_TRACKING_SEVER_EDGES && !m_Path->isEmpty();
}

void OrvNgView::setCursorTrackingMode(OrvCursorTrackingMode Mode)
{
    if (Mode == m_CursorTrackingMode || Mode < CURSOR_TRACKING_NONE || Mode > CURSOR_TRACKING_SHAKE)
        return;
    // Also without a path: another button may be held, whose release then comes too late.
    const bool wasCutting = m_CursorTrackingMode == CURSOR_TRACKING_SEVER_EDGES;
    clearTracking();
    m_CursorTrackingMode = Mode;
    if (Mode == CURSOR_TRACKING_SEVER_EDGES)
        setCursor(m_RazorCursor);
    else
        unsetCursor();
    if (wasCutting || Mode == CURSOR_TRACKING_SEVER_EDGES)
        forgetStoredCursor(*this);
    if (wasCutting)
        setInteractive(true);
}

void OrvNgView::clearTracking()
{
    const QRect drawn = drawingEdgeSeverPath()
        ? viewportCursorPathBounds(m_Path->points(), kPathMargin)
        : QRect();
    m_Path->clear();
    const QList<QPointer<OrvNgEdge>> marked = std::exchange(m_EdgesToSever, {});
    for (const QPointer<OrvNgEdge>& edge : marked) {
        if (edge)
            edge->setSevered(false);
    }
    updateViewportRect(drawn);
}

void OrvNgView::markEdgesToSever(const QList<OrvNgEdge*>& edges)
{
    for (OrvNgEdge* edge : edges) {
        if (m_EdgesToSever.contains(edge))
            continue;
        edge->setSevered(true);
        m_EdgesToSever.append(edge);
    }
}

QPainterPath OrvNgView::cursorPainterPath(const QList<QPointF>& Path, bool InViewportSpace)
{
    const QPainterPath path = OrvNgCursorPath::polyline(finitePoints(Path));
    return InViewportSpace ? mapFromScene(path) : path;
}

QRectF OrvNgView::cursorPathBounds(const QList<QPointF>& Path, double Margin)
{
    return OrvNgCursorPath::bounds(finitePoints(Path), qIsFinite(Margin) ? Margin : 0.0);
}

QRect OrvNgView::viewportCursorPathBounds(const QList<QPointF>& Path, double Margin)
{
    const QRectF bounds = cursorPathBounds(Path, Margin);
    if (bounds.isNull())
        return QRect();
    return QRect(mapFromScene(bounds.topLeft()), mapFromScene(bounds.bottomRight()));
}

/// Looked up in short stretches, because what an item costs grows with the path it is compared with,
/// and the bounds of a long path hold a large part of the scene. Neighbouring stretches share a corner.
QList<OrvNgEdge*> OrvNgView::edgesCrossingPath(const QList<QPointF>& Path)
{
    const QList<QPointF> points = finitePoints(Path);
    if (!scene() || points.size() < 2)
        return {};
    QList<OrvNgEdge*> edges;
    int stretches = 0;
    for (int first = 0; first + 1 < points.size(); first += kStretchLength, ++stretches) {
        const QPainterPath outline
            = OrvNgCursorPath::outline(points.mid(first, kStretchLength + 2));
        const QList<QGraphicsItem*> crossed
            = scene()->items(outline, Qt::IntersectsItemShape, Qt::DescendingOrder);
        for (QGraphicsItem* item : crossed) {
            auto* edge = dynamic_cast<OrvNgEdge*>(item);
            if (edge && edge->isReconnectable())
                edges.append(edge);
        }
    }
    return stretches > 1 ? inStackingOrder(edges) : edges;
}

/// Without duplicates, topmost first.
QList<OrvNgEdge*> OrvNgView::inStackingOrder(const QList<OrvNgEdge*>& edges)
{
    const QSet<OrvNgEdge*> wanted = toSet(edges);
    QRectF area;
    for (const OrvNgEdge* edge : wanted)
        area |= edge->sceneBoundingRect();
    QList<OrvNgEdge*> ordered;
    const QList<QGraphicsItem*> stack
        = scene()->items(area, Qt::IntersectsItemBoundingRect, Qt::DescendingOrder);
    for (QGraphicsItem* item : stack) {
        auto* edge = dynamic_cast<OrvNgEdge*>(item);
        if (wanted.contains(edge))
            ordered.append(edge);
    }
    return ordered;
}

/// The host hears of each freed input at once, and may delete edges that are still to come.
void OrvNgView::severEdgesAlongPath(const QList<QPointF>& Path)
{
    QList<QPointer<OrvNgEdge>> edges;
    const QList<OrvNgEdge*> crossed = edgesCrossingPath(Path);
    for (OrvNgEdge* edge : crossed)
        edges.append(edge);
    if (edges.isEmpty())
        return;
    const OrvUndoManager::AutoMacro macro(tr("Disconnect %1 Edges").arg(edges.size()));
    for (const QPointer<OrvNgEdge>& edge : qAsConst(edges)) {
        if (!edge)
            continue;
        edge->setSevered(false);
        edge->detachFromSourceNode();
    }
}

// Ends that nobody asked for

void OrvNgView::endEditing()
{
    cancelDragSelect();
    clearTracking();
    if (m_CursorTrackingMode == CURSOR_TRACKING_SEVER_EDGES)
        setInteractive(true);
    if (m_CursorTrackingMode == CURSOR_TRACKING_SHAKE)
        setCursorTrackingMode(CURSOR_TRACKING_NONE);
    clearHover();
}

/// The base class tells nobody when it gets another scene.
void OrvNgView::noticeScene()
{
    if (scene() && m_EditedScene == scene())
        return;
    endEditing();
    m_EditedScene = scene();
}
