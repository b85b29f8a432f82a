#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgBackdropTitleBarItem.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>

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
        names += m_Inner->isSelected() ? QStringLiteral("[inner]") : QString();
        names += m_Outer->isSelected() ? QStringLiteral("[outer]") : QString();
        return names;
    }
    static QSet<OrvNgNode*> children(OrvNgBackdropNode* frame)
    {
        QSet<OrvNgNode*> nodes;
        for (const QPointer<OrvNgNode>& node : frame->childrenList())
            nodes.insert(node);
        return nodes;
    }
    QPoint at(double x, double y) const { return m_View.mapFromScene(QPointF(x, y)); }
    QPoint titleBar() const { return at(m_Outer->x() + 200, m_Outer->y() + 14); }
    void drag(const QPoint& from, const QVector<QPoint>& offsets)
    {
        press(from, Qt::LeftButton);
        for (const QPoint& offset : offsets)
            move(from + offset, Qt::LeftButton);
        release(from + offsets.constLast(), Qt::LeftButton);
    }

    OrvNgBackdropNode* m_Inner = new OrvNgBackdropNode(nullptr);
    OrvNgBackdropNode* m_Outer = new OrvNgBackdropNode(nullptr);
    TestNode* m_InInner = new TestNode(QStringLiteral("a"), {50, 30});
    TestNode* m_InOuter = new TestNode(QStringLiteral("b"), {50, 30});
    TestNode* m_Across = new TestNode(QStringLiteral("c"), {50, 30});
    TestNode* m_Outside = new TestNode(QStringLiteral("d"), {50, 30});
};

using Break = void (*)(OrvNgNode*);

} // namespace
Q_DECLARE_METATYPE(Break)

class tst_OrvNgBackdropNode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void refresh_collectsWhatIsWhollyInside_data()
    {
        const TestTable<Break, bool, bool> row("change", "isChild", "staysSelected");
        row(
            "inside", [](OrvNgNode*) {}, true, true);
        row(
            "hidden", [](OrvNgNode* node) { node->setVisible(false); }, false, false);
        row(
            "system node",
            [](OrvNgNode* node) {
                node->setIsSystemShaderNode(true);
                node->setVisible(true);
            },
            false, false);
        row(
            "deleted", [](OrvNgNode* node) { delete node; }, false, false);
        row(
            "moved out", [](OrvNgNode* node) { node->setPos(500, 500); }, false, false);
    }
    void refresh_collectsWhatIsWhollyInside()
    {
        QFETCH(Break, change);
        QFETCH(bool, isChild);
        Frames stage;
        stage.m_Outer->refreshChildrenList(false);
        stage.m_InOuter->setSelected(true);
        const QPointer<OrvNgNode> changed(stage.m_InOuter);
        change(changed);
        const auto children = stage.m_Outer->refreshedChildrenList(true);
        QSet<OrvNgNode*> expected{stage.m_Inner, stage.m_InInner};
        if (isChild)
            expected.insert(stage.m_InOuter);
        QCOMPARE(Frames::children(stage.m_Outer), expected);
        QCOMPARE(children.size(), expected.size());
        if (changed && changed->isVisible()) // Qt deselects what is hidden
            QTEST(changed->isSelected(), "staysSelected");
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
        const QPointer<OrvNgBackdropNode> outer(stage.m_Outer);
        connect(stage.m_Inner, &OrvNgBackdropNode::zOrderChanged, stage.m_Inner,
            [&stage] { delete stage.m_Outer; });
        const QPoint titleBar = stage.titleBar();
        stage.press(titleBar, Qt::LeftButton);
        stage.release(titleBar + QPoint(5, 5), Qt::LeftButton);
        QVERIFY(!outer);
        QCOMPARE(stage.m_Inner->zOrder(), 1);
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
        for (OrvNgBackdropNode* frame : {stage.m_Inner, stage.m_Outer}) {
            auto* bar = dynamic_cast<OrvNgBackdropTitleBarItem*>(frame->childItems().value(0));
            QVERIFY(bar);
            QCOMPARE(bar->isSelected(), frame->isSelected());
            QCOMPARE(
                bar->brush() == OrvNgStyle::instance().getSelectedNodeBrush(), frame->isSelected());
        }
        const QVector<QPointF> before = stage.positions();
        stage.move(stage.titleBar() + QPoint(30, 10), Qt::LeftButton, modifiers);
        QCOMPARE(stage.positions() == before, !stage.m_Outer->isSelected());
        stage.release(stage.titleBar(), Qt::LeftButton);
        QCOMPARE(stage.selection(), selection);
    }

    void drag_survivesChildrenAndItselfBeingDeleted()
    {
        Frames stage;
        const QPoint from = stage.titleBar();
        stage.press(from, Qt::LeftButton);
        delete stage.m_InOuter;
        stage.move(from + QPoint(10, 0), Qt::LeftButton);
        QCOMPARE(stage.m_InInner->pos(), QPointF(10, 0));
        delete stage.m_Outer;
        stage.move(from + QPoint(20, 0), Qt::LeftButton);
        stage.release(from + QPoint(20, 0), Qt::LeftButton);
        QCOMPARE(stage.m_InInner->pos(), QPointF(10, 0));
    }

    void drop_intoAFramePutsItAboveThatFrame()
    {
        Frames stage;
        stage.m_Inner->setPos(-20, 200);
        stage.drag(stage.at(50, 210), {{0, -100}, {0, -240}});
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

    void wrapAroundNodes_ignoresWhatIsNotInTheScene()
    {
        Frames stage;
        TestNode elsewhere;
        auto* deleted = new TestNode;
        delete deleted;
        const QRectF before = stage.m_Inner->sceneBoundingRect();
        stage.m_Inner->wrapAroundNodes(QRectF(), {nullptr, deleted, stage.m_Inner, &elsewhere});
        QCOMPARE(stage.m_Inner->sceneBoundingRect(), before);
        stage.m_Inner->wrapAroundNodes(QRectF(), {nullptr, stage.m_InOuter, stage.m_Across});
        QCOMPARE(stage.m_Inner->sceneBoundingRect(),
            QRectF(-120, 20, 330, 60).adjusted(-24, -52, 24, 24));
        QVERIFY(Frames::children(stage.m_Inner).contains({stage.m_InOuter, stage.m_Across}));
    }

    void adjustedColor_isAShadeOfTheFrames_data()
    {
        const TestTable<QColor, QColor> row("color", "adjusted");
        row("grey 235", QColor(235, 235, 235, 40), QColor(255, 255, 255, 40));
        row("grey 236", QColor(236, 236, 236), QColor(216, 216, 216));
        row("clamped above", QColor(250, 0, 0), QColor(255, 20, 20));
        row("invalid: the old one stays", QColor(), QColor(220, 220, 220));
    }
    void adjustedColor_isAShadeOfTheFrames()
    {
        QFETCH(QColor, color);
        OrvNgBackdropNode frame(nullptr);
        frame.setNodeBackgroundColour(color);
        QTEST(frame.adjustedBackgroundColor(), "adjusted");
    }

    void rect_isTheBoundsAndAtLeastTheMinimum_data()
    {
        const TestTable<QRectF, QRectF> row("rect", "bounds");
        row("usable", QRectF(-5, 7, 300, 200), QRectF(-5, 7, 300, 200));
        row("too small", QRectF(0, 0, 3, 200), QRectF(0, 0, 140, 200));
        row("negative", QRectF(0, 0, -500, -1), QRectF(0, 0, 140, 90));
    }
    void rect_isTheBoundsAndAtLeastTheMinimum()
    {
        QFETCH(QRectF, rect);
        OrvNgBackdropNode frame(nullptr);
        frame.setLabel(QString(3000, QLatin1Char('w')) + QStringLiteral("\n\n\n\n"));
        frame.resizeNode({200, 150});
        frame.setRect(rect);
        QTEST(frame.boundingRect(), "bounds");
        for (const QGraphicsItem* child : frame.childItems()) {
            if (child->isVisible())
                QVERIFY(
                    frame.boundingRect().contains(child->mapRectToParent(child->boundingRect())));
        }
    }

    void replace_handsSizeAndPlaceToABackdropOnly()
    {
        Frames stage;
        const DebugRecorder recorder;
        stage.m_Outer->replace(stage.m_Outside);
        stage.m_Outer->replace(nullptr);
        QCOMPARE(recorder.count(QStringLiteral("otherBackdrop is NULL")), 2);
        QCOMPARE(stage.m_Outside->pos(), QPointF(-180, 110));
        stage.m_Outer->replace(stage.m_Inner);
        QCOMPARE(stage.m_Inner->sceneBoundingRect(), stage.m_Outer->sceneBoundingRect());
    }
};

QTEST_MAIN(tst_OrvNgBackdropNode)
#include "tst_OrvNgBackdropNode.moc"
