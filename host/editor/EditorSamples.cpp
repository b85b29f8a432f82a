#include "editor/EditorSamples.h"

#include <QCoreApplication>
#include <QDir>

QString EditorSamples::first()
{
    const QStringList folders{
        QDir(QCoreApplication::applicationDirPath())
            .filePath(QStringLiteral(ORV_NETWORKS_FROM_BINDIR)),
        QStringLiteral(ORV_BUILD_NETWORKS),
    };
    for (const QString& folder : folders) {
        const QFileInfoList files = QDir(folder).entryInfoList(
            {QStringLiteral("*.mtlx")}, QDir::Files | QDir::Readable, QDir::Name);
        if (!files.isEmpty())
            return files.constFirst().absoluteFilePath();
    }
    return {};
}
