#include "editor/EditorColorButton.h"
#include "editor/EditorPreferenceRow.h"
#include "editor/EditorPreferencesDialog.h"
#include "editor/EditorPropertyValue.h"
#include "support/Literals.h"
#include "support/TestTable.h"

#include <OrvCore/OrvPreferenceManager.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPoint>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>

#include <OrvNodeGraph/OrvNgStyle.h>

using EditorPropertyValue::ColorPair;
using EditorPropertyValue::isSame;

namespace {

const ColorPair kSky{QColor(10, 20, 30), QColor(40, 50, 60)};

/// An object with preferences of all kinds, that is not the style. Most are properties without declaration.
class Sample : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int steps READ steps WRITE setSteps RESET resetSteps NOTIFY stepsChanged)
    Q_PROPERTY(bool loud MEMBER m_Loud)
    Q_PROPERTY(int fixed MEMBER m_Fixed CONSTANT)

public:
    Sample()
    {
        setProperty("depth", 1.0 / 3.0);
        setProperty("place", u"here"_s);
        setProperty("corner", QPoint(1, 2));
        setProperty("late", 4);
        setProperty("ink", QColor(1, 2, 3));
        setProperty("paper", QVariant::fromValue(OrvColor(0.1F, 0.2F, 0.3F))); // finer than 8 bits
        setProperty("sky", QVariant::fromValue(kSky));
        for (const char* name :
            {"steps", "depth", "loud", "place", "corner", "fixed", "late", "ink", "paper", "sky"}) {
            const bool isColor = QByteArrayLiteral("ink paper sky").contains(name);
            OrvPreferenceManager::instance().registerPreference(
                u"Sample"_s, isColor ? u"Colors"_s : u"Rest"_s, this, q(name));
        }
    }
    int steps() const { return m_Steps; }
    /// Odd numbers are not taken.
    void setSteps(int steps)
    {
        if (steps == m_Steps || steps % 2 != 0)
            return;
        m_Steps = steps;
        Q_EMIT stepsChanged();
    }
    void resetSteps() { setSteps(8); }

    int m_Steps = 2;
    int m_Fixed = 5;
    bool m_Loud = false;

Q_SIGNALS:
    void stepsChanged();
};

/// Shown, and active, so that fields get and lose the focus.
struct Dialog : EditorPreferencesDialog
{
    Dialog()
    {
        show();
        if (!QTest::qWaitForWindowActive(this))
            qFatal("the dialog is not active");
    }
    EditorPreferenceRow* row(const char* property) const
    {
        return findChild<EditorPreferenceRow*>(q(property));
    }
    /// The index-th text field of a row, spin boxes' ones counted.
    QLineEdit* field(const char* property, int index = 0) const
    {
        return row(property)->findChildren<QLineEdit*>().value(index);
    }
    QToolButton* reset(const char* property) const
    {
        return row(property)->findChild<QToolButton*>(QString(), Qt::FindDirectChildrenOnly);
    }
    /// Replaces a field's text; a new line at the end is the Enter key.
    void type(const char* property, QString text, int index = 0) const
    {
        QLineEdit* target = field(property, index);
        const bool hasEnter = text.endsWith(u'\n');
        target->setFocus();
        target->selectAll();
        QTest::keyClicks(target, text.remove(u'\n'));
        if (hasEnter)
            QTest::keyClick(target, Qt::Key_Enter);
    }
};

} // namespace

/// The dialog as its user meets it, over objects of its own and over the style.
class tst_EditorPreferencesDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName(u"OrvTest"_s);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_Folder.path());
    }

    void input_isTakenOrRefused_andCancelPutsItBack_data()
    {
        const TestTable<QByteArray, int, QString, QVariant, QString> row(
            "name", "field", "keys", "wanted", "message");
        const auto color = QVariant::fromValue(OrvColor(QColor(255, 128, 0, 51)));
        const auto gradient = QVariant::fromValue(ColorPair(kSky.first, Qt::white));
        row("whole number", "steps", 0, "14\n", QVariant(14), "");
        const QString number = QLocale().toString(2.5) + u'\n';
        row("double, of which more is kept than shown", "depth", 0, number, QVariant(2.5), "");
        row("switch", "loud", -1, " ", QVariant(true), "");
        row("second half of a point", "corner", 1, "-7\n", QVariant(QPoint(1, -7)), "");
        row("colour with opacity", "paper", 0, "#ff800033\n", color, "");
        row("name of a colour", "ink", 0, "red\n", QVariant(QColor(Qt::red)), "");
        row("end of a gradient", "sky", 1, "#ffffff\n", gradient, "");
        row("finished by Cancel alone", "paper", 0, "#ff8000", QVariant(), "");
        row("no colour", "paper", 0, "zzz", QVariant(), "zzz");
        row("five digits", "ink", 0, "#12345", QVariant(), "#12345");
        row("nothing", "ink", 0, " ", QVariant(), "colour");
        row("not taken by the object", "steps", 0, "7", QVariant(), "7");
    }

    void input_isTakenOrRefused_andCancelPutsItBack()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, field);
        QFETCH(QString, keys);
        QFETCH(QVariant, wanted);
        QFETCH(QString, message);
        const char* property = name.constData();
        Sample sample;
        const QVariant before = sample.property(property);
        Dialog dialog;
        if (field < 0) {
            QTest::keyClicks(dialog.row(property)->findChild<QCheckBox*>(), keys);
        } else {
            const QString shown = dialog.field(property, field)->text();
            dialog.type(property, keys, field);
            if (!message.isEmpty()) {
                dialog.accept();
                QVERIFY2(dialog.message().contains(message), qPrintable(dialog.message()));
                QCOMPARE(dialog.field(property)->text(), shown);
            }
        }
        QVERIFY(dialog.isVisible()); // Enter takes the input and no more, and a message can be read
        QVERIFY(isSame(sample.property(property), wanted.isValid() ? wanted : before));
        if (!message.isEmpty())
            dialog.type("place", u"elsewhere\n"_s);
        QCOMPARE(dialog.message(), QString());
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        QVERIFY2(isSame(sample.property(property), before), qPrintable(dialog.message()));
    }

    void colorDialog_isFollowed_untilItIsCancelled()
    {
        Sample sample;
        Dialog dialog;
        const QLineEdit* field = dialog.field("ink"); // before the colour dialog brings its own
        dialog.row("ink")->findChild<EditorColorButton*>()->click();
        auto* colors = dialog.findChild<QColorDialog*>();
        QVERIFY(colors);
        QVERIFY(colors->testOption(QColorDialog::ShowAlphaChannel));
        colors->setCurrentColor(QColor(9, 8, 7, 6));
        QCOMPARE(sample.property("ink"), QVariant(QColor(9, 8, 7, 6)));
        QCOMPARE(field->text(), u"#09080706"_s);
        colors->reject();
        QCOMPARE(sample.property("ink"), QVariant(QColor(1, 2, 3)));
    }

    void reset_givesDefaultsOfWhatIsListed()
    {
        Sample sample;
        Sample other;
        QSignalSpy changes(&sample, &Sample::stepsChanged);
        Dialog dialog;
        QCOMPARE(sample.steps(), 2); // finding the default leaves no trace
        QCOMPARE(changes.count(), 0);
        QVERIFY(!dialog.reset("steps")->isHidden());
        QVERIFY(dialog.reset("depth")->isHidden()); // no default is known
        QVERIFY(dialog.row("fixed")->findChildren<QLineEdit*>().isEmpty());

        dialog.reset("steps")->click();
        QCOMPARE(sample.steps(), 8);
        QVERIFY(dialog.reset("steps")->isHidden());
        QCOMPARE(dialog.field("steps")->text(), u"8"_s);
        auto* search = dialog.findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
        search->setText(u"COLORS sky"_s);
        QVERIFY(!dialog.row("sky")->isHidden());
        QVERIFY(dialog.row("ink")->isHidden());
        dialog.resetPage();
        QCOMPARE(other.steps(), 2); // it was not listed
        search->clear();
        dialog.resetPage();
        QCOMPARE(other.steps(), 8);
        dialog.reject();
        QCOMPARE(sample.steps() + other.steps(), 4);
    }

    void changesElsewhere_areShown_andSurviveCancel()
    {
        Sample sample;
        Dialog dialog;
        sample.setSteps(30);
        sample.setProperty("late", 31);
        QCOMPARE(dialog.field("steps")->text(), u"30"_s);
        dialog.type("late", u"32\n"_s);
        dialog.reject();
        QCOMPARE(sample.steps(), 30); // never edited here
        QCOMPARE(sample.property("late").toInt(), 31);
    }

    void rows_comeAndGoWithTheirObjects()
    {
        OrvNgStyle::instance(); // a page that stays
        auto sample = std::make_unique<Sample>();
        Dialog dialog;
        const auto* pages = dialog.findChild<QListWidget*>();
        QCOMPARE(pages->count(), 2);
        dialog.type("ink", u"blue"_s); // not finished
        sample.reset();
        QCOMPARE(pages->count(), 1);
        QCOMPARE(pages->item(0)->text(), u"Node Graph"_s);
        QVERIFY(!dialog.row("ink"));

        Sample late;
        dialog.type("place", u"new\n"_s);
        QCOMPARE(late.property("place").toString(), u"new"_s);
    }

    void ok_keepsTheStyleForTheNextStart()
    {
        Dialog dialog;
        dialog.type("MathNodeColor", u"#12345678"_s);
        dialog.type("GridLinesWidth", u"5\n"_s);
        dialog.accept();
        const OrvNgStyle next;
        const auto gradient = next.property("MathNodeBrush").value<QLinearGradient>();
        QCOMPARE(gradient.stops().constFirst().second, QColor(18, 52, 86, 120));
        QCOMPARE(next.getGridPen().width(), 5);
    }

private:
    QTemporaryDir m_Folder;
};

QTEST_MAIN(tst_EditorPreferencesDialog)
#include "tst_EditorPreferencesDialog.moc"
