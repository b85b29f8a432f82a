#include "editor/EditorTesting.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestRows.h"

#include <QImage>
#include <QProcess>

#include <algorithm>

using namespace EditorTesting;

/// The program itself, run as from a shell: exit codes, what it prints, pictures.
class tst_EditorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_Files.write(QStringLiteral("torn.mtlx"), "<materialx>\n\n<add>\n</materialx>");
        m_Files.write(QStringLiteral("odd.mtlx"),
            "<materialx>\n<odd name='a' type='float'>\n"
            "<input name='in' type='float' nodename='gone'/></odd></materialx>");
    }

    void line_endsAsItShould_data()
    {
        addTestRows(
            ORV_TEST_DATA "/editor/program.txt", "lines", {"line", "code", "error", "size"});
    }

    void line_endsAsItShould()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, error);
        QFETCH(QByteArray, size);
        QFile::remove(path("out.png"));
        run(QString::fromUtf8(line));
        QTEST(QByteArray::number(m_Code), "code");
        QVERIFY2(m_Errors.contains(error), m_Errors.constData());
        QVERIFY(line != "bare $patina" || m_Errors.count('\n') == 1); // no stack of complaints
        QVERIFY(!QFile::exists(m_Settings)); // pictures and failures leave none
        const QImage image(path("out.png"));
        QCOMPARE(QFile::exists(path("out.png")), !size.isEmpty());
        if (size.isEmpty())
            return;
        QCOMPARE(
            QByteArray::number(image.width()) + 'x' + QByteArray::number(image.height()), size);
        // Headers and ports are the only saturated colours of the dark window.
        int colourful = 0;
        for (int i = 0; i < image.width() * image.height(); ++i)
            colourful += image.pixelColor(i % image.width(), i / image.width()).saturation() > 100;
        QVERIFY2(colourful > 40, qPrintable(QString::number(colourful)));
    }

    void measurement_printsFrameTimesAndKeepsTheDocument()
    {
        const QString sample = samplePath("garden_wall.mtlx");
        QVERIFY(QFile::copy(sample, path("wall.mtlx")));
        run(QStringLiteral("--measure --graph clay --size 700x500 wall.mtlx"));
        QVERIFY2(m_Code == 0, m_Errors.constData()); // 2 if a change were left behind
        QVERIFY(QFile(path("wall.mtlx")).size() == QFile(sample).size());
        QVERIFY(m_Output.startsWith("wall.mtlx: "));
        const QStringList lines
            = QString::fromUtf8(m_Output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
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

    void window_keepsSettings()
    {
        start(QStringLiteral("$patina"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_Settings), 20000);
        m_Program.kill();
        m_Program.waitForFinished();
    }

private:
    void start(QString line)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config")); // not the user's own
        if (line.startsWith(QLatin1String("bare "))) {
            line.remove(0, 5);
            for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
                environment.remove(QString::fromLatin1(name));
        }
        line.replace(QLatin1String("$wall"), samplePath("garden_wall.mtlx"));
        line.replace(QLatin1String("$patina"), samplePath("copper_patina.mtlx"));
        m_Program.setWorkingDirectory(path(""));
        m_Program.setProcessEnvironment(environment);
        m_Program.start(QStringLiteral(ORV_EDITOR_PROGRAM), line.split(QLatin1Char(' ')));
    }
    void run(const QString& line)
    {
        start(line);
        QVERIFY(m_Program.waitForFinished(60000) && m_Program.exitStatus() == QProcess::NormalExit);
        m_Code = m_Program.exitCode();
        m_Errors = m_Program.readAllStandardError();
        m_Output = m_Program.readAllStandardOutput();
    }
    QString path(const char* name) const { return m_Files.path(QString::fromLatin1(name)); }

    NetTemporaryFiles m_Files;
    const QString m_Settings = path("config/Orv/orv-shader-editor.conf");
    QProcess m_Program;
    int m_Code = -1;
    QByteArray m_Errors;
    QByteArray m_Output;
};

QTEST_GUILESS_MAIN(tst_EditorProgram)
#include "tst_EditorProgram.moc"
