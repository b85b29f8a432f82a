#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "support/TestNode.h"
#include "support/TestTable.h"

#include <QGraphicsPathItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QSignalSpy>
#include <QtNumeric>
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
    void init()
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

    void cleanup()
    {
        delete m_Scene;
        flushEvents();
    }

    void straightEdge_stopsUnderTheArrow()
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

    void unchangedEnds_keepThePath()
    {
        QGraphicsPathItem* line = m_Edge->mainEdge();
        QPainterPath mark;
        mark.addRect(1, 2, 3, 4);
        line->setPath(mark);
        m_Edge->adjust();
        m_Source->reAdjustEdges();
        QCOMPARE(line->path(), mark);
        m_Source->moveBy(1, 0);
        QVERIFY(line->path() != mark);
    }

    void hitShape_coversPathAndArrow()
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

    void bypass_crossesOutConnectedEdgesOnly()
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

    void tags_decideWhetherTheEdgeShows_data()
    {
        const TestTable<QSet<QString>, bool, bool> row("tags", "connected", "free");
        const QString hidden = q("_hidden");
        const QString ifConnected = q("_showIfConnected");
        row("none", QSet<QString>(), true, true);
        row("hidden", QSet<QString>{hidden}, false, false);
        row("if connected", QSet<QString>{ifConnected}, true, false);
        row("hidden, if connected", QSet<QString>{hidden, ifConnected}, true, false);
        row("unknown tag", QSet<QString>{q("_Hidden")}, true, true);
    }

    void tags_decideWhetherTheEdgeShows()
    {
        QFETCH(QSet<QString>, tags);
        m_Dest->setInputConnectionPositions({{q("in"), {QPoint(0, -20), QPoint(0, -45)}}});
        m_Dest->updateInputTags(q("in"), tags);
        QTEST(m_Edge->isVisible(), "connected");
        m_Edge->setSourceNode(nullptr, QString());
        QTEST(m_Edge->isVisible(), "free");
    }

    void approachPoint_drawsATail()
    {
        m_Dest->setInputConnectionPositions({{q("in"), {QPoint(0, -20), QPoint(0, -60)}}});
        m_Edge->setSourceNode(nullptr, QString());
        QVERIFY(m_Edge->isVisible());
        QCOMPARE(m_Edge->mainEdge()->path().pointAtPercent(0.0), QPointF(50, 260));
        QCOMPARE(child<QGraphicsPolygonItem>(m_Edge)->pos(), QPointF(50, 300));
    }

    void stub_hidesWhileItsOutputIsConnected()
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

    void label_showsThePrettyText()
    {
        m_Dest->setInputConnectionPrettyNames({{q("in"), q("Albedo")}});
        auto* label = child<OrvNgLodTextItem>(m_Edge);
        QCOMPARE(label->text(), q("Albedo"));
        QCOMPARE(label->sceneBoundingRect().center(), QPointF(50, 170));
        QVERIFY(label->isVisible());
        // Between (50, 40) and (50, 300), from the source on; halfway for what is no number.
        const QPair<double, double> places[] = {{0.25, 105}, {qQNaN(), 170}};
        for (const auto& place : places) {
            m_Dest->setInputConnectionTextPositions({{q("in"), float(place.first)}});
            QCOMPARE(label->sceneBoundingRect().center(), QPointF(50, place.second));
        }
        m_Edge->setTextVisible(false);
        QVERIFY(!label->isVisible());
        m_Edge->setTextVisible(true);
        m_Edge->setText(q("in"), QString());
        QVERIFY(!label->isVisible());
    }

    void dotableMode_swapsLabelAndMarker()
    {
        m_Edge->switchToDotableMode(true);
        auto* marker = child<OrvNgDotableMarkerItem>(m_Edge);
        const auto* label = child<OrvNgLodTextItem>(m_Edge);
        QVERIFY(marker->isVisible());
        QVERIFY(!label->isVisible());
        QCOMPARE(marker->pos(), QPointF(50, 170));
        QVERIFY(std::abs(std::remainder(marker->rotation() - 90.0, 360.0))
            < 1e-9); // the edge points down
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

    void markerClick_tellsTheSourceNode()
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

    void setSourceNode_keepsBothListsInStep()
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

    void setters_areSilentAndDetachIsNot()
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

    void destroyedOrDeletedEdge_leavesTheLists()
    {
        m_Dest->createInput(q("in2"), false, {});
        const QPointer<OrvNgEdge> second(m_Dest->input(q("in2")));
        second->setSourceNode(m_Source, q("out"));
        delete m_Edge;
        QCOMPARE(m_Dest->inputCount(), 1);
        second->destroy();
        QVERIFY(second);
        second->destroy();
        second->setSourceNode(m_Source, q("out")); // too late
        QCOMPARE(m_Dest->inputCount(), 0);
        QCOMPARE(m_Source->outputCount(), 0);
        flushEvents();
        QVERIFY(!second);
        QCOMPARE(m_Scene->items().size(), 4);
    }

private:
    QGraphicsScene* m_Scene = nullptr;
    TestNode* m_Source = nullptr;
    TestNode* m_Dest = nullptr;
    OrvNgEdge* m_Edge = nullptr;
};

QTEST_MAIN(tst_OrvNgEdge)
#include "tst_OrvNgEdge.moc"
