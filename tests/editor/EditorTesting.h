#pragma once

#include "network/NetReader.h"
#include "support/DebugRecorder.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

/// What the editor's tests share.
namespace EditorTesting {

/// Qt's warnings and the library's reports while it lives: the noise of a program at fault.
class Noise
{
public:
    Noise()
    {
        s_Current = this;
        m_Previous = qInstallMessageHandler(&Noise::hear);
    }
    ~Noise()
    {
        qInstallMessageHandler(m_Previous);
        s_Current = nullptr;
    }
    /// Without what is merely noted.
    QStringList heard() const
    {
        const QRegularExpression trouble(QStringLiteral("^(?!\\[ -- \\])"));
        return (m_Warnings + m_Reports.messages()).filter(trouble);
    }

private:
    Q_DISABLE_COPY(Noise)
    static void hear(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const bool isPlatforms = text.startsWith(QLatin1String("This plugin does not support"));
        if (type != QtDebugMsg && type != QtInfoMsg && !isPlatforms)
            s_Current->m_Warnings.append(text);
        s_Current->m_Previous(type, context, text);
    }

    static inline Noise* s_Current = nullptr;
    QtMessageHandler m_Previous = nullptr;
    QStringList m_Warnings;
    DebugRecorder m_Reports;
};

/// Runs what waits in the event loop, deferred deletions too.
inline void flush()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

/// A document of the tests' own, which stays as it is.
inline QString testPath(const QByteArray& name)
{
    return QStringLiteral(ORV_TEST_DATA "/editor/") + QLatin1String(name);
}

/// Empty for a file that cannot be read.
inline QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QString samplePath(const char* name)
{
    return QDir(QStringLiteral(ORV_RESOURCES "/networks")).filePath(QString::fromLatin1(name));
}

/// All own samples and test documents, and all shared documents where their folder is there.
inline QStringList allDocuments()
{
    const QString shared = qEnvironmentVariable("ORV_SHARED_DATA");
    if (!QFileInfo(shared).isDir())
        qInfo("The folder of shared documents (ORV_SHARED_DATA) is not there: own samples only.");
    QStringList files;
    for (const QString& folder : {QStringLiteral(ORV_RESOURCES "/networks"),
             QStringLiteral(ORV_TEST_DATA "/editor"), shared}) {
        QDirIterator found(
            folder, {QStringLiteral("*.mtlx")}, QDir::Files, QDirIterator::Subdirectories);
        while (!folder.isEmpty() && found.hasNext())
            files.append(found.next());
    }
    files.sort();
    return files;
}

} // namespace EditorTesting
