#pragma once

#include "OrvNodeGraph/OrvNgStyle.h"

#include <QMap>
#include <QMetaProperty>

/// The style's properties of the types that a style sheet holds, as texts: numbers as precise as sheets have
/// them, colours as #AARRGGBB, "none" for an invalid one.
///
/// Called by  tests of the style.
/// Uses       OrvNgStyle.
/// Tells      nobody.
namespace StyleValues {

inline QString textOf(const QColor& color)
{
    return color.isValid() ? color.name(QColor::HexArgb) : QStringLiteral("none");
}

/// Null for other types.
inline QString textOf(const QVariant& value)
{
    const auto number = [](double each) { return QString::number(each, 'g', 6); };
    if (value.userType() == qMetaTypeId<OrvColor>())
        return textOf(value.value<OrvColor>().toQColor());
    if (value.userType() == qMetaTypeId<QPair<QColor, QColor>>()) {
        const auto pair = value.value<QPair<QColor, QColor>>();
        return textOf(pair.first) + textOf(pair.second);
    }
    switch (value.userType()) {
    case QMetaType::QColor:
        return textOf(value.value<QColor>());
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return number(value.toPointF().x()) + QLatin1Char(',') + number(value.toPointF().y());
    case QMetaType::Int:
    case QMetaType::Float:
        return number(value.toDouble());
    default:
        return {};
    }
}

inline QMap<QString, QString> of(const OrvNgStyle& style)
{
    QMap<QString, QString> values;
    const QMetaObject& meta = OrvNgStyle::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        values.insert(
            QLatin1String(meta.property(i).name()), textOf(meta.property(i).read(&style)));
    return values;
}

/// "Name=value" of those that differ, with blanks between, in alphabetic order.
inline QString difference(const OrvNgStyle& style, const QMap<QString, QString>& from)
{
    QStringList texts;
    const auto values = of(style);
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (*value != from.value(value.key()))
            texts.append(value.key() + QLatin1Char('=') + *value);
    }
    return texts.join(QLatin1Char(' '));
}

} // namespace StyleValues
