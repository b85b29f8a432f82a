#include "OrvCoreModules/OrvGui.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QGraphicsView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QWidget>

namespace {

bool isTextField(const QWidget* widget)
{
    if (const auto* const combo = qobject_cast<const QComboBox*>(widget))
        return combo->isEditable();
    // A graphics view takes input methods exactly while one of its items is being typed into.
    if (qobject_cast<const QGraphicsView*>(widget))
        return widget->testAttribute(Qt::WA_InputMethodEnabled);
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QTextEdit*>(widget)
        || qobject_cast<const QPlainTextEdit*>(widget)
        || qobject_cast<const QAbstractSpinBox*>(widget);
}

} // namespace

void OrvGui::stealFocusGently(QWidget* widget)
{
    if (!widget || !widget->isVisible() || !widget->isEnabled() || !widget->isActiveWindow())
        return;
    const QWidget* const holder = QApplication::focusWidget();
    if (holder == widget || isTextField(holder) || QApplication::activePopupWidget())
        return;
    const QWidget* const modal = QApplication::activeModalWidget();
    if (modal && modal != widget->window())
        return;
    widget->setFocus(Qt::OtherFocusReason);
}
