#include "editor/EditorView.h"
#include "support/TestTable.h"

#include <QGraphicsScene>
#include <QNativeGestureEvent>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <cmath>
#include <tuple>

namespace {

constexpr double kWheelFactor = 1.15; // the library's, for one step
const QPoint kPause(-1, -1); // in a sequence of turns: the wheel rests

/// Opens what the library keeps for derived views.
class OpenView : public EditorView
{
public:
    using EditorView::cursorTrackingMode;
    using EditorView::EditorView;
};

} // namespace

/// The view alone: wheels, fingers, held keys.
class tst_EditorView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_Window = std::make_unique<QWidget>();
        m_View = new OpenView(m_Window.get());
        m_Other = new QWidget(m_Window.get());
        m_Other->setFocusPolicy(Qt::StrongFocus);
        auto* column = new QVBoxLayout(m_Window.get());
        column->addWidget(m_View, 1);
        column->addWidget(m_Other);
        m_View->setScene(&m_Scene);
        m_View->init();
        m_Window->resize(641, 433);
        m_Window->show();
        m_Window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_Window.get()));
        m_View->setFocus();
    }

    void cleanup() { m_Window.reset(); }

    void wheel_isGatheredToSteps_data()
    {
        using Turns = QVector<QPoint>;
        const TestTable<Turns, int> row("turns", "steps");
        row("a notch", Turns{{0, 120}}, 1);
        row("a fine wheel", Turns(16, {0, 15}), 2);
        row("less than a step", Turns(7, {0, 15}), 0);
        row("the rest goes on", Turns{{0, 100}, {0, 100}, {0, 40}}, 2);
        row("three at once", Turns{{0, -360}}, -3);
        row("turned back", Turns{{0, 90}, {0, -60}, {0, -60}}, -1);
        row("rested", Turns{{0, 90}, kPause, {0, 90}}, 0);
        row("each axis for itself", Turns{{60, 0}, {0, 60}, {60, 0}}, 1);
    }

    void wheel_isGatheredToSteps()
    {
        QFETCH(QVector<QPoint>, turns);
        QFETCH(int, steps);
        for (const QPoint& angle : qAsConst(turns)) {
            if (angle == kPause)
                m_Time += 2000;
            else
                turn(angle);
        }
        QCOMPARE(qRound(this->steps() * 1000), steps * 1000);
    }

    void zoom_keepsThePointUnderTheMouse()
    {
        m_View->lookAt({17.3, -8.9}, 0.73);
        const QPointF kept = m_View->viewportTransform().inverted().map(QPointF(m_Mouse));
        for (int i = 0; i < 40; ++i) { // by wheel and fingers, in and out
            const double before = m_View->transform().m11();
            const bool isIn = i / 2 < 10;
            if (i % 2)
                pinch(isIn ? 0.1 : -0.1);
            else
                turn({0, isIn ? 120 : -120});
            QCOMPARE(m_View->transform().m11() > before, isIn);
            const QPointF drift = m_View->viewportTransform().map(kept) - m_Mouse;
            QVERIFY(drift.manhattanLength() < 0.1);
        }
    }

    void fingers_pan()
    {
        const QTransform before = m_View->viewportTransform();
        const auto moved
            = [&] { return m_View->viewportTransform().map(QPointF()) - before.map(QPointF()); };
        turn({0, 240}, Qt::ScrollUpdate, {31, -12});
        QCOMPARE(moved().toPoint(), QPoint(31, -12));
        turn({-10, 20}, Qt::ScrollMomentum); // no pixels told
        QCOMPARE(moved().toPoint(), QPoint(26, -2));
        QCOMPARE(steps(), 0.0);
        turn({0, 120}, Qt::ScrollUpdate, {0, 30}, Qt::ControlModifier);
        QCOMPARE(qRound(steps() * 1000), 1000);
    }

    void heldKeys_endWithKeyOrFocus_data()
    {
        const TestTable<int, int> row("key", "meaning");
        row("cut", int(Qt::Key_C), int(EditorView::HeldCut));
        row("dots", int(Qt::Key_D), int(EditorView::HeldDot));
        row("place", int(Qt::Key_S), int(EditorView::HeldPlace));
    }

    void heldKeys_endWithKeyOrFocus()
    {
        QFETCH(int, key);
        QFETCH(int, meaning);
        const auto press = [&](bool isPress, bool isRepeated, int modifiers = 0) {
            QKeyEvent event(isPress ? QEvent::KeyPress : QEvent::KeyRelease, key,
                Qt::KeyboardModifiers(modifiers), {}, isRepeated);
            QCoreApplication::sendEvent(m_View, &event);
        };
        using State = std::tuple<int, bool, bool>;
        const auto state = [&]() -> State {
            return {int(m_View->heldKeys()), isCutting(), m_View->isAutoInsertOn()};
        };
        const State on{meaning, meaning == EditorView::HeldCut, meaning != EditorView::HeldPlace};
        const State off{0, false, true};
        press(true, false, Qt::ControlModifier);
        QCOMPARE(state(), off);
        press(true, false);
        QCOMPARE(state(), on);
        press(false, true); // held down, a key repeats both
        press(true, true);
        QCOMPARE(state(), on);
        press(false, false); // X11 does not always say that it repeats
        press(true, false);
        QTest::qWait(150);
        QCOMPARE(state(), on);
        press(false, false);
        QTRY_VERIFY_WITH_TIMEOUT(state() == off, 1000);

        press(true, false);
        m_Other->setFocus();
        QCOMPARE(state(), off);
        m_View->setFocus();
        for (const int modifier : {0, int(Qt::ShiftModifier)})
            QTest::keyClick(m_View, Qt::Key_Tab, Qt::KeyboardModifiers(modifier));
        QVERIFY(m_View->hasFocus()); // tabulators stay in the graph
        press(true, true); // still down: it takes a new press
        QCOMPARE(state(), off);
    }

private:
    void turn(const QPoint& angle, Qt::ScrollPhase phase = Qt::NoScrollPhase,
        const QPoint& pixels = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWheelEvent event(m_Mouse, m_View->viewport()->mapToGlobal(m_Mouse), pixels, angle,
            Qt::NoButton, modifiers, phase, false);
        event.setTimestamp(m_Time += 10);
        QCoreApplication::sendEvent(m_View->viewport(), &event);
    }

    void pinch(double value)
    {
        QNativeGestureEvent event(
            Qt::ZoomNativeGesture, nullptr, m_Mouse, m_Mouse, m_Mouse, value, 0, 0);
        QCoreApplication::sendEvent(m_View->viewport(), &event);
    }

    bool isCutting() const
    {
        return m_View->cursorTrackingMode() == OrvNgView::CURSOR_TRACKING_SEVER_EDGES;
    }
    double steps() const { return std::log(m_View->transform().m11()) / std::log(kWheelFactor); }

    QGraphicsScene m_Scene;
    std::unique_ptr<QWidget> m_Window;
    OpenView* m_View = nullptr;
    QWidget* m_Other = nullptr; ///< takes the focus
    QPoint m_Mouse{211, 97};
    ulong m_Time = 0;
};

QTEST_MAIN(tst_EditorView)
#include "tst_EditorView.moc"
