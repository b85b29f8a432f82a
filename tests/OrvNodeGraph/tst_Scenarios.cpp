// What users and hosts do to a graph in a view: tests/data/scenarios.
#include "support/Scenario.h"

#include <QtTest>

class tst_Scenarios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scenario_data()
    {
        QTest::addColumn<QStringList>("lines");
        const QDir dir(QStringLiteral(ORV_TEST_DATA "/scenarios"));
        for (const QString& name : dir.entryList({QStringLiteral("*.scn")})) {
            for (const Scenario& scenario : readScenarios(dir.filePath(name)))
                QTest::newRow(qPrintable(name + QStringLiteral(": ") + scenario.m_Name))
                    << scenario.m_Lines;
        }
    }
    void scenario()
    {
        QFETCH(QStringList, lines);
        {
            ScenarioStage stage;
            for (const QString& line : qAsConst(lines))
                stage.run(line);
            QVERIFY2(stage.m_Faults.isEmpty(), qPrintable(stage.m_Faults.join(QLatin1Char('\n'))));
        }
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }
};

QTEST_MAIN(tst_Scenarios)
#include "tst_Scenarios.moc"
