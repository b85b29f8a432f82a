#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "RandomWorld.h"
#include "support/ScreenPicture.h"

#include <QDebug>
#include <QGraphicsPathItem>
#include <QSet>

#include <cmath>

namespace {

using W = RandomWorld;
using Backdrop = OrvNgBackdropNode;
constexpr int kDressings = 3;

#define HOLDS(condition, text)                                                                     \
    if (!(condition))                                                                              \
    return QStringLiteral(text)

bool isFinite(const QRectF& rect)
{
    return std::isfinite(rect.x() + rect.y() + rect.right() + rect.bottom());
}

template <typename T> bool repeats(const QList<T>& list)
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
    const W::Edges inputs = node.inputs();
    HOLDS(node.inputCount() == inputs.size(), "B3 input count");
    HOLDS(!inputs.contains(nullptr) && !repeats(inputs), "B3 null or duplicate input");
    QList<QString> names;
    for (OrvNgEdge* edge : inputs) {
        names.append(edge->text());
        OrvNgNode* const source = edge->sourceNode();
        OrvNgNode* const dest = edge->destNode();
        HOLDS(dest == &node || (edge->isDragging() && !dest), "B1 input edge of another node");
        HOLDS(edge->isFullConnected() == (source && dest), "B4 full connected");
        const bool isTemporary = source && edge == source->temporaryOutputEdge();
        HOLDS(!source || isTemporary || source->outputs().count(edge) == 1, "B2 not in source");
        HOLDS(edge->scene() == node.scene(), "B7 input edge in another scene");
        HOLDS(node.input(edge->text()), "B1 input not found by name");
    }
    HOLDS(!repeats(names), "B1 two inputs of one name");
    return {};
}

QString outputsBroken(OrvNgNode& node)
{
    const W::Edges outputs = node.outputs();
    HOLDS(!outputs.contains(nullptr) && !repeats(outputs), "B3 null or duplicate output");
    HOLDS(!repeats(QList<QString>(node.outputPoints())), "B5 two outputs of one name");
    HOLDS(!outputs.contains(node.temporaryOutputEdge()), "B6 temporary edge in list");
    HOLDS(!outputs.contains(node.virtualInputEdge()), "B6 virtual edge in list");
    for (OrvNgEdge* edge : outputs) {
        HOLDS(edge->sourceNode() == &node, "B2 output edge of another source");
        const bool mayBeElsewhere = edge->destNode() || edge->isDragging();
        HOLDS(mayBeElsewhere || edge->scene() == node.scene(), "B7 output edge in another scene");
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

QString edgeInSceneBroken(const W& world, OrvNgEdge& edge)
{
    OrvNgNode* const dest = edge.destNode();
    OrvNgNode* const source = edge.sourceNode();
    const bool drags = edge.isDragging();
    HOLDS(dest || source || (!world.m_AtRest && (drags || !edge.isVisible())), "B8 without ends");
    const bool inDest = !dest || dest->isBeingDeleted() || &edge == dest->virtualInputEdge();
    HOLDS(inDest || dest->inputs().contains(&edge), "B2 not in destination");
    const bool inSource
        = !source || source->isBeingDeleted() || &edge == source->temporaryOutputEdge();
    HOLDS(inSource || source->outputs().contains(&edge), "B2 not in source");
    HOLDS(!world.m_AtRest || !drags, "L2 edge still carried");
    HOLDS(!edge.isGrabbed() || drags || !(dest || source), "L2 grabbed, not carried");
    return {};
}

QString connectionsBroken(const W& world)
{
    const W::Connections* heard = world.isAnyEdgeCarried() ? nullptr : world.heardConnections();
    if (!heard || *heard == world.realConnections())
        return {};
    return withValues("B9 heard and real connections:", *heard, world.realConnections());
}

// Geometry

QRectF spread(const QRectF& rect, double margin)
{
    return rect.adjusted(-margin, -margin, margin, margin);
}

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
    const QRectF near = spread(bounds, 1);
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
            static_cast<QObject*>(edge.sourceNode()), static_cast<QObject*>(edge.destNode()),
            before, edge.mainEdge()->path());
    const double rounding = 1e-6 + 1e-10 * qMax(bounds.width(), bounds.height());
    HOLDS(spread(bounds, rounding).contains(edge.boundingRect())
            && spread(edge.boundingRect(), rounding).contains(bounds),
        "G4 bounds did not follow");
    return {};
}

QString indexBroken(OrvNgNode& node)
{
    const QPointF centre = node.nodeShapeRect().center();
    if (!node.scene() || !node.isVisible() || node.isBackdrop() || !node.shape().contains(centre))
        return {};
    HOLDS(node.scene()->items(node.mapToScene(centre)).contains(&node), "G6 not found at centre");
    return {};
}

QString childrenBroken(OrvNgNode& node)
{
    auto* frame = qobject_cast<Backdrop*>(&node);
    if (!frame || !frame->scene())
        return {};
    frame->refreshChildrenList(false);
    const auto children = frame->childrenList();
    const double z = frame->zValue();
    const QRectF bounds = frame->sceneBoundingRect();
    frame->refreshChildrenList(false);
    HOLDS(frame->childrenList() == children && frame->zValue() == z, "S3 children change");
    for (const QPointer<OrvNgNode>& child : children) {
        HOLDS(child && child->isVisible() && !child->isSystemShaderNode(), "S3 not to be a child");
        HOLDS(bounds.contains(child->sceneBoundingRect()), "S3 child not inside");
        auto* inner = qobject_cast<Backdrop*>(child);
        HOLDS(!inner || inner->sceneBoundingRect() == bounds || inner->zValue() > z
                || (inner->zValue() == z && inner->zOrder() > frame->zOrder()),
            "S3 inner frame lies below");
    }
    return {};
}

/// Whether a pixel of one picture lies between its surroundings in the other.
bool isBetween(QRgb pixel, const QImage& other, int x, int y)
{
    for (const int shift : {0, 8, 16}) {
        int low = 255, high = 0;
        for (int i = 0; i < 9; ++i) {
            const QPoint at(qBound(0, x - 1 + i % 3, other.width() - 1),
                qBound(0, y - 1 + i / 3, other.height() - 1));
            const int value = int(other.pixel(at) >> shift & 0xffU);
            low = qMin(low, value);
            high = qMax(high, value);
        }
        const int value = int(pixel >> shift & 0xffU);
        if (value < low || value > high)
            return false;
    }
    return true;
}

/// Where only a part is painted, a few pixels at gradients are rounded differently, and the smooth borders of curves
/// that are larger than the view lie elsewhere by a part of a pixel. A change shows on more of them, side by side.
bool looksSame(const QImage& a, const QImage& b)
{
    constexpr int kRounding = 3; // of 255
    constexpr int kSmooth = 30; // the least selection outline is twice as much
    constexpr int kFew = 4;
    int changed = 0;
    if (a == b || a.size() != b.size())
        return a.size() == b.size();
    const auto differs = [&a, &b](int x, int y) {
        const QRgb p = a.pixel(x, y);
        const QRgb q = b.pixel(x, y);
        const int most = qMax(std::abs(qRed(p) - qRed(q)),
            qMax(std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))));
        return most > kSmooth
            || (most > kRounding && !(isBetween(p, b, x, y) && isBetween(q, a, x, y)));
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
QString pictureBroken(W& world, const QGraphicsView& view)
{
    if (!view.isVisible() || !view.window()->isVisible())
        return {};
    const QImage before = screenPicture(*view.viewport());
    view.scene()->update(); // nothing that is kept holds any more
    view.viewport()->update(); // also where the scene has nothing
    world.process();
    const QImage after = screenPicture(*view.viewport());
    if (looksSame(before, after))
        return {};
    const QString folder = qEnvironmentVariable("ORV_RANDOM_PICTURES");
    if (!folder.isEmpty() && before.save(folder + QStringLiteral("/before.png")))
        after.save(folder + QStringLiteral("/after.png"));
    return QStringLiteral("G7 a change was not repainted");
}

// Life, selection, view

QString lifeBroken(const W& world)
{
    const QGraphicsItem* const grabber = world.m_Scene->mouseGrabberItem();
    HOLDS(!grabber || grabber->scene() == world.m_Scene, "L2 the mouse is held outside the scene");
    HOLDS(!world.m_AtRest || !grabber, "L2 mouse still held at rest");
    int hovered = 0;
    QList<int> ids;
    for (const OrvNgNode* node : world.nodes()) {
        hovered += node->hovered() ? 1 : 0;
        ids += node->isSelected() ? QList<int>{node->selectionId()} : QList<int>();
        HOLDS(node->isSelected() || node->selectionId() == -1, "S1 selection id");
        HOLDS(!world.m_AtRest || !node->highlightedEdge(), "L1 edge highlighted at rest");
    }
    HOLDS(hovered <= 1, "L1 several nodes hovered");
    HOLDS(!repeats(ids), "S1 selection ids repeat");
    HOLDS(std::all_of(ids.cbegin(), ids.cend(), [](int id) { return id > 0; }), "S1 selection id");
    return {};
}

QString viewBroken(const W& world)
{
    RandomView& view = *world.m_View;
    const QTransform to = view.transform();
    HOLDS(std::isfinite(to.m11()) && to.m11() > 0 && to.m11() == to.m22(), "V2 scale");
    HOLDS(to.m12() == 0 && to.m21() == 0, "V2 rotated");
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

QString frameBroken(OrvNgNode& node)
{
    HOLDS(!node.isBackdrop() || node.zValue() < -1, "S3 backdrop above edges");
    auto* extended = qobject_cast<OrvNgExtendedNode*>(&node);
    return extended ? clustersBroken(*extended) : QString();
}

/// Runs looks at each, up to the first that is broken.
template <typename Item, typename... Look>
void judge(W& world, const QList<Item*>& items, const Look&... looks)
{
    for (Item* item : items) {
        for (const QString& text : {looks(*item)...}) {
            const auto name = QLatin1String(item->metaObject()->className());
            world.fail(text.isEmpty() ? text : text + QLatin1String(" in ") + name);
        }
    }
}

// Dear looks, which are steps of their own

void checkRoutes(W& world)
{
    judge(world, world.edges(), shapeBroken, routeBroken);
    judge(world, world.nodes(), shapeBroken, indexBroken);
}

/// A stale entry in the scene's index shows as an item that is found though it has left.
void probeGhost(W& world, QGraphicsItem* item)
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

void checkGhost(W& world)
{
    world.m_Reacts = false;
    judge(world, world.nodes(), childrenBroken);
    OrvNgNode* node = world.anyLiveNode();
    OrvNgEdge* edge = world.anyEdge();
    probeGhost(world, edge && world.maybe() ? static_cast<QGraphicsItem*>(edge) : node);
}

/// Right after a change of its bounds, before anything else could set the index right.
void shrinkFrame(W& world)
{
    world.m_Reacts = false;
    const auto isFrame = [](auto* node) { return node->isBackdrop() && node->scene(); };
    auto* frame = qobject_cast<Backdrop*>(world.of(those(world.nodes(), isFrame)));
    if (!frame)
        return;
    world.hostActs();
    const QPointF topLeft(world.between(-300, 300), world.between(-300, 300));
    frame->setRect(QRectF(topLeft, QSizeF(600, 600)));
    world.m_Scene->items(frame->sceneBoundingRect());
    frame->setRect(QRectF(topLeft, QSizeF(50, 50)));
    probeGhost(world, frame);
}

/// Also the bounds of what is seen, when their timer has run. The minimap waits for it, which the second view has not.
void checkPictures(W& world)
{
    world.flush();
    QRectF bounds;
    for (const OrvNgNode* node : world.nodes()) {
        const QRectF own = node->sceneBoundingRect();
        if (node->isVisible() && node->scene() == world.m_Scene)
            bounds = bounds.isNull() ? own : bounds | own;
    }
    for (RandomView* view : {world.m_View, world.m_Watcher}) {
        view->calculateVisibleNodesBoundingRect();
        if (view == world.m_View && view->visibleNodeBounds() != bounds) // nodes tell the first
            world.fail(withValues("G5 bounds of the nodes:", view->visibleNodeBounds(), bounds));
        world.process();
        world.fail(pictureBroken(world, *view));
    }
    world.hostActs();
    for (int i = 0; i < kDressings;
         ++i) { // one change alone, that no wider one repaints by the way
        RandomOperations::dressing()(world);
        world.process();
        world.fail(pictureBroken(world, *world.m_Watcher));
    }
}

} // namespace

QString RandomInvariants::broken(W& world)
{
    QList<OrvNgEdge*> edges;
    const QList<QGraphicsItem*> items = world.m_Scene->items();
    for (QGraphicsItem* item : items)
        edges << dynamic_cast<OrvNgEdge*>(item);
    edges.removeAll(nullptr);
    const auto inScene = [&world](OrvNgEdge& edge) { return edgeInSceneBroken(world, edge); };
    judge(world, world.nodes(), inputsBroken, outputsBroken, boundsBroken, frameBroken);
    judge(world, edges, inScene, boundsBroken);
    for (const auto look : {connectionsBroken, lifeBroken, viewBroken})
        world.fail(look(world));
    return world.takeFailure();
}

QList<RandomOperation> RandomOperations::checks()
{
    return {{"checkRoutes", 0, checkRoutes}, {"checkGhost", 0, checkGhost},
        {"checkPictures", 0, checkPictures}, {"shrinkFrame", 6, shrinkFrame}};
}
