#include "editor/EditorPress.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QGraphicsScene>
#include <QScopeGuard>
#include <QSignalBlocker>

#include <OrvNodeGraph/OrvNgNode.h>

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
