#include "network/NetEditor.h"
#include "network/NetModelText.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestTable.h"

#include <QLocale>
#include <QSignalSpy>

#include <csignal>
#include <functional>
#include <sys/resource.h>

namespace {

/// Makes one change of the document below.
using Maker = std::function<NetEditor::ChangePtr(NetEditor&)>;

} // namespace

Q_DECLARE_METATYPE(Maker)

namespace {

/// The edited document. Before it stands a byte order mark, its lines end with CR LF, and the last one
/// does not end. Edits below are written as parts of it.
QByteArray documentText()
{
    return "\xEF\xBB\xBF" + NetTemporaryFiles::data("edited.mtlx").trimmed().replace("\n", "\r\n");
}

struct Fixture
{
    explicit Fixture(const QByteArray& bytes = documentText())
    {
        files.write(
            QStringLiteral("definitions.mtlx"), NetTemporaryFiles::data("definitions.mtlx"));
        path = files.write(QStringLiteral("document.mtlx"), bytes);
        editor = std::make_unique<NetEditor>(NetReader(NetSearchPath()).read(path).document);
    }

    NetTemporaryFiles files;
    QString path;
    std::unique_ptr<NetEditor> editor;
};

int node(const NetEditor& editor, int scope, const char* key)
{
    return editor.scope(scope).indexOfKey(QLatin1String(key));
}

NetPortRef input(const NetEditor& editor, const char* key, const char* port = "in", int scope = 0)
{
    const int index = node(editor, scope, key);
    return {index,
        NetDefinition::indexOf(editor.scope(scope).nodes.at(index).inputs, QLatin1String(port))};
}

NetPortRef output(const NetEditor& editor, const char* key, const char* port)
{
    const int index = node(editor, 0, key);
    return {index,
        NetDefinition::indexOf(editor.scope(0).nodes.at(index).outputs, QLatin1String(port))};
}

Maker connected(const char* source, const char* port, const char* dest, const char* destPort)
{
    return [=](NetEditor& editor) {
        return editor.connectInput(0, output(editor, source, port), input(editor, dest, destPort));
    };
}

Maker disconnected(const char* dest, const char* port = "in")
{
    return [=](NetEditor& editor) { return editor.disconnectInput(0, input(editor, dest, port)); };
}

Maker moved(const char* key, qreal x, qreal y)
{
    return [=](NetEditor& editor) {
        const int index = node(editor, 0, key);
        return editor.moveNodes(0, {{index, {9, 9}}, {index, {x, y}}}); // the last one counts
    };
}

Maker removed(const char* key)
{
    return [=](NetEditor& editor) { return editor.removeNodes(0, {node(editor, 0, key)}); };
}

// Of the backdrops in the document.
enum { Frame, Bare, Covered, Shared };

Maker reworded(NetEditor::ChangePtr (NetEditor::*set)(int, int, const QString&), const char* text)
{
    return [=](NetEditor& editor) { return (editor.*set)(0, Frame, QString::fromUtf8(text)); };
}

Maker reframed(int backdrop, const QRectF& rect)
{
    return [=](NetEditor& editor) {
        return editor.moveBackdrops(0, {{backdrop, {7, 7, 7, 7}}, {backdrop, rect}});
    };
}

} // namespace

/// The exact text that each kind of change leaves behind, what is refused and why, and saving.
class tst_NetEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Decimal commas, which must not get into files.
        QLocale::setDefault(QLocale(QLocale::German));
        QVERIFY(setlocale(LC_NUMERIC, "") != nullptr);
    }

    void cleanupTestCase() { QLocale::setDefault(QLocale::c()); }

    void change_touchesOnlyItsOwnPlace_data(); // moc does not read its body

    void change_touchesOnlyItsOwnPlace()
    {
        QFETCH(Maker, maker);
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        Fixture fixture;
        NetEditor& editor = *fixture.editor;
        QCOMPARE(editor.text(), documentText());
        const NetEditor::ChangePtr change = maker(editor);
        QVERIFY(change);
        change->redo();
        QByteArray expected = documentText();
        QCOMPARE(expected.count(before), 1);
        expected.replace(before, after);
        // The second place of the change that has two.
        if (expected.contains("dot1"))
            expected.replace("type=\"float\" nodename=\"d\"/>\r\n  </",
                "type=\"float\" nodename=\"dot1\"/>\r\n  </");
        QCOMPARE(editor.text(), expected);
        const auto again = NetReader(NetSearchPath()).read(fixture.path, expected).document;
        QCOMPARE(NetModelText::of(editor.document()), NetModelText::of(*again));
        change->undo();
        QCOMPARE(editor.text(), documentText());
    }

    void rule_saysWhyNot_data()
    {
        const TestTable<QByteArray, QString> row("ports", "sentence");
        row("types", "node/a out node/tint fg",
            "\"tint.fg\" takes color3, but \"a.out\" gives float.");
        row("itself", "node/a out node/a in", "\"a\" cannot feed itself.");
        row("circle over two", "node/last out graph/g i",
            "\"g\" feeds \"last\" already; the connection would close a circle.");
        row("uniform", "node/t out node/b name",
            "\"b.name\" is uniform: it takes only constants, dots and interface inputs.");
        row("uniform from a constant", "node/k out node/b name", "");
        row("included", "node/a out output/from_include from_include",
            "\"from_include\" comes from an included file and can be changed only there.");
        row("name that is another's", "node:2/twin out node/b in",
            "Another element has the name \"twin\" too, and a connection would lead to that one.");
    }

    void rule_saysWhyNot()
    {
        QFETCH(QByteArray, ports);
        QFETCH(QString, sentence);
        Fixture fixture;
        NetEditor& editor = *fixture.editor;
        const QByteArrayList words = ports.split(' ');
        const NetPortRef from = output(editor, words.at(0).constData(), words.at(1).constData());
        const NetPortRef to = input(editor, words.at(2).constData(), words.at(3).constData());
        QCOMPARE(editor.whyNotConnect(0, from, to), sentence);
        QCOMPARE(editor.connectInput(0, from, to) == nullptr, !sentence.isEmpty());
    }

    void backdropRule_saysWhyNot()
    {
        Fixture fixture;
        NetEditor& editor = *fixture.editor;
        QCOMPARE(editor.whyNotChangeBackdrop(0, Shared),
            QStringLiteral(
                "\"Shared\" comes from an included file and can be changed only there."));
        QVERIFY(!editor.removeBackdrops(0, {Frame, Shared}));
        QVERIFY(!editor.setBackdropDoc(0, Shared, QStringLiteral("x")));
        QVERIFY(!editor.whyNotChangeBackdrop(0, Shared + 1).isEmpty());
        // Without it, the included one of the same name would show.
        QVERIFY(editor.whyNotChangeBackdrop(0, Covered).isEmpty());
        QVERIFY(!editor.removeBackdrops(0, {Covered}));
        // Nothing to do, or nothing that a file could say.
        QVERIFY(!reframed(Frame, {1, 2, 3.5000001, 4})(editor));
        QVERIFY(!reframed(Frame, {1, 2, -1, 4})(editor));
        QVERIFY(!reworded(&NetEditor::setBackdropColor, "red")(editor));
    }

    void newBackdrop_standsAtTheEndOfItsScope_data()
    {
        const TestTable<int, QString, bool, QByteArray, QByteArray> row(
            "scope", "title", "isNote", "before", "after");
        // In the texts, @ stands for the rectangle.
        row("behind the last one", 0, "Wood grain (2)", false,
            "<materialx>\n   <one name=\"a\"/>\n   <!-- end -->\n\n</materialx>\n",
            "<materialx>\n   <one name=\"a\"/>\n   <!-- end -->\n   <backdrop "
            "name=\"Wood_grain_2\" @ "
            "uiname=\"Wood grain (2)\"/>\n\n</materialx>\n");
        row("closing tag on the line of the last one", 0, "N", false,
            "<materialx>\r\n\t<one name='a' /></materialx>",
            "<materialx>\r\n\t<one name='a' />\r\n\t<backdrop name='N' @ />\r\n</materialx>");
        row("graph that closes itself", 1, "", true,
            "<materialx>\n  <nodegraph name=\"note\" />\n</materialx>",
            "<materialx>\n  <nodegraph name=\"note\">\n    <backdrop name=\"note\" @ contains=\"\" "
            "/>\n"
            "  </nodegraph>\n</materialx>");
        row("name taken", 0, "step_1", false,
            "<materialx>\n  <nodegraph name=\"step_1\"/>\n  <look name=\"step_2\"/>\n</materialx>",
            "<materialx>\n  <nodegraph name=\"step_1\"/>\n  <look name=\"step_2\"/>\n"
            "  <backdrop name=\"step_3\" @ uiname=\"step_1\"/>\n</materialx>");
        row("empty document, no letters", 0, "3 \xE6\x9C\xA8", false, "<materialx>\n</materialx>",
            "<materialx>\n  <backdrop name=\"backdrop\" @ uiname=\"3 \xE6\x9C\xA8\" "
            "/>\n</materialx>");
        row("all on one line, accents", 0, "\xC3\x89t\xC3\xA9", false,
            "<materialx><a/></materialx>",
            "<materialx><a/><backdrop name=\"Ete\" @ uiname=\"\xC3\x89t\xC3\xA9\"/></materialx>");
    }

    void newBackdrop_standsAtTheEndOfItsScope()
    {
        QFETCH(int, scope);
        QFETCH(QString, title);
        QFETCH(bool, isNote);
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        const char* const quote = before.contains('\'') ? "'" : "\"";
        after.replace("@",
            QByteArray("xpos='-0.5' ypos='2' width='0.333333' height='4'").replace("'", quote));
        Fixture fixture(before);
        NetEditor& editor = *fixture.editor;
        const QSignalSpy added(&editor, &NetEditor::backdropAdded);
        NetBackdrop fresh;
        fresh.title = title;
        fresh.isNote = isNote;
        fresh.rect = QRectF(-0.5, 2, 1.0 / 3, 4);
        const auto change = editor.addBackdrop(scope, fresh);
        change->redo();
        QCOMPARE(editor.text(), after);
        QCOMPARE(added, (QList<QVariantList>{{scope, 0}}));
        const NetBackdrop& backdrop = editor.scope(scope).backdrops.at(0);
        QCOMPARE(backdrop.title, title.isEmpty() ? QStringLiteral("note") : title);
        QCOMPARE(backdrop.isNote, isNote);
        change->undo();
        QCOMPARE(editor.text(), before);
        QVERIFY(editor.scope(scope).backdrops.at(0).removed);
    }

    void boxWithoutElement_movesOnScreenOnly()
    {
        const QByteArray bytes = "<materialx><xi:include href=\"definitions.mtlx\"/>"
                                 "<nodegraph name=\"f\" nodedef=\"ND_one\"/></materialx>";
        Fixture fixture(bytes);
        NetEditor& editor = *fixture.editor;
        const int implied = node(editor, 1, "input/in");
        editor.moveNodes(1, {{implied, {3, 4}}})->redo();
        QCOMPARE(editor.text(), bytes);
        QCOMPARE(editor.scope(1).nodes.at(implied).position, QPointF(3, 4));
        QVERIFY(!editor.whyNotRemove(1, implied).isEmpty());
    }

    void removedGraph_disconnectsWhatReachedForItFromInside()
    {
        const QByteArray user = "<nodegraph name=\"user\"><one name=\"n\" type=\"float\">"
                                "<input name=\"in\" type=\"float\" nodegraph=\"g\" output=\"o\"/>"
                                "</one></nodegraph>";
        const QByteArray graph
            = "<nodegraph name=\"g\"><output name=\"o\" type=\"float\"/></nodegraph>";
        Fixture fixture("<materialx>" + user + graph + "</materialx>");
        NetEditor& editor = *fixture.editor;
        removed("graph/g")(editor)->redo();
        QCOMPARE(editor.text().replace("/>", " nodegraph=\"g\" output=\"o\"/>"),
            QByteArray("<materialx>" + user + "</materialx>"));
        QVERIFY(editor.scope(1).openEnds.isEmpty());
        const int inner = editor.document().indexOfScope(QStringLiteral("g"));
        QVERIFY(!editor.whyNotMove(inner, 0).isEmpty());
    }

    void failedSave_leavesTheOldFile_data()
    {
        const TestTable<QString, QString> row("name", "sentence");
        row("no name", "", "The document needs a file name.");
        row("folder in its place", "folder", "is a folder, not a file.");
        row("device in its place", "device", "is not a regular file.");
        row("folder that is not there", "nowhere/a.mtlx", "nowhere\" does not exist.");
        row("folder that takes no files", "/proc/a.mtlx", "\"/proc/a.mtlx\" cannot be written: ");
        row("no room", "document.mtlx", "document.mtlx\" cannot be written: ");
    }

    void failedSave_leavesTheOldFile()
    {
        QFETCH(QString, name);
        QFETCH(QString, sentence);
        Fixture fixture;
        QVERIFY(QDir().mkpath(fixture.files.path(QStringLiteral("folder"))));
        const QString device = fixture.files.path(QStringLiteral("device"));
        QVERIFY(QFile::link(QStringLiteral("/dev/full"), device));
        moved("node/last", 7, 8)(*fixture.editor)->redo();
        const bool given = name.isEmpty() || name.startsWith(QLatin1Char('/'));
        const QString path = given ? name : fixture.files.path(name);

        // A limit on the size of files fails a write half way, as a full disk does.
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{100, old.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        QString error;
        const bool saved = fixture.editor->save(path, &error);
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, handler);

        QVERIFY(!saved);
        QVERIFY2(error.contains(sentence), qPrintable(error));
        QCOMPARE(fixture.editor->document().filePath(), fixture.path);
        QVERIFY(!fixture.editor->changedOnDisk());
        const QStringList left
            = QFileInfo(fixture.path).dir().entryList(QDir::Files | QDir::System | QDir::Hidden);
        QCOMPARE(
            left.join(QLatin1Char(' ')), QStringLiteral("definitions.mtlx device document.mtlx"));
    }

    void savedFile_keepsLinkAndPermissions()
    {
        Fixture fixture;
        const QString link = fixture.files.path(QStringLiteral("link.mtlx"));
        QVERIFY(QFile::link(fixture.path, link));
        QVERIFY(QFile::setPermissions(
            fixture.path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeGroup));
        const auto before = QFile::permissions(fixture.path);
        moved("node/last", 7, 8)(*fixture.editor)->redo();
        QString error;
        QVERIFY2(fixture.editor->save(link, &error), qPrintable(error));
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(QFile::permissions(fixture.path), before);
        QFile target(fixture.path);
        QVERIFY(target.open(QIODevice::ReadOnly));
        QCOMPARE(target.readAll(), fixture.editor->text());
        QCOMPARE(fixture.editor->document().filePath(), link);
    }
};

void tst_NetEditor::change_touchesOnlyItsOwnPlace_data()
{
    const TestTable<Maker, QByteArray, QByteArray> row("maker", "before", "after");
    row("move one coordinate", moved("node/a", 1.5000001, 0.1 + 0.2), R"(xpos="1.50" ypos="-2" >)",
        R"(xpos="1.50" ypos="0.3" >)");
    row("move what has no position", moved("node/b", -1234567.8912345, -0.0000001),
        R"(type='float'/>)", R"(type='float' xpos='-1234567.891235' ypos='0'/>)");
    row("move a later one of a name", moved("node:2/twin", 1, 2), R"(type="float"><input)",
        R"(type="float" xpos="1" ypos="2"><input)");
    row("connect in place of a value", connected("node/a", "out", "node/c", "in"),
        R"(value="1.0" uiname)", R"(nodename="a" uiname)");
    row("connect to one of several outputs", connected("node/p", "x", "node/c", "in"),
        R"(value="1.0" uiname)", R"(nodename="p" output="x" uiname)");
    row("connect instead of an output", connected("node/a", "out", "node:2/twin", "in"),
        R"(nodename="p" output="y")", R"(nodename="a")");
    row("connect a graph", connected("graph/g", "o", "node/c", "in"), R"(value="1.0" uiname)",
        R"(nodegraph="g" output="o" uiname)");
    row("connect the input of a graph", connected("node/a", "out", "graph/g", "i"),
        R"(value="2"/>)", R"(nodename="a"/>)");
    row("list an input of a closed element", connected("node/a", "out", "node/b", "in"),
        "type='float'/>\r\n",
        "type='float'>\r\n    <input name='in' type='float' nodename='a'/>\r\n  </one>\r\n");
    row("list an input of an empty element", connected("node/a", "out", "node/twin", "in"),
        R"(type="float"></one>)",
        "type=\"float\">\r\n    <input name=\"in\" type=\"float\" nodename=\"a\" />\r\n  "
        "</one>");
    row("list an input behind another", connected("node/k", "out", "node/c", "name"),
        "<!-- one -->\r\n",
        "<!-- one -->\r\n    <input name=\"name\" type=\"string\" nodename=\"k\" />\r\n");
    row("disconnect, default escaped", disconnected("node:2/twin"), R"(nodename="p" output="y")",
        R"(value="&lt;0.5&gt;")");
    row("disconnect what has no default", disconnected("output/out", "out"),
        R"(type="float" nodename="a" />)", R"(type="float" />)");
    row("remove lines", removed("node/c"),
        "  <one   name=\"c\"\r\n         type=\"float\">\r\n    <input name=\"in\" "
        "type=\"float\" "
        "value=\"1.0\" uiname=\"In\" /> <!-- one -->\r\n    <![CDATA[</one>]]><?note </one> "
        "?>\r\n"
        "\r\n  </one >\r\n",
        "");
    row("remove beside a comment", removed("node/b"),
        "  <one name='b' file=\"a.<UDIM>.png>\" type='float'/>\r\n", "");
    row(
        "dot before an output in a graph",
        [](NetEditor& editor) {
            return editor.insertDot(1, input(editor, "output/o", "o", 1), {0.25, -1.0 / 3});
        },
        "\t<output name=\"o\"",
        "\t<dot name=\"dot1\" type=\"float\" xpos=\"0.25\" ypos=\"-0.333333\">\r\n"
        "\t\t<input name=\"in\" type=\"float\" nodename=\"d\"/>\r\n\t</dot>\r\n\t<output "
        "name=\"o\"");
    row("move and resize a backdrop", reframed(Frame, {1, 2.25, 3.5, 4.1234567}),
        R"(ypos="2" width="3.50" height='4')", R"(ypos="2.25" width="3.50" height='4.123457')");
    row("move a backdrop without a place", reframed(Bare, {5, 0, 0, 1}), R"("bare" width="-2")",
        R"("bare" width="-2" xpos="5" ypos="0")");
    row("title", reworded(&NetEditor::setBackdropTitle, "\"A\" & b"), R"(doc="old"/>)",
        R"(doc="old" uiname="&quot;A&quot; &amp; b"/>)");
    row("text of two lines", reworded(&NetEditor::setBackdropDoc, "a\n\x01<b>\xC3\xA4"),
        R"(doc="old")", "doc=\"a&#10;&lt;b&gt;\xC3\xA4\"");
    row("no text", reworded(&NetEditor::setBackdropDoc, ""), R"( doc="old")", "");
    row("colour", reworded(&NetEditor::setBackdropColor, "#C85252"), R"(doc="old"/>)",
        R"(doc="old" uicolor="#C85252"/>)");
    const Maker removal = [](NetEditor& editor) { return editor.removeBackdrops(0, {Bare, Bare}); };
    row("remove a backdrop", removal, "  <backdrop name=\"bare\" width=\"-2\"/>\r\n", "");
}

QTEST_GUILESS_MAIN(tst_NetEditor)

#include "tst_NetEditor.moc"
