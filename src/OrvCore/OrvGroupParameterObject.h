#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QString>

/// What a property editor asks of an object about its properties: label, flags and group of each.
/// The base gives an answer for every name; classes override what they know better.
///
/// Called by  property and preference editors of the host.
/// Uses       nothing else.
/// Tells      nobody.
class ORVCORE_EXPORT OrvGroupParameterObject
{
public:
    OrvGroupParameterObject() = default;
    virtual ~OrvGroupParameterObject();

    /// The label for a property. The base splits the camel-case name into words, each with a
    /// capital, and keeps capitals in a row and digits together: "EdgePenWidth" -> "Edge Pen
    /// Width", "SceneLODSwitchThreshold" -> "Scene LOD Switch Threshold".
    virtual QString prettyPropertyName(const QString& name) const;

    /// The flags that an editor shall use for a property, given the flags it has chosen itself.
    /// Their meaning is the editor's. The base returns them unchanged.
    virtual int propertyFlags(const QString& name, int flags) const;

    /// The heading under which an editor lists a property; empty (the base) for none.
    virtual QString propertyGroup(const QString& name) const;

protected:
    OrvGroupParameterObject(const OrvGroupParameterObject&) = default;
    OrvGroupParameterObject& operator=(const OrvGroupParameterObject&) = default;
};
