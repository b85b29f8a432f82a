#include "network/NetDefinition.h"

QString NetDefinition::type() const
{
    if (outputs.size() > 1)
        return QStringLiteral("multioutput");
    return outputs.isEmpty() ? attributes.value(QLatin1String("type")) : outputs.constFirst().type;
}

int NetDefinition::indexOf(const QVector<NetPort>& ports, const QString& name)
{
    for (int i = 0; i < ports.size(); ++i) {
        if (ports.at(i).name == name)
            return i;
    }
    return -1;
}
