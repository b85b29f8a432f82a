#include "network/NetEditor.h"
#include "network/NetModelText.h"
#include "network/NetTemporaryFiles.h"
#include "support/TestRows.h"
#include "support/TestTable.h"

#include <QLocale>

#include <csignal>
#include <sys/resource.h>

namespace {

/// The edited document. Before it stands a byte order mark, its lines end with CR LF, and the last one
/// does not end.
QByteArray documentText()
{
    return "\xEF\xBB\xBF" + NetTemporaryFiles::data("edited.mtlx").trimmed().replace("\n", "\r\n");
}

struct Made
{
    NetEditor::ChangePtr m_Change;
    QString m_Why; ///< it is refused
};

struct Fixture
{
    explicit Fixture(const QByteArray& bytes = documentText())
    {
        m_Files.write(u"definitions.mtlx"_s, NetTemporaryFiles::data("definitions.mtlx"));
        m_Path = m_Files.write(u"document.mtlx"_s, bytes);
        m_Editor = std::make_unique<NetEditor>(NetReader(NetSearchPath()).read(m_Path).document);
    }
    /// The change that a line asks for, "move node/a 1 2", and why it is refused. A dot goes into the graph.
    Made make(const QByteArray& line) const
    {
        NetEditor& editor = *m_Editor;
        const QByteArrayList words = line.split(' ');
        const QByteArray& verb = words.first();
        const int scope = verb == "dot" ? 1 : 0;
        const auto number = [&](int i) { return words.value(i).toDouble(); };
        const auto node = [&](int i) {
            return editor.scope(scope).indexOfKey(
                QString::fromUtf8(words.at(i).split('.').first()));
        };
        const auto port = [&](int i, QVector<NetPort> NetNode::*side) -> NetPortRef {
            const QString name = QString::fromUtf8(words.at(i).split('.').last());
            return {
                node(i), NetDefinition::indexOf(editor.scope(scope).nodes.at(node(i)).*side, name)};
        };
        if (verb == "connect") {
            const NetPortRef from = port(1, &NetNode::outputs);
            const NetPortRef to = port(2, &NetNode::inputs);
            return {editor.connectInput(0, from, to), editor.whyNotConnect(0, from, to)};
        }
        if (verb == "disconnect")
            return {editor.disconnectInput(0, port(1, &NetNode::inputs)), {}};
        if (verb == "dot")
            return {editor.insertDot(1, port(1, &NetNode::inputs), {number(2), number(3)}), {}};
        if (verb == "remove")
            return {editor.removeNodes(0, {node(1)}), {}};
        if (verb == "move") // the last one counts
            return {
                editor.moveNodes(0, {{node(1), {9, 9}}, {node(1), {number(2), number(3)}}}), {}};
        if (verb == "add") {
            NetBackdrop fresh;
            fresh.title = QString::fromUtf8(line).section(u' ', 3);
            fresh.isNote = words.at(2) == "note";
            fresh.rect = QRectF(-0.5, 2, 1.0 / 3, 4);
            return {editor.addBackdrop(words.at(1).toInt(), fresh), {}};
        }
        const int backdrop = words.value(1).toInt();
        const int last = verb == "drop" ? words.value(2).toInt() : backdrop;
        const QString why = verb == "drop" ? editor.whyNotRemoveBackdrop(0, last)
                                           : editor.whyNotChangeBackdrop(0, last);
        const QString text = QString::fromUtf8(line).section(u' ', 2);
        const QRectF rect(number(2), number(3), number(4), number(5));
        if (verb == "drop")
            return {editor.removeBackdrops(0, {backdrop, last}), why};
        if (verb == "reframe")
            return {editor.moveBackdrops(0, {{backdrop, {7, 7, 7, 7}}, {backdrop, rect}}), why};
        return {(editor
                    .*(verb == "title"      ? &NetEditor::setBackdropTitle
                            : verb == "doc" ? &NetEditor::setBackdropDoc
                                            : &NetEditor::setBackdropColor))(0, backdrop, text),
            why};
    }

    NetTemporaryFiles m_Files;
    QString m_Path;
    std::unique_ptr<NetEditor> m_Editor;
};

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

    void change_touchesOnlyItsOwnPlace_data()
    {
        addTestRows(ORV_TEST_DATA "/network/edits.txt", "changes",
            {"change", "before", "after", "alsoBefore", "alsoAfter"});
    }

    void change_touchesOnlyItsOwnPlace()
    {
        QFETCH(QByteArray, change);
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        QFETCH(QByteArray, alsoBefore);
        QFETCH(QByteArray, alsoAfter);
        const bool isWhole = before.startsWith("<materialx>");
        const auto lines
            = [isWhole](QByteArray text) { return isWhole ? text : text.replace("\n", "\r\n"); };
        const QByteArray original = isWhole ? before : documentText();
        const Fixture fixture(original);
        NetEditor& editor = *fixture.m_Editor;
        QCOMPARE(editor.text(), original);
        const auto [step, why] = fixture.make(change);
        QCOMPARE(step == nullptr, before.isEmpty());
        QCOMPARE(why.toUtf8(), step ? QByteArray() : after);
        if (!step)
            return;
        step->redo();
        QByteArray expected = original;
        QCOMPARE(expected.count(lines(before)), 1);
        expected.replace(lines(before), lines(after));
        if (!alsoBefore.isEmpty())
            expected.replace(lines(alsoBefore), lines(alsoAfter));
        QCOMPARE(editor.text(), expected);
        const auto again = NetReader(NetSearchPath()).read(fixture.m_Path, expected).document;
        QCOMPARE(NetModelText::of(editor.document()), NetModelText::of(*again));
        if (change == "remove graph/g") // what lies inside is gone as well
            QVERIFY(!editor.whyNotMove(editor.document().indexOfScope(u"g"_s), 0).isEmpty());
        step->undo();
        QCOMPARE(editor.text(), original);
    }

    void boxWithoutElement_movesOnScreenOnly()
    {
        const QByteArray bytes = "<materialx><xi:include href=\"definitions.mtlx\"/>"
                                 "<nodegraph name=\"f\" nodedef=\"ND_one\"/></materialx>";
        Fixture fixture(bytes);
        NetEditor& editor = *fixture.m_Editor;
        const int implied = editor.scope(1).indexOfKey(u"input/in"_s);
        editor.moveNodes(1, {{implied, {3, 4}}})->redo();
        QCOMPARE(editor.text(), bytes);
        QCOMPARE(editor.scope(1).nodes.at(implied).position, QPointF(3, 4));
        QVERIFY(!editor.whyNotRemove(1, implied).isEmpty());
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
        QVERIFY(QDir().mkpath(fixture.m_Files.path(u"folder"_s)));
        const QString device = fixture.m_Files.path(u"device"_s);
        QVERIFY(QFile::link(u"/dev/full"_s, device));
        fixture.make("move node/last 7 8").m_Change->redo();
        const bool given = name.isEmpty() || name.startsWith(u'/');
        const QString path = given ? name : fixture.m_Files.path(name);

        // A limit on the size of files fails a write half way, as a full disk does.
        rlimit old{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{100, old.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        QString error;
        const bool saved = fixture.m_Editor->save(path, &error);
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, handler);

        QVERIFY(!saved);
        QVERIFY2(error.contains(sentence), qPrintable(error));
        QCOMPARE(fixture.m_Editor->document().filePath(), fixture.m_Path);
        QVERIFY(!fixture.m_Editor->changedOnDisk());
        const QStringList left
            = QFileInfo(fixture.m_Path).dir().entryList(QDir::Files | QDir::System | QDir::Hidden);
        QCOMPARE(left.join(u' '), u"definitions.mtlx device document.mtlx"_s);
    }

    void savedFile_keepsLinkAndPermissions()
    {
        Fixture fixture;
        const QString link = fixture.m_Files.path(u"link.mtlx"_s);
        QVERIFY(QFile::link(fixture.m_Path, link));
        QVERIFY(QFile::setPermissions(
            fixture.m_Path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeGroup));
        const auto before = QFile::permissions(fixture.m_Path);
        fixture.make("move node/last 7 8").m_Change->redo();
        QString error;
        QVERIFY2(fixture.m_Editor->save(link, &error), qPrintable(error));
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(QFile::permissions(fixture.m_Path), before);
        QFile target(fixture.m_Path);
        QVERIFY(target.open(QIODevice::ReadOnly));
        QCOMPARE(target.readAll(), fixture.m_Editor->text());
        QCOMPARE(fixture.m_Editor->document().filePath(), link);
    }
};

QTEST_GUILESS_MAIN(tst_NetEditor)

#include "tst_NetEditor.moc"
