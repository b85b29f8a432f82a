#include "support/Scenario.h"

#include <QFontDatabase>
#include <QtTest>

/// The library's look, pixel by pixel, at scales at which all of it is drawn. Text is equal everywhere with a
/// font of our own choice, sized in pixels and not hinted.
class tst_Pictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char* file : {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf"})
            QVERIFY(QFontDatabase::addApplicationFont(
                        QStringLiteral(ORV_TEST_FONTS "/") + QLatin1String(file))
                >= 0);
        QFont font(q("DejaVu Sans"));
        font.setPixelSize(14);
        font.setHintingPreference(QFont::PreferNoHinting);
        QApplication::setFont(font);
    }

    void picture_isAsStored_data()
    {
        QTest::addColumn<QStringList>("lines");
        const QStringList doubled{q("mode-expanded"), q("pens"), q("grid"), q("minimap")};
        for (Scenario picture : readScenarios(QStringLiteral(ORV_TEST_DATA "/pictures.scn"))) {
            picture.m_Name.replace(q(", "), q("-"));
            if (qApp->devicePixelRatio() == 1.0 || doubled.contains(picture.m_Name))
                QTest::newRow(qPrintable(picture.m_Name)) << picture.m_Lines;
        }
    }

    void picture_isAsStored()
    {
        QFETCH(QStringList, lines);
        ScenarioStage stage;
        for (const QString& line : qAsConst(lines))
            stage.run(line);
        flushEvents();
        QWidget* viewport = stage.m_View.viewport();
        QImage actual(
            viewport->size() * viewport->devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
        actual.setDevicePixelRatio(viewport->devicePixelRatioF());
        viewport->render(&actual);
        actual.setDevicePixelRatio(1.0);

        const bool isDouble = qApp->devicePixelRatio() == 2.0;
        const QString name = q(QTest::currentDataTag()) + (isDouble ? q("@2x") : QString());
        const QString reference = QStringLiteral(ORV_REFERENCES "/%1.png").arg(name);
        if (qEnvironmentVariableIsSet("ORV_UPDATE_REFERENCES")) {
            QVERIFY(actual.convertToFormat(QImage::Format_RGB32).save(reference, "PNG", 0));
            return;
        }
        QImage expected = QImage(reference).convertToFormat(actual.format());
        expected.setDevicePixelRatio(1.0); // a file named @2x comes with 2
        QVERIFY2(expected.size() == actual.size(), "no picture of that size is stored");
        int different = 0, largest = 0; // channels of pixels
        for (qsizetype i = 0; i < actual.sizeInBytes(); ++i) {
            const int off = std::abs(actual.constBits()[i] - expected.constBits()[i]);
            different += off > 0 ? 1 : 0;
            largest = qMax(largest, off);
        }
        // For processors of another kind, whose arithmetic rounds differently.
        const bool isTolerant = qEnvironmentVariableIsSet("ORV_REFERENCE_TOLERANCE") && largest <= 2
            && different * 1000 <= actual.width() * actual.height();
        if (different == 0 || isTolerant)
            return;
        QDir().mkpath(QStringLiteral(ORV_FAILED_PICTURES));
        const QString path = QStringLiteral(ORV_FAILED_PICTURES "/") + name;
        actual.save(path + q(".actual.png"));
        expected.save(path + q(".expected.png"));
        const QString text = q("%1 channels of pixels differ, by up to %2; see %3.*.png");
        QFAIL(qPrintable(text.arg(different).arg(largest).arg(path)));
    }
};

QTEST_MAIN(tst_Pictures)
#include "tst_Pictures.moc"
