#include "editor/EditorTesting.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace EditorTesting;

/// The program itself, run as from a shell: exit codes, what it prints, pictures.
class tst_EditorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badLine_failsWithAReason()
    {
        const QString sample = samplePath("garden_wall.mtlx");
        const auto fails = [&](const QStringList& more, const char* file, const char* reason) {
            const Outcome end
                = run(QStringList{QStringLiteral("--screenshot"), path(file), sample} + more);
            return end.code == 2 && end.errors.contains(QLatin1String(reason));
        };
        const QStringList attic{QStringLiteral("--graph"), QStringLiteral("attic")};
        QVERIFY(fails(attic, "never.png", "NG_wall_soil, courses, clay, mortar, moss"));
        QVERIFY(!QFile::exists(path("never.png")));
        QVERIFY(fails({}, "no/such/folder.png", "folder.png"));
    }

    void badFile_failsWithFileAndLine()
    {
        const QString shot = path("bad.png");
        const auto complains = [&](const QStringList& words, const char* text, const char* place) {
            const QString bad = writeFile(QDir(m_Folder.path()), QStringLiteral("bad.mtlx"), text);
            const Outcome outcome = run(words + QStringList(bad));
            return outcome.code == 2 && outcome.errors.contains(QLatin1String(place));
        };
        const char* const torn = "<materialx>\n\n<add>\n</materialx>";
        QVERIFY(complains({}, torn, "bad.mtlx:4: "));
        QVERIFY(complains({QStringLiteral("--measure")}, torn, "bad.mtlx:4: "));
        QVERIFY(complains({QStringLiteral("--screenshot"), shot}, torn, "bad.mtlx:4: "));
        QVERIFY(!QFile::exists(shot));
        QVERIFY(complains({QStringLiteral("--screenshot"), shot},
            "<materialx>\n<odd name='a' type='float'>\n"
            "<input name='in' type='float' nodename='gone'/></odd></materialx>",
            "bad.mtlx:3: "));
        QVERIFY(!QImage(shot).isNull());
    }

    void screenshot_hasTheAskedSizeAndShowsNodes()
    {
        const QString shot = path("shot.png");
        QStringList arguments = QStringLiteral("--graph clay --zoom 100 --size 700x500 --mode 4")
                                    .split(QLatin1Char(' '));
        arguments += {QStringLiteral("--screenshot"), shot, samplePath("garden_wall.mtlx")};
        const Outcome outcome = run(arguments);
        QVERIFY2(outcome.code == 0, qPrintable(outcome.errors));
        const QImage image(shot);
        QCOMPARE(image.size(), QSize(700, 500));
        // Headers and ports are the only saturated colours of the dark window.
        int colourful = 0;
        for (int i = 0; i < 700 * 500; ++i)
            colourful += image.pixelColor(i % 700, i / 700).saturation() > 100 ? 1 : 0;
        QVERIFY2(colourful > 40, qPrintable(QString::number(colourful)));
    }

    void measurement_printsFrameTimesAndKeepsTheDocument()
    {
        const QString copy = path("wall.mtlx");
        QVERIFY(QFile::copy(samplePath("garden_wall.mtlx"), copy));
        const QStringList words
            = QStringLiteral("--measure --graph clay --size 700x500").split(QLatin1Char(' '));
        const Outcome outcome = run(words + QStringList(copy));
        QVERIFY2(outcome.code == 0, qPrintable(outcome.errors)); // 2 if a change were left behind
        QVERIFY(QFile(copy).size() == QFile(samplePath("garden_wall.mtlx")).size());
        QVERIFY(outcome.output.startsWith(QStringLiteral("wall.mtlx: ")));
        const QStringList lines = outcome.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 9); // two about the circumstances, the columns, six gestures
        for (const QString& line : lines.mid(3)) {
            QVector<double> cells;
            for (const QString& cell : line.mid(24).simplified().split(QLatin1Char(' ')))
                cells.append(cell.toDouble());
            QCOMPARE(cells.size(), 5); // a frame takes time, and percentiles rise
            QVERIFY2(cells.takeFirst() >= 30 && cells.first() > 0, qPrintable(line));
            QVERIFY2(std::is_sorted(cells.cbegin(), cells.cend()), qPrintable(line));
        }
    }

    void withoutDisplay_saysHowToGoOn()
    {
        const QString sample = samplePath("copper_patina.mtlx");
        const Outcome refused = run({sample}, false);
        QCOMPARE(refused.code, 2);
        QCOMPARE(refused.errors.count(QLatin1Char('\n')), 1);
        QVERIFY(refused.errors.contains(QStringLiteral("--screenshot")));
        QCOMPARE(run({QStringLiteral("--screenshot"), path("bare.png"), sample}, false).code, 0);
        QVERIFY(!QImage(path("bare.png")).isNull());
    }

    void window_keepsSettings_pictureDoesNot()
    {
        const QString sample = samplePath("copper_patina.mtlx");
        const QString settings = path("config/Orv/orv-shader-editor.conf");
        QVERIFY(!QFile::exists(settings)); // after all those pictures
        QProcess program;
        program.setProcessEnvironment(environment());
        program.start(QStringLiteral(ORV_EDITOR_PROGRAM), {sample});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settings), 20000);
        program.kill();
        program.waitForFinished();

        QVERIFY(QFile::remove(settings));
        QCOMPARE(run({QStringLiteral("--screenshot"), path("again.png"), sample}).code, 0);
        QVERIFY(!QFile::exists(settings));
    }

private:
    struct Outcome
    {
        int code = -1;
        QString errors;
        QString output;
    };
    /// The user's own settings stay out of it.
    QProcessEnvironment environment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
        return environment;
    }

    Outcome run(const QStringList& arguments, bool hasDisplay = true) const
    {
        QProcessEnvironment environment = this->environment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            if (!hasDisplay)
                environment.remove(QString::fromLatin1(name));
        }
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(ORV_EDITOR_PROGRAM), arguments);
        if (!program.waitForFinished(60000) || program.exitStatus() != QProcess::NormalExit)
            return {};
        return {program.exitCode(), QString::fromLocal8Bit(program.readAllStandardError()),
            QString::fromLocal8Bit(program.readAllStandardOutput())};
    }

    QString path(const char* name) const
    {
        return QDir(m_Folder.path()).filePath(QString::fromLatin1(name));
    }

    QTemporaryDir m_Folder;
};

QTEST_GUILESS_MAIN(tst_EditorProgram)
#include "tst_EditorProgram.moc"
