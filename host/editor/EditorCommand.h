#pragma once

#include "network/NetEditor.h"

#include <QUndoCommand>

/// One step of the undo history: a change of the document with its text.
///
/// Called by  OrvUndoManager.
/// Uses       NetEditor::Change; keeps the NetEditor alive for it.
/// Tells      nobody: the NetEditor tells the scenes.
class EditorCommand : public QUndoCommand
{
public:
    /// Pushes the change, which makes it. A null change is not one: nothing is pushed, and the result is
    /// false.
    static bool push(
        const std::shared_ptr<NetEditor>& editor, NetEditor::ChangePtr change, const QString& text);

    void redo() override { m_Change->redo(); }
    void undo() override { m_Change->undo(); }

private:
    EditorCommand(
        std::shared_ptr<NetEditor> editor, NetEditor::ChangePtr change, const QString& text);

    std::shared_ptr<NetEditor> m_Editor; ///< outlives the change
    NetEditor::ChangePtr m_Change; ///< never null
};
