#include "network/NetReader.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestTable.h"

namespace {

// "source.port > destination.port" for every connection, in order.
QStringList wires(const NetScope& scope)
{
    QStringList result;
    for (const NetConnection& wire : scope.connections) {
        const NetNode& source = scope.nodes.at(wire.sourceNode);
        const NetNode& dest = scope.nodes.at(wire.destNode);
        result.append(QStringLiteral("%1.%2 > %3.%4")
                          .arg(source.key, source.outputs.at(wire.sourcePort).name, dest.key,
                              dest.inputs.at(wire.destPort).name));
    }
    return result;
}

QStringList keys(const NetScope& scope)
{
    QStringList result;
    for (const NetNode& node : scope.nodes)
        result.append(node.key);
    return result;
}

QString joined(const QStringList& list)
{
    return list.join(QLatin1String(", "));
}

QString names(const QVector<NetPort>& ports)
{
    QStringList result;
    for (const NetPort& port : ports)
        result.append(port.name);
    return joined(result);
}

// A category with one input of each kind and two outputs, and one with a single output.
const char* const kDefinitions = R"(<nodedef name="ND_pair" node="pair">
<input name="first" type="float" value="0.25" uimin="0" uifolder="A/B"/>
<input name="second" type="color3" value="1, 0, 0"/><input name="normal" type="vector3" defaultgeomprop="N"/>
<output name="x" type="float"/><output name="y" type="float"/></nodedef>
<nodedef name="ND_one" node="one"><input name="in" type="float"/><output name="result" type="float"/></nodedef>)";

} // namespace

/// What a document becomes: scopes, boxes, ports, connections, and messages for what is wrong with
/// it.
class tst_NetReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badFile_isReportedWithFileAndLine_data()
    {
        const TestTable<QByteArray, QByteArray, QStringList> row("main", "part", "expected");
        const auto says = [](const char* line) { return QStringList(QLatin1String(line)); };
        const char* const whole = "<materialx>\n<output name=\"o\" type=\"float\"/>\n<xi:include "
                                  "href=\"part.mtlx\"/>\n</materialx>";
        row("missing", QByteArray(), "", says("main.mtlx: The file does not exist."));
        row("empty", "", "", says("main.mtlx: The file is empty."));
        row("closing tag missing", "<materialx>\n<a>\n</b>\n</materialx>", "",
            says("main.mtlx:3: The file is not readable as XML: "));
        row("cut off", "<materialx>\n<add name=\"a\">\n<input na", "",
            says("main.mtlx:3: The file is not readable as XML: "));
        row("other root", "<?xml version=\"1.0\"?>\n\n<html/>", "",
            says("main.mtlx:3: The root element is <html>; a material document has <materialx>."));
        row("include in circles", whole,
            "<materialx>\n\n\n<xi:include href=\"main.mtlx\"/></materialx>",
            says("part.mtlx:4: The include of \"main.mtlx\" leads back to itself."));
        row("missing include", whole, QByteArray(),
            says("main.mtlx:3: The included file \"part.mtlx\" was not found."));
        row("broken include", whole, "<materialx>\n<",
            says("part.mtlx:2: The file is not readable")
                + says("main.mtlx:3: The included file \"part.mtlx\" cannot be used."));
    }

    void badFile_isReportedWithFileAndLine()
    {
        QFETCH(QByteArray, main);
        QFETCH(QByteArray, part);
        QFETCH(QStringList, expected);
        NetTemporaryFiles files;
        if (!main.isNull())
            files.write(QStringLiteral("main.mtlx"), main);
        if (!part.isNull())
            files.write(QStringLiteral("part.mtlx"), part);
        const NetReadResult result
            = NetReader(NetSearchPath()).read(files.path(QStringLiteral("main.mtlx")));
        const bool opens = QByteArray(QTest::currentDataTag()).endsWith(" include");
        QCOMPARE(result.document != nullptr, opens);
        QVERIFY(
            !opens || joined(keys(result.document->documentScope())) == QLatin1String("output/o"));
        QCOMPARE(result.messages.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i) {
            const NetMessage& message = result.messages.at(i);
            QCOMPARE(message.severity,
                opens ? NetMessage::Severity::Warning : NetMessage::Severity::Error);
            QVERIFY2(message.toString().startsWith(files.path(expected.at(i))),
                qPrintable(message.toString()));
        }
    }

    void questionableContent_isReportedAndOpens_data()
    {
        const TestTable<QByteArray, bool, QString> row("children", "warning", "expected");
        row("unknown node",
            R"(<one name="n" type="float"><input name="in" type="float" nodename="gone"/></one>)",
            true, "7: \"n.in\" is connected to \"gone\", which does not exist.");
        row("unknown output of a known node",
            "<pair name=\"p\" type=\"multioutput\"/>\n"
            "<output name=\"o\" type=\"float\" nodename=\"p\" output=\"z\"/>",
            true, "8: \"o\" is connected to the output \"z\" of \"p\", which does not exist.");
        row("unknown category",
            "<odd name=\"a\" type=\"float\"/>\n<odd name=\"b\" type=\"float\"/>", false,
            "7: No definition fits 2 nodes of category \"odd\"; they show what they list.");
    }

    void questionableContent_isReportedAndOpens()
    {
        QFETCH(QByteArray, children);
        QFETCH(bool, warning);
        QFETCH(QString, expected);
        NetTemporaryFiles files;
        const NetReadResult result = files.read(kDefinitions + QByteArray("\n") + children);
        QVERIFY(result.document);
        QCOMPARE(result.messages.size(), 1);
        QCOMPARE(result.messages.constFirst().toString(),
            files.path(QStringLiteral("document.mtlx:")) + expected);
        QCOMPARE(result.messages.constFirst().severity,
            warning ? NetMessage::Severity::Warning : NetMessage::Severity::Info);
        int openEnds = 0;
        for (const NetScope& scope : result.document->scopes())
            openEnds += scope.openEnds.size();
        QCOMPARE(openEnds, expected.contains(QLatin1String("onnected")) ? 1 : 0);
    }

    void connection_leadsToTheRightPort_data()
    {
        const TestTable<QByteArray, QString> row("binding", "source");
        row("single output", R"(nodename="a")", "node/a.result");
        row("named output", R"(nodename="p" output="y")", "node/p.y");
        row("first output", R"(nodename="p")", "node/p.x");
        row("source further down", R"(nodename="late")", "node/late.result");
        row("named output of a graph", R"(nodegraph="g" output="g2")", "graph/g.g2");
        row("document input", R"(interfacename="a")", "input/a.a");
    }

    void connection_leadsToTheRightPort()
    {
        QFETCH(QByteArray, binding);
        QFETCH(QString, source);
        NetTemporaryFiles files;
        const NetReadResult result = files.read(kDefinitions
            + QByteArray(R"(<input name="a" type="float"/><one name="a" type="float"/>
<pair name="p" type="multioutput"/>
<nodegraph name="g"><output name="g1" type="float"/><output name="g2" type="float"/></nodegraph>
<one name="dest" type="float"><input name="in" type="float" )")
            + binding + R"(/></one><one name="late" type="float"/>)");
        QCOMPARE(joined(wires(result.document->documentScope())),
            source + QLatin1String(" > node/dest.in"));
    }

    void graphInput_looksAroundTheGraph()
    {
        NetTemporaryFiles files;
        // The node "n" stands on both levels, so that a look-up in the wrong one shows.
        const NetReadResult result = files.read(kDefinitions + QByteArray(R"(
<one name="n" type="float"/>
<nodegraph name="g"><input name="i" type="float" nodename="n"/>
<one name="n" type="float"><input name="in" type="float" interfacename="i"/></one>
<output name="i_out" type="float" nodename="n"/></nodegraph>)"));
        QCOMPARE(joined(wires(result.document->documentScope())),
            QStringLiteral("node/n.result > graph/g.i"));
        QCOMPARE(joined(wires(result.document->scopes().at(1))),
            QStringLiteral("input/i.i > node/n.in, node/n.result > output/i_out.i_out"));
    }

    void ports_followDefinitionThenList()
    {
        NetTemporaryFiles files;
        const NetReadResult result = files.read(kDefinitions + QByteArray(R"(
<pair name="p" type="multioutput" nodedef="ND_pair"><input name="extra" type="integer" value="3"/>
<input name="second" type="color3" value="0, 1, 0" uiname="Zwei"/><input name="second" type="color3" value="2"/></pair>)"));
        const NetNode& node = result.document->documentScope().nodes.constFirst();
        QCOMPARE(names(node.inputs), QStringLiteral("first, second, normal, extra"));
        QCOMPARE(names(node.outputs), QStringLiteral("x, y"));
        const NetPort& first = node.inputs.at(0);
        QVERIFY(first.isDefault() && first.value.isNull());
        QCOMPARE(first.effectiveValue(), QStringLiteral("0.25"));
        QCOMPARE(first.uiFolder(), QStringLiteral("A/B"));
        const NetPort& second = node.inputs.at(1);
        QVERIFY(second.listed && second.defined);
        QCOMPARE(second.effectiveValue(), QStringLiteral("0, 1, 0"));
        QCOMPARE(second.defaultValue, QStringLiteral("1, 0, 0"));
        QCOMPARE(second.displayName(), QStringLiteral("Zwei"));
        QVERIFY(node.inputs.at(3).listed && !node.inputs.at(3).defined);
    }

    void functionalGraph_showsTheInputsOfItsDefinitions()
    {
        NetTemporaryFiles files;
        // A node that bears the name of an interface input must not be taken for it.
        const NetReadResult result = files.read(kDefinitions + QByteArray(R"(
<implementation name="i1" nodedef="ND_one" nodegraph="g"/>
<implementation name="i2" nodedef="ND_pair" nodegraph="g"/>
<nodegraph name="g"><one name="in" type="float"><input name="in" type="float" interfacename="in"/></one></nodegraph>)"));
        const NetScope& scope = result.document->scopes().at(1);
        QCOMPARE(scope.kind, NetScope::Kind::FunctionalGraph);
        QStringList found;
        for (const NetNode& node : scope.nodes) {
            if (node.kind == NetNode::Kind::Input && node.implied)
                found.append(node.name);
        }
        QCOMPARE(joined(found), QStringLiteral("in, first, second, normal"));
        QCOMPARE(joined(wires(scope)), QStringLiteral("input/in.in > node/in.in"));
    }
};

QTEST_GUILESS_MAIN(tst_NetReader)

#include "tst_NetReader.moc"
