#include "OrvNodeGraph/OrvNgCursorPath.h"
#include "OrvNodeGraph/OrvNgShakeDetector.h"
#include "support/TestTable.h"

class tst_OrvNgShakeDetector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isShaken_data()
    {
        const TestTable<int, QPointF, QPointF, int, int> row(
            "segments", "forth", "back", "interval", "shakenAfter");
        row("four turns in time", 9, QPointF(40, 0), QPointF(-40, 0), 90, 5);
        row("one turn too late", 9, QPointF(40, 0), QPointF(-40, 0), 100, 0);
        row("three turns", 4, QPointF(40, 0), QPointF(-40, 0), 10, 0);
        row("turns of 136 degrees", 9, QPointF(40, 0), QPointF(-28.77, 27.79), 10, 5);
        row("turns of 134 degrees", 9, QPointF(40, 0), QPointF(-27.79, 28.77), 10, 0);
        row("creeping", 20, QPointF(2, 0), QPointF(-2, 0), 10, 0);
    }

    /// Segments go forth and back in turn, from a point in time that is not 0.
    void isShaken()
    {
        QFETCH(int, segments);
        QFETCH(QPointF, forth);
        QFETCH(QPointF, back);
        QFETCH(int, interval);
        OrvNgCursorPath path;
        QPointF cursor(1000, 1000);
        qint64 now = 86399900;
        path.append(cursor, now);
        int shakenAfter = 0;
        for (int i = 0; i < segments && !shakenAfter; ++i) {
            cursor += i % 2 ? back : forth;
            path.follow(cursor, now += interval);
            if (OrvNgShakeDetector::isShaken(path))
                shakenAfter = i + 1;
        }
        QTEST(shakenAfter, "shakenAfter");
    }

    void creepingCursor_slidesTheNewestPoint()
    {
        OrvNgCursorPath path;
        path.append(QPointF(0, 0), 0);
        for (int x : {2, 4, -6, 8, 6, 20})
            path.follow(QPointF(x, -x), x);
        QCOMPARE(path.points(), (QList<QPointF>{{0, 0}, {4, -4}, {-6, 6}, {8, -8}, {20, -20}}));
        QCOMPARE(path.corners(), (QList<QPointF>{{-6, -20}, {20, 6}}));
    }
};

QTEST_APPLESS_MAIN(tst_OrvNgShakeDetector)
#include "tst_OrvNgShakeDetector.moc"
