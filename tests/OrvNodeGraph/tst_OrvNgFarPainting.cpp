#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"
#include "support/ScreenPicture.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include <QGraphicsBlurEffect>
#include <QGraphicsRectItem>
#include <QtTest>

#include <functional>
#include <utility>

namespace {

constexpr double kFar = 0.2;

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

/// Two connected nodes, a frame, a node that paints itself above a part of a rectangle and, in the far corner,
/// a witness that is asked whenever the picture there is made anew.
struct FarStage : ExtendedRig
{
    FarStage()
    {
        setMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
        connectInput(kA);
        m_Node->setCorrectColor();
        const QList<QPair<QGraphicsItem*, QPointF>> items{{m_Frame, {-300, -100}},
            {m_Rect, {160, 9}}, {m_Own, {100, 300}}, {m_Witness, {1500, 700}},
            {m_Selected, {0, 600}}};
        for (const auto& item : items) {
            m_Scene.addItem(item.first);
            item.first->setPos(item.second);
        }
        m_Rect->setBrush(Qt::green);
        m_Selected->setSelected(true);
        show(m_View);
        m_Source->update();
        settle(); // the scene tells what it kept to itself before anyone heard it
    }
    ~FarStage()
    {
        if (m_Rect && !m_Rect->scene())
            delete m_Rect;
    }
    void show(OrvNgView& view)
    {
        view.setScene(&m_Scene);
        view.show();
        view.init();
        view.setMinimapVisible(false);
        view.scale(kFar, kFar);
        view.centerViewOn(QPointF(800, 300), false);
        settle();
    }
    static void settle() { QTest::qWait(60); } // the view's bounds follow after 50 ms
    QImage picture() { return screenPicture(*m_View.viewport()); }
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
    void scroll(int x, int y)
    {
        m_View.horizontalScrollBar()->setValue(m_View.horizontalScrollBar()->value() + x);
        m_View.verticalScrollBar()->setValue(m_View.verticalScrollBar()->value() + y);
    }
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
    static void setColor(const QColor& color)
    {
        OrvNgStyle::instance().setSelectedNodeColor(color);
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
        delete std::exchange(m_Rect, nullptr);
    }
    void lookElsewhere()
    {
        auto* scene = new QGraphicsScene(&m_View);
        scene->addRect(0, 0, 900, 300, QPen(Qt::NoPen), Qt::yellow);
        m_View.setScene(scene);
    }
    void drag(OrvNgNode* node, const QPoint& way)
    {
        QCursor::setPos(m_View.mapToGlobal(m_View.rect().center())); // near the border it scrolls
        const QPoint from = m_View.mapFromScene(node->mapToScene(node->nodeShapeRect().center()));
        QTest::mousePress(m_View.viewport(), Qt::LeftButton, {}, from);
        for (const QPoint& pos : {from + way / 2, from + way}) {
            QMouseEvent move(QEvent::MouseMove, pos, m_View.viewport()->mapToGlobal(pos),
                Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_View.viewport(), &move);
        }
    }
    QColor seenAt(const QImage& image, const QPointF& scenePos)
    {
        return image.pixelColor(m_View.mapFromScene(scenePos) * image.devicePixelRatio());
    }

    OrvNgBackdropNode* m_Frame = new OrvNgBackdropNode(nullptr);
    QGraphicsRectItem* m_Rect = new QGraphicsRectItem(-200, 300, 200, 200);
    OwnNode* m_Own = new OwnNode(false);
    OwnNode* m_Witness = new OwnNode(false);
    Node* m_Selected = new Node(nullptr);
    TestView m_View;
};

using Change = std::function<void(FarStage&)>;
#define DO(...) Change([](FarStage& s) { s.__VA_ARGS__; })

} // namespace

Q_DECLARE_METATYPE(Change)

/// What the view shows below the level of detail at which it paints nodes and edges itself.
class tst_OrvNgFarPainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// After any change the kept picture is the one that would be painted anew. Of those that name their
    /// place only the surroundings are painted.
    void keptPictureFollows_data()
    {
        const TestTable<Change, bool> row("change", "isLocal");
        row("a node moves", DO(m_Node->moveBy(33, 61)), true);
        row("a node is dragged", DO(drag(s.m_Node, QPoint(9, 14)), s.settle()), true);
        row("a node is selected", DO(m_Node->setSelected(true)), true);
        row("a node is hovered", DO(m_Source->setHovered(true)), true);
        row("a node is recoloured", DO(paintRed(s.m_Node)), true);
        row("a port is hovered", DO(m_Node->inputPort(kB)->setMouseHovered(true)), true);
        row("a port is recoloured", DO(m_Node->inputPort(kB)->setSpecialPortColor(Qt::red)), true);
        row("a node is hidden", DO(m_Node->setVisible(false)), true);
        row("a node fades", DO(m_Node->setOpacity(0.4)), true);
        row("a node gets a child", DO(addRect(s.m_Node)), true);
        row("a node goes below a rectangle", DO(m_Own->setZValue(-5)), false);
        row("a node comes above an older item",
            DO(m_Rect->setPos(900, -200), s.m_Scene.removeItem(s.m_Node),
                s.m_Scene.addItem(s.m_Node), s.settle(), s.m_Node->setPos(720, 120)),
            false);
        row("a node joins another item", DO(m_Node->setParentItem(s.m_Rect)), false);
        row("an edge is freed", DO(m_Node->input(kA)->setSourceNode(nullptr, {})), true);
        row("an edge comes", DO(connectInput(kB)), false);
        row("an edge is crossed out", DO(m_Node->input(kA)->setBypassed(true)), false);
        row("an edge is dotted", DO(m_Node->input(kA)->setTags({QStringLiteral("_dotted")})), true);
        row("a node is deleted", DO(m_Node->destroy(), s.settle()), false);
        row("a node comes above one of its size", DO(coverOwnNode()), false);
        row("an item comes", DO(addRect(nullptr)), false);
        row("an item goes", DO(m_Scene.removeItem(s.m_Rect)), false);
        row("an item is deleted as it moves", DO(deleteMovingRect()), false);
        row("an item gets an effect", DO(m_Rect->setGraphicsEffect(new QGraphicsBlurEffect)),
            false);
        row("a frame moves", DO(m_Frame->moveBy(20, 20)), true);
        row("the view scrolls", DO(scroll(13, 0)), true);
        row("it scrolls and a node moves", DO(scroll(0, -9), s.m_Source->moveBy(7, 3)), true);
        row("the view zooms", DO(m_View.scale(0.9, 0.9)), false);
        row("a node moves while the view is near",
            DO(m_View.scale(5, 5), s.settle(), s.m_Node->moveBy(40, 40), s.settle(),
                s.m_View.scale(0.2, 0.2)),
            false);
        row("the view is resized", DO(m_View.resize(380, 210)), false);
        row("the style changes", DO(setColor(Qt::red)), false);
        row("another scene is shown", DO(lookElsewhere()), true);
    }
    void keptPictureFollows()
    {
        QFETCH(Change, change);
        QFETCH(bool, isLocal);
        FarStage stage;
        const QColor old = OrvNgStyle::instance().getSelectedNodeColor();
        const QImage before = stage.picture();
        const int paints = stage.m_Witness->m_Paints;
        change(stage);
        stage.m_View.viewport()->repaint(); // before the scene tells what has changed
        stage.settle();
        const bool isWitnessAsked = stage.m_Witness->m_Paints > paints;
        const QImage kept = stage.picture();
        const QImage whole = stage.wholePicture();
        QVERIFY(difference(kept, whole) <= 1);
        QVERIFY(difference(before, whole) > 20);
        QCOMPARE(isWitnessAsked, !isLocal);
        stage.setColor(old);
    }

    /// Where solid things overlap, the one on top is the one that the framework puts there.
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
        FarStage stage;
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
        FarStage stage;
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
        FarStage stage;
        stage.m_Node->moveBy(33, 61);
        const QImage atOnce = stage.wholePicture();
        stage.settle();
        QVERIFY(difference(atOnce, stage.picture()) <= 1);
    }

    /// What is larger than the coordinates of pixels is cut off at the view.
    void hugeItems()
    {
        FarStage stage;
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

    /// Two views show one scene alike, and one may leave it.
    void secondViewFollows()
    {
        FarStage stage;
        TestView second;
        stage.show(second);
        stage.m_Node->moveBy(50, 20);
        stage.settle();
        QVERIFY(difference(stage.picture(), screenPicture(*second.viewport())) <= 1);
        second.setScene(nullptr);
        stage.m_Node->moveBy(5, 2);
        stage.settle();
        QVERIFY(difference(stage.picture(), stage.wholePicture()) <= 1);
    }

    /// At the threshold the view changes over, and above it nothing differs from the framework's picture.
    void nearByTheFrameworkPaints()
    {
        FarStage stage;
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

QTEST_MAIN(tst_OrvNgFarPainting)
#include "tst_OrvNgFarPainting.moc"
