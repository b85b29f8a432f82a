// What a whole graph costs: one table row for each thing that users wait for, on networks of N extended nodes.
//
// Every row is measured with its floor, the least that the same work costs without the library (BenchFloors.h),
// turn by turn in the same run. Milliseconds depend on the machine and on what else it does; the ratio of both does
// so much less, and is what this program judges: it exits with 1 when a ratio is above its ceiling, or when what a
// row measures did not happen.

#include "BenchRows.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

#include <cstdio>
#include <stdexcept>

namespace {

constexpr int kSmall = 1000; // nodes
constexpr int kLarge = 10000;
constexpr int kQuick = 100;
constexpr int kUsageError = 2;

/// The goals of one network size.
struct Goal
{
    double m_Budget = 0.0; ///< in the row's unit
    double m_QuietFloor = 0.0; ///< in the row's unit
    double m_Tolerated = 0.0; ///< ratio that is let pass although it is over budget
    double budgetRatio() const { return m_Budget / m_QuietFloor; }
    double ceiling() const { return qMax(budgetRatio(), m_Tolerated); }
};

struct Row
{
    const char* m_Name = nullptr;
    const char* m_Unit = nullptr;
    BenchFigure (BenchRows::*m_Measure)() = nullptr;
    Goal m_Small;
    Goal m_Large;

    const Goal* goal(int nodeCount) const
    {
        return nodeCount == kSmall ? &m_Small : nodeCount == kLarge ? &m_Large : nullptr;
    }
};

// The ceiling of a ratio is the row's budget divided by its quiet floor; for rows that do not keep their budget it is
// a fifth above what they last took, so that they get no slower (docs/quality.md has the reasons). Budgets are what users may wait (memory: what
// a node may weigh) on two cores of an AMD EPYC server. Quiet floors are this program's own floors there, 2026-11-23,
// release build: the lowest processor time of 60 frames, or of 12 trees (large: 25 and 4), because others used the
// machine too. Whoever changes a floor measures its quiet value again.
const Row kRows[] = {
    {"build until first events are processed", "ms", &BenchRows::build, {150, 40},
        {1300, 534, 3.3}},
    {"first paint, all in view", "ms", &BenchRows::firstPaint, {12, 15, 1.3}, {60, 82, 2.6}},
    {"pan by scrolling, all in view, a frame", "ms", &BenchRows::panAll, {4, 15}, {10, 82}},
    {"zoom step, all in view, a frame", "ms", &BenchRows::zoomAll, {6, 15}, {40, 82}},
    {"pan at scale 1, a frame", "ms", &BenchRows::panAtScaleOne, {5, 7.9}, {6, 14.5}},
    {"drag one node by a pixel at scale 1", "ms", &BenchRows::dragOneAtScaleOne, {5, 7.9},
        {7, 14.5, 1.1}},
    {"drag one node, all in view", "ms", &BenchRows::dragOneAll, {5, 15}, {15, 82}},
    {"drag 100 selected nodes at scale 1, a step", "ms", &BenchRows::dragHundredAtScaleOne,
        {9, 7.9, 2.1}, {12, 14.5, 2.2}},
    {"rubber band in 10 moves to everything, in all", "ms", &BenchRows::band, {80, 150},
        {600, 820}},
    {"hover move, mean over moves", "ms", &BenchRows::hover, {0.04, 0.0107}, {0.05, 0.0163}},
    {"delete all nodes", "ms", &BenchRows::deleteAll, {50, 16.5, 3.6}, {600, 249, 3.0}},
    {"memory a node, edges included", "KB", &BenchRows::memory, {45, 9.53}, {45, 9.54}},
};

struct Verdict
{
    BenchFigure m_Figure;
    QString m_Fault; ///< what did not happen; empty when all did
    bool m_IsOver = false;

    bool isGood() const { return m_Fault.isEmpty() && !m_IsOver; }
};

Verdict measure(const Row& row, BenchRows* rows, const Goal* goal)
{
    Verdict verdict;
    try {
        verdict.m_Figure = (rows->*row.m_Measure)();
        verdict.m_IsOver = goal && verdict.m_Figure.m_Ratio > goal->ceiling();
    } catch (const std::runtime_error& fault) {
        verdict.m_Fault = QString::fromUtf8(fault.what());
        rows->forgetGraph();
    }
    return verdict;
}

/// Noise can only make a ratio worse, so the first good try counts.
Verdict measureInTries(const Row& row, BenchRows* rows, const Goal* goal, int tries)
{
    Verdict best = measure(row, rows, goal);
    for (int i = 1; i < tries && best.m_IsOver; ++i) {
        const Verdict next = measure(row, rows, goal);
        if (!next.m_Fault.isEmpty() || next.m_Figure.m_Ratio < best.m_Figure.m_Ratio)
            best = next;
    }
    return best;
}

QString number(double value)
{
    return QString::number(value, 'f', value < 1 ? 3 : value < 100 ? 2 : 0);
}

QString markOf(const Verdict& verdict, const Goal* goal)
{
    if (!verdict.m_Fault.isEmpty())
        return QStringLiteral("FAILED: ") + verdict.m_Fault;
    if (!goal)
        return QStringLiteral("-");
    if (verdict.m_IsOver)
        return QStringLiteral("OVER");
    return verdict.m_Figure.m_Ratio > goal->budgetRatio() ? QStringLiteral("over budget")
                                                          : QStringLiteral("ok");
}

/// Name, figure, budget, floor, ratio, ceiling, mark.
QStringList cells(const Row& row, const Verdict& verdict, const Goal* goal)
{
    const QString none = QStringLiteral("-");
    const bool isMeasured = verdict.m_Fault.isEmpty();
    const auto measured = [&](double value) { return isMeasured ? number(value) : none; };
    return {QString::fromLatin1(row.m_Name), measured(verdict.m_Figure.m_Value),
        goal ? number(goal->m_Budget) : none, QString::fromLatin1(row.m_Unit),
        measured(verdict.m_Figure.m_Floor), measured(verdict.m_Figure.m_Ratio),
        goal ? number(goal->ceiling()) : none, markOf(verdict, goal)};
}

void printLine(const QStringList& cells)
{
    std::printf("%-46s%10s%9s %-3s%10s%9s%9s  %s\n", qPrintable(cells.at(0)),
        qPrintable(cells.at(1)), qPrintable(cells.at(2)), qPrintable(cells.at(3)),
        qPrintable(cells.at(4)), qPrintable(cells.at(5)), qPrintable(cells.at(6)),
        qPrintable(cells.at(7)));
    static_cast<void>(std::fflush(stdout)); // a row takes seconds
}

struct Options
{
    QVector<int> m_NodeCounts;
    QRegularExpression m_Filter;
    int m_Tries = 1;
    QString m_CsvFile;
};

void writeCsvLine(QTextStream* csv, int nodeCount, const QStringList& cells)
{
    const QString& name = cells.first();
    *csv << nodeCount << ",\"" << name << "\"," << cells.mid(1, 6).join(QLatin1Char(',')) << ",\""
         << cells.last() << "\"\n";
}

bool runTable(int nodeCount, const Options& options, QTextStream* csv)
{
    std::printf("\n%d nodes\n", nodeCount);
    printLine({QStringLiteral("row"), QStringLiteral("figure"), QStringLiteral("budget"), {},
        QStringLiteral("floor"), QStringLiteral("ratio"), QStringLiteral("ceiling"), {}});
    BenchRows rows(nodeCount);
    bool isGood = true;
    for (const Row& row : kRows) {
        if (!options.m_Filter.match(QString::fromLatin1(row.m_Name)).hasMatch())
            continue;
        const Goal* goal = row.goal(nodeCount);
        const Verdict verdict = measureInTries(row, &rows, goal, options.m_Tries);
        const QStringList line = cells(row, verdict, goal);
        printLine(line);
        if (csv)
            writeCsvLine(csv, nodeCount, line);
        isGood = isGood && verdict.isGood();
    }
    return isGood;
}

int usageError(const QString& text)
{
    static_cast<void>(std::fprintf(stderr, "%s\n", qPrintable(text)));
    return kUsageError;
}

bool readNodeCounts(const QString& text, QVector<int>* counts)
{
    bool isNumber = true;
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString& each : parts) {
        counts->append(each.toInt(&isNumber));
        if (!isNumber || counts->last() < 4)
            return false;
    }
    return true;
}

int run(const Options& options)
{
    QFile file(options.m_CsvFile);
    if (!options.m_CsvFile.isEmpty() && !file.open(QIODevice::WriteOnly))
        return usageError(options.m_CsvFile + QStringLiteral(": ") + file.errorString());
    QTextStream csv(&file);
    if (file.isOpen())
        csv << "nodes,row,figure,budget,unit,floor,ratio,ceiling,verdict\n";
#ifdef NDEBUG
    std::printf("medians; ratio: figure to floor; only ratios are judged\n");
#else
    std::printf("medians; built without optimisation: no ceiling holds\n");
#endif
    bool isGood = true;
    for (int nodeCount : options.m_NodeCounts)
        isGood = runTable(nodeCount, options, file.isOpen() ? &csv : nullptr) && isGood;
    return isGood ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OrvBenchmark"));
    OrvShaderNetworkManager::instance()->setShowGrid(false);

    QCommandLineParser parser;
    const QCommandLineOption nodes(QStringLiteral("nodes"),
        QStringLiteral("Sizes of the networks (1000,10000); only these two have ceilings."),
        QStringLiteral("N,…"), QStringLiteral("1000,10000"));
    const QCommandLineOption quick(
        QStringLiteral("quick"), QStringLiteral("A network of 100 nodes: do all rows still work?"));
    const QCommandLineOption filter(QStringLiteral("filter"),
        QStringLiteral("Only rows whose name matches."), QStringLiteral("REGEX"));
    const QCommandLineOption tries(QStringLiteral("tries"),
        QStringLiteral("Measure a row above its ceiling up to N times (1)."), QStringLiteral("N"),
        QStringLiteral("1"));
    const QCommandLineOption csv(QStringLiteral("csv"),
        QStringLiteral("Write the table to FILE too."), QStringLiteral("FILE"));
    parser.addOptions({nodes, quick, filter, tries, csv});
    parser.addHelpOption();
    parser.process(application);

    Options options;
    options.m_Filter.setPattern(parser.value(filter));
    if (!options.m_Filter.isValid())
        return usageError(QStringLiteral("--filter: ") + options.m_Filter.errorString());
    if (parser.isSet(quick))
        options.m_NodeCounts = {kQuick};
    else if (!readNodeCounts(parser.value(nodes), &options.m_NodeCounts))
        return usageError(QStringLiteral("--nodes: numbers from 4 up, divided by commas"));
    options.m_Tries = parser.value(tries).toInt();
    if (options.m_Tries < 1)
        return usageError(QStringLiteral("--tries: a number from 1 up"));
    options.m_CsvFile = parser.value(csv);
    return run(options);
}
