#include "editor/EditorTesting.h"
#include "support/TestTable.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace EditorTesting;

/// The program itself, run as from a shell: exit codes, what it prints, pictures.
class tst_EditorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badLine_failsWithAReason()
    {
        const QString sample = samplePath("garden_wall.mtlx");
        const QString never = path("never.png");
        const QString shot = QStringLiteral("--screenshot");
        const Outcome outcomes[]
            = {run({shot, never, QStringLiteral("--graph"), QStringLiteral("attic"), sample}),
                run({shot, path("no/such/folder.png"), sample})};
        const char* const reasons[] = {"NG_wall_soil, courses, clay, mortar, moss", "folder.png"};
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(outcomes[i].code, 2);
            QVERIFY2(outcomes[i].errors.contains(QLatin1String(reasons[i])),
                qPrintable(outcomes[i].errors));
        }
        QVERIFY(!QFile::exists(never));
    }

    void badFile_failsWithFileAndLine_data()
    {
        const TestTable<QByteArray, QString, bool> row("text", "place", "isDrawn");
        row("missing", QByteArray(), "bad.mtlx: ", false);
        row("tag not closed", "<materialx>\n\n<add>\n</materialx>", "bad.mtlx:4: ", false);
        row("broken connection",
            "<materialx>\n<odd name='a' type='float'>\n"
            "<input name='in' type='float' nodename='gone'/></odd></materialx>",
            "bad.mtlx:3: ", true);
    }

    void badFile_failsWithFileAndLine()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, place);
        QFETCH(bool, isDrawn);
        const QString bad = path("bad.mtlx");
        const QString shot = path("bad.png");
        QFile::remove(bad);
        if (!text.isNull())
            writeFile(QDir(m_Folder.path()), QStringLiteral("bad.mtlx"), text);
        QVector<Outcome> outcomes{run({QStringLiteral("--screenshot"), shot, bad})};
        QCOMPARE(QFile::exists(shot), isDrawn);
        QCOMPARE(!QImage(shot).isNull(), isDrawn);
        if (!isDrawn) // else a window would stay open
            outcomes += {run({bad}), run({QStringLiteral("--measure"), bad})};
        for (const Outcome& outcome : qAsConst(outcomes)) {
            QCOMPARE(outcome.code, 2);
            QVERIFY2(outcome.errors.contains(place), qPrintable(outcome.errors));
        }
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
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                colourful += image.pixelColor(x, y).saturation() > 100 ? 1 : 0;
        }
        QVERIFY2(colourful > 40, qPrintable(QString::number(colourful)));
    }

    void measurement_printsFrameTimesAndKeepsTheDocument()
    {
        QFile sample(samplePath("garden_wall.mtlx"));
        QVERIFY(sample.open(QIODevice::ReadOnly));
        const QByteArray text = sample.readAll();
        const QString copy = writeFile(QDir(m_Folder.path()), QStringLiteral("wall.mtlx"), text);
        const Outcome outcome
            = run(QStringLiteral("--measure --graph clay --size 700x500").split(QLatin1Char(' '))
                << copy);
        QVERIFY2(outcome.code == 0, qPrintable(outcome.errors)); // 2 if a change were left behind
        QVERIFY(QFile(copy).size() == text.size());
        QVERIFY(outcome.output.startsWith(QStringLiteral("wall.mtlx: ")));
        const QStringList lines = outcome.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 9); // two about the circumstances, the columns, six gestures
        for (const QString& line : lines.mid(3)) {
            const QStringList cells = line.mid(24).simplified().split(QLatin1Char(' '));
            QCOMPARE(cells.size(), 5);
            QVERIFY2(cells.at(0).toInt() >= 30, qPrintable(line));
            for (int i = 1; i < 5; ++i) // a frame takes time, and percentiles rise
                QVERIFY2(cells.at(i).toDouble() > 0
                        && (i == 1 || cells.at(i).toDouble() >= cells.at(i - 1).toDouble()),
                    qPrintable(line));
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
