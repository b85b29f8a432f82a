// In place of libFuzzer: every file of the folders, and every file, that the arguments name, once.

#include "fuzz/Fuzz.h"

#include <QDirIterator>
#include <QFile>

#include <cstdio>

int main(int count, char** arguments)
{
    LLVMFuzzerInitialize(&count, &arguments);
    QStringList files;
    for (int i = 1; i < count; ++i) {
        const QString path = QString::fromLocal8Bit(arguments[i]);
        if (QFileInfo(path).isFile())
            files.append(path);
        for (QDirIterator found(path, QDir::Files, QDirIterator::Subdirectories); found.hasNext();)
            files.append(found.next());
    }
    files.sort();
    for (const QString& path : qAsConst(files)) {
        std::printf("%s\n", qPrintable(path)); // the last one printed is the one that fails
        std::fflush(stdout);
        QFile file(path);
        ORV_REQUIRE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
            static_cast<std::size_t>(bytes.size()));
    }
    return files.isEmpty() ? 1 : 0;
}
