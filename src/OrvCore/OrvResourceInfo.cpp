#include "OrvCore/OrvResourceInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <dlfcn.h>
#endif

namespace {

// The directory of this library's file; the application's where the system cannot tell.
QString libraryDirectory()
{
#ifdef Q_OS_UNIX
    Dl_info info{};
    const auto* const ownAddress = reinterpret_cast<const void*>(&libraryDirectory);
    if (dladdr(ownAddress, &info) != 0 && info.dli_fname) {
        const QFileInfo file(QFile::decodeName(info.dli_fname));
        if (file.exists())
            return QFileInfo(file.canonicalFilePath()).path();
    }
#endif
    return QCoreApplication::instance() ? QCoreApplication::applicationDirPath()
                                        : QDir::currentPath();
}

// The installed resources, or the source tree's when the library was not installed.
QString defaultRoot()
{
    const QString installed
        = QDir(libraryDirectory()).filePath(QStringLiteral(ORV_RESOURCES_FROM_LIBDIR));
    const QString sources = QStringLiteral(ORV_BUILD_RESOURCES);
    const auto holdsResources
        = [](const QString& root) { return QFileInfo(root + QStringLiteral("/settings")).isDir(); };
    return !holdsResources(installed) && holdsResources(sources) ? sources : installed;
}

} // namespace

OrvResourceInfo& OrvResourceInfo::instance()
{
    static auto* const s_Instance = new OrvResourceInfo;
    return *s_Instance;
}

OrvResourceInfo::OrvResourceInfo()
{
    setResourceRoot({});
}

QString OrvResourceInfo::settingsFilePath(const QString& fileName) const
{
    return QDir::cleanPath(m_SettingsPath + QLatin1Char('/') + fileName);
}

void OrvResourceInfo::setResourceRoot(const QString& directory)
{
    const QDir root(directory.isEmpty() ? defaultRoot() : directory);
    m_SettingsPath = QDir::cleanPath(root.absoluteFilePath(QStringLiteral("settings")));
    m_IconPath = QDir::cleanPath(root.absoluteFilePath(QStringLiteral("icons")));
}
