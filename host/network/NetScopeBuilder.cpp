#include "network/NetScopeBuilder.h"

#include <QCoreApplication>
#include <QStringBuilder>

#include <cmath>

namespace {

constexpr int kMaxNesting = 64;

QString tr(const char* text, int n = -1)
{
    return QCoreApplication::translate("NetReader", text, nullptr, n);
}

QString qualified(const QString& nameSpace, const QString& name)
{
    return nameSpace.isEmpty() ? name : nameSpace % QLatin1Char(':') % name;
}

QString nameSpaceOf(pugi::xml_node element, const QString& around)
{
    const QString own = NetXmlFile::attribute(element, "namespace");
    return own.isNull() ? around : own;
}

// A finite number from an attribute; false leaves the target alone.
bool number(const NetAttributes& attributes, const char* name, double* target)
{
    bool ok = false;
    const double value = attributes.value(QLatin1String(name)).trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return false;
    *target = value;
    return true;
}

// The definition's ports in its order, listed ones in their place; behind them the listed ones that
// it lacks.
QVector<NetPort> merged(const QVector<NetPort>& defined, const QVector<NetPort>& listed)
{
    QVector<NetPort> ports = defined;
    for (const NetPort& own : listed) {
        const int i = NetDefinition::indexOf(ports, own.name);
        if (i < 0) {
            ports.append(own);
            continue;
        }
        NetPort& port = ports[i];
        port.value = own.isConnected() ? QString() : own.value;
        port.attributes = own.attributes;
        port.listed = true;
        port.line = own.line;
        if (!own.type.isEmpty())
            port.type = own.type;
    }
    return ports;
}

NetPort plainPort(const QString& name, const QString& type)
{
    NetPort port;
    port.name = name;
    port.type = type;
    return port;
}

} // namespace

NetScopeBuilder::NetScopeBuilder(
    const Files& files, const NetDefinitionLibrary& definitions, QVector<NetMessage>* messages)
    : m_Files(files)
    , m_Definitions(definitions)
    , m_Messages(messages)
{
}

bool NetScopeBuilder::isStructural(const pugi::char_t* tag)
{
    static const QSet<QByteArray> s_Tags{"input", "output", "token", "nodegraph", "nodedef",
        "implementation", "typedef", "unittypedef", "unitdef", "geompropdef", "geominfo", "look",
        "lookgroup", "collection", "variantset", "propertyset", "property", "targetdef",
        "attributedef", "backdrop", "xi:include", "parameter", "material", "shaderref", "opgraph"};
    return s_Tags.contains(QByteArray::fromRawData(tag, static_cast<int>(qstrlen(tag))));
}

QVector<NetScope> NetScopeBuilder::build()
{
    NetScope top;
    top.attributes = NetXmlFile::attributes(file(0).root());
    top.nameSpace = nameSpaceOf(file(0).root(), {});
    top.line = file(0).line(file(0).root());
    m_Scopes.append(top);
    for (const auto& each : m_Files) {
        for (const pugi::xml_node element : each->root().children("implementation")) {
            const QString graph = NetXmlFile::attribute(element, "nodegraph");
            if (!graph.isEmpty())
                m_Implementations[graph].append(NetXmlFile::attribute(element, "nodedef"));
        }
    }
    for (int i = 0; i < static_cast<int>(m_Files.size()); ++i)
        addTopLevel(i);
    reportUnresolved();
    return std::move(m_Scopes);
}

void NetScopeBuilder::addTopLevel(int fileIndex)
{
    const pugi::xml_node root = file(fileIndex).root();
    const QString nameSpace = nameSpaceOf(root, {});
    QSet<QString> names;
    for (const pugi::xml_node element : root.children()) {
        if (element.type() != pugi::node_element || isTaken(element, fileIndex))
            continue;
        names.insert(NetXmlFile::attribute(element, "name"));
        addElement(0, element, fileIndex, nameSpace);
    }
    m_TopLevelNames += names;
}

// Deliberate: the document's own elements go before every included one of the same name, wherever
// the include stands, because the user can edit only the former.
bool NetScopeBuilder::isTaken(pugi::xml_node element, int fileIndex)
{
    const QString name = NetXmlFile::attribute(element, "name");
    const bool shown = !isStructural(element.name()) || qstrcmp(element.name(), "nodegraph") == 0;
    if (fileIndex == 0 || name.isEmpty() || !m_TopLevelNames.contains(name))
        return false;
    if (shown) {
        m_Messages->append(
            {NetMessage::Severity::Info, file(fileIndex).path(), file(fileIndex).line(element),
                tr("\"%1\" is left out: the including document has another element of this name.")
                    .arg(name)});
    }
    return true;
}

void NetScopeBuilder::addElement(
    int scopeIndex, pugi::xml_node element, int fileIndex, const QString& nameSpace)
{
    if (qstrcmp(element.name(), "nodegraph") == 0)
        addGraph(scopeIndex, element, fileIndex, nameSpace);
    else if (isBox(element))
        append(scopeIndex, read(element, m_Scopes.at(scopeIndex).kind, fileIndex, nameSpace),
            nameSpace);
    else if (qstrcmp(element.name(), "backdrop") == 0)
        m_Scopes[scopeIndex].backdrops.append(readBackdrop(file(fileIndex), element, fileIndex));
}

bool NetScopeBuilder::isBox(pugi::xml_node element)
{
    const pugi::char_t* tag = element.name();
    return element.type() == pugi::node_element
        && (!isStructural(tag) || qstrcmp(tag, "input") == 0 || qstrcmp(tag, "output") == 0
            || qstrcmp(tag, "nodegraph") == 0);
}

NetNode NetScopeBuilder::read(
    pugi::xml_node element, NetScope::Kind around, int fileIndex, const QString& nameSpace)
{
    const pugi::char_t* tag = element.name();
    if (qstrcmp(tag, "input") == 0)
        return scopePort(element, around, fileIndex, NetNode::Kind::Input);
    if (qstrcmp(tag, "output") == 0)
        return scopePort(element, around, fileIndex, NetNode::Kind::Output);
    const bool graph = qstrcmp(tag, "nodegraph") == 0;
    NetNode node = nodeFrom(element, fileIndex, graph ? NetNode::Kind::Graph : NetNode::Kind::Node);
    node.inputs = file(fileIndex).ports(element, "input");
    node.outputs = file(fileIndex).ports(element, "output");
    if (!graph)
        resolve(&node, element, nameSpace);
    return node;
}

NetNode NetScopeBuilder::nodeFrom(pugi::xml_node element, int fileIndex, NetNode::Kind kind) const
{
    NetNode node;
    node.kind = kind;
    node.attributes = NetXmlFile::attributes(element);
    node.name = node.attributes.value(QLatin1String("name"));
    node.type = node.attributes.value(QLatin1String("type"));
    node.category = NetXmlFile::text(element.name());
    node.fileIndex = fileIndex;
    node.line = file(fileIndex).line(element);
    double x = 0;
    double y = 0;
    node.hasPosition = number(node.attributes, "xpos", &x) && number(node.attributes, "ypos", &y);
    if (node.hasPosition)
        node.position = {x, y};
    return node;
}

int NetScopeBuilder::append(int scopeIndex, NetNode node, const QString& nameSpace)
{
    const QString alias = qualified(nameSpace, node.name);
    const int position = m_Scopes[scopeIndex].append(std::move(node));
    m_Scopes[scopeIndex].addAlias(position, alias);
    return position;
}

void NetScopeBuilder::resolve(NetNode* node, pugi::xml_node element, const QString& nameSpace)
{
    NetDefinitionQuery query;
    query.nodeDef = node->attributes.value(QLatin1String("nodedef"));
    query.category = node->category;
    query.nameSpace = nameSpaceOf(element, nameSpace);
    query.type = node->type;
    query.version = node->attributes.value(QLatin1String("version"));
    query.target = node->attributes.value(QLatin1String("target"));
    query.inputs = &node->inputs;
    node->definition = m_Definitions.find(query);
    const bool severalOutputs = node->type == QLatin1String("multioutput");
    if (node->definition) {
        node->nodeGroup = node->definition->nodeGroup;
        node->inputs = merged(node->definition->inputs, node->inputs);
        // A single output answers to every name, so a listed one of another name is the same one.
        if (node->definition->outputs.size() != 1 || node->outputs.size() > 1)
            node->outputs = merged(node->definition->outputs, node->outputs);
        else
            node->outputs = node->definition->outputs;
        return;
    }
    if (node->outputs.isEmpty() && !severalOutputs)
        node->outputs.append(plainPort(QStringLiteral("out"), node->type));
    const auto related = m_Definitions.candidates(node->category);
    if (!related.isEmpty())
        node->nodeGroup = related.constFirst()->nodeGroup;
    const auto known = std::find_if(m_Unresolved.begin(), m_Unresolved.end(),
        [node](const Unresolved& each) { return each.category == node->category; });
    if (known == m_Unresolved.end())
        m_Unresolved.append({node->category, 1, node->fileIndex, node->line});
    else
        ++known->count;
}

void NetScopeBuilder::reportUnresolved()
{
    for (const Unresolved& each : qAsConst(m_Unresolved)) {
        const QString text = each.count == 1
            ? tr("No definition fits the node of category \"%1\"; it shows what it lists.")
                  .arg(each.category)
            : tr("No definition fits %1 nodes of category \"%2\"; they show what they list.")
                  .arg(each.count)
                  .arg(each.category);
        m_Messages->append(
            {NetMessage::Severity::Info, file(each.fileIndex).path(), each.line, text});
    }
}

// One port is the scope's side: an input feeds the nodes, an output takes one connection.
NetNode NetScopeBuilder::scopePort(
    pugi::xml_node element, NetScope::Kind around, int fileIndex, NetNode::Kind kind) const
{
    NetNode node = nodeFrom(element, fileIndex, kind);
    const NetPort port = file(fileIndex).port(element);
    if (kind == NetNode::Kind::Output) {
        node.inputs.append(port);
    } else {
        node.outputs.append(port);
        if (around == NetScope::Kind::Document && port.isConnected())
            node.inputs.append(port);
    }
    return node;
}

NetBackdrop NetScopeBuilder::readBackdrop(
    const NetXmlFile& file, pugi::xml_node element, int fileIndex)
{
    NetBackdrop backdrop;
    backdrop.attributes = NetXmlFile::attributes(element);
    const auto text = [&backdrop](const char* attribute) {
        return backdrop.attributes.value(QLatin1String(attribute));
    };
    backdrop.name = text("name");
    backdrop.title = text("uiname").isEmpty() ? backdrop.name : text("uiname");
    backdrop.doc = text("doc");
    backdrop.color = text("uicolor");
    const QString contents = text("contains");
    backdrop.isNote = !contents.isNull() && contents.trimmed().isEmpty();
    double x = 0;
    double y = 0;
    double width = 1;
    double height = 1;
    number(backdrop.attributes, "xpos", &x);
    number(backdrop.attributes, "ypos", &y);
    number(backdrop.attributes, "width", &width);
    number(backdrop.attributes, "height", &height);
    backdrop.rect = QRectF(x, y, std::max(0.0, width), std::max(0.0, height));
    backdrop.fileIndex = fileIndex;
    backdrop.line = file.line(element);
    return backdrop;
}

QStringList NetScopeBuilder::definitionsOf(pugi::xml_node graph) const
{
    const QString own = NetXmlFile::attribute(graph, "nodedef");
    if (!own.isEmpty())
        return {own};
    return m_Implementations.value(NetXmlFile::attribute(graph, "name"));
}

/// How many scopes there are around this one. Names tell nothing: they may hold any sign.
int NetScopeBuilder::levelOf(int scopeIndex) const
{
    int level = 0;
    for (int i = m_Scopes.at(scopeIndex).parent; i >= 0; i = m_Scopes.at(i).parent)
        ++level;
    return level;
}

void NetScopeBuilder::addGraph(
    int scopeIndex, pugi::xml_node element, int fileIndex, const QString& nameSpace)
{
    NetNode box = read(element, m_Scopes.at(scopeIndex).kind, fileIndex, nameSpace);
    box.innerScope = m_Scopes.size();
    const QStringList definitionNames = scopeIndex == 0 ? definitionsOf(element) : QStringList{};

    NetScope inner;
    inner.kind = definitionNames.isEmpty() ? NetScope::Kind::CompoundGraph
                                           : NetScope::Kind::FunctionalGraph;
    inner.name = box.name;
    inner.path
        = scopeIndex == 0 ? box.name : m_Scopes.at(scopeIndex).path % QLatin1Char('/') % box.name;
    inner.index = box.innerScope;
    inner.parent = scopeIndex;
    inner.attributes = box.attributes;
    inner.nameSpace = nameSpaceOf(element, nameSpace);
    inner.fileIndex = fileIndex;
    inner.line = box.line;
    addImpliedInputs(&inner, definitionNames);
    box.definition = inner.definition;
    if (inner.definition)
        box.nodeGroup = inner.definition->nodeGroup;
    inner.isCut = levelOf(scopeIndex) >= kMaxNesting;
    if (inner.isCut && element.first_child()) {
        m_Messages->append({NetMessage::Severity::Warning, file(fileIndex).path(), inner.line,
            tr("\"%1\" is nested too deeply; what is in it is not shown.").arg(inner.name)});
    }
    const QString innerNameSpace = inner.nameSpace;
    append(scopeIndex, std::move(box), nameSpace);
    m_Scopes.append(std::move(inner));
    const int index = m_Scopes.size() - 1;
    if (m_Scopes.at(index).isCut)
        return;
    for (const pugi::xml_node child : element.children()) {
        if (child.type() == pugi::node_element)
            addElement(index, child, fileIndex, innerNameSpace);
    }
}

// Two definitions may share one graph; the inputs of both are its interface.
void NetScopeBuilder::addImpliedInputs(NetScope* scope, const QStringList& definitionNames)
{
    for (const QString& name : definitionNames) {
        NetDefinitionPtr definition = m_Definitions.byName(qualified(scope->nameSpace, name));
        if (!definition)
            definition = m_Definitions.byName(name);
        if (!definition) {
            m_Messages->append(
                {NetMessage::Severity::Info, file(scope->fileIndex).path(), scope->line,
                    tr("The definition \"%1\" of the graph \"%2\" was not found.")
                        .arg(name, scope->name)});
            continue;
        }
        if (!scope->definition)
            scope->definition = definition;
        for (const NetPort& port : definition->inputs) {
            if (scope->indexOf(NetNode::Kind::Input, port.name) >= 0)
                continue;
            NetNode input;
            input.kind = NetNode::Kind::Input;
            input.name = port.name;
            input.category = QStringLiteral("input");
            input.type = port.type;
            input.attributes = port.definitionAttributes;
            input.outputs.append(port);
            input.implied = true;
            input.fileIndex = scope->fileIndex;
            scope->append(input);
        }
    }
}
