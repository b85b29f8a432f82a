#include "network/NetPlacement.h"
#include "support/TestTable.h"

#include <QRectF>

/// Where boxes go whose file positions are in one unit or the other, or missing.
class tst_NetPlacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        const TestTable<QVector<QPoint>, qreal> row("edges", "left");
        // Positioned boxes reach from 10100 to 10500; the loose ones, 2 and 3, are 150 wide each.
        row("consumers on the right", QVector<QPoint>{{0, 2}, {1, 3}}, 10570.0);
        row("sources on the left", QVector<QPoint>{{2, 0}, {3, 1}}, 10100.0 - 70 - 324);
        row("most connections decide", QVector<QPoint>{{2, 0}, {1, 3}, {1, 2}}, 10570.0);
        row("unconnected on the right", QVector<QPoint>{}, 10570.0);
    }

    void looseBoxes_standBesideThePositionedOnes()
    {
        QFETCH(QVector<QPoint>, edges);
        QFETCH(qreal, left);
        const QVector<NetPlacementItem> items{{QSizeF(200, 100), true, {10100, 40}},
            {QSizeF(200, 100), true, {10300, 90}}, {QSizeF(150, 60), false, {}},
            {QSizeF(150, 60), false, {}}};
        QVector<NetLayoutEdge> layoutEdges;
        for (const QPoint& edge : qAsConst(edges))
            layoutEdges.append({edge.x(), edge.y()});
        const QVector<QPointF> corners
            = NetPlacement::place(items, layoutEdges, NetPlacement::Unit::Pixel);
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

QTEST_GUILESS_MAIN(tst_NetPlacement)

#include "tst_NetPlacement.moc"
