#include "support/DebugRecorder.h"

#include "OrvCore/OrvResourceInfo.h"
#include "OrvCoreModules/OrvSvgManager.h"

#include <QtTest>

class tst_OrvSvgManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void icons_areReadOnceAndUnusableOnesReportedOnce()
    {
        const QTemporaryDir root;
        const auto write = [&root](const char* path, const QByteArray& content) {
            QFile file(root.filePath(QLatin1String(path)));
            return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
        };
        const QByteArray icon = "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 4 4'/>";
        QVERIFY(QDir(root.path()).mkpath(QStringLiteral("icons")));
        QVERIFY(write("icons/Good.svg", icon) && write("icons/Broken.svg", "<svg><rect")
            && write("Outside.svg", icon));
        OrvResourceInfo::instance().setResourceRoot(root.path());

        auto* const manager = OrvSvgManager::instance();
        QSvgRenderer* const renderer = manager->renderer(QStringLiteral("Good"));
        QVERIFY(renderer);
        QCOMPARE(manager->renderer(QStringLiteral("Good")), renderer);

        const DebugRecorder recorder;
        for (const char* name : {"Missing", "Broken", "../Outside", "Missing", "Broken"})
            QVERIFY(!manager->renderer(QLatin1String(name)));
        QCOMPARE(recorder.messages().size(), 3);
    }
};

QTEST_MAIN(tst_OrvSvgManager)
#include "tst_OrvSvgManager.moc"
