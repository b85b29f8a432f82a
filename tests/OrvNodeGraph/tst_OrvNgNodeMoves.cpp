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

/// A frame that counts how often it stands out, and may delete a node when it is told to.
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
    void hightlightBackdropForNodeInsert() override
    {
        ++m_Highlights;
        delete m_Victim;
    }
    void unHightlightBackdropForNodeInsert() override { --m_Highlights; }

    int m_Highlights = 0;
    QPointer<OrvNgNode> m_Victim;
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
        m_Scene.addItem(m_Left);
        m_Scene.addItem(m_Right);
        m_Left->setPos(-190, -90);
        m_Right->setPos(90, -60);
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
        const QPen lit = OrvNgStyle::instance().getHighlightForNodeInsertPen();
        return edge->mainEdge()->pen().color() == lit.color();
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

    TestNode* m_Left = new TestNode(QStringLiteral("left"));
    TestNode* m_Right = new TestNode(QStringLiteral("right"));
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
        row("Shift keeps", shift, true, true, true, true);
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
        auto* other = new TestNode;
        stage.m_Scene.addItem(other);
        other->setPos(-50, 40);
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

    void nodesThatCannotBeSelected_areDraggedAlone()
    {
        CalmStage stage;
        stage.m_Node->setFlag(QGraphicsItem::ItemIsSelectable, false);
        stage.press(kOnNode, Qt::LeftButton, Qt::ControlModifier);
        stage.move(kOnNode + QPoint(7, 8), Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(stage.m_Node->pos(), QPointF(-43, -12));
        QVERIFY(!stage.m_Node->isSelected());
    }

    void drag_highlightsTheEdgeUnderTheProbe()
    {
        InsertionStage stage;
        stage.m_Right->createInput(kFree, false, {});
        OrvNgEdge* second = stage.m_Right->input(kFree);
        second->setSourceNode(stage.m_Left, kOut); // on the very line of the first
        second->setZValue(stage.m_Edge->zValue() - 0.5);
        stage.m_Node->setInsertionProbe(stage.m_Right->box()); // no child: the old one stays
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
        row("the probe is deleted", [](InsertionStage& s) { delete s.m_Probe; });
        row("no input is free",
            [](InsertionStage& s) { s.m_Node->input(kFree)->setSourceNode(s.m_Left, kOut); });
        row("no output", [](InsertionStage& s) { s.m_Node->removeOutputPoint(kOut); });
        row("a wide probe, but all edges are the node's own", [](InsertionStage& s) {
            s.m_Probe->setRect(-200, -200, 500, 440);
            s.m_Edge->setSourceNode(s.m_Node, kOut);
        });
        row("an edge without a source",
            [](InsertionStage& s) { s.m_Edge->setSourceNode(nullptr, QString()); });
        row("only the node, not its probe, touches the edge",
            [](InsertionStage& s) { s.m_Probe->setPos(0, 30); });
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
        const auto lit = [&] { return QPair<int, int>(outer->m_Highlights, inner->m_Highlights); };
        using Lit = QPair<int, int>;
        const auto moveTwiceTo = [&](const QPoint& pos) {
            stage.move(pos, Qt::LeftButton);
            stage.move(pos, Qt::LeftButton);
        };

        stage.press(kOnNode, Qt::LeftButton);
        moveTwiceTo(kOnNode - QPoint(5, 0));
        QCOMPARE(lit(), Lit(0, 1));
        moveTwiceTo(kOnNode + QPoint(20, 0)); // only partly in the inner one
        QCOMPARE(lit(), Lit(1, 0));
        stage.release(kOnNode + QPoint(20, 0), Qt::LeftButton);
        QCOMPARE(lit(), Lit(0, 0));

        stage.press(kOnNode, Qt::LeftButton);
        moveTwiceTo(kOnNode);
        QCOMPARE(lit(), Lit(1, 0));
        stage.m_Node->ungrabMouse(); // the drag is cut off
        QCOMPARE(lit(), Lit(0, 0));
    }

    void hostDeletesDuringADrag_data()
    {
        const TestTable<bool, Deed> row("nodeLives", "deed");
        row("the node", false, [](InsertionStage& s) { delete s.m_Node; });
        row("the node, later", false, [](InsertionStage& s) { s.m_Node->destroy(); });
        row("all items", false, [](InsertionStage& s) { s.m_Scene.clear(); });
        row("the highlighted edge", true, [](InsertionStage& s) { delete s.m_Edge; });
        row("the highlighted edge, later", true, [](InsertionStage& s) { s.m_Edge->destroy(); });
        row("the node at its end", true, [](InsertionStage& s) { delete s.m_Right; });
        row("the node from the scene", true,
            [](InsertionStage& s) { s.m_Scene.removeItem(s.m_Node); });
    }

    /// From a slot of the selection that the press clears, then between two moves of the drag.
    void hostDeletesDuringADrag()
    {
        QFETCH(Deed, deed);
        QFETCH(bool, nodeLives);
        for (const bool atPress : {true, false}) {
            InsertionStage stage;
            const QPointer<OrvNgNode> node(stage.m_Node);
            const QPoint onEdge = stage.m_View.mapFromScene(stage.middle(stage.m_Edge));
            if (atPress) {
                stage.m_Left->setSelected(true);
                QObject context;
                QObject::connect(&stage.m_Scene, &QGraphicsScene::selectionChanged, &context, [&] {
                    stage.m_Scene.disconnect(&context);
                    deed(stage);
                });
                stage.press(kOnNode, Qt::LeftButton);
            } else {
                stage.dragOntoEdge();
                deed(stage);
            }
            stage.move(onEdge + QPoint(3, 0), Qt::LeftButton);
            flushEvents();
            QCOMPARE(!node.isNull(), nodeLives);
            stage.move(onEdge + QPoint(5, 0), Qt::LeftButton);
            if (stage.m_Edge && stage.m_Edge->scene())
                QVERIFY(!stage.isLit(stage.m_Edge));
            stage.release(onEdge, Qt::LeftButton);
            if (node) {
                QVERIFY(!node->highlightedEdge());
                node->processAutoinsert();
                QVERIFY(node->input(kFree) && !node->input(kFree)->sourceNode());
            }
            QVERIFY(!stage.m_Scene.mouseGrabberItem());
            if (node && !node->scene())
                delete node;
        }
    }

    void frameDeletesTheNodeItHolds()
    {
        CalmStage stage;
        auto* frame = new Frame(QRectF(-190, -90, 380, 180));
        stage.m_Scene.addItem(frame);
        frame->m_Victim = stage.m_Node;
        stage.press(kOnNode, Qt::LeftButton);
        stage.move(kOnNode + QPoint(5, 5), Qt::LeftButton);
        QVERIFY(!frame->m_Victim);
        stage.move(kOnNode + QPoint(9, 5), Qt::LeftButton);
        stage.release(kOnNode, Qt::LeftButton);
        QCOMPARE(frame->pos(), QPointF(-190, -90));
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

        delete node;
        stack.redo();
        stack.undo();
        QCOMPARE(heard.size(), 4);
    }
};

QTEST_MAIN(tst_OrvNgNodeMoves)
#include "tst_OrvNgNodeMoves.moc"
