#include "editor/EditorPress.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QGraphicsScene>
#include <QScopeGuard>
#include <QSignalBlocker>

#include <OrvNodeGraph/OrvNgBackdropNode.h>

void EditorPress::remember(const QGraphicsScene* scene)
{
    m_Places.clear();
    auto* grabber = scene ? dynamic_cast<OrvNgNode*>(scene->mouseGrabberItem()) : nullptr;
    if (!grabber)
        return;
    m_Places.append({grabber, grabber->pos()});
    const QList<QGraphicsItem*> items = scene->selectedItems();
    for (QGraphicsItem* item : items) {
        auto* node = dynamic_cast<OrvNgNode*>(item);
        if (node && node != grabber)
            m_Places.append({node, node->pos()});
    }
    // A backdrop takes its children along, selected or not.
    if (auto* backdrop = dynamic_cast<OrvNgBackdropNode*>(grabber)) {
        const QList<QPointer<OrvNgNode>> children = backdrop->childrenList();
        for (const QPointer<OrvNgNode>& child : children) {
            if (child)
                m_Places.append({child, child->pos()});
        }
    }
}

void EditorPress::putBack() const
{
    auto* grid = OrvShaderNetworkManager::instance();
    const QSignalBlocker unseen(grid);
    const bool wasSnapping = grid->snapToGrid();
    grid->setSnapToGrid(false);
    const auto restore = qScopeGuard([=] { grid->setSnapToGrid(wasSnapping); });
    for (const auto& place : m_Places) {
        if (place.first)
            place.first->setPos(place.second);
    }
}
