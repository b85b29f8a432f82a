#pragma once

#include <QStringList>

/// Where included files and node definitions are looked for.
///
/// Called by  the command line, which fills it; NetReader.
/// Uses       the environment variable MATERIALX_SEARCH_PATH.
/// Tells      nobody.
class NetSearchPath
{
public:
    NetSearchPath() = default;
    explicit NetSearchPath(QStringList folders)
        : m_Folders(std::move(folders))
    {
    }

    /// The given folders, then those that the environment names. Relative ones count from the
    /// current folder.
    static NetSearchPath withEnvironment(const QStringList& folders = {});

    const QStringList& folders() const { return m_Folders; }
    /// The file that an include names: beside the including file first, then in the folders. A null
    /// string when it is nowhere.
    QString resolve(const QString& reference, const QString& includingFile) const;
    /// The folders, then every folder above the file that has a folder "libraries" with documents
    /// in it, nearest first, at most eight levels up: nodes find their ports without any option.
    QStringList definitionFolders(const QString& file) const;

private:
    QStringList m_Folders;
};
