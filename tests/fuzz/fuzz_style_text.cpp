// Any text as each type of style sheet value: what is read is finite, and writing and reading it again
// changes nothing.

#include "OrvNodeGraph/OrvNgStyleText.h"
#include "fuzz/Fuzz.h"

#include <algorithm>
#include <cmath>

namespace {

// Numbers are written with 6 significant digits.
bool isSame(double value, double written)
{
    return std::isfinite(value) && std::abs(value - written) <= 5.1e-6 * std::abs(value);
}

bool isSame(const QPointF& value, const QPointF& written)
{
    return isSame(value.x(), written.x()) && isSame(value.y(), written.y());
}

bool isSame(float value, float written)
{
    return isSame(double(value), double(written));
}

template <typename T> bool isSame(const T& value, const T& written)
{
    return value == written;
}

template <typename T> void check(const QString& text)
{
    using Text = OrvNgStyleText<T>;
    const T value = Text::parse(text);
    const QString written = Text::format(value);
    const T again = Text::parse(written);
    ORV_REQUIRE(isSame(value, again));
    ORV_REQUIRE(Text::format(again) == written);
    ORV_REQUIRE(written.size() < 64);
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = Fuzz::text(data, size);
    check<QColor>(text);
    check<OrvColor>(text);
    check<QPair<QColor, QColor>>(text);
    check<QPoint>(text);
    check<QPointF>(text);
    check<int>(text);
    check<float>(text);
    return 0;
}
