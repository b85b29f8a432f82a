#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCore/OrvUndoManager.h"

#include <QFocusEvent>
#include <QSignalSpy>
#include <QUndoStack>

namespace {

constexpr int kShift = Qt::ShiftModifier;
constexpr int kControl = Qt::ControlModifier;

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

/// Three sources in a row above one node; an edge each crosses the middle of the view.
struct CuttingStage : ViewStage
{
    QList<QPoint> m_Across{{5, 100}, {160, 104}, {230, 96}, {395, 100}};
    QList<OrvNgEdge*> m_Edges;

    CuttingStage()
    {
        m_Node->setPos(-50, 55);
        for (int i = 0; i < 3; ++i) {
            TestNode* source = add(q("source%1").arg(i), QPointF(-160 + 140 * i, -80));
            source->createOutputPoint(q("out"), false);
            m_Node->createInput(q("in%1").arg(i), false, {});
            m_Edges.append(m_Node->input(q("in%1").arg(i)));
            m_Edges.last()->setSourceNode(source, q("out"));
        }
        m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
        OrvUndoManager::instance().undoStack()->clear();
        flushEvents();
    }
    QColor color(int edge) { return m_Edges.at(edge)->mainEdge()->pen().color(); }
};

QString texts(const QList<QGraphicsItem*>& items, bool isSorted = false)
{
    QStringList all;
    for (QGraphicsItem* item : items) {
        if (auto* node = dynamic_cast<OrvNgNode*>(item))
            all += node->text();
    }
    if (isSorted)
        all.sort();
    return all.join(QString());
}

const char* const kEndings[] = {"focus", "hide", "no scene", "right button", "lost release"};

const struct Begin
{
    const char* m_Name;
    Qt::MouseButton m_Button;
    QPoint m_From, m_To;
    int m_Modifiers = 0;
} kBegins[] = {{"band", Qt::LeftButton, {5, 5}, {60, 190}},
    {"cut", Qt::LeftButton, {5, 50}, {390, 50}},
    {"cut, no path", Qt::RightButton, {5, 50}, {5, 50}},
    {"drag", Qt::LeftButton, {350, 100}, {340, 125}}, {"hover", Qt::NoButton, {90, 90}, {350, 100}},
    {"pan", Qt::MiddleButton, {50, 50}, {60, 60}},
    {"zoom", Qt::MiddleButton, {50, 50}, {60, 60}, Qt::AltModifier}};

} // namespace

class tst_OrvNgViewMouse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QVERIFY(QApplication::topLevelWidgets().isEmpty()); }

    void band_followsItsMode_data()
    {
        const TestTable<int, QString, QString, QString> row(
            "modifiers", "afterPress", "inBand", "afterLeaving");
        row("replace", 0, "", "AB", "");
        row("add", kShift, "CB", "ABC", "BC");
        row("remove", kControl, "CB", "C", "BC");
        row("toggle", kShift | kControl, "CB", "AC", "BC");
    }

    /// A and B are in the band, B and C were selected before, C first; D is neither.
    void band_followsItsMode()
    {
        QFETCH(int, modifiers);
        ViewStage stage;
        stage.add(q("A"), {-180, -50});
        TestNode* b = stage.add(q("B"), {-150, -50});
        TestNode* c = stage.add(q("C"), {150, -50});
        stage.add(q("D"), {150, 50});
        static_cast<QGraphicsItem*>(c)->setSelected(true);
        static_cast<QGraphicsItem*>(b)->setSelected(true);
        const auto selected
            = [&](bool isSorted) { return texts(stage.m_View.sortedSelection(), isSorted); };

        stage.press({2, 2}, Qt::LeftButton, modifiers);
        QTEST(selected(false), "afterPress");
        stage.move({4, 3}, Qt::LeftButton, modifiers); // not far enough for a band
        QTEST(selected(false), "afterPress");
        stage.move({20, 198}, Qt::LeftButton, modifiers);
        stage.move({100, 198}, Qt::LeftButton, modifiers);
        QTEST(selected(true), "inBand");
        stage.move({100, 20}, Qt::LeftButton, modifiers);
        QTEST(selected(true), "afterLeaving");
        stage.move({100, 198}, Qt::LeftButton, modifiers);
        stage.release({100, 198}, Qt::LeftButton);
        stage.move({399, 199}, Qt::NoButton);
        QTEST(selected(true), "inBand");
    }

    /// What was selected at the press goes while the band is open; then a slot deletes one of the
    /// nodes that one move selects.
    void band_survivesDeletedItems()
    {
        ViewStage stage;
        QGraphicsItem* rectangle = stage.m_Scene.addRect(100, 50, 20, 20);
        for (QGraphicsItem* item :
            QList<QGraphicsItem*>{rectangle, stage.m_Node->box(), stage.add(q("K"), {150, 80})}) {
            item->setFlag(QGraphicsItem::ItemIsSelectable);
            item->setSelected(true);
        }
        stage.drag({{2, 2}, {20, 20}}, kShift);
        delete rectangle;
        delete stage.m_Node; // and with it the part
        stage.move({25, 25}, Qt::LeftButton, kShift);
        QCOMPARE(texts(stage.m_View.sortedSelection()), q("K"));

        QList<QPointer<TestNode>> pair{
            stage.add(q("A"), {-180, -50}), stage.add(q("B"), {-150, -50})};
        connect(&stage.m_Scene, &QGraphicsScene::selectionChanged, &stage.m_View, [&] {
            if (pair.at(0) && pair.at(1))
                delete pair.at(pair.at(0)->isSelected() ? 1 : 0);
        });
        stage.move({100, 198}, Qt::LeftButton, kShift);
        QCOMPARE(stage.m_View.sortedSelection().size(), 2);
    }

    void everyGesture_endsWithItsView_data()
    {
        QTest::addColumn<int>("begin");
        QTest::addColumn<QString>("ending");
        for (int i = 0; i < 7; ++i) {
            for (const char* ending : kEndings)
                QTest::addRow("%s, %s", kBegins[i].m_Name, ending) << i << q(ending);
        }
    }

    void everyGesture_endsWithItsView()
    {
        QFETCH(int, begin);
        QFETCH(QString, ending);
        CuttingStage stage;
        TestView& view = stage.m_View;
        view.setShakeDetectionEnabled(true);
        TestNode* node = stage.add(q("N"), {120, -20}, {60, 40});
        const Begin& b = kBegins[begin];
        view.setCursorTrackingMode(q(b.m_Name).startsWith(q("cut"))
                ? OrvNgView::CURSOR_TRACKING_SEVER_EDGES
                : OrvNgView::CURSOR_TRACKING_NONE);
        if (b.m_Button)
            stage.press(b.m_From, b.m_Button, b.m_Modifiers);
        for (const QPoint& pos : {(b.m_From + b.m_To) / 2, b.m_To})
            stage.move(pos, b.m_Button);

        if (ending == q("focus")) {
            QFocusEvent event(QEvent::FocusOut);
            QApplication::sendEvent(&view, &event);
        } else if (ending == q("hide")) {
            view.hide();
            view.show();
            QVERIFY(!stage.m_Scene.mouseGrabberItem());
        } else if (ending == q("no scene")) {
            view.setScene(nullptr);
        } else if (ending == q("lost release")) {
            view.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
            QVERIFY(stage.isAtRest());
        } else {
            stage.press({100, 30}, Qt::RightButton);
            stage.release({100, 30}, Qt::RightButton);
        }
        QVERIFY((ending != q("focus") && ending != q("hide")) || !node->hovered());
        stage.move({120, 120}, Qt::LeftButton);
        stage.release({120, 120}, Qt::LeftButton);
        stage.release({120, 120}, Qt::MiddleButton);
        stage.move({3, 3}, Qt::NoButton);
        QVERIFY(!view.drawingEdgeSeverPath());
        QVERIFY(view.cursorTrackingMode() != OrvNgView::CURSOR_TRACKING_SHAKE);

        // All is as before: a band selects what it meets.
        stage.m_Scene.clearSelection();
        delete node;
        view.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
        view.setScene(&stage.m_Scene);
        view.centerViewOn(QPointF(0, 0), true);
        QVERIFY(stage.isAtRest());
        stage.drag({{399, 50}, {380, 60}, {2, 199}});
        QCOMPARE(texts(view.sortedSelection()), q("node"));
        stage.release({2, 199}, Qt::LeftButton);
    }

    void hover_goesFromNodeToNode()
    {
        ViewStage stage;
        TestNode* beside = stage.add(q("B"), {-150, -50});
        QPointer<TestNode> third = stage.add(q("C"), {150, -50});
        stage.move({200, 100}, Qt::NoButton);
        stage.move({60, 60}, Qt::NoButton);
        QVERIFY(!stage.m_Node->hovered() && beside->hovered());
        connect(beside, &OrvNgNode::hoveredChanged, &stage.m_View, [&] { delete third; });
        stage.move({360, 60}, Qt::NoButton); // the node under the cursor goes in this move
        QVERIFY(!beside->hovered());
        stage.move({200, 100}, Qt::NoButton);
        QVERIFY(stage.m_Node->hovered());
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(&stage.m_View, &leave);
        QVERIFY(!stage.m_Node->hovered());
    }

    void shake_isToldOnceADrag()
    {
        ViewStage stage;
        QCursor::setPos(stage.m_View.mapToGlobal(QPoint(200, 100))); // away from the border
        const QSignalSpy shaken(&stage.m_View, &OrvNgView::shakeToExtractTriggered);
        QList<QPoint> way{{200, 100}};
        for (int i = 0; i < 14; ++i)
            way.append({i % 2 ? 180 : 240, 100});
        stage.drag(way);
        stage.release(way.last(), Qt::LeftButton);
        QCOMPARE(shaken.size(), 0); // off unless switched on
        stage.m_Node->setPos(-50, -20);
        stage.m_View.setShakeDetectionEnabled(true);
        stage.drag(way);
        QCOMPARE(shaken.size(), 1);
        stage.release(way.last(), Qt::LeftButton);
    }

    void cut_freesTheInputsInOneStep()
    {
        CuttingStage stage;
        const QColor plain = stage.color(0);
        QStringList freed;
        connect(stage.m_Node, &OrvNgNode::inputSourceChanged, &stage.m_View,
            [&](OrvNgNode* source, const QString&, const QString& input) {
                freed.append(source ? q("?") : input);
                OrvUndoManager::instance().push(new QUndoCommand);
            });
        stage.drag(stage.m_Across.mid(0, 2));
        QCOMPARE(stage.color(0), OrvNgStyle::instance().getSeveredEdgeColor());
        QCOMPARE(stage.color(1), plain);
        stage.m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE); // the key is let go
        stage.release(stage.m_Across.last(), Qt::LeftButton);
        QCOMPARE(stage.color(0), plain);
        QVERIFY(freed.isEmpty());

        stage.m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
        stage.press(stage.m_Across.first(), Qt::LeftButton);
        stage.release(stage.m_Across.first(), Qt::LeftButton);
        auto* stack = OrvUndoManager::instance().undoStack();
        QCOMPARE(stack->count(), 0);

        stage.drag(stage.m_Across);
        QVERIFY(stage.wheel(0, 120)); // swallowed
        QCOMPARE(stage.m_View.scaleNow(), 1.0);
        stage.release(stage.m_Across.last(), Qt::LeftButton);
        QVERIFY(!stage.m_Edges.at(0)->isFullConnected());
        freed.sort();
        QCOMPARE(freed, (QStringList{q("in0"), q("in1"), q("in2")}));
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->undoText(), q("Disconnect 3 Edges"));
        QCOMPARE(stage.m_View.cursorTrackingMode(), OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
    }

    void cut_survivesAHostThatClearsTheScene()
    {
        CuttingStage stage;
        int notified = 0;
        connect(stage.m_Node, &OrvNgNode::inputSourceChanged, &stage.m_View, [&] {
            ++notified;
            for (OrvNgEdge* edge : qAsConst(stage.m_Edges)) {
                if (edge->isFullConnected())
                    edge->destroy();
            }
            flushEvents();
        });
        stage.drag(stage.m_Across);
        stage.release(stage.m_Across.last(), Qt::LeftButton);
        QCOMPARE(notified, 1);
        QCOMPARE(stage.m_Node->inputCount(), 1);
    }

    void pickUpEdge_carriesAndDrops()
    {
        ViewStage stage;
        delete stage.m_Node;
        auto* node = new OrvNgExtendedNode(nullptr);
        stage.m_Scene.addItem(node);
        node->createInput(q("a"), false, {});
        node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
        flushEvents();
        OrvNgPort* port = node->inputPort(q("a"));
        const QPoint pos = stage.m_View.mapFromScene(port->mapToScene(port->portRect().center()));
        stage.m_View.pickUpEdge(pos);
        OrvNgEdge* edge = node->input(q("a"));
        QVERIFY(edge->isGrabbedFromPort());
        stage.move(pos + QPoint(150, 60), Qt::NoButton);
        QCOMPARE(stage.m_Scene.mouseGrabberItem(), edge); // it needs no button
        stage.m_View.pickUpEdge(pos + QPoint(150, 60));
        QVERIFY(!edge->isGrabbedFromPort() && !stage.m_Scene.mouseGrabberItem());

        // The menu of a drop takes the focus and gives it back; whoever else takes it ends the drag.
        stage.m_View.pickUpEdge(pos);
        for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
            QVERIFY(edge->isGrabbedFromPort());
            QFocusEvent event(QEvent::FocusOut, reason);
            QCoreApplication::sendEvent(&stage.m_View, &event);
        }
        QVERIFY(!edge->isDragging() && !stage.m_Scene.mouseGrabberItem());
    }
};

QTEST_MAIN(tst_OrvNgViewMouse)
#include "tst_OrvNgViewMouse.moc"
