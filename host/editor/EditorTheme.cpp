#include "editor/EditorTheme.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace {

const QColor kWindow(52, 54, 58);
const QColor kBase(36, 37, 40);
const QColor kButton(64, 66, 71);
const QColor kText(222, 224, 228);
const QColor kFaintText(132, 136, 143);
const QColor kAccent(255, 176, 59);

constexpr qreal kBandFill = 0.12; // opacity
constexpr qreal kBandRadius = 2; // pixels

/// Fusion, but with a rubber band through which the nodes inside can be seen.
class ThemeStyle : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override
    {
        if (element == CE_RubberBand)
            drawBand(option->rect, painter);
        else
            QProxyStyle::drawControl(element, option, painter, widget);
    }
    /// The whole band is painted, not only its frame.
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* data) const override
    {
        return hint == SH_RubberBand_Mask ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }

private:
    static void drawBand(const QRectF& rect, QPainter* painter)
    {
        QColor fill = kAccent;
        fill.setAlphaF(kBandFill);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(kAccent, 1));
        painter->setBrush(fill);
        // The middle of the line lies half a pixel inside, so that all of it is within the rectangle.
        const qreal half = 0.5;
        painter->drawRoundedRect(rect.adjusted(half, half, -half, -half), kBandRadius, kBandRadius);
        painter->restore();
    }
};

QPalette palette()
{
    QPalette palette(kButton, kWindow);
    palette.setColor(QPalette::Base, kBase);
    palette.setColor(QPalette::AlternateBase, kBase.lighter(112));
    palette.setColor(QPalette::ToolTipBase, kBase);
    palette.setColor(QPalette::Highlight, kAccent.darker(170));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, kAccent);
    palette.setColor(QPalette::PlaceholderText, kFaintText);
    for (const auto role :
        {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, kText);
        palette.setColor(QPalette::Disabled, role, kFaintText);
    }
    return palette;
}

// The first family that the machine has, at a size that stays readable at 100 %.
QFont font()
{
    for (const char* family : {"Inter", "Noto Sans", "DejaVu Sans"}) {
        QFont font(QString::fromLatin1(family), 9);
        if (QFontInfo(font).exactMatch())
            return font;
    }
    QFont font = QApplication::font();
    font.setPointSize(9);
    return font;
}

QString styleSheet()
{
    return QStringLiteral(
        "QMenuBar { background: #2b2c2f; }"
        "QMenuBar::item { padding: 4px 9px; background: transparent; }"
        "QMenuBar::item:selected { background: #46494f; }"
        "QStatusBar { background: #2b2c2f; color: #aeb2b9; }"
        "QStatusBar::item { border: none; }"
        "QStatusBar QLabel { color: #aeb2b9; padding: 1px 8px; }"
        "QToolTip { background: #242528; color: #dee0e4; border: 1px solid #5a5d63;"
        " padding: 4px; }"
        "#breadcrumbs { background: #34363a; border-bottom: 1px solid #232427; }"
        "#breadcrumbs QToolButton { border: none; border-radius: 3px; padding: 3px 7px;"
        " color: #aeb2b9; }"
        "#breadcrumbs QToolButton:hover { background: #46494f; color: #ffffff; }"
        "#breadcrumbs QToolButton:disabled { color: #f2f3f5; }"
        "#breadcrumbs QLabel { color: #747981; }"
        "#messages { background: #3b3d42; border-bottom: 1px solid #232427; }"
        "#messages[severity=\"2\"] { border-left: 4px solid #f0564c; }"
        "#messages[severity=\"1\"] { border-left: 4px solid #ffb03b; }"
        "#messages[severity=\"0\"] { border-left: 4px solid #62beff; }"
        "#messages QToolButton { border: none; border-radius: 3px; padding: 3px 7px;"
        " color: #dee0e4; }"
        "#messages QToolButton:hover { background: #52555c; }"
        "#messages QPlainTextEdit { background: #2b2c2f; border: none; }");
}

} // namespace

void EditorTheme::apply(QApplication* application)
{
    QApplication::setStyle(new ThemeStyle(QStyleFactory::create(QStringLiteral("Fusion"))));
    // The application owns the style. NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
    QApplication::setPalette(palette());
    QApplication::setFont(font());
    application->setStyleSheet(styleSheet());
}
