#include "OrvNodeGraph/OrvNgSceneNodes.h"

#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgRollCall.h"

#include <QHash>

namespace {

using NodesOfScene = QHash<const QGraphicsScene*, QSet<OrvNgNode*>>;

struct Registry
{
    NodesOfScene m_NodesOfScene;
    NodesOfScene m_FramesOfScene;
    QHash<const OrvNgNode*, const QGraphicsScene*> m_SceneOfNode;
};

// Never deleted: nodes may outlive every other static object.
Registry& registry()
{
    static auto* const s_Registry = new Registry;
    return *s_Registry;
}

void removeFrom(NodesOfScene& file, const QGraphicsScene* scene, OrvNgNode* node)
{
    const auto nodes = file.find(scene);
    if (nodes == file.end())
        return;
    nodes->remove(node);
    if (nodes->isEmpty())
        file.erase(nodes);
}

} // namespace

void OrvNgSceneNodes::enter(OrvNgNode* node)
{
    leave(node);
    if (const QGraphicsScene* scene = node->scene()) {
        registry().m_NodesOfScene[scene].insert(node);
        if (node->isBackdrop())
            registry().m_FramesOfScene[scene].insert(node);
        registry().m_SceneOfNode.insert(node, scene);
    }
}

void OrvNgSceneNodes::leave(OrvNgNode* node)
{
    OrvNgRollCall::noteChange();
    const auto scene = registry().m_SceneOfNode.find(node);
    if (scene == registry().m_SceneOfNode.end())
        return;
    removeFrom(registry().m_NodesOfScene, *scene, node);
    removeFrom(registry().m_FramesOfScene, *scene, node);
    registry().m_SceneOfNode.erase(scene);
}

QSet<OrvNgNode*> OrvNgSceneNodes::nodes(const QGraphicsScene* scene)
{
    return registry().m_NodesOfScene.value(scene);
}

QSet<OrvNgNode*> OrvNgSceneNodes::frames(const QGraphicsScene* scene)
{
    return registry().m_FramesOfScene.value(scene);
}
