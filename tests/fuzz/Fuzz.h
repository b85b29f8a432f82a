#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

/// What the programs here share: the entry points that libFuzzer, or CorpusRunner.cpp, calls.
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);
/// Checks one input, and ends the process when something does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#define ORV_REQUIRE(CONDITION)                                                                     \
    do {                                                                                           \
        if (!(CONDITION))                                                                          \
            qFatal("%s:%d: not %s", __FILE__, __LINE__, #CONDITION);                               \
    } while (false)

namespace Fuzz {

inline QByteArray bytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), static_cast<int>(size)};
}

/// UTF-8; behind a null byte UTF-16, for what UTF-8 cannot say.
inline QString text(const std::uint8_t* data, std::size_t size)
{
    if (size == 0 || data[0] != 0)
        return QString::fromUtf8(bytes(data, size));
    QString result;
    for (std::size_t i = 2; i < size; i += 2)
        result += QChar(static_cast<ushort>(data[i - 1] | data[i] << 8));
    return result;
}

} // namespace Fuzz
