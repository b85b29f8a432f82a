#include "editor/EditorPreferencesDialog.h"

#include "editor/EditorPreferenceRow.h"

#include <OrvCore/OrvGroupParameterObject.h>
#include <OrvCore/OrvPreferenceManager.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaMethod>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int kListWidth = 150; // pixels
const QSize kSize(720, 710);

QString dialogStyle()
{
    return QStringLiteral(
        "#preferencePages { background: #2b2c2f; border: none; border-radius: 4px; padding: 4px; }"
        "#preferencePages::item { padding: 6px 8px; border-radius: 3px; }"
        "#preferencePages::item:selected { background: #46494f; color: #ffffff; }"
        "#preferenceHeading { color: #ffffff; font-weight: bold; padding: 2px 0 4px 0;"
        " border: none; border-bottom: 1px solid #5a5d63; }"
        "#preferenceMessage { color: #ffb03b; }"
        "#preferenceNothing { color: #84888f; }"
        "EditorPreferenceRow QToolButton { color: #ffb03b; padding: 0 3px; font-size: 12pt; }");
}

/// Each word must occur somewhere in what is said of a row.
bool matches(const QString& said, const QStringList& words)
{
    return std::all_of(words.cbegin(), words.cend(),
        [&said](const QString& word) { return said.contains(word, Qt::CaseInsensitive); });
}

QString headingOf(const QString& section, const QObject& object, const QString& propertyName)
{
    const auto* group = dynamic_cast<const OrvGroupParameterObject*>(&object);
    return section.isEmpty() && group ? group->propertyGroup(propertyName) : section;
}

void save(QObject* object)
{
    const int index = object->metaObject()->indexOfMethod("savePreferences()");
    if (index >= 0)
        object->metaObject()->method(index).invoke(object, Qt::DirectConnection);
}

} // namespace

EditorPreferencesDialog::EditorPreferencesDialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Preferences"));
    setStyleSheet(dialogStyle());
    resize(kSize);
    buildWidgets();
    const OrvPreferenceManager& manager = OrvPreferenceManager::instance();
    const QList<OrvPreferenceManager::Preference> preferences = manager.preferences();
    for (const OrvPreferenceManager::Preference& each : preferences)
        addPreference(each.page, each.section, each.object, each.propertyName);
    connect(&manager, &OrvPreferenceManager::preferenceRegistered, this,
        [this](const QString& page, const QString& section, QObject* object, const QString& name) {
            addPreference(page, section, object, name);
            orderTabs();
            filter();
        });
    orderTabs();
    m_List->setCurrentRow(0);
    filter();
    m_Search->setFocus();
}

EditorPreferencesDialog* EditorPreferencesDialog::showFor(QWidget* parent)
{
    auto* dialog
        = parent->findChild<EditorPreferencesDialog*>(QString(), Qt::FindDirectChildrenOnly);
    if (!dialog || !dialog->isVisible()) {
        dialog = new EditorPreferencesDialog(parent);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

void EditorPreferencesDialog::buildWidgets()
{
    m_Search = new QLineEdit(this);
    m_Search->setPlaceholderText(tr("Search preferences"));
    m_Search->setAccessibleName(m_Search->placeholderText());
    m_Search->setClearButtonEnabled(true);
    connect(m_Search, &QLineEdit::textChanged, this, &EditorPreferencesDialog::filter);
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, m_Search, [this] { m_Search->setFocus(); });

    m_List = new QListWidget(this);
    m_List->setObjectName(QStringLiteral("preferencePages"));
    m_List->setFixedWidth(kListWidth);
    m_List->setAccessibleName(tr("Pages"));
    m_Stack = new QStackedWidget(this);
    auto* nothing = new QLabel(tr("There is no such preference."), this);
    nothing->setObjectName(QStringLiteral("preferenceNothing"));
    nothing->setAlignment(Qt::AlignCenter);
    m_Stack->addWidget(nothing);
    connect(m_List, &QListWidget::currentRowChanged, this, [this](int row) {
        m_Stack->setCurrentIndex(row >= 0 ? row : m_Stack->count() - 1);
        updateResetPage();
    });
    m_Message = new QLabel(this);
    m_Message->setObjectName(QStringLiteral("preferenceMessage"));
    m_Message->setTextFormat(Qt::PlainText);
    m_Message->setWordWrap(true);

    auto* grid = new QGridLayout(this);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(10);
    grid->addWidget(m_Search, 0, 0, 1, 2);
    grid->addWidget(m_List, 1, 0);
    grid->addWidget(m_Stack, 1, 1);
    grid->addWidget(m_Message, 2, 0, 1, 2);
    grid->addLayout(buildButtons(), 3, 0, 1, 2);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);
    showMessage(QString());
}

// Not a QDialogButtonBox: that stands in the order of the Tab key as one of its buttons.
QLayout* EditorPreferencesDialog::buildButtons()
{
    m_ResetPage = new QPushButton(tr("Reset &Page"), this);
    m_ResetPage->setToolTip(tr("Gives all preferences listed here their defaults back"));
    auto* ok = new QPushButton(tr("&OK"), this);
    ok->setDefault(true);
    auto* cancel = new QPushButton(tr("&Cancel"), this);
    m_Buttons = {m_ResetPage, ok, cancel};
    for (QPushButton* button : qAsConst(m_Buttons)) {
        // A click leaves the focus where it is: what is being typed is finished by accept(), which
        // can still stay when it is wrong.
        button->setFocusPolicy(Qt::TabFocus);
    }
    connect(ok, &QPushButton::clicked, this, &EditorPreferencesDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &EditorPreferencesDialog::reject);
    connect(m_ResetPage, &QPushButton::clicked, this, &EditorPreferencesDialog::resetPage);
    auto* line = new QHBoxLayout;
    line->addWidget(m_ResetPage);
    line->addStretch(1);
    line->addWidget(ok);
    line->addWidget(cancel);
    return line;
}

// Rows are made after the buttons, and some while the dialog is open.
void EditorPreferencesDialog::orderTabs()
{
    QWidget* last = m_Rows.isEmpty() ? m_List : m_Rows.constLast()->lastField();
    for (QPushButton* button : qAsConst(m_Buttons)) {
        setTabOrder(last, button);
        last = button;
    }
}

EditorPreferencesDialog::Page& EditorPreferencesDialog::pageOf(const QString& title)
{
    const auto found = std::find_if(
        m_Pages.begin(), m_Pages.end(), [&title](const Page& page) { return page.title == title; });
    if (found != m_Pages.end())
        return *found;
    auto* area = new QScrollArea(this);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    auto* content = new QWidget(area);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 8, 0);
    column->setSpacing(18);
    column->addStretch(1);
    area->setWidget(content);
    m_Stack->insertWidget(m_Pages.size(), area);
    m_Pages.append({title, area, column, {}});
    m_List->addItem(title);
    return m_Pages.last();
}

EditorPreferencesDialog::Section& EditorPreferencesDialog::sectionOf(
    Page& page, const QString& title)
{
    const auto found = std::find_if(page.sections.begin(), page.sections.end(),
        [&title](const Section& section) { return section.title == title; });
    if (found != page.sections.end())
        return *found;
    auto* box = new QWidget(page.area->widget());
    auto* rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(3);
    if (!title.isEmpty()) {
        auto* heading = new QLabel(title, box);
        heading->setObjectName(QStringLiteral("preferenceHeading"));
        heading->setTextFormat(Qt::PlainText);
        heading->setIndent(0);
        rows->addWidget(heading);
    }
    page.column->insertWidget(page.sections.size(), box);
    page.sections.append({title, box, rows});
    return page.sections.last();
}

void EditorPreferencesDialog::addPreference(
    const QString& page, const QString& section, QObject* object, const QString& propertyName)
{
    if (!object)
        return;
    const Section& place = sectionOf(pageOf(page), headingOf(section, *object, propertyName));
    auto* row = new EditorPreferenceRow(object, propertyName, place.box);
    place.rows->addWidget(row);
    m_Rows.append(row);
    connect(
        row, &EditorPreferenceRow::valueChanged, this, &EditorPreferencesDialog::updateResetPage);
    connect(row, &EditorPreferenceRow::edited, this, [this] { showMessage(QString()); });
    connect(row, &EditorPreferenceRow::refused, this, &EditorPreferencesDialog::showMessage);
    connect(object, &QObject::destroyed, this, &EditorPreferencesDialog::removeDeadRows,
        Qt::UniqueConnection);
}

void EditorPreferencesDialog::removeDeadRows()
{
    const auto firstDead = std::stable_partition(m_Rows.begin(), m_Rows.end(),
        [](const EditorPreferenceRow* row) { return row->object() != nullptr; });
    for (auto dead = firstDead; dead != m_Rows.end(); ++dead) {
        (*dead)->setParent(nullptr); // out of its section
        (*dead)->deleteLater(); // an edit in it may be what ended the object
    }
    m_Rows.erase(firstDead, m_Rows.end());
    for (int i = m_Pages.size() - 1; i >= 0; --i) {
        QVector<Section>& sections = m_Pages[i].sections;
        for (int j = sections.size() - 1; j >= 0; --j) {
            if (sections.at(j).box->findChild<EditorPreferenceRow*>())
                continue;
            delete sections.at(j).box;
            sections.remove(j);
        }
        if (sections.isEmpty())
            removePage(i);
    }
    filter();
}

void EditorPreferencesDialog::removePage(int index)
{
    QScrollArea* area = m_Pages.at(index).area;
    m_Pages.remove(index);
    m_Stack->removeWidget(area);
    delete area;
    delete m_List->takeItem(index);
}

void EditorPreferencesDialog::filter()
{
    const QStringList words
        = m_Search->text().simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    int firstShown = -1;
    for (int i = 0; i < m_Pages.size(); ++i) {
        const Page& page = m_Pages.at(i);
        bool showsPage = false;
        for (const Section& section : page.sections) {
            bool showsSection = false;
            const auto rows = section.box->findChildren<EditorPreferenceRow*>();
            for (EditorPreferenceRow* row : rows) {
                const QString said
                    = QStringList{page.title, section.title, row->label(), row->propertyName()}
                          .join(QLatin1Char('\n'));
                const bool shows = matches(said, words);
                row->setVisible(shows);
                showsSection = showsSection || shows;
            }
            section.box->setVisible(showsSection);
            showsPage = showsPage || showsSection;
        }
        m_List->item(i)->setHidden(!showsPage);
        if (showsPage && firstShown < 0)
            firstShown = i;
    }
    const QListWidgetItem* current = m_List->currentItem();
    if (!current || current->isHidden())
        m_List->setCurrentRow(firstShown);
    m_Stack->setCurrentIndex(firstShown < 0 ? m_Stack->count() - 1 : m_List->currentRow());
    alignLabels();
    updateResetPage();
}

void EditorPreferencesDialog::alignLabels()
{
    for (const Page& page : qAsConst(m_Pages)) {
        const auto rows = page.area->findChildren<EditorPreferenceRow*>();
        int width = 0;
        for (const EditorPreferenceRow* row : rows)
            width = std::max(width, row->labelWidth());
        for (EditorPreferenceRow* row : rows)
            row->setLabelWidth(width);
    }
}

QVector<EditorPreferenceRow*> EditorPreferencesDialog::shownRows() const
{
    QVector<EditorPreferenceRow*> rows;
    const QWidget* page = m_Stack->currentWidget();
    std::copy_if(m_Rows.cbegin(), m_Rows.cend(), std::back_inserter(rows),
        [page](const EditorPreferenceRow* row) {
            return page->isAncestorOf(row) && !row->isHidden();
        });
    return rows;
}

void EditorPreferencesDialog::updateResetPage()
{
    const QVector<EditorPreferenceRow*> rows = shownRows();
    m_ResetPage->setEnabled(std::any_of(rows.cbegin(), rows.cend(),
        [](const EditorPreferenceRow* row) { return !row->isDefault(); }));
}

void EditorPreferencesDialog::resetPage()
{
    finishInput();
    QVector<QPointer<EditorPreferenceRow>> rows; // a reset may end an object
    const QVector<EditorPreferenceRow*> shown = shownRows();
    for (EditorPreferenceRow* row : shown)
        rows.append(row);
    for (const auto& row : qAsConst(rows)) {
        if (row)
            row->resetToDefault();
    }
}

void EditorPreferencesDialog::showMessage(const QString& text)
{
    m_Message->setText(text);
    m_Message->setVisible(!text.isEmpty());
}

QString EditorPreferencesDialog::message() const
{
    return m_Message->text();
}

void EditorPreferencesDialog::finishInput()
{
    if (QWidget* field = focusWidget())
        field->clearFocus();
}

void EditorPreferencesDialog::accept()
{
    showMessage(QString());
    finishInput();
    if (!message().isEmpty())
        return;
    QVector<QPointer<QObject>> objects; // one that saves may end another
    for (const EditorPreferenceRow* row : qAsConst(m_Rows)) {
        if (!objects.contains(row->object()))
            objects.append(row->object());
    }
    for (const QPointer<QObject>& object : qAsConst(objects)) {
        if (object)
            save(object);
    }
    QDialog::accept();
}

void EditorPreferencesDialog::reject()
{
    finishInput(); // or it would be taken when the field loses the focus, after all is put back
    const QVector<EditorPreferenceRow*> rows = m_Rows;
    for (EditorPreferenceRow* row : rows)
        row->putBack();
    QDialog::reject();
}

// Enter takes what was typed, and only that: with a default button it would close the dialog too.
void EditorPreferencesDialog::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !qobject_cast<QPushButton*>(focusWidget())) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
