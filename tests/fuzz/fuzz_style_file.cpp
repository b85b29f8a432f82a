// Any bytes as the user's style sheet: loading and saving settles after one round, keeps the values, and
// touches the file no more.

#include "fuzz/Fuzz.h"
#include "support/StyleValues.h"

#include <OrvCore/OrvDebug.h>
#include <OrvCore/OrvResourceInfo.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

namespace {

QMap<QString, QString> loaded(OrvNgStyle& style)
{
    style.loadPreferences();
    Q_EMIT style.colorsUpdated(); // which keeps some values within bounds
    return StyleValues::of(style);
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// Memory that a damaged file asks for is refused, as where there is none, and not taken for an error.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1:max_allocation_size_mb=1000";
}

int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    static const QCoreApplication s_Application(*count, *arguments);
    OrvSetDebugHandler([](const QString&, int, const QString&, bool, bool) {});
    OrvResourceInfo::instance().setResourceRoot(QStringLiteral(ORV_RESOURCES));
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Settings keep what they read by path and time of change: each input has a path of its own.
    // In memory where that is offered: saving waits for the disk.
    static QTemporaryDir s_Folder(QFileInfo(QStringLiteral("/dev/shm")).isWritable()
            ? QStringLiteral("/dev/shm/style-XXXXXX")
            : QString());
    static int s_Number = 0;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, s_Folder.path());
    QCoreApplication::setOrganizationName(QStringLiteral("f%1").arg(++s_Number));
    QDir folder(s_Folder.filePath(QCoreApplication::organizationName()));
    const QString path = folder.filePath(QStringLiteral("NodeGraphStyleSheetVer3.ini"));
    folder.mkpath(QStringLiteral("."));
    QFile file(path);
    ORV_REQUIRE(file.open(QIODevice::WriteOnly) && file.write(Fuzz::bytes(data, size)) >= 0);
    file.close();
    static OrvNgStyle s_Style;

    const auto values = loaded(s_Style);
    s_Style.savePreferences();
    const QByteArray saved = contents(path);
    const QStringList files = folder.entryList(QDir::Files);
    ORV_REQUIRE(loaded(s_Style) == values);
    ORV_REQUIRE(contents(path) == saved);
    s_Style.savePreferences();
    ORV_REQUIRE(contents(path) == saved);
    ORV_REQUIRE(folder.entryList(QDir::Files) == files); // no other copy of a malformed file
    folder.removeRecursively();
    return 0;
}
