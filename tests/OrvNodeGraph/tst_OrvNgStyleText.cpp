#include "OrvNodeGraph/OrvNgStyleText.h"
#include "support/TestTable.h"

#include <QLocale>
#include <QtTest>

using ColorPair = QPair<QColor, QColor>;

/// Text forms of style sheet values, read as people write them and written as they are read.
class tst_OrvNgStyleText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void color_data()
    {
        const TestTable<QString, QColor> row("text", "color");
        const QColor sample(1, 2, 3, 4);
        row("four numbers", "(1,2,3,4)", sample);
        row("without parentheses", "1,2,3,4", sample);
        row("any separator", "(1;2/3|4)", sample);
        row("alpha missing", "(1,2,3)", QColor(1, 2, 3, 0));
        row("a word", "red", QColor(0, 0, 0, 0));
        row("nothing", QString(), QColor());
        row("channel over 255", "(300,2,3,4)", QColor());
    }

    void color()
    {
        QFETCH(QString, text);
        QFETCH(QColor, color);
        QCOMPARE(OrvNgStyleText<QColor>::parse(text), color);
        QCOMPARE(OrvNgStyleText<OrvColor>::parse(text), OrvColor(color));
    }

    void pairAndPoint()
    {
        const QColor first(90, 91, 92, 93);
        const auto pair = [](const char* text) {
            return OrvNgStyleText<ColorPair>::parse(QLatin1String(text));
        };
        QCOMPARE(pair(" (90,91,92,93),(60,61,62,63) "), ColorPair(first, QColor(60, 61, 62, 63)));
        QCOMPARE(pair("90,91,92,93,60,61,62,63"), ColorPair());
        QCOMPARE(pair("(90,91,92,93),(60,61,62,256)"), ColorPair(first, QColor()));
        QCOMPARE(OrvNgStyleText<QPoint>::parse(QStringLiteral("(10,-20)")), QPoint(10, -20));
        QCOMPARE(OrvNgStyleText<QPoint>::parse(QStringLiteral("10,20")), QPoint());
        QCOMPARE(OrvNgStyleText<QPointF>::parse(QStringLiteral("(1.5,-2)")), QPointF(1.5, -2));
        QCOMPARE(OrvNgStyleText<QPointF>::parse(QStringLiteral("(1e99,2)")), QPointF(0, 2));
    }

    void number_data()
    {
        const TestTable<QString, int, float> row("text", "whole", "real");
        row("whole", "12", 12, 12.f);
        row("fraction", "0.35", 0, 0.35f);
        row("word", "wide", 0, 0.f);
        row("nothing", QString(), 0, 0.f);
        row("not a number", "nan", 0, 0.f);
    }

    void number()
    {
        QFETCH(QString, text);
        QFETCH(int, whole);
        QFETCH(float, real);
        for (const QLocale::Language language : {QLocale::C, QLocale::German}) {
            QLocale::setDefault(QLocale(language));
            QCOMPARE(OrvNgStyleText<int>::parse(text), whole);
            QCOMPARE(OrvNgStyleText<float>::parse(text), real);
        }
        QLocale::setDefault(QLocale::c());
    }

    void format_data()
    {
        const TestTable<QString, QString> row("text", "expected");
        row("colour", OrvNgStyleText<QColor>::format(QColor(48, 49, 50, 51)), "(48,49,50,51)");
        row("float colour", OrvNgStyleText<OrvColor>::format(OrvColor(0.5f, 0.25f, 0.f, 1.f)),
            "(128,64,0,255)");
        row("pair", OrvNgStyleText<ColorPair>::format({QColor(90, 90, 90), QColor(60, 60, 60)}),
            "(90,90,90,255),(60,60,60,255)");
        row("point", OrvNgStyleText<QPoint>::format({10, -20}), "(10,-20)");
        row("real point", OrvNgStyleText<QPointF>::format({4.5, 0.12345678}), "(4.5,0.123457)");
        row("float", OrvNgStyleText<float>::format(0.1234567f), "0.123457");
    }

    void format()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(text, expected);
    }
};

QTEST_GUILESS_MAIN(tst_OrvNgStyleText)
#include "tst_OrvNgStyleText.moc"
