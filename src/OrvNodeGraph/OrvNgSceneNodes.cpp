#include "OrvNodeGraph/OrvNgSceneNodes.h"

#include "OrvNodeGraph/OrvNgNode.h"

#include <QHash>

namespace {

struct Registry
{
    QHash<const QGraphicsScene*, QSet<OrvNgNode*>> m_NodesOfScene;
    QHash<const OrvNgNode*, const QGraphicsScene*> m_SceneOfNode;
};

// Never deleted: nodes may outlive every other static object.
Registry& registry()
{
    static auto* const s_Registry = new Registry;
    return *s_Registry;
}

} // namespace

void OrvNgSceneNodes::enter(OrvNgNode* node)
{
    leave(node);
    if (const QGraphicsScene* scene = node->scene()) {
        registry().m_NodesOfScene[scene].insert(node);
        registry().m_SceneOfNode.insert(node, scene);
    }
}

void OrvNgSceneNodes::leave(OrvNgNode* node)
{
    const auto scene = registry().m_SceneOfNode.find(node);
    if (scene == registry().m_SceneOfNode.end())
        return;
    const auto nodes = registry().m_NodesOfScene.find(*scene);
    nodes->remove(node);
    if (nodes->isEmpty())
        registry().m_NodesOfScene.erase(nodes);
    registry().m_SceneOfNode.erase(scene);
}

QSet<OrvNgNode*> OrvNgSceneNodes::nodes(const QGraphicsScene* scene)
{
    return registry().m_NodesOfScene.value(scene);
}
