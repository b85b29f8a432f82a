// Edits documents at random, as the editor's menus and mouse do and by changes of the model in all its
// scopes; takes everything back, makes it again, saves and opens the file. At each end the text is what it
// was; the model is what the text says, and the scene is what the model says.
//
//   tst_EditorRandomEdits [SEED [STEPS [FILE.mtlx…]]]   (without files: all samples and shared documents)
//
// The trace, ORV_TRACE or edits.trace in the working folder, holds every step before it is made: its last
// line is the one that a crash came of. The same arguments give the same steps.

#include "editor/EditorCommand.h"
#include "editor/EditorEdits.h"
#include "editor/EditorStage.h"
#include "network/NetDice.h"
#include "network/NetModelText.h"
#include "network/NetRules.h"
#include "network/NetTemporaryFiles.h"

#include <QApplication>

#include <stdexcept>

using namespace EditorTesting;

namespace {

constexpr int kMaxNodes = 300; // in a scene: larger scopes are edited without being shown

void require(bool holds, const QString& problem)
{
    if (!holds)
        throw std::runtime_error(problem.toStdString());
}

class Run
{
public:
    Run(const QString& file, unsigned seed, QFile* trace)
        : m_Reader(NetSearchPath({QFileInfo(file).path()}))
        , m_Path(m_Files.write(QStringLiteral("document.mtlx"), contents(file)))
        , m_Editor(std::make_shared<NetEditor>(m_Reader.read(m_Path).document))
        , m_Stage(m_Editor, firstShown(m_Editor->document()))
        , m_Dice(m_Editor.get(), seed)
        , m_Trace(trace)
    {
        m_Dice.trace = [this](const QString& text) { note(text); };
        m_Texts.insert(0, m_Editor->text());
        for (int i = 0; i < m_Editor->document().scopes().size(); ++i) {
            const QString lie = Stage::lieOf(EditorScene(m_Editor, i));
            require(lie.isEmpty(), QStringLiteral("scope %1 lies: %2").arg(i).arg(lie));
        }
    }

    void edit(int steps)
    {
        for (int i = 0; i < steps; ++i) {
            const int before = history().index();
            const QUndoCommand* next = history().command(before);
            note(QStringLiteral("step %1, history %2").arg(i).arg(before));
            step();
            flush();
            for (int at = m_Texts.size() + before; history().command(before) != next && at > before;
                 --at)
                m_Texts.remove(at); // what could be redone is gone
            checkText();
            if (m_Dice.oneIn(8))
                checkModel();
            require(m_Noise.heard().isEmpty(), m_Noise.heard().join(QLatin1Char(' ')));
        }
    }
    void finish()
    {
        goAll(&QUndoStack::canRedo, 1);
        const QStringList model = NetModelText::of(m_Editor->document());
        for (int round = 0; round < 2; ++round) {
            goAll(&QUndoStack::canUndo, -1);
            goAll(&QUndoStack::canRedo, 1);
            checkSame(NetModelText::of(m_Editor->document()), model);
        }
        save(*m_Editor);
        NetEditor again(m_Reader.read(m_Path).document);
        checkSame(NetModelText::of(again.document()), model);
        save(again);
    }

private:
    void note(const QString& text)
    {
        m_Trace->write(text.toUtf8() + '\n');
        m_Trace->flush();
    }

    // Checks

    void checkText()
    {
        const int at = history().index();
        if (!m_Texts.contains(at))
            m_Texts.insert(at, m_Editor->text());
        require(
            m_Texts.value(at) == m_Editor->text(), QStringLiteral("not the text of %1").arg(at));
    }
    static void checkSame(const QStringList& model, const QStringList& wanted)
    {
        const QString difference = NetModelText::difference(model, wanted);
        require(difference.isEmpty(), difference);
    }
    void checkModel()
    {
        note(QStringLiteral("check"));
        const auto again = m_Reader.read(m_Path, m_Editor->text()).document;
        require(bool(again), QStringLiteral("the text cannot be read"));
        checkSame(NetModelText::of(m_Editor->document()), NetModelText::of(*again));
        require(m_Stage.isTrue(), QStringLiteral("the scene lies: ") + m_Stage.lie());
    }
    void save(NetEditor& editor)
    {
        QString error;
        require(editor.save(m_Path, &error), error);
        require(contents(m_Path) == m_Editor->text() && editor.text() == m_Editor->text()
                && !editor.changedOnDisk(),
            QStringLiteral("not what was saved"));
    }

    // Steps

    void goTo(int index)
    {
        note(QStringLiteral("history to %1").arg(index));
        history().setIndex(index);
        flush();
        checkText();
    }
    void goAll(bool (QUndoStack::*may)() const, int by)
    {
        while ((history().*may)())
            goTo(history().index() + by);
        checkModel();
    }
    NetEditor::ChangePtr drawn()
    {
        return m_Dice.draw(NetDice::Kind(m_Dice.below(NetDice::KindCount)), 40);
    }
    void push(NetEditor::ChangePtr change)
    {
        EditorCommand::push(m_Editor, std::move(change), QStringLiteral("change"));
    }
    void step()
    {
        const int kind = m_Dice.below(100);
        if (kind < 35) {
            push(drawn());
        } else if (kind < 38) {
            push(std::move(m_Held)); // asked for some steps ago
            m_Held = drawn();
        } else if (kind < 42) {
            const OrvUndoManager::AutoMacro together(QStringLiteral("several"));
            for (int i = m_Dice.below(5); i > 0; --i)
                push(drawn());
        } else if (kind < 54) {
            goTo(std::max(0, history().index() - 1 - m_Dice.below(6)));
        } else if (kind < 62) {
            goTo(std::min(history().count(), history().index() + 1 + m_Dice.below(6)));
        } else if (kind < 64 || !isThere(m_Stage.m_Scene->scopeIndex())) { // its graph was removed
            enter(m_Dice.below(m_Editor->document().scopes().size()));
        } else {
            const int gesture = m_Dice.below(14);
            note(QStringLiteral("gesture %1").arg(gesture));
            make(gesture, *m_Stage.m_Scene);
        }
    }
    static int firstShown(const NetDocument& document)
    {
        int scope = document.firstScope();
        while (document.scopes().at(scope).nodes.size() > kMaxNodes)
            scope = (scope + 1) % document.scopes().size();
        return scope;
    }
    bool isThere(int scope) const
    {
        return NetRules(m_Editor->document()).whyNotAdd(scope).isEmpty();
    }
    void enter(int scope)
    {
        if (m_Editor->scope(scope).nodes.size() > kMaxNodes || !isThere(scope))
            return;
        note(QStringLiteral("enter %1").arg(scope));
        m_Stage.m_View.setScene(nullptr);
        m_Stage.m_Scene = std::make_unique<EditorScene>(m_Editor, scope);
        m_Stage.m_View.setScene(m_Stage.m_Scene.get());
    }
    template <typename T> T* any(const QVector<T*>& items)
    {
        return items.isEmpty() ? nullptr : items.at(m_Dice.below(items.size()));
    }
    QString any(const QStringList& names) { return names.value(m_Dice.below(names.size())); }
    OrvNgEdge* anyConnection(OrvNgNode* dest)
    {
        QVector<OrvNgEdge*> edges;
        for (OrvNgEdge* edge : dest ? dest->inputs() : QList<OrvNgEdge*>()) {
            if (edge->isFullConnected())
                edges.append(edge);
        }
        return any(edges);
    }
    void make(int gesture, EditorScene& scene)
    {
        OrvNgNode* node = any(scene.nodes());
        OrvNgNode* other = any(scene.nodes());
        const int backdrop = m_Dice.index(scene.scope().backdrops.size());
        if (gesture < 4) {
            scene.clearSelection();
            for (int i = 1 + m_Dice.below(4); i > 0; --i) {
                if (auto* item = any(m_Dice.oneIn(3) ? scene.backdrops().items() : scene.nodes()))
                    item->setSelected(true);
            }
        }
        switch (gesture) {
        case 0:
            return node && other ? drag(node) : void();
        case 1:
            return m_Dice.oneIn(3) ? scene.deleteSelection() : scene.wrapSelection();
        case 2:
            return scene.extractSelection();
        case 3:
            return m_Dice.oneIn(2) ? scene.selectUpstream() : scene.selectDownstream();
        case 4:
            return m_Dice.oneIn(4) ? scene.arrange()
                                   : EditorEdits(&scene).insertDot(anyConnection(node));
        case 5:
            return scene.addNote(QPointF(m_Dice.below(900), m_Dice.below(900)));
        case 6:
            return scene.setBackdropText(backdrop, m_Dice.text(), m_Dice.oneIn(2));
        case 7:
            return scene.setBackdropColor(backdrop, QColor(m_Dice.text()));
        case 8:
            return scene.setPortListMode(scene.nodes(), EditorScene::Mode(m_Dice.below(5)));
        case 9:
            return scene.setDotMode(m_Dice.oneIn(2));
        case 10:
            return node && other ? insert(node, anyConnection(other)) : void();
        default:
            if (node && other)
                EditorEdits(&scene).wire(m_Dice.oneIn(3) ? nullptr : node,
                    any(node->outputPoints()), other, any(other->sortedInputPoints()));
        }
    }
    void drag(OrvNgNode* node)
    {
        m_Stage.m_View.lookAt(node->sceneBoundingRect().center(), m_Dice.oneIn(2) ? 1.0 : 0.3);
        const QPoint from = m_Stage.at(node->sceneBoundingRect().center());
        m_Stage.drag(from, from + QPoint(m_Dice.below(400) - 200, m_Dice.below(400) - 200));
    }
    void insert(OrvNgNode* node, OrvNgEdge* edge) // as a drop on a connection does
    {
        OrvNgEdge* input = nullptr;
        if (!edge || edge->destNode() == node || !node->canBeInsertedIntoAnEdge(input) || !input)
            return;
        const OrvUndoManager::AutoMacro together(QStringLiteral("insert"));
        edge->insertNodeIntoEdge(node, input);
    }

    const Noise m_Noise;
    NetTemporaryFiles m_Files;
    NetReader m_Reader;
    QString m_Path;
    std::shared_ptr<NetEditor> m_Editor;
    Stage m_Stage;
    NetDice m_Dice;
    QFile* m_Trace;
    NetEditor::ChangePtr m_Held;
    QHash<int, QByteArray> m_Texts; // by place in the history
};

} // namespace

int main(int count, char** arguments)
{
    QApplication application(count, arguments);
    const QStringList words = QCoreApplication::arguments();
    const unsigned seed = words.value(1, QStringLiteral("1")).toUInt();
    const int steps = words.value(2, QStringLiteral("60")).toInt();
    const QStringList files = words.size() > 3 ? words.mid(3) : allDocuments();
    QFile trace(qEnvironmentVariable("ORV_TRACE", QStringLiteral("edits.trace")));
    int failures = trace.open(QIODevice::WriteOnly) ? 0 : 1;
    for (const QString& file : files) {
        trace.resize(0);
        trace.write(QStringLiteral("%1 %2 %3\n").arg(seed).arg(steps).arg(file).toUtf8());
        try {
            Run run(file, seed, &trace);
            run.edit(steps);
            run.finish();
        } catch (const std::exception& problem) {
            ++failures;
            qCritical("%u %d %s: %s", seed, steps, qPrintable(file), problem.what());
        }
    }
    qInfo("%d documents, seed %u, %d steps, %d failures", files.size(), seed, steps, failures);
    return failures > 0 ? 1 : 0;
}
