#include "OrvNodeGraph/OrvNgNodeBrush.h"
#include "OrvNodeGraph/OrvNgNodeShape.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"

#include <QtTest>

using OrvNgNodeBrush::State;

namespace {

QLinearGradient gradient(int first)
{
    QLinearGradient result;
    result.setColorAt(0.0, QColor(first, 0, 0));
    result.setColorAt(1.0, QColor(first + 1, 0, 0));
    return result;
}

/// "#color" of a plain brush, "#first #second" of a gradient.
QString colorsOf(const QBrush& brush)
{
    if (!brush.gradient())
        return brush.color().name();
    const QGradientStops stops = brush.gradient()->stops();
    return stops.first().second.name() + QLatin1Char(' ') + stops.last().second.name();
}

} // namespace

Q_DECLARE_METATYPE(State)

/// What a node is filled with, and the outline that is filled.
class tst_OrvNgNodeBrush : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        style.setCurrentPaintNodeBrush(gradient(1));
        style.setDefaultNodeBrush(gradient(3));
        style.setBypassedNodeBrush(gradient(5));
        style.setNodeLockedBrush(gradient(7));
        style.setCachedNodeBrush(QColor(9, 0, 0));
        style.setBakedNodeBrush(QColor(10, 0, 0));
        style.setOutdatedBakedNodeBrush(QColor(11, 0, 0));
        style.setProperty("MathNodeBrush", QVariant::fromValue(gradient(12)));
    }

    void resolve_data()
    {
        const TestTable<State, QString> row("state", "colors");
        State state{true, true, true, true, true, true, true, Qt::red, Qt::green, Qt::blue,
            QStringLiteral("Math")};
        const auto rung = [&](const char* tag, bool State::*flag, const char* colors) {
            row(tag, state, colors);
            state.*flag = false; // the next one wins
        };
        rung("current paint", &State::m_CurrentPaint, "#010000 #020000");
        rung("override", &State::m_Override, "#ff0000 #ff0000");
        rung("bypassed", &State::m_Bypassed, "#050000 #060000");
        rung("cached", &State::m_Cached, "#090000");
        rung("outdated baked", &State::m_OutdatedBaked, "#0b0000");
        rung("baked", &State::m_Baked, "#0a0000");
        rung("locked", &State::m_Locked, "#070000 #080000");
        row("own colors", state, "#00ff00 #0000ff");
        state.m_NodeColor = QColor();
        row("one own color: the category", state, "#0c0000 #0d0000");
        state.m_Category = QStringLiteral("NoSuch");
        row("unknown category: default", state, "#030000 #040000");
    }

    void resolve()
    {
        QFETCH(State, state);
        const QBrush brush = OrvNgNodeBrush::resolve(state, QRectF(10, 20, 300, 40));
        QTEST(colorsOf(brush), "colors");
        if (!brush.gradient())
            return;
        const auto* linear = static_cast<const QLinearGradient*>(brush.gradient());
        QCOMPARE(linear->start(), QPointF(10, 20));
        QCOMPARE(linear->finalStop(), QPointF(10, 60));
    }

    void givenShape_beatsTheCategorys()
    {
        const auto shape = [](int type, const char* category) {
            return static_cast<int>(OrvNgNodeShape::resolve(type, QLatin1String(category)));
        };
        QCOMPARE(shape(1, "Basic"), 1);
        QCOMPARE(shape(0, "Environment"), 2);
        QCOMPARE(shape(0, "TeleportBroadcast"), 8);
        QCOMPARE(shape(9, "Geometry"), 2); // too large
        QCOMPARE(shape(0, ""), 1);
    }
};

QTEST_MAIN(tst_OrvNgNodeBrush)
#include "tst_OrvNgNodeBrush.moc"
