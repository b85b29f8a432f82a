#pragma once

#include <QDialog>
#include <QPointer>
#include <QVector>

class EditorPreferenceRow;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QScrollArea;
class QStackedWidget;
class QVBoxLayout;

/// All preferences that OrvPreferenceManager knows, in pages and sections. Edits apply at once, so
/// that the graph behind shows them. OK keeps them, Cancel puts every edited value back.
///
/// To keep means that each object with a slot savePreferences() has it called; objects that keep
/// their values by other means need none. Preferences that are registered, or whose objects die,
/// while the dialog is open come and go.
///
/// Called by  EditorWindow.
/// Uses       OrvPreferenceManager, EditorPreferenceRow.
/// Tells      the registered objects, through their properties.
class EditorPreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit EditorPreferencesDialog(QWidget* parent = nullptr);

    /// Shows the dialog over a window, without blocking it: the one that is open there already, or
    /// a new one that is deleted when it closes.
    static EditorPreferencesDialog* showFor(QWidget* parent);

    /// What was wrong with the last input; empty after an edit that was good.
    QString message() const;

public Q_SLOTS:
    void accept() override;
    void reject() override;
    /// Gives the defaults back to what the page on show lists.
    void resetPage();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Section
    {
        QString title;
        QWidget* box;
        QVBoxLayout* rows;
    };
    struct Page
    {
        QString title;
        QScrollArea* area;
        QVBoxLayout* column;
        QVector<Section> sections;
    };

    void buildWidgets();
    QLayout* buildButtons();
    void addPreference(
        const QString& page, const QString& section, QObject* object, const QString& propertyName);
    Page& pageOf(const QString& title);
    Section& sectionOf(Page& page, const QString& title);
    void removeDeadRows();
    void removePage(int index);
    void filter();
    void alignLabels();
    void orderTabs();
    void updateResetPage();
    void showMessage(const QString& text);
    void finishInput();
    QVector<EditorPreferenceRow*> shownRows() const;

    QVector<Page> m_Pages; ///< in the order of the list
    QVector<EditorPreferenceRow*> m_Rows;
    QLineEdit* m_Search = nullptr;
    QListWidget* m_List = nullptr;
    QStackedWidget* m_Stack = nullptr; ///< the pages; the last one says that there is nothing
    QLabel* m_Message = nullptr;
    QVector<QPushButton*> m_Buttons;
    QPushButton* m_ResetPage = nullptr; ///< one of m_Buttons
};
