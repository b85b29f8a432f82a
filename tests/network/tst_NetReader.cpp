#include "network/NetCounts.h"
#include "network/NetEditor.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestRows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>

namespace {

QString joined(const QVector<NetPort>& ports, const std::function<QString(const NetPort&)>& text)
{
    QStringList result;
    for (const NetPort& port : ports)
        result.append(text(port));
    return result.join(u' ');
}

QString firstDefinition(const NetReadResult& result)
{
    return result.document->documentScope().nodes.constFirst().definition->name;
}

} // namespace

/// What a document becomes: scopes, boxes, ports, definitions, connections, and messages for what is wrong.
class tst_NetReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fault_isReportedWithFileAndLine_data()
    {
        addTestRows(ORV_TEST_DATA "/network/reading.txt", "files",
            {"main", "part", "outcome", "message", "another"});
    }

    void fault_isReportedWithFileAndLine()
    {
        QFETCH(QByteArray, main);
        QFETCH(QByteArray, part);
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, another);
        const NetTemporaryFiles files;
        if (main != "-")
            files.write(u"main.mtlx"_s, main.replace("empty", ""));
        if (part != "-")
            files.write(u"part.mtlx"_s, part);
        const NetReadResult result = NetReader(NetSearchPath()).read(files.path(u"main.mtlx"_s));
        const bool opens = result.document && !result.document->documentScope().nodes.isEmpty();
        QTEST(QByteArray(opens ? "opens" : "fails"), "outcome");
        QCOMPARE(result.messages.size(), another.isEmpty() ? 1 : 2);
        for (const NetMessage& each : result.messages) {
            const char letter = "IWE"[int(each.severity)];
            const QString told = each.toString().remove(files.path(QString()) + u'/');
            QVERIFY2(
                (letter + QByteArray(" ") + told.toUtf8()).startsWith(message), qPrintable(told));
            message = another;
        }
    }

    void graphsNestedTooDeeply_areReportedAndStayAsTheyAre()
    {
        const QByteArray graphs = QByteArray("<nodegraph name=\"g\">").repeated(66)
            + QByteArray("</nodegraph>").repeated(66);
        const NetReadResult result = NetReader(NetSearchPath())
                                         .read(u"/nowhere/document.mtlx"_s,
                                             "<materialx>" + graphs + "</materialx>");
        QCOMPARE(result.messages.size(), 1);
        QVERIFY(result.messages.constFirst().text.contains(u"nested too deeply"_s));
        QCOMPARE(result.document->scopes().size(), 66);
        NetEditor editor(result.document);
        NetBackdrop backdrop;
        backdrop.rect = QRectF(0, 0, 1, 1);
        QVERIFY(editor.addBackdrop(64, backdrop));
        QVERIFY(!editor.addBackdrop(65, backdrop));
    }

    void document_isReadAsItSays()
    {
        const NetReadResult result
            = NetReader(NetSearchPath()).read(q(ORV_TEST_DATA "/network/reading.mtlx"));
        QStringList wrong;
        int checks = 0;
        const auto check = [&](const NetAttributes& own, const char* name, const QString& found) {
            const QString said = own.value(QLatin1String(name));
            checks += said.isNull() ? 0 : 1;
            if (!said.isNull() && said != found)
                wrong.append(said + u", not "_s + found);
        };
        const auto name = [](const NetPort& port) { return port.name; };
        const auto shown
            = [](const NetPort& port) { return port.displayName() + u'=' + port.effectiveValue(); };
        int connections = 0;
        for (const NetScope& scope : result.document->scopes()) {
            QVector<NetPort> implied;
            connections += scope.connections.size();
            for (int i = 0; i < scope.nodes.size(); ++i) {
                const NetNode& node = scope.nodes.at(i);
                if (node.implied)
                    implied += node.outputs;
                check(node.attributes, "is", node.definition ? node.definition->name : QString());
                check(node.attributes, "shows", joined(node.inputs, shown));
                check(node.attributes, "gives", joined(node.outputs, name));
                for (int k = 0; k < node.inputs.size(); ++k) {
                    const NetConnection wire = scope.connections.value(scope.connectionTo(i, k));
                    const NetNode source = scope.nodes.value(wire.sourceNode);
                    check(node.inputs.at(k).attributes, "from",
                        source.key + u'.' + source.outputs.value(wire.sourcePort).name);
                }
            }
            check(scope.attributes, "takes", joined(implied, name));
        }
        QCOMPARE(wrong.join(u';'), QString());
        QCOMPARE(connections, 10);
        QCOMPARE(checks, 30);
    }

    void documentFindsLibrariesAboveIt()
    {
        const NetTemporaryFiles files;
        const QByteArray definition
            = R"(<nodedef name="%1" node="n"><output name="out" type="float"/></nodedef>)";
        files.writeDocument(u"libraries/far.mtlx"_s, QByteArray(definition).replace("%1", "far"));
        files.writeDocument(
            u"a/libraries/near.mtlx"_s, QByteArray(definition).replace("%1", "near"));
        QVERIFY(QDir().mkpath(files.path(u"a/b/libraries"_s))); // empty: counts for nothing
        const QString path
            = files.writeDocument(u"a/b/c/document.mtlx"_s, R"(<n name="x" type="float"/>)");
        const auto found = [&](const NetSearchPath& searchPath) {
            return firstDefinition(NetReader(searchPath).read(path));
        };
        QCOMPARE(found(NetSearchPath()), u"near"_s);
        QCOMPARE(found(NetSearchPath({files.path(QString())})), u"far"_s);
        QVERIFY(QFile::remove(files.path(u"a/libraries/near.mtlx"_s)));
        QCOMPARE(found(NetSearchPath()), u"far"_s);

        const QString broken = files.write(u"libraries/broken.mtlx"_s, "<materialx>\n<");
        const NetReadResult result = NetReader(NetSearchPath()).read(path);
        QCOMPARE(firstDefinition(result), u"far"_s);
        QCOMPARE(result.messages.size(), 1);
        QCOMPARE(result.messages.constFirst().severity, NetMessage::Severity::Info);
        QVERIFY(result.messages.constFirst().toString().startsWith(broken + u":2: "_s));
    }

    // Real documents, which are no part of the project, against exact counts that two other programs took.
    void document_holdsWhatWasCounted_data()
    {
        QTest::addColumn<QJsonObject>("expected");
        QFile file(qEnvironmentVariable("ORV_SHARED_DATA") + u"/counts.json"_s);
        if (!file.open(QIODevice::ReadOnly))
            QSKIP("The folder of shared documents (ORV_SHARED_DATA) is not there.");
        const QJsonObject counts = QJsonDocument::fromJson(file.readAll()).object();
        QCOMPARE(counts.size(), 41);
        for (const QString& name : counts.keys())
            QTest::newRow(qPrintable(name)) << counts.value(name).toObject();
    }

    void document_holdsWhatWasCounted()
    {
        QFETCH(QJsonObject, expected);
        const QDir folder(qEnvironmentVariable("ORV_SHARED_DATA"));
        const QString file = folder.filePath(QString::fromUtf8(QTest::currentDataTag()));
        const NetReadResult result = NetReader(NetSearchPath()).read(file);
        QVERIFY(result.document);
        for (const NetMessage& each : result.messages)
            QVERIFY2(each.severity == NetMessage::Severity::Info, qPrintable(each.toString()));
        QJsonArray scopes;
        QStringList openEnds;
        NetCounts sum;
        for (const NetScope& scope : result.document->scopes()) {
            const NetCounts counts = NetCounts::ofScope(*result.document, scope.index);
            sum.resolvedNodes += counts.resolvedNodes;
            sum.inputPorts += counts.inputPorts;
            sum.outputPorts += counts.outputPorts;
            if (scope.fileIndex == 0)
                scopes.append(described(scope, counts));
            for (const NetOpenEnd& end : scope.openEnds) {
                if (end.reason != NetOpenEnd::Reason::Outside)
                    openEnds.append(QString::number(end.line) + end.wantedName);
            }
        }
        const auto wanted = [&](const char* key) { return expected.value(q(key)); };
        QStringList dangling;
        for (const QJsonValue& each : wanted("dangling").toArray())
            dangling.append(QString::number(each[0].toInt()) + each[2].toString());
        QCOMPARE(openEnds, dangling);
        QCOMPARE(
            QJsonDocument(scopes).toJson(), QJsonDocument(wanted("scopes").toArray()).toJson());
        QCOMPARE(sum.resolvedNodes, wanted("nodesResolved").toInt());
        QCOMPARE(sum.inputPorts, wanted("inputPortsWithDefaults").toInt());
        QCOMPARE(sum.outputPorts, wanted("outputPorts").toInt());
    }

private:
    static QJsonObject described(const NetScope& scope, const NetCounts& counts)
    {
        const char* const kind = scope.parent < 0           ? "document"
            : scope.kind == NetScope::Kind::FunctionalGraph ? "functional"
                                                            : "compound";
        const QString name = scope.parent < 0 ? u"(document)"_s : scope.name;
        QJsonObject all{{u"name"_s, name}, {u"kind"_s, q(kind)}};
        const std::pair<const char*, int> numbers[] = {{"nodes", counts.nodes},
            {"nodegraphs", counts.nodeGraphs}, {"interfaceInputs", counts.interfaceInputs},
            {"outputs", counts.outputs}, {"nodeInputs", counts.nodeInputs}, {"depth", counts.depth},
            {"connections", counts.connections}, {"nodeToNode", counts.nodeToNode},
            {"maxFanOut", counts.maxFanOut}, {"maxListedInputs", counts.maxListedInputs},
            {"positioned", counts.positioned}, {"backdrops", counts.backdrops}};
        for (const auto& [key, number] : numbers)
            all.insert(q(key), number);
        return all;
    }
};

QTEST_GUILESS_MAIN(tst_NetReader)

#include "tst_NetReader.moc"
