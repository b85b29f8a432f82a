#pragma once

#include <OrvCoreModules/OrvColor.h>

#include <QColor>
#include <QPair>
#include <QPoint>
#include <QPointF>
#include <QString>

/// Internal: the text forms of style sheet values, one pair of functions per value type.
///
/// | Type                 | Text                                          |
/// | QColor, OrvColor     | (red,green,blue,alpha), each 0..255           |
/// | QPair<QColor,QColor> | both colours in that form, a comma between    |
/// | QPoint, QPointF      | (x,y), QPointF with 6 significant digits      |
/// | int, float           | a number, float with 6 significant digits     |
///
/// Numbers have the form of the C locale, whatever the user's. Reading never fails: a number that
/// cannot be read (or is not finite) is 0, an empty text is an invalid colour. Surrounding white
/// space is ignored. Colours are also accepted without parentheses; pairs and points are not. An
/// invalid colour is written with all channels -1, which reads back as an invalid colour.
///
/// Called by  OrvNgStyle, for each value that it loads or saves, and for its colour conversions.
/// Uses       OrvColor.
/// Tells      nobody.
template <typename T> struct OrvNgStyleText
{
    static T parse(const QString& text);
    static QString format(const T& value);
};

template <> QColor OrvNgStyleText<QColor>::parse(const QString& text);
template <> QString OrvNgStyleText<QColor>::format(const QColor& value);
template <> OrvColor OrvNgStyleText<OrvColor>::parse(const QString& text);
template <> QString OrvNgStyleText<OrvColor>::format(const OrvColor& value);
template <> QPair<QColor, QColor> OrvNgStyleText<QPair<QColor, QColor>>::parse(const QString& text);
template <>
QString OrvNgStyleText<QPair<QColor, QColor>>::format(const QPair<QColor, QColor>& value);
template <> QPoint OrvNgStyleText<QPoint>::parse(const QString& text);
template <> QString OrvNgStyleText<QPoint>::format(const QPoint& value);
template <> QPointF OrvNgStyleText<QPointF>::parse(const QString& text);
template <> QString OrvNgStyleText<QPointF>::format(const QPointF& value);
template <> int OrvNgStyleText<int>::parse(const QString& text);
template <> QString OrvNgStyleText<int>::format(const int& value);
template <> float OrvNgStyleText<float>::parse(const QString& text);
template <> QString OrvNgStyleText<float>::format(const float& value);
