#include "network/NetCounts.h"
#include "network/NetReader.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

/// Opens the real documents of the shared folder and compares what the model holds with the exact
/// counts that were taken by two other programs. The folder is no part of the project: without it
/// the test is skipped.
class tst_NetSharedDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void document_holdsWhatWasCounted_data()
    {
        QTest::addColumn<QJsonObject>("expected");
        QFile file(qEnvironmentVariable("ORV_SHARED_DATA") + QLatin1String("/counts.json"));
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
        const auto wanted = [&](const char* key) { return expected.value(QLatin1String(key)); };
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
        return {
            {QStringLiteral("name"), scope.parent < 0 ? QStringLiteral("(document)") : scope.name},
            {QStringLiteral("kind"), QLatin1String(kind)},
            {QStringLiteral("nodes"), counts.nodes},
            {QStringLiteral("nodegraphs"), counts.nodeGraphs},
            {QStringLiteral("interfaceInputs"), counts.interfaceInputs},
            {QStringLiteral("outputs"), counts.outputs},
            {QStringLiteral("nodeInputs"), counts.nodeInputs},
            {QStringLiteral("connections"), counts.connections},
            {QStringLiteral("nodeToNode"), counts.nodeToNode},
            {QStringLiteral("depth"), counts.depth},
            {QStringLiteral("maxFanOut"), counts.maxFanOut},
            {QStringLiteral("maxListedInputs"), counts.maxListedInputs},
            {QStringLiteral("positioned"), counts.positioned},
            {QStringLiteral("backdrops"), counts.backdrops},
        };
    }
};

QTEST_GUILESS_MAIN(tst_NetSharedDocuments)

#include "tst_NetSharedDocuments.moc"
