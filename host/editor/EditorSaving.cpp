#include "editor/EditorSaving.h"

#include "editor/EditorMessageBar.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorQuestions.h"
#include "network/NetEditor.h"

#include <OrvCore/OrvUndoManager.h>

#include <QFileInfo>
#include <QUndoStack>

EditorSaving::EditorSaving(EditorNavigator* navigator, EditorMessageBar* messages, QObject* parent)
    : QObject(parent)
    , m_Navigator(navigator)
    , m_Messages(messages)
    , m_Questions(std::make_unique<EditorQuestions>(messages))
{
}

EditorSaving::~EditorSaving() = default;

void EditorSaving::setQuestions(std::unique_ptr<EditorQuestions> questions)
{
    m_Questions = std::move(questions);
}

bool EditorSaving::isModified()
{
    return !OrvUndoManager::instance().undoStack()->isClean();
}

QString EditorSaving::path() const
{
    return m_Navigator->editor() ? m_Navigator->editor()->document().filePath() : QString();
}

bool EditorSaving::mayLose()
{
    if (!isModified() || !m_Navigator->editor())
        return true;
    switch (m_Questions->aboutUnsaved(QFileInfo(path()).fileName())) {
    case EditorQuestions::Answer::Save:
        return save();
    case EditorQuestions::Answer::Discard:
        return true;
    case EditorQuestions::Answer::Cancel:
        break;
    }
    return false;
}

bool EditorSaving::save()
{
    if (!m_Navigator->editor())
        return false;
    if (m_Navigator->editor()->changedOnDisk()
        && !m_Questions->overwriteChanged(QFileInfo(path()).fileName()))
        return false;
    return write(path());
}

bool EditorSaving::saveAs()
{
    if (!m_Navigator->editor())
        return false;
    const QString chosen = m_Questions->pathToSave(path());
    return !chosen.isEmpty() && write(chosen);
}

bool EditorSaving::write(const QString& path)
{
    QString error;
    if (!m_Navigator->editor()->save(path, &error)) {
        const QString what = tr("Not saved.");
        m_Messages->setMessages(what, {{NetMessage::Severity::Error, path, 0, error}});
        m_FailureShown = true;
        m_Questions->tellFailure(what, error);
        return false;
    }
    if (m_FailureShown)
        m_Messages->setMessages(QString(), {});
    m_FailureShown = false;
    OrvUndoManager::instance().undoStack()->setClean();
    Q_EMIT saved(this->path());
    return true;
}
