#include "network/NetEditor.h"
#include "network/NetModelText.h"
#include "network/NetReader.h"

#include <QDir>
#include <QDirIterator>
#include <QSet>
#include <QTest>

#include <random>

/// Changes the real documents of the shared folder at random, and compares the model after each change
/// with what is read from the changed text. The folder is no part of the project: without it the tests are
/// skipped.
class tst_NetSharedEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void editedModel_isWhatTheEditedTextSays_data();
    void editedModel_isWhatTheEditedTextSays();

private:
    QDir m_Folder;
    QStringList m_Files;
};

namespace {

constexpr int kKinds = 9;
constexpr int kChanges = 2 * kKinds;

// Draws changes that the rules allow, from a fixed sequence of numbers.
class Dice
{
public:
    explicit Dice(NetEditor* editor)
        : m_Editor(editor)
    {
        for (const NetScope& scope : editor->document().scopes()) {
            for (int i = 0; i < scope.nodes.size(); ++i) {
                if (scope.nodes.at(i).fileIndex == 0)
                    m_Nodes.append({scope.index, i});
            }
        }
    }

    /// Null when the document allows nothing of the kind in a few thousand draws.
    NetEditor::ChangePtr draw(int kind)
    {
        NetEditor::ChangePtr change;
        for (int i = 0; i < 4000 && !change && !m_Nodes.isEmpty(); ++i)
            change = tryDraw(kind);
        return change;
    }

private:
    int below(int limit)
    {
        return limit > 0 ? static_cast<int>(m_Numbers() % static_cast<unsigned>(limit)) : -1;
    }
    QRectF rect() { return {point(), QSizeF(below(900) / 70.0, below(900) / 110.0)}; }
    QPointF point() { return {below(4000) / 70.0 - 20, below(4000) / 110.0 - 10}; }
    int nodeIn(int scope) { return below(m_Editor->scope(scope).nodes.size()); }

    NetEditor::ChangePtr tryDraw(int kind)
    {
        const auto [scope, node] = m_Nodes.at(below(m_Nodes.size()));
        const NetPortRef dest{node, below(m_Editor->scope(scope).nodes.at(node).inputs.size())};
        switch (kind) {
        case 0:
            return m_Editor->moveNodes(scope, {{node, point()}, {nodeIn(scope), point()}});
        case 1: {
            const int from = nodeIn(scope);
            const int output = below(m_Editor->scope(scope).nodes.at(from).outputs.size());
            return m_Editor->connectInput(scope, {from, output}, dest);
        }
        case 2:
            return m_Editor->disconnectInput(scope, dest);
        case 3: {
            const QSet<int> two{node, nodeIn(scope)};
            return m_Editor->removeNodes(scope, {two.cbegin(), two.cend()});
        }
        case 4:
            return m_Editor->insertDot(scope, dest, point());
        default:
            return tryBackdrop(kind, scope);
        }
    }

    NetEditor::ChangePtr tryBackdrop(int kind, int scope)
    {
        static const QStringList s_Texts{QString(), QStringLiteral("a \"<&\n'b"),
            QString::fromUtf8("R\xC3\xA9sum\xC3\xA9 2"), QStringLiteral("#12aBfF")};
        const QString& text = s_Texts.at(below(s_Texts.size()));
        const int backdrop = below(m_Editor->scope(scope).backdrops.size());
        if (kind == 5) {
            NetBackdrop fresh;
            fresh.rect = rect();
            fresh.title = text;
            fresh.doc = s_Texts.at(below(s_Texts.size()));
            fresh.isNote = below(2) == 1;
            return m_Editor->addBackdrop(scope, fresh);
        }
        if (kind == 6)
            return m_Editor->moveBackdrops(scope, {{backdrop, rect()}});
        if (kind == 8)
            return m_Editor->removeBackdrops(scope, {backdrop});
        switch (below(3)) {
        case 0:
            return m_Editor->setBackdropTitle(scope, backdrop, text);
        case 1:
            return m_Editor->setBackdropDoc(scope, backdrop, text);
        default:
            return m_Editor->setBackdropColor(scope, backdrop, text);
        }
    }

    NetEditor* m_Editor;
    QVector<QPair<int, int>> m_Nodes; // scope and node
    std::mt19937 m_Numbers{20};
};

QString difference(const QStringList& model, const QStringList& text)
{
    if (model == text)
        return {};
    for (const QString& line : model) {
        if (!text.contains(line))
            return QLatin1String("only in the model: ") + line;
    }
    for (const QString& line : text) {
        if (!model.contains(line))
            return QLatin1String("only in the text: ") + line;
    }
    return QStringLiteral("repeated lines");
}

} // namespace

void tst_NetSharedEdits::initTestCase()
{
    m_Folder.setPath(qEnvironmentVariable("ORV_SHARED_DATA"));
    QDirIterator files(
        m_Folder.path(), {QStringLiteral("*.mtlx")}, QDir::Files, QDirIterator::Subdirectories);
    while (!qEnvironmentVariableIsEmpty("ORV_SHARED_DATA") && files.hasNext())
        m_Files.append(m_Folder.relativeFilePath(files.next()));
    m_Files.sort();
    if (m_Files.isEmpty()) {
        QTest::qSkip(
            "The folder of shared documents (ORV_SHARED_DATA) is not there.", __FILE__, __LINE__);
        return;
    }
    QCOMPARE(m_Files.size(), 41);
}

void tst_NetSharedEdits::editedModel_isWhatTheEditedTextSays_data()
{
    QTest::addColumn<QString>("file");
    for (const QString& file : qAsConst(m_Files))
        QTest::newRow(qPrintable(file)) << file;
}

void tst_NetSharedEdits::editedModel_isWhatTheEditedTextSays()
{
    QFETCH(QString, file);
    const NetReader reader{NetSearchPath()};
    const QString path = m_Folder.filePath(file);
    QFile original(path);
    QVERIFY(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    NetEditor editor(reader.read(path).document);
    QCOMPARE(editor.text(), bytes);

    Dice dice(&editor);
    std::vector<NetEditor::ChangePtr> changes;
    QVector<QByteArray> texts{bytes};
    QVector<QStringList> models{NetModelText::of(editor.document())};
    for (int i = 0; i < kChanges; ++i) {
        NetEditor::ChangePtr change = dice.draw(i % kKinds);
        if (!change)
            continue;
        change->redo();
        const QStringList model = NetModelText::of(editor.document());
        const auto again = reader.read(path, editor.text());
        QVERIFY(again.document);
        const QString problem = difference(model, NetModelText::of(*again.document));
        QVERIFY2(
            problem.isEmpty(), qPrintable(QStringLiteral("change %1, %2").arg(i).arg(problem)));
        texts.append(editor.text());
        models.append(model);
        changes.push_back(std::move(change));
    }
    const int count = static_cast<int>(changes.size());
    // A small document has nothing left to remove or connect at some point.
    QVERIFY(count == kChanges || models.constFirst().size() < 100);
    for (int i = count - 1; i >= 0; --i) {
        changes[static_cast<std::size_t>(i)]->undo();
        QVERIFY2(editor.text() == texts.at(i), "the text before the change");
        QCOMPARE(difference(NetModelText::of(editor.document()), models.at(i)), QString());
    }
    for (int i = 0; i < count; ++i) {
        changes[static_cast<std::size_t>(i)]->redo();
        QVERIFY2(editor.text() == texts.at(i + 1), "the text after the change");
        QCOMPARE(difference(NetModelText::of(editor.document()), models.at(i + 1)), QString());
    }
}

QTEST_GUILESS_MAIN(tst_NetSharedEdits)

#include "tst_NetSharedEdits.moc"
