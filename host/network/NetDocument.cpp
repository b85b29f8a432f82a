#include "network/NetDocument.h"

int NetDocument::indexOfScope(const QString& pathOrName) const
{
    if (pathOrName.isEmpty())
        return 0;
    for (const NetScope& scope : m_Scopes) {
        if (scope.path == pathOrName)
            return scope.index;
    }
    for (const NetScope& scope : m_Scopes) {
        if (scope.parent >= 0 && scope.name == pathOrName)
            return scope.index;
    }
    return -1;
}

QVector<int> NetDocument::scopeTrail(int scope) const
{
    QVector<int> trail;
    while (scope >= 0 && scope < m_Scopes.size()) {
        trail.prepend(scope);
        scope = m_Scopes.at(scope).parent;
    }
    return trail;
}

int NetDocument::firstScope() const
{
    const NetScope& top = documentScope();
    int only = 0;
    for (const NetNode& node : top.nodes) {
        if (node.removed)
            continue;
        if (only > 0 || node.kind != NetNode::Kind::Graph)
            return 0;
        only = node.innerScope;
    }
    return only;
}
