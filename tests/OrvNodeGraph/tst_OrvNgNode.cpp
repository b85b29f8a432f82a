#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/TestNode.h"
#include "support/TestTable.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QGraphicsScene>
#include <QSignalSpy>
#include <QtTest>

#include <climits>

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

} // namespace

class tst_OrvNgNode : public QObject
{
    Q_OBJECT

    static QString q(const char* text) { return QString::fromLatin1(text); }

private Q_SLOTS:
    void cleanup() { OrvShaderNetworkManager::instance()->setSnapToGrid(false); }

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

    void systemShaderNode_hidesItselfAndItsEdges()
    {
        ConnectedPair pair;
        pair.m_Source->setInputConnectionPositions({{q("v"), {QPoint(0, -20), QPoint(0, -60)}}});
        const OrvNgEdge* virtualEdge = pair.m_Source->createVirtualInputEdge(q("v"));
        for (const char* tag : {"_locked", "_thin", "_dotted"})
            QVERIFY2(virtualEdge->hasTag(q(tag)), tag);
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
        auto* child = new QGraphicsRectItem(QRectF(120, 0, 10, 10), &node);
        child->setPen(Qt::NoPen);
        (new QGraphicsRectItem(QRectF(120, 60, 10, 10), child))->setPen(Qt::NoPen);
        node.updateBounds();
        QCOMPARE(node.boundingRect(), QRectF(0, 0, 130, 70));
        delete child;
        QCOMPARE(node.boundingRect(), QRectF(0, 0, 100, 40));
    }

    void position_snapsToTheGrid_data()
    {
        const TestTable<int, QPointF, QPointF> row("grid", "wanted", "got");
        row("body centre and header middle on lines", 10, QPointF(3, 4), QPointF(0, 8));
        row("halves go up, also below zero", 10, QPointF(-45, -17), QPointF(-40, -12));
        row("a grid wider than the scene", INT_MAX, QPointF(3, 4), QPointF(-40, -12));
    }
    void position_snapsToTheGrid()
    {
        QFETCH(int, grid);
        QFETCH(QPointF, wanted);
        OrvNgStyle::instance().setNodeHeight(25.0F);
        OrvShaderNetworkManager* manager = OrvShaderNetworkManager::instance();
        manager->setGridWidth(grid);
        manager->setGridHeight(grid);
        manager->setSnapToGrid(true);
        TestNode node(q("n"), QSizeF(81, 25));
        node.setPos(wanted);
        QTEST(node.pos(), "got");
    }

    void inputs_areFoundByName()
    {
        TestNode source;
        TestNode node;
        QCOMPARE(node.getNextInputPointOnNode(), QString());
        for (const char* name : {"a", "b"})
            node.createInput(q(name), false, {});
        node.input(q("a"))->setSourceNode(&source, q("out"));
        QCOMPARE(node.getNextFreeInputEdgeOnNode(), node.input(q("b")));
        QCOMPARE(node.getNextInputPointOnNode(), q("b"));
        node.input(q("b"))->setSourceNode(&source, q("out"));
        QVERIFY(!node.getNextFreeInputEdgeOnNode());
        QCOMPARE(node.getNextInputPointOnNode(), q("a"));
    }

    void edges_haveNameAndLabelOfTheirPoint()
    {
        ConnectedPair pair;
        TestNode* node = pair.m_Source;
        node->setConnectionPrettyNames(
            {{q("i"), q("In")}, {q("new"), q("New")}}, {{q("o"), q("Out")}});
        node->createInput(q("i"), false, {});
        node->createOutputPoint(q("o"), true);
        const auto texts = [](const OrvNgEdge* edge) { return edge->text() + edge->prettyText(); };
        QCOMPARE(texts(node->input(q("i"))), q("iIn"));
        QCOMPARE(texts(node->outputs().constLast()), q("oOut"));
        QCOMPARE(texts(node->createVirtualInputEdge(q("i"))), q("iIn"));
        QCOMPARE(texts(node->createTemporaryOutputEdge(q("o"))), q("oOut"));
        node->renameInput(q("i"), q("new"));
        QCOMPARE(texts(node->inputs().constFirst()), q("newnew"));

        const OrvNgEdge* stub = node->outputs().constFirst();
        node->renameOutputPoint(q("out"), q("result"));
        QCOMPARE(node->outputPoints().constFirst(), q("result"));
        QCOMPARE(pair.m_Edge->sourceOutputPoint(), q("result"));
        QCOMPARE(pair.m_Edge->text(), q("in"));
        QCOMPARE(stub->text(), q("result"));
        QCOMPARE(node->outputEdge(q("result")), pair.m_Edge); // before the unconnected one
    }

    void badArguments_areReportedWithTheirLine()
    {
        DebugRecorder recorder;
        TestNode node;
        node.removeInput(1);
        node.removeOutputPoint(-1);
        node.removeOutput(0);
        node.replace(nullptr);
        node.removeInput(q("unknown"));
        node.removeOutputPoint(q("unknown"));
        QStringList reports;
        for (const auto& report : recorder.reports())
            reports << report.file + QStringLiteral(" %1 ").arg(report.line) + report.message;
        const QString place = q("src/OrvNodeGraph/OrvNgNode %1");
        const QString range = place.arg(q("%1 Specified index is out of range"));
        QCOMPARE(reports,
            QStringList({range.arg(733), range.arg(625), range.arg(563),
                place.arg(q("890 other is NULL"))}));
    }

    void removedOutput_freesTheInputsItFed()
    {
        ConnectedPair pair;
        pair.m_Source->createInput(q("from itself"), false, {});
        OrvNgEdge* loop = pair.m_Source->input(q("from itself"));
        QSignalSpy spy(pair.m_Dest, &OrvNgNode::inputSourceChanged);
        loop->setSourceNode(pair.m_Source, q("out"));
        pair.m_Source->removeOutput(pair.m_Source->outputs().indexOf(loop));
        QVERIFY(!loop->sourceNode());
        loop->setSourceNode(pair.m_Source, q("out"));
        pair.m_Source->removeOutputPoint(q("out"));
        QVERIFY(!loop->sourceNode());
        QCOMPARE(pair.m_Source->outputCount(), 0);
        QCOMPARE(pair.m_Dest->input(q("in")), pair.m_Edge);
        QVERIFY(!pair.m_Edge->sourceNode());
        QCOMPARE(spy.count(), 0);
    }

    void deletingASelectedNode_stillFindsAWholeNode()
    {
        QGraphicsScene scene;
        auto* node = new TestNode(q("still here"));
        node->createInput(q("in"), false, {});
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

    void replace_handsConnectionsOverByNameThenOrder()
    {
        TestNode source;
        TestNode oldNode;
        TestNode newNode;
        TestNode dest;
        oldNode.setPos(30, 40);
        for (const char* name : {"p", "b", "lost"}) {
            oldNode.createInput(q(name), false, {});
            oldNode.input(q(name))->setSourceNode(&source, q("from ") + q(name));
        }
        for (const char* name : {"b", "c"})
            newNode.createInput(q(name), false, {});
        oldNode.createOutputPoint(q("out"), false);
        newNode.createOutputPoint(q("result"), false);
        dest.createInput(q("in"), false, {});
        dest.input(q("in"))->setSourceNode(&oldNode, q("out"));
        const QSignalSpy newSpy(&newNode, &OrvNgNode::inputSourceChanged);
        const QSignalSpy destSpy(&dest, &OrvNgNode::inputSourceChanged);
        oldNode.replace(&newNode);
        QCOMPARE(newNode.pos(), QPointF(30, 40));
        QCOMPARE(newNode.input(q("b"))->sourceOutputPoint(), q("from b"));
        QCOMPARE(newNode.input(q("c"))->sourceOutputPoint(), q("from p"));
        QCOMPARE(source.outputCount(), 2); // lost, not doubled
        QCOMPARE(dest.input(q("in"))->sourceNode(), &newNode);
        QCOMPARE(dest.input(q("in"))->sourceOutputPoint(), q("result"));
        QCOMPARE(newSpy.count(), 2);
        QCOMPARE(destSpy.count(), 1);
        QCOMPARE(destSpy.at(0).at(1).toString(), q("result"));
    }
};

QTEST_MAIN(tst_OrvNgNode)
#include "tst_OrvNgNode.moc"
