#include "network/NetDefinitionLibrary.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestTable.h"

#include <QTest>

namespace {

// The same category several times over, told apart by output type, version, target, inputs,
// namespace.
const QByteArray kMixes = NetTemporaryFiles::data("mixes.mtlx");

NetDefinitionLibrary libraryOf(const NetTemporaryFiles& files, const QByteArray& children)
{
    NetMessage problem;
    NetDefinitionLibrary library;
    library.add(
        *NetXmlFile::load(files.writeDocument(QStringLiteral("own.mtlx"), children), &problem));
    library.finish();
    return library;
}

QString nameOf(const NetDefinitionPtr& definition)
{
    return definition ? definition->name : QStringLiteral("none");
}

} // namespace

/// Which definition an instance gets, and where definitions are found.
class tst_NetDefinitionLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instance_getsTheFirstFittingDefinition_data()
    {
        const TestTable<QByteArray, QString, QString> row("instance", "expected", "nameSpace");
        row("nothing listed", R"(<mix type="float"/>)", "float", "");
        row("by output type", R"(<mix type="color3"/>)", "color", "");
        row("by listed inputs", R"(<mix type="float"><input name="b" type="float"/></mix>)", "wide",
            "");
        row("unknown input", R"(<mix type="float"><input name="zz" type="float"/></mix>)", "none",
            "");
        row("several outputs", R"(<mix type="multioutput"/>)", "several", "");
        row("other target",
            R"(<mix type="float" target="genosl"><input name="gl" type="float"/></mix>)", "none",
            "");
        row("by name", R"(<anything type="x" nodedef="wide"/>)", "wide", "");
        row("asked version", R"(<aged type="float" version="1.0"/>)", "v1", "");
        row("default version", R"(<aged type="float"/>)", "v2", "");
        row("namespace in force first", R"(<mix type="float"/>)", "lib:spaced", "lib");
        row("not without its namespace", R"(<rare type="float"/>)", "none", "");
    }

    void instance_getsTheFirstFittingDefinition()
    {
        QFETCH(QByteArray, instance);
        QFETCH(QString, nameSpace);
        QFETCH(QString, expected);
        NetTemporaryFiles files;
        NetMessage problem;
        const auto file = NetXmlFile::load(
            files.writeDocument(QStringLiteral("instance.mtlx"), instance), &problem);
        QVERIFY2(file, qPrintable(problem.toString()));
        const pugi::xml_node element = file->root().find_child(
            [](pugi::xml_node child) { return child.type() == pugi::node_element; });
        QVector<NetPort> inputs;
        for (const pugi::xml_node input : element.children("input"))
            inputs.append(file->port(input));
        const NetDefinitionQuery query{NetXmlFile::attribute(element, "nodedef"),
            QString::fromUtf8(element.name()), nameSpace, NetXmlFile::attribute(element, "type"),
            NetXmlFile::attribute(element, "version"), NetXmlFile::attribute(element, "target"),
            &inputs};
        QCOMPARE(nameOf(libraryOf(files, kMixes).find(query)), expected);
    }

    void inheritanceInCircles_ends()
    {
        NetTemporaryFiles files;
        const NetDefinitionLibrary library = libraryOf(files, R"(
<nodedef name="a" node="n" inherit="b"><input name="a" type="float"/></nodedef>
<nodedef name="b" node="n" inherit="a"><input name="b" type="float"/></nodedef>
<nodedef name="self" node="n" inherit="self"><input name="s" type="float"/></nodedef>)");
        QCOMPARE(library.byName(QStringLiteral("a"))->inputs.size(), 2);
        QCOMPARE(library.byName(QStringLiteral("self"))->inputs.size(), 1);
    }

    void documentFindsLibrariesAboveIt()
    {
        NetTemporaryFiles files;
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
        const auto definitionNow = [&path](const NetSearchPath& searchPath) {
            const auto document = NetReader(searchPath).read(path).document;
            return nameOf(document->documentScope().nodes.constFirst().definition);
        };
        QCOMPARE(definitionNow(NetSearchPath()), QStringLiteral("near"));
        QCOMPARE(definitionNow(NetSearchPath({files.path(QString())})), QStringLiteral("far"));
        QVERIFY(QFile::remove(files.path(QStringLiteral("a/libraries/near.mtlx"))));
        QCOMPARE(definitionNow(NetSearchPath()), QStringLiteral("far"));
    }

    void unreadableLibraryFile_isAnInfo()
    {
        NetTemporaryFiles files;
        const QString broken
            = files.write(QStringLiteral("libraries/broken.mtlx"), "<materialx>\n<");
        files.writeDocument(QStringLiteral("libraries/whole.mtlx"),
            R"(<nodedef name="whole" node="n"><output name="out" type="float"/></nodedef>)");
        const NetReadResult result = files.read(R"(<n name="x" type="float"/>)");
        QVERIFY(result.document);
        QCOMPARE(nameOf(result.document->documentScope().nodes.constFirst().definition),
            QStringLiteral("whole"));
        QCOMPARE(result.messages.size(), 1);
        const NetMessage& message = result.messages.constFirst();
        QCOMPARE(message.severity, NetMessage::Severity::Info);
        QVERIFY(message.toString().startsWith(broken + QStringLiteral(":2: ")));
    }
};

QTEST_GUILESS_MAIN(tst_NetDefinitionLibrary)

#include "tst_NetDefinitionLibrary.moc"
