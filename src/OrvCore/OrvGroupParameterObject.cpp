#include "OrvCore/OrvGroupParameterObject.h"

namespace {

// True when a word of the camel-case name begins at the index: at a capital behind a small letter
// or a digit, and at the last capital of a row when a small letter follows ("LODSwitch").
bool wordBegins(const QString& name, int index)
{
    if (index == 0 || !name.at(index).isUpper())
        return false;
    const bool endsCapitals = index + 1 < name.size() && name.at(index + 1).isLower();
    return !name.at(index - 1).isUpper() || endsCapitals;
}

} // namespace

OrvGroupParameterObject::~OrvGroupParameterObject() = default;

QString OrvGroupParameterObject::prettyPropertyName(const QString& name) const
{
    QString pretty;
    for (int index = 0; index < name.size(); ++index) {
        const bool separator = name.at(index) == QLatin1Char('_');
        const bool newWord = pretty.isEmpty() || pretty.endsWith(QLatin1Char(' '));
        if ((separator || wordBegins(name, index)) && !newWord)
            pretty += QLatin1Char(' ');
        if (!separator)
            pretty += newWord ? name.at(index).toUpper() : name.at(index);
    }
    return pretty.trimmed();
}

int OrvGroupParameterObject::propertyFlags(const QString& /*name*/, int flags) const
{
    return flags;
}

QString OrvGroupParameterObject::propertyGroup(const QString& /*name*/) const
{
    return {};
}
