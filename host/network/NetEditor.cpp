#include "network/NetEditor.h"

#include "network/NetEditorText.h"
#include "network/NetFileSaver.h"
#include "network/NetRules.h"

#include <QFile>
#include <QPointer>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

const QVector<QByteArray> kBindings{"value", "nodename", "nodegraph", "interfacename", "output"};

// At most six decimals, as files of this format have them, and the same in every language.
QString numberText(qreal number)
{
    QString text = QString::number(number, 'f', 6);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

QString coordinateText(const NetNode& node, const char* attribute, qreal old, qreal wanted)
{
    const QString text = numberText(wanted);
    return node.hasPosition && numberText(old) == text
        ? node.attributes.value(QLatin1String(attribute))
        : text;
}

NetXmlPairs positionPairs(const NetNode& node, const QPointF& position)
{
    return {{"xpos", coordinateText(node, "xpos", node.position.x(), position.x())},
        {"ypos", coordinateText(node, "ypos", node.position.y(), position.y())}};
}

NetXmlPairs bindingPairs(const NetScope& scope, const NetPortRef& source)
{
    const NetNode& node = scope.nodes.at(source.node);
    const QString& output = node.outputs.at(source.port).name;
    switch (node.kind) {
    case NetNode::Kind::Node:
        if (node.outputs.size() > 1 || node.type == QLatin1String("multioutput"))
            return {{"nodename", node.name}, {"output", output}};
        return {{"nodename", node.name}};
    case NetNode::Kind::Graph:
        return {{"nodegraph", node.name}, {"output", output}};
    case NetNode::Kind::Input:
        return {{"interfacename", node.name}};
    case NetNode::Kind::Output:
        break;
    }
    return {{"output", node.name}};
}

NetXmlPairs defaultPairs(const NetPort& port)
{
    return port.defaultValue.isNull() ? NetXmlPairs() : NetXmlPairs{{"value", port.defaultValue}};
}

} // namespace

/// A change of an open document. What to do is worked out when it is made first, on the document as it is
/// then: several changes may be asked for before the first of them is made.
///
/// Called by  the host's undo commands.
/// Uses       NetEditor::Text.
/// Tells      NetEditor's listeners, through its signals.
class NetEditorChange : public NetEditor::Change
{
public:
    using Plan = std::function<NetEdit(const NetEditor::Text&)>;

    NetEditorChange(NetEditor* editor, Plan plan)
        : m_Editor(editor)
        , m_Plan(std::move(plan))
    {
    }

    void redo() override
    {
        if (m_Done || !m_Editor)
            return;
        if (m_Plan) {
            m_Edit = m_Plan(*m_Editor->m_Text);
            m_Plan = nullptr;
        }
        m_Done = m_Editor->m_Text->apply(&m_Edit, true);
        if (m_Done)
            tell(m_Edit.added >= 0 ? QVector<int>{m_Edit.added} : QVector<int>(), m_Edit.removed);
    }
    void undo() override
    {
        if (!m_Done || !m_Editor || !m_Editor->m_Text->apply(&m_Edit, false))
            return;
        m_Done = false;
        tell(m_Edit.removed, m_Edit.added >= 0 ? QVector<int>{m_Edit.added} : QVector<int>());
    }

private:
    // New boxes first and vanished ones last, so that a listener knows both ends of what is rewired.
    void tell(const QVector<int>& added, const QVector<int>& removed)
    {
        for (const int node : added)
            Q_EMIT m_Editor->nodeAdded(m_Edit.scope, node);
        for (const int node : added) {
            const int inputs = m_Editor->scope(m_Edit.scope).nodes.at(node).inputs.size();
            for (int port = 0; port < inputs; ++port) {
                if (m_Editor->connectionTo(m_Edit.scope, {node, port}))
                    Q_EMIT m_Editor->inputChanged(m_Edit.scope, node, port);
            }
        }
        for (const auto& [end, port] : qAsConst(m_Edit.rewired))
            Q_EMIT m_Editor->inputChanged(end.scope, end.node, port);
        for (const int node : removed)
            Q_EMIT m_Editor->nodeRemoved(m_Edit.scope, node);
        if (!m_Edit.moved.isEmpty())
            Q_EMIT m_Editor->nodesMoved(m_Edit.scope, m_Edit.moved);
    }

    QPointer<NetEditor> m_Editor;
    Plan m_Plan; // null once it was carried out
    NetEdit m_Edit;
    bool m_Done = false;
};

NetEditor::NetEditor(std::shared_ptr<NetDocument> document)
    : m_Document(std::move(document))
    , m_Text(std::make_unique<Text>(m_Document.get()))
{
}

NetEditor::~NetEditor() = default;

const NetDocument& NetEditor::document() const
{
    return *m_Document;
}

const NetScope& NetEditor::scope(int scope) const
{
    return m_Document->scopes().at(scope);
}

QString NetEditor::whyNotConnect(int scope, const NetPortRef& source, const NetPortRef& dest) const
{
    return NetRules(*m_Document).whyNotConnect(scope, source, dest);
}

QString NetEditor::whyNotDisconnect(int scope, const NetPortRef& dest) const
{
    return NetRules(*m_Document).whyNotDisconnect(scope, dest);
}

QString NetEditor::whyNotMove(int scope, int node) const
{
    return NetRules(*m_Document).whyNotMove(scope, node);
}

QString NetEditor::whyNotRemove(int scope, int node) const
{
    return NetRules(*m_Document).whyNotRemove(scope, node);
}

const NetConnection* NetEditor::connectionTo(int scope, const NetPortRef& dest) const
{
    if (scope < 0 || scope >= m_Document->scopes().size())
        return nullptr;
    const NetScope& network = m_Document->scopes().at(scope);
    const int found = network.connectionTo(dest.node, dest.port);
    return found < 0 ? nullptr : &network.connections.at(found);
}

NetEditor::ChangePtr NetEditor::moveNodes(int scope, const QVector<NetMove>& moves)
{
    QVector<NetMove> wanted;
    for (const NetMove& move : moves) {
        if (!whyNotMove(scope, move.node).isEmpty() || !std::isfinite(move.position.x())
            || !std::isfinite(move.position.y()))
            return nullptr;
        const NetNode& node = this->scope(scope).nodes.at(move.node);
        const bool same = node.hasPosition
            && numberText(node.position.x()) == numberText(move.position.x())
            && numberText(node.position.y()) == numberText(move.position.y());
        if (!same)
            wanted.append(move);
    }
    if (wanted.isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, wanted](const Text& text) {
        NetEdit edit;
        edit.scope = scope;
        NetXmlWriter writer(text.file(), &edit.patches);
        for (const NetMove& move : wanted) {
            if (!whyNotMove(scope, move.node).isEmpty())
                continue;
            const NetNode& node = this->scope(scope).nodes.at(move.node);
            edit.moved.append(move.node);
            if (const pugi::xml_node element = text.element(scope, move.node)) {
                writer.setAttributes(element, positionPairs(node, move.position));
                edit.changed.append({scope, move.node});
            } else {
                edit.shown.push_back({move.node, move.position, true});
            }
        }
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::connectInput(
    int scope, const NetPortRef& source, const NetPortRef& dest)
{
    if (!whyNotConnect(scope, source, dest).isEmpty())
        return nullptr;
    const NetConnection* old = connectionTo(scope, dest);
    if (old && old->sourceNode == source.node && old->sourcePort == source.port)
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, source, dest](const Text& text) {
        NetEdit edit;
        if (!whyNotConnect(scope, source, dest).isEmpty())
            return edit;
        edit.scope = scope;
        edit.changed.append({scope, dest.node});
        edit.rewired.append({{scope, dest.node}, dest.port});
        NetXmlWriter writer(text.file(), &edit.patches);
        NetXmlPairs binding = bindingPairs(this->scope(scope), source);
        if (const pugi::xml_node input = text.inputElement(scope, dest)) {
            writer.setAttributes(input, binding, kBindings);
            return edit;
        }
        const NetPort& port = this->scope(scope).nodes.at(dest.node).inputs.at(dest.port);
        binding.prepend({"type", port.type});
        binding.prepend({"name", port.name});
        writer.addInput(text.element(scope, dest.node), binding);
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::disconnectInput(int scope, const NetPortRef& dest)
{
    if (!whyNotDisconnect(scope, dest).isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, dest](const Text& text) {
        NetEdit edit;
        if (!whyNotDisconnect(scope, dest).isEmpty())
            return edit;
        edit.scope = scope;
        edit.changed.append({scope, dest.node});
        edit.rewired.append({{scope, dest.node}, dest.port});
        NetXmlWriter(text.file(), &edit.patches)
            .setAttributes(text.inputElement(scope, dest),
                defaultPairs(this->scope(scope).nodes.at(dest.node).inputs.at(dest.port)),
                kBindings);
        return edit;
    });
}

namespace {

// The inputs outside a set of nodes of one scope that the set feeds, in the own file: those of the scope,
// and those inside graphs of the document that take from one of its graphs or outputs.
QVector<QPair<NetEdit::Node, int>> consumersOf(
    const NetDocument& document, int scopeIndex, const QSet<int>& nodes)
{
    QVector<QPair<NetEdit::Node, int>> consumers;
    const NetScope& scope = document.scopes().at(scopeIndex);
    for (const NetConnection& wire : scope.connections) {
        if (nodes.contains(wire.sourceNode) && !nodes.contains(wire.destNode)
            && scope.nodes.at(wire.destNode).fileIndex == 0)
            consumers.append({{scopeIndex, wire.destNode}, wire.destPort});
    }
    const auto isOutside = [&](const NetOpenEnd& end) {
        const auto kind
            = end.binding == NetBinding::NodeGraph ? NetNode::Kind::Graph : NetNode::Kind::Output;
        return end.reason == NetOpenEnd::Reason::Outside
            && nodes.contains(scope.indexOf(kind, end.wantedName));
    };
    for (const NetScope& inner : document.scopes()) {
        if (scopeIndex != 0 || inner.index == 0)
            continue;
        for (const NetOpenEnd& end : inner.openEnds) {
            if (isOutside(end)
                && NetRules(document).whyNotMove(inner.index, end.destNode).isEmpty())
                consumers.append({{inner.index, end.destNode}, end.destPort});
        }
    }
    return consumers;
}

// True when the scope lies inside one of the boxes, at any depth.
bool isInside(const NetDocument& document, int scopeIndex, int around, const QSet<int>& boxes)
{
    for (int inner = scopeIndex; document.scopes().at(inner).parent >= 0;
         inner = document.scopes().at(inner).parent) {
        const int parent = document.scopes().at(inner).parent;
        if (parent == around && boxes.contains(document.scopes().at(parent).boxOf(inner)))
            return true;
    }
    return false;
}

} // namespace

NetEditor::ChangePtr NetEditor::removeNodes(int scope, const QVector<int>& nodes)
{
    for (const int node : nodes) {
        if (!whyNotRemove(scope, node).isEmpty())
            return nullptr;
    }
    if (nodes.isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, nodes](const Text& text) {
        NetEdit edit;
        edit.scope = scope;
        QSet<int> gone;
        for (const int node : nodes) {
            if (whyNotRemove(scope, node).isEmpty())
                gone.insert(node);
        }
        edit.removed = QVector<int>(gone.cbegin(), gone.cend());
        std::sort(edit.removed.begin(), edit.removed.end());
        NetXmlWriter writer(text.file(), &edit.patches);
        for (const int node : qAsConst(edit.removed))
            writer.remove(text.element(scope, node));
        const auto consumers = consumersOf(*m_Document, scope, gone);
        for (const auto& consumer : consumers) {
            const auto& [end, port] = consumer;
            if (isInside(*m_Document, end.scope, scope, gone))
                continue;
            writer.setAttributes(text.inputElement(end.scope, {end.node, port}),
                defaultPairs(this->scope(end.scope).nodes.at(end.node).inputs.at(port)), kBindings);
            edit.changed.append(end);
            edit.rewired.append(consumer);
        }
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::insertDot(
    int scope, const NetPortRef& dest, const QPointF& position)
{
    if (!whyNotDisconnect(scope, dest).isEmpty() || !connectionTo(scope, dest)
        || !std::isfinite(position.x()) || !std::isfinite(position.y()))
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, dest, position](const Text& text) {
        NetEdit edit;
        const NetConnection* wire = connectionTo(scope, dest);
        if (!whyNotDisconnect(scope, dest).isEmpty() || !wire)
            return edit;
        edit.scope = scope;
        for (int number = 1; edit.addedName.isNull(); ++number) {
            const QString name = QStringLiteral("dot%1").arg(number);
            if (!text.isNameTaken(scope, name))
                edit.addedName = name;
        }
        edit.addedBefore = dest.node;
        edit.changed.append({scope, dest.node});
        edit.rewired.append({{scope, dest.node}, dest.port});
        const NetScope& network = this->scope(scope);
        const QString& type = network.nodes.at(wire->sourceNode).outputs.at(wire->sourcePort).type;
        NetXmlPairs input = bindingPairs(network, {wire->sourceNode, wire->sourcePort});
        input.prepend({"type", type});
        input.prepend({"name", QStringLiteral("in")});
        NetXmlWriter writer(text.file(), &edit.patches);
        writer.addNodeBefore(text.element(scope, dest.node), "dot",
            {{"name", edit.addedName}, {"type", type}, {"xpos", numberText(position.x())},
                {"ypos", numberText(position.y())}},
            input);
        writer.setAttributes(
            text.inputElement(scope, dest), {{"nodename", edit.addedName}}, kBindings);
        return edit;
    });
}

QByteArray NetEditor::text() const
{
    return m_Text->file().bytes();
}

bool NetEditor::changedOnDisk() const
{
    QFile file(m_Document->filePath());
    if (!file.exists())
        return false;
    return file.size() != m_Text->onDisk.size() || !file.open(QIODevice::ReadOnly)
        || file.readAll() != m_Text->onDisk;
}

bool NetEditor::save(const QString& path, QString* error)
{
    const QByteArray bytes = text();
    const QString problem = NetFileSaver::save(path, bytes);
    if (error)
        *error = problem;
    if (!problem.isEmpty())
        return false;
    m_Text->setPath(path);
    m_Text->onDisk = bytes;
    return true;
}
