#include "editor/EditorBackdrops.h"
#include "editor/EditorNodeFactory.h"
#include "editor/EditorPortColors.h"
#include "editor/EditorScene.h"
#include "editor/EditorSnapPause.h"
#include "editor/EditorWiringGuide.h"

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>
#include <algorithm>

// How the scene shows what the model says: places, the looks of ports, and changes as they come.

namespace {

/// Counts up for as long as it lives.
class Counted
{
public:
    explicit Counted(int* depth)
        : m_Depth(depth)
    {
        ++*m_Depth;
    }
    ~Counted() { --*m_Depth; }

private:
    Q_DISABLE_COPY(Counted)
    int* m_Depth;
};

bool isConnectedOutput(OrvNgNode* node, const QString& name)
{
    const OrvNgEdge* edge = node->outputEdge(name); // connected ones come first
    return edge && edge->destNode();
}

OrvNgExtendedNode* extended(OrvNgNode* node)
{
    return dynamic_cast<OrvNgExtendedNode*>(node);
}

} // namespace

// Places

void EditorScene::setCorner(int index, const QPointF& corner)
{
    OrvNgNode* node = m_Nodes.at(index);
    const QPointF place = corner - node->boundingRect().topLeft();
    if (node->pos() != place) {
        const EditorSnapPause exact;
        node->setPos(place);
    }
    m_Places[index] = node->pos();
}

bool EditorScene::isAtRest(int index) const
{
    const OrvNgNode* item = node(index);
    return !item || item->pos() == m_Places.at(index);
}

void EditorScene::putBack(int index)
{
    if (!node(index))
        return;
    const NetNode& model = scope().nodes.at(index);
    setCorner(index,
        model.hasPosition ? NetPlacement::toScene(model.position, m_Unit)
                          : m_LooseCorners.at(index));
}

QPointF EditorScene::filePosition(int index) const
{
    const OrvNgNode* item = m_Nodes.at(index);
    return filePosition(item->pos() + item->boundingRect().topLeft());
}

QPointF EditorScene::filePosition(const QPointF& corner) const
{
    return NetPlacement::toFile(corner, m_Unit);
}

QRectF EditorScene::fileRect(const QRectF& rect) const
{
    return {filePosition(rect.topLeft()), filePosition(rect.bottomRight())};
}

void EditorScene::placeLoose(int index, const QPointF& corner)
{
    m_LooseCorners[index] = corner;
    setCorner(index, corner);
}

// Looks of ports

void EditorScene::colorInput(const NetPortRef& input)
{
    OrvNgExtendedNode* item = extended(node(input.node));
    const NetPort& port = scope().nodes.at(input.node).inputs.at(input.port);
    OrvNgPort* shown = item ? item->inputPort(port.name) : nullptr;
    if (!shown)
        return;
    const bool isConnected = m_Sources.contains({input.node, input.port});
    shown->setSpecialPortColor(m_Missing.contains({input.node, input.port})
            ? EditorPortColors::brokenColor()
            : EditorPortColors::color(port.type, isConnected));
}

void EditorScene::colorOutput(const NetPortRef& output)
{
    OrvNgExtendedNode* item = extended(node(output.node));
    if (!item)
        return;
    const NetPort& port = scope().nodes.at(output.node).outputs.at(output.port);
    if (OrvNgPort* shown = item->outputPort(port.name))
        shown->setSpecialPortColor(
            EditorPortColors::color(port.type, isConnectedOutput(item, port.name)));
}

void EditorScene::colorPorts(int index)
{
    if (!node(index))
        return;
    const NetNode& model = scope().nodes.at(index);
    for (int i = 0; i < model.inputs.size(); ++i)
        colorInput({index, i});
    for (int i = 0; i < model.outputs.size(); ++i)
        colorOutput({index, i});
}

bool EditorScene::isMissing(const NetPortRef& input) const
{
    const QVector<NetOpenEnd>& ends = scope().openEnds;
    return std::any_of(ends.cbegin(), ends.cend(), [&input](const NetOpenEnd& end) {
        return end.destNode == input.node && end.destPort == input.port
            && end.reason == NetOpenEnd::Reason::Missing;
    });
}

void EditorScene::showMissing(const NetPortRef& input)
{
    const PortKey key(input.node, input.port);
    const bool missing = isMissing(input);
    if (missing == m_Missing.contains(key))
        return;
    if (missing)
        m_Missing.insert(key);
    else
        m_Missing.remove(key);
    EditorNodeFactory::nameInputs(node(input.node), scope(), input.node);
}

void EditorScene::showHidden(const NetPortRef& input)
{
    const NetPort& port = scope().nodes.at(input.node).inputs.at(input.port);
    OrvNgExtendedNode* item = extended(node(input.node));
    if (!item || !port.isHidden())
        return;
    item->updateInputTags(port.name, EditorNodeFactory::tagsOf(port));
    item->applyPortVisibilityMode();
}

void EditorScene::showConnection(const NetPortRef& input)
{
    OrvNgEdge* edge = edgeOf(input);
    if (!edge)
        return;
    const Counted following(&m_Following);
    const NetConnection* connection = m_Editor->connectionTo(m_ScopeIndex, input);
    NetPortRef source;
    if (connection && node(connection->sourceNode))
        source = {connection->sourceNode, connection->sourcePort};
    const NetPortRef old = m_Sources.take({input.node, input.port});
    if (source.node >= 0) {
        m_Sources.insert({input.node, input.port}, source);
        edge->setSourceNode(node(source.node),
            EditorNodeFactory::outputName(scope().nodes.at(source.node), source.port));
        edge->switchToDotableMode(m_DotMode);
    } else {
        edge->setSourceNode(nullptr, QString());
    }
    showMissing(input);
    showHidden(input);
    colorInput(input);
    if (old.node >= 0)
        colorOutput(old);
    if (source.node >= 0)
        colorOutput(source);
    m_Guide->invalidate();
}

// Following the model

void EditorScene::listenToModel()
{
    const auto here = [this](int changedScope) { return changedScope == m_ScopeIndex; };
    connect(m_Editor.get(), &NetEditor::nodesMoved, this,
        [this, here](int changedScope, const QVector<int>& moved) {
            if (here(changedScope))
                followMoves(moved);
        });
    connect(m_Editor.get(), &NetEditor::inputChanged, this,
        [this, here](int changedScope, int nodeIndex, int port) {
            if (here(changedScope))
                showConnection({nodeIndex, port});
        });
    connect(
        m_Editor.get(), &NetEditor::nodeAdded, this, [this, here](int changedScope, int nodeIndex) {
            if (here(changedScope))
                followAddition(nodeIndex);
        });
    connect(m_Editor.get(), &NetEditor::nodeRemoved, this,
        [this, here](int changedScope, int nodeIndex) {
            if (here(changedScope))
                followRemoval(nodeIndex);
        });
    const auto follow = [this, here](void (NetEditor::*change)(int, int),
                            void (EditorBackdrops::*step)(int)) {
        connect(m_Editor.get(), change, this, [this, here, step](int changedScope, int backdrop) {
            if (!here(changedScope))
                return;
            const Counted following(&m_Following);
            (m_Backdrops.get()->*step)(backdrop);
        });
    };
    follow(&NetEditor::backdropChanged, &EditorBackdrops::followChange);
    follow(&NetEditor::backdropAdded, &EditorBackdrops::followAddition);
    follow(&NetEditor::backdropRemoved, &EditorBackdrops::followRemoval);
}

void EditorScene::followMoves(const QVector<int>& nodes)
{
    const Counted following(&m_Following);
    for (const int index : nodes)
        putBack(index);
}

void EditorScene::followAddition(int index)
{
    const Counted following(&m_Following);
    const int count = scope().nodes.size();
    m_Nodes.resize(count);
    m_Places.resize(count);
    m_LooseCorners.resize(count);
    if (m_Nodes.at(index))
        return;
    OrvNgNode* added = buildNode(index);
    setPortListMode({added}, m_RemovedModes.value(index, m_Mode));
    putBack(index);
    enter(added);
    for (const NetConnection& each : scope().connections) {
        if (each.sourceNode == index || each.destNode == index)
            showConnection({each.destNode, each.destPort});
    }
    for (int port = 0; port < scope().nodes.at(index).inputs.size(); ++port) {
        if (isMissing({index, port}))
            m_Missing.insert({index, port});
    }
    colorPorts(index);
    m_Guide->invalidate();
}

void EditorScene::followRemoval(int index)
{
    const Counted following(&m_Following);
    OrvNgNode* gone = node(index);
    if (!gone)
        return;
    if (const OrvNgExtendedNode* item = extended(gone))
        m_RemovedModes.insert(index, item->portListMode());
    m_Nodes[index] = nullptr;
    m_Indices.remove(gone);
    QVector<NetPortRef> touched; // outputs that fed it, and inputs that it fed
    for (auto each = m_Sources.cbegin(); each != m_Sources.cend(); ++each) {
        if (each.key().first == index || each->node == index)
            touched.append({each.key().first, each.key().second});
    }
    gone->destroy();
    gone->hide(); // it is deleted later
    for (const NetPortRef& input : qAsConst(touched)) {
        const NetPortRef source = m_Sources.value({input.node, input.port});
        if (input.node != index) {
            showConnection(input);
            continue;
        }
        m_Sources.remove({input.node, input.port});
        colorOutput(source);
    }
    m_Guide->invalidate();
}
