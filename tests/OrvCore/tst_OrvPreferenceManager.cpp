#include "OrvCore/OrvPreferenceManager.h"

#include <QtTest>

#include <memory>

class tst_OrvPreferenceManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void registered_areListedWhileTheirObjectsLive()
    {
        auto& manager = OrvPreferenceManager::instance();
        const QString page = QStringLiteral("Page");
        const QString name = QStringLiteral("objectName");
        QObject first;
        auto second = std::make_unique<QObject>();
        QVERIFY(manager.registerPreference(page, {}, second.get(), name));
        QVERIFY(manager.registerPreference(page, {}, &first, name));
        QVERIFY(!manager.registerPreference(page, {}, nullptr, name));
        QVERIFY(!manager.registerPreference(page, {}, &first, QStringLiteral("missing")));
        QVERIFY(!manager.registerPreference(QStringLiteral("Other"), {}, &first, name));
        QCOMPARE(manager.preferences().size(), 2);

        second.reset();
        QCOMPARE(manager.preferences().size(), 1);
        QCOMPARE(manager.preferences().constFirst().object.data(), &first);
        QCOMPARE(manager.preferences().constFirst().page, page);
    }
};

QTEST_GUILESS_MAIN(tst_OrvPreferenceManager)
#include "tst_OrvPreferenceManager.moc"
