#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QObject>
#include <QString>

class QUndoCommand;
class QUndoStack;

/// The one undo history of the host. Commands are pushed here and not on the stack, so that an
/// AutoMacro can gather them; everything else (undo, redo, actions, clean state) is the stack's.
///
/// Called by  the view and the backdrop (macros), the backdrop's handles (push), the host.
/// Uses       QUndoStack.
/// Tells      listeners of the stack.
class ORVCORE_EXPORT OrvUndoManager : public QObject
{
    Q_OBJECT
public:
    /// While it lives, everything pushed becomes one undo step with its text. Nothing pushed, no
    /// step, and what could be redone stays. One made within the life of another joins it: the
    /// outermost gives text and extent. undo() and redo() do nothing while a step is being
    /// gathered; after a clear() of the stack, what is pushed until the end makes a step of its
    /// own.
    class ORVCORE_EXPORT AutoMacro
    {
    public:
        explicit AutoMacro(const QString& text);
        ~AutoMacro();

    private:
        Q_DISABLE_COPY(AutoMacro)
    };

    /// The one manager, alive until the process ends.
    static OrvUndoManager& instance();

    /// The stack of the manager, never null.
    QUndoStack* undoStack() { return m_Stack; }

    /// Takes ownership of the command, runs its redo() and keeps it for undo, merging it into the
    /// previous one when that accepts. A null command is reported and ignored.
    void push(QUndoCommand* command);

private:
    OrvUndoManager();
    Q_DISABLE_COPY(OrvUndoManager)

    void enterMacro(const QString& text);
    void leaveMacro();
    void closeStackMacro();

    QUndoStack* m_Stack;
    QString m_MacroText;
    int m_MacroDepth = 0;
    bool m_StackMacroOpen = false; // begun on the stack, which happens with the first push
};
