#include "network/NetReader.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestRows.h"

#include <functional>

namespace {

QString joined(const QVector<NetPort>& ports, const std::function<QString(const NetPort&)>& text)
{
    QStringList result;
    for (const NetPort& port : ports)
        result.append(text(port));
    return result.join(QLatin1Char(' '));
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
            files.write(QStringLiteral("main.mtlx"), main.replace("empty", ""));
        if (part != "-")
            files.write(QStringLiteral("part.mtlx"), part);
        const NetReadResult result
            = NetReader(NetSearchPath()).read(files.path(QStringLiteral("main.mtlx")));
        const bool opens = result.document && !result.document->documentScope().nodes.isEmpty();
        QTEST(QByteArray(opens ? "opens" : "fails"), "outcome");
        QCOMPARE(result.messages.size(), another.isEmpty() ? 1 : 2);
        for (const NetMessage& each : result.messages) {
            const char letter = "IWE"[int(each.severity)];
            const QString told = each.toString().remove(files.path(QString()) + QLatin1Char('/'));
            QVERIFY2(
                (letter + QByteArray(" ") + told.toUtf8()).startsWith(message), qPrintable(told));
            message = another;
        }
    }

    void document_isReadAsItSays()
    {
        const NetReadResult result
            = NetReader(NetSearchPath())
                  .read(QStringLiteral(ORV_TEST_DATA "/network/reading.mtlx"));
        QStringList wrong;
        int checks = 0;
        const auto check = [&](const NetAttributes& own, const char* name, const QString& found) {
            const QString said = own.value(QLatin1String(name));
            checks += said.isNull() ? 0 : 1;
            if (!said.isNull() && said != found)
                wrong.append(said + QLatin1String(", not ") + found);
        };
        const auto name = [](const NetPort& port) { return port.name; };
        const auto shown = [](const NetPort& port) {
            return port.displayName() + QLatin1Char('=') + port.effectiveValue();
        };
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
                        source.key + QLatin1Char('.') + source.outputs.value(wire.sourcePort).name);
                }
            }
            check(scope.attributes, "takes", joined(implied, name));
        }
        QCOMPARE(wrong.join(QLatin1Char(';')), QString());
        QCOMPARE(connections, 10);
        QCOMPARE(checks, 30);
    }

    void documentFindsLibrariesAboveIt()
    {
        const NetTemporaryFiles files;
        const QByteArray definition
            = R"(<nodedef name="%1" node="n"><output name="out" type="float"/></nodedef>)";
        files.writeDocument(
            QStringLiteral("libraries/far.mtlx"), QByteArray(definition).replace("%1", "far"));
        files.writeDocument(
            QStringLiteral("a/libraries/near.mtlx"), QByteArray(definition).replace("%1", "near"));
        QVERIFY(QDir().mkpath(
            files.path(QStringLiteral("a/b/libraries")))); // empty: counts for nothing
        const QString path = files.writeDocument(
            QStringLiteral("a/b/c/document.mtlx"), R"(<n name="x" type="float"/>)");
        const auto found = [&](const NetSearchPath& searchPath) {
            return firstDefinition(NetReader(searchPath).read(path));
        };
        QCOMPARE(found(NetSearchPath()), QStringLiteral("near"));
        QCOMPARE(found(NetSearchPath({files.path(QString())})), QStringLiteral("far"));
        QVERIFY(QFile::remove(files.path(QStringLiteral("a/libraries/near.mtlx"))));
        QCOMPARE(found(NetSearchPath()), QStringLiteral("far"));

        const QString broken
            = files.write(QStringLiteral("libraries/broken.mtlx"), "<materialx>\n<");
        const NetReadResult result = NetReader(NetSearchPath()).read(path);
        QCOMPARE(firstDefinition(result), QStringLiteral("far"));
        QCOMPARE(result.messages.size(), 1);
        QCOMPARE(result.messages.constFirst().severity, NetMessage::Severity::Info);
        QVERIFY(
            result.messages.constFirst().toString().startsWith(broken + QStringLiteral(":2: ")));
    }
};

QTEST_GUILESS_MAIN(tst_NetReader)

#include "tst_NetReader.moc"
