#include "editor/EditorCommand.h"
#include "editor/EditorMessageBar.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorPreferencesDialog.h"
#include "editor/EditorQuestions.h"
#include "editor/EditorTesting.h"
#include "editor/EditorUser.h"
#include "editor/EditorWindow.h"
#include "network/NetTemporaryFiles.h"
#include "support/Literals.h"
#include "support/TestRows.h"

#include <OrvCore/OrvUndoManager.h>
#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QAction>
#include <QDropEvent>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QSettings>
#include <QUndoStack>

#include <OrvNodeGraph/OrvNgDotableMarkerItem.h>
#include <functional>

using namespace EditorTesting;

namespace {

// The graph "inner" stands inside "outer".
const QByteArray kGraphs = contents(testPath("graphs.mtlx"));
// What somebody else makes of it.
const QByteArray kTheirs = QByteArray(kGraphs).replace(
    "<twice name=\"deep\"", "<twice name=\"new\" type=\"float\" /><twice name=\"deep\"");
const QPoint kGround(5, 5); // where there is nothing

using Answer = EditorQuestions::Answer;

/// Answers as it was told to, and remembers what was asked.
struct Answers : EditorQuestions
{
    using EditorQuestions::EditorQuestions;
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

} // namespace

/// The window as its user meets it: keys, ways in and out, documents that fail.
class tst_EditorWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_Files = std::make_unique<NetTemporaryFiles>();
        for (const char* folder : {"gone", "away"})
            QVERIFY(QDir(path("")).mkdir(QLatin1String(folder)));
        for (const char* name : {"graphs.mtlx", "other.mtlx", "gone/kept.mtlx"})
            write(name, kGraphs);
        write("groups.mtlx", contents(testPath("small.mtlx")));
        write("bad.mtlx", "<html>\n</html>");
        const QByteArray part = write("part.mtlx", "<materialx/>").toUtf8();
        write("whole.mtlx",
            "<materialx>\n<xi:include href='part.mtlx'/>\n<xi:include href='gone.mtlx'/>\n"
            "<xi:include href='"
                + part + "'/>\n</materialx>");
        if (!m_Chess.isEmpty())
            write("chess.mtlx", m_Chess);
        openWindow();
    }

    void cleanup()
    {
        m_Window.reset();
        flush();
        resetGrid();
    }

    void session_isShownAndEndsInPeace_data()
    {
        addTestRows(ORV_TEST_DATA "/editor/window.txt", "sessions", {"script", "outcome"});
    }

    void session_isShownAndEndsInPeace()
    {
        QFETCH(QByteArray, script);
        const Noise noise;
        m_Told.clear();
        if (script.contains("chess") && m_Chess.isEmpty())
            QSKIP("The folder of shared documents (ORV_SHARED_DATA) is not there.");
        for (const QString& line : QString::fromUtf8(script).split(q(", "))) {
            play(line.section(QLatin1Char(' '), 0, 0), line.section(QLatin1Char(' '), 1));
            flush();
        }
        QTEST(state().toUtf8(), "outcome");
        m_Answers->m_Unsaved = Answer::Discard;
        QVERIFY(m_Window->close());
        cleanup();
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
        QCOMPARE(stack()->count(), 0);
        QCOMPARE(noise.heard(), QStringList());
    }

private:
    void openWindow()
    {
        const QString shared = qEnvironmentVariable("ORV_SHARED_DATA");
        m_Window = std::make_unique<EditorWindow>(
            shared.isEmpty() ? NetSearchPath() : NetSearchPath({shared}));
        m_Window->useSettings(settings());
        m_Answers = new Answers(nullptr);
        m_Window->setQuestions(std::unique_ptr<EditorQuestions>(m_Answers));
        if (!m_Window->restorePlace())
            m_Window->resize(1500, 1000);
        m_Window->show();
        m_Window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_Window.get()));
        QVERIFY(m_Window->openFile(path("graphs.mtlx")));
        // The view scrolls while the real cursor is near its border and something is carried.
        QCursor::setPos(m_Window->view()->mapToGlobal(m_Window->view()->rect().center()));
    }
    EditorSettings settings() const
    {
        return EditorSettings(
            std::make_unique<QSettings>(path("settings.ini"), QSettings::IniFormat));
    }
    static void resetGrid()
    {
        auto* grid = OrvShaderNetworkManager::instance();
        grid->setGridWidth(20), grid->setGridHeight(20), grid->setSnapToGrid(false);
    }
    void play(const QString& verb, const QString& rest)
    {
        EditorScene* scene = m_Window->scene();
        EditorView* view = m_Window->view();
        EditorUser hand = user();
        const QByteArray bytes = rest.toUtf8();
        const char* name = bytes.constData();
        const auto port = [&](int i) {
            const QByteArrayList ends = bytes.split(' ').value(i).split('.');
            return hand.atPort(ends.first(), ends.last());
        };
        const auto dialogs = m_Window->findChildren<EditorPreferencesDialog*>();
        const QStringList answers = q("Save Discard Cancel").split(q(" "));
        const QMap<QString, std::function<void()>> verbs{
            {q("select"), [&] { select(name); }},
            {q("drag"), [&] { hand.drag(hand.atHeader(name), hand.atHeader(name) - kGround * 4); }},
            {q("connect"), [&] { hand.connectPorts(port(0), port(1)); }},
            {q("button"), [&] { hand.click(hand.atButton(name)); }},
            {q("all"), [&] { scene->selectAll(); }},
            {q("wrap"), [&] { scene->wrapSelection(); }},
            {q("enter"), [&] { m_Window->showGraph(rest); }},
            {q("key"), [&] { key(rest); }},
            {q("hold"), [&] { QTest::keyPress(view, *name); }},
            {q("let"), [&] { QTest::keyRelease(view, *name), QTest::qWait(150); }},
            {q("double"), [&] { hand.doubleClick(hand.atHeader(name)); }},
            {q("press"), [&] { hand.press(bytes.isEmpty() ? kGround : hand.atHeader(name)); }},
            {q("release"), [&] { hand.release(kGround); }},
            {q("edge"), [&] { view->pickUpEdge(hand.atPort("outer", "out")); }},
            {q("menu"), [&] { m_Window->menuBar()->actions().first()->menu()->popup(kGround); }},
            {q("trigger"), [&] { action(rest)->trigger(); }},
            {q("dismiss"), [&] { bar()->setMessages(QString(), {}); }},
            {q("zoom"), [&] { view->lookAt(QPointF(10, 10), rest.toDouble()); }},
            {q("change"), [&] { change(); }},
            {q("open"), [&] { m_Window->openFile(path(name)); }},
            {q("drop"), [&] { drop(path(name)); }},
            {q("save"), [&] { QVERIFY(m_Window->save()); }},
            {q("close"), [&] { m_Window->close(); }},
            {q("answer"), [&] { m_Answers->m_Unsaved = Answer(answers.indexOf(rest)); }},
            {q("overwrite"), [&] { m_Answers->m_Overwrites = true; }},
            {q("save-to"), [&] { m_Answers->m_SavePath = path(name); }},
            {q("grid"), [&] { m_Answers->m_GridSize = rest.toInt(); }},
            {q("size"), [&] { m_Window->resize(rest.toInt(), rest.toInt()); }},
            {q("again"), [&] { m_Window->close(), resetGrid(), openWindow(); }},
            {q("far"), [&] { view->lookAt(QPointF(4000, 0), 1), QTest::qWait(100); }},
            {q("map"), [&] { m_Told += q(view->shouldDisplayMinimap() ? "yes" : "no"); }},
            {q("say"), [&] { m_Answers->m_Text = rest; }},
            {q("paint"), [&] { m_Answers->m_Color = QColor(rest); }},
            {q("write"), [&] { write(name, kTheirs); }},
            {q("remove"), [&] { QFile::remove(path(name)); }},
            {q("hide"), [&] { QDir(path("")).rename(rest, q("hidden")); }},
            {q("disk"), [&] { m_Told += disk(contents(path(name))); }},
            {q("zoomed"), [&] { m_Told += QString::number(view->transform().m11()); }},
            {q("grabbed"), [&] { m_Told += q(scene->mouseGrabberItem() ? "yes" : "no"); }},
            {q("dialogs"), [&] { m_Told += QString::number(dialogs.size()); }},
            {q("step"), [&] { m_Told += stack()->undoText(); }},
            {q("dots"), [&] { m_Told += q(isDotable() ? "some" : "none"); }},
        };
        if (verb == q("nodes")) {
            for (const NetNode& node : scene->scope().nodes)
                m_Told += node.name;
        } else if (verb == q("backdrops")) {
            for (const NetBackdrop& each : scene->scope().backdrops)
                m_Told += (each.isNote ? each.doc : each.title) + each.color;
        } else if (verb == q("modes")) {
            for (OrvNgNode* node : scene->nodes())
                m_Told += QString::number(dynamic_cast<OrvNgExtendedNode*>(node)->portListMode());
        } else if (verb == q("recent")) {
            for (int i = 0; i < rest.toInt(); ++i)
                QVERIFY(m_Window->openFile(write(qPrintable(q("%1.mtlx").arg(i)), kGraphs)));
        } else if (verb == q("recents")) {
            for (const QString& file : settings().recentFiles())
                m_Told += QFileInfo(file).baseName();
        } else if (verb == q("chosen")) {
            const auto* grid = OrvShaderNetworkManager::instance();
            m_Told += q("%1x%2").arg(grid->gridWidth()).arg(grid->gridHeight());
            m_Told += q(grid->snapToGrid() ? "snaps" : "free");
            m_Told += q(view->isShakeDetectionEnabled() ? "shakes" : "still");
            m_Told += view->navigationScheme() + q(action(q("Harbor"))->isChecked() ? "*" : "");
            m_Told += q("%1x%2").arg(m_Window->width()).arg(m_Window->height());
        } else {
            QVERIFY2(verbs.contains(verb), qPrintable(verb));
            verbs.value(verb)();
        }
    }
    /// What the window shows; and what was asked and looked up.
    QString state() const
    {
        const QString title = m_Window->windowTitle().section(q(" \xE2\x80\x94 "), 0, 0);
        QStringList parts{m_Window->isVisible()
                ? QString(title).replace(q("[*]"), q(m_Window->isWindowModified() ? "*" : ""))
                : q("closed")};
        const QAction* undo = action(q("Ctrl+Z"));
        if (undo->isEnabled() && m_Window->isVisible())
            parts += undo->text();
        if (bar()->isVisible())
            parts += q("bar: ") + bar()->headline()
                + q(bar()->details().contains(q("\n")) ? " ..." : "");
        if (!m_Answers->m_Asked.isEmpty())
            parts += q("asked: ") + m_Answers->m_Asked.join(q("/"));
        if (!m_Told.isEmpty())
            parts += q("told: ") + m_Told.join(q("/"));
        return parts.join(q("; ")).remove(path("") + q("/"));
    }
    QString disk(const QByteArray& bytes) const
    {
        return q(bytes == kGraphs || bytes == m_Chess ? "as read"
                : bytes == text()                     ? "as shown"
                                                      : "changed");
    }
    bool isDotable() const
    {
        for (QGraphicsItem* item : m_Window->scene()->items()) {
            if (item->isVisible() && dynamic_cast<OrvNgDotableMarkerItem*>(item))
                return true;
        }
        return false;
    }
    void drop(const QString& file)
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file)});
        QDragEnterEvent enter(kGround, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_Window.get(), &enter);
        QDropEvent event(kGround, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_Window.get(), &event);
    }
    QString path(const char* name) const { return m_Files->path(q(name)); }
    QString write(const char* name, const QByteArray& text) const
    {
        return m_Files->write(q(name), text);
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
            q("Move this & that")));
    }
    QByteArray text() const { return m_Window->navigator()->editor()->text(); }
    EditorMessageBar* bar() const { return m_Window->findChild<EditorMessageBar*>(); }
    void key(const QString& text) { QTest::keySequence(m_Window.get(), QKeySequence(text)); }
    /// By its text or its key.
    QAction* action(const QString& name) const
    {
        for (QAction* each : m_Window->findChildren<QAction*>()) {
            if (each->text().remove(u'&') == name || each->shortcuts().contains(QKeySequence(name)))
                return each;
        }
        return nullptr;
    }
    EditorUser user() const { return EditorUser(m_Window->view()); }

    const QByteArray m_Chess
        = contents(QDir(qEnvironmentVariable("ORV_SHARED_DATA"))
                       .filePath(q("resources/Materials/Examples/StandardSurface/"
                                   "standard_surface_chess_set.mtlx"))); ///< or empty
    std::unique_ptr<NetTemporaryFiles> m_Files;
    std::unique_ptr<EditorWindow> m_Window;
    Answers* m_Answers = nullptr; ///< the window's
    QStringList m_Told; ///< what a session looked up
};

QTEST_MAIN(tst_EditorWindow)
#include "tst_EditorWindow.moc"
