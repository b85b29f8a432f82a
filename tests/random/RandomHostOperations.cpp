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
constexpr int kMostNodes = 24;

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

using NodeAct = void (*)(W&, OrvNgNode&);

/// Makes an operation out of what is done to one node.
RandomAct onNode(NodeAct act)
{
    return [act](W& w) {
        if (OrvNgNode* node = w.anyNode())
            act(w, *node);
    };
}

RandomAct onLiveNode(NodeAct act)
{
    return [act](W& w) {
        if (OrvNgNode* node = w.anyLiveNode())
            act(w, *node);
    };
}

QUndoStack& undoStack()
{
    return *OrvUndoManager::instance().undoStack();
}

// Making

void newNode(W& w)
{
    const int kind = w.m_Dice.below(20);
    const bool hasPoints = kind < 13;
    OrvNgNode* node = kind < 10 ? new RandomNode<OrvNgExtendedNode>(w)
        : kind < 13             ? new RandomNode<OrvNgDotNode>(w)
        : kind < 16             ? new RandomNode<OrvNgBackdropNode>(w)
        : kind < 18             ? new RandomNode<OrvNgUINode>(w)
                                : static_cast<OrvNgNode*>(new RandomNode<OrvNgTextNode>(w));
    w.adopt(node);
    const bool late = w.maybe(0.3);
    if (!late)
        w.m_Scene->addItem(node);
    for (int i = hasPoints ? w.m_Dice.below(4) : 0; i > 0; --i)
        node->createInput(w.anyName(), w.maybe(0.2), w.anyTags());
    for (int i = hasPoints ? w.m_Dice.below(3) : 0; i > 0; --i)
        node->createOutputPoint(w.anyName(), w.maybe(0.8));
    node->setPos(w.m_Dice.between(-300, 300), w.m_Dice.between(-200, 200));
    node->setText(w.anyText());
    if (auto* extended = qobject_cast<OrvNgExtendedNode*>(node))
        extended->setPortListMode(
            OrvNgExtendedNode::PortListMode(w.maybe(0.6) ? 0 : w.m_Dice.below(5)));
    if (auto* backdrop = qobject_cast<OrvNgBackdropNode*>(node))
        backdrop->setRect(QRectF(0, 0, w.m_Dice.between(50, 500), w.m_Dice.between(50, 400)));
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
    w.m_Dice.oneOf(
        {[&] { edge->setSourceNode(nullptr, QString()); }, [&] { edge->detachFromSourceNode(); },
            [&] { edge->setNewSourceNodeToEdge(source, output); },
            [&] { edge->setNewDestNodeToEdge(source, w.anyName()); },
            [&] { source->setupNodeForInsertionIntoEdge(edge); },
            [&] {
                if (source->canBeInsertedIntoAnEdge(freeInput) && freeInput)
                    edge->insertNodeIntoEdge(source, freeInput);
            }});
}

/// More of them where there are few: deaths are frequent.
void newNodes(W& w)
{
    for (int i = (kMostNodes - w.nodes().size()) / 4; i >= 0; --i)
        newNode(w);
    for (int i = w.m_Dice.below(6); i > 0; --i)
        connectEnds(w);
}

void addPoint(W& w, OrvNgNode& node)
{
    const QString name = w.anyName();
    const auto input = [&] { node.createInput(name, w.maybe(0.2), w.anyTags()); };
    const auto output = [&] { node.createOutputPoint(name, w.maybe(0.8)); };
    w.m_Dice.oneOf({input, input, input, output, output,
        [&] {
            if (node.outputPoints().contains(name))
                node.addOutputEdge(name);
        },
        [&] { node.createVirtualInputEdge(name); },
        [&] { node.createTemporaryOutputEdge(w.anyOutput(&node)); }});
    auto* extended = qobject_cast<OrvNgExtendedNode*>(&node);
    if (extended && w.maybe(0.7))
        extended->applyPortVisibilityMode();
}

void removePoint(W& w, OrvNgNode& node)
{
    const OrvNgEdge* edge = w.anyInput(&node);
    const QString input = edge ? edge->text() : w.anyName();
    const QString output = w.anyOutput(&node);
    w.m_Dice.oneOf({[&] { node.removeInput(w.m_Dice.below(6) - 1); },
        [&] { node.removeInput(input); }, [&] { node.renameInput(input, w.anyName()); },
        [&] { node.renameOutputPoint(output, w.anyName()); },
        [&] { node.removeOutputPoint(w.m_Dice.below(4) - 1); },
        [&] { node.removeOutputPoint(output); }, [&] { node.removeOutput(w.m_Dice.below(4) - 1); },
        [&] { node.removeUnusedOutput(output); }, [&] { node.removeVirtualInputEdge(); },
        [&] { node.removeTemporaryOutputEdge(); }});
}

// Looks

void dressExtended(W& w, OrvNgExtendedNode& node)
{
    const QStringList names{w.anyName(), w.anyName(), w.anyName()};
    const QString group = QStringLiteral("group");
    const auto mode = OrvNgExtendedNode::PortListMode(w.m_Dice.below(7) - 1);
    const bool pauses = w.maybe(0.3);
    if (pauses)
        node.pauseInvalidation(true);
    w.m_Dice.oneOf({[&] { node.setPortListMode(mode); }, [&] { node.setText(w.anyText()); },
        [&] {
            node.setInputPortClusterMap({{group, names}});
        },
        [&] {
            node.setOutputPortClusterMap({{group, names}, {names.at(0), {names.at(1)}}});
        },
        [&] { node.setInputPortClusterMap({}); }, [&] { node.setOutputPortClusterMap({}); },
        [&] { node.reorderInputPorts(names); }, [&] { node.reorderOutputPorts(names); },
        [&] { node.addIcon(QStringLiteral("node-locked")); },
        [&] { node.setIconVisible(w.maybe(), w.m_Dice.below(4) - 1); },
        [&] {
            node.setInputPortVisible(w.anyName(), w.maybe());
            node.updateAfterPortVisibilityChange();
        },
        [&] { node.updateIcons(); }, [&] { node.createInput(w.anyName(), false, {}); }});
    if (pauses)
        node.pauseInvalidation(false);
    if (w.maybe(0.7))
        node.applyPortVisibilityMode();
}

void dress(W& w, OrvNgNode& node)
{
    auto* backdrop = qobject_cast<OrvNgBackdropNode*>(&node);
    auto* note = qobject_cast<OrvNgUINode*>(&node);
    auto* text = qobject_cast<OrvNgTextNode*>(&node);
    const bool on = w.maybe();
    const QString name = w.anyName();
    const QList<std::function<void()>> all{[&] { node.setText(w.anyText()); },
        [&] { node.setShapeType(w.m_Dice.below(12) - 1); },
        [&] {
            node.setNodeColor(w.anyColor(), w.anyColor());
            node.setCategory(w.maybe() ? QStringLiteral("Math") : name);
            node.setDebugColor(w.anyColor());
            node.setCorrectColor();
            node.update();
        },
        [&] { node.setLocked(on); }, [&] { node.setBypassed(on); }, [&] { node.setCached(on); },
        [&] { node.setCurrentPaint(on); }, [&] { node.setDebug(on); },
        [&] {
            node.setInputConnectionPositions({{name, {QPoint(10, -20), QPoint(40, -60)}}});
        },
        [&] {
            node.setOutputConnectionPositions({{name, {QPoint(10, 20), QPoint(40, 60)}}});
        },
        [&] {
            node.setInputConnectionPrettyNames({{name, w.anyText()}});
        },
        [&] { node.setPixmap(QPixmap(1 + w.m_Dice.below(60), 20), QPoint(2, 3)); },
        [&] { node.updateInputTags(name, w.anyTags()); }, [&] { node.setSelected(on, w.maybe()); }};
    const QList<std::function<void()>> ofBackdrops{[&] { backdrop->setLabel(w.anyText()); },
        [&] { backdrop->setNodeBackgroundColour(w.anyColor()); },
        [&] { backdrop->refreshChildrenList(on); }};
    auto* extended = qobject_cast<OrvNgExtendedNode*>(&node);
    if (extended && w.maybe(0.6))
        dressExtended(w, *extended);
    else if (note && w.maybe())
        note->setLabel(w.anyText());
    else if (text && w.maybe())
        text->increaseSize(w.m_Dice.below(4) - 1);
    else
        w.m_Dice.of(backdrop && w.maybe() ? ofBackdrops : all)();
}

void dressEdge(W& w)
{
    OrvNgEdge* edge = w.anyEdge();
    if (!edge)
        return;
    const bool on = w.maybe(0.6);
    w.m_Dice.oneOf({[&] { edge->setTags(w.anyTags()); }, [&] { edge->setBypassed(on); },
        [&] { edge->setTextVisible(on); }, [&] { edge->setDebug(on); },
        [&] { edge->markAsShared(on); }, [&] { edge->switchToDotableMode(on); }});
}

void move(W& w, OrvNgNode& node)
{
    auto* backdrop = qobject_cast<OrvNgBackdropNode*>(&node);
    const QPointF pos(w.anyNumber(), w.anyNumber());
    const QSizeF size(w.anyNumber(), w.anyNumber());
    if (!backdrop || w.maybe(0.3))
        node.setPos(pos);
    else
        w.m_Dice.oneOf({[&] { backdrop->setPosition(pos); },
            [&] { backdrop->setRect(QRectF(QPointF(w.anyNumber() / 10, 5), size)); },
            [&] { backdrop->resizeNode(size); },
            [&] {
                backdrop->wrapAroundNodes(QRectF(), {w.anyLiveNode(), w.anyLiveNode()});
            },
            [&] { backdrop->setZOrder(w.m_Dice.below(20) - 2); }});
}

void style(W& w)
{
    OrvNgStyle& style = OrvNgStyle::instance();
    w.m_Dice.oneOf({[&] { style.setSelectedNodeColor(w.anyColor()); },
        [&] { style.setSceneLODSwitchThreshold(float(w.m_Dice.between(0, 1))); },
        [&] {
            style.resetSelectedNodeColor();
            style.resetSceneLODSwitchThreshold();
        }});
    Q_EMIT style.colorsUpdated();
    w.m_Scene->update(); // the host's part
    w.m_View->viewport()->update();
}

void grid(W& w)
{
    auto* settings = OrvShaderNetworkManager::instance();
    w.m_Dice.oneOf({[&] { settings->setSnapToGrid(w.maybe(0.4)); },
        [&] { settings->setShowGrid(w.maybe(0.6)); },
        [&] { settings->setGridWidth(w.m_Dice.below(60) - 1); },
        [&] { settings->setGridHeight(w.m_Dice.below(60) - 1); }});
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

void killEdge(W& w)
{
    OrvNgEdge* edge = w.anyEdge();
    if (!edge)
        return;
    if (w.mayDelete() && w.maybe())
        delete edge;
    else
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
        const QList<OrvNgNode*> nodes = w.nodes();
        for (OrvNgNode* node : nodes) {
            if (old && w.maybe(0.3))
                w.m_Scene->addItem(node);
        }
        delete old;
    });
}

void deleteParent(W& w, OrvNgNode& node)
{
    if (!node.parent())
        return;
    w.forget(&node);
    delete node.parent();
}

// Undo

void pushMove(W& w, OrvNgNode& node)
{
    const QPointer<OrvNgNode> guard(&node);
    auto* backdrop = qobject_cast<OrvNgBackdropNode*>(&node);
    const QPointF pos(w.m_Dice.between(-300, 300), w.m_Dice.between(-200, 200));
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

/// Once undone, a step that is redone and undone again leaves no trace.
void undoRedo(W& w)
{
    w.m_Reacts = false;
    // A node that stands beside the grid stays there when it is put where it is.
    if (!undoStack().canUndo() || OrvShaderNetworkManager::instance()->snapToGrid())
        return;
    const auto places = [&w] {
        QList<QRectF> all;
        const QList<OrvNgNode*> nodes = w.nodes();
        for (OrvNgNode* node : nodes)
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

void destroy(W&, OrvNgNode& node)
{
    node.destroy();
}

void replace(W& w, OrvNgNode& node)
{
    node.replace(w.anyLiveNode());
}

void show(W& w, OrvNgNode& node)
{
    if (w.maybe(0.7))
        node.setVisible(w.maybe(0.7));
    else
        node.setIsSystemShaderNode(w.maybe(0.3));
}

/// The scene walks its items: slots must not delete others meanwhile.
void clearScene(W& w)
{
    w.gently([&w] { w.m_Scene->clear(); });
}

} // namespace

QList<RandomOperation> RandomOperations::host()
{
    return {
        {"newNodes", 60, true, newNodes},
        {"addPoint", 60, true, onNode(addPoint)},
        {"connect", 80, true, connectEnds},
        {"removePoint", 60, true, onNode(removePoint)},
        {"dress", 60, true, onNode(dress)},
        {"dressEdge", 20, true, dressEdge},
        {"move", 50, true, onNode(move)},
        {"style", 20, true, style},
        {"grid", 20, true, grid},
        {"show", 20, true, onNode(show)},

        {"destroyNode", 30, true, onNode(destroy)},
        {"deleteNode", 20, true, onLiveNode(deleteNow)},
        {"removeDelete", 10, true, onLiveNode(removeAndDelete)},
        {"removeAdd", 15, true, onLiveNode(removeAndAdd)},
        {"deleteNodeLater", 8, true, onLiveNode([](W& w, OrvNgNode& node) {
             w.forget(&node);
             node.deleteLater();
         })},
        {"killEdge", 20, true, killEdge},
        {"clearScene", 2, true, clearScene},
        {"swapScene", 3, true, swapScene},
        {"replace", 8, true, onLiveNode(replace)},
        {"deleteParent", 4, true, onLiveNode(deleteParent)},

        {"pushMove", 20, true, onNode(pushMove)},
        // Sometimes far back, to nodes that are long gone.
        {"undo", 10, true,
            [](W& w) {
                const int index = undoStack().index();
                undoStack().setIndex(
                    qMax(0, index - 1 - (w.maybe(0.7) ? 0 : w.m_Dice.below(index))));
            }},
        {"redo", 10, true,
            [](W& w) {
                const int left = undoStack().count() - undoStack().index();
                undoStack().setIndex(undoStack().index() + qMin(left, 1 + w.m_Dice.below(left)));
            }},
        {"undoRedo", 8, true, undoRedo},
        {"clearUndo", 2, true, [](W&) { undoStack().clear(); }},
    };
}

QList<RandomAct> RandomOperations::reactions(bool mayDelete)
{
    static const QList<RandomAct> s_Gentle{onNode(addPoint), connectEnds, onNode(removePoint),
        onNode(dress), onNode(move), onNode(destroy), onNode(destroy), newNode, onNode(show),
        killEdge, killEdge};
    static const QList<RandomAct> s_All = s_Gentle
        + QList<RandomAct>{onLiveNode(deleteNow), onLiveNode(deleteNow),
            onLiveNode(removeAndDelete), onLiveNode(removeAndAdd), clearScene, onLiveNode(replace),
            onLiveNode(deleteParent)};
    return mayDelete ? s_All : s_Gentle;
}

QList<RandomAct> RandomOperations::deaths()
{
    return {onNode(destroy), onLiveNode(deleteNow)};
}
