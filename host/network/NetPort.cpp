#include "network/NetPort.h"

QString NetPort::attribute(QLatin1String attributeName) const
{
    const QString own = attributes.value(attributeName);
    return own.isNull() ? definitionAttributes.value(attributeName) : own;
}

QString NetPort::displayName() const
{
    const QString label = attribute(QLatin1String("uiname"));
    return label.isEmpty() ? name : label;
}

bool NetPort::isUniform() const
{
    return type == QLatin1String("string") || type == QLatin1String("filename")
        || attribute(QLatin1String("uniform")) == QLatin1String("true");
}

bool NetPort::isConnected() const
{
    for (const char* binding : {"nodename", "nodegraph", "interfacename", "output"}) {
        if (!attributes.value(QLatin1String(binding)).isEmpty())
            return true;
    }
    return false;
}
