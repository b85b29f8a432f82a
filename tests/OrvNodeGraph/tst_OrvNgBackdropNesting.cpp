#include "OrvNodeGraph/OrvNgBackdropNesting.h"
#include "support/TestTable.h"

#include <QtTest>

#include <limits>

namespace {

constexpr float kBase = -10.0F;
constexpr int kMaxInt = std::numeric_limits<int>::max();

/// A frame in words: its rectangle and its level, with the level's own z value.
OrvNgBackdropNesting::Frame frame(const QRectF& rect, int order)
{
    return {rect, OrvNgBackdropNesting::zValue(order, kBase), order};
}

const QRectF kBig(0, 0, 900, 900);
const QRectF kMiddle(100, 100, 600, 600);
const QRectF kSmall(200, 200, 300, 300);
const QRectF kBeside(720, 100, 100, 100);
const QRectF kAcross(600, 200, 400, 100);

} // namespace

using Frames = QVector<OrvNgBackdropNesting::Frame>;
using Orders = QVector<int>;
Q_DECLARE_METATYPE(Frames)
Q_DECLARE_METATYPE(Orders)

class tst_OrvNgBackdropNesting : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void innerFrames_areRaisedOnce_data()
    {
        const TestTable<Frames, Orders> row("frames", "orders");
        row("three deep, inmost first", Frames{frame(kSmall, 0), frame(kMiddle, 0), frame(kBig, 0)},
            Orders{2, 1, 0});
        row("two in one, and one across the edge",
            Frames{frame(kBig, 3), frame(kMiddle, 0), frame(kBeside, 3), frame(kAcross, 0)},
            Orders{3, 4, 4, 0});
        row("already above", Frames{frame(kBig, 1), frame(kSmall, 7)}, Orders{1, 7});
        row("negative levels", Frames{frame(kBig, -1), frame(kSmall, -5)}, Orders{-1, 0});
        row("equal in one", Frames{frame(kSmall, 0), frame(kSmall, 0), frame(kBig, 0)},
            Orders{1, 1, 0});
        row("beyond the highest z value",
            Frames{frame(kBig, 2000), frame(kMiddle, 2000), frame(kSmall, 2000)},
            Orders{2000, 2001, 2002});
        row("the last level", Frames{frame(kBig, kMaxInt), frame(kSmall, 0)},
            Orders{kMaxInt, kMaxInt});
    }
    void innerFrames_areRaisedOnce()
    {
        QFETCH(Frames, frames);
        QFETCH(Orders, orders);
        QCOMPARE(OrvNgBackdropNesting::raisedOrders(frames, kBase), orders);
        for (int i = 0; i < frames.size(); ++i)
            frames[i] = frame(frames.at(i).m_SceneRect, orders.at(i));
        QCOMPARE(OrvNgBackdropNesting::raisedOrders(frames, kBase), orders);
    }

    void zValue_isInSinglePrecisionAndBelowTheEdges_data()
    {
        const TestTable<int, double> row("order", "z");
        row("lowest", 0, -10.0);
        row("one", 1, -9.9899997711181641);
        row("negative", -1, double(-10.01F));
        row("far too many", 1000, double(-1.01F));
        row("the last", kMaxInt, double(-1.01F));
    }
    void zValue_isInSinglePrecisionAndBelowTheEdges()
    {
        QFETCH(int, order);
        QTEST(OrvNgBackdropNesting::zValue(order, kBase), "z");
    }
};

QTEST_MAIN(tst_OrvNgBackdropNesting)
#include "tst_OrvNgBackdropNesting.moc"
