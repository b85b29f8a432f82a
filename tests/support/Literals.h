#pragma once

#include <QString>

/// u"text"_s, as Qt has it from 6.4 on.
inline QString operator""_s(const char16_t* text, std::size_t size)
{
    return QString::fromUtf16(text, int(size));
}

/// UTF-8.
inline QString q(const char* text)
{
    return QString::fromUtf8(text);
}
