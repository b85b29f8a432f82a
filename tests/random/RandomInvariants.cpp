#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "RandomWorld.h"

#include <QCoreApplication>
#include <QDebug>
#include <QGraphicsPathItem>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QSet>
#include <QWindow>

#include <cmath>

namespace {

#define HOLDS(condition, text)                                                                     \
    if (!(condition))                                                                              \
    return QStringLiteral(text)

bool isFinite(const QRectF& rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.right())
        && std::isfinite(rect.bottom());
}

template <typename T> bool hasDuplicates(const QList<T>& list)
{
    return QSet<T>(list.cbegin(), list.cend()).size() != list.size();
}

template <typename... T> QString withValues(const char* text, const T&... values)
{
    QString all;
    QDebug debug(&all);
    debug << text;
    (debug << ... << values);
    return all;
}

// Bookkeeping

QString inputsBroken(OrvNgNode& node)
{
    const QList<OrvNgEdge*> inputs = node.inputs();
    HOLDS(node.inputCount() == inputs.size(), "B3 input count");
    HOLDS(!inputs.contains(nullptr) && !hasDuplicates(inputs), "B3 null or duplicate input");
    QList<QString> names;
    for (OrvNgEdge* edge : inputs) {
        names.append(edge->text());
        OrvNgNode* const source = edge->sourceNode();
        HOLDS(edge->destNode() == &node || (edge->isDragging() && !edge->destNode()),
            "B1 input edge of another node");
        HOLDS(edge->isFullConnected() == (source && edge->destNode()), "B4 full connected");
        HOLDS(
            !source || source->outputs().count(edge) == 1 || edge == source->temporaryOutputEdge(),
            "B2 edge not among its source's outputs");
        HOLDS(edge->scene() == node.scene(), "B7 input edge in another scene");
        HOLDS(node.input(edge->text()), "B1 input not found by name");
    }
    HOLDS(!hasDuplicates(names), "B1 two inputs of one name");
    return {};
}

QString outputsBroken(OrvNgNode& node)
{
    const QList<OrvNgEdge*> outputs = node.outputs();
    HOLDS(!outputs.contains(nullptr) && !hasDuplicates(outputs), "B3 null or duplicate output");
    HOLDS(!hasDuplicates(QList<QString>(node.outputPoints())), "B5 two outputs of one name");
    for (OrvNgEdge* edge : outputs) {
        HOLDS(edge->sourceNode() == &node, "B2 output edge of another source");
        HOLDS(edge != node.temporaryOutputEdge() && edge != node.virtualInputEdge(),
            "B6 extra edge in list");
        HOLDS(edge->destNode() || edge->isDragging() || edge->scene() == node.scene(),
            "B7 output edge in another scene");
    }
    return {};
}

QString clustersBroken(OrvNgExtendedNode& node)
{
    for (const OrvNgEdge* edge : node.inputs()) {
        const QString name = edge->text();
        const OrvNgPort* port = node.inputPort(name);
        const QString cluster = node.inputPort2ClusterName(name);
        HOLDS(port && port->originalPortName() == name, "B10 input without its port");
        HOLDS(cluster.isEmpty() != node.inputPortBelongsToCluster(name), "B10 member of nothing");
        HOLDS(cluster.isEmpty() || node.inputClusterPortName2ClusterList(cluster).contains(name),
            "B10 cluster without its member");
    }
    for (const QString& name : node.outputPoints()) {
        const QString cluster = node.outputPort2ClusterName(name);
        HOLDS(cluster.isEmpty() || node.outputClusterPortName2ClusterList(cluster).contains(name),
            "B10 cluster without its output");
    }
    return {};
}

QString edgeInSceneBroken(const RandomWorld& world, OrvNgEdge& edge)
{
    OrvNgNode* const dest = edge.destNode();
    OrvNgNode* const source = edge.sourceNode();
    if (world.m_AtRest && !dest && !source)
        return withValues(
            "B8 edge without ends:", edge.text(), edge.isVisible(), edge.isDragging());
    HOLDS(dest || source || edge.isDragging() || !edge.isVisible(), "B8 visible edge without ends");
    HOLDS(!dest || dest->isBeingDeleted() || dest->inputs().contains(&edge)
            || &edge == dest->virtualInputEdge(),
        "B2 edge not among its destination's inputs");
    HOLDS(!source || source->isBeingDeleted() || source->outputs().contains(&edge)
            || &edge == source->temporaryOutputEdge(),
        "B2 edge not among its source's outputs");
    HOLDS(!world.m_AtRest || !edge.isDragging(), "L2 edge still carried");
    HOLDS(!edge.isGrabbed() || edge.isDragging() || !(dest || source), "L2 grabbed, not carried");
    return {};
}

QString connectionsBroken(const RandomWorld& world)
{
    const auto* heard = world.isAnyEdgeCarried() ? nullptr : world.heardConnections();
    const RandomWorld::Connections real
        = heard ? world.realConnections() : RandomWorld::Connections();
    if (!heard || *heard == real)
        return {};
    QString text = QStringLiteral("B9 connections differ from what was told:");
    const auto describe = [](const RandomWorld::Connections& all, const auto& input) {
        const auto source = all.value(input);
        return QStringLiteral("%1.%2").arg(quintptr(source.first), 0, 16).arg(source.second);
    };
    const auto inputs = heard->keys() + real.keys();
    for (const auto& input : inputs) {
        if (heard->value(input) != real.value(input))
            text += QStringLiteral(" %1.%2 heard of %3, has %4;")
                        .arg(quintptr(input.first), 0, 16)
                        .arg(input.second, describe(*heard, input), describe(real, input));
    }
    return text;
}

// Geometry

QRectF visibleChildren(const QGraphicsItem& item)
{
    QRectF bounds;
    for (const QGraphicsItem* child : item.childItems()) {
        if (child->isVisible() && !dynamic_cast<const OrvNgNode*>(child))
            bounds |= child->mapRectToParent(child->boundingRect() | visibleChildren(*child));
    }
    return bounds;
}

QString boundsBroken(const QGraphicsItem& item)
{
    const QRectF bounds = item.boundingRect();
    HOLDS(isFinite(bounds) && isFinite(item.sceneBoundingRect()), "G1 not finite");
    HOLDS(bounds == item.boundingRect(), "G2 bounds differ on a second call");
    return {};
}

QString shapeBroken(const QGraphicsItem& item)
{
    const QRectF bounds = item.boundingRect();
    const QRectF near = bounds.adjusted(-1, -1, 1, 1);
    const QRectF shape = item.shape().boundingRect();
    if (!bounds.isEmpty() && !near.contains(shape))
        return withValues("G2 shape outside bounds:", shape, bounds);
    // Texts may be wider than a body; those of extended nodes are inside, which Qt is told.
    const bool promises = item.flags().testFlag(QGraphicsItem::ItemContainsChildrenInShape);
    const QRectF children = promises ? visibleChildren(item) : QRectF();
    if (!children.isEmpty() && !near.contains(children))
        return withValues("G2 children outside bounds:", children, bounds);
    return {};
}

/// An edge that is routed anew lies where it lay.
QString routeBroken(OrvNgEdge& edge)
{
    if (!edge.isVisible() || edge.isDragging())
        return {};
    const QPainterPath before = edge.mainEdge()->path();
    const QRectF bounds = edge.boundingRect();
    edge.adjust(QPointF(12345, 54321), QPointF(-1, -2), 0.3F);
    edge.adjust();
    if (edge.mainEdge()->path() != before)
        return withValues("G4 edge did not follow its ends:", edge.text(),
            edge.sourceNode() ? edge.sourceNode()->metaObject()->className() : "none",
            edge.destNode() ? edge.destNode()->metaObject()->className() : "none", before,
            edge.mainEdge()->path());
    HOLDS(edge.boundingRect() == bounds, "G4 bounds did not follow");
    return {};
}

QString isFound(QGraphicsScene& scene, OrvNgNode& node)
{
    const QPointF centre = node.nodeShapeRect().center();
    HOLDS(!node.isVisible() || node.isBackdrop() || !node.shape().contains(centre)
            || scene.items(node.mapToScene(centre)).contains(&node),
        "G6 node not found at its centre");
    return {};
}

QString childrenBroken(OrvNgBackdropNode& backdrop)
{
    backdrop.refreshChildrenList(false);
    const auto children = backdrop.childrenList();
    const double z = backdrop.zValue();
    backdrop.refreshChildrenList(false);
    HOLDS(backdrop.childrenList() == children && backdrop.zValue() == z,
        "S3 a second look finds other children");
    for (const QPointer<OrvNgNode>& child : children) {
        HOLDS(child && child->isVisible() && !child->isSystemShaderNode(), "S3 not to be a child");
        HOLDS(backdrop.sceneBoundingRect().contains(child->sceneBoundingRect()),
            "S3 child not inside");
        auto* inner = qobject_cast<OrvNgBackdropNode*>(child);
        HOLDS(!inner || inner->sceneBoundingRect() == backdrop.sceneBoundingRect()
                || inner->zValue() > z
                || (inner->zValue() == z && inner->zOrder() > backdrop.zOrder()),
            "S3 inner frame lies below");
    }
    return {};
}

QImage shown(const QGraphicsView& view)
{
    const QRect area(view.viewport()->mapTo(view.window(), QPoint()), view.viewport()->size());
    QScreen* screen = view.window()->windowHandle()->screen();
    return screen
        ->grabWindow(view.window()->winId(), area.x(), area.y(), area.width(), area.height())
        .toImage();
}

/// Where only a part is painted, a few pixels at gradients and smooth borders are rounded differently.
/// A change shows on more of them, side by side.
bool looksSame(const QImage& a, const QImage& b)
{
    constexpr int kRounding = 3; // of 255
    constexpr int kFew = 4;
    int changed = 0;
    if (a == b || a.size() != b.size())
        return a.size() == b.size();
    const auto differs = [&a, &b](int x, int y) {
        const QRgb p = a.pixel(x, y);
        const QRgb q = b.pixel(x, y);
        return std::abs(qRed(p) - qRed(q)) > kRounding
            || std::abs(qGreen(p) - qGreen(q)) > kRounding
            || std::abs(qBlue(p) - qBlue(q)) > kRounding;
    };
    for (int i = 0; i < a.width() * a.height(); ++i) {
        const int x = i % a.width();
        const int y = i / a.width();
        if (differs(x, y) && ((x > 0 && differs(x - 1, y)) || (y > 0 && differs(x, y - 1))))
            ++changed;
    }
    return changed <= kFew;
}

/// What the changes have repainted is what painting everything gives. Whoever looks for the cause names a
/// folder in the environment, for both pictures.
QString pictureBroken(RandomWorld& world, const QGraphicsView& view)
{
    if (!view.isVisible() || !view.window()->isVisible())
        return {};
    const QImage before = shown(view);
    view.scene()->update(); // nothing that is kept holds any more
    world.process();
    const QImage after = shown(view);
    if (looksSame(before, after))
        return {};
    const QString folder = qEnvironmentVariable("ORV_RANDOM_PICTURES");
    if (!folder.isEmpty() && before.save(folder + QStringLiteral("/before.png")))
        after.save(folder + QStringLiteral("/after.png"));
    return QStringLiteral("G7 a change was not repainted");
}

// Life, selection, view

QString lifeBroken(const RandomWorld& world)
{
    const QGraphicsItem* const grabber = world.m_Scene->mouseGrabberItem();
    HOLDS(!grabber || grabber->scene() == world.m_Scene, "L2 the mouse is held outside the scene");
    HOLDS(!world.m_AtRest || !grabber, "L2 mouse still held at rest");
    int hovered = 0;
    QList<int> ids;
    const QList<OrvNgNode*> nodes = world.nodes();
    for (const OrvNgNode* node : nodes) {
        hovered += node->hovered() ? 1 : 0;
        HOLDS(node->isSelected() ? node->selectionId() > 0 : node->selectionId() == -1,
            "S1 selection id");
        if (node->isSelected())
            ids.append(node->selectionId());
        HOLDS(!world.m_AtRest || !node->highlightedEdge(), "L1 edge highlighted at rest");
    }
    HOLDS(hovered <= 1, "L1 several nodes hovered");
    HOLDS(!hasDuplicates(ids), "S1 selection ids repeat");
    return {};
}

QString viewBroken(const RandomWorld& world)
{
    RandomView& view = *world.m_View;
    const QTransform transform = view.transform();
    HOLDS(std::isfinite(transform.m11()) && transform.m11() > 0
            && transform.m11() == transform.m22() && transform.m12() == 0 && transform.m21() == 0,
        "V2 transform");
    HOLDS(isFinite(view.sceneRect()), "G1 scene rectangle");
    if (!world.m_AtRest)
        return {};
    HOLDS(view.dragMode() == QGraphicsView::NoDrag, "V1 drag mode at rest");
    HOLDS(view.isInteractive(), "V1 not interactive at rest");
    const Qt::CursorShape cursor = view.viewport()->cursor().shape();
    const QList<QGraphicsItem*> under = view.items(world.m_MousePos);
    if (cursor != Qt::ArrowCursor // handles of frames have others
        && std::none_of(under.cbegin(), under.cend(), [](auto* item) { return item->hasCursor(); }))
        return withValues("V1 cursor at rest:", int(cursor));
    HOLDS(view.cursorTrackingMode() == OrvNgView::CURSOR_TRACKING_NONE, "V1 tracking at rest");
    HOLDS(!view.drawingEdgeSeverPath(), "V3 path at rest");
    return {};
}

QString nodeBroken(OrvNgNode& node)
{
    auto* extended = qobject_cast<OrvNgExtendedNode*>(&node);
    for (const QString& text : {inputsBroken(node), outputsBroken(node), boundsBroken(node),
             extended ? clustersBroken(*extended) : QString()}) {
        if (!text.isEmpty())
            return text;
    }
    HOLDS(!node.isBackdrop() || node.zValue() < -1, "S3 backdrop above edges");
    return {};
}

/// Runs a look at each, up to the first that is broken.
template <typename T, typename Look> QString firstBroken(const QList<T*>& items, Look&& look)
{
    for (T* item : items) {
        const QString text = look(*item);
        if (!text.isEmpty())
            return text + QLatin1String(" (") + QLatin1String(item->metaObject()->className());
    }
    return {};
}

void judge(RandomWorld& world, const QString& broken)
{
    if (!broken.isEmpty())
        world.fail(broken);
}

// Dear looks, which are steps of their own

void checkRoutes(RandomWorld& world)
{
    QGraphicsScene& scene = *world.m_Scene;
    judge(world, firstBroken(world.edges(), shapeBroken));
    judge(world, firstBroken(world.edges(), routeBroken));
    judge(world, firstBroken(world.nodes(), shapeBroken));
    judge(world, firstBroken(world.nodes(), [&scene](OrvNgNode& node) {
        return node.scene() == &scene ? isFound(scene, node) : QString();
    }));
}

/// A stale entry in the scene's index shows as an item that is found though it has left.
void probeGhost(RandomWorld& world, QGraphicsItem* item)
{
    QGraphicsScene& scene = *world.m_Scene;
    if (!item || item->scene() != &scene || scene.mouseGrabberItem())
        return;
    world.hostActs();
    const QRectF everything = scene.itemsBoundingRect().adjusted(-1e4, -1e4, 1e4, 1e4);
    scene.removeItem(item);
    if (scene.items(everything).contains(item))
        world.fail(QStringLiteral("G3 removed item still found"));
    scene.addItem(item);
}

void checkGhost(RandomWorld& world)
{
    world.m_Reacts = false;
    judge(world, firstBroken(world.nodes(), [](OrvNgNode& node) {
        auto* backdrop = qobject_cast<OrvNgBackdropNode*>(&node);
        return backdrop && node.scene() ? childrenBroken(*backdrop) : QString();
    }));
    OrvNgNode* node = world.anyLiveNode();
    OrvNgEdge* edge = world.anyEdge();
    probeGhost(world, edge && world.maybe() ? static_cast<QGraphicsItem*>(edge) : node);
}

/// Right after a change of its bounds, before anything else could set the index right.
void shrinkFrame(RandomWorld& world)
{
    world.m_Reacts = false;
    QList<OrvNgNode*> frames;
    const QList<OrvNgNode*> nodes = world.nodes();
    std::copy_if(nodes.cbegin(), nodes.cend(), std::back_inserter(frames),
        [](OrvNgNode* node) { return node->isBackdrop() && node->scene(); });
    auto* frame = qobject_cast<OrvNgBackdropNode*>(world.m_Dice.of(frames));
    if (!frame)
        return;
    const QPointF topLeft(world.m_Dice.between(-300, 300), world.m_Dice.between(-300, 300));
    frame->setRect(QRectF(topLeft, QSizeF(600, 600)));
    world.m_Scene->items(frame->sceneBoundingRect());
    frame->setRect(QRectF(topLeft, QSizeF(50, 50)));
    probeGhost(world, frame);
}

/// Also the bounds of what is seen, when their timer has run.
void checkPictures(RandomWorld& world)
{
    world.flush();
    QRectF bounds;
    const QList<OrvNgNode*> nodes = world.nodes();
    for (const OrvNgNode* node : nodes) {
        if (node->isVisible() && node->scene() == world.m_Scene)
            bounds
                = bounds.isNull() ? node->sceneBoundingRect() : bounds | node->sceneBoundingRect();
    }
    for (RandomView* view : {world.m_View, world.m_Watcher}) {
        view->calculateVisibleNodesBoundingRect();
        if (view == world.m_View && view->visibleNodeBounds() != bounds) // nodes tell the first
            world.fail(withValues("G5 bounds of the nodes:", view->visibleNodeBounds(), bounds));
        world.process();
        judge(world, pictureBroken(world, *view));
    }
}

} // namespace

QString RandomInvariants::broken(RandomWorld& world)
{
    QList<OrvNgEdge*> edges;
    const QList<QGraphicsItem*> items = world.m_Scene->items();
    for (QGraphicsItem* item : items) {
        if (auto* edge = dynamic_cast<OrvNgEdge*>(item))
            edges.append(edge);
    }
    judge(world, firstBroken(world.nodes(), nodeBroken));
    judge(world,
        firstBroken(edges, [&world](OrvNgEdge& edge) { return edgeInSceneBroken(world, edge); }));
    judge(world, firstBroken(edges, boundsBroken));
    for (const auto look : {connectionsBroken, lifeBroken, viewBroken})
        judge(world, look(world));
    return world.takeFailure();
}

QList<RandomOperation> RandomOperations::checks()
{
    return {{"checkRoutes", 0, false, checkRoutes}, {"checkGhost", 0, false, checkGhost},
        {"checkPictures", 0, false, checkPictures}, {"shrinkFrame", 6, true, shrinkFrame}};
}
