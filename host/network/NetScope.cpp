#include "network/NetScope.h"

#include <QStringBuilder>

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

int NetScope::indexOfKey(const QString& key) const
{
    return m_Keys.value(key, -1);
}

int NetScope::append(NetNode node)
{
    const auto first = indexKey(node.kind, node.name);
    const int position = nodes.size();
    node.key = nodeKey(node.kind, node.name, ++m_Occurrences[first]);
    m_Keys.insert(node.key, position);
    if (!m_First.contains(first))
        m_First.insert(first, position);
    nodes.append(std::move(node));
    return position;
}

void NetScope::addAlias(int nodeIndex, const QString& alias)
{
    const auto key = indexKey(nodes.at(nodeIndex).kind, alias);
    if (!m_First.contains(key))
        m_First.insert(key, nodeIndex);
}
