#pragma once

#include <QObject>

#include <memory>

class EditorMessageBar;
class EditorNavigator;
class EditorQuestions;

/// Writes the document on show, and keeps its changes from being lost unasked. The document is unsaved
/// while the undo history is not at the step that was saved last.
///
/// Called by  EditorWindow.
/// Uses       NetEditor (writes), the undo manager, EditorQuestions, EditorMessageBar.
/// Tells      the window, through saved().
class EditorSaving : public QObject
{
    Q_OBJECT

public:
    EditorSaving(EditorNavigator* navigator, EditorMessageBar* messages, QObject* parent);
    ~EditorSaving() override;

    /// Who answers from now on; never null.
    void setQuestions(std::unique_ptr<EditorQuestions> questions);
    EditorQuestions* questions() const { return m_Questions.get(); }

    static bool isModified();
    /// Whether the document on show may go: true when nothing is unsaved, or the user has had it saved or
    /// wants to lose it.
    bool mayLose();

    /// To its own file. False when there is no document, the user does not want to write over a file that
    /// has changed, or it cannot be written, which the message bar and a dialog then say.
    bool save();
    /// To a file that the user chooses, which is the document's from then on.
    bool saveAs();

Q_SIGNALS:
    void saved(const QString& path);

private:
    QString path() const;
    bool write(const QString& path);

    EditorNavigator* m_Navigator;
    EditorMessageBar* m_Messages;
    std::unique_ptr<EditorQuestions> m_Questions;
    bool m_FailureShown = false; ///< the message bar tells of a write that failed
};
