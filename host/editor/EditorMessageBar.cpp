#include "editor/EditorMessageBar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int kMostLines = 1000;
constexpr int kDetailsHeight = 130; // pixels

QToolButton* textButton(const QString& text, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

// The file's name is enough here; the whole path stands in the details.
QString shortText(const NetMessage& message)
{
    NetMessage brief = message;
    brief.file = QFileInfo(message.file).fileName();
    return brief.toString();
}

} // namespace

EditorMessageBar::EditorMessageBar(QWidget* parent)
    : QFrame(parent)
    , m_Headline(new QLabel(this))
    , m_DetailsButton(textButton(QString(), this))
    , m_Details(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("messages"));
    m_Headline->setTextFormat(Qt::PlainText);
    m_Headline->setWordWrap(true);
    m_Headline->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_DetailsButton->setCheckable(true);
    m_Details->setReadOnly(true);
    m_Details->setMaximumHeight(kDetailsHeight);
    m_Details->setLineWrapMode(QPlainTextEdit::NoWrap);
    QToolButton* close = textButton(QString(QChar(0x2715)), this);
    close->setToolTip(tr("Close"));

    auto* line = new QHBoxLayout;
    line->addWidget(m_Headline, 1);
    line->addWidget(m_DetailsButton);
    line->addWidget(close);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(10, 4, 6, 4);
    column->setSpacing(4);
    column->addLayout(line);
    column->addWidget(m_Details);

    connect(m_DetailsButton, &QToolButton::toggled, this, &EditorMessageBar::showDetails);
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    hide();
}

void EditorMessageBar::setMessages(const QString& heading, const QVector<NetMessage>& messages)
{
    m_DetailsButton->setChecked(false);
    showDetails(false);
    setVisible(!messages.isEmpty());
    if (messages.isEmpty())
        return;
    QVector<NetMessage> sorted = messages;
    std::stable_sort(sorted.begin(), sorted.end(),
        [](const NetMessage& a, const NetMessage& b) { return a.severity > b.severity; });
    const QString first = shortText(sorted.constFirst());
    m_Headline->setText(heading.isEmpty() ? first : QStringLiteral("%1  %2").arg(heading, first));
    QStringList lines;
    for (const NetMessage& message : qAsConst(sorted)) {
        if (lines.size() < kMostLines)
            lines.append(message.toString());
    }
    m_Details->setPlainText(lines.join(QLatin1Char('\n')));
    m_DetailsButton->setVisible(sorted.size() > 1);
    m_DetailsButton->setText(tr("Show all %1").arg(sorted.size()));
    setProperty("severity", static_cast<int>(sorted.constFirst().severity));
    style()->unpolish(this); // the style sheet looks at the property only when polishing
    style()->polish(this);
}

void EditorMessageBar::showDetails(bool shown)
{
    m_Details->setVisible(shown);
}

QString EditorMessageBar::headline() const
{
    return m_Headline->text();
}

QString EditorMessageBar::details() const
{
    return m_Details->toPlainText();
}
