#include "editor/EditorPortColors.h"

#include <QHash>

#include <cmath>

namespace {

/// A colour in OKLCH: equal steps look equal. Lightness 0 to 1, chroma from 0 (grey), hue in
/// degrees.
struct Perceived
{
    double lightness = 0;
    double chroma = 0;
    double hue = 0;
};

struct Linear
{
    double red = 0;
    double green = 0;
    double blue = 0;

    bool isShowable() const
    {
        constexpr double kSlack = 1e-3;
        const auto fits
            = [](double channel) { return channel >= -kSlack && channel <= 1 + kSlack; };
        return fits(red) && fits(green) && fits(blue);
    }
};

Linear linearOf(const Perceived& color)
{
    constexpr double kDegree = 3.14159265358979323846 / 180;
    const double a = color.chroma * std::cos(color.hue * kDegree);
    const double b = color.chroma * std::sin(color.hue * kDegree);
    const double l = std::pow(color.lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(color.lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(color.lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
        -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
        -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

double encoded(double linear)
{
    linear = qBound(0.0, linear, 1.0);
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

// Hue and lightness carry the meaning, so chroma gives way where the screen cannot show it.
QColor shown(Perceived color)
{
    Linear linear = linearOf(color);
    while (!linear.isShowable() && color.chroma > 0) {
        color.chroma -= 0.005;
        linear = linearOf(color);
    }
    return QColor::fromRgbF(encoded(linear.red), encoded(linear.green), encoded(linear.blue));
}

// Families share a region of hue (vectors green, colours red to violet, shading teal to white);
// within one, lightness tells the members apart.
const QHash<QString, Perceived>& palette()
{
    static const QHash<QString, Perceived> s_Palette{
        {QStringLiteral("float"), {0.72, 0.13, 255}},
        {QStringLiteral("integer"), {0.86, 0.16, 100}},
        {QStringLiteral("boolean"), {0.66, 0.20, 345}},
        {QStringLiteral("color3"), {0.64, 0.19, 28}},
        {QStringLiteral("color4"), {0.72, 0.15, 310}},
        {QStringLiteral("vector2"), {0.88, 0.19, 125}},
        {QStringLiteral("vector3"), {0.72, 0.19, 145}},
        {QStringLiteral("vector4"), {0.58, 0.13, 140}},
        {QStringLiteral("matrix33"), {0.62, 0.09, 215}},
        {QStringLiteral("matrix44"), {0.90, 0.13, 168}},
        {QStringLiteral("string"), {0.64, 0.09, 80}},
        {QStringLiteral("filename"), {0.76, 0.16, 58}},
        {QStringLiteral("geomname"), {0.58, 0.12, 325}},
        {QStringLiteral("BSDF"), {0.63, 0.11, 190}},
        {QStringLiteral("EDF"), {0.80, 0.11, 15}},
        {QStringLiteral("VDF"), {0.60, 0.17, 268}},
        {QStringLiteral("surfaceshader"), {0.88, 0.07, 215}},
        {QStringLiteral("displacementshader"), {0.58, 0.14, 5}},
        {QStringLiteral("volumeshader"), {0.85, 0.08, 295}},
        {QStringLiteral("lightshader"), {0.93, 0.07, 75}},
        {QStringLiteral("material"), {0.97, 0.0, 0}},
    };
    return s_Palette;
}

Perceived perceived(const QString& type)
{
    const auto known = palette().constFind(type);
    if (known != palette().cend())
        return *known;
    constexpr uint kSeed = 0; // not the process's own: the colour stays from run to run
    const uint hash = qHash(type, kSeed);
    return {0.68 + 0.04 * (hash % 4), 0.09, static_cast<double>((hash / 4) % 360)};
}

// Far enough from the body's grey to be seen, far enough from the connected shade to be told apart.
Perceived dimmed(const Perceived& color)
{
    return {0.28 + 0.38 * color.lightness, 0.68 * color.chroma, color.hue};
}

} // namespace

namespace EditorPortColors {

QColor color(const QString& type, bool connected)
{
    static QHash<QPair<QString, bool>, QColor> s_Known;
    QColor& color = s_Known[{type, connected}];
    if (!color.isValid())
        color = shown(connected ? perceived(type) : dimmed(perceived(type)));
    return color;
}

QColor brokenColor()
{
    return {255, 45, 45};
}

QColor offeredColor(const QString& type)
{
    static QHash<QString, QColor> s_Known;
    QColor& color = s_Known[type];
    if (!color.isValid()) {
        constexpr double kLightness = 0.94; // above every type's own
        const Perceived own = perceived(type);
        color = shown({kLightness, own.chroma, own.hue});
    }
    return color;
}

QColor faintColor(const QString& type)
{
    constexpr int kAlpha = 60;
    QColor faint = color(type, false);
    faint.setAlpha(kAlpha);
    return faint;
}

} // namespace EditorPortColors
