#include "OrvCore/OrvUndoManager.h"

#include "OrvCore/OrvDebug.h"

#include <QUndoCommand>
#include <QUndoStack>

OrvUndoManager::AutoMacro::AutoMacro(const QString& text)
{
    OrvUndoManager::instance().enterMacro(text);
}

OrvUndoManager::AutoMacro::~AutoMacro()
{
    OrvUndoManager::instance().leaveMacro();
}

OrvUndoManager& OrvUndoManager::instance()
{
    // Never destroyed: commands may own items, which must not die after the application.
    static auto* const s_Instance = new OrvUndoManager;
    return *s_Instance;
}

OrvUndoManager::OrvUndoManager()
    : m_Stack(new QUndoStack(this))
{
    // The index stands still while a macro gathers. When it moves, the stack was cleared (or
    // somebody ended the macro) and there is nothing left to end.
    connect(m_Stack, &QUndoStack::indexChanged, this, [this] { m_StackMacroOpen = false; });
}

void OrvUndoManager::push(QUndoCommand* command)
{
    if (!command) {
        OrvDebug("src/OrvCore/OrvUndoManager", __LINE__,
            QStringLiteral("[ !! ] A null undo command cannot be pushed"), false, false);
        return;
    }
    if (m_MacroDepth > 0 && !m_StackMacroOpen) {
        m_Stack->beginMacro(m_MacroText);
        m_StackMacroOpen = true;
    }
    m_Stack->push(command);
}

void OrvUndoManager::enterMacro(const QString& text)
{
    if (m_MacroDepth++ == 0)
        m_MacroText = text;
}

void OrvUndoManager::leaveMacro()
{
    if (--m_MacroDepth == 0 && m_StackMacroOpen)
        closeStackMacro();
}

void OrvUndoManager::closeStackMacro()
{
    const int step = m_Stack->index();
    m_StackMacroOpen = false;
    m_Stack->endMacro();

    // Commands that found nothing to do (obsolete after redo) leave an empty step behind: take it
    // back.
    const bool stepMade = m_Stack->index() == step + 1;
    if (stepMade && m_Stack->command(step)->childCount() == 0) {
        const_cast<QUndoCommand*>(m_Stack->command(step))->setObsolete(true);
        m_Stack->undo();
    }
}
