#include "editor/EditorQuestions.h"

#include "editor/EditorSettings.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

EditorQuestions::EditorQuestions(QWidget* parent)
    : m_Parent(parent)
{
}

EditorQuestions::~EditorQuestions() = default;

EditorQuestions::Answer EditorQuestions::aboutUnsaved(const QString& fileName)
{
    QMessageBox box(QMessageBox::Warning, tr("Unsaved Changes"),
        tr("Save the changes to %1?").arg(fileName),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_Parent);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(tr("They are lost otherwise."));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return Answer::Save;
    case QMessageBox::Discard:
        return Answer::Discard;
    default:
        return Answer::Cancel;
    }
}

bool EditorQuestions::overwriteChanged(const QString& fileName)
{
    QMessageBox box(QMessageBox::Warning, tr("The File Has Changed"),
        tr("%1 has changed on disk since it was read.").arg(fileName), QMessageBox::Cancel,
        m_Parent);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(tr("Saving puts your version in its place."));
    const QAbstractButton* overwrite
        = box.addButton(tr("&Overwrite"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == overwrite;
}

QString EditorQuestions::pathToOpen(const QString& folder)
{
    return QFileDialog::getOpenFileName(
        m_Parent, tr("Open Document"), folder, tr("Shader networks (*.mtlx);;All files (*)"));
}

QString EditorQuestions::pathToSave(const QString& presentPath)
{
    QFileDialog dialog(m_Parent, tr("Save Document"), QFileInfo(presentPath).absolutePath(),
        tr("Shader networks (*.mtlx)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QStringLiteral("mtlx"));
    dialog.selectFile(QFileInfo(presentPath).fileName());
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

int EditorQuestions::gridSize(int present)
{
    bool isGiven = false;
    const int size = QInputDialog::getInt(m_Parent, tr("Grid Size"),
        tr("Width and height of a cell, in units of the graph:"), present, 1,
        EditorSettings::kLargestGrid, 1, &isGiven);
    return isGiven ? size : 0;
}

std::optional<QString> EditorQuestions::text(
    const QString& title, const QString& label, const QString& present, bool manyLines)
{
    bool isGiven = false;
    const QString text = manyLines
        ? QInputDialog::getMultiLineText(m_Parent, title, label, present, &isGiven)
        : QInputDialog::getText(m_Parent, title, label, QLineEdit::Normal, present, &isGiven);
    return isGiven ? std::optional<QString>(text) : std::nullopt;
}

QColor EditorQuestions::color(const QString& title, const QColor& present)
{
    return QColorDialog::getColor(present, m_Parent, title);
}

void EditorQuestions::tellFailure(const QString& what, const QString& why)
{
    QMessageBox box(QMessageBox::Critical, what, what, QMessageBox::Ok, m_Parent);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(why);
    box.exec();
}
