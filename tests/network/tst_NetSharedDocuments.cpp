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
/// the tests are skipped.
class tst_NetSharedDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void document_opensWithoutWarning_data() { addFiles(); }
    void document_opensWithoutWarning();
    void scopes_holdTheCountedElements_data() { addFiles(); }
    void scopes_holdTheCountedElements();
    void nodes_showTheCountedPorts_data() { addFiles(); }
    void nodes_showTheCountedPorts();
    void openEnds_areTheKnownOnes_data() { addFiles(); }
    void openEnds_areTheKnownOnes();

private:
    void addFiles();
    NetReadResult open(const QString& file) const;

    QDir m_Folder;
    QJsonObject m_Counts;
};

void tst_NetSharedDocuments::initTestCase()
{
    m_Folder.setPath(qEnvironmentVariable("ORV_SHARED_DATA"));
    QFile counts(m_Folder.filePath(QStringLiteral("counts.json")));
    if (qEnvironmentVariableIsEmpty("ORV_SHARED_DATA") || !counts.open(QIODevice::ReadOnly)) {
        QTest::qSkip(
            "The folder of shared documents (ORV_SHARED_DATA) is not there.", __FILE__, __LINE__);
        return;
    }
    m_Counts = QJsonDocument::fromJson(counts.readAll()).object();
    QCOMPARE(m_Counts.size(), 41);
}

void tst_NetSharedDocuments::addFiles()
{
    QTest::addColumn<QString>("file");
    const QStringList files = m_Counts.keys();
    for (const QString& file : files)
        QTest::newRow(qPrintable(file)) << file;
}

NetReadResult tst_NetSharedDocuments::open(const QString& file) const
{
    return NetReader(NetSearchPath()).read(m_Folder.filePath(file));
}

void tst_NetSharedDocuments::document_opensWithoutWarning()
{
    QFETCH(QString, file);
    const NetReadResult result = open(file);
    QVERIFY(result.document);
    for (const NetMessage& message : result.messages)
        QVERIFY2(message.severity == NetMessage::Severity::Info, qPrintable(message.toString()));
}

void tst_NetSharedDocuments::scopes_holdTheCountedElements()
{
    QFETCH(QString, file);
    const NetReadResult result = open(file);
    QVERIFY(result.document);
    const QJsonArray expected
        = m_Counts.value(file).toObject().value(QLatin1String("scopes")).toArray();
    int number = 0;
    for (const NetScope& scope : result.document->scopes()) {
        if (scope.fileIndex != 0)
            continue;
        QVERIFY(number < expected.size());
        const NetCounts counts = NetCounts::ofScope(*result.document, scope.index);
        const QString kind = scope.parent < 0               ? QStringLiteral("document")
            : scope.kind == NetScope::Kind::FunctionalGraph ? QStringLiteral("functional")
                                                            : QStringLiteral("compound");
        const QJsonObject actual{
            {QStringLiteral("name"), scope.parent < 0 ? QStringLiteral("(document)") : scope.name},
            {QStringLiteral("kind"), kind},
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
        const QJsonObject wanted = expected.at(number++).toObject();
        QCOMPARE(QJsonDocument(actual).toJson(), QJsonDocument(wanted).toJson());
    }
    QCOMPARE(number, expected.size());
}

void tst_NetSharedDocuments::nodes_showTheCountedPorts()
{
    QFETCH(QString, file);
    const NetReadResult result = open(file);
    QVERIFY(result.document);
    NetCounts sum;
    for (const NetScope& scope : result.document->scopes()) {
        const NetCounts counts = NetCounts::ofScope(*result.document, scope.index);
        sum.resolvedNodes += counts.resolvedNodes;
        sum.inputPorts += counts.inputPorts;
        sum.outputPorts += counts.outputPorts;
    }
    const QJsonObject expected = m_Counts.value(file).toObject();
    QCOMPARE(sum.resolvedNodes, expected.value(QLatin1String("nodesResolved")).toInt());
    QCOMPARE(sum.inputPorts, expected.value(QLatin1String("inputPortsWithDefaults")).toInt());
    QCOMPARE(sum.outputPorts, expected.value(QLatin1String("outputPorts")).toInt());
}

void tst_NetSharedDocuments::openEnds_areTheKnownOnes()
{
    QFETCH(QString, file);
    const NetReadResult result = open(file);
    QVERIFY(result.document);
    QStringList actual;
    for (const NetScope& scope : result.document->scopes()) {
        for (const NetOpenEnd& end : scope.openEnds) {
            if (end.reason != NetOpenEnd::Reason::Outside)
                actual.append(QString::number(end.line) + QLatin1Char(' ') + end.wantedName);
        }
    }
    QStringList expected;
    const QJsonArray dangling
        = m_Counts.value(file).toObject().value(QLatin1String("dangling")).toArray();
    for (const QJsonValue& entry : dangling) {
        const QJsonArray parts = entry.toArray();
        expected.append(
            QString::number(parts.at(0).toInt()) + QLatin1Char(' ') + parts.at(2).toString());
    }
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(tst_NetSharedDocuments)

#include "tst_NetSharedDocuments.moc"
