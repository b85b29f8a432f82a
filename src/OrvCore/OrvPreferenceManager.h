#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

/// The properties that the user may edit in the host's preference editor, ordered by page and
/// section. Registering makes a property known; values are read and written through the object's
/// properties, so an editor follows their notify signals and uses their reset functions.
///
/// Called by  the style, which registers its user-facing colours; the host's preference editor.
/// Uses       the Qt property system.
/// Tells      the preference editor, through preferenceRegistered.
class ORVCORE_EXPORT OrvPreferenceManager : public QObject
{
    Q_OBJECT
public:
    struct Preference
    {
        QString page;
        QString section;
        QPointer<QObject> object;
        QString propertyName;
    };

    /// The one manager, alive until the process ends.
    static OrvPreferenceManager& instance();

    /// Offers a property, declared or dynamic, under the page and section. The value is not read
    /// now. False, and nothing is changed, when the object is null, has no such property, or has
    /// registered it already (on whatever page). The object stays the caller's; destroyed objects
    /// leave by themselves.
    bool registerPreference(
        const QString& page, const QString& section, QObject* object, const QString& propertyName);

    /// All registered properties of living objects, in registration order.
    QList<Preference> preferences() const;

Q_SIGNALS:
    /// Follows every successful registration.
    void preferenceRegistered(
        const QString& page, const QString& section, QObject* object, const QString& propertyName);

private:
    OrvPreferenceManager() = default;
    Q_DISABLE_COPY(OrvPreferenceManager)

    void forgetDestroyedObjects();

    QList<Preference> m_Preferences;
};
