#include "support/DebugRecorder.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"
#include "OrvCoreModules/OrvShortcutManager.h"

#include <QSignalSpy>
#include <QtTest>

class tst_OrvShaderNetworkManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void gridSettings_startAtTheirDefaultsAndTellChanges()
    {
        const DebugRecorder recorder;
        auto* const manager = OrvShaderNetworkManager::instance();
        QVERIFY(
            manager->property("showGrid").toBool() && !manager->property("snapToGrid").toBool());
        QCOMPARE(QSize(manager->gridWidth(), manager->gridHeight()), QSize(20, 20));
        const QSignalSpy shown(manager, &OrvShaderNetworkManager::showGridChanged);
        const QSignalSpy snapped(manager, &OrvShaderNetworkManager::snapToGridChanged);
        const QSignalSpy width(manager, &OrvShaderNetworkManager::gridWidthChanged);
        const QSignalSpy height(manager, &OrvShaderNetworkManager::gridHeightChanged);
        for (int again = 0; again < 2; ++again) {
            manager->setProperty("showGrid", false);
            manager->setProperty("snapToGrid", true);
            manager->setGridWidth(1);
            manager->setGridHeight(35);
        }
        for (const QSignalSpy* spy : {&shown, &snapped, &width, &height})
            QCOMPARE(spy->size(), 1);

        manager->setGridWidth(0);
        manager->setGridHeight(-20);
        QCOMPARE(QSize(manager->gridWidth(), manager->gridHeight()), QSize(1, 35));
        QCOMPARE(recorder.messages().size(), 2);
    }

    void specialShortcut_isOffUntilEnabled()
    {
        auto& manager = OrvShortcutManager::instance();
        QVERIFY(!manager.isSpecialShortcutEnabled(Qt::Key_Tab));
        manager.setEnabledSpecialShortcut(Qt::Key_Tab, true);
        QVERIFY(manager.isSpecialShortcutEnabled(Qt::Key_Tab));
        QVERIFY(!manager.isSpecialShortcutEnabled(Qt::Key_Space));
    }
};

QTEST_APPLESS_MAIN(tst_OrvShaderNetworkManager)
#include "tst_OrvShaderNetworkManager.moc"
