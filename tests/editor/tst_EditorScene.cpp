#include "editor/EditorNodeFactory.h"
#include "editor/EditorScene.h"
#include "editor/EditorTesting.h"
#include "editor/EditorView.h"

#include <QPointer>
#include <QTest>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>

using namespace EditorTesting;
using Mode = EditorScene::Mode;

namespace {

std::shared_ptr<NetEditor> open(const QString& file)
{
    return std::make_shared<NetEditor>(NetReader(NetSearchPath()).read(file).document);
}

} // namespace

/// The scene against the model, and against real mouse events.
class tst_EditorScene : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scopes_areShownWhole_data() { addDocumentRows(); }
    void scopes_areShownWhole();

    void ports_haveNamesFoldersAndColours();
    void brokenConnection_isMarked();
    void headerClick_cyclesTheMode();
    void teardown_inEveryOrder_data();
    void teardown_inEveryOrder();

private:
    const QString m_Small = testPath("small.mtlx");
};

void tst_EditorScene::scopes_areShownWhole()
{
    QFETCH(QString, file);
    const Noise noise;
    const std::shared_ptr<NetEditor> editor = open(file);
    for (const NetScope& scope : editor->document().scopes()) {
        EditorScene scene(editor, scope.index);
        QCOMPARE(scene.nodes().size(), scope.nodes.size());
        QCOMPARE(scene.connectionCount(), scope.connections.size());
        for (const NetConnection& each : scope.connections) {
            const NetNode& source = scope.nodes.at(each.sourceNode);
            const NetNode& dest = scope.nodes.at(each.destNode);
            const OrvNgEdge* edge = scene.edgeOf({each.destNode, each.destPort});
            QVERIFY(edge);
            QCOMPARE(edge->text(), EditorNodeFactory::inputName(dest, each.destPort));
            QCOMPARE(edge->sourceNode(), scene.node(each.sourceNode));
            QCOMPARE(
                edge->sourceOutputPoint(), EditorNodeFactory::outputName(source, each.sourcePort));
        }
    }
    flush();
    QCOMPARE(noise.heard(), QStringList());
}

void tst_EditorScene::ports_haveNamesFoldersAndColours()
{
    EditorScene scene(open(m_Small), 0);
    auto* second = dynamic_cast<OrvNgExtendedNode*>(scene.node(1));
    QCOMPARE(second->text(), QStringLiteral("second"));
    QCOMPARE(second->category(), QStringLiteral("Math"));
    QCOMPARE(second->inputPort(QStringLiteral("in"))->text(), QStringLiteral("Colour"));
    // Two inputs share their name for people: the folder tells which is which.
    QCOMPARE(second->inputPort(QStringLiteral("coat"))->text(), QStringLiteral("Coat weight"));
    QVERIFY(second->isInputPortVisible(QStringLiteral("in")));

    const QStringList clusters = second->clusteredInputPorts();
    QCOMPARE(clusters.size(), 1);
    QCOMPARE(second->inputClusterPortName2ClusterList(clusters.constFirst()),
        QStringList({QStringLiteral("in"), QStringLiteral("weight")}));
    scene.setPortListMode({second}, Mode::PORT_LIST_GROUPED);
    QVERIFY(second->isInputPortVisible(clusters.constFirst()));
    QVERIFY(!second->isInputPortVisible(QStringLiteral("in")));
    QVERIFY(second->isInputPortVisible(QStringLiteral("Base")));
}

void tst_EditorScene::brokenConnection_isMarked()
{
    EditorScene scene(open(m_Small), 0);
    QCOMPARE(scene.connectionCount(), 2);
    auto* node = dynamic_cast<OrvNgExtendedNode*>(scene.node(1));
    const QString label = node->inputPort(QStringLiteral("weight"))->text();
    QVERIFY2(label.contains(QStringLiteral("nobody")), qPrintable(label));
}

void tst_EditorScene::headerClick_cyclesTheMode()
{
    EditorScene scene(open(m_Small), 0);
    EditorView view(nullptr);
    view.setScene(&scene);
    view.init();
    view.resize(900, 600);
    view.show();
    view.lookAt(scene.node(1)->sceneBoundingRect().center(), 1.0);
    const auto modeOf
        = [](OrvNgNode* node) { return dynamic_cast<OrvNgExtendedNode*>(node)->portListMode(); };
    const auto click = [&](OrvNgNode* node) {
        const QRectF header = node->mapRectToScene(node->nodeShapeRect());
        QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
            view.mapFromScene(
                header.topRight() + QPointF(-header.height() / 2, header.height() / 2)));
        return static_cast<int>(modeOf(node));
    };
    const qreal expanded = scene.node(1)->boundingRect().height();
    QCOMPARE(click(scene.node(1)), static_cast<int>(Mode::PORT_LIST_GROUPED));
    QCOMPARE(click(scene.node(1)), static_cast<int>(Mode::PORT_LIST_ONLY_CONNECTED));
    QVERIFY(scene.node(1)->boundingRect().height() < expanded);
    QCOMPARE(click(scene.node(1)), static_cast<int>(Mode::PORT_LIST_COLLAPSED));
    QCOMPARE(click(scene.node(1)), static_cast<int>(Mode::PORT_LIST_EXPANDED));
    QCOMPARE(scene.node(1)->boundingRect().height(), expanded);
    QCOMPARE(modeOf(scene.node(0)), Mode::PORT_LIST_EXPANDED);
}

void tst_EditorScene::teardown_inEveryOrder_data()
{
    QTest::addColumn<QString>("order");
    for (const char* order : {"items scene view", "items view scene", "scene items view",
             "scene view items", "view items scene", "view scene items"})
        QTest::newRow(order) << QString::fromLatin1(order);
}

void tst_EditorScene::teardown_inEveryOrder()
{
    QFETCH(QString, order);
    const Noise noise;
    auto scene = std::make_unique<EditorScene>(open(m_Small), 0);
    auto view = std::make_unique<EditorView>(nullptr);
    view->setScene(scene.get());
    view->init();
    view->resize(600, 400);
    view->show();
    view->frame(EditorScene::boundsOf(scene->nodes()));
    OrvNgNode* middle = scene->node(1);
    const QPoint header = view->mapFromScene(middle->mapToScene(QPointF(20, 10)));
    // Selected and held by the mouse when the end comes.
    QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, header);
    QVERIFY(middle->isSelected());
    QVector<QPointer<OrvNgNode>> items;
    for (OrvNgNode* node : scene->nodes())
        items.append(node);
    const QStringList steps = order.split(QLatin1Char(' '));
    for (const QString& step : steps) {
        if (step == QStringLiteral("scene"))
            scene.reset();
        else if (step == QStringLiteral("view"))
            view.reset();
        else {
            for (const auto& item : qAsConst(items))
                delete item.data(); // none is left when the scene went first
        }
        flush();
    }
    for (const auto& item : qAsConst(items))
        QVERIFY(!item);
    QCOMPARE(noise.heard(), QStringList());
}

QTEST_MAIN(tst_EditorScene)
#include "tst_EditorScene.moc"
