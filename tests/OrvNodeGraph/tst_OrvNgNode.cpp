#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/TestNode.h"
#include "support/TestTable.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

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

QString q(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

class tst_OrvNgNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
        flushEvents();
    }

    void hover_recoloursAndTellsOnce()
    {
        TestNode node;
        QSignalSpy spy(&node, &OrvNgNode::hoveredChanged);
        for (const bool on : {true, true, false, false})
            node.setHovered(on);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.last().at(0).toBool(), false);
        QCOMPARE(node.m_Recolourings, 2);
    }

    void virtualEdge_isReplacedNotStacked()
    {
        TestNode node;
        const QPointer<OrvNgEdge> first(node.createVirtualInputEdge(q("v")));
        OrvNgEdge* second = node.createVirtualInputEdge(q("v"));
        flushEvents();
        QVERIFY(!first);
        QCOMPARE(node.virtualInputEdge(), second);
        for (const char* tag : {"_locked", "_thin", "_dotted"})
            QVERIFY2(second->hasTag(q(tag)), tag);
        QCOMPARE(node.inputCount(), 0);
    }

    void systemShaderNode_hidesItselfAndItsEdges()
    {
        ConnectedPair pair;
        pair.m_Source->setInputConnectionPositions({{q("v"), {QPoint(0, -20), QPoint(0, -60)}}});
        const OrvNgEdge* virtualEdge = pair.m_Source->createVirtualInputEdge(q("v"));
        for (const bool isSystem : {true, false}) {
            pair.m_Source->setIsSystemShaderNode(isSystem);
            QCOMPARE(pair.m_Source->isVisible(), !isSystem);
            QCOMPARE(pair.m_Edge->isVisible(), !isSystem);
            QCOMPARE(virtualEdge->isVisible(), !isSystem);
        }
    }

    void bounds_followTheChildren()
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

    void position_snapsToTheGrid_data()
    {
        const TestTable<int, QPointF, QPointF> row("grid", "wanted", "got");
        row("body centre and header middle on lines", 10, QPointF(3, 4), QPointF(0, 8));
        row("halves go up, also below zero", 10, QPointF(-45, -17), QPointF(-40, -12));
        row("a grid wider than the scene", std::numeric_limits<int>::max(), QPointF(3, 4),
            QPointF(-40, -12));
    }

    void position_snapsToTheGrid()
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

    void inputs_areFoundByName()
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

    void edges_haveNameAndLabelOfTheirPoint()
    {
        QGraphicsScene scene;
        auto* node = new TestNode;
        scene.addItem(node);
        node->setConnectionPrettyNames(
            {{q("i"), q("In")}, {q("new"), q("New")}}, {{q("o"), q("Out")}});
        node->createInput(q("i"), false, kNoTags);
        node->createOutputPoint(q("o"), true);
        const auto texts = [](const OrvNgEdge* edge) { return edge->text() + edge->prettyText(); };
        QCOMPARE(texts(node->input(q("i"))), q("iIn"));
        QCOMPARE(texts(node->outputs().constFirst()), q("oOut"));
        QCOMPARE(texts(node->createVirtualInputEdge(q("i"))), q("iIn"));
        QCOMPARE(texts(node->createTemporaryOutputEdge(q("o"))), q("oOut"));
        node->renameInput(q("i"), q("new"));
        QCOMPARE(texts(node->inputs().constFirst()), q("newnew"));
    }

    void badArguments_areReportedWithTheirLine()
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

    void renameOutputPoint_reachesEdgesAndList()
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

    void removeOutputPoint_freesWhatItFed()
    {
        DebugRecorder reports;
        ConnectedPair pair;
        pair.m_Source->createOutputPoint(q("keep"), true);
        pair.m_Source->createTemporaryOutputEdge(q("out"));
        pair.m_Source->createInput(q("from itself"), false, kNoTags);
        OrvNgEdge* loop = pair.m_Source->input(q("from itself"));
        QSignalSpy spy(pair.m_Dest, &OrvNgNode::inputSourceChanged);
        for (const bool wholePoint : {false, true}) {
            loop->setSourceNode(pair.m_Source, q("out"));
            if (wholePoint)
                pair.m_Source->removeOutputPoint(q("out"));
            else
                pair.m_Source->removeOutput(pair.m_Source->outputs().indexOf(loop));
            QCOMPARE(pair.m_Source->input(q("from itself")), loop); // inputs live on, free
            QVERIFY(!loop->sourceNode());
        }
        QCOMPARE(pair.m_Source->outputPoints(), QStringList(q("keep")));
        QCOMPARE(pair.m_Source->outputCount(), 1);
        QCOMPARE(pair.m_Dest->input(q("in")), pair.m_Edge);
        QVERIFY(!pair.m_Edge->sourceNode());
        QVERIFY(!pair.m_Source->temporaryOutputEdge());
        QCOMPARE(spy.count(), 0);
    }

    void stub_needsASceneAndStandsOnce()
    {
        QGraphicsScene scene;
        auto* node = new TestNode;
        node->createOutputPoint(q("early"), true);
        QCOMPARE(node->outputCount(), 0);
        scene.addItem(node);
        node->createOutputPoint(q("out"), true);
        node->addOutputEdge(q("out"));
        QCOMPARE(node->outputCount(), 1);
        OrvNgEdge* stub = node->outputs().constFirst();
        QVERIFY(node->doesEdgeBelongToThisNode(stub));
        scene.removeItem(node);
        QVERIFY(!stub->scene());
        scene.addItem(node);
        QCOMPARE(stub->scene(), &scene);
        node->removeUnusedOutput(q("other"));
        QCOMPARE(node->outputCount(), 1);
        node->removeUnusedOutput(q("out"));
        QCOMPARE(node->outputCount(), 0);
    }

    void dyingNode_leavesNoEdgeBehind_data()
    {
        const TestTable<bool, bool> row("source", "atOnce");
        row("the destination destroyed", false, false);
        row("the destination deleted", false, true);
        row("the source destroyed", true, false);
        row("the source deleted", true, true);
    }

    void dyingNode_leavesNoEdgeBehind()
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

    void deletingASelectedNode_stillFindsAWholeNode()
    {
        QGraphicsScene scene;
        auto* node = new TestNode(q("still here"));
        node->createInput(q("in"), false, kNoTags);
        scene.addItem(node);
        node->setSelected(true);
        node->setHovered(true);
        QStringList heard;
        connect(&scene, &QGraphicsScene::selectionChanged, node, [&] {
            heard << q("deselected ") + node->text() + QString::number(node->inputCount());
        });
        connect(node, &OrvNgNode::hoveredChanged, node,
            [&](bool on) { heard << q("hovered ") + QString::number(on) + node->text(); });
        delete node;
        QCOMPARE(heard, QStringList({q("deselected still here1"), q("hovered 0still here")}));
    }

    void replace_handsConnectionsOver()
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

    void replace_prefersNamesToOrder()
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
};

QTEST_MAIN(tst_OrvNgNode)
#include "tst_OrvNgNode.moc"
