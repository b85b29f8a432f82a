#include "OrvCoreModules/OrvColor.h"

#include <algorithm>
#include <cmath>

namespace {

int toByte(float channel)
{
    if (!std::isfinite(channel))
        return 0;
    return qRound(std::clamp(double(channel), 0.0, 1.0) * 255.0);
}

// Registered while the library loads: properties of this type can be read by name at once.
const bool s_Registered = [] {
    qRegisterMetaType<OrvColor>("OrvColor");
    QMetaType::registerConverter<OrvColor, QColor>(&OrvColor::toQColor);
    QMetaType::registerConverter<QColor, OrvColor>(
        [](const QColor& color) { return OrvColor(color); });
    return true;
}();

} // namespace

OrvColor::OrvColor(const QColor& color)
    : OrvColor(
        float(color.redF()), float(color.greenF()), float(color.blueF()), float(color.alphaF()))
{
}

QColor OrvColor::toQColor() const
{
    return QColor(toByte(r), toByte(g), toByte(b), toByte(a));
}
