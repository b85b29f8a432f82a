// What the random host does to the graph by program, life and death included.
#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgBackdropNodeRectChangeUndo.h"
#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "RandomWorld.h"

#include "OrvCore/OrvUndoManager.h"
#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QPixmap>
#include <QUndoStack>

namespace {

using W = RandomWorld;
using Backdrop = OrvNgBackdropNode;
using Extended = OrvNgExtendedNode;
constexpr int kMostNodes = 24;
#define DO(...) [&] { __VA_ARGS__; }
#define ACT(...) [](W& w) { static_cast<void>(w), __VA_ARGS__; }
#define NODE_ACT(...) [](W& w, OrvNgNode& node) { static_cast<void>(w), __VA_ARGS__; }

/// A node of the random host: it refuses some drops and tells the world when its death begins.
template <typename Base> class RandomNode : public Base
{
public:
    explicit RandomNode(RandomWorld& world)
        : Base(nullptr)
        , m_World(world)
    {
    }
    ~RandomNode() override
    {
        m_World.deathBegins(this);
        Base::aboutToBeDestroyed();
    }
    bool acceptsInputSource(OrvNgNode*, const QString&, const QString&) override
    {
        return m_World.accepts();
    }

private:
    RandomWorld& m_World;
};

template <typename T> OrvNgNode* make(W& w)
{
    return new RandomNode<T>(w);
}

using NodeAct = void (*)(W&, OrvNgNode&);

/// Makes an operation out of what is done to one node.
template <OrvNgNode* (W::*Pick)() = &W::anyNode> RandomAct onNode(NodeAct act)
{
    return [act](W& w) {
        if (OrvNgNode* node = (w.*Pick)())
            act(w, *node);
    };
}

constexpr auto onLiveNode = &onNode<&W::anyLiveNode>;

QUndoStack& undoStack()
{
    return *OrvUndoManager::instance().undoStack();
}

// Making

void newNode(W& w)
{
    const int kind = w.below(20);
    const bool hasPoints = kind < 13;
    OrvNgNode* node = kind < 10 ? make<Extended>(w)
        : kind < 13             ? make<OrvNgDotNode>(w)
        : kind < 16             ? make<Backdrop>(w)
        : kind < 18             ? make<OrvNgUINode>(w)
                                : make<OrvNgTextNode>(w);
    w.adopt(node);
    const bool late = w.maybe(0.3);
    if (!late)
        w.m_Scene->addItem(node);
    for (int i = hasPoints ? w.below(4) : 0; i > 0; --i)
        node->createInput(w.anyName(), w.maybe(0.2), w.anyTags());
    for (int i = hasPoints ? w.below(3) : 0; i > 0; --i)
        node->createOutputPoint(w.anyName(), w.maybe(0.8));
    node->setPos(w.between(-300, 300), w.between(-200, 200));
    node->setText(w.anyText());
    if (auto* extended = qobject_cast<Extended*>(node))
        extended->setPortListMode(Extended::PortListMode(w.maybe(0.6) ? 0 : w.below(5)));
    if (auto* backdrop = qobject_cast<Backdrop*>(node))
        backdrop->setRect(QRectF(0, 0, w.between(50, 500), w.between(50, 400)));
    if (late && !w.maybe(0.05))
        w.m_Scene->addItem(node);
}

void connectEnds(W& w)
{
    OrvNgEdge* edge = w.anyInput(w.anyNode());
    OrvNgNode* source = w.anyLiveNode();
    if (!edge || !source || edge->isDragging())
        return;
    const QString output = w.anyOutput(source);
    OrvNgEdge* freeInput = nullptr;
    if (source->outputPointCount() > 0 && w.maybe(0.5)) {
        edge->setSourceNode(source, output);
        return;
    }
    w.oneOf({DO(edge->setSourceNode(nullptr, QString())), DO(edge->detachFromSourceNode()),
        DO(edge->setNewSourceNodeToEdge(source, output)),
        DO(edge->setNewDestNodeToEdge(source, w.anyName())),
        DO(source->setupNodeForInsertionIntoEdge(edge)),
        DO(source->canBeInsertedIntoAnEdge(freeInput) && freeInput
                ? edge->insertNodeIntoEdge(source, freeInput)
                : void())});
}

/// More of them where there are few: deaths are frequent.
void newNodes(W& w)
{
    for (int i = (kMostNodes - w.nodes().size()) / 4; i >= 0; --i)
        newNode(w);
    for (int i = w.below(6); i > 0; --i)
        connectEnds(w);
}

void addPoint(W& w, OrvNgNode& node)
{
    const QString name = w.anyName();
    const auto input = DO(node.createInput(name, w.maybe(0.2), w.anyTags()));
    const auto output = DO(node.createOutputPoint(name, w.maybe(0.8)));
    w.oneOf({input, input, input, output, output,
        DO(node.outputPoints().contains(name) ? void(node.addOutputEdge(name)) : void()),
        DO(node.createVirtualInputEdge(name)),
        DO(node.createTemporaryOutputEdge(w.anyOutput(&node)))});
    auto* extended = qobject_cast<Extended*>(&node);
    if (extended && w.maybe(0.7))
        extended->applyPortVisibilityMode();
}

void removePoint(W& w, OrvNgNode& node)
{
    const OrvNgEdge* edge = w.anyInput(&node);
    const QString input = edge ? edge->text() : w.anyName();
    const QString output = w.anyOutput(&node);
    w.oneOf({DO(node.removeInput(w.below(6) - 1)), DO(node.removeInput(input)),
        DO(node.renameInput(input, w.anyName())), DO(node.renameOutputPoint(output, w.anyName())),
        DO(node.removeOutputPoint(w.below(4) - 1)), DO(node.removeOutputPoint(output)),
        DO(node.removeOutput(w.below(4) - 1)), DO(node.removeUnusedOutput(output)),
        DO(node.removeVirtualInputEdge()), DO(node.removeTemporaryOutputEdge())});
}

// Looks

void dressExtended(W& w, Extended& node)
{
    const QStringList names{w.anyName(), w.anyName(), w.anyName()};
    const QString group = QStringLiteral("group");
    const auto mode = Extended::PortListMode(w.below(7) - 1);
    const bool pauses = w.maybe(0.3);
    if (pauses)
        node.pauseInvalidation(true);
    w.oneOf({DO(node.setPortListMode(mode)), DO(node.setText(w.anyText())),
        DO(node.setInputPortClusterMap({{group, names}})),
        DO(node.setOutputPortClusterMap({{group, names}, {names.at(0), {names.at(1)}}})),
        DO(node.setInputPortClusterMap({})), DO(node.setOutputPortClusterMap({})),
        DO(node.reorderInputPorts(names)), DO(node.reorderOutputPorts(names)),
        DO(node.addIcon(QStringLiteral("node-locked"))),
        DO(node.setIconVisible(w.maybe(), w.below(4) - 1)),
        DO(node.setInputPortVisible(w.anyName(), w.maybe()),
            node.updateAfterPortVisibilityChange()),
        DO(node.updateIcons()), DO(node.createInput(w.anyName(), false, {}))});
    if (pauses)
        node.pauseInvalidation(false);
    if (w.maybe(0.7))
        node.applyPortVisibilityMode();
}

void dress(W& w, OrvNgNode& node)
{
    auto* backdrop = qobject_cast<Backdrop*>(&node);
    auto* note = qobject_cast<OrvNgUINode*>(&node);
    auto* text = qobject_cast<OrvNgTextNode*>(&node);
    auto* extended = qobject_cast<Extended*>(&node);
    const bool on = w.maybe();
    const QString name = w.anyName();
    if (extended && w.maybe(0.6))
        dressExtended(w, *extended);
    else if (note && w.maybe())
        note->setLabel(w.anyText());
    else if (text && w.maybe())
        text->increaseSize(w.below(4) - 1);
    else if (backdrop && w.maybe())
        w.oneOf({DO(backdrop->setLabel(w.anyText())),
            DO(backdrop->setNodeBackgroundColour(w.anyColor())),
            DO(backdrop->refreshChildrenList(on))});
    else
        w.oneOf({DO(node.setText(w.anyText())), DO(node.setShapeType(w.below(12) - 1)),
            DO(node.setNodeColor(w.anyColor(), w.anyColor()),
                node.setCategory(w.maybe() ? QStringLiteral("Math") : name),
                node.setDebugColor(w.anyColor()), node.setCorrectColor(), node.update()),
            DO(node.setLocked(on)), DO(node.setBypassed(on)), DO(node.setCached(on)),
            DO(node.setCurrentPaint(on)), DO(node.setDebug(on)),
            DO(node.setInputConnectionPositions({{name, {QPoint(10, -20), QPoint(40, -60)}}})),
            DO(node.setOutputConnectionPositions({{name, {QPoint(10, 20), QPoint(40, 60)}}})),
            DO(node.setInputConnectionPrettyNames({{name, w.anyText()}})),
            DO(node.setPixmap(QPixmap(1 + w.below(60), 20), QPoint(2, 3))),
            DO(node.updateInputTags(name, w.anyTags())), DO(node.setSelected(on, w.maybe()))});
}

void dressEdge(W& w)
{
    OrvNgEdge* edge = w.anyEdge();
    if (!edge)
        return;
    const bool on = w.maybe(0.6);
    w.oneOf(
        {DO(edge->setTags(w.anyTags())), DO(edge->setBypassed(on)), DO(edge->setTextVisible(on)),
            DO(edge->setDebug(on)), DO(edge->markAsShared(on)), DO(edge->switchToDotableMode(on))});
}

void move(W& w, OrvNgNode& node)
{
    auto* backdrop = qobject_cast<Backdrop*>(&node);
    const QPointF pos(w.anyNumber(), w.anyNumber());
    const QSizeF size(w.anyNumber(), w.anyNumber());
    if (!backdrop || w.maybe(0.3))
        node.setPos(pos);
    else
        w.oneOf({DO(backdrop->setPosition(pos)),
            DO(backdrop->setRect(QRectF(QPointF(w.anyNumber() / 10, 5), size))),
            DO(backdrop->resizeNode(size)),
            DO(backdrop->wrapAroundNodes(QRectF(), {w.anyLiveNode(), w.anyLiveNode()})),
            DO(backdrop->setZOrder(w.below(20) - 2))});
}

void style(W& w)
{
    OrvNgStyle& style = OrvNgStyle::instance();
    w.oneOf({DO(style.setSelectedNodeColor(w.anyColor())),
        DO(style.setSceneLODSwitchThreshold(float(w.between(0, 1)))),
        DO(style.resetSelectedNodeColor(), style.resetSceneLODSwitchThreshold())});
    Q_EMIT style.colorsUpdated();
    w.m_Scene->update(); // the host's part
    w.m_View->viewport()->update();
}

void grid(W& w)
{
    auto* settings = OrvShaderNetworkManager::instance();
    w.oneOf({DO(settings->setSnapToGrid(w.maybe(0.4))), DO(settings->setShowGrid(w.maybe(0.6))),
        DO(settings->setGridWidth(w.below(60) - 1)), DO(settings->setGridHeight(w.below(60) - 1))});
}

// Death

void deleteNow(W& w, OrvNgNode& node)
{
    w.forget(&node);
    delete &node;
}

void removeAndDelete(W& w, OrvNgNode& node)
{
    if (node.scene())
        node.scene()->removeItem(&node);
    deleteNow(w, node);
}

void removeAndAdd(W& w, OrvNgNode& node)
{
    const QPointer<OrvNgNode> guard(&node);
    if (node.scene() && w.maybe(0.8))
        node.scene()->removeItem(&node);
    if (guard && node.scene() != w.m_Scene && w.maybe(0.9))
        w.m_Scene->addItem(&node);
}

const RandomAct kDestroy = onNode(NODE_ACT(node.destroy()));
const RandomAct kReplace = onLiveNode(NODE_ACT(node.replace(w.anyLiveNode())));
const RandomAct kShow = onNode(NODE_ACT(
    w.maybe(0.7) ? node.setVisible(w.maybe(0.7)) : node.setIsSystemShaderNode(w.maybe(0.3))));
/// The scene walks its items: slots must not delete others meanwhile.
const RandomAct kClear = ACT(w.gently(DO(w.m_Scene->clear())));

void deleteParent(W& w, OrvNgNode& node)
{
    if (!node.parent())
        return;
    w.forget(&node);
    delete node.parent();
}

void killEdge(W& w)
{
    OrvNgEdge* edge = w.anyEdge();
    if (edge && w.mayDelete() && w.maybe())
        delete edge;
    else if (edge)
        edge->destroy();
}

/// Another scene in the same views; what stays in the old one dies with it.
void swapScene(W& w)
{
    const QPointer<QGraphicsScene> old(w.m_Scene);
    if (w.maybe(0.3))
        w.m_View->setScene(nullptr);
    const bool dies = w.maybe(0.3);
    w.gently([&] {
        if (dies)
            delete old;
        w.newScene();
        for (OrvNgNode* node : w.nodes()) {
            if (old && w.maybe(0.3))
                w.m_Scene->addItem(node);
        }
        delete old;
    });
}

// Undo

void pushMove(W& w, OrvNgNode& node)
{
    const QPointer<OrvNgNode> guard(&node);
    auto* backdrop = qobject_cast<Backdrop*>(&node);
    const QPointF pos(w.between(-300, 300), w.between(-200, 200));
    if (backdrop && w.maybe()) {
        backdrop->saveBoundingRect();
        backdrop->resizeNode(QSizeF(w.anyNumber(), w.anyNumber()));
        if (guard)
            OrvUndoManager::instance().push(new OrvNgBackdropNodeRectChangeUndo(backdrop));
        return;
    }
    node.savePosition();
    node.setPos(pos);
    if (guard)
        OrvUndoManager::instance().push(new OrvNgNodePositionChangeUndo(&node));
}

// Sometimes far, to nodes that are long gone.

void undo(W& w)
{
    const int index = undoStack().index();
    undoStack().setIndex(qMax(0, index - 1 - (w.maybe(0.7) ? 0 : w.below(index))));
}

void redo(W& w)
{
    const int left = undoStack().count() - undoStack().index();
    undoStack().setIndex(undoStack().index() + qMin(left, 1 + w.below(left)));
}

/// Once undone, a step that is redone and undone again leaves no trace.
void undoRedo(W& w)
{
    w.m_Reacts = false;
    // A node that stands beside the grid stays there when it is put where it is.
    if (!undoStack().canUndo() || OrvShaderNetworkManager::instance()->snapToGrid())
        return;
    const auto places = [&w] {
        QList<QRectF> all;
        for (OrvNgNode* node : w.nodes())
            all.append(node->boundingRect().translated(node->pos()));
        return all;
    };
    undoStack().undo();
    const QList<QRectF> undone = places();
    undoStack().redo();
    undoStack().undo();
    if (places() != undone)
        w.fail(QStringLiteral("U1 redo and undo do not give the same places"));
}

} // namespace

QList<RandomOperation> RandomOperations::host()
{
    return {{"newNodes", 60, newNodes}, {"addPoint", 60, onNode(addPoint)},
        {"connect", 80, connectEnds}, {"removePoint", 60, onNode(removePoint)},
        {"dress", 60, onNode(dress)}, {"dressEdge", 20, dressEdge}, {"move", 50, onNode(move)},
        {"style", 20, style}, {"grid", 20, grid}, {"show", 20, kShow},

        {"destroyNode", 30, kDestroy}, {"deleteNode", 20, onLiveNode(deleteNow)},
        {"removeDelete", 10, onLiveNode(removeAndDelete)},
        {"removeAdd", 15, onLiveNode(removeAndAdd)},
        {"deleteNodeLater", 8, onLiveNode(NODE_ACT(w.forget(&node), node.deleteLater()))},
        {"killEdge", 20, killEdge}, {"clearScene", 2, kClear}, {"swapScene", 3, swapScene},
        {"replace", 8, kReplace}, {"deleteParent", 4, onLiveNode(deleteParent)},

        {"pushMove", 20, onNode(pushMove)}, {"undo", 10, undo}, {"redo", 10, redo},
        {"undoRedo", 8, undoRedo}, {"clearUndo", 2, [](W&) { undoStack().clear(); }}};
}

QList<RandomAct> RandomOperations::reactions(bool mayDelete)
{
    static const QList<RandomAct> s_Gentle{onNode(addPoint), connectEnds, onNode(removePoint),
        onNode(dress), onNode(move), kDestroy, kDestroy, newNode, kShow, killEdge, killEdge};
    static const QList<RandomAct> s_All = s_Gentle
        + QList<RandomAct>{onLiveNode(deleteNow), onLiveNode(deleteNow),
            onLiveNode(removeAndDelete), onLiveNode(removeAndAdd), kClear, kReplace,
            onLiveNode(deleteParent)};
    return mayDelete ? s_All : s_Gentle;
}

RandomAct RandomOperations::dressing()
{
    return onNode(dress);
}

QList<RandomAct> RandomOperations::deaths()
{
    return {kDestroy, onLiveNode(deleteNow)};
}
