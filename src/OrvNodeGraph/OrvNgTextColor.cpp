#include "OrvNodeGraph/OrvNgTextColor.h"

#include "OrvNodeGraph/OrvNgStyle.h"

#include <QColor>

#include <cstdlib>

namespace {

constexpr int kMiddleGray = 128;
constexpr int kReadableDifference = 96; // of grey values

int grayOver(const QColor& surface)
{
    const int behind = qGray(OrvNgStyle::instance().getSceneBackgroundBrush().color().rgb());
    return behind + (qGray(surface.rgb()) - behind) * surface.alpha() / 255;
}

} // namespace

QColor OrvNgTextColor::on(const QColor& surface)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    return grayOver(surface) < kMiddleGray ? style.getBackdropNodeLightTextColor()
                                           : style.getBackdropNodeDarkTextColor();
}

QColor OrvNgTextColor::readable(const QColor& preferred, const QColor& surface)
{
    const int difference = std::abs(qGray(preferred.rgb()) - grayOver(surface));
    return difference < kReadableDifference ? on(surface) : preferred;
}
