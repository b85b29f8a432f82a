#include "network/NetCounts.h"

#include "network/NetDocument.h"

#include <algorithm>

namespace {

bool isOwn(const NetNode& node)
{
    return node.fileIndex == 0 && !node.implied && !node.removed;
}

int listedInputs(const NetNode& node)
{
    return static_cast<int>(std::count_if(
        node.inputs.cbegin(), node.inputs.cend(), [](const NetPort& port) { return port.listed; }));
}

void countNode(const NetNode& node, NetCounts* counts)
{
    const int listed = listedInputs(node);
    ++counts->nodes;
    counts->nodeInputs += listed;
    counts->maxListedInputs = std::max(counts->maxListedInputs, listed);
    counts->resolvedNodes += node.definition ? 1 : 0;
    counts->inputPorts += node.inputs.size();
    counts->outputPorts += node.outputs.size();
}

// Longest chain by peeling off nodes without unvisited sources; what is left then is a cycle.
int longestChain(int nodeCount, const QVector<QPair<int, int>>& edges)
{
    QVector<int> depth(nodeCount, 1);
    QVector<int> waiting(nodeCount, 0);
    QVector<QVector<int>> consumers(nodeCount);
    for (const auto& [source, dest] : edges) {
        consumers[source].append(dest);
        ++waiting[dest];
    }
    QVector<int> ready;
    for (int i = 0; i < nodeCount; ++i) {
        if (waiting.at(i) == 0)
            ready.append(i);
    }
    int longest = 0;
    while (!ready.isEmpty()) {
        const int node = ready.takeLast();
        longest = std::max(longest, depth.at(node));
        for (const int consumer : qAsConst(consumers[node])) {
            depth[consumer] = std::max(depth.at(consumer), depth.at(node) + 1);
            if (--waiting[consumer] == 0)
                ready.append(consumer);
        }
    }
    return longest;
}

} // namespace

NetCounts NetCounts::ofScope(const NetDocument& document, int scopeIndex)
{
    const NetScope& scope = document.scopes().at(scopeIndex);
    NetCounts counts;
    QVector<int> number(scope.nodes.size(), -1); // of a node among the own nodes
    for (int i = 0; i < scope.nodes.size(); ++i) {
        const NetNode& node = scope.nodes.at(i);
        if (!isOwn(node))
            continue;
        counts.positioned += node.attributes.contains(QLatin1String("xpos")) ? 1 : 0;
        switch (node.kind) {
        case NetNode::Kind::Node:
            number[i] = counts.nodes;
            countNode(node, &counts);
            break;
        case NetNode::Kind::Graph:
            ++counts.nodeGraphs;
            break;
        case NetNode::Kind::Input:
            ++counts.interfaceInputs;
            break;
        case NetNode::Kind::Output:
            ++counts.outputs;
            break;
        }
    }
    QVector<int> fanOut(counts.nodes, 0);
    QVector<QPair<int, int>> edges;
    for (const NetConnection& connection : scope.connections) {
        if (!isOwn(scope.nodes.at(connection.destNode)))
            continue;
        ++counts.connections;
        const int source = number.at(connection.sourceNode);
        const int dest = number.at(connection.destNode);
        if (source < 0 || dest < 0)
            continue;
        edges.append({source, dest});
        counts.maxFanOut = std::max(counts.maxFanOut, ++fanOut[source]);
    }
    for (const NetOpenEnd& end : scope.openEnds)
        counts.connections += isOwn(scope.nodes.at(end.destNode)) ? 1 : 0;
    counts.nodeToNode = edges.size();
    counts.depth = longestChain(counts.nodes, edges);
    for (const NetBackdrop& backdrop : scope.backdrops) {
        if (backdrop.fileIndex != 0 || backdrop.removed)
            continue;
        ++counts.backdrops;
        counts.positioned += backdrop.attributes.contains(QLatin1String("xpos")) ? 1 : 0;
    }
    return counts;
}
