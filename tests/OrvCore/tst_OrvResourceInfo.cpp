#include "OrvCore/OrvResourceInfo.h"

#include <QtTest>

#include <cstdio>
#include <cstring>

class tst_OrvResourceInfo : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void movedInstallation_findsItsOwnResources()
    {
        const QTemporaryDir prefix;
        const QDir root(QDir(prefix.path()).canonicalPath());
        const QString settings = root.filePath(QStringLiteral(ORV_DATADIR "/orv/settings"));
        const QString library = root.filePath(QStringLiteral(ORV_LIBDIR "/" ORV_CORE_SONAME));
        QVERIFY(root.mkpath(settings) && root.mkpath(QFileInfo(library).path()));
        QVERIFY(QFile::copy(QStringLiteral(ORV_CORE_LIBRARY), library));

        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), library);
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--print")});
        process.waitForFinished();
        QCOMPARE(QString::fromLocal8Bit(process.readAllStandardOutput()),
            settings + QStringLiteral("/A.conf"));
    }
};

// With --print the program only says where it would look, for a test that runs it as another
// process.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc > 1 && std::strcmp(argv[1], "--print") == 0) {
        const QString path = OrvResourceInfo::instance().settingsFilePath(QStringLiteral("A.conf"));
        return std::fputs(path.toLocal8Bit().constData(), stdout) < 0;
    }
    tst_OrvResourceInfo test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_OrvResourceInfo.moc"
