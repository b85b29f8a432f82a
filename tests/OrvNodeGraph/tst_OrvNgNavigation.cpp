#include "OrvNodeGraph/OrvNgNavigation.h"
#include "support/TestTable.h"

#include <QTest>

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
};

QTEST_APPLESS_MAIN(tst_OrvNgNavigation)
#include "tst_OrvNgNavigation.moc"
