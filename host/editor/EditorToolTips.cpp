#include "editor/EditorToolTips.h"

#include "network/NetScope.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int kLongestValue = 200; // characters

QString tr(const char* text)
{
    return QCoreApplication::translate("EditorToolTips", text);
}

QString shortened(const QString& text)
{
    return text.size() <= kLongestValue ? text : text.left(kLongestValue) + QChar(0x2026);
}

/// Collects the lines of one tool tip.
class Lines
{
public:
    explicit Lines(const QString& title)
        : m_Html(QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()))
    {
    }
    void add(const QString& label, const QString& text)
    {
        if (!text.isEmpty()) {
            m_Html += QStringLiteral("<br/><span style='color:#9aa0aa'>%1</span> %2")
                          .arg(label, shortened(text).toHtmlEscaped());
        }
    }
    void addWarning(const QString& text)
    {
        m_Html += QStringLiteral("<br/><span style='color:#ff8a80'>%1</span>")
                      .arg(text.toHtmlEscaped());
    }
    QString html() const { return m_Html; }

private:
    QString m_Html;
};

Lines portLines(const NetPort& port)
{
    Lines lines(port.displayName());
    lines.add(tr("Name"), port.displayName() == port.name ? QString() : port.name);
    lines.add(tr("Type"), port.type);
    lines.add(tr("Folder"), port.uiFolder());
    return lines;
}

QString sourceText(const NetScope& scope, const NetConnection& connection)
{
    const NetNode& source = scope.nodes.at(connection.sourceNode);
    return QStringLiteral("%1.%2").arg(source.name, source.outputs.at(connection.sourcePort).name);
}

QString openEndText(const NetOpenEnd& end)
{
    switch (end.reason) {
    case NetOpenEnd::Reason::Outside:
        return tr("Comes from \"%1\", outside this graph").arg(end.wantedName);
    case NetOpenEnd::Reason::Tolerated:
        return tr("Names the graph \"%1\" as if it were a node").arg(end.wantedName);
    case NetOpenEnd::Reason::Missing:
        break;
    }
    return end.wantedOutput.isEmpty()
        ? tr("Its source \"%1\" does not exist").arg(end.wantedName)
        : tr("Its source \"%1\" of \"%2\" does not exist").arg(end.wantedOutput, end.wantedName);
}

void addValue(Lines* lines, const NetPort& port)
{
    if (!port.value.isNull())
        lines->add(tr("Value"), port.value);
    if (!port.defaultValue.isNull())
        lines->add(tr("Default"), port.defaultValue);
    const QString geometry = port.attribute(QLatin1String("defaultgeomprop"));
    if (port.value.isNull())
        lines->add(tr("Default from geometry"), geometry);
    lines->add(tr("Unit"), port.attribute(QLatin1String("unit")));
    lines->add(tr("Colour space"), port.attribute(QLatin1String("colorspace")));
}

} // namespace

QString EditorToolTips::ofNode(const NetNode& node)
{
    Lines lines(node.displayName());
    lines.add(tr("Name"), node.displayName() == node.name ? QString() : node.name);
    lines.add(tr("Category"), node.category);
    lines.add(tr("Type"), node.type);
    lines.add(tr("Group"), node.nodeGroup);
    if (node.definition) {
        lines.add(tr("Definition"), node.definition->name);
        lines.add(tr("Version"), node.definition->version);
    } else if (node.kind == NetNode::Kind::Node) {
        lines.addWarning(tr("This node has no definition; it shows what the document lists."));
    }
    lines.add(tr("Note"), node.doc());
    if (node.fileIndex > 0)
        lines.add(tr("Included"), tr("from another file; it cannot be changed here"));
    if (node.innerScope >= 0)
        lines.add(tr("Double click"), tr("enters the graph"));
    return lines.html();
}

QString EditorToolTips::ofBackdrop(const NetBackdrop& backdrop)
{
    Lines lines(backdrop.title);
    lines.add(tr("Name"), backdrop.title == backdrop.name ? QString() : backdrop.name);
    if (!backdrop.isNote) // which shows it
        lines.add(tr("Note"), backdrop.doc);
    if (backdrop.fileIndex > 0)
        lines.add(tr("Included"), tr("from another file; it cannot be changed here"));
    else
        lines.add(tr("Double click"), tr("changes the text"));
    return lines.html();
}

QString EditorToolTips::ofInput(const NetScope& scope, int nodeIndex, int portIndex)
{
    if (nodeIndex < 0 || nodeIndex >= scope.nodes.size() || portIndex < 0
        || portIndex >= scope.nodes.at(nodeIndex).inputs.size())
        return {};
    const NetPort& port = scope.nodes.at(nodeIndex).inputs.at(portIndex);
    Lines lines = portLines(port);
    const auto isHere = [nodeIndex, portIndex](const auto& each) {
        return each.destNode == nodeIndex && each.destPort == portIndex;
    };
    const auto connection
        = std::find_if(scope.connections.cbegin(), scope.connections.cend(), isHere);
    const auto openEnd = std::find_if(scope.openEnds.cbegin(), scope.openEnds.cend(), isHere);
    if (connection != scope.connections.cend())
        lines.add(tr("From"), sourceText(scope, *connection));
    else if (openEnd != scope.openEnds.cend())
        lines.addWarning(openEndText(*openEnd));
    addValue(&lines, port);
    lines.add(tr("Note"), port.attribute(QLatin1String("doc")));
    return lines.html();
}

QString EditorToolTips::ofOutput(const NetScope& scope, int nodeIndex, int portIndex)
{
    if (nodeIndex < 0 || nodeIndex >= scope.nodes.size() || portIndex < 0
        || portIndex >= scope.nodes.at(nodeIndex).outputs.size())
        return {};
    const NetNode& node = scope.nodes.at(nodeIndex);
    const NetPort& port = node.outputs.at(portIndex);
    Lines lines = portLines(port);
    const auto consumers = std::count_if(scope.connections.cbegin(), scope.connections.cend(),
        [nodeIndex, portIndex](const NetConnection& each) {
            return each.sourceNode == nodeIndex && each.sourcePort == portIndex;
        });
    lines.add(tr("Connections"), QString::number(consumers));
    if (node.kind == NetNode::Kind::Input)
        addValue(&lines, port);
    lines.add(tr("Note"), port.attribute(QLatin1String("doc")));
    return lines.html();
}

QString EditorToolTips::ofCluster(const QString& name, const QStringList& members)
{
    Lines lines(name);
    lines.add(tr("Inputs"), members.join(QStringLiteral(", ")));
    return lines.html();
}
