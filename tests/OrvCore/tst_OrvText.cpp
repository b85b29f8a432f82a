#include "support/TestTable.h"

#include "OrvCore/OrvText.h"

#include <QtTest>

class tst_OrvText : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void markup_isTold_data()
    {
        const TestTable<QString, bool> row("text", "html");
        row("bold", "a <b>b</b>", true);
        row("attributes over lines", "<font\n color = 'red' size=\"+1\">x</font>", true);
        row("comparison without spaces", "x<b and c>y", false);
    }

    void markup_isTold()
    {
        QFETCH(QString, text);
        QTEST(OrvIsHtmlText(text), "html");
    }

    void runsOfSpaces_areKept_data()
    {
        // "_" stands for U+00A0
        const TestTable<QString, QString> row("text", "kept");
        row("behind a tag", "a<br>   b", "a<br>___b");
        row("within a tag", "<img  src='a  b.png'>  x", "<img  src='a  b.png'>__x");
        row("less than is no tag", "1 <  2  >", "1 < _2 _>");
    }

    void runsOfSpaces_areKept()
    {
        QFETCH(QString, text);
        OrvReplaceConsecutiveSpacesWithNbsp(text);
        QTEST(text.replace(QChar(QChar::Nbsp), QLatin1Char('_')), "kept");
    }
};

QTEST_APPLESS_MAIN(tst_OrvText)
#include "tst_OrvText.moc"
