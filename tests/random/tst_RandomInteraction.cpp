// Random operations on a whole graph. Every step is written to a trace before it runs; a trace can be
// replayed, and tools/shrink-trace makes it short.
//
//     tst_RandomInteraction --seed 7 --seeds 10 --steps 2000 --trace found.trace
//     tst_RandomInteraction --replay found.trace
#include "RandomWorld.h"

#include "OrvCore/OrvDebug.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <unistd.h>

namespace {

QString s_Warning;

/// What the offscreen platform says of itself is none of the library's business.
bool isAllowed(const QString& message)
{
    return message.startsWith(QLatin1String("This plugin does not support"))
        || message.contains(QLatin1String("grabbing the keyboard"))
        || message.startsWith(QLatin1String("QStandardPaths:"));
}

void hear(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtDebugMsg || isAllowed(message) || qstrcmp(context.category, "orv.debug") == 0)
        return;
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (s_Warning.isEmpty() && type != QtInfoMsg)
        s_Warning = QStringLiteral("M1 ") + message;
}

QByteArray lineOf(const RandomStep& step)
{
    return step.m_Name + ' ' + QByteArray::number(step.m_Seed) + (step.m_Reacts ? "" : " quiet");
}

QList<RandomStep> readTrace(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    QList<RandomStep> steps;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() >= 2 && !line.startsWith('#'))
            steps.append({words.at(0), words.at(1).toUInt(), words.value(2) != "quiet"});
    }
    return steps;
}

/// What is broken may not survive being torn down: the program stops at once.
[[noreturn]] void stop(const QString& broken, int index, const RandomStep& step)
{
    std::fprintf(
        stderr, "FAIL %s\n  at step %d, %s\n", qPrintable(broken), index, lineOf(step).constData());
    std::fflush(stderr);
    _exit(1);
}

template <typename NextStep> void play(int steps, QFile* trace, NextStep&& next)
{
    RandomWorld world;
    for (int i = 0; i < steps; ++i) {
        const RandomStep step = next(i);
        if (trace)
            trace->write(lineOf(step) + '\n');
        if (!world.run(step))
            qFatal("no operation is called %s", step.m_Name.constData());
        const QString broken = RandomInvariants::broken(world);
        if (!broken.isEmpty() || !s_Warning.isEmpty())
            stop(broken.isEmpty() ? s_Warning : broken, i, step);
    }
    world.tearDown();
    if (world.m_LiveNodes != 0 || !s_Warning.isEmpty())
        stop(s_Warning.isEmpty() ? QStringLiteral("L4 nodes outlive their scene") : s_Warning,
            steps, {"teardown", 0, false});
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir settings; // no settings of the user are read or written
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qSetGlobalQHashSeed(0);
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("OrvRandom"));
    QApplication::setCursorFlashTime(0);
    qInstallMessageHandler(hear);
    OrvSetDebugHandler(
        [](const QString&, int, const QString&, bool, bool) {}); // bad input is reported

    QCommandLineParser parser;
    const auto value = [&parser](const char* name) { return parser.value(QLatin1String(name)); };
    for (const auto& [name, text, preset] :
        {std::tuple("seed", "First seed.", "1"), {"seeds", "How many seeds.", "1"},
            {"steps", "Steps a seed.", "2000"}, {"trace", "Writes the last seed's steps here.", ""},
            {"replay", "Runs the steps of a trace instead.", ""}})
        parser.addOption({QLatin1String(name), QLatin1String(text), QStringLiteral("value"),
            QLatin1String(preset)});
    parser.addHelpOption();
    parser.process(app);

    if (!value("replay").isEmpty()) {
        const QList<RandomStep> replayed = readTrace(value("replay"));
        play(replayed.size(), nullptr, [&replayed](int i) { return replayed.at(i); });
        return 0;
    }
    const quint32 first = value("seed").toUInt();
    const int steps = value("steps").toInt();
    QElapsedTimer clock;
    clock.start();
    for (quint32 seed = first; seed < first + value("seeds").toUInt(); ++seed) {
        QFile file(value("trace"));
        if (!file.fileName().isEmpty() && !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            qFatal("cannot write %s", qPrintable(file.fileName()));
        RandomDice dice(seed);
        const auto draw = [&dice](int i) { return RandomWorld::drawStep(dice, i); };
        play(steps, file.isOpen() ? &file : nullptr, draw);
    }
    std::printf("%d steps in %lld ms\n", value("seeds").toInt() * steps, clock.elapsed());
    return 0;
}
