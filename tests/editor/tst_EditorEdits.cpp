#include "editor/EditorNavigator.h"
#include "editor/EditorPortColors.h"
#include "editor/EditorStage.h"
#include "support/TestTable.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QSignalSpy>
#include <QTest>

using namespace EditorTesting;

namespace {

// a feeds b feeds c; d is free, p takes colours only. Far enough apart for ports to lie bare.
const QByteArray kChain = testDocument("chain.mtlx");

using Gesture = void (*)(Stage&);

const char kAsRead[] = "a>b.in1 b>c.in1";

} // namespace

Q_DECLARE_METATYPE(Gesture)

/// What a user does with the mouse, end to end: one undo step each, and the document follows.
class tst_EditorEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gesture_isOneStepThereAndBack_data();
    void gesture_isOneStepThereAndBack();
    void refusedGesture_saysWhyAndChangesNothing_data();
    void refusedGesture_saysWhyAndChangesNothing();
    void carriedEdge_marksWhatWouldTakeIt_data();
    void carriedEdge_marksWhatWouldTakeIt();
    void snapping_leavesTheModelsPlacesAlone();
    void undoElsewhere_showsThatScope();
    void undoOfADot_whileItIsDragged();

private:
    const QString m_Chain = testPath("chain.mtlx");
};

void tst_EditorEdits::gesture_isOneStepThereAndBack_data()
{
    const TestTable<Gesture, QString, QString> row("gesture", "step", "connections");
    row(
        "connect", [](Stage& s) { s.connectPorts(s.atPort("a", "out"), s.atPort("d", "in2")); },
        "Connect a.out to d.in2", "a>b.in1 a>d.in2 b>c.in1");
    row(
        "connect backwards",
        [](Stage& s) { s.connectPorts(s.atPort("d", "in1"), s.atPort("a", "out")); },
        "Connect a.out to d.in1", "a>b.in1 a>d.in1 b>c.in1");
    row(
        "replace a source",
        [](Stage& s) { s.connectPorts(s.atPort("d", "out"), s.atPort("c", "in1")); },
        "Connect d.out to c.in1", "a>b.in1 d>c.in1");
    row(
        "carry to another input",
        [](Stage& s) { s.drag(s.atPort("c", "in1") - QPoint(14, 0), s.atPort("c", "in2")); },
        "Moved output b.out from c.in1 to c.in2", "a>b.in1 b>c.in2");
    row(
        "pull off",
        [](Stage& s) {
            s.drag(s.atPort("c", "in1") - QPoint(14, 0), s.atPort("c", "in1") - QPoint(60, 90));
        },
        "Disconnect c.in1", "a>b.in1");
    row(
        "move one", [](Stage& s) { s.drag(s.atHeader("d"), s.atHeader("d") + QPoint(37, 21)); },
        "Move node d", kAsRead);
    row(
        "move three",
        [](Stage& s) {
            s.m_Scene->selectAll();
            s.node("c")->setSelected(false);
            s.node("inner")->setSelected(false);
            s.node("p")->setSelected(false);
            s.drag(s.atHeader("b"), s.atHeader("b") + QPoint(-20, 15));
        },
        "Move 3 nodes", kAsRead);
    row(
        "move, button lost",
        [](Stage& s) {
            s.press(s.atHeader("d"));
            s.move(s.atHeader("d") + QPoint(40, 30));
            s.node("d")->ungrabMouse();
        },
        "Move node d", kAsRead);
    row(
        "drop on an edge",
        [](Stage& s) {
            const QPoint middle
                = (s.atPort("b", "out") + s.atPort("c", "in1")) / 2; // both at one height or near
            s.drag(s.atHeader("d"), middle);
        },
        "Insert 'd' into 'b.out'-'c.in1'", "a>b.in1 b>d.in1 d>c.in1");
    row(
        "dot",
        [](Stage& s) {
            s.m_Scene->setDotMode(true);
            s.click((s.atPort("b", "out") + s.atPort("c", "in1")) / 2);
        },
        "Insert a dot into c.in1", "a>b.in1 b>dot.Input dot>c.in1");
    row(
        "delete",
        [](Stage& s) {
            s.click(s.atHeader("b"));
            s.m_Scene->deleteSelection();
        },
        "Delete b", "");
    row(
        "delete all",
        [](Stage& s) {
            s.m_Scene->selectAll();
            s.m_Scene->deleteSelection();
        },
        "Delete 6 nodes", "");
    row(
        "extract", [](Stage& s) { s.m_Scene->extract(s.node("b")); }, "Extract b", "a>c.in1");
    row(
        "extract the end", [](Stage& s) { s.m_Scene->extract(s.node("c")); }, "Extract c",
        "a>b.in1");
    row(
        "extract the start", [](Stage& s) { s.m_Scene->extract(s.node("a")); }, "Extract a",
        "b>c.in1");
    row(
        "arrange", [](Stage& s) { s.m_Scene->arrange(); }, "Arrange 6 nodes", kAsRead);
}

void tst_EditorEdits::gesture_isOneStepThereAndBack()
{
    QFETCH(Gesture, gesture);
    QFETCH(QString, step);
    QFETCH(QString, connections);
    const Noise noise;
    Stage stage(m_Chain);
    QCOMPARE(stage.shown(), QLatin1String(kAsRead));
    QCOMPARE(stage.m_Editor->text(), kChain);

    gesture(stage);
    flush();
    QCOMPARE(stage.m_Status, QStringList());
    QCOMPARE(history().count(), 1);
    QCOMPARE(history().undoText(), step);
    QCOMPARE(stage.shown(), connections);
    QVERIFY(stage.isTrue());
    const QByteArray changed = stage.m_Editor->text();
    QVERIFY(changed != kChain);

    history().undo();
    flush();
    QCOMPARE(stage.shown(), QLatin1String(kAsRead));
    QVERIFY(stage.isTrue());
    QCOMPARE(stage.m_Editor->text(), kChain);
    history().redo();
    flush();
    QCOMPARE(stage.shown(), connections);
    QVERIFY(stage.isTrue());
    QCOMPARE(stage.m_Editor->text(), changed);
    for (const QString& heard : noise.heard())
        QVERIFY2(heard.contains(QStringLiteral("[ -- ]")), qPrintable(heard)); // traces only
}

void tst_EditorEdits::refusedGesture_saysWhyAndChangesNothing_data()
{
    const TestTable<Gesture, QString> row("gesture", "why");
    row(
        "another type",
        [](Stage& s) { s.connectPorts(s.atPort("a", "out"), s.atPort("p", "color")); }, "color3");
    row(
        "a cycle", [](Stage& s) { s.connectPorts(s.atPort("c", "out"), s.atPort("b", "in2")); },
        "circle");
    row(
        "no input of the type",
        [](Stage& s) { s.connectPorts(s.atPort("a", "out"), s.atHeader("p")); }, "float");
    row(
        "inserted between other types",
        [](Stage& s) {
            const QPoint middle = (s.atPort("b", "out") + s.atPort("c", "in1")) / 2;
            s.drag(s.atHeader("p"), middle);
        },
        "float");
}

void tst_EditorEdits::refusedGesture_saysWhyAndChangesNothing()
{
    QFETCH(Gesture, gesture);
    QFETCH(QString, why);
    Stage stage(m_Chain);
    gesture(stage);
    QCOMPARE(stage.m_Status.size(), 1);
    QVERIFY2(stage.m_Status.constFirst().contains(why), qPrintable(stage.m_Status.constFirst()));
    QCOMPARE(stage.shown(), QLatin1String(kAsRead));
    QVERIFY(stage.isTrue());
    while (history().canUndo()) { // the node that was not inserted lies where it was dropped
        QVERIFY(history().undoText().startsWith(QStringLiteral("Move")));
        history().undo();
    }
    QCOMPARE(stage.m_Editor->text(), kChain);
}

void tst_EditorEdits::carriedEdge_marksWhatWouldTakeIt_data()
{
    const TestTable<Gesture> row("end");
    row("dropped", [](Stage& s) { s.click(s.atPort("d", "in1")); });
    row("cancelled", [](Stage& s) {
        s.press(s.atPort("d", "in1"), Qt::RightButton);
        s.release(s.atPort("d", "in1"), Qt::RightButton);
    });
    row("source deleted", [](Stage& s) {
        s.node("b")->setSelected(true);
        s.m_Scene->deleteSelection();
    });
    row("window left", [](Stage& s) { s.m_Scene->mouseGrabberItem()->ungrabMouse(); });
}

void tst_EditorEdits::carriedEdge_marksWhatWouldTakeIt()
{
    QFETCH(Gesture, end);
    Stage stage(m_Chain);
    const auto colorOf = [&stage](const char* node, const char* port) {
        flush();
        const QImage image = stage.m_View.viewport()->grab().toImage();
        return image.pixelColor(stage.atPort(node, port)).name();
    };
    const QString type = QStringLiteral("float");
    const QString free = EditorPortColors::color(type, false).name();
    QCOMPARE(colorOf("d", "in2"), free);
    stage.drag(stage.atPort("b", "out"), stage.at(stage.node("d")->scenePos()) - QPoint(60, 60));

    QCOMPARE(colorOf("d", "in2"), EditorPortColors::offeredColor(type).name());
    QVERIFY(colorOf("a", "out") != EditorPortColors::color(type, true).name());
    const auto stepsBack = [&stage](const char* node) { return stage.node(node)->opacity() < 1; };
    QVERIFY(stepsBack("a")); // would close a cycle
    QVERIFY(!stepsBack("b")); // where the edge comes from
    QVERIFY(stepsBack("p")); // another type
    QVERIFY(!stepsBack("c"));

    end(stage);
    QCOMPARE(colorOf("d", "in2"), free);
    for (OrvNgNode* node : stage.m_Scene->nodes())
        QCOMPARE(node->opacity(), 1.0);
}

void tst_EditorEdits::snapping_leavesTheModelsPlacesAlone()
{
    OrvShaderNetworkManager* grid = OrvShaderNetworkManager::instance();
    grid->setSnapToGrid(true);
    {
        Stage stage(m_Chain);
        QVERIFY(stage.isTrue());
        stage.drag(stage.atHeader("d"), stage.atHeader("d") + QPoint(33, 27));
        QCOMPARE(history().undoText(), QStringLiteral("Move node d"));
        history().undo();
        QVERIFY(stage.isTrue());
        QCOMPARE(stage.m_Editor->text(), kChain);
        QVERIFY(grid->snapToGrid());
    }
    grid->setSnapToGrid(false);
}

void tst_EditorEdits::undoElsewhere_showsThatScope()
{
    history().clear();
    EditorView view(nullptr);
    {
        EditorNavigator navigator(&view);
        navigator.setDocument(
            std::make_shared<NetEditor>(NetReader(NetSearchPath()).read(m_Chain).document), 1);
        const QSignalSpy shown(&navigator, &EditorNavigator::scopeChanged);
        navigator.scene()->extract(navigator.scene()->node(0));
        flush();
        QCOMPARE(history().undoText(), QStringLiteral("Extract deep"));
        QCOMPARE(shown.count(), 0);
        navigator.showScope(0);
        history().undo();
        flush();
        QCOMPARE(navigator.scopeIndex(), 1);
        QCOMPARE(navigator.scene()->connectionCount(), 1);
        view.setScene(nullptr);
    }
    history().clear();
}

// The move of a node that goes in the same moment must not become a step inside the undo.
void tst_EditorEdits::undoOfADot_whileItIsDragged()
{
    Stage stage(m_Chain);
    stage.m_Scene->setDotMode(true);
    const QPoint middle = (stage.atPort("b", "out") + stage.atPort("c", "in1")) / 2;
    stage.click(middle);
    stage.m_Scene->setDotMode(false);
    const int dot = stage.m_Scene->scope().nodes.size() - 1;
    const QPoint center = stage.at(stage.m_Scene->node(dot)->sceneBoundingRect().center());
    QVERIFY((center - middle).manhattanLength() <= 2); // where the marker was
    stage.press(center);
    stage.move(center + QPoint(0, 50));
    history().undo();
    flush();
    stage.release(center + QPoint(0, 50));
    flush();
    QCOMPARE(stage.m_Editor->text(), kChain);
    QVERIFY(stage.isTrue());
    QVERIFY(history().canRedo());
    history().redo();
    QVERIFY(stage.isTrue());
}

QTEST_MAIN(tst_EditorEdits)
#include "tst_EditorEdits.moc"
