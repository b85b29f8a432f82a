#pragma once

#include "OrvCoreModules/OrvCoreModulesExport.h"

#include <QColor>
#include <QMetaType>

/// The host's colour: red, green, blue and alpha as floats, 0 to 1 for what a screen can show.
/// Known to the meta-object system under its name, and convertible to and from QColor in variants,
/// so that an editor may write either into a property.
///
/// Called by  the style and its preferences, the host.
/// Uses       nothing else.
/// Tells      nobody.
class ORVCOREMODULES_EXPORT OrvColor
{
public:
    float r = 0.f;
    float g = 0.f;
    float b = 0.f;
    float a = 0.f;

    /// Transparent black.
    OrvColor() = default;
    OrvColor(float red, float green, float blue, float alpha = 1.f)
        : r(red)
        , g(green)
        , b(blue)
        , a(alpha)
    {
    }
    /// The channels of the colour, whatever its model. An invalid one gives opaque black, as in Qt.
    explicit OrvColor(const QColor& color);

    /// Each channel times 255, rounded to nearest (0.5 gives 128). Channels beyond 0 to 1 are
    /// clamped, infinite ones and not-a-numbers count as 0.
    QColor toQColor() const;

    bool operator==(const OrvColor& other) const
    {
        return r == other.r && g == other.g && b == other.b && a == other.a;
    }
    bool operator!=(const OrvColor& other) const { return !(*this == other); }
};

Q_DECLARE_METATYPE(OrvColor)
Q_DECLARE_TYPEINFO(OrvColor, Q_MOVABLE_TYPE);
