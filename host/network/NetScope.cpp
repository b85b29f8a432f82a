#include "network/NetScope.h"

#include <QStringBuilder>

#include <algorithm>
#include <array>

namespace {

QPair<int, QString> indexKey(NetNode::Kind kind, const QString& name)
{
    return {static_cast<int>(kind), name};
}

// Kind, name and, from the second one of a name on, its number: names may repeat, and a node and an
// interface input may have the same name. The first '/' ends the part that no name can forge.
QString nodeKey(NetNode::Kind kind, const QString& name, int occurrence)
{
    static const std::array<QLatin1String, 4> s_Kinds{QLatin1String("node"), QLatin1String("graph"),
        QLatin1String("input"), QLatin1String("output")};
    const QLatin1String prefix = s_Kinds.at(static_cast<std::size_t>(kind));
    if (occurrence == 1)
        return prefix % QLatin1Char('/') % name;
    return prefix % QLatin1Char(':') % QString::number(occurrence) % QLatin1Char('/') % name;
}

} // namespace

int NetScope::indexOf(NetNode::Kind nodeKind, const QString& nodeName) const
{
    return m_First.value(indexKey(nodeKind, nodeName), -1);
}

bool NetScope::isHidden(int nodeIndex) const
{
    const NetNode& node = nodes.at(nodeIndex);
    const auto alias = m_Aliases.constFind(nodeIndex);
    return indexOf(node.kind, node.name) != nodeIndex
        || (alias != m_Aliases.cend() && indexOf(node.kind, *alias) != nodeIndex);
}

int NetScope::indexOfKey(const QString& key) const
{
    const int position = m_Keys.value(key, -1);
    return position >= 0 && nodes.at(position).removed ? -1 : position;
}

int NetScope::append(NetNode node)
{
    const int position = nodes.size();
    const auto sameName = indexKey(node.kind, node.name);
    node.key = nodeKey(node.kind, node.name, ++m_Occurrences[sameName]);
    m_Keys.insert(node.key, position);
    nodes.append(std::move(node));
    rememberName(position, nodes.constLast().name);
    return position;
}

void NetScope::addAlias(int nodeIndex, const QString& alias)
{
    m_Aliases.insert(nodeIndex, alias);
    rememberName(nodeIndex, alias);
}

void NetScope::rememberName(int nodeIndex, const QString& nodeName)
{
    const auto key = indexKey(nodes.at(nodeIndex).kind, nodeName);
    if (!m_First.contains(key))
        m_First.insert(key, nodeIndex);
}

void NetScope::setRemoved(const QVector<int>& nodeIndices, bool removed)
{
    if (nodeIndices.isEmpty())
        return;
    for (const int each : nodeIndices)
        nodes[each].removed = removed;
    m_First.clear();
    for (int i = 0; i < nodes.size(); ++i) {
        if (nodes.at(i).removed)
            continue;
        rememberName(i, nodes.at(i).name);
        const auto alias = m_Aliases.constFind(i);
        if (alias != m_Aliases.cend())
            rememberName(i, *alias);
    }
}

int NetScope::connectionTo(int destNode, int destPort) const
{
    const auto wanted = std::make_pair(destNode, destPort);
    const auto found = std::lower_bound(connections.cbegin(), connections.cend(), wanted,
        [](const NetConnection& each, const std::pair<int, int>& end) {
            return std::make_pair(each.destNode, each.destPort) < end;
        });
    const bool there
        = found != connections.cend() && found->destNode == destNode && found->destPort == destPort;
    return there ? static_cast<int>(found - connections.cbegin()) : -1;
}

int NetScope::boxOf(int innerScope) const
{
    for (int i = 0; i < nodes.size(); ++i) {
        if (nodes.at(i).kind == NetNode::Kind::Graph && nodes.at(i).innerScope == innerScope)
            return i;
    }
    return -1;
}
