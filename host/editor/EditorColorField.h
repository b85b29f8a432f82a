#pragma once

#include <QColor>
#include <QWidget>

class EditorColorButton;
class QLineEdit;

/// A colour as a swatch and as text, either of which changes it. A text that is no colour goes, the
/// old one comes back, and refused says why.
///
/// Called by  EditorPropertyEditor.
/// Uses       EditorColorButton, EditorPropertyValue.
/// Tells      the editor, through its signals.
class EditorColorField : public QWidget
{
    Q_OBJECT

public:
    explicit EditorColorField(QWidget* parent = nullptr);

    QColor color() const;
    void setColor(const QColor& color);
    /// What assistive technology and the colour dialog call it.
    void setName(const QString& name);

Q_SIGNALS:
    void colorEdited(const QColor& color);
    void refused(const QString& why);

private:
    void takeText();
    void showText();

    EditorColorButton* m_Swatch;
    QLineEdit* m_Text;
};
