#include "editor/EditorColorButton.h"

#include <QColorDialog>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int kSquare = 5; // pixels, of the chequered ground
constexpr double kCorner = 3; // pixels

void fillWithSquares(QPainter* painter, const QRect& rect)
{
    painter->fillRect(rect, QColor(200, 200, 200));
    for (int y = 0; y * kSquare < rect.height(); ++y) {
        for (int x = y % 2; x * kSquare < rect.width(); x += 2) {
            painter->fillRect(rect.x() + x * kSquare, rect.y() + y * kSquare, kSquare, kSquare,
                QColor(130, 130, 130));
        }
    }
}

} // namespace

EditorColorButton::EditorColorButton(QWidget* parent)
    : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    connect(this, &QAbstractButton::clicked, this, &EditorColorButton::openDialog);
}

void EditorColorButton::setColor(const QColor& color)
{
    if (m_Color == color)
        return;
    m_Color = color;
    update();
}

QSize EditorColorButton::sizeHint() const
{
    const int height = fontMetrics().height() + 8;
    return {height * 2, height};
}

void EditorColorButton::openDialog()
{
    if (findChild<QColorDialog*>())
        return;
    auto* dialog = new QColorDialog(m_Color, this);
    dialog->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (!accessibleName().isEmpty())
        dialog->setWindowTitle(accessibleName());
    connect(dialog, &QColorDialog::currentColorChanged, this, &EditorColorButton::edit);
    connect(dialog, &QDialog::rejected, this, [this, before = m_Color] { edit(before); });
    dialog->open();
}

void EditorColorButton::edit(const QColor& color)
{
    if (m_Color == color || !color.isValid())
        return;
    setColor(color);
    Q_EMIT colorEdited(color);
}

void EditorColorButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    QPainterPath outline;
    outline.addRoundedRect(frame, kCorner, kCorner);
    painter.save();
    painter.setClipPath(outline);
    if (m_Color.alpha() < 255)
        fillWithSquares(&painter, rect());
    painter.fillRect(rect(), isEnabled() ? m_Color : palette().color(QPalette::Button));
    if (!m_Color.isValid())
        painter.drawLine(frame.bottomLeft(), frame.topRight());
    painter.restore();
    const bool isLit = hasFocus() || underMouse();
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Link), 2)
                              : QPen(palette().color(isLit ? QPalette::Text : QPalette::Mid), 1));
    painter.drawPath(outline);
}
