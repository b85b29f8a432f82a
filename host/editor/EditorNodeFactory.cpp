#include "editor/EditorNodeFactory.h"

#include "editor/EditorNodeLook.h"
#include "editor/EditorPortGroups.h"
#include "network/NetScope.h"

#include <QCoreApplication>
#include <QHash>
#include <QMap>
#include <QSet>

#include <OrvNodeGraph/OrvNgExtendedNode.h>

namespace {

// The box of a scope's own input or output carries the port's name as its title; the port says what
// type it is.
QString portLabel(const NetNode& node, const NetPort& port)
{
    const bool isInterface
        = node.kind == NetNode::Kind::Input || node.kind == NetNode::Kind::Output;
    return isInterface ? port.type : port.displayName();
}

// A connection to nowhere has no edge that could show it, so the port's text does.
void markBroken(const NetScope& scope, int nodeIndex, QMap<QString, QString>* labels)
{
    for (const NetOpenEnd& end : scope.openEnds) {
        if (end.destNode != nodeIndex || end.reason != NetOpenEnd::Reason::Missing)
            continue;
        QString& label = (*labels)[scope.nodes.at(nodeIndex).inputs.at(end.destPort).name];
        label = QCoreApplication::translate("EditorNodeFactory", "%1 \u2190 %2 (missing)")
                    .arg(label, end.wantedName);
    }
}

// Definitions with folders repeat names in them: "Weight" of the coat, "Weight" of the sheen. Where
// all are listed one below the other, the folder must tell them apart.
void addFolders(const NetNode& node, QMap<QString, QString>* labels)
{
    QHash<QString, int> uses;
    for (const QString& label : qAsConst(*labels))
        ++uses[label];
    for (const NetPort& port : node.inputs) {
        QString& label = (*labels)[port.name];
        const QString folder = port.uiFolder().section(QLatin1Char('/'), -1);
        if (uses.value(label) > 1 && !folder.isEmpty())
            label = folder + QLatin1Char(' ') + label;
    }
}

void nameInputs(OrvNgExtendedNode* item, const NetScope& scope, int nodeIndex)
{
    const NetNode& node = scope.nodes.at(nodeIndex);
    QMap<QString, QString> labels;
    for (const NetPort& port : node.inputs)
        labels.insert(port.name, portLabel(node, port));
    addFolders(node, &labels);
    markBroken(scope, nodeIndex, &labels);
    item->setInputConnectionPrettyNames(labels);
}

void nameOutputs(OrvNgExtendedNode* item, const NetNode& node)
{
    QMap<QString, QString> labels;
    for (const NetPort& port : node.outputs)
        labels.insert(port.name, portLabel(node, port));
    item->setOutputConnectionPrettyNames(labels);
}

// A port that the definition hides is shown all the same when the document says something about it.
QSet<QString> tagsOf(const NetPort& port)
{
    return port.isHidden() && !port.listed ? QSet<QString>{QStringLiteral("_hidden")}
                                           : QSet<QString>{};
}

void addInputs(OrvNgExtendedNode* item, const NetNode& node)
{
    const int mainInput = EditorPortGroups::mainInput(node);
    for (int i = 0; i < node.inputs.size(); ++i) {
        const NetPort& port = node.inputs.at(i);
        if (!item->inputExists(port.name)) // a document may list a name twice
            item->createInput(port.name, i == mainInput, tagsOf(port));
    }
    item->setInputPortClusterMap(EditorPortGroups::inputClusters(node));
}

void addOutputs(OrvNgExtendedNode* item, const NetNode& node)
{
    for (const NetPort& port : node.outputs) {
        if (!item->outputPoints().contains(port.name))
            item->createOutputPoint(port.name, true);
    }
}

} // namespace

OrvNgExtendedNode* EditorNodeFactory::build(const NetScope& scope, int nodeIndex)
{
    const NetNode& node = scope.nodes.at(nodeIndex);
    auto* item = new OrvNgExtendedNode(nullptr);
    item->pauseInvalidation(true);
    const EditorNodeLook look = EditorNodeLook::of(node);
    item->setShapeType(look.shape);
    item->setCategory(look.category);
    nameInputs(item, scope, nodeIndex);
    nameOutputs(item, node);
    addOutputs(item, node);
    addInputs(item, node);
    item->setText(node.displayName());
    item->setCorrectColor();
    item->pauseInvalidation(false);
    return item;
}
