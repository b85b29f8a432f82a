#include "editor/EditorNavigator.h"
#include "editor/EditorTesting.h"
#include "editor/EditorUser.h"
#include "editor/EditorWindow.h"

#include <OrvCore/OrvUndoManager.h>

#include <QTemporaryDir>
#include <QUndoStack>

using namespace EditorTesting;

namespace {

const char kChessSet[]
    = "resources/Materials/Examples/StandardSurface/standard_surface_chess_set.mtlx";

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

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
        EditorUser user(window.view());
        const auto middleOfEdgeInto = [&user](const char* name) {
            for (OrvNgEdge* edge : user.node(name)->inputs()) {
                if (edge->isFullConnected())
                    return user.atMiddle(edge);
            }
            return QPoint();
        };
        const auto type = [&window](Qt::Key key, Qt::KeyboardModifiers modifiers) {
            QTest::keyClick(window.view(), key, modifiers);
            flush();
        };

        user.dragAlong({user.atHeader("diffuse2"), user.atHeader("diffuse2") + QPoint(-20, 30)});
        QVERIFY2(done("Move node diffuse2"), qPrintable(history.undoText()));

        const QPoint across(0, 30);
        const QPoint first = middleOfEdgeInto("base_color_output");
        const QPoint second = middleOfEdgeInto("mtlxnormalmap4");
        const QPoint third = middleOfEdgeInto("normal_output");
        // Around all others, by the right border.
        const int right = window.view()->viewport()->width() - 5;
        QTest::keyPress(window.view(), Qt::Key_C);
        user.dragAlong({first + across, first - across, {right, first.y() - across.y()},
            {right, third.y() - across.y()}, third - across, third + across, second + across,
            second - across});
        QTest::keyRelease(window.view(), Qt::Key_C);
        QVERIFY2(done("Disconnect 3 Edges"), qPrintable(history.undoText()));
        QTest::qWait(100); // the key counts as held for a moment longer

        user.connectPorts(
            user.atPort("normal2", "out"), user.atPort("normal_output", "normal_output"));
        QVERIFY2(done("Connect normal2.out to normal_output.normal_output"),
            qPrintable(history.undoText()));

        user.dragAlong({user.atHeader("mtlxnormalmap4"),
            middleOfEdgeInto("normal_output") + QPoint(0, 200), middleOfEdgeInto("normal_output")});
        QVERIFY2(done("Insert 'mtlxnormalmap4' into 'normal2.out'-'normal_output.normal_output'"),
            qPrintable(history.undoText()));
        QCOMPARE(user.node("normal_output")->inputs().constFirst()->sourceNode(),
            user.node("mtlxnormalmap4"));

        user.connectPorts(
            user.atPort("roughness_output", "roughness_output"), user.atPort("metallic2", "out"));
        QVERIFY2(done("Moved output roughness_output.roughness_output from roughness2.out to "
                      "metallic2.out"),
            qPrintable(history.undoText()));
        type(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(text(), texts.at(texts.size() - 2));
        type(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(text(), texts.constLast());

        QVERIFY(window.isWindowModified());
        QVERIFY(window.save());
        QCOMPARE(contents(file), texts.constLast());
        for (int i = texts.size() - 1; i > 0; --i) {
            QCOMPARE(text(), texts.at(i));
            type(Qt::Key_Z, Qt::ControlModifier);
        }
        QVERIFY(window.isWindowModified());
        QVERIFY(window.save());
        QCOMPARE(contents(file), original);
        QVERIFY(!window.isWindowModified());
        while (history.canRedo())
            type(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(text(), texts.constLast());
        history.clear();
    }
};

QTEST_MAIN(tst_EditorSession)
#include "tst_EditorSession.moc"
