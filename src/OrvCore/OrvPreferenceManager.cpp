#include "OrvCore/OrvPreferenceManager.h"

#include <QMetaObject>

#include <algorithm>

namespace {

bool hasProperty(const QObject& object, const QString& propertyName)
{
    const QByteArray name = propertyName.toUtf8();
    return object.metaObject()->indexOfProperty(name.constData()) >= 0
        || object.dynamicPropertyNames().contains(name);
}

} // namespace

OrvPreferenceManager& OrvPreferenceManager::instance()
{
    static auto* const s_Instance = new OrvPreferenceManager; // outlives every registered object
    return *s_Instance;
}

bool OrvPreferenceManager::registerPreference(
    const QString& page, const QString& section, QObject* object, const QString& propertyName)
{
    if (!object || !hasProperty(*object, propertyName))
        return false;
    const auto isSame = [object, &propertyName](const Preference& known) {
        return known.object == object && known.propertyName == propertyName;
    };
    if (std::any_of(m_Preferences.cbegin(), m_Preferences.cend(), isSame))
        return false;

    m_Preferences.append({page, section, object, propertyName});
    connect(object, &QObject::destroyed, this, &OrvPreferenceManager::forgetDestroyedObjects,
        Qt::UniqueConnection);
    Q_EMIT preferenceRegistered(page, section, object, propertyName);
    return true;
}

QList<OrvPreferenceManager::Preference> OrvPreferenceManager::preferences() const
{
    return m_Preferences;
}

void OrvPreferenceManager::forgetDestroyedObjects()
{
    const auto isGone = [](const Preference& known) { return known.object.isNull(); };
    m_Preferences.erase(
        std::remove_if(m_Preferences.begin(), m_Preferences.end(), isGone), m_Preferences.end());
}
