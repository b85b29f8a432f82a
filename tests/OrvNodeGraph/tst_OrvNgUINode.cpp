#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "support/TestTable.h"

#include <QGraphicsPolygonItem>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QTextDocument>
#include <QtTest>

#include <limits>

namespace {

/// A note with its inner doings open to tests.
class Note : public OrvNgUINode
{
public:
    Note()
        : OrvNgUINode(nullptr)
    {
        for (QGraphicsItem* child : childItems()) {
            if (auto* box = dynamic_cast<QGraphicsPolygonItem*>(child))
                m_Box = box;
            if (auto* text = dynamic_cast<QGraphicsTextItem*>(child))
                m_TextItem = text;
        }
    }
    using OrvNgUINode::setRect;

    QString shown() const { return m_TextItem->document()->toRawText(); }
    QSizeF size() const { return boundingRect().size(); }

    QGraphicsPolygonItem* m_Box = nullptr;
    QGraphicsTextItem* m_TextItem = nullptr;
};

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
        const TestTable<QString, QString, QString, bool> row(
            "text", "stored", "shown", "fitsMinimum");
        const QString longText(70000, QLatin1Char('i'));
        const QString cut = longText.left(65536);
        row("plain", "wet edge", "wet edge", "wet edge", true);
        row("plain keeps its spaces", "a  < b", "a  < b", "a  < b", true);
        row("rich text keeps runs of spaces", "<b>a  b</b>", "<b>a \u00A0b</b>", "a \u00A0b", true);
        row("empty", "", "", "", true);
        row("too long", longText, cut, cut, false);
        row("many lines", "1\n2\n3\n4\n5\n6", "1\n2\n3\n4\n5\n6",
            "1\u20292\u20293\u20294\u20295\u20296", false);
    }
    void label_isStoredShownAndFitted()
    {
        QFETCH(QString, text);
        Note note;
        QCOMPARE(note.label(), QStringLiteral("C"));
        QVERIFY(note.setProperty("label", text));
        QTEST(note.label(), "stored");
        QTEST(note.shown(), "shown");
        const QSizeF fitted = note.m_TextItem->boundingRect().size();
        QCOMPARE(note.size(), fitted.expandedTo(minimumSize()));
        QTEST(note.size() == minimumSize(), "fitsMinimum");
        QCOMPARE(note.m_TextItem->sceneBoundingRect().center(), note.boundingRect().center());
    }

    void box_hasACutCornerAndKeepsItsMinimum()
    {
        Note note;
        note.setRect(QRectF(0, 0, 300, 200));
        QCOMPARE(
            note.m_Box->polygon(), QPolygonF({{300, 0}, {5, 0}, {0, 5}, {0, 200}, {300, 200}}));
        note.setRect(QRectF(0, 0, 1, 200));
        QCOMPARE(note.size(), QSizeF(minimumSize().width(), 200));
    }

    void selection_tintsTheBoxAndTellsTheModelOnce()
    {
        QGraphicsScene scene;
        Model model;
        auto* note = new Note;
        scene.addItem(note);
        model.m_Node = note;
        note->setParent(&model);
        note->setNodeBackgroundColour(QColor(20, 60, 90));

        note->setSelected(true);
        QCOMPARE(note->m_Box->brush(), OrvNgStyle::instance().getSelectedNodeBrush());
        QCOMPARE(model.m_Told, 1);
        QVERIFY(model.isSelected() && note->isSelected());
        note->setHovered(true); // recolours
        QCOMPARE(note->m_Box->brush(), OrvNgStyle::instance().getSelectedNodeBrush());
        note->setSelected(false);
        QCOMPARE(note->m_Box->brush(), QBrush(QColor(20, 60, 90)));
        QVERIFY(!model.isSelected());
        delete note;
    }

    void text_isReadableOnAnyBackground_data()
    {
        const TestTable<QColor> row("background");
        row("as made", OrvNgStyle::instance().getBackdropNodeBackgroundColor());
        row("white", QColor(Qt::white));
        row("black", QColor(Qt::black));
        row("invalid: the old one stays", QColor());
        row("nearly transparent, on the dark scene", QColor(255, 255, 255, 10));
    }
    void text_isReadableOnAnyBackground()
    {
        QFETCH(QColor, background);
        Note note;
        const QColor before = note.nodeBackgroundColour();
        note.setNodeBackgroundColour(background);
        note.setLabel(QStringLiteral("x"));
        QCOMPARE(note.nodeBackgroundColour(), background.isValid() ? background : before);

        const int behind = qGray(OrvNgStyle::instance().getSceneBackgroundBrush().color().rgb());
        const QColor fill = note.nodeBackgroundColour();
        const int surface = behind + (qGray(fill.rgb()) - behind) * fill.alpha() / 255;
        QVERIFY(qAbs(qGray(note.m_TextItem->defaultTextColor().rgb()) - surface) >= 96);
    }
};

QTEST_MAIN(tst_OrvNgUINode)
#include "tst_OrvNgUINode.moc"
