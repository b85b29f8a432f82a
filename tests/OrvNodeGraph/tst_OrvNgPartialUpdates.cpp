#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"
#include "support/ScreenPicture.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include <QGraphicsRectItem>
#include <QPaintEvent>

#include <functional>

namespace {

constexpr int kRounding = 5; // of 255: gradients differ where only a part of them is painted

/// Keeps what it was last asked to paint.
class WatchedView : public TestView
{
public:
    bool m_PaintsOnlyScene = true;
    QRegion m_Painted;

protected:
    bool paintsOnlyScene() const override { return m_PaintsOnlyScene; }
    void paintEvent(QPaintEvent* event) override
    {
        m_Painted = event->region();
        TestView::paintEvent(event);
    }
};

/// Two connected nodes in the middle of a view.
struct PartialStage : ExtendedRig
{
    PartialStage()
    {
        setMode(Node::PORT_LIST_EXPANDED);
        connectInput(kA);
        m_Node->setPos(120, -30);
        m_View.setScene(&m_Scene);
        m_View.show();
        m_View.init();
        m_View.centerViewOn(QPointF(100, 50), true);
        QTest::qWait(100); // exposed, and the bounds known
    }
    ~PartialStage() { m_View.setGridEnabled(false); }

    void settle()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    void scroll(int x, int y)
    {
        m_View.horizontalScrollBar()->setValue(m_View.horizontalScrollBar()->value() + x);
        m_View.verticalScrollBar()->setValue(m_View.verticalScrollBar()->value() + y);
    }
    /// Pixel by pixel, so that the selected node's outline comes into view before the node does.
    void bringSelectedNodeIn()
    {
        m_Source->setSelected(true);
        scroll(int(m_Source->boundingRect().width()) + 110, 0);
        for (int i = 0; i < 20; ++i) {
            settle();
            scroll(-1, 0);
        }
    }
    void mouse(QEvent::Type type, const QPoint& pos, Qt::MouseButtons held = Qt::NoButton)
    {
        QMouseEvent event(type, pos, m_View.viewport()->mapToGlobal(pos),
            type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(m_View.viewport(), &event);
    }
    void bandAndScroll()
    {
        mouse(QEvent::MouseButtonPress, {2, 2}, Qt::LeftButton);
        mouse(QEvent::MouseMove, {60, 40}, Qt::LeftButton);
        scroll(5, 5);
    }
    QPoint onNode() { return m_View.mapFromScene(m_Node->mapToScene(10, 10)); }
    QImage screen() const { return screenPicture(*m_View.viewport()); }

    WatchedView m_View;
};

using Change = std::function<void(PartialStage&)>;
#define DO(...) Change([](PartialStage& s) { static_cast<void>(s), __VA_ARGS__; })

} // namespace

Q_DECLARE_METATYPE(Change)

/// What stands on the screen where a view repaints only what has changed.
class tst_OrvNgPartialUpdates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void screenIsWhatAFullPaintShows_data()
    {
        const TestTable<Change, Change, bool> row("before", "change", "partly");
        const Change nothing = DO(s.settle());
        row("scrolled", nothing, DO(s.scroll(7, -3)), true);
        row("scrolled twice", nothing, DO(s.scroll(-4, 9); s.scroll(6, -30)), true);
        row("scrolled over a grid", DO(s.m_View.setGridEnabled(true)), DO(s.scroll(-7, 5)), true);
        row("scrolled below a minimap", DO(s.m_Source->setPos(-900, 0); QTest::qWait(80)),
            DO(s.scroll(11, -6)), true);
        row("scrolled until the minimap appears", nothing, DO(s.scroll(150, 0)), false);
        row("outline scrolled into view", nothing, DO(s.bringSelectedNodeIn()), true);
        row("scrolled below a band", nothing, DO(s.bandAndScroll()), false);
        row("zoomed", nothing, DO(s.m_View.zoomIn()), false);
        row("hovered", nothing, DO(s.mouse(QEvent::MouseMove, s.onNode())), true);
        row("no longer hovered", DO(s.mouse(QEvent::MouseMove, s.onNode())),
            DO(s.mouse(QEvent::MouseMove, {1, 1})), true);
        row("selected", nothing, DO(s.m_Node->setSelected(true)), true);
        row("moved while selected", DO(s.m_Node->setSelected(true)), DO(s.m_Node->moveBy(9, 4)),
            true);
        row("moved and scrolled", nothing, DO(s.m_Node->moveBy(9, 4); s.scroll(8, 2)), true);
        row("scrolled and moved", nothing, DO(s.scroll(8, 2); s.m_Node->moveBy(9, 4)), true);
        row("ports hidden", nothing, DO(s.setMode(OrvNgExtendedNode::PORT_LIST_COLLAPSED)), true);
        row("edge gone", nothing, DO(s.m_Node->input(kA)->setSourceNode(nullptr, QString())), true);
        row("node deleted", nothing, DO(s.m_Source->destroy()), false);
        row("background changed", nothing,
            DO(OrvNgStyle::instance().setSceneBackgroundBrush(QColor(40, 60, 80))), false);
        row("background gets translucent", nothing,
            DO(OrvNgStyle::instance().setSceneBackgroundBrush(QColor(200, 0, 0, 90))), false);
    }
    void screenIsWhatAFullPaintShows()
    {
        QFETCH(const Change, before);
        QFETCH(const Change, change);
        const QBrush background = OrvNgStyle::instance().getSceneBackgroundBrush();
        PartialStage stage;
        before(stage);
        stage.settle();
        const QImage old = stage.screen();
        change(stage);
        stage.settle();
        const QRegion painted = stage.m_View.m_Painted;
        const QImage partly = stage.screen();
        stage.m_View.viewport()->update();
        stage.settle();
        QVERIFY2(difference(old, partly) > kRounding, "nothing has changed on the screen");
        QCOMPARE(qMax(difference(partly, stage.screen()), kRounding), kRounding);
        QTEST(QRegion(stage.m_View.viewport()->rect()) != painted, "partly");
        QCOMPARE(stage.m_View.viewportUpdateMode(), QGraphicsView::FullViewportUpdate);
        OrvNgStyle::instance().setSceneBackgroundBrush(background);
    }

    void viewThatShowsMore_isPaintedWhole()
    {
        PartialStage stage;
        stage.m_View.m_PaintsOnlyScene = false;
        for (const Change& change : {DO(s.scroll(7, -3)), DO(s.m_Node->moveBy(9, 4))}) {
            stage.m_View.m_Painted = QRegion();
            change(stage);
            stage.settle();
            QCOMPARE(stage.m_View.m_Painted, QRegion(stage.m_View.viewport()->rect()));
        }
    }

    /// The framework keeps for an item out of sight that nothing of it is shown, also when it leaves its scene.
    void itemsThatMovedOutOfSight_areShownWhenTheyEnter()
    {
        PartialStage stage;
        stage.m_View.setViewportUpdateMode(QGraphicsView::MinimalViewportUpdate);
        stage.m_View.setMinimapVisible(false);
        stage.settle();
        const QImage shown = stage.screen();
        const QList<QGraphicsItem*> edge{stage.m_Node->input(kA)};
        for (const QList<QGraphicsItem*>& items : {{stage.m_Source, stage.m_Node}, edge}) {
            stage.m_View.centerViewOn(QPointF(9000, 0), true);
            for (const int dy : {5, -5}) {
                stage.m_Source->moveBy(0, dy);
                stage.m_Node->moveBy(0, dy);
                stage.settle();
            }
            for (QGraphicsItem* item : items)
                stage.m_Scene.removeItem(item);
            stage.m_View.centerViewOn(QPointF(100, 50), true);
            stage.settle();
            for (QGraphicsItem* item : items)
                stage.m_Scene.addItem(item);
            stage.settle();
            QCOMPARE(qMax(difference(shown, stage.screen()), kRounding), kRounding);
        }
    }

    /// A second view on the scene whose mode the host has chosen keeps it, and a view may go while the
    /// scene tells its changes.
    void otherViews_areLeftAlone()
    {
        PartialStage stage;
        auto* second = new WatchedView;
        second->setViewportUpdateMode(QGraphicsView::SmartViewportUpdate);
        second->setScene(&stage.m_Scene);
        second->show();
        QTest::qWait(20);
        QGraphicsView::ViewportUpdateMode seen = QGraphicsView::NoViewportUpdate;
        QMetaObject::invokeMethod(
            &stage.m_Scene, [&] { seen = second->viewportUpdateMode(); }, Qt::QueuedConnection);
        stage.m_Node->moveBy(9, 4);
        stage.settle();
        QCOMPARE(seen, QGraphicsView::SmartViewportUpdate);

        second->setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
        QMetaObject::invokeMethod(
            &stage.m_Scene, [second] { delete second; }, Qt::QueuedConnection);
        stage.m_Node->moveBy(9, 4);
        stage.settle();
        QVERIFY(stage.m_View.m_Painted != QRegion(stage.m_View.viewport()->rect()));
        QCOMPARE(stage.m_View.viewportUpdateMode(), QGraphicsView::FullViewportUpdate);
    }
};

QTEST_MAIN(tst_OrvNgPartialUpdates)
#include "tst_OrvNgPartialUpdates.moc"
