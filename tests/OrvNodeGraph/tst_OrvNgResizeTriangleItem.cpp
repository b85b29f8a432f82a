#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgBackdropNodeRectChangeUndo.h"
#include "OrvNodeGraph/OrvNgResizeTriangleItem.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCore/OrvUndoManager.h"
#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QUndoStack>
#include <QtTest>

#include <memory>

namespace {

const QRectF kFrame(-90, -70, 180, 140);

/// A shown view on one frame, named "Rust", that lies off the grid to which nodes snap.
struct Stage : ViewStage
{
    Stage()
    {
        m_Node->setPos(500, 500);
        m_Frame->resizeNode(kFrame.size());
        m_Scene.addItem(m_Frame);
        m_Frame->setPos(kFrame.topLeft());
        m_Frame->setTitleText(QStringLiteral("Rust"));
        OrvShaderNetworkManager::instance()->setSnapToGrid(true);
        stack().clear();
    }
    ~Stage()
    {
        stack().clear();
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    }

    static QUndoStack& stack() { return *OrvUndoManager::instance().undoStack(); }
    QRectF frame() const { return m_Frame->sceneBoundingRect(); }
    QPoint handle(int corner) const
    {
        const QPointF corners[]{{-86, -66}, {86, -66}, {-86, 66}, {86, 66}};
        return m_View.mapFromScene(corners[corner]);
    }
    void drag(int corner, const QPoint& offset)
    {
        const QPoint from = handle(corner);
        ViewStage::drag({from, from + offset / 2, from + offset});
        release(from + offset, Qt::LeftButton);
    }

    OrvNgBackdropNode* m_Frame = new OrvNgBackdropNode(nullptr);
};

} // namespace

class tst_OrvNgResizeTriangleItem : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void drag_movesTheCornerAndIsOneUndoStep_data()
    {
        const TestTable<int, QPoint, QRectF> row("corner", "offset", "frame");
        row("top left", Qt::TopLeftCorner, QPoint(7, -3), kFrame.adjusted(7, -3, 0, 0));
        row("top right", Qt::TopRightCorner, QPoint(7, -3), kFrame.adjusted(0, -3, 7, 0));
        row("bottom left", Qt::BottomLeftCorner, QPoint(-7, 3), kFrame.adjusted(-7, 0, 0, 3));
        row("bottom right", Qt::BottomRightCorner, QPoint(7, 3), kFrame.adjusted(0, 0, 7, 3));
        row("top left past the minimum", Qt::TopLeftCorner, QPoint(170, 130),
            QRectF(90 - 140, 70 - 90, 140, 90));
        row("bottom right past the minimum", Qt::BottomRightCorner, QPoint(-170, -130),
            QRectF(-90, -70, 140, 90));
        row("no motion", Qt::TopLeftCorner, QPoint(0, 0), kFrame);
    }
    void drag_movesTheCornerAndIsOneUndoStep()
    {
        QFETCH(int, corner);
        QFETCH(QPoint, offset);
        QFETCH(QRectF, frame);
        Stage stage;
        stage.drag(corner, offset);
        QCOMPARE(stage.frame(), frame);
        QVERIFY(OrvShaderNetworkManager::instance()->snapToGrid());
        QCOMPARE(Stage::stack().count(), 1);
        QCOMPARE(Stage::stack().undoText(), QStringLiteral("Resize Backdrop Node \"Rust\""));
        const QUndoCommand* step = Stage::stack().command(0);
        QCOMPARE(step->childCount(), 2);
        QCOMPARE(step->child(0)->text(), QStringLiteral("Resize node Rust"));
        QCOMPARE(step->child(1)->text(), QStringLiteral("Move node Rust"));

        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
        Stage::stack().undo();
        QCOMPARE(stage.frame(), kFrame);
        Stage::stack().redo();
        QCOMPARE(stage.frame(), frame);
    }

    void drag_thatLosesTheMouseIsTakenBack()
    {
        Stage stage;
        const QRectF before = stage.frame();
        const QPoint from = stage.handle(Qt::TopLeftCorner);
        stage.press(from, Qt::LeftButton);
        stage.move(from - QPoint(30, 20), Qt::LeftButton);
        QVERIFY(stage.frame() != before);
        stage.m_Frame->hide();
        QCOMPARE(stage.frame(), before);
        QCOMPARE(Stage::stack().count(), 0);
    }

    void undo_outlivesTheFrame()
    {
        auto stage = std::make_unique<Stage>();
        OrvNgBackdropNodeRectChangeUndo command(
            stage->m_Frame, QRectF(0, 0, 400, 300), QRectF(0, 0, 150, 100));
        command.undo();
        QCOMPARE(stage->m_Frame->boundingRect(), QRectF(0, 0, 400, 300));
        command.redo();
        QCOMPARE(stage->m_Frame->boundingRect(), QRectF(0, 0, 150, 100));
        stage->drag(Qt::TopLeftCorner, {0, 0});
        stage->m_Scene.clear();
        stage->m_Node = nullptr;
        command.undo();
        Stage::stack().undo();
        Stage::stack().redo();
        OrvNgBackdropNodeRectChangeUndo orphan(nullptr);
        orphan.redo();
        QCOMPARE(orphan.text(), QStringLiteral("Resize node "));
        QVERIFY(stage->m_Scene.items().isEmpty());
    }
};

QTEST_MAIN(tst_OrvNgResizeTriangleItem)
#include "tst_OrvNgResizeTriangleItem.moc"
