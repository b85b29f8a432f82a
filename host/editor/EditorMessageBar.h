#pragma once

#include "network/NetMessage.h"

#include <QFrame>

class QLabel;
class QPlainTextEdit;
class QToolButton;

/// A bar above the graph that tells what is wrong with a document: the worst message at once, all
/// of them on request. It stays until the user closes it or the next document is opened.
///
/// Called by  EditorWindow.
/// Uses       NetMessage.
/// Tells      nobody.
class EditorMessageBar : public QFrame
{
    Q_OBJECT

public:
    explicit EditorMessageBar(QWidget* parent = nullptr);

    /// Shows messages, the worst first, with a heading in front of the first one (may be empty).
    /// No messages: the bar disappears.
    void setMessages(const QString& heading, const QVector<NetMessage>& messages);
    /// The one line on show.
    QString headline() const;
    /// Every message with file and line, one a line.
    QString details() const;

private:
    void showDetails(bool shown);

    QLabel* m_Headline;
    QToolButton* m_DetailsButton;
    QPlainTextEdit* m_Details;
};
