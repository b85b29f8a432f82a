#pragma once

#include <QObject>

class EditorView;
class QAction;
class QUndoStack;

/// The undo history as the user meets it: two actions that name the step they would take, and are off while
/// the mouse is doing something.
///
/// Called by  EditorWindow.
/// Uses       the undo manager, EditorView (what the mouse does).
/// Tells      the window, through status().
class EditorHistory : public QObject
{
    Q_OBJECT

public:
    EditorHistory(EditorView* view, QObject* parent);

    QAction* undoAction() const { return m_Undo; }
    QAction* redoAction() const { return m_Redo; }
    /// Forgets all steps; what there is counts as saved.
    void clear();

Q_SIGNALS:
    /// What was undone or redone.
    void status(const QString& text);

private:
    void undo();
    void redo();
    void refresh();

    EditorView* m_View;
    QUndoStack* m_Stack;
    QAction* m_Undo;
    QAction* m_Redo;
};
