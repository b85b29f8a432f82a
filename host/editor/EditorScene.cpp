#include "editor/EditorScene.h"

#include "editor/EditorBackdrops.h"
#include "editor/EditorEdits.h"
#include "editor/EditorNodeFactory.h"
#include "editor/EditorStyleRefresh.h"
#include "editor/EditorToolTips.h"
#include "editor/EditorWiringGuide.h"

#include <OrvCore/OrvUndoManager.h>

#include <QGraphicsSceneHelpEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QToolTip>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>
#include <OrvNodeGraph/OrvNgResizeTriangleItem.h>
#include <OrvNodeGraph/OrvNgStyle.h>
#include <algorithm>

namespace {

OrvNgExtendedNode* extended(OrvNgNode* node)
{
    return dynamic_cast<OrvNgExtendedNode*>(node);
}

bool showsLabels(OrvNgNode* node)
{
    using Mode = EditorScene::Mode;
    const OrvNgExtendedNode* shown = extended(node);
    return shown && shown->portListMode() != Mode::PORT_LIST_EXPANDED
        && shown->portListMode() != Mode::PORT_LIST_ONLY_CONNECTED;
}

// Edge labels stand between the columns in the modes that show them.
NetLayoutOptions layoutOptions(const EditorScene::Nodes& nodes)
{
    constexpr qreal kGapForLabels = 140; // scene units
    NetLayoutOptions options;
    if (std::any_of(nodes.cbegin(), nodes.cend(), showsLabels))
        options.columnGap = kGapForLabels;
    return options;
}

QGraphicsItem* topItemAt(const QGraphicsScene& scene, const QPointF& scenePos)
{
    const QList<QGraphicsItem*> items
        = scene.items(scenePos, Qt::IntersectsItemShape, Qt::DescendingOrder);
    return items.isEmpty() ? nullptr : items.constFirst();
}

OrvNgPort* portOf(QGraphicsItem* item)
{
    for (; item; item = item->parentItem()) {
        if (auto* port = dynamic_cast<OrvNgPort*>(item))
            return port;
    }
    return nullptr;
}

} // namespace

// Building

EditorScene::EditorScene(std::shared_ptr<NetEditor> editor, int scope, Mode mode, QObject* parent)
    : QGraphicsScene(parent)
    , m_Editor(std::move(editor))
    , m_ScopeIndex(scope)
    , m_Mode(mode)
    , m_Unit(NetPlacement::unitOf(this->scope()))
    , m_Backdrops(std::make_unique<EditorBackdrops>(this))
    , m_Edits(std::make_unique<EditorEdits>(this))
    , m_Guide(std::make_unique<EditorWiringGuide>(this))
{
    // Nodes and edges are made and connected before they enter the scene, so that its index sees
    // each of them once, at its final place.
    buildNodes();
    connectPorts();
    setPortListMode(nodes(), mode);
    m_LooseCorners = corners(true);
    for (int i = 0; i < m_Nodes.size(); ++i) {
        if (!m_Nodes.at(i))
            continue;
        setCorner(i, m_LooseCorners.at(i));
        enter(m_Nodes.at(i));
    }
    for (int i = 0; i < m_Nodes.size(); ++i)
        colorPorts(i);
    m_Backdrops->build(); // when the nodes are at their places, so that it finds what lies inside
    listenToModel();
    new EditorStyleRefresh(this);
    connect(&OrvNgStyle::instance(), &OrvNgStyle::colorsUpdated, this,
        [this] { m_Backdrops->recolor(); });
}

EditorScene::~EditorScene()
{
    // Items die here, while their signals still find a whole scene.
    m_IsClosing = true;
    disconnect();
    clear();
}

const NetScope& EditorScene::scope() const
{
    return m_Editor->scope(m_ScopeIndex);
}

OrvNgNode* EditorScene::buildNode(int index)
{
    OrvNgNode* node = EditorNodeFactory::build(scope(), index);
    m_Nodes[index] = node;
    m_Indices.insert(node, index);
    connect(node, &OrvNgNode::nodePortListModeChanged, this,
        [this, node](int mode) { followMode(node, mode); });
    connect(node, &OrvNgNode::inputSourceChanged, this,
        [this, node](OrvNgNode* source, const QString& output, const QString& input) {
            m_Edits->wire(source, output, node, input);
        });
    connect(node, &OrvNgNode::inputSourceRefused, this,
        [this, node](OrvNgNode* source, const QString& output, const QString& input) {
            Q_EMIT status(input.isNull() ? whyNoInput(source, output, node)
                                         : whyNotConnect(source, output, node, input));
        });
    connect(node, &OrvNgNode::clickedOnDotableMarkerOnEdge, this,
        [this](OrvNgEdge* edge) { m_Edits->insertDot(edge); });
    return node;
}

void EditorScene::enter(OrvNgNode* node)
{
    addItem(node);
    if (extended(node))
        return;
    // A dot has no ports: an unconnected edge shows its free output.
    const QStringList outputs = node->outputPoints();
    for (const QString& output : outputs)
        node->addOutputEdge(output);
}

void EditorScene::buildNodes()
{
    const int count = scope().nodes.size();
    m_Nodes.resize(count);
    m_Places.resize(count);
    m_Indices.reserve(count);
    for (int i = 0; i < count; ++i) {
        if (!scope().nodes.at(i).removed)
            buildNode(i);
    }
    for (const NetOpenEnd& end : scope().openEnds) {
        if (end.reason == NetOpenEnd::Reason::Missing)
            m_Missing.insert({end.destNode, end.destPort});
    }
}

void EditorScene::connectPorts()
{
    for (const NetConnection& each : scope().connections) {
        OrvNgEdge* edge = edgeOf({each.destNode, each.destPort});
        OrvNgNode* source = node(each.sourceNode);
        if (!edge || !source)
            continue;
        edge->setSourceNode(source,
            EditorNodeFactory::outputName(scope().nodes.at(each.sourceNode), each.sourcePort));
        m_Sources.insert(
            {each.destNode, each.destPort}, NetPortRef{each.sourceNode, each.sourcePort});
    }
}

QVector<QPointF> EditorScene::corners(bool asInDocument) const
{
    QVector<int> rank(m_Nodes.size(), -1); // place among the nodes that are there
    QVector<NetPlacementItem> items;
    items.reserve(m_Nodes.size());
    for (int i = 0; i < m_Nodes.size(); ++i) {
        if (!m_Nodes.at(i))
            continue;
        const NetNode& model = scope().nodes.at(i);
        rank[i] = items.size();
        items.append({m_Nodes.at(i)->boundingRect().size(), asInDocument && model.hasPosition,
            model.position});
    }
    QVector<NetLayoutEdge> edges;
    edges.reserve(scope().connections.size());
    for (const NetConnection& each : scope().connections) {
        OrvNgNode* source = node(each.sourceNode);
        OrvNgNode* dest = node(each.destNode);
        if (!source || !dest)
            continue;
        const QString output
            = EditorNodeFactory::outputName(scope().nodes.at(each.sourceNode), each.sourcePort);
        const QString input
            = EditorNodeFactory::inputName(scope().nodes.at(each.destNode), each.destPort);
        edges.append({rank.at(each.sourceNode), rank.at(each.destNode),
            source->outputPortSourcePos(output).y() - source->sceneBoundingRect().top(),
            dest->inputPortDestPos(input).y() - dest->sceneBoundingRect().top()});
    }
    const QVector<QPointF> placed
        = NetPlacement::place(items, edges, m_Unit, layoutOptions(nodes()));
    QVector<QPointF> result(m_Nodes.size());
    for (int i = 0; i < m_Nodes.size(); ++i) {
        if (rank.at(i) >= 0)
            result[i] = placed.at(rank.at(i));
    }
    return result;
}

// Nodes

EditorScene::Nodes EditorScene::nodes() const
{
    Nodes nodes;
    nodes.reserve(m_Nodes.size());
    std::copy_if(m_Nodes.cbegin(), m_Nodes.cend(), std::back_inserter(nodes),
        [](const OrvNgNode* node) { return node != nullptr; });
    return nodes;
}

int EditorScene::indexOf(const QGraphicsItem* item) const
{
    for (; item; item = item->parentItem()) {
        const auto found = m_Indices.constFind(item);
        if (found != m_Indices.cend())
            return *found;
    }
    return -1;
}

EditorScene::Nodes EditorScene::selectedNodes() const
{
    Nodes nodes;
    const QList<QGraphicsItem*> items = selectedItems();
    for (QGraphicsItem* item : items) {
        const auto found = m_Indices.constFind(item);
        if (found != m_Indices.cend())
            nodes.append(m_Nodes.at(*found));
    }
    return nodes;
}

int EditorScene::connectionCount() const
{
    int count = 0;
    for (OrvNgNode* node : m_Nodes) {
        if (!node)
            continue;
        const QList<OrvNgEdge*>& inputs = node->inputs();
        count += static_cast<int>(std::count_if(inputs.cbegin(), inputs.cend(),
            [](const OrvNgEdge* edge) { return edge->isFullConnected(); }));
    }
    return count;
}

QRectF EditorScene::contentBounds() const
{
    return boundsOf(nodes() + m_Backdrops->items());
}

QRectF EditorScene::selectionBounds() const
{
    Nodes selected = selectedNodes();
    const QVector<int> backdrops = m_Backdrops->selected();
    for (const int backdrop : backdrops)
        selected.append(m_Backdrops->item(backdrop));
    return boundsOf(selected);
}

QRectF EditorScene::boundsOf(const Nodes& nodes)
{
    QRectF bounds;
    for (const OrvNgNode* node : nodes)
        bounds |= node->sceneBoundingRect();
    return bounds;
}

QPointF EditorScene::middleOf(const Nodes& nodes)
{
    QPointF sum;
    for (const OrvNgNode* node : nodes)
        sum += node->sceneBoundingRect().center();
    return nodes.isEmpty() ? sum : sum / nodes.size();
}

// Ports

NetPortRef EditorScene::inputOf(const QGraphicsItem* node, const QString& name) const
{
    const int index = m_Indices.value(node, -1);
    return {index, index < 0 ? -1 : EditorNodeFactory::inputIndex(scope().nodes.at(index), name)};
}

NetPortRef EditorScene::outputOf(const QGraphicsItem* node, const QString& name) const
{
    const int index = m_Indices.value(node, -1);
    return {index, index < 0 ? -1 : EditorNodeFactory::outputIndex(scope().nodes.at(index), name)};
}

OrvNgEdge* EditorScene::edgeOf(const NetPortRef& input) const
{
    OrvNgNode* item = node(input.node);
    if (!item)
        return nullptr;
    return item->input(EditorNodeFactory::inputName(scope().nodes.at(input.node), input.port));
}

QString EditorScene::whyNotConnect(const OrvNgNode* source, const QString& output,
    const OrvNgNode* dest, const QString& input) const
{
    const NetPortRef from = outputOf(source, output);
    const NetPortRef to = inputOf(dest, input);
    if (from.port < 0 || to.node < 0)
        return tr("There is nothing here that can be connected.");
    if (to.port < 0)
        return tr("\"%1\" stands for several inputs: expand the node to choose one.").arg(input);
    return m_Editor->whyNotConnect(m_ScopeIndex, from, to);
}

/// For a drop that named no input: the reason of the one that was most likely meant.
QString EditorScene::whyNoInput(
    const OrvNgNode* source, const QString& output, const OrvNgNode* dest) const
{
    const NetPortRef from = outputOf(source, output);
    const int to = indexOf(dest);
    if (from.port < 0 || to < 0)
        return whyNotConnect(source, output, dest, QString());
    const QString& type = scope().nodes.at(from.node).outputs.at(from.port).type;
    const QVector<NetPort>& inputs = scope().nodes.at(to).inputs;
    for (int port = 0; port < inputs.size(); ++port) {
        if (inputs.at(port).type == type)
            return m_Editor->whyNotConnect(m_ScopeIndex, from, {to, port});
    }
    return tr("No input of \"%1\" takes %2.").arg(scope().nodes.at(to).displayName(), type);
}

void EditorScene::setPortListMode(const Nodes& nodes, Mode mode)
{
    for (OrvNgNode* node : nodes) {
        if (OrvNgExtendedNode* item = extended(node))
            item->setPortListMode(mode);
    }
}

void EditorScene::followMode(OrvNgNode* node, int mode)
{
    // A click means the node that was clicked, and with it the selection that it is part of.
    const Nodes nodes = node->isSelected() ? selectedNodes() : Nodes{node};
    setPortListMode(nodes, static_cast<Mode>(mode));
}

// What the user does

void EditorScene::nodeDropped(OrvNgNode* node)
{
    if (!m_IsClosing && m_Indices.contains(node))
        m_Edits->drop(node);
}

void EditorScene::nodeLetGo(OrvNgNode*)
{
    if (m_IsClosing)
        return;
    if (m_Following == 0) {
        m_Edits->commitMoves();
        return;
    }
    // A step of the history is under way: another one can only follow it.
    QMetaObject::invokeMethod(
        this, [this] { m_Edits->commitMoves(); }, Qt::QueuedConnection);
}

void EditorScene::nodeGone(OrvNgNode* node)
{
    m_Backdrops->forget(node);
    const auto found = m_Indices.find(node);
    if (found == m_Indices.end())
        return;
    m_Nodes[*found] = nullptr;
    m_Indices.erase(found);
}

void EditorScene::arrange()
{
    m_Edits->arrange(corners(false));
}

void EditorScene::setDotMode(bool shown)
{
    if (shown == m_DotMode)
        return;
    m_DotMode = shown;
    for (OrvNgNode* node : qAsConst(m_Nodes)) {
        if (!node)
            continue;
        for (OrvNgEdge* edge : node->inputs()) {
            const bool isOffered = edge->isFullConnected() && edge->isReconnectable();
            if (!shown || (isOffered && edge->isVisible()))
                edge->switchToDotableMode(shown);
        }
    }
}

void EditorScene::deleteSelection()
{
    m_Edits->remove(selectedNodes(), m_Backdrops->selected());
}

void EditorScene::extract(OrvNgNode* node)
{
    if (m_Indices.contains(node))
        m_Edits->extract({node});
}

void EditorScene::extractSelection()
{
    auto* dragged = dynamic_cast<OrvNgNode*>(mouseGrabberItem());
    if (m_Indices.contains(dragged))
        m_Edits->extract({dragged});
    else
        m_Edits->extract(selectedNodes());
}

void EditorScene::wrapSelection()
{
    m_Edits->wrap(selectedNodes(), selectionBounds());
}

void EditorScene::addNote(const QPointF& scenePos)
{
    const int note = m_Edits->addNote(scenePos);
    if (note >= 0)
        askForText(note, true);
}

void EditorScene::renameBackdrop(int backdrop)
{
    if (m_Backdrops->item(backdrop))
        askForText(backdrop, scope().backdrops.at(backdrop).isNote);
}

void EditorScene::askForText(int backdrop, bool isDoc)
{
    const QString whyNot = m_Editor->whyNotChangeBackdrop(m_ScopeIndex, backdrop);
    const NetBackdrop& model = scope().backdrops.at(backdrop);
    if (whyNot.isEmpty())
        Q_EMIT textWanted(backdrop, isDoc ? model.doc : model.title, isDoc);
    else
        Q_EMIT status(whyNot);
}

void EditorScene::setBackdropText(int backdrop, const QString& text, bool isDoc)
{
    m_Edits->setBackdropText(backdrop, text, isDoc);
}

void EditorScene::setBackdropColor(int backdrop, const QColor& color)
{
    m_Edits->setBackdropColor(backdrop, color);
}

void EditorScene::selectAll()
{
    const Nodes all = nodes() + m_Backdrops->items();
    for (OrvNgNode* node : all)
        node->setSelected(true);
}

void EditorScene::deselectAll()
{
    clearSelection();
}

void EditorScene::selectUpstream()
{
    select(true);
}

void EditorScene::selectDownstream()
{
    select(false);
}

void EditorScene::select(bool upstream)
{
    QVector<int> seeds;
    const Nodes selected = selectedNodes();
    for (OrvNgNode* node : selected)
        seeds.append(m_Indices.value(node));
    const QVector<bool> reached = EditorEdits::reachable(scope(), seeds, upstream);
    for (int i = 0; i < m_Nodes.size(); ++i) {
        if (reached.at(i) && m_Nodes.at(i))
            m_Nodes.at(i)->setSelected(true);
    }
}

QString EditorScene::toolTipOfPort(int nodeIndex, const OrvNgPort* port) const
{
    const NetNode& model = scope().nodes.at(nodeIndex);
    OrvNgExtendedNode* node = extended(m_Nodes.at(nodeIndex));
    const QString name = port->originalPortName();
    if (node && port->isClustered())
        return EditorToolTips::ofCluster(name, node->inputClusterPortName2ClusterList(name));
    if (node && node->inputPort(name) == port)
        return EditorToolTips::ofInput(
            scope(), nodeIndex, NetDefinition::indexOf(model.inputs, name));
    return EditorToolTips::ofOutput(
        scope(), nodeIndex, NetDefinition::indexOf(model.outputs, name));
}

QString EditorScene::toolTipAt(const QPointF& scenePos) const
{
    QGraphicsItem* item = topItemAt(*this, scenePos);
    if (m_Backdrops->textOf(item) != EditorBackdrops::Text::None)
        return EditorToolTips::ofBackdrop(scope().backdrops.at(m_Backdrops->indexOf(item)));
    const int index = indexOf(item);
    if (index < 0)
        return {};
    if (const OrvNgPort* port = portOf(item))
        return toolTipOfPort(index, port);
    return EditorToolTips::ofNode(scope().nodes.at(index));
}

OrvNgEdge* EditorScene::carriedEdge() const
{
    auto* edge = dynamic_cast<OrvNgEdge*>(mouseGrabberItem());
    return edge && edge->isDragging() ? edge : nullptr;
}

bool EditorScene::event(QEvent* event)
{
    if (event->type() == QEvent::DeferredDelete)
        return QGraphicsScene::event(event); // afterwards there is no scene
    // Whatever started or ended the carrying of an edge, an event of the scene follows it.
    const QPointer<EditorScene> self(this); // the event may be its own deletion
    const bool isHandled = QGraphicsScene::event(event);
    if (self && !m_IsClosing)
        m_Guide->follow(carriedEdge());
    return isHandled;
}

void EditorScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem* item = topItemAt(*this, event->scenePos());
    const EditorBackdrops::Text text = m_Backdrops->textOf(item);
    if (text != EditorBackdrops::Text::None && event->button() == Qt::LeftButton) {
        event->accept();
        askForText(m_Backdrops->indexOf(item), text == EditorBackdrops::Text::Doc);
        return;
    }
    const int index = indexOf(item);
    OrvNgNode* hit = node(index);
    if (hit && event->button() == Qt::LeftButton
        && hit->isDoubleClickValid(hit->mapFromScene(event->scenePos()))) {
        event->accept();
        Q_EMIT nodeActivated(index);
        return;
    }
    QGraphicsScene::mouseDoubleClickEvent(event);
}

/// The library records a resize as a step of its own; the change of the model belongs into the same one.
void EditorScene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem* grabber = mouseGrabberItem();
    const int backdrop
        = dynamic_cast<OrvNgResizeTriangleItem*>(grabber) ? m_Backdrops->indexOf(grabber) : -1;
    if (backdrop < 0 || event->button() != Qt::LeftButton) {
        QGraphicsScene::mouseReleaseEvent(event);
        return;
    }
    const QString whyNot = m_Editor->whyNotChangeBackdrop(m_ScopeIndex, backdrop);
    const QScopedValueRollback<int> resized(m_Resized, backdrop);
    const bool isMoved = !m_Backdrops->isAtRest(backdrop)
        || event->scenePos() != event->buttonDownScenePos(Qt::LeftButton);
    if (!isMoved || !whyNot.isEmpty()) {
        grabber->ungrabMouse(); // takes it back: there is nothing to record
        if (isMoved)
            Q_EMIT status(whyNot);
        return;
    }
    const OrvUndoManager::AutoMacro step(tr("Resize %1").arg(scope().backdrops.at(backdrop).title));
    QGraphicsScene::mouseReleaseEvent(event);
    m_Edits->commitMoves();
}

void EditorScene::helpEvent(QGraphicsSceneHelpEvent* event)
{
    const QString text = toolTipAt(event->scenePos());
    QToolTip::showText(event->screenPos(), text, event->widget());
    event->setAccepted(!text.isEmpty());
}
