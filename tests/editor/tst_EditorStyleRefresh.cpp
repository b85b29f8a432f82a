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

template <typename Node> Node* add(QGraphicsScene* scene, const QPointF& pos, const char* text)
{
    auto* node = new Node(nullptr);
    node->setText(QString::fromLatin1(text));
    scene->addItem(node);
    node->setPos(pos);
    return node;
}

/// Two nodes and an edge of each kind, backdrops and a note.
void fill(QGraphicsScene* scene)
{
    const QStringList edges
        = QStringLiteral("plain labelled crossed marked").split(QLatin1Char(' '));
    OrvNgExtendedNode* nodes[2];
    for (int i = 0; i < 2; ++i) {
        nodes[i] = add<OrvNgExtendedNode>(scene, QPointF(300, 60) * i, "Title");
        nodes[i]->setCategory(i ? QStringLiteral("Misc") : QStringLiteral("Math"));
        for (const QString& name : edges) {
            nodes[i]->createOutputPoint(name, true);
            nodes[i]->createInput(name, false, {});
        }
        nodes[i]->applyPortVisibilityMode();
        nodes[i]->setCorrectColor();
    }
    nodes[0]->setBypassed(true);
    for (const QString& name : edges)
        nodes[1]->input(name)->setSourceNode(nodes[0], name);
    nodes[1]->input(edges.at(1))->setTextVisible(true);
    nodes[1]->input(edges.at(2))->setBypassed(true);
    nodes[1]->input(edges.at(3))->switchToDotableMode(true);
    for (const bool isSelected : {false, true}) {
        auto* backdrop
            = add<OrvNgBackdropNode>(scene, {-140.0, isSelected ? 100.0 : 200.0}, "Frame");
        backdrop->setLabel(QStringLiteral("Remark"));
        backdrop->setSelected(isSelected);
    }
    add<OrvNgUINode>(scene, {100, 240}, "Note");
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
        const TestTable<QVariant> row("value");
        for (const char* name : {"MiscNodeColor", "NodeTextColor", "EdgeColor", "EdgeLabelColor",
                 "CrossedOutBypassedEdgeColor", "DotableMarkerColor", "PortTextColor",
                 "SceneBackgroundColor", "BackdropNodeTitleBarColor", "SelectedNodeColor",
                 "NodeOutlineColor"})
            row(name, QVariant(QColor(255, 0, 255)));
        row("BypassedNodeColor",
            QVariant::fromValue(qMakePair(QColor(255, 0, 255), QColor(0, 255, 0))));
        row("NodeHeight", QVariant(70.0F));
        row("BackdropNodeTitleBarHeight", QVariant(60.0F));
        row("BackdropNodeTitleBarPaddingLeftTop", QVariant(QPointF(40, 8)));
    }

    void oldItems_lookLikeNewOnes()
    {
        const char* property = QTest::currentDataTag();
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
