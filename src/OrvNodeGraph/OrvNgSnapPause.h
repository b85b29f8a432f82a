#pragma once

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QSignalBlocker>

/// Internal. Positions are taken exactly while one lives; its end restores the host's snap-to-grid setting,
/// whatever was set meanwhile. Listeners of the setting hear nothing of the pause: it would flicker with
/// every move of the mouse.
///
/// Called by  OrvNgBackdropNode, OrvNgResizeTriangleItem.
/// Uses       the host's grid settings.
/// Tells      listeners of the setting, only when a change made meanwhile is taken back.
class OrvNgSnapPause
{
public:
    OrvNgSnapPause()
        : m_WasSnapping(OrvShaderNetworkManager::instance()->snapToGrid())
    {
        const QSignalBlocker silence(OrvShaderNetworkManager::instance());
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    }
    ~OrvNgSnapPause()
    {
        OrvShaderNetworkManager* grid = OrvShaderNetworkManager::instance();
        if (m_WasSnapping) {
            const QSignalBlocker silence(grid);
            grid->setSnapToGrid(true);
        } else {
            grid->setSnapToGrid(false);
        }
    }

private:
    Q_DISABLE_COPY(OrvNgSnapPause)

    bool m_WasSnapping;
};
