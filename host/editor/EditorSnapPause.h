#pragma once

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QSignalBlocker>

/// Lets items be put exactly where the model has them, whether or not they snap to the grid. The host's
/// setting comes back unheard.
///
/// Called by  EditorScene, EditorBackdrops.
/// Uses       the grid settings.
/// Tells      nobody.
class EditorSnapPause
{
public:
    EditorSnapPause()
        : m_Silence(OrvShaderNetworkManager::instance())
        , m_WasOn(OrvShaderNetworkManager::instance()->snapToGrid())
    {
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    }
    ~EditorSnapPause() { OrvShaderNetworkManager::instance()->setSnapToGrid(m_WasOn); }

private:
    Q_DISABLE_COPY(EditorSnapPause)
    QSignalBlocker m_Silence;
    bool m_WasOn;
};
