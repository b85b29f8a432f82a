#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCore/OrvUndoManager.h"
#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QSignalSpy>
#include <QUndoStack>
#include <QtTest>

namespace {

/// A shown view on two nested frames with nodes: the outer one at (-180, -90), 360 by 180; the inner one in
/// it at (-20, -40); a node in each, one across the outer edge and one outside.
struct Frames : ViewStage
{
    Frames()
    {
        m_View.resize(900, 700); // room to drag in without scrolling
        delete m_Node;
        m_Inner->resizeNode({140, 100});
        m_Inner->setPos(-20, -40);
        m_Outer->resizeNode({360, 180});
        m_Outer->setPos(-180, -90);
        for (OrvNgBackdropNode* frame : {m_Inner, m_Outer}) // the inner one below, to begin with
            m_Scene.addItem(frame);
        place(m_InInner, 0, 0);
        place(m_InOuter, -120, 20);
        place(m_Across, 160, 50);
        place(m_Outside, -180, 110);
        m_View.centerViewOn({0, 0}, true);
        QCursor::setPos(m_View.viewport()->mapToGlobal(m_View.viewport()->rect().center()));
    }
    ~Frames() { OrvShaderNetworkManager::instance()->setSnapToGrid(false); }

    void place(OrvNgNode* node, double x, double y)
    {
        m_Scene.addItem(node);
        node->setPos(x, y);
    }
    QVector<QPointF> positions() const
    {
        return {m_Outer->pos(), m_Inner->pos(), m_InInner->pos(), m_InOuter->pos(), m_Across->pos(),
            m_Outside->pos()};
    }
    QString selection() const
    {
        QString names;
        for (OrvNgNode* node : {m_InInner, m_InOuter, m_Across, m_Outside})
            names += node->isSelected() ? node->text() : QString();
        names += QLatin1String(m_Inner->isSelected() ? "[inner]" : "");
        return names + QLatin1String(m_Outer->isSelected() ? "[outer]" : "");
    }
    QPoint at(double x, double y) const { return m_View.mapFromScene(QPointF(x, y)); }
    QPoint titleBar() const { return at(m_Outer->x() + 200, m_Outer->y() + 14); }
    OrvNgBackdropNode* m_Inner = new OrvNgBackdropNode(nullptr);
    OrvNgBackdropNode* m_Outer = new OrvNgBackdropNode(nullptr);
    TestNode* m_InInner = new TestNode(QStringLiteral("a"), {50, 30});
    TestNode* m_InOuter = new TestNode(QStringLiteral("b"), {50, 30});
    TestNode* m_Across = new TestNode(QStringLiteral("c"), {50, 30});
    TestNode* m_Outside = new TestNode(QStringLiteral("d"), {50, 30});
};

} // namespace

class tst_OrvNgBackdropNode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void refresh_collectsWhatIsWhollyInside()
    {
        for (const char* change : {"none", "hidden", "system node", "deleted", "moved out"}) {
            Frames stage;
            stage.m_Outer->refreshChildrenList(false);
            stage.m_InOuter->setSelected(true);
            const QPointer<OrvNgNode> node(stage.m_InOuter);
            if (*change == 'd')
                delete node;
            else if (*change == 'm')
                node->setPos(500, 500);
            else if (*change == 's')
                node->setIsSystemShaderNode(true);
            if (*change == 'h' || *change == 's')
                node->setVisible(*change == 's');
            QList<OrvNgNode*> expected{stage.m_Inner, stage.m_InInner};
            if (*change == 'n')
                expected.append(node);
            const auto children = stage.m_Outer->refreshedChildrenList(true);
            QCOMPARE(children.size(), expected.size());
            for (OrvNgNode* child : expected)
                QVERIFY2(children.contains(child), change);
            QVERIFY2(!node || node->isSelected() == (*change == 'n'), change);
        }
    }

    void refresh_stacksInnerFramesOnceAndForAll()
    {
        Frames stage;
        auto* inmost = new OrvNgBackdropNode(nullptr);
        stage.m_Inner->resizeNode({175, 120});
        stage.place(inmost, -10, -10);
        QCOMPARE(inmost->zValue(), -10.0);
        QSignalSpy raised(inmost, &OrvNgBackdropNode::zOrderChanged);
        for (int i = 0; i < 2; ++i) {
            stage.m_Outer->refreshChildrenList(false);
            QCOMPARE(stage.m_Outer->zOrder(), 0);
            QCOMPARE(stage.m_Inner->zOrder(), 1);
            QCOMPARE(inmost->zOrder(), 2);
            QCOMPARE(raised.size(), 1);
        }
        QCOMPARE(inmost->zValue(), double(2 * 0.01F - 10.0F));
    }

    void listenersMayDeleteFramesWhileTheyAreRaised()
    {
        Frames stage;
        connect(stage.m_Inner, &OrvNgBackdropNode::zOrderChanged, stage.m_Inner,
            [&stage] { delete stage.m_Outer; });
        const QPoint titleBar = stage.titleBar();
        stage.press(titleBar, Qt::LeftButton);
        stage.release(titleBar + QPoint(5, 5), Qt::LeftButton);
        QCOMPARE(stage.m_Inner->zOrder(), 1);
        QCOMPARE(stage.m_InInner->pos(), QPointF(0, 0));
    }

    void handle_movesItsCornerInOneUndoStep_data()
    {
        const TestTable<int, QPoint, QRectF> row("corner", "offset", "frame");
        const QRectF frame(-180, -90, 360, 180);
        row("top left", Qt::TopLeftCorner, QPoint(7, -3), frame.adjusted(7, -3, 0, 0));
        row("top right", Qt::TopRightCorner, QPoint(7, -3), frame.adjusted(0, -3, 7, 0));
        row("bottom left", Qt::BottomLeftCorner, QPoint(-7, 3), frame.adjusted(-7, 0, 0, 3));
        row("bottom right", Qt::BottomRightCorner, QPoint(7, 3), frame.adjusted(0, 0, 7, 3));
        row("top left past the minimum", Qt::TopLeftCorner, QPoint(350, 170),
            QRectF(40, 0, 140, 90));
        row("bottom right past it", Qt::BottomRightCorner, QPoint(-350, -170),
            QRectF(-180, -90, 140, 90));
        row("no motion", Qt::TopLeftCorner, QPoint(0, 0), frame);
    }
    void handle_movesItsCornerInOneUndoStep()
    {
        QFETCH(int, corner);
        QFETCH(QPoint, offset);
        QFETCH(QRectF, frame);
        Frames stage;
        OrvShaderNetworkManager::instance()->setSnapToGrid(true);
        stage.m_Outer->setTitleText(QStringLiteral("Rust"));
        QUndoStack& steps = *OrvUndoManager::instance().undoStack();
        steps.clear();
        const QRectF before = stage.m_Outer->sceneBoundingRect();
        const QPoint from = stage.at(corner % 2 ? 176 : -176, corner > 1 ? 86 : -86);
        stage.drag({from, from - QPoint(9, 9)});
        QVERIFY(stage.m_Outer->sceneBoundingRect() != before);
        stage.m_Outer->hide(); // the mouse is lost
        QCOMPARE(stage.m_Outer->sceneBoundingRect(), before);
        QCOMPARE(steps.count(), 0);
        stage.m_Outer->show();
        stage.release(from, Qt::LeftButton);

        stage.drag({from, from + offset / 2, from + offset});
        QCOMPARE(stage.m_Outer->sceneBoundingRect(), frame);
        stage.release(from + offset, Qt::LeftButton);
        QCOMPARE(steps.count(), 1);
        QCOMPARE(steps.undoText(), QStringLiteral("Resize Backdrop Node \"Rust\""));
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
        steps.undo();
        QCOMPARE(stage.m_Outer->sceneBoundingRect(), before);
        steps.redo();
        QCOMPARE(stage.m_Outer->sceneBoundingRect(), frame);
        steps.clear();
    }

    void press_selectsByTheModifiers_data()
    {
        const TestTable<int, bool, QString> row("modifiers", "isSelectedBefore", "selection");
        row("plain", Qt::NoModifier, false, "ab[inner][outer]");
        row("plain on a selected one", Qt::NoModifier, true, "abd[inner][outer]");
        row("add", Qt::ShiftModifier, false, "abd[inner][outer]");
        row("remove", Qt::ControlModifier, true, "d");
        row("toggle on", Qt::ControlModifier | Qt::ShiftModifier, false, "abd[inner][outer]");
        row("toggle off", Qt::ControlModifier | Qt::ShiftModifier, true, "d");
    }
    void press_selectsByTheModifiers()
    {
        QFETCH(int, modifiers);
        QFETCH(bool, isSelectedBefore);
        QFETCH(QString, selection);
        Frames stage;
        stage.m_Outside->setSelected(true);
        stage.m_Outer->setSelected(isSelectedBefore, false);
        stage.m_InOuter->setSelected(isSelectedBefore);
        stage.press(stage.titleBar(), Qt::LeftButton, modifiers);
        QCOMPARE(stage.selection(), selection);
        const QVector<QPointF> before = stage.positions();
        stage.move(stage.titleBar() + QPoint(30, 10), Qt::LeftButton, modifiers);
        QCOMPARE(stage.positions() == before, !stage.m_Outer->isSelected());
        stage.release(stage.titleBar(), Qt::LeftButton);
        QCOMPARE(stage.selection(), selection);
    }

    void drop_intoAFramePutsItAboveThatFrame()
    {
        Frames stage;
        stage.m_Inner->setPos(-20, 200);
        const QPoint from = stage.at(50, 210);
        stage.drag({from, from - QPoint(0, 100), from - QPoint(0, 240)});
        stage.release(from - QPoint(0, 240), Qt::LeftButton);
        QCOMPARE(stage.m_Inner->pos(), QPointF(-20, -40));
        QVERIFY(stage.m_Inner->zValue() > stage.m_Outer->zValue());
    }

    void setPosition_movesTheContentsExactly()
    {
        Frames stage;
        OrvShaderNetworkManager::instance()->setSnapToGrid(true);
        const QVector<QPointF> before = stage.positions();
        stage.m_Outer->setPosition(before.at(0));
        QVERIFY(stage.m_Outer->childrenList().isEmpty()); // not refreshed
        QCOMPARE(stage.positions(), before);

        stage.m_Outer->setPosition(before.at(0) + QPointF(101, -53));
        for (int i = 0; i < 4; ++i)
            QCOMPARE(stage.positions().at(i), before.at(i) + QPointF(101, -53));
        QCOMPARE(stage.m_Outside->pos(), before.at(5));
    }

    void wrap_keepsTheStylesDistances()
    {
        Frames stage;
        OrvShaderNetworkManager::instance()->setSnapToGrid(true);
        const QRectF inner(100, 200, 300, 240);
        for (const bool withPadding : {true, false}) {
            // Offset and title bar at the top left, padding elsewhere.
            const QRectF frame = withPadding ? inner.adjusted(-24, -28 - 24, 24, 24)
                                             : inner.adjusted(0, -28, 24, 24);
            stage.m_Outer->wrapAroundSelection(inner, withPadding);
            QCOMPARE(stage.m_Outer->sceneBoundingRect(), frame);
        }
        QCOMPARE(stage.m_InInner->pos(), QPointF(0, 0));
    }

    void wrapAroundNodes_takesTheNodesIn()
    {
        Frames stage;
        stage.m_Inner->wrapAroundNodes(QRectF(), {nullptr, stage.m_InOuter, stage.m_Across});
        QCOMPARE(stage.m_Inner->sceneBoundingRect(),
            QRectF(-120, 20, 330, 60).adjusted(-24, -52, 24, 24));
        for (OrvNgNode* node : {stage.m_InOuter, stage.m_Across})
            QVERIFY(stage.m_Inner->childrenList().contains(node));
        stage.m_Outer->replace(stage.m_Outside); // no backdrop
        QCOMPARE(stage.m_Outside->pos(), QPointF(-180, 110));
        stage.m_Outer->replace(stage.m_Inner);
        QCOMPARE(stage.m_Inner->sceneBoundingRect(), stage.m_Outer->sceneBoundingRect());
    }

    void adjustedColor_isAShadeOfTheFrames()
    {
        OrvNgBackdropNode frame(nullptr);
        const QPair<QColor, QColor> shades[] = {{{235, 235, 235, 40}, {255, 255, 255, 40}},
            {{236, 236, 236}, {216, 216, 216}}, {{250, 0, 0}, {255, 20, 20}}, {{}, {255, 20, 20}}};
        for (const auto& [color, adjusted] : shades) {
            frame.setNodeBackgroundColour(color);
            QCOMPARE(frame.adjustedBackgroundColor(), adjusted);
        }
    }

    void rect_isTheBoundsAndAtLeastTheMinimum()
    {
        OrvNgBackdropNode frame(nullptr);
        frame.setLabel(QString(3000, QLatin1Char('w')) + QStringLiteral("\n\n\n\n"));
        frame.resizeNode({200, 150});
        const QPair<QRectF, QRectF> rects[] = {{{-5, 7, 300, 200}, {-5, 7, 300, 200}},
            {{0, 0, 3, 200}, {0, 0, 140, 200}}, {{0, 0, -500, -1}, {0, 0, 140, 90}}};
        for (const auto& [rect, bounds] : rects) {
            frame.setRect(rect);
            QCOMPARE(frame.boundingRect(), bounds);
            for (const QGraphicsItem* child : frame.childItems())
                QVERIFY(!child->isVisible()
                    || bounds.contains(child->mapRectToParent(child->boundingRect())));
        }
    }
};

QTEST_MAIN(tst_OrvNgBackdropNode)
#include "tst_OrvNgBackdropNode.moc"
