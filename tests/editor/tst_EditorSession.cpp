#include "editor/EditorNavigator.h"
#include "editor/EditorTesting.h"
#include "editor/EditorView.h"
#include "editor/EditorWindow.h"

#include <OrvCore/OrvUndoManager.h>

#include <QGraphicsPathItem>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QUndoStack>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>

using namespace EditorTesting;

namespace {

const char kChessSet[]
    = "resources/Materials/Examples/StandardSurface/standard_surface_chess_set.mtlx";

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A user in front of the window: names what to take and where to put it, and uses the mouse.
class User
{
public:
    explicit User(EditorWindow& window)
        : m_Window(window)
    {
    }

    OrvNgNode* node(const char* name) const
    {
        const QVector<NetNode>& nodes = m_Window.scene()->scope().nodes;
        for (int i = 0; i < nodes.size(); ++i) {
            if (nodes.at(i).name == QLatin1String(name))
                return m_Window.scene()->node(i);
        }
        qFatal("no such node");
        return nullptr;
    }
    QPoint header(const char* name) const
    {
        return view(node(name)->mapToScene(node(name)->nodeShapeRect().center()));
    }
    QPoint input(const char* name, const char* port) const
    {
        return centre(extended(name)->inputPort(QLatin1String(port)));
    }
    QPoint output(const char* name, const char* port) const
    {
        return centre(extended(name)->outputPort(QLatin1String(port)));
    }
    /// The middle of the one connection into a node.
    QPoint middleOfEdgeInto(const char* name) const
    {
        for (OrvNgEdge* edge : node(name)->inputs()) {
            if (edge->isFullConnected())
                return view(edge->mainEdge()->path().pointAtPercent(0.5));
        }
        qFatal("nothing leads into the node");
        return {};
    }

    void moveTo(const QPoint& pos, Qt::MouseButtons held = Qt::LeftButton)
    {
        send(QEvent::MouseMove, pos, Qt::NoButton, held);
    }
    void click(const QPoint& pos)
    {
        send(QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton);
    }
    void dragAlong(const QVector<QPoint>& way)
    {
        send(QEvent::MouseButtonPress, way.constFirst(), Qt::LeftButton, Qt::LeftButton);
        for (int i = 1; i < way.size(); ++i) {
            moveTo((way.at(i - 1) + way.at(i)) / 2);
            moveTo(way.at(i));
        }
        send(QEvent::MouseButtonRelease, way.constLast(), Qt::LeftButton, Qt::NoButton);
    }
    void pull(const QPoint& port, const QPoint& target)
    {
        dragAlong({port, target});
        moveTo(target, Qt::NoButton);
        click(target);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_Window.view(), key, modifiers);
        flush();
    }

private:
    OrvNgExtendedNode* extended(const char* name) const
    {
        return dynamic_cast<OrvNgExtendedNode*>(node(name));
    }
    QPoint view(const QPointF& scenePos) const { return m_Window.view()->mapFromScene(scenePos); }
    QPoint centre(OrvNgPort* port) const
    {
        return view(port->mapToScene(port->portRect().center()));
    }
    void send(QEvent::Type type, const QPoint& pos, Qt::MouseButton button, Qt::MouseButtons held)
    {
        QWidget* viewport = m_Window.view()->viewport();
        QMouseEvent event(type, pos, viewport->mapToGlobal(pos), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    }

    EditorWindow& m_Window;
};

} // namespace

/// An hour's work in a minute, on a document of somebody else's.
class tst_EditorSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingUndone_savesTheOriginalBytes()
    {
        const QDir shared(qEnvironmentVariable("ORV_SHARED_DATA"));
        if (!shared.exists(QLatin1String(kChessSet)))
            QSKIP("The folder of shared documents (ORV_SHARED_DATA) is not there.");
        const QTemporaryDir folder;
        const QByteArray original = contents(shared.filePath(QLatin1String(kChessSet)));
        const QString file = writeFile(folder.path(), QStringLiteral("chess.mtlx"), original);

        EditorWindow window(NetSearchPath({shared.path()}));
        window.resize(1500, 1000);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.openFile(file));
        QVERIFY(window.showGraph(QStringLiteral("NG_BishopBlack")));
        // The view scrolls while the real cursor is near its border and something is carried.
        QCursor::setPos(window.view()->mapToGlobal(window.view()->rect().center()));
        flush();
        const auto text = [&] { return window.navigator()->editor()->text(); };
        QUndoStack& history = *OrvUndoManager::instance().undoStack();
        QVector<QByteArray> texts{text()};
        const auto done = [&](const char* step) {
            texts.append(text());
            return history.undoText() == QLatin1String(step) && history.count() == texts.size() - 1;
        };
        User user(window);

        user.dragAlong({user.header("diffuse2"), user.header("diffuse2") + QPoint(-20, 30)});
        QVERIFY2(done("Move node diffuse2"), qPrintable(history.undoText()));

        const QPoint across(0, 30);
        const QPoint first = user.middleOfEdgeInto("base_color_output");
        const QPoint second = user.middleOfEdgeInto("mtlxnormalmap4");
        const QPoint third = user.middleOfEdgeInto("normal_output");
        // Around all others, by the right border.
        const int right = window.view()->viewport()->width() - 5;
        QTest::keyPress(window.view(), Qt::Key_C);
        user.dragAlong({first + across, first - across, {right, first.y() - across.y()},
            {right, third.y() - across.y()}, third - across, third + across, second + across,
            second - across});
        QTest::keyRelease(window.view(), Qt::Key_C);
        QVERIFY2(done("Disconnect 3 Edges"), qPrintable(history.undoText()));
        QTest::qWait(100); // the key counts as held for a moment longer

        user.pull(user.output("normal2", "out"), user.input("normal_output", "normal_output"));
        QVERIFY2(done("Connect normal2.out to normal_output.normal_output"),
            qPrintable(history.undoText()));

        user.dragAlong(
            {user.header("mtlxnormalmap4"), user.middleOfEdgeInto("normal_output") + QPoint(0, 200),
                user.middleOfEdgeInto("normal_output")});
        QVERIFY2(done("Insert 'mtlxnormalmap4' into 'normal2.out'-'normal_output.normal_output'"),
            qPrintable(history.undoText()));
        QCOMPARE(user.node("normal_output")->inputs().constFirst()->sourceNode(),
            user.node("mtlxnormalmap4"));

        user.pull(
            user.input("roughness_output", "roughness_output"), user.output("metallic2", "out"));
        QVERIFY2(done("Moved output roughness_output.roughness_output from roughness2.out to "
                      "metallic2.out"),
            qPrintable(history.undoText()));
        user.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(text(), texts.at(texts.size() - 2));
        user.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(text(), texts.constLast());

        QVERIFY(window.isWindowModified());
        QVERIFY(window.save());
        QCOMPARE(contents(file), texts.constLast());
        for (int i = texts.size() - 1; i > 0; --i) {
            QCOMPARE(text(), texts.at(i));
            user.key(Qt::Key_Z, Qt::ControlModifier);
        }
        QVERIFY(window.isWindowModified());
        QVERIFY(window.save());
        QCOMPARE(contents(file), original);
        QVERIFY(!window.isWindowModified());
        while (history.canRedo())
            user.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(text(), texts.constLast());
        history.clear();
    }
};

QTEST_MAIN(tst_EditorSession)
#include "tst_EditorSession.moc"
