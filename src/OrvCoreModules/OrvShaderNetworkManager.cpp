#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include "OrvCore/OrvDebug.h"

#include <QString>

namespace {

// Stores the value and returns true when it is another one.
template <typename T> bool assign(T& member, T value)
{
    if (member == value)
        return false;
    member = value;
    return true;
}

bool isCellSize(int size)
{
    if (size >= 1)
        return true;
    OrvDebug("src/OrvCoreModules/OrvShaderNetworkManager", __LINE__,
        QStringLiteral("[ !! ] A grid cell cannot measure %1").arg(size), false, false);
    return false;
}

} // namespace

OrvShaderNetworkManager* OrvShaderNetworkManager::instance()
{
    static auto* const s_Instance = new OrvShaderNetworkManager;
    return s_Instance;
}

void OrvShaderNetworkManager::setSnapToGrid(bool snap)
{
    if (assign(m_SnapToGrid, snap))
        Q_EMIT snapToGridChanged(snap);
}

void OrvShaderNetworkManager::setShowGrid(bool show)
{
    if (assign(m_ShowGrid, show))
        Q_EMIT showGridChanged(show);
}

void OrvShaderNetworkManager::setGridWidth(int width)
{
    if (isCellSize(width) && assign(m_GridWidth, width))
        Q_EMIT gridWidthChanged(width);
}

void OrvShaderNetworkManager::setGridHeight(int height)
{
    if (isCellSize(height) && assign(m_GridHeight, height))
        Q_EMIT gridHeightChanged(height);
}
