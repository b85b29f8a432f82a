#include "editor/EditorCommand.h"
#include "editor/EditorMessageBar.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorPreferencesDialog.h"
#include "editor/EditorQuestions.h"
#include "editor/EditorTesting.h"
#include "editor/EditorUser.h"
#include "editor/EditorWindow.h"
#include "network/NetDocument.h"
#include "support/TestTable.h"

#include <OrvCore/OrvUndoManager.h>
#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QAction>
#include <QDropEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <OrvNodeGraph/OrvNgDotableMarkerItem.h>
#include <algorithm>

using namespace EditorTesting;
using Mode = EditorScene::Mode;

namespace {

// The graph "inner" stands inside "outer".
const QByteArray kGraphs = testDocument("graphs.mtlx");

Mode modeOf(OrvNgNode* node)
{
    return dynamic_cast<OrvNgExtendedNode*>(node)->portListMode();
}

using Answer = EditorQuestions::Answer;

/// Answers as it was told to, and remembers what was asked.
class Answers : public EditorQuestions
{
public:
    Answers()
        : EditorQuestions(nullptr)
    {
    }
    Answer aboutUnsaved(const QString& fileName) override
    {
        m_Asked.append(QStringLiteral("unsaved ") + fileName);
        return m_Unsaved;
    }
    bool overwriteChanged(const QString& fileName) override
    {
        m_Asked.append(QStringLiteral("changed ") + fileName);
        return m_Overwrites;
    }
    QString pathToOpen(const QString&) override { return {}; }
    QString pathToSave(const QString&) override { return m_SavePath; }
    void tellFailure(const QString&, const QString& why) override { m_Failures.append(why); }
    int gridSize(int) override { return m_GridSize; }
    std::optional<QString> text(
        const QString&, const QString&, const QString& present, bool manyLines) override
    {
        m_Asked.append((manyLines ? QStringLiteral("lines ") : QStringLiteral("line ")) + present);
        return m_Text;
    }
    QColor color(const QString&, const QColor&) override { return m_Color; }

    std::optional<QString> m_Text;
    QColor m_Color;
    int m_GridSize = 0;
    Answer m_Unsaved = Answer::Cancel;
    bool m_Overwrites = false;
    QString m_SavePath;
    QStringList m_Asked;
    QStringList m_Failures;
};

QUndoStack* stack()
{
    return OrvUndoManager::instance().undoStack();
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The window as its user meets it: keys, ways in and out, documents that fail.
class tst_EditorWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_Graphs = write("graphs.mtlx", kGraphs); }

    void init()
    {
        m_Window = std::make_unique<EditorWindow>(NetSearchPath());
        auto answers = std::make_unique<Answers>();
        m_Answers = answers.get();
        m_Window->setQuestions(std::move(answers));
        m_Window->resize(1000, 700);
        m_Window->show();
        m_Window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_Window.get()));
        QVERIFY(m_Window->openFile(m_Graphs));
    }

    void cleanup()
    {
        m_Window.reset();
        flush();
    }

    void keys_setModesOfSelectionOrAll()
    {
        EditorScene* scene = m_Window->scene();
        QTest::keyClick(m_Window.get(), Qt::Key_5);
        for (OrvNgNode* node : scene->nodes())
            QCOMPARE(modeOf(node), Mode::PORT_LIST_COLLAPSED);
        select("user");
        for (int key = 0; key < 5; ++key) {
            QTest::keyClick(m_Window.get(), static_cast<Qt::Key>(Qt::Key_1 + key));
            QCOMPARE(static_cast<int>(modeOf(user().node("user"))), key);
            QCOMPARE(modeOf(user().node("outer")), Mode::PORT_LIST_COLLAPSED);
        }
    }

    void enterAndLeave_byKeysAndDoubleClick()
    {
        select("outer");
        QTest::keyClick(m_Window.get(), Qt::Key_Return);
        QCOMPARE(scopePath(), QStringLiteral("outer"));
        QVERIFY(m_Window->windowTitle().contains(QStringLiteral("outer")));

        OrvNgNode* inner = user().node("inner");
        const QPointF header = inner->mapRectToScene(inner->nodeShapeRect()).center();
        EditorView* view = m_Window->view();
        QTest::mouseDClick(
            view->viewport(), Qt::LeftButton, Qt::NoModifier, view->mapFromScene(header));
        flush();
        QCOMPARE(scopePath(), QStringLiteral("outer/inner"));

        QTest::keyClick(m_Window.get(), Qt::Key_U);
        QCOMPARE(scopePath(), QStringLiteral("outer"));
        QTest::keyClick(m_Window.get(), Qt::Key_Backspace);
        QCOMPARE(scopePath(), QString());
        QTest::keyClick(m_Window.get(), Qt::Key_U); // nowhere to go
        QCOMPARE(scopePath(), QString());
    }

    void failedOpen_keepsTheDocument_data()
    {
        const TestTable<QByteArray, QString> row("text", "place");
        row("missing", QByteArray(), "");
        row("another root", "<html>\n</html>", ":1");
        row("includes itself", "<materialx>\n <xi:include href='bad.mtlx'/>\n</materialx>", ":2");
    }

    void failedOpen_keepsTheDocument()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, place);
        QVERIFY(m_Window->showGraph(QStringLiteral("outer")));
        const QPointer<EditorScene> scene = m_Window->scene();
        const QString bad = QDir(m_Folder.path()).filePath(QStringLiteral("bad.mtlx"));
        QFile::remove(bad);
        if (!text.isNull())
            write("bad.mtlx", text);

        QVERIFY(!m_Window->openFile(bad));
        flush();
        QVERIFY(scene);
        QCOMPARE(m_Window->scene(), scene.data());
        QCOMPARE(m_Window->filePath(), m_Graphs);
        auto* bar = m_Window->findChild<EditorMessageBar*>();
        QVERIFY(bar->isVisible());
        QVERIFY2(bar->headline().contains(QStringLiteral("bad.mtlx") + place),
            qPrintable(bar->headline()));

        QVERIFY(m_Window->openFile(m_Graphs));
        QVERIFY(!bar->isVisible());
        flush();
        QVERIFY(!scene);
    }

    void reload_showsTheChangedFileInTheSameScope()
    {
        const QString file = write("changing.mtlx", kGraphs);
        QVERIFY(m_Window->openFile(file));
        QVERIFY(m_Window->showGraph(QStringLiteral("outer/inner")));
        m_Window->view()->lookAt(QPointF(10, 10), 0.8);
        QByteArray changed = kGraphs;
        changed.replace("<twice name=\"deep\" type=\"float\" />",
            "<twice name=\"deep\" type=\"float\" /><twice name=\"new\" type=\"float\" />");
        write("changing.mtlx", changed);
        QTest::keyClick(m_Window.get(), Qt::Key_F5);
        QCOMPARE(scopePath(), QStringLiteral("outer/inner"));
        QVERIFY(user().index("new") >= 0);
        QCOMPARE(m_Window->view()->transform().m11(), 0.8);
    }

    void window_diesInsideAGraph_withAnotherDocumentJustOpened()
    {
        const Noise noise;
        QVERIFY(m_Window->showGraph(QStringLiteral("outer")));
        select("inner");
        QTest::qWait(80); // painted, and the view's timers have run
        const QPointer<EditorScene> scene = m_Window->scene();
        QVERIFY(m_Window->openFile(samplePath("glazed_tile.mtlx")));
        m_Window.reset();
        flush();
        QVERIFY(!scene);
        QCOMPARE(noise.heard(), QStringList());
    }

    void unsavedChanges_areAskedAbout_data()
    {
        const TestTable<QString, int, bool, bool> row("way", "answer", "isGone", "isSaved");
        for (const char* way : {"close", "open", "reload", "drop"}) {
            const QByteArray tag(way);
            row((tag + ", save").constData(), way, int(Answer::Save), true, true);
            row((tag + ", discard").constData(), way, int(Answer::Discard), true, false);
            row((tag + ", cancel").constData(), way, int(Answer::Cancel), false, false);
        }
    }

    void unsavedChanges_areAskedAbout()
    {
        QFETCH(QString, way);
        QFETCH(int, answer);
        QFETCH(bool, isGone);
        QFETCH(bool, isSaved);
        const QString file = write("asked.mtlx", kGraphs);
        QVERIFY(m_Window->openFile(file));
        change();
        const QByteArray changed = m_Window->navigator()->editor()->text();
        QVERIFY(changed != kGraphs);
        m_Answers->m_Unsaved = Answer(answer);

        const QPointer<EditorScene> scene = m_Window->scene();
        if (way == QLatin1String("close")) {
            QCOMPARE(m_Window->close(), isGone);
        } else if (way == QLatin1String("open")) {
            QCOMPARE(m_Window->openFile(m_Graphs), isGone);
        } else if (way == QLatin1String("reload")) {
            QTest::keyClick(m_Window.get(), Qt::Key_F5);
        } else {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(m_Graphs)});
            QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_Window.get(), &enter);
            QDropEvent event({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_Window.get(), &event);
        }
        flush();
        QCOMPARE(m_Answers->m_Asked, QStringList(QStringLiteral("unsaved asked.mtlx")));
        QCOMPARE(contents(file), isSaved ? changed : kGraphs);
        if (way == QLatin1String("close"))
            return;
        QCOMPARE(scene.isNull(), isGone);
        QCOMPARE(m_Window->isWindowModified(), !isGone);
        QCOMPARE(stack()->count(), isGone ? 0 : 1); // a new document has no past
    }

    void failedSave_keepsFileAndChanges()
    {
        QVERIFY(QDir(m_Folder.path()).mkdir(QStringLiteral("gone")));
        const QString file = write("gone/kept.mtlx", kGraphs);
        QVERIFY(m_Window->openFile(file));
        change();
        QDir(m_Folder.path()).rename(QStringLiteral("gone"), QStringLiteral("elsewhere"));

        QTest::keyClick(m_Window.get(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(m_Answers->m_Failures.size(), 1);
        auto* bar = m_Window->findChild<EditorMessageBar*>();
        QVERIFY(bar->isVisible());
        QVERIFY2(
            bar->headline().contains(QStringLiteral("kept.mtlx")), qPrintable(bar->headline()));
        QVERIFY(m_Window->isWindowModified());
        // Saving as the way out fails as well: the window stays.
        m_Answers->m_Unsaved = Answer::Save;
        QVERIFY(!m_Window->close());
        QCOMPARE(contents(m_Folder.filePath(QStringLiteral("elsewhere/kept.mtlx"))), kGraphs);

        m_Answers->m_SavePath = m_Folder.filePath(QStringLiteral("rescued.mtlx"));
        QTest::keyClick(m_Window.get(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_Window->filePath(), m_Answers->m_SavePath);
        QCOMPARE(contents(m_Answers->m_SavePath), m_Window->navigator()->editor()->text());
        QVERIFY(!m_Window->isWindowModified());
        QVERIFY(!bar->isVisible());
        QVERIFY(m_Window->windowTitle().contains(QStringLiteral("rescued.mtlx")));
    }

    void fileChangedOnDisk_isNotOverwrittenUnasked()
    {
        const QString file = write("shared.mtlx", kGraphs);
        QVERIFY(m_Window->openFile(file));
        change();
        const QByteArray theirs = kGraphs + "<!-- theirs -->\n";
        write("shared.mtlx", theirs);
        QVERIFY(!m_Window->save());
        QCOMPARE(m_Answers->m_Asked, QStringList(QStringLiteral("changed shared.mtlx")));
        QCOMPARE(contents(file), theirs);
        QVERIFY(m_Window->isWindowModified());

        m_Answers->m_Overwrites = true;
        QVERIFY(m_Window->save());
        QCOMPARE(contents(file), m_Window->navigator()->editor()->text());
        QVERIFY(m_Window->save());
        QVERIFY(QFile::remove(file));
        QVERIFY(m_Window->save()); // nor about one that is gone
        QCOMPARE(m_Answers->m_Asked.size(), 2); // not about the window's own write
    }

    void undo_namesItsStepAndWaitsForTheMouse()
    {
        const QAction* undo = actionFor(QKeySequence(int(Qt::CTRL) | int(Qt::Key_Z)));
        QVERIFY(!undo->isEnabled());
        const QByteArray before = m_Window->navigator()->editor()->text();
        change();
        QCOMPARE(undo->text(), QStringLiteral("&Undo Move this && that"));

        const QPoint corner(5, 5);
        EditorUser hand = user();
        hand.press(corner);
        QVERIFY(!undo->isEnabled());
        QTest::keyClick(m_Window.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(stack()->index(), 1);
        hand.release(corner);
        QTest::keyClick(m_Window.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_Window->navigator()->editor()->text(), before);
        QVERIFY(!m_Window->isWindowModified());
        QTest::keyClick(m_Window.get(), Qt::Key_Y, Qt::ControlModifier);
        QVERIFY(m_Window->isWindowModified());
    }

    void escape_givesUpWhatTheMouseDoes_data()
    {
        const TestTable<QString> row("what");
        for (const char* what : {"node", "node on the grid", "band", "cut", "edge"})
            row(what, what);
    }

    void escape_givesUpWhatTheMouseDoes()
    {
        QFETCH(QString, what);
        EditorScene* scene = m_Window->scene();
        EditorView* view = m_Window->view();
        EditorUser hand = user();
        OrvNgNode* node = hand.node("user");
        OrvNgEdge* edge = scene->edgeOf({hand.index("user"), 0});
        select("outer");
        change(); // to a place off every grid
        stack()->clear();
        m_Window->frameAll();
        const QPointF place = node->pos();
        const QByteArray text = m_Window->navigator()->editor()->text();

        auto* grid = OrvShaderNetworkManager::instance();
        grid->setSnapToGrid(what.contains(QLatin1String("grid")));
        const auto [from, to] = begin(what);
        if (what.startsWith(QLatin1String("node")))
            QVERIFY((node->pos() - place).manhattanLength() > 50);
        if (what == QLatin1String("band"))
            QVERIFY(node->isSelected());

        QTest::keyClick(view, Qt::Key_Escape);
        QVERIFY(!scene->mouseGrabberItem());
        hand.moveAlong({to, from});
        hand.release(from);
        QTest::keyRelease(view, Qt::Key_C);
        grid->setSnapToGrid(false);
        flush();
        QCOMPARE(node->pos(), place);
        QCOMPARE(stack()->count(), 0);
        QCOMPARE(m_Window->navigator()->editor()->text(), text);
        QCOMPARE(edge->sourceNode(), hand.node("outer"));
        if (what == QLatin1String("band"))
            QCOMPARE(scene->selectedNodes(), EditorScene::Nodes{hand.node("outer")});
    }

    void quitting_inTheMiddle_data()
    {
        const TestTable<QString> row("what");
        for (const char* what : {"node", "band", "cut", "edge", "menu", "dialog"})
            row(what, what);
    }

    void quitting_inTheMiddle()
    {
        QFETCH(QString, what);
        const Noise noise;
        const QPointer<EditorScene> scene = m_Window->scene();
        m_Window->frameAll();
        stack()->clear();
        if (what == QLatin1String("menu"))
            m_Window->menuBar()->actions().constFirst()->menu()->popup(QPoint(9, 9));
        else if (what == QLatin1String("dialog"))
            actionFor(QKeySequence(int(Qt::CTRL) | int(Qt::Key_Comma)))->trigger();
        else
            begin(what);
        QVERIFY(m_Window->close());
        QCOMPARE(m_Answers->m_Asked, QStringList()); // nothing has changed
        m_Window.reset();
        flush();
        QVERIFY(!scene);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
        QCOMPARE(stack()->count(), 0);
        const QRegularExpression trouble(
            QStringLiteral("^(?!\\[ -- \\])")); // not what is merely noted
        QCOMPARE(noise.heard().filter(trouble), QStringList());
    }

    void dotKey_marksTheSceneOnShowOnly()
    {
        const auto isDotable = [](const EditorScene* scene) {
            const QList<QGraphicsItem*> items = scene->items();
            return std::any_of(items.cbegin(), items.cend(), [](QGraphicsItem* item) {
                return item->isVisible() && dynamic_cast<OrvNgDotableMarkerItem*>(item);
            });
        };
        const QPointer<EditorScene> outside = m_Window->scene();
        QTest::keyPress(m_Window->view(), Qt::Key_D);
        QVERIFY(isDotable(outside));
        QVERIFY(m_Window->showGraph(QStringLiteral("outer")));
        QVERIFY(!isDotable(outside));
        QVERIFY(isDotable(m_Window->scene()));
        QTest::keyRelease(m_Window->view(), Qt::Key_D);
        QTRY_VERIFY(!isDotable(m_Window->scene()));
        QTest::keyPress(m_Window->view(), Qt::Key_D);
        m_Window.reset(); // with the key held
    }

    void settings_keepWhatTheUserChose()
    {
        const QString path = m_Folder.filePath(QStringLiteral("settings.ini"));
        const auto settings = [&] {
            return EditorSettings(std::make_unique<QSettings>(path, QSettings::IniFormat));
        };
        auto* grid = OrvShaderNetworkManager::instance();
        const auto setGrid = [grid](int size, bool snaps) {
            grid->setGridWidth(size);
            grid->setGridHeight(size);
            grid->setSnapToGrid(snaps);
        };
        const auto lookPastTheNodes = [](EditorWindow* window) {
            window->view()->lookAt({4000, 0}, 1);
            QTest::qWait(100); // the view learns where the nodes are
            return window->view()->shouldDisplayMinimap();
        };
        m_Window->useSettings(settings());
        QStringList files;
        for (int i = 0; i < 12; ++i) {
            const QByteArray name = "recent" + QByteArray::number(i) + ".mtlx";
            files.prepend(write(name.constData(), kGraphs));
            QVERIFY(m_Window->openFile(files.constFirst()));
        }
        QVERIFY(m_Window->openFile(files.at(3)));
        files.move(3, 0);
        QVERIFY(m_Window->view()->isShakeDetectionEnabled());
        actionNamed(*m_Window, "Shake a Node to Extract It")->trigger();
        actionNamed(*m_Window, "40")->trigger();
        QCOMPARE(QSize(grid->gridWidth(), grid->gridHeight()), QSize(40, 40));
        actionNamed(*m_Window, "Custom…")->trigger(); // no answer
        QCOMPARE(grid->gridWidth(), 40);
        m_Answers->m_GridSize = 33;
        actionNamed(*m_Window, "Custom…")->trigger();
        QTest::keyClick(m_Window.get(), Qt::Key_G, Qt::ShiftModifier);
        actionNamed(*m_Window, "Harbor")->trigger();
        QVERIFY(lookPastTheNodes(m_Window.get()));
        QTest::keyClick(m_Window.get(), Qt::Key_M);
        m_Window->resize(777, 555);
        QVERIFY(m_Window->close());

        setGrid(20, false);
        EditorWindow next;
        next.useSettings(settings());
        const QSize restored(grid->gridWidth(), grid->gridHeight());
        const bool snaps = grid->snapToGrid();
        setGrid(20, false); // for the tests that follow
        QCOMPARE(restored, QSize(33, 33));
        QVERIFY(snaps);
        QCOMPARE(settings().recentFiles(), QStringList(files.mid(0, 10)));
        QVERIFY(!next.view()->isShakeDetectionEnabled());
        QCOMPARE(next.view()->navigationScheme(), QStringLiteral("Harbor"));
        QVERIFY(actionNamed(next, "Harbor")->isChecked());
        QVERIFY(!actionNamed(next, "Quill")->isChecked());
        QVERIFY(next.restorePlace());
        QCOMPARE(next.size(), QSize(777, 555));
        next.show();
        QVERIFY(next.openFile(m_Graphs));
        QVERIFY(!lookPastTheNodes(&next));
    }

    void preferences_openOnce()
    {
        const auto dialogs = [&] { return m_Window->findChildren<EditorPreferencesDialog*>(); };
        const QKeySequence key(int(Qt::CTRL) | int(Qt::Key_Comma));
        actionFor(key)->trigger();
        actionFor(key)->trigger();
        QCOMPARE(dialogs().size(), 1);
        QVERIFY(dialogs().constFirst()->isVisible() && !dialogs().constFirst()->isModal());
        dialogs().constFirst()->reject();
        flush();
        QCOMPARE(dialogs().size(), 0);
    }

    void saveAs_saysWhichIncludesAreLost()
    {
        write("part.mtlx", "<materialx/>");
        const QByteArray part = m_Folder.filePath(QStringLiteral("part.mtlx")).toUtf8();
        const QString file = write("whole.mtlx",
            "<materialx>\n<xi:include href='part.mtlx'/>\n<xi:include href='gone.mtlx'/>\n"
            "<xi:include href='"
                + part + "'/>\n</materialx>");
        QVERIFY(m_Window->openFile(file));
        auto* bar = m_Window->findChild<EditorMessageBar*>();
        bar->setMessages(QString(), {});
        QVERIFY(QDir(m_Folder.path()).mkdir(QStringLiteral("away")));

        m_Answers->m_SavePath = m_Folder.filePath(QStringLiteral("beside.mtlx"));
        QVERIFY(m_Window->saveAs());
        QVERIFY2(!bar->isVisible(), qPrintable(bar->headline()));
        m_Answers->m_SavePath = m_Folder.filePath(QStringLiteral("away/whole.mtlx"));
        QVERIFY(m_Window->saveAs());
        QVERIFY(bar->isVisible());
        QVERIFY2(bar->details().contains(QStringLiteral("away/whole.mtlx:2: ")),
            qPrintable(bar->details()));
        QCOMPARE(
            bar->details().count(QLatin1Char('\n')), 0); // one was lost before, one is absolute
    }

    void backdropKeys_changeTheOuterOne()
    {
        const auto key = [&](Qt::Key k) {
            m_Window->scene()->selectAll();
            QTest::keyClick(m_Window.get(), k);
            flush();
        };
        const auto backdrop
            = [&](int index) { return m_Window->scene()->scope().backdrops.at(index); };
        select("user");
        m_Window->scene()->wrapSelection();
        key(Qt::Key_B);
        QVERIFY(backdrop(1).rect.contains(backdrop(0).rect));
        key(Qt::Key_F2); // no answer
        actionNamed(*m_Window, "Colour…")->trigger();
        QCOMPARE(stack()->count(), 2);
        m_Answers->m_Text = QStringLiteral("Outer");
        key(Qt::Key_F2);
        m_Answers->m_Color = QColor(18, 52, 86);
        actionNamed(*m_Window, "Colour…")->trigger();
        QCOMPARE(backdrop(1).title, QStringLiteral("Outer"));
        QCOMPARE(backdrop(1).color.toLower(), QStringLiteral("#123456"));
        QVERIFY(backdrop(0).title != backdrop(1).title && backdrop(0).color != backdrop(1).color);
        QVERIFY(m_Answers->m_Asked.constLast().startsWith(QLatin1String("line ")));
        m_Answers->m_Text = QStringLiteral("two\nlines");
        key(Qt::Key_N);
        QVERIFY(m_Answers->m_Asked.constLast().startsWith(QLatin1String("lines ")));
        QVERIFY(backdrop(2).isNote);
        QCOMPARE(backdrop(2).doc, QStringLiteral("two\nlines"));
    }

private:
    QString write(const char* name, const QByteArray& text)
    {
        return writeFile(QDir(m_Folder.path()), QString::fromLatin1(name), text);
    }
    void select(const char* name)
    {
        m_Window->scene()->clearSelection();
        user().node(name)->setSelected(true);
    }
    /// Moves a node by an undo step.
    void change(const char* name = "user")
    {
        const std::shared_ptr<NetEditor> editor = m_Window->navigator()->editor();
        const int scope = m_Window->navigator()->scopeIndex();
        QVERIFY(EditorCommand::push(editor,
            editor->moveNodes(scope, {{user().index(name), QPointF(123.5, -7)}}),
            QStringLiteral("Move this & that")));
        QVERIFY(m_Window->isWindowModified());
    }
    QAction* actionFor(const QKeySequence& key) const
    {
        const QList<QAction*> actions = m_Window->findChildren<QAction*>();
        for (QAction* action : actions) {
            if (action->shortcuts().contains(key))
                return action;
        }
        return nullptr;
    }
    static QAction* actionNamed(const EditorWindow& window, const char* text)
    {
        const QList<QAction*> actions = window.findChildren<QAction*>();
        for (QAction* action : actions) {
            if (action->text().remove(QLatin1Char('&')) == QString::fromUtf8(text))
                return action;
        }
        return nullptr;
    }
    EditorUser user() const { return EditorUser(m_Window->view()); }
    /// Begins what the mouse does: where it was pressed, and where it is now.
    std::pair<QPoint, QPoint> begin(const QString& what)
    {
        EditorUser hand = user();
        EditorScene* scene = m_Window->scene();
        const QPoint header = hand.atHeader("user");
        const QPoint middle = hand.atMiddle(scene->edgeOf({hand.index("user"), 0}));
        QPoint from = header;
        QPoint to = header + QPoint(70, 90);
        if (what == QLatin1String("band"))
            from = header + QPoint(150, 150), to = header;
        if (what == QLatin1String("cut")) {
            from = middle - QPoint(0, 60), to = middle + QPoint(0, 60);
            QTest::keyPress(m_Window->view(), Qt::Key_C);
        }
        if (what == QLatin1String("edge")) {
            const QByteArray point = hand.node("outer")->outputPoints().constFirst().toUtf8();
            m_Window->view()->pickUpEdge(hand.atPort("outer", point.constData()));
            if (!dynamic_cast<OrvNgEdge*>(scene->mouseGrabberItem()))
                qFatal("the edge is not on the cursor");
        } else {
            hand.press(from);
            hand.moveAlong({from, to});
        }
        return {from, to};
    }
    QString scopePath() const { return m_Window->scene()->scope().path; }

    QTemporaryDir m_Folder;
    QString m_Graphs;
    std::unique_ptr<EditorWindow> m_Window;
    Answers* m_Answers = nullptr; ///< the window's
};

QTEST_MAIN(tst_EditorWindow)
#include "tst_EditorWindow.moc"
