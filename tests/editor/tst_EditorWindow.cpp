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

using Answer = EditorQuestions::Answer;

/// Answers as it was told to, and remembers what was asked.
struct Answers : EditorQuestions
{
    Answers()
        : EditorQuestions(nullptr)
    {
    }
    template <typename T> T said(const char* what, const QString& about, const T& answer)
    {
        m_Asked.append(QLatin1String(what) + about);
        return answer;
    }
    Answer aboutUnsaved(const QString& file) override { return said("unsaved ", file, m_Unsaved); }
    bool overwriteChanged(const QString& file) override
    {
        return said("changed ", file, m_Overwrites);
    }
    QString pathToOpen(const QString&) override { return {}; }
    QString pathToSave(const QString&) override { return m_SavePath; }
    void tellFailure(const QString&, const QString& why) override { m_Asked.append(why); }
    int gridSize(int) override { return m_GridSize; }
    std::optional<QString> text(
        const QString&, const QString&, const QString& present, bool manyLines) override
    {
        return said(manyLines ? "lines " : "line ", present, m_Text);
    }
    QColor color(const QString&, const QColor&) override { return m_Color; }

    std::optional<QString> m_Text;
    QColor m_Color;
    int m_GridSize = 0;
    Answer m_Unsaved = Answer::Cancel;
    bool m_Overwrites = false;
    QString m_SavePath;
    QStringList m_Asked;
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
        m_Answers = new Answers;
        m_Window->setQuestions(std::unique_ptr<EditorQuestions>(m_Answers));
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

    void modes_areSetByKeysAndHeaders()
    {
        const auto modeOf = [&](const char* name) {
            return dynamic_cast<OrvNgExtendedNode*>(user().node(name))->portListMode();
        };
        key(Qt::Key_5); // of all
        select("user");
        for (int mode = 0; mode < 5; ++mode) {
            key(Qt::Key(Qt::Key_1 + mode));
            QCOMPARE(int(modeOf("user")), mode);
            QCOMPARE(modeOf("outer"), Mode::PORT_LIST_COLLAPSED);
        }
        QVERIFY(m_Window->openFile(testPath("small.mtlx"))); // with groups of ports
        key(Qt::Key_5);
        for (const Mode next : {Mode::PORT_LIST_EXPANDED, Mode::PORT_LIST_GROUPED,
                 Mode::PORT_LIST_ONLY_CONNECTED, Mode::PORT_LIST_COLLAPSED}) {
            const QRectF header = user().node("second")->nodeShapeRect();
            const QPointF button = header.topRight() + QPointF(-1, 1) * header.height() / 2;
            user().click(user().at(user().node("second")->mapToScene(button)));
            QCOMPARE(modeOf("second"), next);
        }
    }

    void enterAndLeave_byKeysAndDoubleClick()
    {
        select("outer");
        key(Qt::Key_Return);
        QCOMPARE(scopePath(), QStringLiteral("outer"));
        QVERIFY(m_Window->windowTitle().contains(QStringLiteral("outer")));
        QTest::mouseDClick(
            m_Window->view()->viewport(), Qt::LeftButton, {}, user().atHeader("inner"));
        flush();
        QCOMPARE(scopePath(), QStringLiteral("outer/inner"));
        key(Qt::Key_U);
        QCOMPARE(scopePath(), QStringLiteral("outer"));
        key(Qt::Key_Backspace);
        QCOMPARE(scopePath(), QString());
        key(Qt::Key_U); // nowhere to go
        QCOMPARE(scopePath(), QString());
    }

    void failedOpen_keepsTheDocument()
    {
        QVERIFY(m_Window->showGraph(QStringLiteral("outer")));
        const QPointer<EditorScene> scene = m_Window->scene();
        const QString bad = write("bad.mtlx", "<html>\n</html>");
        QVERIFY(!m_Window->openFile(bad));
        flush();
        QVERIFY(scene && scene == m_Window->scene());
        QCOMPARE(m_Window->filePath(), m_Graphs);
        QVERIFY(bar()->isVisible());
        QVERIFY2(bar()->headline().contains(QStringLiteral("bad.mtlx:1")),
            qPrintable(bar()->headline()));
        QVERIFY(m_Window->openFile(m_Graphs));
        QVERIFY(!bar()->isVisible());
    }

    void reload_showsTheChangedFileInTheSameScope()
    {
        const QString file = write("changing.mtlx", kGraphs);
        QVERIFY(m_Window->openFile(file));
        QVERIFY(m_Window->showGraph(QStringLiteral("outer/inner")));
        m_Window->view()->lookAt(QPointF(10, 10), 0.8);
        QByteArray changed = kGraphs;
        write("changing.mtlx", changed.replace("<output", "<twice name=\"new\" /><output"));
        key(Qt::Key_F5);
        QCOMPARE(scopePath(), QStringLiteral("outer/inner"));
        QVERIFY(user().index("new") >= 0);
        QCOMPARE(m_Window->view()->transform().m11(), 0.8);
    }

    void unsavedChanges_areAskedAbout_data()
    {
        const TestTable<QString, int> row("way", "answer");
        for (const char* way : {"close", "open", "reload", "drop"}) {
            const QByteArray tag(way);
            row((tag + ", save").constData(), way, int(Answer::Save));
            row((tag + ", discard").constData(), way, int(Answer::Discard));
            row((tag + ", cancel").constData(), way, int(Answer::Cancel));
        }
    }

    void unsavedChanges_areAskedAbout()
    {
        QFETCH(QString, way);
        QFETCH(int, answer);
        const bool isGone = Answer(answer) != Answer::Cancel;
        const QString file = write("asked.mtlx", kGraphs);
        QVERIFY(m_Window->openFile(file));
        change();
        const QByteArray changed = text();
        QVERIFY(changed != kGraphs);
        m_Answers->m_Unsaved = Answer(answer);
        if (way == QLatin1String("close")) {
            QCOMPARE(m_Window->close(), isGone);
        } else if (way == QLatin1String("open")) {
            QCOMPARE(m_Window->openFile(m_Graphs), isGone);
        } else if (way == QLatin1String("reload")) {
            key(Qt::Key_F5);
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
        QCOMPARE(contents(file), Answer(answer) == Answer::Save ? changed : kGraphs);
        if (way == QLatin1String("close"))
            return;
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

        key(Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(m_Answers->m_Asked.size(), 1);
        QVERIFY(bar()->isVisible() && bar()->headline().contains(QStringLiteral("kept.mtlx")));
        QVERIFY(m_Window->isWindowModified());
        // Saving as the way out fails as well: the window stays.
        m_Answers->m_Unsaved = Answer::Save;
        QVERIFY(!m_Window->close());
        QCOMPARE(contents(m_Folder.filePath(QStringLiteral("elsewhere/kept.mtlx"))), kGraphs);

        m_Answers->m_SavePath = m_Folder.filePath(QStringLiteral("rescued.mtlx"));
        key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(m_Window->filePath(), m_Answers->m_SavePath);
        QCOMPARE(contents(m_Answers->m_SavePath), text());
        QVERIFY(!m_Window->isWindowModified() && !bar()->isVisible());
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
        QCOMPARE(contents(file), text());
        QVERIFY(m_Window->save()); // its own write, and then one that is gone: not asked about
        QVERIFY(QFile::remove(file));
        QVERIFY(m_Window->save());
        QCOMPARE(m_Answers->m_Asked.size(), 2);
    }

    void undo_namesItsStepAndWaitsForTheMouse()
    {
        const QAction* undo = actionFor(QKeySequence(int(Qt::CTRL) | int(Qt::Key_Z)));
        QVERIFY(!undo->isEnabled());
        const QByteArray before = text();
        change();
        QCOMPARE(undo->text(), QStringLiteral("&Undo Move this && that"));
        EditorUser hand = user();
        hand.press({5, 5});
        QVERIFY(!undo->isEnabled());
        key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(stack()->index(), 1);
        hand.release({5, 5});
        QVERIFY(m_Window->showGraph(QStringLiteral("outer")));
        key(Qt::Key_Z, Qt::ControlModifier);
        flush();
        QCOMPARE(scopePath(), QString()); // where the step was made
        QCOMPARE(text(), before);
        QVERIFY(!m_Window->isWindowModified());
        key(Qt::Key_Y, Qt::ControlModifier);
        QVERIFY(m_Window->isWindowModified());
    }

    void quitting_inTheMiddle_data()
    {
        const TestTable<QString> row("what");
        for (const char* what : {"node", "edge", "menu", "dialog"})
            row(what, what);
    }

    void quitting_inTheMiddle()
    {
        QFETCH(QString, what);
        const Noise noise;
        m_Window->frameAll();
        if (what == QLatin1String("menu"))
            m_Window->menuBar()->actions().constFirst()->menu()->popup(QPoint(9, 9));
        else if (what == QLatin1String("dialog"))
            openPreferences(), openPreferences();
        else if (what == QLatin1String("edge"))
            m_Window->view()->pickUpEdge(user().atPort("outer", "out"));
        else
            user().press(user().atHeader("user"));
        QCOMPARE(m_Window->scene()->mouseGrabberItem() != nullptr,
            what.size() == 4 && what != QLatin1String("menu"));
        QCOMPARE(m_Window->findChildren<EditorPreferencesDialog*>().size(),
            what == QLatin1String("dialog") ? 1 : 0);
        QVERIFY(m_Window->close());
        QCOMPARE(m_Answers->m_Asked, QStringList()); // nothing has changed
        m_Window.reset();
        flush();
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
        QCOMPARE(stack()->count(), 0);
        const QRegularExpression trouble(QStringLiteral("^(?!\\[ -- \\])")); // not what is noted
        QCOMPARE(noise.heard().filter(trouble), QStringList());
    }

    void dotKey_marksTheSceneOnShowOnly()
    {
        const auto isDotable = [](const EditorScene* scene) {
            for (QGraphicsItem* item : scene->items()) {
                if (item->isVisible() && dynamic_cast<OrvNgDotableMarkerItem*>(item))
                    return true;
            }
            return false;
        };
        const QPointer<EditorScene> outside = m_Window->scene();
        QTest::keyPress(m_Window->view(), Qt::Key_D);
        QVERIFY(isDotable(outside));
        QVERIFY(m_Window->showGraph(QStringLiteral("outer")));
        QVERIFY(!isDotable(outside));
        QVERIFY(isDotable(m_Window->scene()));
        QTest::keyRelease(m_Window->view(), Qt::Key_D);
        QTRY_VERIFY(!isDotable(m_Window->scene()));
        QTest::keyPress(m_Window->view(), Qt::Key_D); // it dies with the key held
    }

    void settings_keepWhatTheUserChose()
    {
        const QString path = m_Folder.filePath(QStringLiteral("settings.ini"));
        const auto settings = [&] {
            return EditorSettings(std::make_unique<QSettings>(path, QSettings::IniFormat));
        };
        auto* grid = OrvShaderNetworkManager::instance();
        const auto resetGrid = [grid] {
            grid->setGridWidth(20);
            grid->setGridHeight(20);
            grid->setSnapToGrid(false);
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
        trigger("Shake a Node to Extract It");
        trigger("40");
        QCOMPARE(QSize(grid->gridWidth(), grid->gridHeight()), QSize(40, 40));
        trigger("Custom…"); // no answer
        QCOMPARE(grid->gridWidth(), 40);
        m_Answers->m_GridSize = 33;
        trigger("Custom…");
        key(Qt::Key_G, Qt::ShiftModifier);
        trigger("Harbor");
        QVERIFY(lookPastTheNodes(m_Window.get()));
        key(Qt::Key_M);
        m_Window->resize(777, 555);
        QVERIFY(m_Window->close());

        resetGrid();
        EditorWindow next;
        next.useSettings(settings());
        const QSize restored(grid->gridWidth(), grid->gridHeight());
        const bool snaps = grid->snapToGrid();
        resetGrid(); // for the tests that follow
        QCOMPARE(restored, QSize(33, 33));
        QVERIFY(snaps);
        QCOMPARE(settings().recentFiles(), QStringList(files.mid(0, 10)));
        QVERIFY(!next.view()->isShakeDetectionEnabled());
        QCOMPARE(next.view()->navigationScheme(), QStringLiteral("Harbor"));
        QVERIFY(actionNamed(next, "Harbor")->isChecked());
        QVERIFY(next.restorePlace());
        QCOMPARE(next.size(), QSize(777, 555));
        next.show();
        QVERIFY(next.openFile(m_Graphs));
        QVERIFY(!lookPastTheNodes(&next));
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
        bar()->setMessages(QString(), {});
        QVERIFY(QDir(m_Folder.path()).mkdir(QStringLiteral("away")));
        m_Answers->m_SavePath = m_Folder.filePath(QStringLiteral("beside.mtlx"));
        QVERIFY(m_Window->saveAs());
        QVERIFY2(!bar()->isVisible(), qPrintable(bar()->headline()));
        m_Answers->m_SavePath = m_Folder.filePath(QStringLiteral("away/whole.mtlx"));
        QVERIFY(m_Window->saveAs());
        const QString details = bar()->details(); // one was lost before, one is absolute
        QVERIFY(bar()->isVisible() && !details.contains(QLatin1Char('\n')));
        QVERIFY2(details.contains(QStringLiteral("away/whole.mtlx:2: ")), qPrintable(details));
    }

    void backdropKeys_changeTheOuterOne()
    {
        const auto keyOnAll = [&](Qt::Key k) {
            m_Window->scene()->selectAll();
            key(k);
            flush();
        };
        const auto backdrop = [&](int i) { return m_Window->scene()->scope().backdrops.at(i); };
        select("user");
        m_Window->scene()->wrapSelection();
        keyOnAll(Qt::Key_B);
        QVERIFY(backdrop(1).rect.contains(backdrop(0).rect));
        keyOnAll(Qt::Key_F2); // no answer
        trigger("Colour…");
        QCOMPARE(stack()->count(), 2);
        m_Answers->m_Text = QStringLiteral("Outer");
        keyOnAll(Qt::Key_F2);
        m_Answers->m_Color = QColor(18, 52, 86);
        trigger("Colour…");
        QCOMPARE(backdrop(1).title, QStringLiteral("Outer"));
        QCOMPARE(backdrop(1).color.toLower(), QStringLiteral("#123456"));
        QVERIFY(backdrop(0).title != backdrop(1).title && backdrop(0).color != backdrop(1).color);
        QVERIFY(m_Answers->m_Asked.constLast().startsWith(QLatin1String("line ")));
        m_Answers->m_Text = QStringLiteral("two\nlines");
        keyOnAll(Qt::Key_N);
        QVERIFY(m_Answers->m_Asked.constLast().startsWith(QLatin1String("lines ")));
        QVERIFY(backdrop(2).isNote);
        QCOMPARE(backdrop(2).doc, QStringLiteral("two\nlines"));
    }

    void everythingUndone_isTheOriginalDocument()
    {
        const QDir shared(qEnvironmentVariable("ORV_SHARED_DATA"));
        const QString chess = shared.filePath(QStringLiteral(
            "resources/Materials/Examples/StandardSurface/standard_surface_chess_set.mtlx"));
        if (!QFile::exists(chess))
            QSKIP("The folder of shared documents (ORV_SHARED_DATA) is not there.");
        QDir(m_Folder.path()).mkdir(QStringLiteral("chess"));
        const QString file = write("chess/set.mtlx", contents(chess));
        QVERIFY(QFile::link(shared.filePath(QStringLiteral("libraries")),
            m_Folder.filePath(QStringLiteral("chess/libraries"))));
        m_Window->resize(1500, 1000);
        QVERIFY(m_Window->openFile(file) && m_Window->showGraph(QStringLiteral("NG_BishopBlack")));
        // The view scrolls while the real cursor is near its border and something is carried.
        QCursor::setPos(m_Window->view()->mapToGlobal(m_Window->view()->rect().center()));
        flush();
        EditorUser hand = user();
        QVector<QByteArray> texts{text()};
        const auto done = [&](const char* step) {
            flush();
            texts.append(text());
            QCOMPARE(stack()->undoText(), QLatin1String(step));
            QCOMPARE(stack()->count(), texts.size() - 1);
        };
        hand.drag(hand.atHeader("diffuse2"), hand.atHeader("diffuse2") + QPoint(-20, 30));
        done("Move node diffuse2");
        hand.connectPorts(
            hand.atPort("roughness_output", "roughness_output"), hand.atPort("metallic2", "out"));
        done("Moved output roughness_output.roughness_output from roughness2.out to metallic2.out");
        select("mtlxnormalmap4");
        key(Qt::Key_Delete);
        done("Delete mtlxnormalmap4");
        QVERIFY(m_Window->save());
        QCOMPARE(contents(file), texts.constLast());
        for (int i = texts.size() - 1; i > 0; --i) {
            QCOMPARE(text(), texts.at(i));
            key(Qt::Key_Z, Qt::ControlModifier);
            flush();
        }
        QVERIFY(m_Window->isWindowModified() && m_Window->save());
        QCOMPARE(contents(file), contents(chess));
        key(Qt::Key_F5);
        QCOMPARE(scopePath(), QStringLiteral("NG_BishopBlack"));
        QCOMPARE(text(), contents(chess));
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
    void change()
    {
        const std::shared_ptr<NetEditor> editor = m_Window->navigator()->editor();
        QVERIFY(EditorCommand::push(editor,
            editor->moveNodes(0, {{user().index("user"), QPointF(123.5, -7)}}),
            QStringLiteral("Move this & that")));
        QVERIFY(m_Window->isWindowModified());
    }
    QByteArray text() const { return m_Window->navigator()->editor()->text(); }
    EditorMessageBar* bar() const { return m_Window->findChild<EditorMessageBar*>(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(m_Window.get(), key, modifiers);
    }
    void openPreferences()
    {
        actionFor(QKeySequence(int(Qt::CTRL) | int(Qt::Key_Comma)))->trigger();
    }
    void trigger(const char* action) { actionNamed(*m_Window, action)->trigger(); }
    QAction* actionFor(const QKeySequence& key) const
    {
        for (QAction* action : m_Window->findChildren<QAction*>()) {
            if (action->shortcuts().contains(key))
                return action;
        }
        return nullptr;
    }
    static QAction* actionNamed(const EditorWindow& window, const char* text)
    {
        for (QAction* action : window.findChildren<QAction*>()) {
            if (action->text().remove(QLatin1Char('&')) == QString::fromUtf8(text))
                return action;
        }
        return nullptr;
    }
    EditorUser user() const { return EditorUser(m_Window->view()); }
    QString scopePath() const { return m_Window->scene()->scope().path; }

    QTemporaryDir m_Folder;
    QString m_Graphs;
    std::unique_ptr<EditorWindow> m_Window;
    Answers* m_Answers = nullptr; ///< the window's
};

QTEST_MAIN(tst_EditorWindow)
#include "tst_EditorWindow.moc"
