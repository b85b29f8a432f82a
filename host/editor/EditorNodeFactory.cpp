#include "editor/EditorNodeFactory.h"

#include "editor/EditorNode.h"
#include "editor/EditorNodeLook.h"
#include "editor/EditorPortGroups.h"
#include "network/NetScope.h"

#include <QCoreApplication>
#include <QHash>
#include <QMap>
#include <QSet>

#include <OrvNodeGraph/OrvNgPort.h>
#include <algorithm>

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

QMap<QString, QString> inputLabels(const NetScope& scope, int nodeIndex)
{
    const NetNode& node = scope.nodes.at(nodeIndex);
    QMap<QString, QString> labels;
    for (const NetPort& port : node.inputs)
        labels.insert(port.name, portLabel(node, port));
    addFolders(node, &labels);
    markBroken(scope, nodeIndex, &labels);
    return labels;
}

void nameOutputs(OrvNgExtendedNode* item, const NetNode& node)
{
    QMap<QString, QString> labels;
    for (const NetPort& port : node.outputs)
        labels.insert(port.name, portLabel(node, port));
    item->setOutputConnectionPrettyNames(labels);
}

void addInputs(OrvNgExtendedNode* item, const NetNode& node)
{
    const int mainInput = EditorPortGroups::mainInput(node);
    for (int i = 0; i < node.inputs.size(); ++i) {
        const NetPort& port = node.inputs.at(i);
        if (!item->inputExists(port.name)) // a document may list a name twice
            item->createInput(port.name, i == mainInput, EditorNodeFactory::tagsOf(port));
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

// The library's names of the points of a dot. They carry no label.
const QLatin1String kDotInput("Input");
const QLatin1String kDotOutput("Output");

const QLatin1String kPassedThrough(
    "in"); // a dot's other input is a remark, which takes no connection

int dotInput(const NetNode& node)
{
    return NetDefinition::indexOf(node.inputs, kPassedThrough);
}

bool isShownAsDot(const NetNode& node)
{
    if (!node.isDot() || node.outputs.size() != 1 || dotInput(node) < 0)
        return false;
    return std::all_of(node.inputs.cbegin(), node.inputs.cend(),
        [](const NetPort& port) { return port.name == kPassedThrough || !port.isConnected(); });
}

OrvNgNode* buildDot(const NetNode& node)
{
    auto* item = new EditorDot;
    item->createOutputPoint(kDotOutput, true);
    item->createInput(kDotInput, true, {});
    item->setText(node.displayName());
    return item;
}

} // namespace

OrvNgNode* EditorNodeFactory::build(const NetScope& scope, int nodeIndex)
{
    const NetNode& node = scope.nodes.at(nodeIndex);
    if (isShownAsDot(node))
        return buildDot(node);
    auto* item = new EditorNode;
    item->pauseInvalidation(true);
    const EditorNodeLook look = EditorNodeLook::of(node);
    item->setShapeType(look.shape);
    item->setCategory(look.category);
    item->setInputConnectionPrettyNames(inputLabels(scope, nodeIndex));
    nameOutputs(item, node);
    addOutputs(item, node);
    addInputs(item, node);
    item->setText(node.displayName());
    item->setCorrectColor();
    item->pauseInvalidation(false);
    return item;
}

void EditorNodeFactory::nameInputs(OrvNgNode* item, const NetScope& scope, int nodeIndex)
{
    auto* node = dynamic_cast<OrvNgExtendedNode*>(item);
    if (!node)
        return;
    const QMap<QString, QString> labels = inputLabels(scope, nodeIndex);
    node->setInputConnectionPrettyNames(labels);
    for (auto label = labels.cbegin(); label != labels.cend(); ++label) {
        OrvNgPort* port = node->inputPort(label.key());
        if (port && port->text() != *label)
            port->setText(*label);
    }
}

// A port that the definition hides is shown all the same when the document says something about it.
QSet<QString> EditorNodeFactory::tagsOf(const NetPort& port)
{
    return port.isHidden() && !port.listed ? QSet<QString>{QStringLiteral("_hidden")}
                                           : QSet<QString>{};
}

QString EditorNodeFactory::inputName(const NetNode& node, int port)
{
    return isShownAsDot(node) && port == dotInput(node) ? QString(kDotInput)
                                                        : node.inputs.at(port).name;
}

QString EditorNodeFactory::outputName(const NetNode& node, int port)
{
    return isShownAsDot(node) ? QString(kDotOutput) : node.outputs.at(port).name;
}

int EditorNodeFactory::inputIndex(const NetNode& node, const QString& name)
{
    if (isShownAsDot(node))
        return name == kDotInput ? dotInput(node) : -1;
    return NetDefinition::indexOf(node.inputs, name);
}

int EditorNodeFactory::outputIndex(const NetNode& node, const QString& name)
{
    if (isShownAsDot(node))
        return name == kDotOutput ? 0 : -1;
    return NetDefinition::indexOf(node.outputs, name);
}
