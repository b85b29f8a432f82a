#pragma once

#include "OrvCoreModules/OrvCoreModulesExport.h"

#include <QObject>
#include <QSet>

/// Keys that have a special meaning while the user works in a certain widget: Tab opens the host's
/// node search over a view and moves the focus elsewhere. The widget enables the meaning while it
/// is under the mouse or focused and disables it afterwards; a key that nobody spoke of has none.
///
/// Called by  the view, as it is entered and left; the host, before it acts on a key.
/// Uses       nothing else.
/// Tells      the host, through specialShortcutEnabledChanged.
class ORVCOREMODULES_EXPORT OrvShortcutManager : public QObject
{
    Q_OBJECT
public:
    /// The one manager, alive until the process ends.
    static OrvShortcutManager& instance();

    void setEnabledSpecialShortcut(Qt::Key key, bool enabled);
    bool isSpecialShortcutEnabled(Qt::Key key) const { return m_EnabledKeys.contains(key); }

Q_SIGNALS:
    /// Only when the state has changed.
    void specialShortcutEnabledChanged(Qt::Key key, bool enabled);

private:
    OrvShortcutManager();
    Q_DISABLE_COPY(OrvShortcutManager)

    QSet<int> m_EnabledKeys; // Qt::Key values
};
