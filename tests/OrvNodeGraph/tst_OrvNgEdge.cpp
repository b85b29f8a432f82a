#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/TestNode.h"

#include <QGraphicsPathItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPen>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

QString q(const char* text)
{
    return QString::fromLatin1(text);
}

template <typename Item> Item* child(const QGraphicsItem* parent)
{
    const QList<QGraphicsItem*> items = parent->childItems();
    for (QGraphicsItem* item : items) {
        if (auto* found = dynamic_cast<Item*>(item))
            return found;
    }
    return nullptr;
}

int lineCount(const QGraphicsItem* parent)
{
    int count = 0;
    const QList<QGraphicsItem*> items = parent->childItems();
    for (QGraphicsItem* item : items)
        count += dynamic_cast<QGraphicsLineItem*>(item) && item->isVisible() ? 1 : 0;
    return count;
}

} // namespace

/// Two boxes of 100 x 40 in a scene, the destination straight below the source, one edge between them.
class tst_OrvNgEdge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void straightEdge_stopsUnderTheArrow();
    void coincidingEnds_giveAPointWithoutRotation();
    void movedNode_takesTheEdgeAlong();
    void unchangedEnds_keepThePath();
    void changedFraction_movesOnlyTheLabel();
    void overlappingNodes_keepTheirDirection();
    void hitShape_coversPathAndArrow();

    void pens_followTheState_data();
    void pens_followTheState();
    void bypass_crossesOutConnectedEdgesOnly();
    void tags_decideWhetherTheEdgeShows_data();
    void tags_decideWhetherTheEdgeShows();
    void freeInput_hasNoChildrenUntilAsked();
    void approachPoint_drawsATail();
    void stub_hidesWhileItsOutputIsConnected();

    void label_showsThePrettyText();
    void dotableMode_swapsLabelAndMarker();
    void markerClick_tellsTheSourceNode();

    void setSourceNode_keepsBothListsInStep();
    void setters_areSilentAndDetachIsNot();
    void lentEdge_comesHome();
    void carriedEdge_followsTheCursorAndGoesBack_data();
    void carriedEdge_followsTheCursorAndGoesBack();
    void temporaryEdge_diesWithTheDrop();
    void destroyedOrDeletedEdge_leavesTheLists_data();
    void destroyedOrDeletedEdge_leavesTheLists();

private:
    QGraphicsScene* m_Scene = nullptr;
    TestNode* m_Source = nullptr;
    TestNode* m_Dest = nullptr;
    OrvNgEdge* m_Edge = nullptr;
};

void tst_OrvNgEdge::initTestCase()
{
    QCoreApplication::setOrganizationName(q("OrvTest"));
}

void tst_OrvNgEdge::init()
{
    m_Scene = new QGraphicsScene;
    m_Source = new TestNode(q("source"));
    m_Dest = new TestNode(q("dest"));
    m_Scene->addItem(m_Source);
    m_Scene->addItem(m_Dest);
    m_Dest->setPos(0, 300);
    m_Dest->createInput(q("in"), false, {});
    m_Source->createOutputPoint(q("out"), false);
    m_Edge = m_Dest->input(q("in"));
    m_Edge->setSourceNode(m_Source, q("out"));
}

void tst_OrvNgEdge::cleanup()
{
    delete m_Scene;
    flushEvents();
}

void tst_OrvNgEdge::straightEdge_stopsUnderTheArrow()
{
    const QPainterPath path = m_Edge->mainEdge()->path();
    // From the middle of the source's lower side to 11.25 before the dest's upper side.
    QCOMPARE(path.pointAtPercent(0.0), QPointF(50, 40));
    QCOMPARE(path.currentPosition(), QPointF(50, 300 - 11.25));
    const auto* arrow = child<QGraphicsPolygonItem>(m_Edge);
    QCOMPARE(arrow->pos(), QPointF(50, 300));
    QCOMPARE(arrow->mapToScene(QPointF(-15, 0)), QPointF(50, 285));
    QCOMPARE(arrow->polygon(), QPolygonF({{-15, 7.5}, {-15, -7.5}, {0, 0}}));
    QCOMPARE(m_Edge->zValue(), -1.0);
}

void tst_OrvNgEdge::coincidingEnds_giveAPointWithoutRotation()
{
    m_Edge->adjust(QPointF(7, 9), QPointF(7, 9), 0.5F);
    QCOMPARE(m_Edge->mainEdge()->path().currentPosition(), QPointF(7, 9));
    QCOMPARE(m_Edge->mainEdge()->path().length(), 0.0);
    const auto* arrow = child<QGraphicsPolygonItem>(m_Edge);
    QCOMPARE(arrow->pos(), QPointF(7, 9));
    QCOMPARE(arrow->rotation(), 0.0);
}

void tst_OrvNgEdge::movedNode_takesTheEdgeAlong()
{
    m_Dest->setPos(200, 300);
    const QPainterPath path = m_Edge->mainEdge()->path();
    const auto* arrow = child<QGraphicsPolygonItem>(m_Edge);
    // The line between the centres (50, 20) and (250, 320) meets the upper side of the dest at y = 300.
    const double tipX = 50 + 200.0 * 280 / 300;
    QVERIFY(QLineF(arrow->pos(), QPointF(tipX, 300)).length() < 1e-9);
    const QLineF rest(path.currentPosition(), arrow->pos());
    QVERIFY(std::abs(rest.length() - 11.25) < 1e-9);
    QVERIFY(std::abs(rest.angle() - QLineF(0, 0, 200, 300).angle()) < 1e-9);
    QVERIFY(std::abs(std::remainder(arrow->rotation() + rest.angle(), 360.0)) < 1e-9);
}

void tst_OrvNgEdge::unchangedEnds_keepThePath()
{
    QGraphicsPathItem* line = m_Edge->mainEdge();
    QPainterPath mark;
    mark.addRect(1, 2, 3, 4);
    line->setPath(mark);
    m_Edge->adjust();
    m_Source->reAdjustEdges();
    m_Edge->adjust(QPointF(std::numeric_limits<double>::quiet_NaN(), 0), QPointF(5, 5), 0.5F);
    QCOMPARE(line->path(), mark);
    m_Source->moveBy(1, 0);
    QVERIFY(line->path() != mark);
}

void tst_OrvNgEdge::changedFraction_movesOnlyTheLabel()
{
    const auto* label = child<OrvNgLodTextItem>(m_Edge);
    QVERIFY(label);
    QGraphicsPathItem* line = m_Edge->mainEdge();
    QPainterPath mark;
    mark.addRect(1, 2, 3, 4);
    line->setPath(mark);
    QCOMPARE(label->sceneBoundingRect().center(), QPointF(50, 170));
    m_Dest->setInputConnectionTextPositions({{q("in"), 0.25F}});
    QCOMPARE(label->sceneBoundingRect().center(), QPointF(50, 40 + 260 * 0.25));
    QCOMPARE(line->path(), mark);
}

void tst_OrvNgEdge::overlappingNodes_keepTheirDirection()
{
    m_Dest->setPos(0, 10);
    const QPainterPath path = m_Edge->mainEdge()->path();
    QCOMPARE(path.pointAtPercent(0.0), QPointF(50, 20));
    QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->pos(), QPointF(50, 30));
}

void tst_OrvNgEdge::hitShape_coversPathAndArrow()
{
    QVERIFY(m_Edge->shape().contains(QPointF(50, 100)));
    QVERIFY(!m_Edge->shape().contains(QPointF(53, 100)));
    QVERIFY(m_Edge->shape().contains(QPointF(56, 286.5)));
    QVERIFY(m_Edge->boundingRect().contains(m_Edge->shape().boundingRect()));
    QVERIFY(m_Scene->items(QPointF(50, 100)).contains(m_Edge));
    m_Dest->setPos(400, 300);
    QVERIFY(!m_Scene->items(QPointF(50, 200)).contains(m_Edge));
    const QRectF everywhere(-10000, -10000, 20000, 20000);
    m_Scene->removeItem(m_Edge);
    QVERIFY(!m_Scene->items(everywhere).contains(m_Edge));
    m_Scene->addItem(m_Edge);
}

void tst_OrvNgEdge::pens_followTheState_data()
{
    OrvNgStyle& style = OrvNgStyle::instance();
    QTest::addColumn<QStringList>("states");
    QTest::addColumn<QColor>("color");
    QTest::newRow("normal") << QStringList() << style.getEdgeColor();
    QTest::newRow("activated") << QStringList(q("activated")) << style.getActivatedEdgeColor();
    QTest::newRow("severed beats activated")
        << QStringList({q("activated"), q("severed")}) << style.getSeveredEdgeColor();
    QTest::newRow("debug without a colour is none")
        << QStringList(q("debug")) << style.getEdgeColor();
    QTest::newRow("debug beats severed")
        << QStringList({q("severed"), q("debug"), q("debugColor")}) << QColor(1, 200, 3);
}

void tst_OrvNgEdge::pens_followTheState()
{
    QFETCH(QStringList, states);
    QFETCH(QColor, color);
    for (const QString& state : qAsConst(states)) {
        if (state == q("activated"))
            m_Edge->setActivated(true);
        else if (state == q("severed"))
            m_Edge->setSevered(true);
        else if (state == q("debug"))
            m_Edge->setDebug(true);
        else
            m_Edge->setDebugColor(QColor(1, 200, 3));
    }
    QCOMPARE(m_Edge->mainEdge()->pen().color(), color);
    QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->brush().color(), color);
    // An insertion highlight hides the state's pen until it is undone.
    m_Edge->hightlightForNodeInsert();
    QCOMPARE(m_Edge->mainEdge()->pen(), OrvNgStyle::instance().getHighlightForNodeInsertPen());
    m_Edge->unHightlightForNodeInsert();
    QCOMPARE(m_Edge->mainEdge()->pen().color(), color);
}

void tst_OrvNgEdge::bypass_crossesOutConnectedEdgesOnly()
{
    QCOMPARE(lineCount(m_Edge), 0);
    m_Edge->setBypassed(true);
    QCOMPARE(lineCount(m_Edge), 2);
    const QGraphicsItem* line = child<QGraphicsLineItem>(m_Edge);
    QCOMPARE(line->pos(), QPointF(50, 170));
    m_Dest->setPos(0, 500);
    QCOMPARE(line->pos(), QPointF(50, 270));
    m_Edge->setSourceNode(nullptr, QString());
    QCOMPARE(lineCount(m_Edge), 0);
}

void tst_OrvNgEdge::tags_decideWhetherTheEdgeShows_data()
{
    QTest::addColumn<QSet<QString>>("tags");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("free");
    const QString hidden = q("_hidden");
    const QString ifConnected = q("_showIfConnected");
    QTest::newRow("none") << QSet<QString>() << true << true;
    QTest::newRow("hidden") << QSet<QString>{hidden} << false << false;
    QTest::newRow("if connected") << QSet<QString>{ifConnected} << true << false;
    QTest::newRow("hidden, if connected") << QSet<QString>{hidden, ifConnected} << true << false;
    QTest::newRow("unknown tag") << QSet<QString>{q("_Hidden")} << true << true;
}

void tst_OrvNgEdge::tags_decideWhetherTheEdgeShows()
{
    QFETCH(QSet<QString>, tags);
    m_Dest->setInputConnectionPositions({{q("in"), {QPoint(0, -20), QPoint(0, -45)}}});
    m_Dest->updateInputTags(q("in"), tags);
    QTEST(m_Edge->isVisible(), "connected");
    m_Edge->setSourceNode(nullptr, QString());
    QTEST(m_Edge->isVisible(), "free");
}

void tst_OrvNgEdge::freeInput_hasNoChildrenUntilAsked()
{
    m_Dest->createInput(q("free"), false, {});
    OrvNgEdge* edge = m_Dest->input(q("free"));
    QVERIFY(!edge->isVisible());
    QVERIFY(edge->childItems().isEmpty());
    QVERIFY(edge->boundingRect().isEmpty());
    QVERIFY(edge->mainEdge());
    QCOMPARE(edge->childItems().size(), 2);
    QVERIFY(!edge->isVisible());
}

void tst_OrvNgEdge::approachPoint_drawsATail()
{
    m_Dest->setInputConnectionPositions({{q("in"), {QPoint(0, -20), QPoint(0, -60)}}});
    m_Edge->setSourceNode(nullptr, QString());
    QVERIFY(m_Edge->isVisible());
    QCOMPARE(m_Edge->mainEdge()->path().pointAtPercent(0.0), QPointF(50, 260));
    QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->pos(), QPointF(50, 300));
}

void tst_OrvNgEdge::stub_hidesWhileItsOutputIsConnected()
{
    m_Source->setOutputConnectionPositions({{q("out"), {QPoint(0, 20), QPoint(0, 50)}}});
    m_Source->addOutputEdge(q("out"));
    OrvNgEdge* stub = m_Source->outputs().constLast();
    QVERIFY(!stub->isVisible());
    m_Edge->setSourceNode(nullptr, QString());
    QVERIFY(stub->isVisible());
    m_Edge->setSourceNode(m_Source, q("out"));
    QVERIFY(!stub->isVisible());
    m_Edge->destroy();
    QVERIFY(stub->isVisible());
}

void tst_OrvNgEdge::label_showsThePrettyText()
{
    m_Dest->setInputConnectionPrettyNames({{q("in"), q("Albedo")}});
    auto* label = child<OrvNgLodTextItem>(m_Edge);
    QCOMPARE(label->text(), q("Albedo"));
    QVERIFY(label->isVisible());
    m_Edge->setTextVisible(false);
    QVERIFY(!label->isVisible());
    m_Edge->setTextVisible(true);
    m_Edge->setText(q("in"), QString());
    QVERIFY(!label->isVisible());
}

void tst_OrvNgEdge::dotableMode_swapsLabelAndMarker()
{
    m_Edge->switchToDotableMode(true);
    auto* marker = child<OrvNgDotableMarkerItem>(m_Edge);
    const auto* label = child<OrvNgLodTextItem>(m_Edge);
    QVERIFY(marker->isVisible());
    QVERIFY(!label->isVisible());
    QCOMPARE(marker->pos(), QPointF(50, 170));
    QVERIFY(
        std::abs(std::remainder(marker->rotation() - 90.0, 360.0)) < 1e-9); // the edge points down
    m_Edge->switchToDotableMode(false);
    QVERIFY(!marker->isVisible());
    QVERIFY(label->isVisible());

    // An edge that loses an end loses its marker; one of a system node never gets it.
    m_Edge->switchToDotableMode(true);
    m_Edge->setSourceNode(nullptr, QString());
    QVERIFY(!marker->isVisible());
    m_Edge->setSourceNode(m_Source, q("out"));
    QVERIFY(!marker->isVisible());
    m_Dest->setIsSystemShaderNode(true);
    m_Edge->switchToDotableMode(true);
    m_Dest->setIsSystemShaderNode(false);
    QVERIFY(!marker->isVisible());
}

void tst_OrvNgEdge::markerClick_tellsTheSourceNode()
{
    QGraphicsView view(m_Scene);
    view.resize(600, 600);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    m_Edge->switchToDotableMode(true);
    QSignalSpy spy(m_Source, &OrvNgNode::clickedOnDotableMarkerOnEdge);
    const QPoint viewPos = view.mapFromScene(QPointF(50, 170));
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, viewPos);
    QCOMPARE(spy.count(), 0);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, viewPos);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.constFirst().at(0).value<OrvNgEdge*>(), m_Edge);
}

void tst_OrvNgEdge::setSourceNode_keepsBothListsInStep()
{
    TestNode other;
    m_Edge->setSourceNode(&other, q("a"));
    QCOMPARE(m_Source->outputCount(), 0);
    QCOMPARE(other.outputs(), QList<OrvNgEdge*>({m_Edge}));
    m_Edge->setSourceNode(&other, q("b"));
    QCOMPARE(other.outputCount(), 1);
    QCOMPARE(m_Edge->sourceOutputPoint(), q("b"));
    m_Edge->setSourceNode(m_Dest, q("self"));
    QCOMPARE(other.outputCount(), 0);
    QVERIFY(m_Dest->containsEdge(m_Edge));

    TestNode third;
    m_Edge->setDestNode(&third);
    QCOMPARE(m_Dest->inputCount(), 0);
    QCOMPARE(third.input(q("in")), m_Edge);
    m_Edge->destroy();
}

void tst_OrvNgEdge::setters_areSilentAndDetachIsNot()
{
    QSignalSpy spy(m_Dest, &OrvNgNode::inputSourceChanged);
    m_Edge->setSourceNode(nullptr, QString());
    m_Edge->setSourceNode(m_Source, q("out"));
    m_Edge->setSourceOutputPoint(q("out2"));
    QCOMPARE(spy.count(), 0);
    m_Edge->detachFromSourceNode();
    m_Edge->detachFromSourceNode();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.constFirst().at(0).value<OrvNgNode*>(), nullptr);
    QCOMPARE(spy.constFirst().at(2).toString(), q("in"));
    QVERIFY(!m_Edge->sourceNode());
}

void tst_OrvNgEdge::lentEdge_comesHome()
{
    m_Edge->detachFromDestNode();
    QVERIFY(!m_Edge->destNode());
    QCOMPARE(m_Dest->input(q("in")), m_Edge);
    QVERIFY(m_Dest->doesEdgeBelongToThisNode(m_Edge));
    m_Edge->grabEdge(QPointF(50, 200), false, false);
    QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->pos(), QPointF(50, 200));
    // The source may die meanwhile: the edge goes home free.
    m_Source->destroy();
    m_Edge->releaseMouse(QPoint(), QPointF(50, 200), true);
    QCOMPARE(m_Edge->destNode(), m_Dest);
    QVERIFY(!m_Edge->sourceNode());
    QVERIFY(!m_Edge->isDragging());
}

void tst_OrvNgEdge::carriedEdge_followsTheCursorAndGoesBack_data()
{
    QTest::addColumn<bool>("isOutput");
    QTest::addColumn<QPointF>("pathStart");
    QTest::addColumn<QPointF>("arrowTip");
    QTest::addColumn<double>("labelAt");
    // Centre of the source (50, 20), of the dest (50, 320); the cursor rests at (50, 150).
    QTest::newRow("the source end") << false << QPointF(50, 150) << QPointF(50, 300) << 0.1;
    QTest::newRow("the dest end") << true << QPointF(50, 40) << QPointF(50, 150) << 0.9;
}

void tst_OrvNgEdge::carriedEdge_followsTheCursorAndGoesBack()
{
    QFETCH(bool, isOutput);
    QFETCH(QPointF, pathStart);
    QFETCH(QPointF, arrowTip);
    QFETCH(double, labelAt);
    m_Edge->grabEdge(QPointF(50, 150), true, isOutput);
    QVERIFY(m_Edge->isGrabbedFromPort());
    QCOMPARE(m_Edge->isGrabbed(), isOutput);
    QCOMPARE(m_Edge->mainEdge()->path().pointAtPercent(0.0), pathStart);
    QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->pos(), arrowTip);
    const QPointF label = child<OrvNgLodTextItem>(m_Edge)->sceneBoundingRect().center();
    QCOMPARE(label, QLineF(pathStart, arrowTip).pointAt(double(float(labelAt))));
    const auto* circle = child<QGraphicsEllipseItem>(m_Edge);
    QCOMPARE(circle && circle->isVisible(), !isOutput);

    m_Dest->moveBy(0, 50);
    m_Edge->releaseMouse(QPoint(), QPointF(), true);
    QCOMPARE(m_Edge->mainEdge()->path().pointAtPercent(0.0), QPointF(50, 40));
    QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->pos(), QPointF(50, 350));
    QCOMPARE(m_Edge->sourceNode(), m_Source);
    QVERIFY(!m_Edge->isGrabbedFromPort());
}

void tst_OrvNgEdge::temporaryEdge_diesWithTheDrop()
{
    DebugRecorder reports;
    const QPointer<OrvNgEdge> edge(m_Source->createTemporaryOutputEdge(q("out")));
    edge->grabEdge(QPointF(300, 300), true, true);
    QVERIFY(edge->isVisible());
    edge->releaseMouse(QPoint(), QPointF(300, 300), true);
    QVERIFY(!m_Source->temporaryOutputEdge());
    flushEvents();
    QVERIFY(!edge);
    QCOMPARE(reports.reports().size(), 1);
    QCOMPARE(m_Source->outputCount(), 1);
}

void tst_OrvNgEdge::destroyedOrDeletedEdge_leavesTheLists_data()
{
    QTest::addColumn<bool>("deleteNow");
    QTest::newRow("destroy") << false;
    QTest::newRow("delete") << true;
}

void tst_OrvNgEdge::destroyedOrDeletedEdge_leavesTheLists()
{
    QFETCH(bool, deleteNow);
    const QPointer<OrvNgEdge> edge(m_Edge);
    if (deleteNow) {
        delete m_Edge;
    } else {
        m_Edge->destroy();
        QVERIFY(edge);
        edge->destroy();
        edge->setSourceNode(m_Source, q("out")); // too late
    }
    QCOMPARE(m_Dest->inputCount(), 0);
    QCOMPARE(m_Source->outputCount(), 0);
    flushEvents();
    QVERIFY(!edge);
    QCOMPARE(m_Scene->items().size(), 4);
}

QTEST_MAIN(tst_OrvNgEdge)
#include "tst_OrvNgEdge.moc"
