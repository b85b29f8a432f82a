#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/TestNode.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QGraphicsScene>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

/// A source with the output "out" and a destination whose input "in" it feeds, in one scene.
struct ConnectedPair
{
    QGraphicsScene m_Scene;
    TestNode* m_Source = new TestNode;
    TestNode* m_Dest = new TestNode;
    OrvNgEdge* m_Edge = nullptr;

    ConnectedPair()
    {
        m_Scene.addItem(m_Source);
        m_Scene.addItem(m_Dest);
        m_Dest->setPos(0, 300);
        m_Source->createOutputPoint(QStringLiteral("out"), true);
        m_Dest->createInput(QStringLiteral("in"), false, {});
        m_Edge = m_Dest->input(QStringLiteral("in"));
        m_Edge->setSourceNode(m_Source, QStringLiteral("out"));
    }
};

const QSet<QString> kNoTags;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

QString q(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

class tst_OrvNgNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void brush_isTheCategorysOrTheNodesOwn();
    void longText_isCutAt128();
    void hover_recoloursAndTellsOnce();
    void selectionIds_growWithTheOrderOfSelection();
    void outlines_standOutsideTheBody_data();
    void outlines_standOutsideTheBody();
    void systemShaderNode_hidesItselfAndItsEdges();

    void bounds_followTheChildren();
    void bounds_staleIndexHoldsNoRemovedNode();
    void position_refusesWhatIsNotANumber();
    void position_snapsToTheGrid_data();
    void position_snapsToTheGrid();

    void inputs_areFoundByName();
    void duplicateInput_isReportedAndIgnored();
    void portPositions_areOffsetsFromTheCentre();
    void textOfEachEdge_isNameThenPrettyName();
    void badArguments_areReportedWithTheirLine();
    void renameInput_keepsEdgeAndRefusesACollision();
    void renameOutputPoint_reachesEdgesAndList();
    void removeOutputPoint_freesWhatItFed();
    void stub_needsASceneAndStandsOnce();
    void virtualAndTemporaryEdges_areReplacedNotStacked();
    void edges_followTheNodeIntoAndOutOfAScene();

    void dyingNode_leavesNoEdgeBehind_data();
    void dyingNode_leavesNoEdgeBehind();
    void deletingASelectedNode_stillFindsAWholeNode();
    void replace_handsConnectionsOver();
    void replace_prefersNamesToOrder();
};

void tst_OrvNgNode::initTestCase()
{
    QCoreApplication::setOrganizationName(q("OrvTest"));
}

void tst_OrvNgNode::cleanup()
{
    OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    flushEvents();
}

void tst_OrvNgNode::brush_isTheCategorysOrTheNodesOwn()
{
    OrvNgStyle& style = OrvNgStyle::instance();
    TestNode node;
    const auto stopsOf = [&node](const QString& category) {
        node.setCategory(category);
        QLinearGradient gradient;
        gradient.setColorAt(0.0, QColor(1, 2, 3));
        node.getNodeBrush(gradient);
        return gradient.stops().constFirst().second;
    };
    QCOMPARE(stopsOf(q("_System")), style.getSystemNodeColor().toQColor());
    QCOMPARE(stopsOf(q("Nonsense")), QColor(1, 2, 3));
    QCOMPARE(stopsOf(QString()), QColor(1, 2, 3));

    // One missing colour takes the other; with none the category's are back.
    const QColor blue(10, 10, 200);
    node.setNodeColor(QColor(), blue);
    node.setCorrectColor();
    QCOMPARE(node.nodeUniColour().gradient()->stops().constFirst().second, blue);
    node.setNodeColor(QColor(), QColor());
    node.setCorrectColor();
    QCOMPARE(node.nodeUniColour().gradient()->stops().constFirst().second,
        style.getDefaultNodeColor().first);
}

void tst_OrvNgNode::longText_isCutAt128()
{
    const QString fits(128, QLatin1Char('x'));
    QCOMPARE(TestNode::elidedText(fits), fits);
    QCOMPARE(TestNode::elidedText(fits + q("y")), fits + q("..."));
}

void tst_OrvNgNode::hover_recoloursAndTellsOnce()
{
    TestNode node;
    QSignalSpy spy(&node, &OrvNgNode::hoveredChanged);
    node.setHovered(true);
    node.setHovered(true);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(node.m_Recolourings, 1);
    node.setHovered(false);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.last().at(0).toBool(), false);
}

void tst_OrvNgNode::selectionIds_growWithTheOrderOfSelection()
{
    QGraphicsScene scene;
    auto* a = new TestNode;
    auto* b = new TestNode;
    scene.addItem(a);
    scene.addItem(b);
    QCOMPARE(a->selectionId(), -1);
    b->setSelected(true);
    a->setSelected(true);
    QVERIFY(a->selectionId() > b->selectionId());
    b->setSelected(false);
    QCOMPARE(b->selectionId(), -1);
    b->setSelected(true);
    QVERIFY(b->selectionId() > a->selectionId());
}

void tst_OrvNgNode::outlines_standOutsideTheBody_data()
{
    QTest::addColumn<bool>("selected");
    QTest::addColumn<int>("pixelsOutside");
    QTest::addColumn<QColor>("color");
    // The body covers the inner half of both; the hover outline is as wide as half the selection's.
    QTest::newRow("selected") << true << 2 << OrvNgStyle::instance().getSelectedNodeColor();
    QTest::newRow("hovered") << false << 1 << QColor(0, 0, 255);
}

void tst_OrvNgNode::outlines_standOutsideTheBody()
{
    QFETCH(bool, selected);
    QFETCH(int, pixelsOutside);
    QFETCH(QColor, color);
    QGraphicsScene scene;
    auto* node = new TestNode;
    scene.addItem(node);
    node->setSelected(selected);
    node->setHovered(!selected);
    node->setNodeBrush(QColor(0, 0, 255));
    QImage image(140, 80, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    scene.render(&painter, QRectF(0, 0, 140, 80), QRectF(-20, -20, 140, 80));
    painter.end();
    QCOMPARE(image.pixelColor(70, 20 - pixelsOutside), color);
    QCOMPARE(image.pixelColor(70, 20 - pixelsOutside - 2), QColor(Qt::black));
    QCOMPARE(image.pixelColor(70, 22), QColor(0, 0, 255));
}

void tst_OrvNgNode::systemShaderNode_hidesItselfAndItsEdges()
{
    ConnectedPair pair;
    QVERIFY(pair.m_Edge->isVisible());
    pair.m_Source->setIsSystemShaderNode(true);
    QVERIFY(!pair.m_Source->isVisible());
    QVERIFY(!pair.m_Edge->isVisible());
    pair.m_Source->setIsSystemShaderNode(false);
    QVERIFY(pair.m_Edge->isVisible());
}

void tst_OrvNgNode::bounds_followTheChildren()
{
    TestNode node(q("n"), QSizeF(100, 40));
    QCOMPARE(node.boundingRect(), QRectF(0, 0, 100, 40));
    auto* child = new QGraphicsRectItem(QRectF(0, 0, 10, 10), &node);
    child->setPen(Qt::NoPen);
    auto* grandChild = new QGraphicsRectItem(QRectF(0, 0, 10, 10), child);
    grandChild->setPen(Qt::NoPen);
    child->setPos(120, 0);
    grandChild->setPos(0, 60);
    node.updateBounds();
    QCOMPARE(node.boundingRect(), node.childrenBoundingRect());
    QCOMPARE(node.boundingRect(), QRectF(0, 0, 130, 70));
    delete child;
    QCOMPARE(node.boundingRect(), QRectF(0, 0, 100, 40));
}

void tst_OrvNgNode::bounds_staleIndexHoldsNoRemovedNode()
{
    QGraphicsScene scene;
    QList<TestNode*> nodes;
    for (int i = 0; i < 40; ++i) {
        nodes.append(new TestNode);
        nodes.last()->setPos(i * 150, 0);
        scene.addItem(nodes.last());
    }
    scene.items(QRectF(0, 0, 6000, 100)); // the index is built now
    TestNode* node = nodes.at(7);
    node->box()->setRect(0, 0, 900, 900);
    node->updateBounds();
    QVERIFY(scene.items(QPointF(node->pos() + QPointF(850, 850))).contains(node));
    node->box()->setPos(-400, -400);
    node->updateBounds();
    scene.removeItem(node);
    const QList<QGraphicsItem*> left = scene.items(QRectF(-5000, -5000, 20000, 20000));
    QVERIFY(!left.contains(node));
    delete node;
}

void tst_OrvNgNode::position_refusesWhatIsNotANumber()
{
    TestNode node;
    node.setPos(10, 20);
    node.setPos(kNaN, 5);
    QCOMPARE(node.pos(), QPointF(10, 20));
    node.setPos(5, std::numeric_limits<double>::infinity());
    QCOMPARE(node.pos(), QPointF(10, 20));
    node.setPos(1e300, -1e300);
    QCOMPARE(node.pos(), QPointF(1e8, -1e8));
}

void tst_OrvNgNode::position_snapsToTheGrid_data()
{
    QTest::addColumn<int>("grid");
    QTest::addColumn<QPointF>("wanted");
    QTest::addColumn<QPointF>("got");
    QTest::newRow("body centre and header middle on lines") << 10 << QPointF(3, 4) << QPointF(0, 8);
    QTest::newRow("halves go up, also below zero") << 10 << QPointF(-45, -17) << QPointF(-40, -12);
    QTest::newRow("a grid wider than the scene")
        << std::numeric_limits<int>::max() << QPointF(3, 4) << QPointF(-40, -12);
}

void tst_OrvNgNode::position_snapsToTheGrid()
{
    QFETCH(int, grid);
    QFETCH(QPointF, wanted);
    OrvNgStyle& style = OrvNgStyle::instance();
    style.setNodeHeight(25.0F);
    OrvShaderNetworkManager* manager = OrvShaderNetworkManager::instance();
    const QSize oldGrid(manager->gridWidth(), manager->gridHeight());
    manager->setGridWidth(grid);
    manager->setGridHeight(grid);
    TestNode node(q("n"), QSizeF(81, 25));
    manager->setSnapToGrid(true);
    node.setPos(wanted);
    manager->setSnapToGrid(false);
    manager->setGridWidth(oldGrid.width());
    manager->setGridHeight(oldGrid.height());
    style.resetNodeHeight();
    QTEST(node.pos(), "got");
}

void tst_OrvNgNode::inputs_areFoundByName()
{
    TestNode source;
    TestNode node;
    QCOMPARE(node.getNextInputPointOnNode(), QString());
    QVERIFY(!node.getNextFreeInputEdgeOnNode());
    for (const char* name : {"a", "b", "c"})
        node.createInput(q(name), false, kNoTags);
    node.input(q("a"))->setSourceNode(&source, q("out"));
    QCOMPARE(node.getNextFreeInputEdgeOnNode(), node.input(q("b")));
    QCOMPARE(node.getNextInputPointOnNode(), q("b"));
    node.input(q("b"))->setSourceNode(&source, q("out"));
    node.input(q("c"))->setSourceNode(&source, q("out"));
    QVERIFY(!node.getNextFreeInputEdgeOnNode());
    QCOMPARE(node.getNextInputPointOnNode(), q("a"));
    QVERIFY(!node.input(q("A")));
    QCOMPARE(node.sortedInputPoints(), QStringList({q("a"), q("b"), q("c")}));
    QCOMPARE(source.outputCount(), 3);
}

void tst_OrvNgNode::duplicateInput_isReportedAndIgnored()
{
    DebugRecorder reports;
    TestNode node;
    node.createInput(q("a"), false, kNoTags);
    OrvNgEdge* edge = node.input(q("a"));
    node.createInput(q("a"), true, kNoTags);
    QCOMPARE(node.inputCount(), 1);
    QCOMPARE(node.input(q("a")), edge);
    QCOMPARE(reports.messages().size(), 1);
}

void tst_OrvNgNode::portPositions_areOffsetsFromTheCentre()
{
    TestNode node(q("n"), QSizeF(100, 40));
    node.setPos(1000, 2000);
    const QPointF centre(1050, 2020);
    QCOMPARE(node.inputPortDestPos(q("a")), centre);
    QCOMPARE(node.outputPortDestPos(q("a")), centre);
    node.setConnectionPositions(
        {{q("a"), {QPoint(1, -20), QPoint(1, -45)}}}, {{q("a"), {QPoint(2, 20), QPoint(2, 45)}}});
    QCOMPARE(node.inputPortDestPos(q("a")), centre + QPointF(1, -20));
    QCOMPARE(node.inputPortSourcePos(q("a")), centre + QPointF(1, -45));
    QCOMPARE(node.outputPortSourcePos(q("a")), centre + QPointF(2, 20));
    QCOMPARE(node.outputPortDestPos(q("a")), centre + QPointF(2, 45));
    QCOMPARE(node.inputConnectionTextPosition(q("a")), 0.5F);
}

void tst_OrvNgNode::textOfEachEdge_isNameThenPrettyName()
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    scene.addItem(node);
    node->setConnectionPrettyNames(
        {{q("in"), q("Pretty in")}, {q("out"), q("As input")}}, {{q("out"), q("Pretty out")}});
    node->createInput(q("in"), false, kNoTags);
    node->createOutputPoint(q("out"), true);
    OrvNgEdge* virtualEdge = node->createVirtualInputEdge(q("out"));
    OrvNgEdge* temporary = node->createTemporaryOutputEdge(q("out"));
    QCOMPARE(node->input(q("in"))->prettyText(), q("Pretty in"));
    QCOMPARE(node->outputs().constFirst()->text(), q("out"));
    QCOMPARE(node->outputs().constFirst()->prettyText(), q("Pretty out"));
    QCOMPARE(virtualEdge->text(), q("out"));
    QCOMPARE(virtualEdge->prettyText(), q("As input"));
    QCOMPARE(temporary->text(), q("out"));
    QCOMPARE(temporary->prettyText(), q("Pretty out"));
    // A table set later reaches the edges too; an empty entry is none.
    node->setInputConnectionPrettyNames({{q("in"), QString()}});
    QCOMPARE(node->input(q("in"))->prettyText(), q("in"));
    QCOMPARE(node->inputPointDescriptiveName(q("in")), q("in"));
}

void tst_OrvNgNode::badArguments_areReportedWithTheirLine()
{
    DebugRecorder reports;
    TestNode node;
    node.createInput(q("a"), false, kNoTags);
    node.createOutputPoint(q("o"), false);
    node.createOutputPoint(q("o"), false); // names stand once
    node.removeInput(1);
    node.removeOutputPoint(-1);
    node.removeOutput(0);
    node.replace(nullptr);
    node.removeInput(q("unknown"));
    node.removeOutputPoint(q("unknown"));
    QCOMPARE(reports.count(q("Specified index is out of range")), 3);
    QCOMPARE(reports.count(q("other is NULL")), 1);
    QCOMPARE(reports.reports().size(), 4);
    QCOMPARE(reports.reports().at(3).line, 890);
    QCOMPARE(reports.reports().at(0).line, 733);
    QCOMPARE(reports.reports().at(1).line, 625);
    QCOMPARE(reports.reports().at(2).line, 563);
    QCOMPARE(reports.reports().at(0).file, q("src/OrvNodeGraph/OrvNgNode"));
    QCOMPARE(node.inputCount(), 1);
    QCOMPARE(node.outputPointCount(), 1);
}

void tst_OrvNgNode::renameInput_keepsEdgeAndRefusesACollision()
{
    DebugRecorder reports;
    TestNode source;
    TestNode node;
    node.createInput(q("a"), false, kNoTags);
    node.createInput(q("b"), false, kNoTags);
    OrvNgEdge* edge = node.input(q("a"));
    edge->setSourceNode(&source, q("out"));
    node.setInputConnectionPrettyNames({{q("c"), q("Pretty")}});
    node.renameInput(q("a"), q("c"));
    QCOMPARE(node.input(q("c")), edge);
    QCOMPARE(edge->prettyText(), q("c"));
    QCOMPARE(edge->sourceNode(), &source);
    node.renameInput(q("c"), q("b"));
    QCOMPARE(node.sortedInputPoints(), QStringList({q("c"), q("b")}));
    QCOMPARE(reports.reports().size(), 1);
}

void tst_OrvNgNode::renameOutputPoint_reachesEdgesAndList()
{
    ConnectedPair pair;
    OrvNgEdge* stub = pair.m_Source->outputs().constFirst();
    pair.m_Source->renameOutputPoint(q("out"), q("result"));
    QCOMPARE(pair.m_Source->outputPoints(), QStringList(q("result")));
    QCOMPARE(pair.m_Edge->sourceOutputPoint(), q("result"));
    QCOMPARE(pair.m_Edge->text(), q("in"));
    QCOMPARE(stub->text(), q("result"));
    // The connected edge answers before the unconnected one.
    QCOMPARE(pair.m_Source->outputEdge(q("result")), pair.m_Edge);
}

void tst_OrvNgNode::removeOutputPoint_freesWhatItFed()
{
    DebugRecorder reports;
    ConnectedPair pair;
    pair.m_Source->createOutputPoint(q("keep"), true);
    pair.m_Source->createTemporaryOutputEdge(q("out"));
    QSignalSpy spy(pair.m_Dest, &OrvNgNode::inputSourceChanged);
    pair.m_Source->removeOutputPoint(q("out"));
    QCOMPARE(pair.m_Source->outputPoints(), QStringList(q("keep")));
    QCOMPARE(pair.m_Source->outputCount(), 1);
    QCOMPARE(pair.m_Dest->input(q("in")), pair.m_Edge);
    QVERIFY(!pair.m_Edge->sourceNode());
    QVERIFY(!pair.m_Source->temporaryOutputEdge());
    QCOMPARE(spy.count(), 0);
}

void tst_OrvNgNode::stub_needsASceneAndStandsOnce()
{
    QGraphicsScene scene;
    auto* node = new TestNode;
    node->createOutputPoint(q("early"), true);
    QCOMPARE(node->outputCount(), 0);
    scene.addItem(node);
    node->createOutputPoint(q("out"), true);
    node->addOutputEdge(q("out"));
    QCOMPARE(node->outputCount(), 1);
    QVERIFY(node->doesEdgeBelongToThisNode(node->outputs().constFirst()));
    node->removeUnusedOutput(q("other"));
    QCOMPARE(node->outputCount(), 1);
    node->removeUnusedOutput(q("out"));
    QCOMPARE(node->outputCount(), 0);
}

void tst_OrvNgNode::virtualAndTemporaryEdges_areReplacedNotStacked()
{
    DebugRecorder reports;
    QGraphicsScene scene;
    auto* node = new TestNode;
    scene.addItem(node);
    node->createInput(q("in"), false, kNoTags);
    const QPointer<OrvNgEdge> first(node->createVirtualInputEdge(q("v")));
    OrvNgEdge* second = node->createVirtualInputEdge(q("v"));
    const QPointer<OrvNgEdge> firstTemporary(node->createTemporaryOutputEdge(q("t")));
    OrvNgEdge* temporary = node->createTemporaryOutputEdge(q("t"));
    flushEvents();
    QVERIFY(!first);
    QVERIFY(!firstTemporary);
    QCOMPARE(node->virtualInputEdge(), second);
    QCOMPARE(second->destNode(), node);
    QVERIFY(
        second->hasTag(q("_locked")) && second->hasTag(q("_thin")) && second->hasTag(q("_dotted")));
    QCOMPARE(node->inputCount(), 1);
    QCOMPARE(node->outputCount(), 0);
    QVERIFY(reports.reports().isEmpty());

    node->removeTemporaryOutputEdge();
    node->removeTemporaryOutputEdge();
    const QString message = QString::asprintf("[ -- ] *** Removed temp edge 't' on node %p",
        static_cast<void*>(static_cast<OrvNgNode*>(node)));
    QCOMPARE(reports.messages(), QStringList(message));
    QCOMPARE(reports.reports().constFirst().line, 503);
    QVERIFY(!node->outputs().contains(temporary));
}

void tst_OrvNgNode::edges_followTheNodeIntoAndOutOfAScene()
{
    QGraphicsScene scene;
    TestNode node;
    node.createInput(q("in"), false, kNoTags);
    QVERIFY(!node.input(q("in"))->scene());
    scene.addItem(&node);
    QCOMPARE(node.input(q("in"))->scene(), &scene);
    scene.removeItem(&node);
    QVERIFY(!node.input(q("in"))->scene());
}

void tst_OrvNgNode::dyingNode_leavesNoEdgeBehind_data()
{
    QTest::addColumn<bool>("source");
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("the destination destroyed") << false << false;
    QTest::newRow("the destination deleted") << false << true;
    QTest::newRow("the source destroyed") << true << false;
    QTest::newRow("the source deleted") << true << true;
}

void tst_OrvNgNode::dyingNode_leavesNoEdgeBehind()
{
    QFETCH(bool, source);
    QFETCH(bool, atOnce);
    ConnectedPair pair;
    const QPointer<OrvNgEdge> edge(pair.m_Edge);
    const QPointer<OrvNgEdge> stub(pair.m_Source->outputs().constFirst());
    const QPointer<TestNode> node(source ? pair.m_Source : pair.m_Dest);
    TestNode* other = source ? pair.m_Dest : pair.m_Source;
    node->createVirtualInputEdge(q("v"));
    QSignalSpy spy(pair.m_Dest, &OrvNgNode::inputSourceChanged);
    if (atOnce) {
        delete node;
    } else {
        node->destroy();
        node->destroy();
        QVERIFY(node); // deferred: the caller may be one of its own handlers
    }
    QCOMPARE(other->outputCount(), source ? 0 : 1); // the stub
    flushEvents();
    QVERIFY(!node);
    QCOMPARE(spy.count(), 0);
    // A source leaves the input free, a destination takes its input along; nothing else remains.
    QCOMPARE(!edge.isNull(), source);
    QCOMPARE(!stub.isNull(), !source);
    QVERIFY(!edge || !edge->sourceNode());
    QCOMPARE(pair.m_Scene.items().size(), source ? 3 + edge->childItems().size() : 3);
}

void tst_OrvNgNode::deletingASelectedNode_stillFindsAWholeNode()
{
    QGraphicsScene scene;
    auto* node = new TestNode(q("still here"));
    node->createInput(q("in"), false, kNoTags);
    scene.addItem(node);
    node->setSelected(true);
    node->setHovered(true);
    QStringList heard;
    connect(&scene, &QGraphicsScene::selectionChanged, node,
        [&] { heard << q("deselected ") + node->text() + QString::number(node->inputCount()); });
    connect(node, &OrvNgNode::hoveredChanged, node,
        [&](bool on) { heard << q("hovered ") + QString::number(on) + node->text(); });
    delete node;
    QCOMPARE(heard, QStringList({q("deselected still here1"), q("hovered 0still here")}));
}

void tst_OrvNgNode::replace_handsConnectionsOver()
{
    TestNode source;
    TestNode oldNode;
    TestNode newNode;
    TestNode dest;
    oldNode.setPos(30, 40);
    oldNode.createInput(q("a"), false, kNoTags);
    oldNode.createInput(q("b"), false, kNoTags);
    oldNode.createOutputPoint(q("out"), false);
    newNode.createInput(q("x"), false, kNoTags);
    newNode.createOutputPoint(q("result"), false);
    dest.createInput(q("in"), false, kNoTags);
    oldNode.input(q("a"))->setSourceNode(&source, q("s1"));
    oldNode.input(q("b"))->setSourceNode(&source, q("s2"));
    dest.input(q("in"))->setSourceNode(&oldNode, q("out"));
    QSignalSpy newSpy(&newNode, &OrvNgNode::inputSourceChanged);
    QSignalSpy destSpy(&dest, &OrvNgNode::inputSourceChanged);
    oldNode.replace(&newNode);
    QCOMPARE(newNode.pos(), QPointF(30, 40));
    QCOMPARE(newNode.input(q("x"))->sourceOutputPoint(), q("s1"));
    // The second connection found no free input and is lost, not doubled.
    QCOMPARE(source.outputCount(), 1);
    QCOMPARE(dest.input(q("in"))->sourceNode(), &newNode);
    QCOMPARE(dest.input(q("in"))->sourceOutputPoint(), q("result"));
    QCOMPARE(newSpy.count(), 1);
    QCOMPARE(destSpy.count(), 1);
    QCOMPARE(destSpy.constFirst().at(1).toString(), q("result"));
    QCOMPARE(oldNode.outputCount(), 0);
}

void tst_OrvNgNode::replace_prefersNamesToOrder()
{
    TestNode source;
    TestNode oldNode;
    TestNode newNode;
    for (const char* name : {"p", "b"})
        oldNode.createInput(q(name), false, kNoTags);
    for (const char* name : {"b", "c"})
        newNode.createInput(q(name), false, kNoTags);
    oldNode.input(q("p"))->setSourceNode(&source, q("from p"));
    oldNode.input(q("b"))->setSourceNode(&source, q("from b"));
    oldNode.replace(&newNode);
    QCOMPARE(newNode.input(q("b"))->sourceOutputPoint(), q("from b"));
    QCOMPARE(newNode.input(q("c"))->sourceOutputPoint(), q("from p"));
}

QTEST_MAIN(tst_OrvNgNode)
#include "tst_OrvNgNode.moc"
