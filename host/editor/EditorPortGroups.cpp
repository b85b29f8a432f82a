#include "editor/EditorPortGroups.h"

#include "network/NetNode.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace {

template <typename Predicate> int firstInput(const NetNode& node, Predicate predicate)
{
    const auto found = std::find_if(node.inputs.cbegin(), node.inputs.cend(), predicate);
    return found == node.inputs.cend() ? -1 : static_cast<int>(found - node.inputs.cbegin());
}

int inputNamed(const NetNode& node, QLatin1String name)
{
    return firstInput(node, [name](const NetPort& port) { return port.name == name; });
}

QString folderTitle(const QString& folder)
{
    return folder.split(QLatin1Char('/'), Qt::SkipEmptyParts).join(QStringLiteral(" / "));
}

QString unusedName(QString name, const QSet<QString>& taken)
{
    while (taken.contains(name))
        name += QChar(0x2026); // an ellipsis: "coat" is the input, "coat…" the folder
    return name;
}

} // namespace

int EditorPortGroups::mainInput(const NetNode& node)
{
    int index = inputNamed(node, QLatin1String("in"));
    if (index < 0) {
        index = firstInput(
            node, [](const NetPort& port) { return port.type.endsWith(QLatin1String("shader")); });
    }
    for (const char* name : {"base_color", "diffuse_color", "diffuseColor", "texcoord"}) {
        if (index < 0)
            index = inputNamed(node, QLatin1String(name));
    }
    return index < 0 ? node.mainInput() : index;
}

QList<QPair<QString, QStringList>> EditorPortGroups::inputClusters(const NetNode& node)
{
    QStringList order;
    QHash<QString, QStringList> members;
    QSet<QString> taken;
    for (const NetPort& port : node.inputs) {
        if (taken.contains(port.name))
            continue;
        taken.insert(port.name);
        const QString title = folderTitle(port.uiFolder());
        if (title.isEmpty())
            continue;
        if (!members.contains(title))
            order.append(title);
        members[title].append(port.name);
    }
    QList<QPair<QString, QStringList>> clusters;
    for (const QString& title : qAsConst(order)) {
        if (members.value(title).size() < 2)
            continue;
        const QString name = unusedName(title, taken);
        taken.insert(name);
        clusters.append({name, members.value(title)});
    }
    return clusters;
}
