#pragma once

#include "OrvCoreModules/OrvCoreModulesExport.h"

#include <QObject>

/// The grid settings that every view of shader networks shares. They live here while the
/// application runs; the host loads and saves them in its own settings.
///
/// Called by  nodes (snapping), backdrop handles (snapping off for a while), views (grid), the
/// host. Uses       OrvDebug. Tells      the views, through its signals.
class ORVCOREMODULES_EXPORT OrvShaderNetworkManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool snapToGrid READ snapToGrid WRITE setSnapToGrid NOTIFY snapToGridChanged)
    Q_PROPERTY(bool showGrid READ showGrid WRITE setShowGrid NOTIFY showGridChanged)
    Q_PROPERTY(int gridWidth READ gridWidth WRITE setGridWidth NOTIFY gridWidthChanged)
    Q_PROPERTY(int gridHeight READ gridHeight WRITE setGridHeight NOTIFY gridHeightChanged)
public:
    /// The one manager, never null, alive until the process ends.
    static OrvShaderNetworkManager* instance();

    bool snapToGrid() const { return m_SnapToGrid; }
    bool showGrid() const { return m_ShowGrid; }
    /// Width and height of a grid cell in scene units, at least 1.
    int gridWidth() const { return m_GridWidth; }
    int gridHeight() const { return m_GridHeight; }

public Q_SLOTS:
    void setSnapToGrid(bool snap);
    void setShowGrid(bool show);
    /// Positions are divided by the cell size, so sizes below 1 are reported and ignored.
    void setGridWidth(int width);
    void setGridHeight(int height);

Q_SIGNALS:
    // Each only when its value has changed.
    void snapToGridChanged(bool snap);
    void showGridChanged(bool show);
    void gridWidthChanged(int width);
    void gridHeightChanged(int height);

private:
    OrvShaderNetworkManager() = default;
    Q_DISABLE_COPY(OrvShaderNetworkManager)

    int m_GridWidth = 20;
    int m_GridHeight = 20;
    bool m_SnapToGrid = false;
    bool m_ShowGrid = true;
};
