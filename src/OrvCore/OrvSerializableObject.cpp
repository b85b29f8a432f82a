#include "OrvCore/OrvSerializableObject.h"

#include <QMetaObject>
#include <QMetaProperty>
#include <QVariant>

namespace {

bool isSerialized(const QMetaProperty& property)
{
    return property.isReadable() && property.isWritable() && property.isStored()
        && property.isDesignable();
}

bool isInternal(const QByteArray& dynamicName)
{
    return dynamicName.startsWith("_q_");
}

bool applyValue(QObject& object, const QByteArray& name, const QVariant& value)
{
    if (!value.isValid())
        return false;
    const int index = object.metaObject()->indexOfProperty(name.constData());
    if (index >= 0) {
        const QMetaProperty property = object.metaObject()->property(index);
        return isSerialized(property) && property.write(&object, value);
    }
    if (isInternal(name) || !object.dynamicPropertyNames().contains(name))
        return false;
    object.setProperty(name.constData(), value); // false by contract for dynamic properties
    return true;
}

} // namespace

OrvSerializableObject::OrvSerializableObject(QObject* parent)
    : QObject(parent)
{
}

OrvSerializableObject::~OrvSerializableObject() = default;

void OrvSerializableObject::setSelected(bool selected, bool /*withChildren*/)
{
    if (m_Selected == selected)
        return;
    m_Selected = selected;
    Q_EMIT selectedChanged(selected);
}

QVariantMap OrvSerializableObject::serialize() const
{
    QVariantMap properties;
    const auto add = [&properties](const QByteArray& name, const QVariant& value) {
        if (value.isValid())
            properties.insert(QString::fromUtf8(name), value);
    };
    const QMetaObject* const meta = metaObject();
    for (int index = 0; index < meta->propertyCount(); ++index) {
        const QMetaProperty property = meta->property(index);
        if (isSerialized(property))
            add(property.name(), property.read(this));
    }
    const QList<QByteArray> dynamicNames = dynamicPropertyNames();
    for (const QByteArray& name : dynamicNames) {
        if (!isInternal(name))
            add(name, property(name.constData()));
    }
    return properties;
}

bool OrvSerializableObject::deserialize(const QVariantMap& properties)
{
    bool allFit = true;
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        allFit = applyValue(*this, it.key().toUtf8(), it.value()) && allFit;
    return allFit;
}
