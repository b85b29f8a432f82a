#include "editor/EditorColorButton.h"
#include "editor/EditorPreferenceRow.h"
#include "editor/EditorPreferencesDialog.h"
#include "editor/EditorPropertyValue.h"
#include "support/TestTable.h"

#include <OrvCore/OrvPreferenceManager.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPointF>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <OrvNodeGraph/OrvNgStyle.h>

using EditorPropertyValue::ColorPair;
using EditorPropertyValue::isSame;

namespace {

/// An object with preferences of all kinds, that is not the style.
class Sample : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int steps READ steps WRITE setSteps RESET resetSteps NOTIFY stepsChanged)
    Q_PROPERTY(double depth MEMBER m_Depth)
    Q_PROPERTY(bool loud MEMBER m_Loud)
    Q_PROPERTY(QString place MEMBER m_Place)
    Q_PROPERTY(QPoint corner MEMBER m_Corner)
    Q_PROPERTY(QPointF middle MEMBER m_Middle)
    Q_PROPERTY(QColor ink MEMBER m_Ink)
    Q_PROPERTY(OrvColor paper MEMBER m_Paper)
    Q_PROPERTY(QPair<QColor, QColor> sky MEMBER m_Sky)
    Q_PROPERTY(int fixed MEMBER m_Fixed CONSTANT)

public:
    Sample()
    {
        setProperty("late", 4);
        const auto add = [this](const char* category, const char* names) {
            for (const QString& name : QString::fromLatin1(names).split(QLatin1Char(' ')))
                OrvPreferenceManager::instance().registerPreference(
                    QStringLiteral("Sample"), QString::fromLatin1(category), this, name);
        };
        add("Rest", "steps depth loud place corner middle fixed late");
        add("Colors", "ink paper sky");
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
    double m_Depth = 1.0 / 3.0;
    bool m_Loud = false;
    QString m_Place = QStringLiteral("here");
    QPoint m_Corner{1, 2};
    QPointF m_Middle{3.5, 4.5};
    QColor m_Ink{1, 2, 3};
    OrvColor m_Paper{0.1F, 0.2F, 0.3F, 1.0F}; // finer than eight bits
    ColorPair m_Sky{QColor(10, 20, 30), QColor(40, 50, 60)};

Q_SIGNALS:
    void stepsChanged();
};

EditorPreferenceRow* rowOf(const QDialog& dialog, const char* property)
{
    return dialog.findChild<EditorPreferenceRow*>(QString::fromLatin1(property));
}

/// The field-th text field of a row, spin boxes' ones counted.
QLineEdit* fieldOf(const QDialog& dialog, const char* property, int field = 0)
{
    return rowOf(dialog, property)->findChildren<QLineEdit*>().value(field);
}

/// Replaces the field's text; a new line at the end is the Enter key.
void type(QLineEdit* field, QString text)
{
    const bool hasEnter = text.endsWith(QLatin1Char('\n'));
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, text.remove(QLatin1Char('\n')));
    if (hasEnter)
        QTest::keyClick(field, Qt::Key_Enter);
}

QToolButton* resetOf(const QDialog& dialog, const char* property)
{
    return rowOf(dialog, property)->findChild<QToolButton*>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace

/// The dialog as its user meets it, over objects of its own and over the style.
class tst_EditorPreferencesDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("OrvTest"));
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_Folder.path());
    }

    void input_reachesTheObject_andCancelPutsItBack_data()
    {
        const TestTable<QByteArray, int, QString, QVariant> row("name", "field", "keys", "wanted");
        row("whole number", "steps", 0, "14\n", QVariant(14));
        row("double, of which more is kept than shown", "depth", 0, "2.5\n", QVariant(2.5));
        row("switch", "loud", -1, " ", QVariant(true));
        row("second half of a point", "corner", 1, "-7\n", QVariant(QPoint(1, -7)));
        row("colour with opacity", "paper", 0, "#ff800033\n",
            QVariant::fromValue(OrvColor(QColor(255, 128, 0, 51))));
        row("end of a gradient", "sky", 1, "#ffffff\n",
            QVariant::fromValue(ColorPair(QColor(10, 20, 30), QColor(255, 255, 255))));
        row("property without declaration", "late", 0, "9\n", QVariant(9));
        row("finished by Cancel alone", "paper", 0, "#ff8000", QVariant());
    }

    void input_reachesTheObject_andCancelPutsItBack()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, field);
        QFETCH(QString, keys);
        QFETCH(QVariant, wanted);
        const char* property = name.constData();
        Sample sample;
        const QVariant before = sample.property(property);
        EditorPreferencesDialog dialog;
        show(&dialog);

        if (field < 0)
            QTest::keyClicks(rowOf(dialog, property)->findChild<QCheckBox*>(), keys);
        else
            type(fieldOf(dialog, property, field), keys);
        QVERIFY(dialog.isVisible()); // Enter takes the input and no more
        QVERIFY(isSame(sample.property(property), wanted.isValid() ? wanted : before));
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        QVERIFY2(isSame(sample.property(property), before), qPrintable(dialog.message()));
    }

    void wrongInput_keepsTheOldValue_data()
    {
        const TestTable<QByteArray, QString, QString> row("name", "text", "named");
        row("no colour", "paper", "zzz", "zzz");
        row("five digits", "ink", "#12345", "#12345");
        row("nothing", "ink", " ", "colour");
        row("not taken by the object", "steps", "7", "7");
    }

    void wrongInput_keepsTheOldValue()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, text);
        QFETCH(QString, named);
        Sample sample;
        const QVariant before = sample.property(name.constData());
        EditorPreferencesDialog dialog;
        show(&dialog);
        QLineEdit* field = fieldOf(dialog, name.constData());
        const QString shown = field->text();

        type(field, text);
        dialog.accept();
        QVERIFY(dialog.isVisible()); // so that the message can be read
        QVERIFY2(dialog.message().contains(named), qPrintable(dialog.message()));
        QCOMPARE(field->text(), shown);
        QVERIFY(isSame(sample.property(name.constData()), before));
        type(fieldOf(dialog, "place"), QStringLiteral("elsewhere\n"));
        QCOMPARE(dialog.message(), QString());
    }

    void colorDialog_isFollowed_untilItIsCancelled()
    {
        Sample sample;
        EditorPreferencesDialog dialog;
        show(&dialog);
        const QLineEdit* field = fieldOf(dialog, "ink"); // before the colour dialog brings its own
        rowOf(dialog, "ink")->findChild<EditorColorButton*>()->click();
        auto* colors = dialog.findChild<QColorDialog*>();
        QVERIFY(colors);
        QVERIFY(colors->testOption(QColorDialog::ShowAlphaChannel));
        colors->setCurrentColor(QColor(9, 8, 7, 6));
        QCOMPARE(sample.m_Ink, QColor(9, 8, 7, 6));
        QCOMPARE(field->text(), QStringLiteral("#09080706"));
        colors->reject();
        QCOMPARE(sample.m_Ink, QColor(1, 2, 3));
    }

    void reset_givesDefaultsOfWhatIsListed()
    {
        Sample sample;
        Sample other;
        QSignalSpy changes(&sample, &Sample::stepsChanged);
        EditorPreferencesDialog dialog;
        show(&dialog);
        QCOMPARE(sample.steps(), 2); // finding the default leaves no trace
        QCOMPARE(changes.count(), 0);
        QVERIFY(!resetOf(dialog, "steps")->isHidden());
        QVERIFY(resetOf(dialog, "depth")->isHidden()); // no default is known
        QVERIFY(rowOf(dialog, "fixed")->findChildren<QLineEdit*>().isEmpty());

        resetOf(dialog, "steps")->click();
        QCOMPARE(sample.steps(), 8);
        QVERIFY(resetOf(dialog, "steps")->isHidden());
        QCOMPARE(fieldOf(dialog, "steps")->text(), QStringLiteral("8"));
        auto* search = dialog.findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
        search->setText(QStringLiteral("COLORS sky"));
        QVERIFY(!rowOf(dialog, "sky")->isHidden());
        QVERIFY(rowOf(dialog, "ink")->isHidden());
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
        EditorPreferencesDialog dialog;
        show(&dialog);
        sample.setSteps(30);
        sample.setProperty("late", 31);
        QCOMPARE(fieldOf(dialog, "steps")->text(), QStringLiteral("30"));
        type(fieldOf(dialog, "late"), QStringLiteral("32\n"));
        dialog.reject();
        QCOMPARE(sample.steps(), 30); // never edited here
        QCOMPARE(sample.property("late").toInt(), 31);
    }

    void rows_comeAndGoWithTheirObjects()
    {
        OrvNgStyle::instance(); // a page that stays
        auto sample = std::make_unique<Sample>();
        EditorPreferencesDialog dialog;
        show(&dialog);
        const auto* pages = dialog.findChild<QListWidget*>();
        QCOMPARE(pages->count(), 2);
        type(fieldOf(dialog, "ink"), QStringLiteral("blue")); // not finished
        sample.reset();
        QCOMPARE(pages->count(), 1);
        QCOMPARE(pages->item(0)->text(), QStringLiteral("Node Graph"));
        QVERIFY(!rowOf(dialog, "ink"));

        Sample late;
        type(fieldOf(dialog, "place"), QStringLiteral("new\n"));
        QCOMPARE(late.m_Place, QStringLiteral("new"));
    }

    void ok_keepsTheStyleForTheNextStart()
    {
        EditorPreferencesDialog dialog;
        show(&dialog);
        type(fieldOf(dialog, "MathNodeColor"), QStringLiteral("#12345678"));
        type(fieldOf(dialog, "GridLinesWidth"), QStringLiteral("5\n"));
        dialog.accept();
        const OrvNgStyle next;
        const auto gradient = next.property("MathNodeBrush").value<QLinearGradient>();
        QCOMPARE(gradient.stops().constFirst().second, QColor(18, 52, 86, 120));
        QCOMPARE(next.getGridPen().width(), 5);
    }

private:
    /// Active, so that fields get and lose the focus.
    static void show(EditorPreferencesDialog* dialog)
    {
        dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog));
    }

    QTemporaryDir m_Folder;
};

QTEST_MAIN(tst_EditorPreferencesDialog)
#include "tst_EditorPreferencesDialog.moc"
