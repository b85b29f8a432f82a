#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgMinimap.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include <QPainter>

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

/// Counts its paints into the minimap, and those elsewhere.
class CountingNode : public TestNode
{
public:
    explicit CountingNode(const OrvNgView* view)
        : m_View(view)
    {
        setFlag(ItemHasNoContents, false);
    }
    void paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget* widget) override
    {
        ++(m_View->isMinimapRendering() ? m_InMinimap : m_InView);
        m_HasWidgetInMinimap |= m_View->isMinimapRendering() && widget;
    }
    const OrvNgView* m_View;
    int m_InMinimap = 0;
    int m_InView = 0;
    bool m_HasWidgetInMinimap = false;
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
        repaint();
    }
    void repaint() { m_View.viewport()->repaint(); }
};

} // namespace

class tst_OrvNgMinimap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QVERIFY(QApplication::topLevelWidgets().isEmpty()); }

    void rect_isAFifthOfTheView()
    {
        // The last one is too low for any.
        for (const QRect& rect :
            {QRect(640, 400, 160, 100), QRect(322, 163, 79, 40), QRect(800, 4, 0, 0)}) {
            TestView view;
            const QSize size(rect.right() + 1, rect.bottom() + 1);
            view.resize(size);
            view.viewport()->resize(size);
            QCOMPARE(view.minimapRect(), rect);
            QVERIFY(!view.isInMinimap(QPoint(size.width(), size.height())));
            QCOMPARE(
                view.isInMinimap(QPoint(size.width() - 1, size.height() - 1)), !rect.isEmpty());
        }
    }

    void press_goesWhereThePictureShows_data()
    {
        const TestTable<QPointF, QSizeF> row("marked", "tolerance");
        row("wide bounds", QPointF(3000, 500), QSizeF(60, 60));
        row("tall bounds", QPointF(500, 6000), QSizeF(200, 200));
        row("to the left", QPointF(-4000, -300), QSizeF(80, 80));
    }

    /// A red node among the others is looked for in the picture and pressed there.
    void press_goesWhereThePictureShows()
    {
        QFETCH(QPointF, marked);
        QFETCH(QSizeF, tolerance);
        FarStage stage(marked * 1.3 + QPointF(100, 100));
        TestNode* node = stage.add(q("marked"), marked, {300, 200});
        node->setNodeBrush(QColor(Qt::red));
        stage.settle();
        QPointF sum;
        int count = 0;
        const QRect map = stage.m_View.minimapRect();
        const QImage picture = stage.picture();
        for (int y = map.top(); y <= map.bottom(); ++y) {
            for (int x = map.left(); x <= map.right(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.red() > 100 && pixel.green() < 90) {
                    sum += QPointF(x, y);
                    ++count;
                }
            }
        }
        QVERIFY(count > 0);
        const QPoint pos = (sum / count).toPoint();
        stage.press(pos, Qt::LeftButton);
        const QPointF miss = stage.m_View.center() - node->sceneBoundingRect().center();
        QVERIFY2(std::abs(miss.x()) < tolerance.width() && std::abs(miss.y()) < tolerance.height(),
            qPrintable(q("%1 %2").arg(miss.x()).arg(miss.y())));
        stage.release(pos, Qt::LeftButton);
        QVERIFY(stage.isAtRest());
    }

    void drag_keepsToTheMinimap()
    {
        FarStage stage(QPointF(5000, 2000));
        const QRectF bounds = stage.m_View.visibleNodeBounds();
        const QRect map = stage.m_View.minimapRect();
        stage.drag({map.center(), map.center() + QPoint(5, 5)});
        QVERIFY(!stage.wheel(0, 120)); // nothing else meanwhile
        stage.move(QPoint(-500, -500), Qt::LeftButton); // beyond its border
        QVERIFY(isNear(stage.m_View.center(), bounds.topLeft()));
        stage.release(QPoint(-500, -500), Qt::LeftButton);
        stage.move(map.center(), Qt::LeftButton);
        QVERIFY(isNear(stage.m_View.center(), bounds.topLeft()));
        QVERIFY(!stage.m_Node->isSelected());
    }

    void allNodesInView_leaveTheCornerToTheScene()
    {
        FarStage stage(QPointF(100, 60)); // below the minimap's place
        const QPoint pos = stage.m_View.mapFromScene(QPointF(165, 88));
        QVERIFY(stage.m_View.isInMinimap(pos));
        QVERIFY(!stage.m_View.shouldDisplayMinimap());
        TestNode* corner = stage.add(q("C"), {155, 78});
        stage.settle();
        stage.move(pos, Qt::NoButton);
        QVERIFY(corner->hovered());
        QCOMPARE(stage.m_View.mapMinimapPosToScenePos(pos), QPointF(0, 0));

        stage.add(q("outside"), {5000, 0});
        stage.settle();
        stage.move(pos + QPoint(1, 0), Qt::NoButton);
        QVERIFY(!corner->hovered());
        QVERIFY(stage.m_View.mapMinimapPosToScenePos(pos).x() > 2000);

        stage.m_View.setMinimapVisible(false);
        stage.repaint();
        stage.move(pos, Qt::NoButton);
        QVERIFY(corner->hovered());
    }

    void nodeThatLeavesTheView_bringsTheMinimap()
    {
        struct Paints : QObject
        {
            explicit Paints(TestView& view)
                : m_View(view)
            {
                view.viewport()->installEventFilter(this);
            }
            bool eventFilter(QObject*, QEvent* event) override
            {
                m_WithMinimap += event->type() == QEvent::Paint && m_View.shouldDisplayMinimap();
                return false;
            }
            TestView& m_View;
            int m_WithMinimap = 0;
        };
        ViewStage stage;
        flushEvents();
        const Paints paints(stage.m_View);
        // The move itself is painted before the bounds that it changes are known.
        stage.m_Node->setPos(5000, 0);
        QTRY_VERIFY(paints.m_WithMinimap > 0);
    }

    void flatBounds_divideByNothing()
    {
        ViewStage stage;
        delete stage.m_Node;
        stage.add(q("A"), {-3000, 0}, {100, 0});
        stage.add(q("B"), {3000, 0}, {100, 0});
        stage.m_View.init();
        stage.m_View.viewport()->repaint();
        const QRect map = stage.m_View.minimapRect();
        const QRectF bounds = stage.m_View.visibleNodeBounds();
        QCOMPARE(bounds.height(), 0.0);
        const QPointF right = stage.m_View.mapMinimapPosToScenePos(map.topRight());
        QVERIFY(isNear(right, bounds.topRight(), bounds.width() / map.width() + 1.0));
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
                stage.repaint();
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
        QVERIFY(!node->m_HasWidgetInMinimap);
    }

    void textsOfBackdrops_stayOut()
    {
        FarStage stage(QPointF(-3000, -2000));
        auto* backdrop = new OrvNgBackdropNode(nullptr);
        stage.m_Scene.addItem(backdrop);
        backdrop->setPos(-2500, -1500);
        backdrop->resizeNode({4000, 3000});
        backdrop->setTitleText({});
        backdrop->setLabel({});
        stage.settle();
        const auto map = [&stage] { return stage.picture().copy(stage.m_View.minimapRect()); };
        const QImage bare = map();
        backdrop->setTitleText(q("A title that grows far out"));
        backdrop->setLabel(QString(9000, QLatin1Char('M')));
        stage.settle();
        QCOMPARE(map(), bare);
        backdrop->setNodeBackgroundColour(Qt::red); // it is there
        stage.settle();
        QVERIFY(map() != bare);
    }
};

QTEST_MAIN(tst_OrvNgMinimap)
#include "tst_OrvNgMinimap.moc"
