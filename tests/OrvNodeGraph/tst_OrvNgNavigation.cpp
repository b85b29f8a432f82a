#include "OrvNodeGraph/OrvNgNavigation.h"
#include "support/TestTable.h"

#include <QTest>
#include <QTransform>

#include <cmath>
#include <limits>

using Drag = OrvNgNavigation::Drag;
Q_DECLARE_METATYPE(Drag)

class tst_OrvNgNavigation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void press_startsTheDragOfTheScheme_data()
    {
        const TestTable<int, int, QString, Drag, int> row(
            "button", "modifiers", "scheme", "drag", "dropped");
        const QString quill = QStringLiteral("Quill");
        const QString harbor = QStringLiteral("Harbor");
        const QString other = QStringLiteral("quill");
        const int none = Qt::NoModifier;
        const int alt = Qt::AltModifier;
        const int control = Qt::ControlModifier;
        const int shift = Qt::ShiftModifier;

        row("middle, Quill", Qt::MiddleButton, none, quill, Drag::Pan, none);
        row("middle, Harbor", Qt::MiddleButton, (control | shift), harbor, Drag::Pan, none);
        row("middle, other", Qt::MiddleButton, none, other, Drag::Pan, none);
        row("Alt middle, Quill", Qt::MiddleButton, alt, quill, Drag::Zoom, none);
        row("Alt middle, Harbor", Qt::MiddleButton, (alt | control), harbor, Drag::Pan, alt);
        row("Alt middle, other", Qt::MiddleButton, alt, other, Drag::None, none);
        row("left", Qt::LeftButton, (control | shift), quill, Drag::None, none);
        row("Alt left, Quill", Qt::LeftButton, (alt | control), quill, Drag::Pan, alt);
        row("Alt right, other", Qt::RightButton, alt, other, Drag::Pan, alt);
        row("Alt left, Harbor", Qt::LeftButton, (alt | shift), harbor, Drag::Pan, (alt | control));
        row("Alt Ctrl left, Harbor", Qt::LeftButton, (alt | control), harbor, Drag::Zoom, none);
        row("Alt right, Harbor", Qt::RightButton, alt, harbor, Drag::Zoom, none);
        row("Alt extra button, Harbor", Qt::ExtraButton1, alt, harbor, Drag::None, none);
        row("Alt extra button, Quill", Qt::ExtraButton1, alt, quill, Drag::Pan, alt);
    }

    void press_startsTheDragOfTheScheme()
    {
        QFETCH(int, button);
        QFETCH(int, modifiers);
        QFETCH(QString, scheme);
        QFETCH(Drag, drag);
        QFETCH(int, dropped);

        const OrvNgNavigation::Start start = OrvNgNavigation::startFor(
            static_cast<Qt::MouseButton>(button), Qt::KeyboardModifiers(modifiers), scheme);
        QCOMPARE(start.m_Drag, drag);
        // Where no pan starts, the base class sees no press, and the dropped modifiers mean
        // nothing.
        QCOMPARE(int(start.m_DroppedModifiers), dropped);
    }

    void zoomDrag_isExponentialInBothDirections_data()
    {
        const TestTable<QPoint, QSize, double> row("to", "size", "factor");
        row("not moved", QPoint(50, 40), QSize(400, 200), 1.0);
        row("half a width right", QPoint(250, 40), QSize(400, 200), std::exp(0.5));
        row("a height down", QPoint(50, 240), QSize(400, 200), std::exp(-1.0));
        row("both", QPoint(-50, 20), QSize(400, 200), std::exp(-0.25 + 0.1));
        row("no size", QPoint(51, 40), QSize(0, 0), std::exp(1.0));
    }

    void zoomDrag_isExponentialInBothDirections()
    {
        QFETCH(QPoint, to);
        QFETCH(QSize, size);
        QFETCH(double, factor);
        QCOMPARE(OrvNgNavigation::zoomDragFactor(QPoint(50, 40), to, size), factor);
    }

    void zoomAboutAPoint_keepsItWhereItIs()
    {
        const QPointF fixed(120, -30);
        const QPointF center(100, 10);
        const QPointF zoomed = OrvNgNavigation::centerZoomedAbout(fixed, center, 4.0);
        QCOMPARE(zoomed, QPointF(115, -20));
        QCOMPARE(4.0 * (fixed - zoomed), fixed - center);
    }

    void transform_isUsableWithinTheLimits_data()
    {
        const TestTable<QTransform, bool> row("transform", "usable");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double infinity = std::numeric_limits<double>::infinity();
        const auto scale = [](double x, double y) { return QTransform::fromScale(x, y); };
        row("identity", QTransform(), true);
        row("far in", scale(1e6, 1e6), true);
        row("too far in", scale(1.01e6, 1.01e6), false);
        row("far out", scale(1.01e-6, 1.01e-6), true);
        row("too far out", scale(0.9e-6, 0.9e-6), false);
        row("flat", scale(1.0, 0.0), false);
        row("skewed flat", QTransform(1, 1, 1, 1, 0, 0), false);
        row("not a number", scale(nan, nan), false);
        row("infinitely far", QTransform::fromTranslate(infinity, 0.0), false);
        row("mirrored", scale(-1.0, 1.0), true);
        row("quarter turn", QTransform().rotate(90.0), true);
    }

    void transform_isUsableWithinTheLimits()
    {
        QFETCH(QTransform, transform);
        QFETCH(bool, usable);
        QCOMPARE(OrvNgNavigation::isUsable(transform), usable);
    }
};

QTEST_APPLESS_MAIN(tst_OrvNgNavigation)
#include "tst_OrvNgNavigation.moc"
