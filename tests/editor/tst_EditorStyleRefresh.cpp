#include "editor/EditorStyleRefresh.h"
#include "support/TestTable.h"

#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <OrvNodeGraph/OrvNgBackdropNode.h>
#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <OrvNodeGraph/OrvNgPort.h>
#include <OrvNodeGraph/OrvNgStyle.h>
#include <OrvNodeGraph/OrvNgUINode.h>

namespace {

OrvNgExtendedNode* addNode(QGraphicsScene* scene, const char* category, const QPointF& pos)
{
    auto* node = new OrvNgExtendedNode(nullptr);
    node->setText(QStringLiteral("Title"));
    node->setCategory(QString::fromLatin1(category));
    for (const char* name : {"plain", "labelled", "crossed", "marked"}) {
        node->createOutputPoint(QString::fromLatin1(name), true);
        node->createInput(QString::fromLatin1(name), false, {});
    }
    node->applyPortVisibilityMode();
    node->setCorrectColor();
    scene->addItem(node);
    node->setPos(pos);
    return node;
}

/// Two nodes and an edge of each kind, backdrops and a note.
void fill(QGraphicsScene* scene)
{
    OrvNgExtendedNode* source = addNode(scene, "Math", {0, 0});
    OrvNgExtendedNode* dest = addNode(scene, "Misc", {300, 60});
    source->setBypassed(true);
    for (const char* name : {"plain", "labelled", "crossed", "marked"})
        dest->input(QString::fromLatin1(name))->setSourceNode(source, QString::fromLatin1(name));
    dest->input(QStringLiteral("labelled"))->setTextVisible(true);
    dest->input(QStringLiteral("crossed"))->setBypassed(true);
    dest->input(QStringLiteral("marked"))->switchToDotableMode(true);
    for (const bool isSelected : {false, true}) {
        auto* backdrop = new OrvNgBackdropNode(nullptr);
        backdrop->setTitleText(QStringLiteral("Frame"));
        backdrop->setLabel(QStringLiteral("Remark"));
        scene->addItem(backdrop);
        backdrop->setPos(-140, isSelected ? 100 : 200);
        backdrop->setSelected(isSelected);
    }
    auto* note = new OrvNgUINode(nullptr);
    note->setLabel(QStringLiteral("Note"));
    scene->addItem(note);
    note->setPos(100, 240);
}

QImage picture(QGraphicsScene* scene)
{
    QImage image(700, 400, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    QPainter painter(&image);
    scene->render(&painter, image.rect(), QRectF(-150, -100, 700, 400));
    return image;
}

} // namespace

/// Items that were there before a change of the style, against items made after it.
class tst_EditorStyleRefresh : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oldItems_lookLikeNewOnes_data()
    {
        const QVariant color = QColor(255, 0, 255);
        const QVariant pair
            = QVariant::fromValue(qMakePair(QColor(255, 0, 255), QColor(0, 255, 0)));
        const TestTable<QByteArray, QVariant> row("name", "value");
        row("category of a node", "MiscNodeColor", color);
        row("state of a node", "BypassedNodeColor", pair);
        row("title", "NodeTextColor", color);
        row("size", "NodeHeight", QVariant(70.0F));
        row("edge", "EdgeColor", color);
        row("label", "EdgeLabelColor", color);
        row("cross", "CrossedOutBypassedEdgeColor", color);
        row("marker", "DotableMarkerColor", color);
        row("text of ports", "PortTextColor", color);
        row("ground of a label", "SceneBackgroundColor", color);
        row("title bar of a backdrop", "BackdropNodeTitleBarColor", color);
        row("title bar of a selected backdrop", "SelectedNodeColor", color);
        row("height of title bars", "BackdropNodeTitleBarHeight", QVariant(60.0F));
        row("place of titles", "BackdropNodeTitleBarPaddingLeftTop", QVariant(QPointF(40, 8)));
        row("outline of a note", "NodeOutlineColor", color);
    }

    void oldItems_lookLikeNewOnes()
    {
        QFETCH(QByteArray, name);
        const char* property = name.constData();
        QFETCH(QVariant, value);
        OrvNgStyle& style = OrvNgStyle::instance();
        const QVariant before = style.property(property);
        QGraphicsScene scene;
        new EditorStyleRefresh(&scene);
        fill(&scene);
        const QImage old = picture(&scene);

        QVERIFY(style.setProperty(property, value));
        QCoreApplication::processEvents();
        QGraphicsScene made;
        fill(&made);
        const QImage wanted = picture(&made);
        const QImage refreshed = picture(&scene);
        style.setProperty(property, before);
        QCoreApplication::processEvents();
        const QImage back = picture(&scene);

        QVERIFY(wanted != old); // the property shows at all
        QCOMPARE(refreshed, wanted);
        QCOMPARE(back, old);
    }

    void manyChanges_areOnePass()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        QGraphicsScene first;
        new EditorStyleRefresh(&first);
        new EditorStyleRefresh(&first);
        QSignalSpy passes(&style, &OrvNgStyle::colorsUpdated);
        for (int i = 1; i < 6; ++i) {
            style.setGridLinesColor(OrvColor(0.1F * float(i), 0.0F, 0.0F));
            style.setMathNodeColor(OrvColor(0.0F, 0.1F * float(i), 0.0F));
        }
        QCOMPARE(passes.count(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(passes.count(), 1);
        QCOMPARE(style.getGridPen().color(), QColor(128, 0, 0));
        QCoreApplication::processEvents();
        QCOMPARE(passes.count(), 1); // what it derived starts no other
    }
};

QTEST_MAIN(tst_EditorStyleRefresh)
#include "tst_EditorStyleRefresh.moc"
