#include "editor/EditorCommand.h"

#include <OrvCore/OrvUndoManager.h>

EditorCommand::EditorCommand(
    std::shared_ptr<NetEditor> editor, NetEditor::ChangePtr change, const QString& text)
    : QUndoCommand(text)
    , m_Editor(std::move(editor))
    , m_Change(std::move(change))
{
}

bool EditorCommand::push(
    const std::shared_ptr<NetEditor>& editor, NetEditor::ChangePtr change, const QString& text)
{
    if (!change)
        return false;
    OrvUndoManager::instance().push(new EditorCommand(editor, std::move(change), text));
    return true;
}
