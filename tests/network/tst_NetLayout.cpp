#include "network/NetPlacement.h"
#include "support/TestTable.h"

#include <QMap>
#include <QRandomGenerator>
#include <QRectF>

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

struct Network
{
    QVector<NetLayoutNode> nodes;
    QVector<NetLayoutEdge> edges;
};

QVector<QRectF> arranged(const Network& network)
{
    const QVector<QPointF> corners = NetLayout::arrange(network.nodes, network.edges);
    QVector<QRectF> rects;
    for (int i = 0; i < corners.size(); ++i)
        rects.append({corners.at(i), network.nodes.at(i).size});
    return rects;
}

// Every edge leads from a lower to a higher number, so that the network has no cycle.
Network layered(int nodeCount, int edgeCount, quint32 seed)
{
    QRandomGenerator random(seed);
    Network network;
    for (int i = 0; i < nodeCount; ++i)
        network.nodes.append({QSizeF(random.bounded(24, 260), random.bounded(24, 900))});
    for (int i = 0; i < edgeCount; ++i) {
        const int dest = random.bounded(1, nodeCount);
        const int source = random.bounded(std::max(0, dest - 12), dest);
        const qreal height = network.nodes.at(dest).size.height();
        network.edges.append({source, dest, 10, random.bounded(height)});
    }
    return network;
}

} // namespace

Q_DECLARE_METATYPE(QVector<NetLayoutEdge>)

/// Properties that every layout must have, whatever Graphviz makes of the network; and how it meets the
/// positions in files.
class tst_NetLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boxes_keepTheirGapsAndTheOrderOfTheFlow_data()
    {
        const TestTable<int, int> row("nodes", "edges");
        row("no edges", 17, 0);
        row("sparse, many networks", 60, 30);
        row("dense", 40, 200);
        row("large", 500, 700);
    }

    void boxes_keepTheirGapsAndTheOrderOfTheFlow()
    {
        QFETCH(int, nodes);
        QFETCH(int, edges);
        const Network network = layered(nodes, edges, 7);
        const QVector<QRectF> rects = arranged(network);
        QCOMPARE(arranged(network), rects);
        QPointF least(1e9, 1e9);
        for (int i = 0; i < nodes; ++i) {
            const QPointF corner = rects.at(i).topLeft();
            QCOMPARE(corner, QPointF(corner.toPoint()));
            least = {std::min(least.x(), corner.x()), std::min(least.y(), corner.y())};
            for (int k = 0; k < i; ++k) // 24 apart, less what rounding takes
                QVERIFY(!rects.at(i).adjusted(-22, -22, 22, 22).intersects(rects.at(k)));
        }
        QCOMPARE(least, QPointF(0, 0));
        for (const NetLayoutEdge& edge : network.edges)
            QVERIFY(rects.at(edge.dest).left() - rects.at(edge.source).right() >= 69);
    }

    void cycle_isLaidOutWithOneEdgeBackwards()
    {
        // Entered in the middle.
        const Network network{
            QVector<NetLayoutNode>(4, {QSizeF(100, 40)}), {{2, 3}, {3, 1}, {1, 2}, {0, 3}}};
        const QVector<QRectF> rects = arranged(network);
        int backwards = 0;
        for (const NetLayoutEdge& edge : network.edges)
            backwards += rects.at(edge.dest).x() <= rects.at(edge.source).x() ? 1 : 0;
        QCOMPARE(backwards, 1);
    }

    void longEdges_meetNoBoxOnTheirWay()
    {
        Network network{QVector<NetLayoutNode>(7, {QSizeF(160, 97)}), {}};
        for (int i = 1; i < network.nodes.size(); ++i)
            network.edges.append({i - 1, i, 43, 61});
        const int chain = network.edges.size();
        network.edges += {{0, 6, 70, 90}, {1, 4, 80, 90}};
        const QVector<QRectF> rects = arranged(network);
        for (int i = chain; i < network.edges.size(); ++i) {
            // Level to the middle of the way, up or down there, level again.
            const NetLayoutEdge& edge = network.edges.at(i);
            const QPointF from = rects.at(edge.source).topRight() + QPointF(0, edge.sourceOffset);
            const QPointF to = rects.at(edge.dest).topLeft() + QPointF(0, edge.destOffset);
            const qreal middle = (from.x() + to.x()) / 2;
            for (const QRectF& rect : rects.mid(edge.source + 1, edge.dest - edge.source - 1)) {
                const qreal x = rect.center().x();
                QVERIFY(rect.left() >= middle || !rect.contains(x, from.y()));
                QVERIFY(rect.right() <= middle || !rect.contains(x, to.y()));
            }
        }
    }

    void sources_standInTheOrderOfThePorts()
    {
        // Eight sources for one tall box, listed in another order than its ports.
        Network network{{{QSizeF(200, 400)}}, {}};
        const QVector<int> ports{5, 2, 7, 0, 3, 6, 1, 4};
        for (const int port : ports) {
            network.edges.append({network.nodes.size(), 0, 20, 40.0 + 48 * port});
            network.nodes.append({QSizeF(120, 40)});
        }
        const QVector<QRectF> rects = arranged(network);
        QMap<qreal, int> fromTheTop;
        for (int i = 0; i < ports.size(); ++i)
            fromTheTop.insert(rects.at(i + 1).y(), ports.at(i));
        QCOMPARE(fromTheTop.values(), QList<int>({0, 1, 2, 3, 4, 5, 6, 7}));
    }

    void manyNetworks_makeATableInsteadOfATower()
    {
        Network network;
        for (int i = 0; i < 9; ++i) {
            network.nodes += {{QSizeF(150, 60)}, {QSizeF(180, 700)}};
            network.edges.append({2 * i, 2 * i + 1, 30, 40});
        }
        const QVector<QRectF> rects = arranged(network);
        const QRectF bounds
            = std::accumulate(rects.cbegin(), rects.cend(), QRectF(), std::bit_or<>());
        // Three rows of three: a tower would be 400 wide and 6,900 high.
        QVERIFY(bounds.width() > 1300 && bounds.height() < 2500);
        QCOMPARE(rects.at(3).y(), rects.at(1).y());
        QVERIFY(rects.at(3).x() > rects.at(1).x());
    }

    // Where boxes go whose file positions are in one unit or the other, or missing.

    void unit_followsTheSpan_data()
    {
        const TestTable<QVector<QPointF>, bool> row("positions", "pixels");
        QVector<QPointF> many;
        for (int i = 0; i < 200; ++i)
            many.append({i * 2.0, 0});
        row("one, far away", QVector<QPointF>{{-4000, 900}}, false);
        row("span of exactly 200", QVector<QPointF>{{-100, 0}, {100, 200}}, false);
        row("high", QVector<QPointF>{{0, -264}, {1, 118}, {2, 489}}, true);
        row("200 of them may span 398 units", many, false);
        row("199 of them may not", many.mid(1), true);
    }

    void unit_followsTheSpan()
    {
        QFETCH(QVector<QPointF>, positions);
        QFETCH(bool, pixels);
        QCOMPARE(NetPlacement::unitOf(positions) == NetPlacement::Unit::Pixel, pixels);
    }

    void positionedBoxes_stayWhereTheFileSays()
    {
        // The two overlap; that is the author's business.
        const QVector<NetPlacementItem> items{
            {QSizeF(200, 300), true, {-1.5, 2}}, {QSizeF(200, 300), true, {-1, 2}}};
        const QVector<NetLayoutEdge> edges{{1, 0}};
        QCOMPARE(NetPlacement::place(items, edges, NetPlacement::Unit::Node),
            (QVector<QPointF>{{-207, 232}, {-138, 232}}));
        QCOMPARE(NetPlacement::place(items, edges, NetPlacement::Unit::Pixel),
            (QVector<QPointF>{{-1.5, 2}, {-1, 2}}));
        QCOMPARE(NetPlacement::toFile(QRectF(-207, 232, 276, 58), NetPlacement::Unit::Node),
            QRectF(-1.5, 2, 2, 0.5));
    }

    void looseBoxes_standBesideThePositionedOnes_data()
    {
        // Of edges, source and destination; boxes 0 and 1 are positioned.
        using Edges = QVector<NetLayoutEdge>;
        const TestTable<Edges, qreal> row("edges", "left");
        // Positioned boxes reach from 10100 to 10500; the loose ones, 2 and 3, are 150 wide each.
        row("consumers on the right", Edges{{0, 2}, {1, 3}}, 10570.0);
        row("sources on the left", Edges{{2, 0}, {3, 1}}, 10100.0 - 70 - 324);
        row("most connections decide", Edges{{2, 0}, {1, 3}, {1, 2}}, 10570.0);
        row("unconnected on the right", Edges{}, 10570.0);
    }

    void looseBoxes_standBesideThePositionedOnes()
    {
        QFETCH(QVector<NetLayoutEdge>, edges);
        QFETCH(qreal, left);
        const QVector<NetPlacementItem> items{{QSizeF(200, 100), true, {10100, 40}},
            {QSizeF(200, 100), true, {10300, 90}}, {QSizeF(150, 60), false, {}},
            {QSizeF(150, 60), false, {}}};
        const QVector<QPointF> corners
            = NetPlacement::place(items, edges, NetPlacement::Unit::Pixel);
        QCOMPARE(corners.at(0), QPointF(10100, 40));
        QCOMPARE(corners.at(1), QPointF(10300, 90));
        QVERIFY2(std::abs(corners.at(2).x() - left) <= 2,
            qPrintable(QString::number(corners.at(2).x())));
        QCOMPARE(corners.at(2).y(), 40.0);
        QCOMPARE(corners.at(3).y(), 40.0);
        QVERIFY(corners.at(3).x() >= corners.at(2).x() + 150 + 22);
    }

    void movedBoxOfAutomaticLayout_leavesTheOthersWhereTheyWere()
    {
        QVector<NetPlacementItem> items(5, {QSizeF(150, 60), false, {}});
        const QVector<NetLayoutEdge> edges{{0, 2}, {1, 2}, {2, 3}, {2, 4}};
        QVector<QPointF> corners = NetPlacement::place(items, edges, NetPlacement::Unit::Pixel);
        corners[2] = QPointF(-900, 700);
        items[2] = {QSizeF(150, 60), true, corners.at(2)};
        QCOMPARE(NetPlacement::place(items, edges, NetPlacement::Unit::Pixel), corners);
    }
};

QTEST_GUILESS_MAIN(tst_NetLayout)

#include "tst_NetLayout.moc"
