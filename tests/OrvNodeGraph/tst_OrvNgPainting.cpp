#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"
#include "support/ScreenPicture.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include <QGraphicsBlurEffect>
#include <QPaintEvent>

#include <functional>
#include <memory>

namespace {

constexpr int kRounding = 5; // of 255: gradients differ where only a part of them is painted

/// Counts how often it is asked to paint, and paints itself all over.
class OwnNode : public OrvNgExtendedNode
{
public:
    explicit OwnNode(bool leavesItToTheView)
        : OrvNgExtendedNode(nullptr)
        , m_LeavesItToTheView(leavesItToTheView)
    {
    }
    bool allowsFarPicture() const override { return m_LeavesItToTheView; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) override
    {
        ++m_Paints;
        painter->fillRect(boundingRect(), Qt::magenta);
    }
    const bool m_LeavesItToTheView;
    int m_Paints = 0;
};

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

/// Two connected nodes in the middle of a view. Far away there are also a frame, a node that paints itself
/// above a part of a rectangle and, in the far corner, a witness that is asked whenever the picture there is
/// made anew.
struct Stage : ExtendedRig
{
    explicit Stage(bool isFar = true)
        : m_IsFar(isFar)
    {
        setMode(Node::PORT_LIST_EXPANDED);
        connectInput(kA);
        m_Node->setCorrectColor();
        const QList<QPair<QGraphicsItem*, QPointF>> items{{m_Frame, {-300, -100}},
            {m_Rect.get(), {160, 9}}, {m_Own, {100, 300}}, {m_Witness, {1500, 700}},
            {m_Selected, {0, 600}}};
        for (const auto& item : items) {
            m_Scene.addItem(item.first);
            item.first->setPos(item.second);
            item.first->setVisible(isFar);
        }
        m_Rect->setBrush(Qt::green);
        m_Selected->setSelected(isFar);
        m_View.m_PaintsOnlyScene = !isFar;
        if (isFar)
            m_First.setScene(&m_Scene);
        m_View.setScene(&m_Scene);
        m_View.show();
        m_View.init();
        m_View.setMinimapVisible(!isFar);
        if (isFar)
            m_View.scale(0.2, 0.2);
        else
            m_Node->setPos(120, -30);
        m_View.centerViewOn(isFar ? QPointF(800, 300) : QPointF(100, 50), !isFar);
        QTest::qWait(100); // exposed, and the bounds known
        m_Source->update();
        settle(); // the scene tells what it kept to itself before anyone heard it
    }
    ~Stage()
    {
        m_View.setGridEnabled(false);
        m_Style.resetSelectedNodeColor();
        m_Style.refreshProperties(); // makes the background of its colour
    }

    /// The bounds that a view far away knows follow after 50 ms.
    void settle() { m_IsFar ? QTest::qWait(60) : flushEvents(); }
    QImage picture() const { return screenPicture(*m_View.viewport()); }
    /// As it is now, from nothing that was kept.
    QImage wholePicture() { return m_View.viewport()->grab().toImage(); }
    /// As the framework paints all items.
    QImage reference()
    {
        const double ratio = m_View.devicePixelRatioF();
        QImage image(m_View.viewport()->size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        painter.setRenderHints(m_View.renderHints());
        m_View.render(&painter, QRectF(m_View.viewport()->rect()));
        return image;
    }
    QColor seenAt(const QImage& image, const QPointF& scenePos)
    {
        return image.pixelColor(m_View.mapFromScene(scenePos) * image.devicePixelRatio());
    }

    // Changes

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
    void mouse(QEvent::Type type, const QPoint& pos, Qt::MouseButtons held = Qt::LeftButton)
    {
        QMouseEvent event(type, pos, m_View.viewport()->mapToGlobal(pos),
            type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(m_View.viewport(), &event);
    }
    void hover(const QPoint& pos) { mouse(QEvent::MouseMove, pos, Qt::NoButton); }
    void drag(const QPoint& from, const QPoint& way)
    {
        mouse(QEvent::MouseButtonPress, from);
        mouse(QEvent::MouseMove, from + way / 2);
        mouse(QEvent::MouseMove, from + way);
    }
    QPoint onNode() { return m_View.mapFromScene(m_Node->mapToScene(10, 10)); }
    void paintRed(OrvNgNode* node)
    {
        node->setNodeColor(Qt::red, Qt::red);
        node->setCorrectColor();
        node->update();
    }
    void addRect(QGraphicsItem* parent)
    {
        auto* rect = new QGraphicsRectItem(50, 10, 60, 60, parent);
        rect->setBrush(Qt::cyan);
        if (!parent)
            m_Scene.addItem(rect);
    }
    void coverOwnNode()
    {
        auto* node = new OrvNgExtendedNode(nullptr);
        m_Scene.addItem(node);
        node->setPos(m_Own->pos());
    }
    /// As many that look alike as share a picture; returns the topmost.
    OwnNode* addQuietNodes(double x)
    {
        OwnNode* quiet = nullptr;
        for (int i = 0; i < 9; ++i) {
            quiet = new OwnNode(true);
            m_Scene.addItem(quiet);
            quiet->setPos(x, 100);
        }
        return quiet;
    }
    /// Somebody repaints between the change and the death.
    void deleteMovingRect()
    {
        m_Rect->moveBy(30, 0);
        m_View.viewport()->repaint();
        m_Rect->moveBy(30, 0);
        QCoreApplication::sendPostedEvents(&m_Scene, QEvent::MetaCall);
        m_Rect.reset();
    }
    void lookElsewhere()
    {
        auto* scene = new QGraphicsScene(&m_View);
        scene->addRect(0, 0, 900, 300, QPen(Qt::NoPen), Qt::yellow);
        m_View.setScene(scene);
    }
    void setBackground(const QColor& color) { m_Style.setSceneBackgroundBrush(color); }

    const bool m_IsFar;
    OrvNgStyle& m_Style = OrvNgStyle::instance();
    OrvNgBackdropNode* m_Frame = new OrvNgBackdropNode(nullptr);
    std::unique_ptr<QGraphicsRectItem> m_Rect
        = std::make_unique<QGraphicsRectItem>(-200, 300, 200, 200);
    OwnNode* m_Own = new OwnNode(false);
    OwnNode* m_Witness = new OwnNode(false);
    Node* m_Selected = new Node(nullptr);
    TestView m_First; ///< of the scene's views; the other one hears of changes for itself
    WatchedView m_View;
};

using Change = std::function<void(Stage&)>;
#define DO(...) Change([](Stage& s) { s.__VA_ARGS__; })

} // namespace

Q_DECLARE_METATYPE(Change)

/// What stands on the screen where a view repaints only what has changed: near, and below the level of
/// detail at which it paints nodes and edges itself, on a picture that it keeps.
class tst_OrvNgPainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// After any change the screen shows what would be painted anew. Of local ones only the surroundings
    /// are painted.
    void screenIsWhatAFullPaintShows_data()
    {
        const TestTable<bool, Change, Change, bool> row("isFar", "before", "change", "isLocal");
        const Change nothing = DO(settle());
        const auto near = [&](const char* tag, const Change& change, bool isLocal,
                              const Change& before) { row(tag, false, before, change, isLocal); };
        near("scrolled", DO(scroll(7, -3)), true, nothing);
        near("scrolled twice", DO(scroll(-4, 9), s.scroll(6, -30)), true, nothing);
        near("scrolled over a grid", DO(scroll(-7, 5)), true, DO(m_View.setGridEnabled(true)));
        near("scrolled below a minimap", DO(scroll(11, -6)), true,
            DO(m_Source->setPos(-900, 0), QTest::qWait(80)));
        near("scrolled until the minimap appears", DO(scroll(150, 0)), false, nothing);
        near("outline scrolled into view", DO(bringSelectedNodeIn()), true, nothing);
        near("scrolled below a band", DO(drag({2, 2}, {58, 38}), s.scroll(5, 5)), false, nothing);
        near("zoomed", DO(m_View.zoomIn()), false, nothing);
        near("hovered", DO(hover(s.onNode())), true, nothing);
        near("no longer hovered", DO(hover({1, 1})), true, DO(hover(s.onNode())));
        near("selected", DO(m_Node->setSelected(true)), true, nothing);
        near("moved while selected", DO(m_Node->moveBy(9, 4)), true, DO(m_Node->setSelected(true)));
        near("moved and scrolled", DO(m_Node->moveBy(9, 4), s.scroll(8, 2)), true, nothing);
        near("scrolled and moved", DO(scroll(8, 2), s.m_Node->moveBy(9, 4)), true, nothing);
        near("ports hidden", DO(setMode(Stage::Node::PORT_LIST_COLLAPSED)), true, nothing);
        near("edge gone", DO(m_Node->input(kA)->setSourceNode(nullptr, {})), true, nothing);
        near("node deleted", DO(m_Source->destroy()), false, nothing);
        near("background changed", DO(setBackground({40, 60, 80})), false, nothing);
        near("background gets translucent", DO(setBackground({200, 0, 0, 90})), false, nothing);

        const auto far = [&](const char* tag, const Change& change, bool isLocal) {
            row(tag, true, nothing, change, isLocal);
        };
        far("a node moves", DO(m_Node->moveBy(33, 61)), true);
        far("a node is dragged", DO(drag(s.onNode(), {9, 14})), true);
        far("a node is selected", DO(m_Node->setSelected(true)), true);
        far("a node is hovered", DO(m_Source->setHovered(true)), true);
        far("a node is recoloured", DO(paintRed(s.m_Node)), true);
        far("a port is hovered", DO(m_Node->inputPort(kB)->setMouseHovered(true)), true);
        far("a port is recoloured", DO(m_Node->inputPort(kB)->setSpecialPortColor(Qt::red)), true);
        far("a node is hidden", DO(m_Node->setVisible(false)), true);
        far("a node fades", DO(m_Node->setOpacity(0.4)), true);
        far("a node gets a child", DO(addRect(s.m_Node)), true);
        far("a node goes below a rectangle", DO(m_Own->setZValue(-5)), false);
        far("a node comes above an older item",
            DO(m_Rect->setPos(900, -200), s.m_Scene.removeItem(s.m_Node),
                s.m_Scene.addItem(s.m_Node), s.settle(), s.m_Node->setPos(720, 120)),
            false);
        far("a node joins another item", DO(m_Node->setParentItem(s.m_Rect.get())), false);
        far("an edge is freed", DO(m_Node->input(kA)->setSourceNode(nullptr, {})), true);
        far("an edge comes", DO(connectInput(kB)), false);
        far("an edge is crossed out", DO(m_Node->input(kA)->setBypassed(true)), false);
        far("an edge is dotted", DO(m_Node->input(kA)->setTags({QStringLiteral("_dotted")})), true);
        far("a node is deleted", DO(m_Node->destroy(), s.settle()), false);
        far("a node comes above one of its size", DO(coverOwnNode()), false);
        far("an item comes", DO(addRect(nullptr)), false);
        far("an item goes", DO(m_Scene.removeItem(s.m_Rect.get())), false);
        far("an item is deleted as it moves", DO(deleteMovingRect()), false);
        far("an item gets an effect", DO(m_Rect->setGraphicsEffect(new QGraphicsBlurEffect)),
            false);
        far("a frame moves", DO(m_Frame->moveBy(20, 20)), true);
        far("the view scrolls", DO(scroll(13, 0)), true);
        far("it scrolls and a node moves", DO(scroll(0, -9), s.m_Source->moveBy(7, 3)), true);
        far("the view zooms", DO(m_View.scale(0.9, 0.9)), false);
        far("a node moves while the view is near",
            DO(m_View.scale(5, 5), s.settle(), s.m_Node->moveBy(40, 40), s.settle(),
                s.m_View.scale(0.2, 0.2)),
            false);
        far("the view is resized", DO(m_View.resize(380, 210)), false);
        far("the style changes", DO(m_Style.setSelectedNodeColor(Qt::red)), false);
        far("another scene is shown", DO(lookElsewhere()), true);
    }
    void screenIsWhatAFullPaintShows()
    {
        QFETCH(const bool, isFar);
        QFETCH(const Change, before);
        QFETCH(const Change, change);
        Stage stage(isFar);
        before(stage);
        stage.settle();
        const QImage old = stage.picture();
        const int paints = stage.m_Witness->m_Paints;
        change(stage);
        if (isFar)
            stage.m_View.viewport()->repaint(); // before the scene tells what has changed
        stage.settle();
        const bool isLocal = isFar ? stage.m_Witness->m_Paints == paints
                                   : stage.m_View.m_Painted != stage.m_View.viewport()->rect();
        const QImage kept = stage.picture();
        const QImage whole = stage.wholePicture();
        QVERIFY(difference(kept, whole) <= (isFar ? 1 : kRounding));
        QVERIFY2(difference(old, whole) > 20, "nothing has changed on the screen");
        QTEST(isLocal, "isLocal");
        QCOMPARE(stage.m_View.viewportUpdateMode(), QGraphicsView::FullViewportUpdate);
    }

    void viewThatShowsMore_isPaintedWhole()
    {
        Stage stage(false);
        stage.m_View.m_PaintsOnlyScene = false;
        for (const Change& change : {DO(scroll(7, -3)), DO(m_Node->moveBy(9, 4))}) {
            stage.m_View.m_Painted = QRegion();
            change(stage);
            stage.settle();
            QCOMPARE(stage.m_View.m_Painted, QRegion(stage.m_View.viewport()->rect()));
        }
    }

    /// The framework keeps for an item out of sight that nothing of it is shown, also when it leaves its scene.
    void itemsThatMovedOutOfSight_areShownWhenTheyEnter()
    {
        Stage stage(false);
        stage.m_View.setViewportUpdateMode(QGraphicsView::MinimalViewportUpdate);
        stage.m_View.setMinimapVisible(false);
        stage.settle();
        const QImage shown = stage.picture();
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
            QCOMPARE(qMax(difference(shown, stage.picture()), kRounding), kRounding);
        }
    }

    /// A second view on the scene whose mode the host has chosen keeps it, and a view may go while the
    /// scene tells its changes.
    void otherViews_areLeftAlone()
    {
        Stage stage(false);
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
        QVERIFY(stage.m_View.m_Painted != stage.m_View.viewport()->rect());
        QCOMPARE(stage.m_View.viewportUpdateMode(), QGraphicsView::FullViewportUpdate);
    }

    void windowThatBecomesActiveOrNot_repaintsNothing()
    {
        for (const bool isFar : {false, true}) {
            Stage stage(isFar);
            QVERIFY(stage.m_Scene.isActive());
            for (const auto type : {QEvent::WindowDeactivate, QEvent::WindowActivate}) {
                stage.m_View.m_Painted = QRegion();
                QEvent event(type);
                QCoreApplication::sendEvent(&stage.m_Scene, &event);
                stage.settle();
                QCOMPARE(stage.m_View.m_Painted, QRegion());
            }
        }
    }

    /// Where solid things overlap far away, the one on top is the one that the framework puts there.
    void stacking_data()
    {
        const TestTable<Change> row("arrange");
        row("in order of entry", DO(m_Rect->setZValue(0)));
        row("another item above", DO(m_Rect->setZValue(1)));
        row("another item below", DO(m_Rect->setZValue(-1)));
        row("another item stacked before", DO(m_Rect->stackBefore(s.m_Source)));
        row("a node stacked before", DO(m_Node->stackBefore(s.m_Source)));
        row("a node raised", DO(m_Source->setZValue(3)));
        row("an item between nodes", DO(m_Scene.removeItem(s.m_Node), s.m_Scene.addItem(s.m_Node)));
    }
    void stacking()
    {
        QFETCH(Change, arrange);
        Stage stage;
        stage.m_Node->setPos(stage.m_Source->pos() + QPointF(60, 4));
        stage.m_Rect->setPos(stage.m_Source->pos() + QPointF(230, -290));
        stage.paintRed(stage.m_Source);
        arrange(stage);
        const QImage far = stage.wholePicture();
        const QImage reference = stage.reference();
        for (const QPointF& offset : {QPointF(30, 10), QPointF(75, 12), QPointF(90, 40)}) {
            const QColor seen = stage.seenAt(far, stage.m_Source->scenePos() + offset);
            const QColor meant = stage.seenAt(reference, stage.m_Source->scenePos() + offset);
            QVERIFY(std::abs(seen.red() - meant.red()) < 24);
            QVERIFY(std::abs(seen.green() - meant.green()) < 24);
        }
    }

    /// A subclass paints itself at every scale, unless it says that it need not; a picture is kept of what
    /// several nodes look like.
    void subclassesAreAsked()
    {
        Stage stage;
        OwnNode* const quiet = stage.addQuietNodes(900);
        const QImage image = stage.wholePicture();
        QCOMPARE(
            stage.seenAt(image, stage.m_Own->sceneBoundingRect().center()), QColor(Qt::magenta));
        const int quietPaints = quiet->m_Paints;
        const int ownPaints = stage.m_Own->m_Paints;
        stage.wholePicture();
        QCOMPARE(quiet->m_Paints, quietPaints);
        QVERIFY(stage.m_Own->m_Paints > ownPaints);

        class Derived : public OrvNgExtendedNode
        {
            using OrvNgExtendedNode::OrvNgExtendedNode;
        };
        QVERIFY(stage.m_Source->allowsFarPicture() && !Derived(nullptr).allowsFarPicture());
    }

    /// A picture for somebody else shows the scene as it is, whatever has not been told yet.
    void picturesForOthersAreUpToDate()
    {
        Stage stage;
        stage.m_Node->moveBy(33, 61);
        const QImage atOnce = stage.wholePicture();
        stage.settle();
        QVERIFY(difference(atOnce, stage.picture()) <= 1);
    }

    /// What is larger than the coordinates of pixels is cut off at the view.
    void hugeItems()
    {
        Stage stage;
        stage.m_Rect->setRect(-1e12, -1e12, 2e12, 2e12);
        stage.m_Rect->setZValue(-1e3);
        stage.m_Node->setPos(1e8, 3e7);
        const QImage far = stage.wholePicture();
        const QPointF free(800, 500);
        QCOMPARE(stage.seenAt(far, free), QColor(Qt::green));
        const QPointF end = stage.m_Source->mapToScene(stage.m_Source->boundingRect().center());
        int crossed = 0; // by the edge to the node that is nowhere near
        for (double x = end.x() + 200; x < 1500; x += 5) {
            for (double y = -200; y < 700; y += 5)
                crossed += stage.seenAt(far, {x, y}) != QColor(Qt::green);
        }
        QVERIFY(crossed > 20);
    }

    /// At the threshold the view changes over, and above it nothing differs from the framework's picture.
    void nearByTheFrameworkPaints()
    {
        Stage stage;
        const auto showAt = [&stage](double scale) {
            stage.m_View.setTransform(QTransform::fromScale(scale, scale));
            stage.m_View.centerViewOn(
                QPointF(303, 152), false); // no line of the grid at the border
        };
        for (const double scale : {0.36, 1.0}) {
            showAt(scale); // the framework itself clips differently
            QVERIFY(difference(stage.wholePicture(), stage.reference()) <= 4);
        }
        const OwnNode* const quiet = stage.addQuietNodes(250);
        for (const double scale : {0.36, 0.34}) {
            showAt(scale);
            const int paints = quiet->m_Paints;
            stage.wholePicture();
            QCOMPARE(quiet->m_Paints > paints, scale > 0.35);
        }
    }
};

QTEST_MAIN(tst_OrvNgPainting)
#include "tst_OrvNgPainting.moc"
