#include "editor/EditorMessageBar.h"
#include "editor/EditorTesting.h"
#include "editor/EditorView.h"
#include "editor/EditorWindow.h"
#include "network/NetDocument.h"
#include "support/TestTable.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

using namespace EditorTesting;
using Mode = EditorScene::Mode;

namespace {

// The graph "inner" stands inside "outer".
const char kGraphs[] = R"(<?xml version="1.0"?>
<materialx version="1.39">
  <nodedef name="ND_twice" node="twice" nodegroup="math">
    <input name="in" type="float" value="1" />
    <output name="out" type="float" />
  </nodedef>
  <nodegraph name="outer">
    <nodegraph name="inner">
      <twice name="deep" type="float" />
      <output name="out" type="float" nodename="deep" />
    </nodegraph>
    <output name="out" type="float" nodegraph="inner" />
  </nodegraph>
  <twice name="user" type="float"><input name="in" type="float" nodegraph="outer" /></twice>
</materialx>
)";

Mode modeOf(OrvNgNode* node)
{
    return dynamic_cast<OrvNgExtendedNode*>(node)->portListMode();
}

} // namespace

/// The window as its user meets it: keys, ways in and out, documents that fail.
class tst_EditorWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void keys_setModesOfSelectionOrAll();
    void enterAndLeave_byKeysAndDoubleClick();
    void failedOpen_keepsTheDocument_data();
    void failedOpen_keepsTheDocument();
    void reload_showsTheChangedFileInTheSameScope();
    void window_diesInsideAGraph_withAnotherDocumentJustOpened();

private:
    QString write(const char* name, const QByteArray& text)
    {
        return writeFile(QDir(m_Folder.path()), QString::fromLatin1(name), text);
    }
    int indexOf(const char* name) const
    {
        const NetScope& scope = m_Window->scene()->scope();
        for (int i = 0; i < scope.nodes.size(); ++i) {
            if (scope.nodes.at(i).name == QLatin1String(name))
                return i;
        }
        return -1;
    }
    void select(const char* name)
    {
        m_Window->scene()->clearSelection();
        m_Window->scene()->node(indexOf(name))->setSelected(true);
    }
    QString scopePath() const { return m_Window->scene()->scope().path; }

    QTemporaryDir m_Folder;
    QString m_Graphs;
    std::unique_ptr<EditorWindow> m_Window;
};

void tst_EditorWindow::initTestCase()
{
    QCoreApplication::setOrganizationName(QStringLiteral("OrvTests"));
    m_Graphs = write("graphs.mtlx", kGraphs);
}

void tst_EditorWindow::init()
{
    m_Window = std::make_unique<EditorWindow>(NetSearchPath());
    m_Window->resize(1000, 700);
    m_Window->show();
    m_Window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_Window.get()));
    QVERIFY(m_Window->openFile(m_Graphs));
}

void tst_EditorWindow::cleanup()
{
    m_Window.reset();
    flush();
}

void tst_EditorWindow::keys_setModesOfSelectionOrAll()
{
    EditorScene* scene = m_Window->scene();
    QTest::keyClick(m_Window.get(), Qt::Key_5);
    for (OrvNgNode* node : scene->nodes())
        QCOMPARE(modeOf(node), Mode::PORT_LIST_COLLAPSED);
    select("user");
    for (int key = 0; key < 5; ++key) {
        QTest::keyClick(m_Window.get(), static_cast<Qt::Key>(Qt::Key_1 + key));
        QCOMPARE(static_cast<int>(modeOf(scene->node(indexOf("user")))), key);
        QCOMPARE(modeOf(scene->node(indexOf("outer"))), Mode::PORT_LIST_COLLAPSED);
    }
}

void tst_EditorWindow::enterAndLeave_byKeysAndDoubleClick()
{
    select("outer");
    QTest::keyClick(m_Window.get(), Qt::Key_Return);
    QCOMPARE(scopePath(), QStringLiteral("outer"));
    QVERIFY(m_Window->windowTitle().contains(QStringLiteral("outer")));

    OrvNgNode* inner = m_Window->scene()->node(indexOf("inner"));
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

void tst_EditorWindow::failedOpen_keepsTheDocument_data()
{
    const TestTable<QByteArray, QString> row("text", "place");
    row("missing", QByteArray(), "");
    row("another root", "<html>\n</html>", ":1");
    row("includes itself", "<materialx>\n <xi:include href='bad.mtlx'/>\n</materialx>", ":2");
}

void tst_EditorWindow::failedOpen_keepsTheDocument()
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
    QVERIFY2(
        bar->headline().contains(QStringLiteral("bad.mtlx") + place), qPrintable(bar->headline()));

    QVERIFY(m_Window->openFile(m_Graphs));
    QVERIFY(!bar->isVisible());
    flush();
    QVERIFY(!scene);
}

void tst_EditorWindow::reload_showsTheChangedFileInTheSameScope()
{
    const QString file = write("changing.mtlx", kGraphs);
    QVERIFY(m_Window->openFile(file));
    QVERIFY(m_Window->showGraph(QStringLiteral("outer/inner")));
    m_Window->view()->lookAt(QPointF(10, 10), 0.8);
    QByteArray changed(kGraphs);
    changed.replace("<twice name=\"deep\" type=\"float\" />",
        "<twice name=\"deep\" type=\"float\" /><twice name=\"new\" type=\"float\" />");
    write("changing.mtlx", changed);
    QTest::keyClick(m_Window.get(), Qt::Key_F5);
    QCOMPARE(scopePath(), QStringLiteral("outer/inner"));
    QVERIFY(indexOf("new") >= 0);
    QCOMPARE(m_Window->view()->transform().m11(), 0.8);
}

void tst_EditorWindow::window_diesInsideAGraph_withAnotherDocumentJustOpened()
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

QTEST_MAIN(tst_EditorWindow)
#include "tst_EditorWindow.moc"
