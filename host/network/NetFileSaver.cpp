#include "network/NetFileSaver.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("NetFileSaver", text);
}

// What this process may do tells nothing of what the file allows its owner.
constexpr QFile::Permissions kOfThisProcess{QFile::ReadUser | QFile::WriteUser | QFile::ExeUser};

// Devices and the like are refused too: writing puts a new file in the place of the old one.
QString refusal(const QString& path)
{
    if (path.isEmpty())
        return tr("The document needs a file name.");
    const QFileInfo info(path);
    if (info.isDir())
        return tr("\"%1\" is a folder, not a file.").arg(path);
    if (info.exists() && !info.isFile())
        return tr("\"%1\" is not a regular file.").arg(path);
    if (info.exists() && !info.isWritable())
        return tr("\"%1\" is write-protected.").arg(path);
    if (!info.exists() && !info.isSymLink() && !QFileInfo(info.absolutePath()).isDir())
        return tr("The folder \"%1\" does not exist.").arg(info.absolutePath());
    return {};
}

} // namespace

QString NetFileSaver::save(const QString& path, const QByteArray& bytes)
{
    QString problem = refusal(path);
    if (!problem.isEmpty())
        return problem;
    const bool there = QFileInfo::exists(path);
    const auto permissions = QFile::permissions(path) & ~kOfThisProcess;
    QSaveFile file(path);
    // Without flush(), what is left in the buffer fails unnoticed in commit(), when the disk is full.
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()
        && (!there || file.setPermissions(permissions)) && file.commit())
        return {};
    return tr("\"%1\" cannot be written: %2.").arg(path, file.errorString());
}
