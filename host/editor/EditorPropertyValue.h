#pragma once

#include <QColor>
#include <QPair>
#include <QString>
#include <QVariant>

/// What an editor of properties must know about values: whether two are the same, how one reads as
/// text, in which range and unit a number makes sense.
///
/// Called by  EditorPreferenceRow, EditorPropertyEditor.
/// Uses       the meta-object system's types.
/// Tells      nobody.
namespace EditorPropertyValue {

using ColorPair = QPair<QColor, QColor>;

/// A number's limits, the step of one key press, and what it is measured in (empty: nothing).
struct Range
{
    double lowest;
    double highest;
    double step;
    QString unit;
};

/// By the last words of the property's name: "GridLinesWidth" is a pen's width.
Range rangeOf(const QString& propertyName);

/// Also for the types that QVariant compares by address.
bool isSame(const QVariant& a, const QVariant& b);

/// For reading: colours in the form of colorText(), numbers in the user's language, the type's name in
/// brackets where a value has no text.
QString toText(const QVariant& value);

/// "#rrggbb", with alpha "#rrggbbaa".
QString colorText(const QColor& color);
/// The forms of colorText(), also without the number sign and as "#rgb", and names of colours.
/// Invalid for any other text.
QColor colorFromText(const QString& text);

} // namespace EditorPropertyValue
