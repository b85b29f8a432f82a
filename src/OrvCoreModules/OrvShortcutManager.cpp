#include "OrvCoreModules/OrvShortcutManager.h"

OrvShortcutManager& OrvShortcutManager::instance()
{
    static auto* const s_Instance = new OrvShortcutManager;
    return *s_Instance;
}

OrvShortcutManager::OrvShortcutManager()
{
    qRegisterMetaType<Qt::Key>("Qt::Key"); // for queued connections to the signal
}

void OrvShortcutManager::setEnabledSpecialShortcut(Qt::Key key, bool enabled)
{
    if (isSpecialShortcutEnabled(key) == enabled)
        return;
    if (enabled)
        m_EnabledKeys.insert(key);
    else
        m_EnabledKeys.remove(key);
    Q_EMIT specialShortcutEnabledChanged(key, enabled);
}
