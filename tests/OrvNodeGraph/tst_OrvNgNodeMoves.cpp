#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QGraphicsPathItem>
#include <QUndoStack>

namespace {

const QString kIn = QStringLiteral("in");
const QString kFree = QStringLiteral("free");
const QString kOut = QStringLiteral("out");
const QPoint kOnNode(200, 100); // the middle of the stage's node, in the view

/// A frame that counts how often it stands out.
class Frame : public TestNode
{
public:
    explicit Frame(const QRectF& sceneRect)
        : TestNode(QStringLiteral("frame"), sceneRect.size())
    {
        setPos(sceneRect.topLeft());
        setZValue(-10);
    }
    bool isBackdrop() const override { return true; }
    void hightlightBackdropForNodeInsert() override { ++m_Highlights; }
    void unHightlightBackdropForNodeInsert() override { --m_Highlights; }

    int m_Highlights = 0;
};

/// The cursor lies where the view does not scroll during a drag.
struct CalmStage : ViewStage
{
    CalmStage()
    {
        QCursor::setPos(m_View.viewport()->mapToGlobal(QPoint(200, 100)));
        QCoreApplication::processEvents();
    }
};

/// An edge from a node far left to one far right, and the stage's node below it: the input "in" comes
/// from far left too, "free" is free, and "out" has an unconnected edge.
struct InsertionStage : CalmStage
{
    InsertionStage()
    {
        m_Left->createOutputPoint(kOut, true);
        m_Right->createInput(kIn, false, {});
        m_Edge = m_Right->input(kIn);
        m_Edge->setSourceNode(m_Left, kOut);
        m_Node->createInput(kIn, false, {});
        m_Node->createInput(kFree, false, {});
        m_Node->createOutputPoint(kOut, true);
        m_Node->input(kIn)->setSourceNode(m_Left, kOut);
        m_Probe->setVisible(false);
        m_Node->setInsertionProbe(m_Probe);
    }
    static QPointF middle(OrvNgEdge* edge) { return edge->mainEdge()->path().pointAtPercent(0.5); }
    static bool isLit(OrvNgEdge* edge)
    {
        return edge->mainEdge()->pen().color()
            == OrvNgStyle::instance().getHighlightForNodeInsertPen().color();
    }
    /// Presses and drags the node's middle to a scene point.
    void dragTo(const QPointF& scenePos)
    {
        press(m_View.mapFromScene(m_Node->sceneBoundingRect().center()), Qt::LeftButton);
        move(m_View.mapFromScene(scenePos), Qt::LeftButton);
    }
    void dragOntoEdge()
    {
        dragTo(middle(m_Edge));
        QCOMPARE(m_Node->highlightedEdge(), m_Edge.data());
        QVERIFY(isLit(m_Edge));
    }

    TestNode* m_Left = add(QStringLiteral("left"), {-190, -90}, {100, 40});
    TestNode* m_Right = add(QStringLiteral("right"), {90, -60}, {100, 40});
    QGraphicsRectItem* m_Probe = new QGraphicsRectItem(45, 15, 10, 10, m_Node);
    QPointer<OrvNgEdge> m_Edge;
};

using Deed = void (*)(InsertionStage&);

} // namespace

Q_DECLARE_METATYPE(Deed)

/// What the mouse does to nodes: selection, drags, what a drag would insert into, and its undo step.
class tst_OrvNgNodeMoves : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void press_selectsByModifiers_data()
    {
        const TestTable<int, bool, bool, bool, bool> row(
            "keys", "wasSelected", "isSelected", "otherIsSelected", "drags");
        const int none = Qt::NoModifier;
        const int shift = Qt::ShiftModifier;
        const int control = Qt::ControlModifier;
        row("plain press on an unselected node selects it alone", none, false, true, false, true);
        row("plain press on a selected node keeps all", none, true, true, true, true);
        row("Shift adds", shift, false, true, true, true);
        row("Control removes", control, true, false, true, false);
        row("Control on an unselected node does nothing", control, false, false, true, false);
        row("both switch off", shift | control, true, false, true, false);
        row("both switch on", shift | control, false, true, true, true);
        row("Meta is not looked at", Qt::MetaModifier, false, true, false, true);
    }

    /// Another node is selected all the while. First as a click, then as a drag.
    void press_selectsByModifiers()
    {
        QFETCH(int, keys);
        QFETCH(bool, wasSelected);
        QFETCH(bool, otherIsSelected);
        QFETCH(bool, drags);
        CalmStage stage;
        TestNode* other = stage.add(QStringLiteral("other"), {-50, 40});
        const QPointF step(30, -10);
        for (const QPoint& end : {kOnNode, kOnNode + step.toPoint()}) {
            stage.m_Node->setSelected(wasSelected);
            other->setSelected(true);
            stage.press(kOnNode, Qt::LeftButton, keys);
            QTEST(stage.m_Node->isSelected(), "isSelected");
            stage.move(end, Qt::LeftButton, keys);
            stage.release(end, Qt::LeftButton, keys);
            QTEST(stage.m_Node->isSelected(), "isSelected");
            QCOMPARE(other->isSelected(), otherIsSelected);
        }
        const QPointF moved = drags ? step : QPointF();
        QCOMPARE(stage.m_Node->pos(), QPointF(-50, -20) + moved);
        QCOMPARE(other->pos(), QPointF(-50, 40) + (otherIsSelected ? moved : QPointF()));
        QCOMPARE(stage.m_Node->previousPosition(), QPointF(-50, -20));
    }

    void drag_highlightsTheEdgeUnderTheProbe()
    {
        InsertionStage stage;
        stage.m_Right->createInput(kFree, false, {});
        OrvNgEdge* second = stage.m_Right->input(kFree);
        second->setSourceNode(stage.m_Left, kOut); // on the very line of the first
        second->setZValue(stage.m_Edge->zValue() - 0.5);
        stage.dragOntoEdge();
        QVERIFY(!stage.isLit(second));
        stage.move(QPoint(200, 190), Qt::LeftButton);
        QVERIFY(!stage.m_Node->highlightedEdge() && !stage.isLit(stage.m_Edge));

        // It outlives the release, for the host, but neither the host's answer nor the next press.
        const QPoint end = stage.m_View.mapFromScene(stage.middle(stage.m_Edge));
        for (const bool hostAnswers : {false, true}) {
            stage.m_Node->setPos(-50, -20);
            stage.dragOntoEdge();
            stage.release(end, Qt::LeftButton);
            QCOMPARE(stage.m_Node->highlightedEdge(), stage.m_Edge.data());
            if (hostAnswers)
                stage.m_Node->processAutoinsert();
            else
                stage.press(end, Qt::LeftButton);
            stage.release(end, Qt::LeftButton);
            QVERIFY(!stage.m_Node->highlightedEdge() && !stage.isLit(stage.m_Edge));
        }
        QCOMPARE(stage.m_Node->input(kFree)->sourceNode(), stage.m_Left);
        QCOMPARE(stage.m_Edge->sourceNode(), stage.m_Node);
        QCOMPARE(stage.m_Edge->destNode(), stage.m_Right);
    }

    void drag_highlightsNoOtherEdge_data()
    {
        const TestTable<Deed> row("change");
        row("auto-insert is off", [](InsertionStage& s) { s.m_View.m_AutoInsert = false; });
        row("no probe", [](InsertionStage& s) { s.m_Node->setInsertionProbe(nullptr); });
        row("no input is free", [](InsertionStage& s) { s.m_Node->removeInput(kFree); });
        row("no output", [](InsertionStage& s) { s.m_Node->removeOutputPoint(kOut); });
        row("a wide probe, but all edges are the node's own", [](InsertionStage& s) {
            s.m_Probe->setRect(-200, -200, 500, 440);
            s.m_Edge->setSourceNode(s.m_Node, kOut);
        });
        row("no source", [](InsertionStage& s) { s.m_Edge->setSourceNode(nullptr, {}); });
        row("only the node touches it", [](InsertionStage& s) { s.m_Probe->setPos(0, 30); });
    }
    void drag_highlightsNoOtherEdge()
    {
        QFETCH(Deed, change);
        InsertionStage stage;
        const QPointF onEdge = stage.middle(stage.m_Edge);
        change(stage);
        stage.dragTo(onEdge);
        QVERIFY(isNear(stage.m_Node->sceneBoundingRect().center(), onEdge, 1.0));
        QVERIFY(!stage.m_Node->highlightedEdge());
        QVERIFY(!stage.isLit(stage.m_Edge));
    }

    void dots_probeWithTheirMiddle()
    {
        InsertionStage stage;
        delete stage.m_Node;
        auto* dot = new OrvNgDotNode(nullptr);
        stage.m_Scene.addItem(dot);
        dot->createInput(kIn, false, {});
        dot->createOutputPoint(kOut, true);
        const QPointF middle = stage.middle(stage.m_Edge);
        dot->setPos(middle - dot->nodeShapeRect().center());
        const QPoint pos = stage.m_View.mapFromScene(middle);
        stage.drag({pos, pos + QPoint(1, 1)});
        QCOMPARE(dot->highlightedEdge(), stage.m_Edge.data());
        stage.move(pos + QPoint(0, 40), Qt::LeftButton);
        QVERIFY(!dot->highlightedEdge());
    }

    void drag_highlightsTheFrameThatHoldsTheNode()
    {
        CalmStage stage;
        auto* outer = new Frame(QRectF(-190, -90, 380, 180));
        auto* inner = new Frame(QRectF(-60, -30, 110, 60));
        inner->setZValue(-9);
        stage.m_Scene.addItem(outer);
        stage.m_Scene.addItem(inner);
        const auto litAt = [&](const QPoint& pos) { // however often the mouse moves
            stage.move(pos, Qt::LeftButton);
            stage.move(pos, Qt::LeftButton);
            return QPoint(outer->m_Highlights, inner->m_Highlights);
        };
        for (const bool cutOff : {false, true}) {
            stage.m_Node->setPos(-50, -20);
            stage.press(kOnNode, Qt::LeftButton);
            QCOMPARE(litAt(kOnNode - QPoint(5, 0)), QPoint(0, 1));
            QCOMPARE(litAt(kOnNode + QPoint(20, 0)), QPoint(1, 0)); // only partly in the inner one
            if (cutOff)
                stage.m_Node->ungrabMouse();
            else
                stage.release(kOnNode + QPoint(20, 0), Qt::LeftButton);
            QCOMPARE(outer->m_Highlights + inner->m_Highlights, 0);
        }
    }

    void hostDeletesDuringADrag_data()
    {
        const TestTable<bool, Deed> row("nodeLives", "deed");
        row("the node", false, [](InsertionStage& s) { delete s.m_Node; });
        row("the node, later", false, [](InsertionStage& s) { s.m_Node->destroy(); });
        row("all items", false, [](InsertionStage& s) { s.m_Scene.clear(); });
        row("the edge", true, [](InsertionStage& s) { delete s.m_Edge; });
        row("the node at its end", true, [](InsertionStage& s) { delete s.m_Right; });
    }
    /// From a slot of the selection that the press clears.
    void hostDeletesDuringADrag()
    {
        QFETCH(Deed, deed);
        InsertionStage stage;
        const QPointer<OrvNgNode> node(stage.m_Node);
        const QPoint onEdge = stage.m_View.mapFromScene(stage.middle(stage.m_Edge));
        stage.m_Left->setSelected(true);
        connect(&stage.m_Scene, &QGraphicsScene::selectionChanged, stage.m_Left, [&] {
            stage.m_Scene.disconnect(stage.m_Left);
            deed(stage);
        });
        stage.drag({kOnNode, onEdge});
        flushEvents();
        QTEST(!node.isNull(), "nodeLives");
        stage.move(onEdge + QPoint(5, 0), Qt::LeftButton);
        stage.release(onEdge, Qt::LeftButton);
        QVERIFY(!stage.m_Scene.mouseGrabberItem());
    }

    void undoStep_placesTheNodeAndTells()
    {
        TestNode parent;
        auto* node = new TestNode(QStringLiteral("a %1 b"));
        node->setParentItem(&parent);
        parent.setPos(100, 0);
        node->setPos(5, 5);
        node->savePosition();
        node->setPos(30, 40);
        QList<QPair<QPointF, QPointF>> heard; // said, and where the node stood then
        connect(node, &OrvNgNode::posChanged, node, [&](const QPointF& said) {
            heard.append({said, node->pos()});
        });

        QUndoStack stack;
        stack.push(new OrvNgNodePositionChangeUndo(node));
        QCOMPARE(stack.undoText(), QStringLiteral("Move node a %1 b"));
        stack.undo();
        // The number of the scene position, taken for one in the parent's coordinates.
        QCOMPARE(node->pos(), QPointF(105, 5));
        OrvShaderNetworkManager::instance()->setSnapToGrid(true);
        stack.push(new OrvNgNodePositionChangeUndo(node, QPointF(1, 2), QPointF(3, 4)));
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
        const QPointF onGrid = node->pos();
        QVERIFY(onGrid != QPointF(3, 4));
        stack.undo();
        const QList<QPair<QPointF, QPointF>> expected{
            {{30, 40}, {30, 40}}, {{105, 5}, {105, 5}}, {{3, 4}, onGrid}, {{1, 2}, {1, 2}}};
        QCOMPARE(heard, expected);
    }
};

QTEST_MAIN(tst_OrvNgNodeMoves)
#include "tst_OrvNgNodeMoves.moc"
