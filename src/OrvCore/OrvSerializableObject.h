#pragma once

#include "OrvCore/OrvCoreExport.h"
#include "OrvCore/OrvGroupParameterObject.h"

#include <QObject>
#include <QVariantMap>

/// Base of the objects whose properties the host saves, edits and selects: nodes, edges, the style,
/// and the host's own model objects. Items that also derive from QGraphicsItem re-export that
/// base's setSelected(bool) and isSelected() with using-declarations, because both bases carry the
/// names.
///
/// Called by  the host (serialisation) and graphics items, which tell their parent object their
/// selection. Uses       the Qt property system. Tells      listeners of selectedChanged.
class ORVCORE_EXPORT OrvSerializableObject : public QObject, public OrvGroupParameterObject
{
    Q_OBJECT
public:
    explicit OrvSerializableObject(QObject* parent = nullptr);
    ~OrvSerializableObject() override;

    /// Stores the selection and emits selectedChanged when it differs. `withChildren` asks classes
    /// that have children to select those too; the base has none and ignores it.
    virtual void setSelected(bool selected, bool withChildren = false);
    bool isSelected() const { return m_Selected; }

    /// The values of all properties that are readable, writable, stored and designable, by name,
    /// the object name and dynamic properties included. Properties whose value is invalid are left
    /// out, and so are the dynamic properties in which Qt keeps its own notes ("_q_…").
    virtual QVariantMap serialize() const;

    /// Applies the values to the properties of the same names, converting where Qt can. A dynamic
    /// property is written only when the object has it already: an unknown name is more often a
    /// misspelling. False when a name was unknown or not one that serialize() would write, or a
    /// value was invalid or did not convert; those properties keep their values and the others are
    /// applied.
    virtual bool deserialize(const QVariantMap& properties);

Q_SIGNALS:
    void selectedChanged(bool selected);

private:
    Q_DISABLE_COPY(OrvSerializableObject)

    bool m_Selected = false;
};
