#include "network/NetConnector.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("NetReader", text);
}

// A node whose definition is unknown may have more outputs than it lists.
bool hasOpenOutputs(const NetNode& node)
{
    return node.kind == NetNode::Kind::Node && !node.definition
        && node.type == QLatin1String("multioutput");
}

bool isKnownByUse(const NetScope& scope, const NetConnection& wire)
{
    const NetNode& source = scope.nodes.at(wire.sourceNode);
    return (hasOpenOutputs(source) && !source.outputs.at(wire.sourcePort).listed)
        || (source.implied && !scope.definition);
}

template <typename End> bool endsBefore(const End& a, const End& b)
{
    return std::make_pair(a.destNode, a.destPort) < std::make_pair(b.destNode, b.destPort);
}

template <typename End> void insertByEnd(QVector<End>* ends, const End& end)
{
    ends->insert(std::upper_bound(ends->begin(), ends->end(), end, endsBefore<End>), end);
}

template <typename End> void removeEnds(QVector<End>* ends, int nodeIndex)
{
    ends->erase(std::remove_if(ends->begin(), ends->end(),
                    [nodeIndex](const End& end) { return end.destNode == nodeIndex; }),
        ends->end());
}

} // namespace

NetConnector::NetConnector(
    const Files& files, QVector<NetScope>* scopes, QVector<NetMessage>* messages)
    : m_Files(files)
    , m_Scopes(scopes)
    , m_Messages(messages)
{
}

void NetConnector::connectAll()
{
    for (NetScope& scope : *m_Scopes) {
        for (int i = 0; i < scope.nodes.size(); ++i) {
            for (int k = 0; k < scope.nodes.at(i).inputs.size(); ++k)
                connectInput(&scope, i, k);
        }
        completeOutputs(&scope);
    }
}

void NetConnector::reconnect(NetScope* scope, int nodeIndex)
{
    disconnect(scope, nodeIndex);
    for (int k = 0; k < scope->nodes.at(nodeIndex).inputs.size(); ++k)
        connectInput(scope, nodeIndex, k);
}

void NetConnector::disconnect(NetScope* scope, int nodeIndex)
{
    removeEnds(&scope->connections, nodeIndex);
    removeEnds(&scope->openEnds, nodeIndex);
}

void NetConnector::retypeByUse(NetScope* scope, const QVector<int>& order)
{
    QVector<int> places(scope->nodes.size());
    std::iota(places.begin(), places.end(), order.size());
    for (int i = 0; i < order.size(); ++i)
        places[order.at(i)] = i;
    QVector<NetConnection> uses;
    std::copy_if(scope->connections.cbegin(), scope->connections.cend(), std::back_inserter(uses),
        [scope](const NetConnection& wire) { return isKnownByUse(*scope, wire); });
    // Last uses first, so that the first one of a port has the last word.
    std::sort(uses.begin(), uses.end(), [&places](const NetConnection& a, const NetConnection& b) {
        return std::make_pair(places.at(a.destNode), a.destPort)
            > std::make_pair(places.at(b.destNode), b.destPort);
    });
    for (const NetConnection& use : qAsConst(uses)) {
        const QString type = scope->nodes.at(use.destNode).inputs.at(use.destPort).type;
        NetNode& source = scope->nodes[use.sourceNode];
        source.outputs[use.sourcePort].type = type;
        if (source.implied)
            source.type = type;
    }
}

bool NetConnector::wantedBy(const NetPort& port, Wanted* wanted)
{
    static constexpr std::array<std::pair<const char*, NetBinding>, 4> kBindings{{
        {"nodename", NetBinding::NodeName},
        {"nodegraph", NetBinding::NodeGraph},
        {"interfacename", NetBinding::InterfaceName},
        {"output", NetBinding::Output},
    }};
    for (const auto& [attribute, binding] : kBindings) {
        const QString name = port.attributes.value(QLatin1String(attribute));
        if (name.isEmpty())
            continue;
        *wanted = {binding, name, {}};
        if (binding == NetBinding::NodeName || binding == NetBinding::NodeGraph)
            wanted->output = port.attributes.value(QLatin1String("output"));
        return true;
    }
    return false;
}

void NetConnector::connectInput(NetScope* scope, int nodeIndex, int portIndex)
{
    const NetPort port
        = scope->nodes.at(nodeIndex).inputs.at(portIndex); // a copy: outputs may be added
    Wanted wanted;
    if (!wantedBy(port, &wanted))
        return;
    const Source source = find(scope, wanted, port);
    if (source.node >= 0 && source.port >= 0) {
        insertByEnd(&scope->connections,
            NetConnection{
                source.node, source.port, nodeIndex, portIndex, wanted.binding, port.line});
        return;
    }
    const auto reason = source.node >= 0 ? NetOpenEnd::Reason::Missing
                                         : reasonFor(*scope, scope->nodes.at(nodeIndex), wanted);
    const NetOpenEnd end{
        nodeIndex, portIndex, wanted.binding, reason, wanted.name, wanted.output, port.line};
    insertByEnd(&scope->openEnds, end);
    report(*scope, end);
}

NetConnector::Source NetConnector::find(NetScope* scope, const Wanted& wanted, const NetPort& dest)
{
    switch (wanted.binding) {
    case NetBinding::NodeName:
        return outputOf(scope, scope->indexOf(NetNode::Kind::Node, wanted.name), wanted, dest);
    case NetBinding::NodeGraph:
        return outputOf(scope, scope->indexOf(NetNode::Kind::Graph, wanted.name), wanted, dest);
    case NetBinding::InterfaceName:
        return findInterface(scope, wanted, dest);
    case NetBinding::Output:
        break;
    }
    const int output = scope->kind == NetScope::Kind::Document
        ? scope->indexOf(NetNode::Kind::Output, wanted.name)
        : -1;
    if (output < 0)
        return {};
    // Only an output that feeds others shows a port on its far side.
    NetNode& node = scope->nodes[output];
    if (node.outputs.isEmpty()) {
        NetPort through;
        through.name = QStringLiteral("out");
        through.type = node.type;
        node.outputs.append(through);
    }
    return {output, 0};
}

NetConnector::Source NetConnector::findInterface(
    NetScope* scope, const Wanted& wanted, const NetPort& dest)
{
    int input = scope->indexOf(NetNode::Kind::Input, wanted.name);
    if (input < 0 && scope->kind == NetScope::Kind::FunctionalGraph && !scope->definition) {
        // The interface is unknown, but the use tells of this part of it.
        NetNode implied;
        implied.kind = NetNode::Kind::Input;
        implied.name = wanted.name;
        implied.category = QStringLiteral("input");
        implied.type = dest.type;
        implied.implied = true;
        implied.fileIndex = scope->fileIndex;
        NetPort port;
        port.name = wanted.name;
        port.type = dest.type;
        implied.outputs.append(port);
        input = scope->append(implied);
    }
    return {input, input < 0 ? -1 : 0};
}

NetConnector::Source NetConnector::outputOf(
    NetScope* scope, int nodeIndex, const Wanted& wanted, const NetPort& dest)
{
    if (nodeIndex < 0)
        return {};
    NetNode& node = scope->nodes[nodeIndex];
    const bool isOpen = hasOpenOutputs(node);
    const QString name = isOpen && wanted.output.isEmpty() ? QStringLiteral("out") : wanted.output;
    const int named = NetDefinition::indexOf(node.outputs, name);
    if (named >= 0)
        return {nodeIndex, named};
    if (isOpen) {
        NetPort port;
        port.name = name;
        port.type = dest.type;
        node.outputs.append(port);
        return {nodeIndex, node.outputs.size() - 1};
    }
    // A name makes no difference to a single output; no name means the first of several.
    const bool first = wanted.output.isEmpty() || node.outputs.size() == 1;
    return {nodeIndex, first && !node.outputs.isEmpty() ? 0 : -1};
}

NetOpenEnd::Reason NetConnector::reasonFor(
    const NetScope& scope, const NetNode& dest, const Wanted& wanted) const
{
    const NetScope& top = m_Scopes->constFirst();
    const bool isGraph = scope.indexOf(NetNode::Kind::Graph, wanted.name) >= 0;
    if (wanted.binding == NetBinding::NodeName && dest.kind == NetNode::Kind::Output && isGraph)
        return NetOpenEnd::Reason::Tolerated;
    if (wanted.binding == NetBinding::NodeGraph
        && top.indexOf(NetNode::Kind::Graph, wanted.name) >= 0)
        return NetOpenEnd::Reason::Outside;
    if (wanted.binding == NetBinding::Output
        && top.indexOf(NetNode::Kind::Output, wanted.name) >= 0)
        return NetOpenEnd::Reason::Outside;
    return NetOpenEnd::Reason::Missing;
}

void NetConnector::report(const NetScope& scope, const NetOpenEnd& end)
{
    if (end.reason == NetOpenEnd::Reason::Outside)
        return;
    const NetNode& dest = scope.nodes.at(end.destNode);
    const auto& file = *m_Files.at(static_cast<std::size_t>(dest.fileIndex));
    NetMessage message{NetMessage::Severity::Warning, file.path(), end.line, {}};
    const QString& port = dest.inputs.at(end.destPort).name;
    const QString place = port == dest.name ? dest.name : dest.name + QLatin1Char('.') + port;
    if (end.reason == NetOpenEnd::Reason::Tolerated) {
        message.severity = NetMessage::Severity::Info;
        message.text
            = tr("The output \"%1\" names the graph \"%2\" as if it were a node; it is shown "
                 "unconnected.")
                  .arg(place, end.wantedName);
    } else if (end.wantedOutput.isEmpty()) {
        message.text
            = tr("\"%1\" is connected to \"%2\", which does not exist.").arg(place, end.wantedName);
    } else {
        message.text
            = tr("\"%1\" is connected to the output \"%2\" of \"%3\", which does not exist.")
                  .arg(place, end.wantedOutput, end.wantedName);
    }
    m_Messages->append(message);
}

// A node without definition, without listed outputs and without consumers still shows one output.
void NetConnector::completeOutputs(NetScope* scope)
{
    for (NetNode& node : scope->nodes) {
        if (!hasOpenOutputs(node) || !node.outputs.isEmpty())
            continue;
        NetPort port;
        port.name = QStringLiteral("out");
        port.type = node.type;
        node.outputs.append(port);
    }
}
