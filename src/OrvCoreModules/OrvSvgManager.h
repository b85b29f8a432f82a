#pragma once

#include "OrvCoreModules/OrvCoreModulesExport.h"

#include <QHash>
#include <QString>

#include <memory>
#include <vector>

class QSvgRenderer;

/// The SVG icons by name. Each file is read once, however many items draw it; so is the fact that a
/// file is missing. When the host moves the resource root, icons are read anew from there.
///
/// Called by  header buttons and icon items, in every paint.
/// Uses       OrvResourceInfo for the directory, OrvDebug for icons that cannot be read.
/// Tells      nobody.
class ORVCOREMODULES_EXPORT OrvSvgManager
{
public:
    /// The one manager, never null, alive until the process ends.
    static OrvSvgManager* instance();

    /// The renderer of "<icon path>/<name>.svg". It belongs to the manager and stays valid until
    /// the process ends. Null when the file is missing or malformed, which is reported at the first
    /// call for the name, for an empty name, and for one that would lead out of the directory
    /// ("..", slashes).
    QSvgRenderer* renderer(const QString& name);

private:
    OrvSvgManager();
    ~OrvSvgManager();
    Q_DISABLE_COPY(OrvSvgManager)

    QSvgRenderer* load(const QString& name);

    QString m_IconPath; // where the renderers by name were read
    QHash<QString, QSvgRenderer*> m_ByName; // null for a miss
    std::vector<std::unique_ptr<QSvgRenderer>> m_Renderers; // all ever handed out
};
