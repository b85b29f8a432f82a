#include "support/Literals.h"
#include "support/ViewStage.h"

namespace {

/// Counts its paints into the minimap, and those elsewhere.
class CountingNode : public TestNode
{
public:
    explicit CountingNode(const OrvNgView* view)
        : m_View(view)
    {
        setFlag(ItemHasNoContents, false);
    }
    void paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) override
    {
        ++(m_View->isMinimapRendering() ? m_InMinimap : m_InView);
    }
    const OrvNgView* m_View;
    int m_InMinimap = 0;
    int m_InView = 0;
};

/// A small node at a corner of the bounds, and the node that the view looks at.
struct FarStage : ViewStage
{
    explicit FarStage(const QPointF& corner)
    {
        add(q("corner"), corner);
        settle();
    }
    void settle()
    {
        m_View.init();
        m_View.centerViewOn(QPointF(0, 0), true);
        m_View.viewport()->repaint();
    }
};

} // namespace

class tst_OrvNgMinimap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QVERIFY(QApplication::topLevelWidgets().isEmpty()); }

    void nodeThatLeavesTheView_bringsTheMinimap()
    {
        FarStage stage({}); // whose node at the corner counts
        auto* node = new CountingNode(&stage.m_View);
        stage.m_Scene.addItem(node);
        flushEvents();
        // The move itself is painted before the bounds that it changes are known.
        node->setPos(5000, 0);
        QTRY_VERIFY(node->m_InMinimap > 0);
    }

    void picture_isRenderedOnlyWhenStale()
    {
        FarStage stage(QPointF(5000, 2000));
        auto* node = new CountingNode(&stage.m_View);
        stage.m_Scene.addItem(node);
        stage.settle();
        int before = node->m_InMinimap;
        const auto rendersOf = [&](int paints) {
            for (int i = 0; i < paints; ++i)
                stage.m_View.viewport()->repaint();
            return node->m_InMinimap - std::exchange(before, node->m_InMinimap);
        };
        rendersOf(1);
        QCOMPARE(rendersOf(20), 0);
        node->moveBy(10, 10); // within the bounds
        QTest::qWait(80);
        QCOMPARE(rendersOf(0), 1);
        QCOMPARE(rendersOf(20), 0);
        stage.m_View.setMinimapVisible(true);
        QCOMPARE(rendersOf(20), 1);
        stage.m_View.refreshBackground();
        QCOMPARE(rendersOf(20), 1);
        stage.m_View.resize(500, 300);
        QCOMPARE(rendersOf(20), 1);
        QCOMPARE(rendersOf(100), 1);
        QVERIFY(node->m_InView > 50);
    }
};

QTEST_MAIN(tst_OrvNgMinimap)
#include "tst_OrvNgMinimap.moc"
