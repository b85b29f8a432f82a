#include "editor/EditorScene.h"

#include "editor/EditorNodeFactory.h"
#include "editor/EditorPortColors.h"
#include "editor/EditorToolTips.h"
#include "network/NetDocument.h"
#include "network/NetPlacement.h"

#include <QGraphicsSceneHelpEvent>
#include <QGraphicsSceneMouseEvent>
#include <QToolTip>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>
#include <algorithm>

namespace {

bool isConnectedOutput(OrvNgNode* node, const QString& name)
{
    const OrvNgEdge* edge = node->outputEdge(name); // connected ones come first
    return edge && edge->destNode();
}

// Edge labels stand between the columns in the modes that show them.
NetLayoutOptions layoutOptions(const EditorScene::Nodes& nodes)
{
    constexpr qreal kGapForLabels = 140; // scene units
    using Mode = EditorScene::Mode;
    NetLayoutOptions options;
    const bool showsLabels
        = std::any_of(nodes.cbegin(), nodes.cend(), [](const OrvNgExtendedNode* node) {
              return node->portListMode() != Mode::PORT_LIST_EXPANDED
                  && node->portListMode() != Mode::PORT_LIST_ONLY_CONNECTED;
          });
    if (showsLabels)
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

EditorScene::EditorScene(
    std::shared_ptr<const NetDocument> document, int scope, Mode mode, QObject* parent)
    : QGraphicsScene(parent)
    , m_Document(std::move(document))
    , m_ScopeIndex(scope)
{
    // Nodes and edges are made and connected before they enter the scene, so that its index sees
    // each of them once, at its final place.
    buildNodes();
    connectPorts();
    for (OrvNgExtendedNode* node : qAsConst(m_Nodes))
        node->setPortListMode(mode);
    place(true);
    for (OrvNgExtendedNode* node : qAsConst(m_Nodes))
        addItem(node);
    for (int i = 0; i < m_Nodes.size(); ++i)
        colorPorts(i);
    markOpenEnds();
}

EditorScene::~EditorScene()
{
    // Items die here, while their signals still find a whole scene.
    disconnect();
    clear();
}

const NetScope& EditorScene::scope() const
{
    return m_Document->scopes().at(m_ScopeIndex);
}

void EditorScene::buildNodes()
{
    const int count = scope().nodes.size();
    m_Nodes.reserve(count);
    m_Indices.reserve(count);
    for (int i = 0; i < count; ++i) {
        OrvNgExtendedNode* node = EditorNodeFactory::build(scope(), i);
        m_Nodes.append(node);
        m_Indices.insert(node, i);
        connect(node, &OrvNgNode::nodePortListModeChanged, this,
            [this, node](int mode) { followMode(node, mode); });
    }
}

void EditorScene::connectPorts()
{
    for (const NetConnection& connection : scope().connections) {
        const NetNode& source = scope().nodes.at(connection.sourceNode);
        const NetNode& dest = scope().nodes.at(connection.destNode);
        OrvNgEdge* edge
            = m_Nodes.at(connection.destNode)->input(dest.inputs.at(connection.destPort).name);
        if (edge) {
            edge->setSourceNode(
                m_Nodes.at(connection.sourceNode), source.outputs.at(connection.sourcePort).name);
        }
    }
}

void EditorScene::place(bool asInDocument)
{
    QVector<NetPlacementItem> items;
    items.reserve(m_Nodes.size());
    for (int i = 0; i < m_Nodes.size(); ++i) {
        const NetNode& model = scope().nodes.at(i);
        items.append({m_Nodes.at(i)->boundingRect().size(), asInDocument && model.hasPosition,
            model.position});
    }
    QVector<NetLayoutEdge> edges;
    edges.reserve(scope().connections.size());
    for (const NetConnection& each : scope().connections) {
        OrvNgExtendedNode* source = m_Nodes.at(each.sourceNode);
        OrvNgExtendedNode* dest = m_Nodes.at(each.destNode);
        const QString output = scope().nodes.at(each.sourceNode).outputs.at(each.sourcePort).name;
        const QString input = scope().nodes.at(each.destNode).inputs.at(each.destPort).name;
        edges.append({each.sourceNode, each.destNode,
            source->outputPortSourcePos(output).y() - source->sceneBoundingRect().top(),
            dest->inputPortDestPos(input).y() - dest->sceneBoundingRect().top()});
    }
    const QVector<QPointF> corners
        = NetPlacement::place(items, edges, NetPlacement::unitOf(scope()), layoutOptions(m_Nodes));
    for (int i = 0; i < m_Nodes.size(); ++i)
        m_Nodes.at(i)->setPos(corners.at(i) - m_Nodes.at(i)->boundingRect().topLeft());
}

void EditorScene::colorPorts(int nodeIndex)
{
    const NetNode& model = scope().nodes.at(nodeIndex);
    OrvNgExtendedNode* node = m_Nodes.at(nodeIndex);
    for (const NetPort& port : model.inputs) {
        const OrvNgEdge* edge = node->input(port.name);
        if (OrvNgPort* item = node->inputPort(port.name))
            item->setSpecialPortColor(
                EditorPortColors::color(port.type, edge && edge->sourceNode()));
    }
    for (const NetPort& port : model.outputs) {
        if (OrvNgPort* item = node->outputPort(port.name))
            item->setSpecialPortColor(
                EditorPortColors::color(port.type, isConnectedOutput(node, port.name)));
    }
}

void EditorScene::markOpenEnds()
{
    for (const NetOpenEnd& end : scope().openEnds) {
        const QString& name = scope().nodes.at(end.destNode).inputs.at(end.destPort).name;
        OrvNgPort* port = m_Nodes.at(end.destNode)->inputPort(name);
        if (port && end.reason == NetOpenEnd::Reason::Missing)
            port->setSpecialPortColor(EditorPortColors::brokenColor());
    }
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
    for (OrvNgExtendedNode* node : m_Nodes) {
        const QList<OrvNgEdge*>& inputs = node->inputs();
        count += static_cast<int>(std::count_if(inputs.cbegin(), inputs.cend(),
            [](const OrvNgEdge* edge) { return edge->isFullConnected(); }));
    }
    return count;
}

QRectF EditorScene::boundsOf(const Nodes& nodes)
{
    QRectF bounds;
    for (const OrvNgExtendedNode* node : nodes)
        bounds |= node->sceneBoundingRect();
    return bounds;
}

QPointF EditorScene::middleOf(const Nodes& nodes)
{
    QPointF sum;
    for (const OrvNgExtendedNode* node : nodes)
        sum += node->sceneBoundingRect().center();
    return nodes.isEmpty() ? sum : sum / nodes.size();
}

void EditorScene::setPortListMode(const Nodes& nodes, Mode mode)
{
    for (OrvNgExtendedNode* node : nodes)
        node->setPortListMode(mode);
}

void EditorScene::followMode(OrvNgExtendedNode* node, int mode)
{
    // A click means the node that was clicked, and with it the selection that it is part of.
    const Nodes nodes = node->isSelected() ? selectedNodes() : Nodes{node};
    setPortListMode(nodes, static_cast<Mode>(mode));
}

void EditorScene::arrange()
{
    place(false);
}

QString EditorScene::toolTipOfPort(int nodeIndex, const OrvNgPort* port) const
{
    const NetNode& model = scope().nodes.at(nodeIndex);
    OrvNgExtendedNode* node = m_Nodes.at(nodeIndex);
    const QString name = port->originalPortName();
    if (port->isClustered())
        return EditorToolTips::ofCluster(name, node->inputClusterPortName2ClusterList(name));
    if (node->inputPort(name) == port)
        return EditorToolTips::ofInput(
            scope(), nodeIndex, NetDefinition::indexOf(model.inputs, name));
    return EditorToolTips::ofOutput(
        scope(), nodeIndex, NetDefinition::indexOf(model.outputs, name));
}

QString EditorScene::toolTipAt(const QPointF& scenePos) const
{
    QGraphicsItem* item = topItemAt(*this, scenePos);
    const int index = indexOf(item);
    if (index < 0)
        return {};
    if (const OrvNgPort* port = portOf(item))
        return toolTipOfPort(index, port);
    return EditorToolTips::ofNode(scope().nodes.at(index));
}

void EditorScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    const int index = indexOf(topItemAt(*this, event->scenePos()));
    OrvNgExtendedNode* hit = node(index);
    if (hit && event->button() == Qt::LeftButton
        && hit->isDoubleClickValid(hit->mapFromScene(event->scenePos()))) {
        event->accept();
        Q_EMIT nodeActivated(index);
        return;
    }
    QGraphicsScene::mouseDoubleClickEvent(event);
}

void EditorScene::helpEvent(QGraphicsSceneHelpEvent* event)
{
    const QString text = toolTipAt(event->scenePos());
    QToolTip::showText(event->screenPos(), text, event->widget());
    event->setAccepted(!text.isEmpty());
}
