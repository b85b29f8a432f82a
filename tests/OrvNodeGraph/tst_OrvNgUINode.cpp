#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "support/TestTable.h"

#include <QGraphicsTextItem>
#include <QTextDocument>
#include <QtTest>

namespace {

const QGraphicsTextItem* textOf(const OrvNgUINode& note)
{
    for (QGraphicsItem* child : note.childItems()) {
        if (auto* text = dynamic_cast<QGraphicsTextItem*>(child))
            return text;
    }
    return nullptr;
}

/// A host's object that selects the node it stands for in turn.
class Model : public OrvSerializableObject
{
public:
    void setSelected(bool selected, bool withChildren = false) override
    {
        ++m_Told;
        OrvSerializableObject::setSelected(selected, withChildren);
        m_Node->setSelected(selected);
    }
    OrvNgNode* m_Node = nullptr;
    int m_Told = 0;
};

QSizeF minimumSize()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    return {double(style.getMinimumNodeWidth()), double(style.getMinimumStickyNoteNodeHeight())};
}

} // namespace

class tst_OrvNgUINode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void label_isStoredShownAndFitted_data()
    {
        const TestTable<QString, QString, QString> row("text", "stored", "shown");
        const QString longText(70000, QLatin1Char('i'));
        const QString cut = longText.left(65536);
        row("plain keeps its spaces", "a  < b", "a  < b", "a  < b");
        row("rich text keeps runs of spaces", "<b>a  b</b>", "<b>a \u00A0b</b>", "a \u00A0b");
        row("markup over lines", "<b\n id='x  y'>a</b><br>   b",
            "<b\n id='x  y'>a</b><br>\u00A0\u00A0\u00A0b", "a\u2028\u00A0\u00A0\u00A0b");
        // Qt leaves out what it takes for a tag.
        row("less than is no tag", "<b>1 <  2  ></b>", "<b>1 < \u00A02 \u00A0></b>", "1 ");
        row("comparison", "x<b and c>y  z", "x<b and c>y  z", "x<b and c>y  z");
        row("too long", longText, cut, cut);
        row("many lines", "1\n2\n3\n4\n5\n6", "1\n2\n3\n4\n5\n6",
            "1\u20292\u20293\u20294\u20295\u20296");
    }
    void label_isStoredShownAndFitted()
    {
        QFETCH(QString, text);
        OrvNgUINode note(nullptr);
        const QGraphicsTextItem* item = textOf(note);
        QCOMPARE(note.label(), QStringLiteral("C"));
        QVERIFY(note.setProperty("label", text));
        QTEST(note.label(), "stored");
        QTEST(item->document()->toRawText(), "shown");
        const QSizeF fitted = item->boundingRect().size();
        QCOMPARE(note.boundingRect().size(), fitted.expandedTo(minimumSize()));
        QCOMPARE(item->sceneBoundingRect().center(), note.boundingRect().center());
    }

    void selection_tellsTheModelOnce()
    {
        Model model;
        auto* note = new OrvNgUINode(nullptr);
        model.m_Node = note;
        note->setParent(&model);
        note->setSelected(true);
        QCOMPARE(model.m_Told, 1);
        QVERIFY(model.isSelected() && note->isSelected());
        delete note;
    }

    void text_isReadableOnAnyBackground()
    {
        // An invalid one leaves the old one; the last shows the dark scene.
        for (const QColor& background : {OrvNgStyle::instance().getBackdropNodeBackgroundColor(),
                 QColor(Qt::white), QColor(Qt::black), QColor(), QColor(255, 255, 255, 10)}) {
            OrvNgUINode note(nullptr);
            const QColor before = note.nodeBackgroundColour();
            note.setNodeBackgroundColour(background);
            note.setLabel(QStringLiteral("x"));
            const QColor fill = note.nodeBackgroundColour();
            QCOMPARE(fill, background.isValid() ? background : before);
            const int behind
                = qGray(OrvNgStyle::instance().getSceneBackgroundBrush().color().rgb());
            const int surface = behind + (qGray(fill.rgb()) - behind) * fill.alpha() / 255;
            QVERIFY(qAbs(qGray(textOf(note)->defaultTextColor().rgb()) - surface) >= 96);
        }
    }
};

QTEST_MAIN(tst_OrvNgUINode)
#include "tst_OrvNgUINode.moc"
