#pragma once

#include "OrvCoreModules/OrvCoreModulesExport.h"

class QWidget;

/// Keyboard focus that follows the mouse without robbing the user.
///
/// Called by  the view, at every mouse move over it.
/// Uses       the application's focus state.
/// Tells      nobody; Qt tells the widgets.
namespace OrvGui {

/// Gives the widget the keyboard focus when its window is the active one. Nothing happens when the
/// user may be typing (a line or text edit, a spin box, an editable combo box, or text in a
/// graphics view has the focus), when a popup is open, when another window is modal, or when the
/// widget is null, hidden or disabled.
ORVCOREMODULES_EXPORT void stealFocusGently(QWidget* widget);

} // namespace OrvGui
