#pragma once

#include <QColor>
#include <QCoreApplication>
#include <QString>

#include <optional>

class QWidget;

/// What the editor asks its user, each in a dialog of its own. Something else may answer instead.
///
/// Called by  EditorSaving, EditorWindow.
/// Uses       Qt's dialogs.
/// Tells      nobody.
class EditorQuestions
{
    Q_DECLARE_TR_FUNCTIONS(EditorQuestions)

public:
    enum class Answer { Save, Discard, Cancel };

    /// The dialogs lie over that widget, which outlives the questions.
    explicit EditorQuestions(QWidget* parent);
    virtual ~EditorQuestions();

    /// What to do about the unsaved changes of a document, before they are lost.
    virtual Answer aboutUnsaved(const QString& fileName);
    /// Whether to write over a file that somebody else has changed since it was read.
    virtual bool overwriteChanged(const QString& fileName);
    /// A document to open; empty when the user thought better of it.
    virtual QString pathToOpen(const QString& folder);
    /// Where to save to, after asking about a file that is there already; empty for nowhere.
    virtual QString pathToSave(const QString& presentPath);
    /// The side of a square grid cell, in scene units; 0 when the user thought better of it.
    virtual int gridSize(int present);
    /// A line of text, or several; none when the user thought better of it.
    virtual std::optional<QString> text(
        const QString& title, const QString& label, const QString& present, bool manyLines);
    /// An invalid colour when the user thought better of it.
    virtual QColor color(const QString& title, const QColor& present);
    /// Something that the user asked for was not done.
    virtual void tellFailure(const QString& what, const QString& why);

private:
    Q_DISABLE_COPY(EditorQuestions)

    QWidget* m_Parent;
};
