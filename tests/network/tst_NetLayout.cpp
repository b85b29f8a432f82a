#include "network/NetLayout.h"
#include "support/TestTable.h"

#include <QRandomGenerator>
#include <QRectF>
#include <QTest>

#include <algorithm>

namespace {

struct Network
{
    QVector<NetLayoutNode> nodes;
    QVector<NetLayoutEdge> edges;
};

QRectF rectOf(const Network& network, const QVector<QPointF>& corners, int i)
{
    return {corners.at(i), network.nodes.at(i).size};
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

QVector<QPointF> arrange(const Network& network)
{
    return NetLayout::arrange(network.nodes, network.edges);
}

} // namespace

/// Properties that every layout must have, whatever Graphviz makes of the network.
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
        const QVector<QPointF> corners = arrange(network);
        QCOMPARE(arrange(network), corners);
        QPointF least(1e9, 1e9);
        for (int i = 0; i < nodes; ++i) {
            const QRectF rect = rectOf(network, corners, i);
            QCOMPARE(rect.topLeft(), QPointF(rect.topLeft().toPoint()));
            least = {std::min(least.x(), rect.left()), std::min(least.y(), rect.top())};
            for (int k = 0; k < i; ++k) {
                // Less than the gap of 24 by what rounding takes.
                const QRectF room = rect.adjusted(-22, -22, 22, 22);
                QVERIFY(!room.intersects(rectOf(network, corners, k)));
            }
        }
        QCOMPARE(least, QPointF(0, 0));
        for (const NetLayoutEdge& edge : network.edges) {
            QVERIFY(rectOf(network, corners, edge.dest).left()
                    - rectOf(network, corners, edge.source).right()
                >= 69);
        }
    }

    void cycle_isLaidOutWithOneEdgeBackwards()
    {
        // Entered in the middle.
        const Network network{
            QVector<NetLayoutNode>(4, {QSizeF(100, 40)}), {{2, 3}, {3, 1}, {1, 2}, {0, 3}}};
        const QVector<QPointF> corners = arrange(network);
        const auto backwards = std::count_if(
            network.edges.cbegin(), network.edges.cend(), [&corners](const NetLayoutEdge& edge) {
                return corners.at(edge.dest).x() <= corners.at(edge.source).x();
            });
        QCOMPARE(backwards, 1);
    }

    void longEdges_meetNoBoxOnTheirWay()
    {
        Network network{QVector<NetLayoutNode>(7, {QSizeF(160, 97)}), {}};
        for (int i = 1; i < network.nodes.size(); ++i)
            network.edges.append({i - 1, i, 43, 61});
        const int chain = network.edges.size();
        network.edges += {{0, 6, 70, 90}, {1, 4, 80, 90}};
        const QVector<QPointF> corners = arrange(network);
        for (int i = chain; i < network.edges.size(); ++i) {
            // Level to the middle of the way, up or down there, level again.
            const NetLayoutEdge& edge = network.edges.at(i);
            const QPointF from = corners.at(edge.source) + QPointF(160, edge.sourceOffset);
            const QPointF to = corners.at(edge.dest) + QPointF(0, edge.destOffset);
            const qreal middle = (from.x() + to.x()) / 2;
            for (int box = edge.source + 1; box < edge.dest; ++box) {
                const QRectF rect = rectOf(network, corners, box);
                const bool meetsFirst
                    = rect.left() < middle && rect.contains(rect.center().x(), from.y());
                const bool meetsLast
                    = rect.right() > middle && rect.contains(rect.center().x(), to.y());
                QVERIFY(!meetsFirst && !meetsLast);
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
        const QVector<QPointF> corners = arrange(network);
        QVector<QPair<qreal, int>> fromTheTop;
        for (int i = 0; i < ports.size(); ++i)
            fromTheTop.append({corners.at(i + 1).y(), ports.at(i)});
        std::sort(fromTheTop.begin(), fromTheTop.end());
        for (int i = 0; i < ports.size(); ++i)
            QCOMPARE(fromTheTop.at(i).second, i);
    }

    void manyNetworks_makeATableInsteadOfATower()
    {
        Network network;
        for (int i = 0; i < 9; ++i) {
            network.nodes += {{QSizeF(150, 60)}, {QSizeF(180, 700)}};
            network.edges.append({2 * i, 2 * i + 1, 30, 40});
        }
        const QVector<QPointF> corners = arrange(network);
        QRectF bounds;
        for (int i = 0; i < corners.size(); ++i)
            bounds |= rectOf(network, corners, i);
        // Three rows of three: a tower would be 400 wide and 6,900 high.
        QVERIFY(bounds.width() > 1300 && bounds.height() < 2500);
        QCOMPARE(corners.at(3).y(), corners.at(1).y());
        QVERIFY(corners.at(3).x() > corners.at(1).x());
    }
};

QTEST_GUILESS_MAIN(tst_NetLayout)

#include "tst_NetLayout.moc"
