#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QString>

/// Where the installed resources lie: one root directory with "settings" and "icons" below it.
/// Without a word from the host that is the one installed with the libraries, wherever they were
/// moved to (usually <libraries>/../share/orv), else the source tree's, for a library that runs
/// from its build tree.
///
/// Called by  the style (style sheet), the view (cursor), the SVG manager (icons), the host.
/// Uses       the path of this library's own file.
/// Tells      nobody; paths are asked for when needed.
class ORVCORE_EXPORT OrvResourceInfo
{
public:
    /// The one instance, alive until the process ends.
    static OrvResourceInfo& instance();

    /// The full path of an installed settings file. Whether the file exists is not checked.
    QString settingsFilePath(const QString& fileName) const;

    /// The directory of icons and cursors, without trailing slash.
    QString iconPath() const { return m_IconPath; }

    /// Takes another root, for all paths asked for from now on. A relative one is seen from the
    /// current directory; an empty one restores the default.
    void setResourceRoot(const QString& directory);

private:
    OrvResourceInfo();
    Q_DISABLE_COPY(OrvResourceInfo)

    QString m_SettingsPath;
    QString m_IconPath;
};
