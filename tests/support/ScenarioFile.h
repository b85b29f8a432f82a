#pragma once

#include <QStringList>

/// What a scenario does; the lines are for ScenarioStage::run().
struct Scenario
{
    QString m_Name; ///< "title, row"
    QStringList m_Lines;
};

/// Those of a file, as README.md in tests/data/scenarios describes it.
QList<Scenario> readScenarios(const QString& path);
