#include "OrvNodeGraph/OrvNgStyleText.h"

#include <QTextStream>

#include <cmath>
#include <limits>

namespace {
/// Reads a value text token by token: numbers, and single characters that separate them.
class TokenReader
{
public:
    explicit TokenReader(const QString& text)
        : m_Text(text.trimmed())
        , m_Stream(&m_Text, QIODevice::ReadOnly)
    {
        // Without a fixed base "010" would be octal.
        m_Stream.setIntegerBase(10);
    }

    bool beginsWithParenthesis() const { return m_Text.startsWith(QLatin1Char('(')); }

    void skip(int characters)
    {
        for (QChar skipped; characters > 0; --characters)
            m_Stream >> skipped;
    }

    int readInt()
    {
        qlonglong number = 0;
        m_Stream >> number;
        const bool fits = number >= std::numeric_limits<int>::min()
            && number <= std::numeric_limits<int>::max();
        return fits ? static_cast<int>(number) : 0;
    }

    float readFloat()
    {
        float number = 0.f;
        m_Stream >> number;
        return std::isfinite(number) ? number : 0.f;
    }

    /// Four integers, one character between two of them.
    QColor readColor()
    {
        int channels[4] = {};
        for (int& channel : channels) {
            if (&channel != channels)
                skip(1);
            channel = readInt();
        }
        const QColor color(channels[0], channels[1], channels[2], channels[3]);
        return color.isValid() ? color
                               : QColor(); // Qt's invalid colours may differ from each other
    }

private:
    QString m_Text;
    QTextStream m_Stream;
};

QString colorText(int red, int green, int blue, int alpha)
{
    return QStringLiteral("(%1,%2,%3,%4)").arg(red).arg(green).arg(blue).arg(alpha);
}

/// A channel from 0..1 to 0..255, rounded to nearest. Channels out of range stay out of range, but
/// fit.
int channelNumber(float channel)
{
    return qRound(qBound(-1e6f, channel * 255.f, 1e6f));
}

QString floatText(double value)
{
    return QString::number(value, 'g', 6);
}
} // namespace

template <> QColor OrvNgStyleText<QColor>::parse(const QString& text)
{
    if (text.trimmed().isEmpty())
        return {};
    TokenReader reader(text);
    if (reader.beginsWithParenthesis())
        reader.skip(1);
    return reader.readColor();
}

template <> QString OrvNgStyleText<QColor>::format(const QColor& value)
{
    if (!value.isValid())
        return colorText(-1, -1, -1, -1);
    return colorText(value.red(), value.green(), value.blue(), value.alpha());
}

template <> OrvColor OrvNgStyleText<OrvColor>::parse(const QString& text)
{
    return OrvColor(OrvNgStyleText<QColor>::parse(text));
}

template <> QString OrvNgStyleText<OrvColor>::format(const OrvColor& value)
{
    return colorText(channelNumber(value.r), channelNumber(value.g), channelNumber(value.b),
        channelNumber(value.a));
}

template <> QPair<QColor, QColor> OrvNgStyleText<QPair<QColor, QColor>>::parse(const QString& text)
{
    TokenReader reader(text);
    if (!reader.beginsWithParenthesis())
        return {};
    reader.skip(1);
    const QColor first = reader.readColor();
    reader.skip(3);
    return {first, reader.readColor()};
}

template <>
QString OrvNgStyleText<QPair<QColor, QColor>>::format(const QPair<QColor, QColor>& value)
{
    return OrvNgStyleText<QColor>::format(value.first) + QLatin1Char(',')
        + OrvNgStyleText<QColor>::format(value.second);
}

template <> QPoint OrvNgStyleText<QPoint>::parse(const QString& text)
{
    TokenReader reader(text);
    if (!reader.beginsWithParenthesis())
        return {};
    reader.skip(1);
    const int x = reader.readInt();
    reader.skip(1);
    return {x, reader.readInt()};
}

template <> QString OrvNgStyleText<QPoint>::format(const QPoint& value)
{
    return QStringLiteral("(%1,%2)").arg(value.x()).arg(value.y());
}

template <> QPointF OrvNgStyleText<QPointF>::parse(const QString& text)
{
    TokenReader reader(text);
    if (!reader.beginsWithParenthesis())
        return {};
    reader.skip(1);
    const float x = reader.readFloat();
    reader.skip(1);
    return {x, reader.readFloat()};
}

template <> QString OrvNgStyleText<QPointF>::format(const QPointF& value)
{
    return QStringLiteral("(%1,%2)").arg(floatText(value.x()), floatText(value.y()));
}

template <> int OrvNgStyleText<int>::parse(const QString& text)
{
    return text.toInt();
}

template <> QString OrvNgStyleText<int>::format(const int& value)
{
    return QString::number(value);
}

template <> float OrvNgStyleText<float>::parse(const QString& text)
{
    const float number = text.toFloat();
    return std::isfinite(number) ? number : 0.f;
}

template <> QString OrvNgStyleText<float>::format(const float& value)
{
    return floatText(double(value));
}
