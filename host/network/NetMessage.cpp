#include "network/NetMessage.h"

#include <QStringBuilder>

#include <algorithm>

QString NetMessage::toString() const
{
    if (line <= 0)
        return file % QLatin1String(": ") % text;
    return file % QLatin1Char(':') % QString::number(line) % QLatin1String(": ") % text;
}

bool NetMessage::anyAtLeast(const QVector<NetMessage>& messages, Severity severity)
{
    return std::any_of(messages.cbegin(), messages.cend(),
        [severity](const NetMessage& message) { return message.severity >= severity; });
}
