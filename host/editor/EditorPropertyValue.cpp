#include "editor/EditorPropertyValue.h"

#include <OrvCoreModules/OrvColor.h>

#include <QCoreApplication>
#include <QLocale>
#include <QPointF>
#include <QRegularExpression>

namespace {

constexpr double kFar = 100000; // scene units

QString tr(const char* text)
{
    return QCoreApplication::translate("EditorPropertyValue", text);
}

QString pointText(double x, double y)
{
    const QLocale locale;
    return QStringLiteral("%1; %2").arg(locale.toString(x, 'g', 6), locale.toString(y, 'g', 6));
}

} // namespace

EditorPropertyValue::Range EditorPropertyValue::rangeOf(const QString& propertyName)
{
    const struct
    {
        const char* ending = "";
        Range range;
    } rows[] = {
        {"PenWidth", {1, 64, 1, tr("scene units")}},
        {"LinesWidth", {1, 64, 1, tr("scene units")}},
        {"OutlineWidth", {0, 64, 1, tr("scene units")}},
        {"Width", {0, kFar, 1, tr("scene units")}},
        {"Height", {0, kFar, 1, tr("scene units")}},
        {"Size", {0, kFar, 1, tr("scene units")}},
        {"Length", {0, kFar, 1, tr("scene units")}},
        {"Radius", {0, kFar, 1, tr("scene units")}},
        {"Count", {0, kFar, 1, QString()}},
        {"Threshold", {0, 10, 0.05, tr("zoom, 1 is actual size")}},
        {"Factor", {0, 1000, 1, QString()}},
        {"ZValue", {-kFar, kFar, 1, QString()}},
    };
    for (const auto& row : rows) {
        if (propertyName.endsWith(QLatin1String(row.ending)))
            return row.range;
    }
    const bool isLength = propertyName.contains(QLatin1String("Padding"))
        || propertyName.contains(QLatin1String("Indent"));
    return {-kFar, kFar, 1, isLength ? tr("scene units") : QString()};
}

bool EditorPropertyValue::isSame(const QVariant& a, const QVariant& b)
{
    if (a.userType() != b.userType())
        return false;
    if (a.userType() == qMetaTypeId<OrvColor>())
        return a.value<OrvColor>() == b.value<OrvColor>();
    if (a.userType() == qMetaTypeId<ColorPair>())
        return a.value<ColorPair>() == b.value<ColorPair>();
    return a == b;
}

QString EditorPropertyValue::toText(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<OrvColor>() || value.userType() == QMetaType::QColor)
        return colorText(value.value<QColor>());
    if (value.userType() == qMetaTypeId<ColorPair>()) {
        const auto pair = value.value<ColorPair>();
        return QStringLiteral("%1 – %2").arg(colorText(pair.first), colorText(pair.second));
    }
    switch (value.userType()) {
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return pointText(value.toPointF().x(), value.toPointF().y());
    case QMetaType::Float:
    case QMetaType::Double:
        return QLocale().toString(value.toDouble(), 'g', 6);
    case QMetaType::Bool:
        return value.toBool() ? tr("on") : tr("off");
    default:
        return value.canConvert<QString>()
            ? value.toString()
            : QStringLiteral("(%1)").arg(QLatin1String(value.typeName()));
    }
}

QString EditorPropertyValue::colorText(const QColor& color)
{
    if (!color.isValid())
        return {};
    QString text = color.name(QColor::HexRgb);
    if (color.alpha() < 255)
        text += QStringLiteral("%1").arg(color.alpha(), 2, 16, QLatin1Char('0'));
    return text;
}

QColor EditorPropertyValue::colorFromText(const QString& text)
{
    static const QRegularExpression s_Hex(
        QStringLiteral("^#?((?:[0-9a-f]{3}){1,2})([0-9a-f]{2})?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QString word = text.trimmed();
    const QRegularExpressionMatch hex = s_Hex.match(word);
    if (!hex.hasMatch())
        return word.startsWith(QLatin1Char('#')) ? QColor()
                                                 : QColor(word.isEmpty() ? QString() : word);
    QColor color(QLatin1Char('#') + hex.captured(1));
    if (hex.captured(1).size() == 3 && !hex.captured(2).isEmpty())
        return {}; // five digits
    if (!hex.captured(2).isEmpty())
        color.setAlpha(hex.captured(2).toInt(nullptr, 16));
    return color;
}
