#pragma once

#include <QAbstractButton>
#include <QColor>

/// A swatch of a colour, over a chequered ground where it is transparent. A click opens the colour
/// dialog; what is picked there is told at once, and its Cancel puts the first colour back.
///
/// Called by  EditorColorField.
/// Uses       QColorDialog, which dies with the button.
/// Tells      the field, through colorEdited.
class EditorColorButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit EditorColorButton(QWidget* parent = nullptr);

    const QColor& color() const { return m_Color; }
    /// Shows a colour; an invalid one is a crossed-out swatch.
    void setColor(const QColor& color);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user picked it; a colour set by setColor() is not told.
    void colorEdited(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openDialog();
    void edit(const QColor& color);

    QColor m_Color;
};
