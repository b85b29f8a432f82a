#include "OrvNodeGraph/OrvNgHeaderLayout.h"
#include "support/TestTable.h"

#include <QtTest>

using namespace OrvNgHeaderLayout;

Q_DECLARE_METATYPE(Contents)

class tst_OrvNgHeaderLayout : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void contents_decideSize_data()
    {
        // Dimensions: padding 6 and 3, indent 10, minimum 100 × 25. Bare ends are therefore 5 wide.
        using C = Contents;
        const TestTable<C, QSizeF> row("contents", "size");
        row("nothing: the minimum", C{{0, 0}, 0, 0, 0, 0, true}, QSizeF(100, 25));
        row("title decides", C{{200, 17}, 0, 0, 0, 0, true}, QSizeF(5 + 200 + 12 + 25, 25));
        row("no button", C{{200, 17}, 0, 0, 0, 0, false}, QSizeF(5 + 200 + 12 + 5, 25));
        row("tall title", C{{200, 30}, 0, 0, 0, 0, true}, QSizeF(5 + 200 + 12 + 36, 36));
        row("inputs decide", C{{150, 17}, 160, 180, 170, 0, true}, QSizeF(5 + 185 + 25, 25));
        row("outputs decide", C{{150, 17}, 160, 170, 180, 0, true}, QSizeF(5 + 185 + 25, 25));
        row("edges decide", C{{150, 17}, 190, 180, 170, 0, true}, QSizeF(5 + 190 + 25, 25));
        row("wide icons", C{{200, 17}, 0, 0, 0, 42, true}, QSizeF(42 + 212 + 25, 25));
        row("narrow icons", C{{200, 17}, 0, 0, 0, 3, true}, QSizeF(5 + 212 + 25, 25));
    }
    void contents_decideSize()
    {
        QFETCH(Contents, contents);
        QFETCH(QSizeF, size);
        const Arrangement header = arrange(contents, {6, 3, 10, 100, 25});
        QCOMPARE(header.m_Size, size);
        QCOMPARE(header.m_ButtonPos, QPointF(size.width() - size.height(), 0));
        const double leftEnd = qMax(5.0, contents.m_IconsWidth);
        const double rightEnd = contents.m_ButtonShown ? size.height() : 5.0;
        QCOMPARE(header.m_TextArea,
            QRectF(leftEnd, 0, size.width() - leftEnd - rightEnd, size.height()));
        QCOMPARE(header.m_TitlePos + QRectF({}, contents.m_TitleSize).center(),
            header.m_TextArea.center());
    }
};

QTEST_APPLESS_MAIN(tst_OrvNgHeaderLayout)
#include "tst_OrvNgHeaderLayout.moc"
