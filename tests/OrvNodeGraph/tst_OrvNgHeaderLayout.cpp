#include "OrvNodeGraph/OrvNgHeaderLayout.h"
#include "support/TestTable.h"

#include <QtTest>

using namespace OrvNgHeaderLayout;

class tst_OrvNgHeaderLayout : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void contents_decideSize_data()
    {
        // Dimensions: padding 6 and 3, indent 10, minimum 100 × 25. Bare ends are therefore 5 wide.
        const TestTable<QSizeF, double, double, double, double, bool, QSizeF> table(
            "title", "edgeSpan", "inputs", "outputs", "icons", "button", "size");
        const auto row = [&table](const char* tag, const QSizeF& title, double span, double in,
                             double out, double icons, bool button, const QSizeF& size) {
            table(tag, title, span, in, out, icons, button, size);
        };
        row("nothing: the minimum", {0, 0}, 0, 0, 0, 0, true, {100, 25});
        row("title decides", {200, 17}, 0, 0, 0, 0, true, {5 + 200 + 12 + 25, 25});
        row("title without button", {200, 17}, 0, 0, 0, 0, false, {5 + 200 + 12 + 5, 25});
        row("tall title grows the button too", {200, 30}, 0, 0, 0, 0, true,
            {5 + 200 + 12 + 36, 36});
        row("inputs decide", {150, 17}, 160, 180, 170, 0, true, {5 + 185 + 25, 25});
        row("outputs decide", {150, 17}, 160, 170, 180, 0, true, {5 + 185 + 25, 25});
        row("edges decide", {150, 17}, 190, 180, 170, 0, true, {5 + 190 + 25, 25});
        row("icons wider than the bare end", {200, 17}, 0, 0, 0, 42, true, {42 + 212 + 25, 25});
        row("icons narrower than the bare end", {200, 17}, 0, 0, 0, 3, true, {5 + 212 + 25, 25});
    }
    void contents_decideSize()
    {
        QFETCH(QSizeF, title);
        QFETCH(double, edgeSpan);
        QFETCH(double, inputs);
        QFETCH(double, outputs);
        QFETCH(double, icons);
        QFETCH(bool, button);
        QFETCH(QSizeF, size);
        const Arrangement header
            = arrange({title, edgeSpan, inputs, outputs, icons, button}, {6, 3, 10, 100, 25});
        QCOMPARE(header.m_Size, size);
        QCOMPARE(header.m_ButtonPos, QPointF(size.width() - size.height(), 0));
        const double leftEnd = qMax(5.0, icons);
        const double rightEnd = button ? size.height() : 5.0;
        QCOMPARE(header.m_TextArea,
            QRectF(leftEnd, 0, size.width() - leftEnd - rightEnd, size.height()));
        QCOMPARE(header.m_TitlePos + QPointF(title.width() / 2, title.height() / 2),
            header.m_TextArea.center());
    }
};

QTEST_APPLESS_MAIN(tst_OrvNgHeaderLayout)
#include "tst_OrvNgHeaderLayout.moc"
