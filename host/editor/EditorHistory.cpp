#include "editor/EditorHistory.h"

#include "editor/EditorView.h"

#include <OrvCore/OrvUndoManager.h>

#include <QAction>
#include <QUndoStack>

namespace {

// Node names may hold the sign that marks a menu's letter.
QString menuText(const QString& verb, QString step)
{
    return QStringLiteral("%1 %2")
        .arg(verb, step.replace(QLatin1Char('&'), QLatin1String("&&")))
        .trimmed();
}

} // namespace

EditorHistory::EditorHistory(EditorView* view, QObject* parent)
    : QObject(parent)
    , m_View(view)
    , m_Stack(OrvUndoManager::instance().undoStack())
    , m_Undo(new QAction(this))
    , m_Redo(new QAction(this))
{
    // Without the step, for lists of all actions.
    m_Undo->setData(tr("Undo"));
    m_Redo->setData(tr("Redo"));
    connect(m_Undo, &QAction::triggered, this, &EditorHistory::undo);
    connect(m_Redo, &QAction::triggered, this, &EditorHistory::redo);
    connect(m_Stack, &QUndoStack::indexChanged, this, &EditorHistory::refresh);
    connect(m_View, &EditorView::mouseHeldChanged, this, &EditorHistory::refresh);
    refresh();
}

void EditorHistory::clear()
{
    m_Stack->clear();
    refresh();
}

void EditorHistory::refresh()
{
    const bool isFree = !m_View->isMouseHeld();
    m_Undo->setText(menuText(tr("&Undo"), m_Stack->undoText()));
    m_Undo->setEnabled(isFree && m_Stack->canUndo());
    m_Redo->setText(menuText(tr("&Redo"), m_Stack->redoText()));
    m_Redo->setEnabled(isFree && m_Stack->canRedo());
}

// An edge may be carried without a button being held: it goes home first.

void EditorHistory::undo()
{
    const QString text = m_Stack->undoText();
    m_View->cancel();
    m_Stack->undo();
    Q_EMIT status(tr("Undone: %1").arg(text));
}

void EditorHistory::redo()
{
    const QString text = m_Stack->redoText();
    m_View->cancel();
    m_Stack->redo();
    Q_EMIT status(tr("Redone: %1").arg(text));
}
