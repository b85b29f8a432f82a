#include "network/NetSearchPath.h"

#include "network/NetDefinitionLibrary.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr int kLevelsUp = 8;

} // namespace

NetSearchPath NetSearchPath::withEnvironment(const QStringList& folders)
{
    QStringList all = folders;
    all += qEnvironmentVariable("MATERIALX_SEARCH_PATH")
               .split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return NetSearchPath(all);
}

QString NetSearchPath::resolve(const QString& reference, const QString& includingFile) const
{
    if (reference.isEmpty())
        return {};
    QStringList folders = m_Folders;
    folders.prepend(QFileInfo(includingFile).absolutePath());
    for (const QString& folder : qAsConst(folders)) {
        const QFileInfo file(QDir(folder), reference);
        if (file.isFile())
            return QDir::cleanPath(file.absoluteFilePath());
    }
    return {};
}

QStringList NetSearchPath::definitionFolders(const QString& file) const
{
    QStringList folders = m_Folders;
    QDir above = QFileInfo(file).absoluteDir();
    for (int level = 0; level < kLevelsUp; ++level) {
        if (above.exists(QStringLiteral("libraries"))
            && !NetDefinitionLibrary::filesIn(above.path()).isEmpty())
            folders.append(above.path());
        if (!above.cdUp())
            break;
    }
    folders.removeDuplicates();
    return folders;
}
