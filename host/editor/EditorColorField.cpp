#include "editor/EditorColorField.h"

#include "editor/EditorColorButton.h"
#include "editor/EditorPropertyValue.h"

#include <QHBoxLayout>
#include <QLineEdit>

EditorColorField::EditorColorField(QWidget* parent)
    : QWidget(parent)
    , m_Swatch(new EditorColorButton(this))
    , m_Text(new QLineEdit(this))
{
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(m_Swatch);
    line->addWidget(m_Text);
    m_Text->setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("#mmddbbaa00")));
    m_Text->setToolTip(tr("#rrggbb, or #rrggbbaa with its opacity, or the name of a colour"));
    setFocusProxy(m_Swatch);
    connect(m_Text, &QLineEdit::editingFinished, this, &EditorColorField::takeText);
    connect(m_Swatch, &EditorColorButton::colorEdited, this, [this](const QColor& color) {
        showText();
        Q_EMIT colorEdited(color);
    });
}

QColor EditorColorField::color() const
{
    return m_Swatch->color();
}

void EditorColorField::setColor(const QColor& color)
{
    if (color == m_Swatch->color() && !m_Text->text().isEmpty())
        return;
    m_Swatch->setColor(color);
    showText();
}

void EditorColorField::setName(const QString& name)
{
    m_Swatch->setAccessibleName(name);
    m_Text->setAccessibleName(name);
}

void EditorColorField::takeText()
{
    const QString text = m_Text->text();
    if (text == EditorPropertyValue::colorText(color()))
        return;
    const QColor wanted = EditorPropertyValue::colorFromText(text);
    if (wanted.isValid())
        m_Swatch->setColor(wanted);
    showText();
    if (wanted.isValid())
        Q_EMIT colorEdited(wanted);
    else
        Q_EMIT refused(tr("“%1” is not a colour: write it like #4080ff or #4080ff80.").arg(text));
}

void EditorColorField::showText()
{
    m_Text->setText(EditorPropertyValue::colorText(color()));
}
