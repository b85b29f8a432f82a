#include "network/NetEditorText.h"

#include "network/NetScopeBuilder.h"

#include <QSet>

#include <algorithm>

namespace {

// Ports that edits leave without a use stay, so that positions in the list stay what they are.
void keepPorts(QVector<NetPort>* fresh, const QVector<NetPort>& old)
{
    for (const NetPort& port : old) {
        if (NetDefinition::indexOf(*fresh, port.name) < 0)
            fresh->append(port);
    }
}

} // namespace

NetEditor::Text::Text(NetDocument* document)
    : onDisk(document->file().bytes())
    , m_Document(document)
{
    for (const NetScope& scope : document->scopes()) {
        QVector<int> order;
        for (int i = 0; i < scope.nodes.size(); ++i) {
            if (scope.nodes.at(i).fileIndex == 0 && !scope.nodes.at(i).implied)
                order.append(i);
        }
        m_Order.append(order);
    }
}

pugi::xml_node NetEditor::Text::scopeElement(int scope) const
{
    const NetScope& inner = m_Document->scopes().at(scope);
    if (inner.fileIndex != 0)
        return {};
    if (inner.parent < 0)
        return file().root();
    return element(inner.parent, m_Document->scopes().at(inner.parent).boxOf(scope));
}

const NetEditor::Text::Elements& NetEditor::Text::elements(int scope) const
{
    const auto known = m_Elements.constFind(scope);
    if (known != m_Elements.cend())
        return *known;
    Elements found;
    const QVector<int>& order = m_Order.at(scope);
    int number = 0;
    for (const pugi::xml_node child : scopeElement(scope).children()) {
        if (NetScopeBuilder::isBox(child) && number < order.size())
            found.insert(order.at(number++), child);
    }
    return *m_Elements.insert(scope, found);
}

pugi::xml_node NetEditor::Text::element(int scope, int node) const
{
    return elements(scope).value(node);
}

pugi::xml_node NetEditor::Text::inputElement(int scope, const NetPortRef& dest) const
{
    const NetNode& node = m_Document->scopes().at(scope).nodes.at(dest.node);
    const pugi::xml_node own = element(scope, dest.node);
    if (node.kind == NetNode::Kind::Input || node.kind == NetNode::Kind::Output)
        return own;
    const QString& name = node.inputs.at(dest.port).name;
    for (const pugi::xml_node child : own.children("input")) {
        // As texts: bytes that are no UTF-8 are not what the model's name would be written as.
        if (NetXmlFile::attribute(child, "name") == name)
            return child;
    }
    return {};
}

bool NetEditor::Text::isNameTaken(int scope, const QString& name) const
{
    const NetScope& network = m_Document->scopes().at(scope);
    // Removed ones count: they may come back.
    const bool box = std::any_of(network.nodes.cbegin(), network.nodes.cend(),
        [&name](const NetNode& node) { return node.name == name; });
    const bool wanted = std::any_of(network.openEnds.cbegin(), network.openEnds.cend(),
        [&name](const NetOpenEnd& end) { return end.wantedName == name; });
    const bool backdrop = std::any_of(network.backdrops.cbegin(), network.backdrops.cend(),
        [&name](const NetBackdrop& each) { return each.name == name; });
    const QByteArray text = name.toUtf8();
    const auto holds = [&text](pugi::xml_node around) {
        return bool(around.find_child_by_attribute("name", text.constData()));
    };
    // What includes bring in stands at the document level too, and would be hidden.
    const auto& files = m_Document->files();
    const bool included = scope == 0
        && std::any_of(files.cbegin() + 1, files.cend(),
            [&holds](const auto& each) { return holds(each->root()); });
    return box || wanted || backdrop || included || network.indexOf(NetNode::Kind::Node, name) >= 0
        || holds(scopeElement(scope));
}

QString NetEditor::Text::freeName(int scope, const QString& wanted) const
{
    constexpr int kMaxDigits = 6; // a longer number is taken for a part of the name
    int end = wanted.size();
    while (end > 1 && wanted.size() - end < kMaxDigits && wanted.at(end - 1).isDigit())
        --end;
    QString name = wanted;
    for (int number = std::max(1, wanted.mid(end).toInt()); isNameTaken(scope, name);)
        name = wanted.left(end) + QString::number(++number);
    return name;
}

// Their order in the list is that in the file: new ones go to the end of both, and an undone removal
// brings an element back to its old place.
QHash<int, pugi::xml_node> NetEditor::Text::backdropElements(int scope) const
{
    Elements found;
    const QVector<NetBackdrop>& backdrops = m_Document->scopes().at(scope).backdrops;
    pugi::xml_node element = scopeElement(scope).child("backdrop");
    for (int i = 0; i < backdrops.size() && element; ++i) {
        if (backdrops.at(i).removed || backdrops.at(i).fileIndex != 0)
            continue;
        found.insert(i, element);
        element = element.next_sibling("backdrop");
    }
    return found;
}

bool NetEditor::Text::setText(const QString& path, const QByteArray& bytes)
{
    NetMessage problem;
    const auto changed = NetXmlFile::fromBytes(path, bytes, &problem);
    if (!changed)
        return false;
    m_Elements.clear(); // they are of the file that goes
    m_Document->m_Files.front() = changed;
    return true;
}

void NetEditor::Text::setPath(const QString& path)
{
    setText(path, file().bytes());
}

bool NetEditor::Text::apply(NetEdit* edit, bool forward)
{
    if (!edit->patches.isEmpty()) {
        const QByteArray text = forward ? edit->patches.applied(file().bytes())
                                        : edit->patches.reverted(file().bytes());
        if (text.isNull() || !setText(file().path(), text))
            return false;
    }
    changeNodes(edit, forward);
    changeBackdrops(edit, forward);
    for (const NetEdit::Node& each : qAsConst(edit->changed))
        refresh(each.scope, each.node);
    if (!edit->removed.isEmpty() || !edit->addedName.isNull())
        reconsiderNames();
    if (!edit->rewired.isEmpty() || !edit->removed.isEmpty())
        NetConnector::retypeByUse(&m_Document->m_Scopes[edit->scope], m_Order.at(edit->scope));
    for (NetEdit::Shown& each : edit->shown) {
        NetNode& node = m_Document->m_Scopes[edit->scope].nodes[each.node];
        std::swap(node.position, each.position);
        std::swap(node.hasPosition, each.hasPosition);
    }
    return true;
}

void NetEditor::Text::changeNodes(NetEdit* edit, bool forward)
{
    if (edit->removed.isEmpty() && edit->addedName.isNull())
        return;
    NetScope& scope = m_Document->m_Scopes[edit->scope];
    QVector<int>& order = m_Order[edit->scope];
    if (edit->orderBefore.isEmpty())
        edit->orderBefore = order;
    const bool isNew = !edit->addedName.isNull() && edit->added < 0;
    if (isNew)
        edit->added = appendDot(edit);
    const QVector<int> added = edit->added >= 0 ? QVector<int>{edit->added} : QVector<int>();
    order = edit->orderBefore;
    if (forward) {
        order.erase(std::remove_if(order.begin(), order.end(),
                        [edit](int node) { return edit->removed.contains(node); }),
            order.end());
        if (edit->added >= 0)
            order.insert(order.indexOf(edit->addedBefore), edit->added);
    }
    remove(edit->scope, forward ? edit->removed : added);
    const QVector<int>& back = forward ? added : edit->removed;
    scope.setRemoved(back, false);
    for (const int node : back)
        refresh(edit->scope, node);
}

int NetEditor::Text::appendDot(NetEdit* edit)
{
    NetScope& scope = m_Document->m_Scopes[edit->scope];
    NetNode dot;
    dot.name = edit->addedName;
    const int index = scope.append(dot);
    if (!scope.nameSpace.isEmpty())
        scope.addAlias(index, scope.nameSpace + QLatin1Char(':') + dot.name);
    return index;
}

void NetEditor::Text::changeBackdrops(NetEdit* edit, bool forward)
{
    QVector<int> fresh = edit->changedBackdrops + edit->removedBackdrops;
    if (fresh.isEmpty() && !edit->addsBackdrop)
        return;
    QVector<NetBackdrop>& backdrops = m_Document->m_Scopes[edit->scope].backdrops;
    if (edit->addsBackdrop && edit->addedBackdrop < 0) {
        edit->addedBackdrop = backdrops.size();
        backdrops.append(NetBackdrop());
    }
    for (const int each : qAsConst(edit->removedBackdrops))
        backdrops[each].removed = forward;
    if (edit->addsBackdrop) {
        backdrops[edit->addedBackdrop].removed = !forward;
        fresh.append(edit->addedBackdrop);
    }
    const Elements there = backdropElements(edit->scope);
    for (const int each : qAsConst(fresh)) {
        if (const pugi::xml_node element = there.value(each))
            backdrops[each] = NetScopeBuilder::readBackdrop(file(), element, 0);
    }
}

void NetEditor::Text::remove(int scope, const QVector<int>& nodes)
{
    NetScope& network = m_Document->m_Scopes[scope];
    network.setRemoved(nodes, true);
    for (const int node : nodes)
        NetConnector::disconnect(&network, node);
    // Who was fed is read again after this, and finds nothing.
    auto& wires = network.connections;
    wires.erase(std::remove_if(wires.begin(), wires.end(),
                    [&network](const NetConnection& wire) {
                        return network.nodes.at(wire.sourceNode).removed;
                    }),
        wires.end());
}

// An input or output of a graph shows inside, as a box, and outside, as a port of the graph's box.
void NetEditor::Text::refresh(int scope, int node)
{
    refreshBox(scope, node);
    const NetScope& network = m_Document->scopes().at(scope);
    const NetNode& box = network.nodes.at(node);
    if (box.kind == NetNode::Kind::Graph && box.innerScope >= 0) {
        NetScope& inner = m_Document->m_Scopes[box.innerScope];
        inner.attributes = box.attributes;
        for (int i = 0; i < inner.nodes.size(); ++i) {
            const auto kind = inner.nodes.at(i).kind;
            if (kind == NetNode::Kind::Input || kind == NetNode::Kind::Output)
                refreshBox(inner.index, i);
        }
    } else if (network.parent >= 0
        && (box.kind == NetNode::Kind::Input || box.kind == NetNode::Kind::Output)) {
        refreshBox(network.parent, m_Document->scopes().at(network.parent).boxOf(scope));
    }
}

void NetEditor::Text::refreshBox(int scope, int node)
{
    const pugi::xml_node own = element(scope, node);
    if (!own)
        return;
    QVector<NetMessage> messages; // the user was told of what the file lacks when it was opened
    NetScope& network = m_Document->m_Scopes[scope];
    NetNode& box = network.nodes[node];
    NetNode fresh = NetScopeBuilder(m_Document->m_Files, m_Document->m_Definitions, &messages)
                        .read(own, network.kind, 0, network.nameSpace);
    fresh.key = box.key;
    fresh.removed = box.removed;
    fresh.innerScope = box.innerScope;
    if (box.kind == NetNode::Kind::Graph) {
        fresh.definition = box.definition;
        fresh.nodeGroup = box.nodeGroup;
    }
    if (fresh.kind == NetNode::Kind::Input && fresh.inputs.isEmpty() && !box.inputs.isEmpty())
        fresh.inputs = fresh.outputs;
    keepPorts(&fresh.inputs, box.inputs);
    keepPorts(&fresh.outputs, box.outputs);
    box = std::move(fresh);
    NetConnector(m_Document->m_Files, &m_Document->m_Scopes, &messages).reconnect(&network, node);
}

// A name that came or went may be what another input waits for, also inside the graphs of the document; and
// one that came back takes the inputs from a later node of that name, which had them meanwhile.
void NetEditor::Text::reconsiderNames()
{
    QVector<NetMessage> messages;
    NetConnector connector(m_Document->m_Files, &m_Document->m_Scopes, &messages);
    for (NetScope& scope : m_Document->m_Scopes) {
        QSet<int> waiting;
        for (const NetOpenEnd& end : qAsConst(scope.openEnds))
            waiting.insert(end.destNode);
        for (const NetConnection& wire : qAsConst(scope.connections)) {
            if (scope.isHidden(wire.sourceNode))
                waiting.insert(wire.destNode);
        }
        for (const int node : qAsConst(waiting))
            connector.reconnect(&scope, node);
    }
}
