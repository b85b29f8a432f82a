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
#include <QtTest>

namespace {

template <typename Item> Item* child(const QGraphicsItem* parent)
{
    const QList<QGraphicsItem*> items = parent->childItems();
    for (QGraphicsItem* item : items) {
        if (auto* found = dynamic_cast<Item*>(item))
            return found;
    }
    return nullptr;
}

} // namespace

/// Two boxes of 100 x 40 in a scene, the destination straight below the source, one edge between them.
class tst_OrvNgEdge : public QObject
{
    Q_OBJECT

    static QString q(const char* text) { return QString::fromLatin1(text); }

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

    void straightEdge_stopsUnderTheArrowAndIsHitOnBoth()
    {
        const QPainterPath path = m_Edge->mainEdge()->path();
        // From the middle of the source's lower side to 11.25 before the dest's upper side.
        QCOMPARE(path.pointAtPercent(0.0), QPointF(50, 40));
        QCOMPARE(path.currentPosition(), QPointF(50, 300 - 11.25));
        QVERIFY(m_Edge->shape().contains(QPointF(50, 100)));
        QVERIFY(!m_Edge->shape().contains(QPointF(53, 100)));
        QVERIFY(m_Edge->shape().contains(QPointF(56, 286.5)));
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

    void tags_decideWhetherTheEdgeShows_data()
    {
        const TestTable<QSet<QString>, bool, bool> row("tags", "connected", "free");
        row("none", QSet<QString>(), true, true);
        row("hidden", QSet<QString>{q("_hidden")}, false, false);
        row("if connected", QSet<QString>{q("_showIfConnected")}, true, false);
        row("both", QSet<QString>{q("_hidden"), q("_showIfConnected")}, true, false);
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

    void approachPoint_drawsATailWithoutACross()
    {
        m_Dest->setInputConnectionPositions({{q("in"), {QPoint(0, -20), QPoint(0, -60)}}});
        m_Edge->setBypassed(true);
        QVERIFY(child<QGraphicsLineItem>(m_Edge)->isVisible());
        m_Edge->setSourceNode(nullptr, QString());
        QVERIFY(m_Edge->isVisible() && !child<QGraphicsLineItem>(m_Edge)->isVisible());
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
    }

    void label_showsThePrettyText()
    {
        m_Dest->setInputConnectionPrettyNames({{q("in"), q("Albedo")}});
        auto* label = child<OrvNgLodTextItem>(m_Edge);
        QCOMPARE(label->text(), q("Albedo"));
        QCOMPARE(label->sceneBoundingRect().center(), QPointF(50, 170));
        m_Dest->setInputConnectionTextPositions({{q("in"), 0.25F}});
        QCOMPARE(label->sceneBoundingRect().center(), QPointF(50, 105));
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
        QVERIFY(marker->isVisible() && !label->isVisible());
        m_Edge->switchToDotableMode(false);
        QVERIFY(!marker->isVisible() && label->isVisible());

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
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, viewPos);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.constFirst().at(0).value<OrvNgEdge*>(), m_Edge);
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

private:
    QGraphicsScene* m_Scene = nullptr;
    TestNode* m_Source = nullptr;
    TestNode* m_Dest = nullptr;
    OrvNgEdge* m_Edge = nullptr;
};

QTEST_MAIN(tst_OrvNgEdge)
#include "tst_OrvNgEdge.moc"
