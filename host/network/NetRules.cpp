#include "network/NetRules.h"

#include "network/NetXmlWriter.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("NetEditor", text);
}

QString gone()
{
    return tr("This is no longer part of the document.");
}

// "mix1.fg", or "out" for a port that is a box of its own.
QString portName(const NetNode& node, const NetPort& port)
{
    const bool own = node.kind == NetNode::Kind::Input || node.kind == NetNode::Kind::Output;
    return own ? node.name : node.name + QLatin1Char('.') + port.name;
}

QString included(const QString& name)
{
    return tr("\"%1\" comes from an included file and can be changed only there.").arg(name);
}

} // namespace

QString NetRules::whyNotEnter(int scope) const
{
    const QVector<NetScope>& scopes = m_Document.scopes();
    if (scope < 0 || scope >= scopes.size())
        return gone();
    for (int inner = scope; scopes.at(inner).parent >= 0; inner = scopes.at(inner).parent) {
        const NetScope& around = scopes.at(scopes.at(inner).parent);
        const int box = around.boxOf(inner);
        if (box < 0 || around.nodes.at(box).removed)
            return gone();
    }
    return {};
}

QString NetRules::whyNotReach(int scope, int node) const
{
    QString reason = whyNotEnter(scope);
    if (!reason.isEmpty())
        return reason;
    const QVector<NetNode>& nodes = m_Document.scopes().at(scope).nodes;
    const bool there = node >= 0 && node < nodes.size() && !nodes.at(node).removed;
    return there ? QString() : gone();
}

QString NetRules::whyNotEdit(int scope, int node) const
{
    QString reason = whyNotReach(scope, node);
    if (!reason.isEmpty())
        return reason;
    const NetNode& box = m_Document.scopes().at(scope).nodes.at(node);
    return box.fileIndex > 0 ? included(box.name) : QString();
}

QString NetRules::whyNotAdd(int scope) const
{
    QString reason = whyNotEnter(scope);
    if (!reason.isEmpty())
        return reason;
    const NetScope& network = m_Document.scopes().at(scope);
    if (network.isCut)
        return tr("\"%1\" is nested too deeply to be changed.").arg(network.name);
    return network.fileIndex > 0 ? included(network.name) : QString();
}

QString NetRules::whyNotChangeBackdrop(int scope, int backdrop) const
{
    QString reason = whyNotEnter(scope);
    if (!reason.isEmpty())
        return reason;
    const QVector<NetBackdrop>& backdrops = m_Document.scopes().at(scope).backdrops;
    if (backdrop < 0 || backdrop >= backdrops.size() || backdrops.at(backdrop).removed)
        return gone();
    const NetBackdrop& wanted = backdrops.at(backdrop);
    return wanted.fileIndex > 0 ? included(wanted.title) : QString();
}

QString NetRules::whyNotRemoveBackdrop(int scope, int backdrop) const
{
    QString reason = whyNotChangeBackdrop(scope, backdrop);
    if (!reason.isEmpty())
        return reason;
    return whyNotUncover(scope, m_Document.scopes().at(scope).backdrops.at(backdrop).name);
}

QString NetRules::whyNotMove(int scope, int node) const
{
    return whyNotEdit(scope, node);
}

QString NetRules::whyNotRemove(int scope, int node) const
{
    QString reason = whyNotEdit(scope, node);
    if (!reason.isEmpty())
        return reason;
    const NetNode& box = m_Document.scopes().at(scope).nodes.at(node);
    const bool port = box.kind == NetNode::Kind::Input || box.kind == NetNode::Kind::Output;
    // Deliberate: it is also a port of the graph's box, and what that one is connected to is out of sight.
    if (scope > 0 && port)
        return tr("\"%1\" belongs to the interface of the graph and cannot be deleted.")
            .arg(box.name);
    return whyNotUncover(scope, box.name);
}

QString NetRules::whyNotUncover(int scope, const QString& name) const
{
    if (scope != 0 || !isCoveringIncluded(name))
        return {};
    return tr("\"%1\" stands in for an element of an included file, which would appear in its "
              "place.")
        .arg(name);
}

bool NetRules::isCoveringIncluded(const QString& name) const
{
    const auto& files = m_Document.files();
    return !name.isEmpty()
        && std::any_of(files.cbegin() + 1, files.cend(), [&name](const auto& file) {
               return bool(file->root().find_child_by_attribute("name", name.toUtf8().constData()));
           });
}

QString NetRules::whyNotTake(int scope, const NetPortRef& dest) const
{
    QString reason = whyNotEdit(scope, dest.node);
    if (!reason.isEmpty())
        return reason;
    const NetNode& box = m_Document.scopes().at(scope).nodes.at(dest.node);
    return dest.port < 0 || dest.port >= box.inputs.size() ? gone() : QString();
}

QString NetRules::whyNotDisconnect(int scope, const NetPortRef& dest) const
{
    QString reason = whyNotTake(scope, dest);
    if (!reason.isEmpty())
        return reason;
    const NetNode& box = m_Document.scopes().at(scope).nodes.at(dest.node);
    const NetPort& port = box.inputs.at(dest.port);
    return port.isConnected() ? QString() : tr("\"%1\" is not connected.").arg(portName(box, port));
}

QString NetRules::whyNotConnect(int scope, const NetPortRef& source, const NetPortRef& dest) const
{
    QString reason = whyNotReach(scope, source.node);
    if (reason.isEmpty())
        reason = whyNotTake(scope, dest);
    if (!reason.isEmpty())
        return reason;
    const NetScope& network = m_Document.scopes().at(scope);
    const NetNode& from = network.nodes.at(source.node);
    const NetNode& to = network.nodes.at(dest.node);
    if (source.port < 0 || source.port >= from.outputs.size())
        return gone();
    if (source.node == dest.node)
        return tr("\"%1\" cannot feed itself.").arg(to.name);
    reason = whyNotTypes(network, source, dest);
    if (reason.isEmpty() && feeds(network, dest.node, source.node)) {
        reason = tr("\"%1\" feeds \"%2\" already; the connection would close a circle.")
                     .arg(to.name, from.name);
    }
    const NetPort& input = to.inputs.at(dest.port);
    if (reason.isEmpty() && !input.listed && !NetXmlWriter::canWrite(input.name + input.type))
        reason = tr("\"%1\" has a name that a file cannot hold.").arg(portName(to, input));
    return reason.isEmpty() ? whyNotNamed(network, source) : reason;
}

QString NetRules::whyNotTypes(
    const NetScope& scope, const NetPortRef& source, const NetPortRef& dest)
{
    const NetNode& from = scope.nodes.at(source.node);
    const NetNode& to = scope.nodes.at(dest.node);
    const NetPort& output = from.outputs.at(source.port);
    const NetPort& input = to.inputs.at(dest.port);
    if (output.type != input.type) {
        return tr("\"%1\" takes %2, but \"%3\" gives %4.")
            .arg(portName(to, input), input.type, portName(from, output), output.type);
    }
    const bool plain = from.kind == NetNode::Kind::Input || from.isDot()
        || (from.kind == NetNode::Kind::Node && from.category == QLatin1String("constant"));
    if (to.kind != NetNode::Kind::Output && input.isUniform() && !plain) {
        return tr("\"%1\" is uniform: it takes only constants, dots and interface inputs.")
            .arg(portName(to, input));
    }
    return {};
}

// The file names a source: the first element of its kind with that name is the one that counts.
QString NetRules::whyNotNamed(const NetScope& scope, const NetPortRef& source)
{
    const NetNode& from = scope.nodes.at(source.node);
    if (from.name.isEmpty()
        || !NetXmlWriter::canWrite(from.name + from.outputs.at(source.port).name))
        return tr("This element has no name by which it could be connected.");
    if (scope.indexOf(from.kind, from.name) != source.node) {
        return tr(
            "Another element has the name \"%1\" too, and a connection would lead to that one.")
            .arg(from.name);
    }
    return {};
}

bool NetRules::feeds(const NetScope& scope, int source, int dest)
{
    QVector<QVector<int>> sources(scope.nodes.size());
    for (const NetConnection& connection : scope.connections)
        sources[connection.destNode].append(connection.sourceNode);
    QVector<bool> seen(scope.nodes.size(), false);
    QVector<int> open{dest};
    while (!open.isEmpty()) {
        const int node = open.takeLast();
        if (node == source)
            return true;
        if (seen.at(node))
            continue;
        seen[node] = true;
        open += sources.at(node);
    }
    return false;
}
