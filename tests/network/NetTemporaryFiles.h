#pragma once

#include "network/NetReader.h"
#include "support/Literals.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

/// A folder of documents for one test, gone with the object.
class NetTemporaryFiles
{
public:
    QString path(const QString& name) const { return m_Folder.filePath(name); }

    /// Writes the bytes as they are; makes missing folders. Returns the path.
    QString write(const QString& name, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(path(name)).absolutePath());
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(path(name)));
        return path(name);
    }
    /// Writes a document with the given children of the root, the first one on line 2.
    QString writeDocument(const QString& name, const QByteArray& children) const
    {
        return write(name, "<materialx version=\"1.39\">\n" + children + "\n</materialx>\n");
    }

    /// A document of the tests' own, as it stands in its file.
    static QByteArray data(const char* name)
    {
        QFile file(QStringLiteral(ORV_TEST_DATA "/network/") + QLatin1String(name));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s is missing", name);
        return file.readAll();
    }

private:
    QTemporaryDir m_Folder;
};
