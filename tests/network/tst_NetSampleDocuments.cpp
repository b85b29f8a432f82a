#include "network/NetReader.h"

#include <QDir>
#include <QSet>
#include <QTest>

/// The sample networks that come with the editor are without fault.
class tst_NetSampleDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sample_opensWithoutAnyMessage_data();
    void sample_opensWithoutAnyMessage();
};

namespace {

QDir folder()
{
    return QDir(QStringLiteral(ORV_RESOURCES "/networks"));
}

NetReadResult open(const QString& name)
{
    return NetReader(NetSearchPath()).read(folder().filePath(name));
}

} // namespace

void tst_NetSampleDocuments::sample_opensWithoutAnyMessage_data()
{
    QTest::addColumn<QString>("file");
    const QStringList files = folder().entryList({QStringLiteral("*.mtlx")}, QDir::Files);
    QVERIFY(files.size() >= 4);
    for (const QString& file : files)
        QTest::newRow(qPrintable(file)) << file;
    QTest::newRow("definitions") << QStringLiteral("libraries/orv_defs.mtlx");
}

void tst_NetSampleDocuments::sample_opensWithoutAnyMessage()
{
    QFETCH(QString, file);
    const NetReadResult result = open(file);
    for (const NetMessage& message : result.messages)
        qWarning("%s", qPrintable(message.toString()));
    QVERIFY(result.document && result.messages.isEmpty());
    for (const NetScope& scope : result.document->scopes()) {
        QSet<QString> names;
        for (const NetNode& node : scope.nodes) {
            QVERIFY2(node.implied || !names.contains(node.name), qPrintable(node.name));
            names.insert(node.name);
            QVERIFY2(node.kind != NetNode::Kind::Node || !node.nodeGroup.isEmpty(),
                qPrintable(node.name));
        }
        for (const NetConnection& wire : scope.connections) {
            const NetPort& source = scope.nodes.at(wire.sourceNode).outputs.at(wire.sourcePort);
            const NetPort& dest = scope.nodes.at(wire.destNode).inputs.at(wire.destPort);
            QVERIFY2(source.type == dest.type, qPrintable(scope.nodes.at(wire.destNode).name));
        }
    }
}

QTEST_GUILESS_MAIN(tst_NetSampleDocuments)

#include "tst_NetSampleDocuments.moc"
