#include "OrvNodeGraph/OrvNgNodeBrush.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"

#include <QtTest>

using OrvNgNodeBrush::State;

namespace {

QLinearGradient gradient(const char* first, const char* second)
{
    QLinearGradient result;
    result.setColorAt(0.0, QColor(QLatin1String(first)));
    result.setColorAt(1.0, QColor(QLatin1String(second)));
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

class tst_OrvNgNodeBrush : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        style.setCurrentPaintNodeBrush(gradient("#010101", "#020202"));
        style.setDefaultNodeBrush(gradient("#030303", "#040404"));
        style.setBypassedNodeBrush(gradient("#050505", "#060606"));
        style.setNodeLockedBrush(gradient("#070707", "#080808"));
        style.setCachedNodeBrush(QColor(QStringLiteral("#110000")));
        style.setBakedNodeBrush(QColor(QStringLiteral("#220000")));
        style.setOutdatedBakedNodeBrush(QColor(QStringLiteral("#330000")));
        style.setProperty("MathNodeBrush", QVariant::fromValue(gradient("#001100", "#002200")));
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
        rung("current paint", &State::m_CurrentPaint, "#010101 #020202");
        rung("override", &State::m_Override, "#ff0000 #ff0000");
        rung("bypassed", &State::m_Bypassed, "#050505 #060606");
        rung("cached", &State::m_Cached, "#110000");
        rung("outdated baked", &State::m_OutdatedBaked, "#330000");
        rung("baked", &State::m_Baked, "#220000");
        rung("locked", &State::m_Locked, "#070707 #080808");
        row("own colors", state, "#00ff00 #0000ff");
        state.m_NodeColor = QColor();
        row("one own color: the category", state, "#001100 #002200");
        state.m_Category = QStringLiteral("NoSuch");
        row("unknown category: default", state, "#030303 #040404");
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
};

QTEST_MAIN(tst_OrvNgNodeBrush)
#include "tst_OrvNgNodeBrush.moc"
