#include "network/NetNode.h"

QString NetNode::displayName() const
{
    const QString label = attributes.value(QLatin1String("uiname"));
    return label.isEmpty() ? name : label;
}

int NetNode::mainInput() const
{
    for (int i = 0; i < inputs.size(); ++i) {
        if (inputs.at(i).type == type)
            return i;
    }
    return inputs.isEmpty() ? -1 : 0;
}
