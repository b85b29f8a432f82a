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

#include <functional>
#include <memory>

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
    int connectedEdges() const
    {
        return int(std::count_if(m_Edges.cbegin(), m_Edges.cend(),
            [](OrvNgEdge* edge) { return edge->isFullConnected(); }));
    }
    QColor color(int edge) { return m_Edges.at(edge)->mainEdge()->pen().color(); }
};

QString texts(const QList<QGraphicsItem*>& items)
{
    QString all;
    for (QGraphicsItem* item : items) {
        if (auto* node = dynamic_cast<OrvNgNode*>(item))
            all += node->text();
    }
    return all;
}

QString sorted(QString text)
{
    std::sort(text.begin(), text.end());
    return text;
}

using Begin = std::function<void(ViewStage&)>;

} // namespace

Q_DECLARE_METATYPE(Begin)

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
        const auto selected = [&] { return texts(stage.m_View.sortedSelection()); };

        stage.press({2, 2}, Qt::LeftButton, modifiers);
        QTEST(selected(), "afterPress");
        stage.move({4, 3}, Qt::LeftButton, modifiers); // not far enough for a band
        QTEST(selected(), "afterPress");
        stage.move({20, 198}, Qt::LeftButton, modifiers);
        stage.move({100, 198}, Qt::LeftButton, modifiers);
        QTEST(sorted(selected()), "inBand");
        stage.move({100, 20}, Qt::LeftButton, modifiers);
        QTEST(sorted(selected()), "afterLeaving");
        stage.move({100, 198}, Qt::LeftButton, modifiers);
        stage.release({100, 198}, Qt::LeftButton);
        stage.move({399, 199}, Qt::NoButton);
        QTEST(sorted(selected()), "inBand");
    }

    /// What was selected at the press goes while the band is open; then a slot deletes one of the
    /// nodes that one move selects.
    void band_survivesDeletedItems()
    {
        ViewStage stage;
        QGraphicsItem* rectangle = stage.m_Scene.addRect(100, 50, 20, 20);
        TestNode* kept = stage.add(q("K"), {150, 80});
        for (QGraphicsItem* item : {rectangle, static_cast<QGraphicsItem*>(stage.m_Node->box()),
                 static_cast<QGraphicsItem*>(kept)}) {
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
        int deletions = 0;
        connect(&stage.m_Scene, &QGraphicsScene::selectionChanged, &stage.m_View, [&] {
            for (int i = 0; i < 2 && !deletions; ++i) {
                if (pair.at(i)->isSelected() && ++deletions)
                    delete pair.at(1 - i);
            }
        });
        stage.move({100, 198}, Qt::LeftButton, kShift);
        QCOMPARE(deletions, 1);
        QCOMPARE(stage.m_View.sortedSelection().size(), 2);
    }

    void everyGesture_endsWithItsView_data()
    {
        const TestTable<Begin, QString> row("begin", "ending");
        const auto onEmpty = [](ViewStage& s) { s.drag({{5, 5}, {30, 30}, {60, 190}}); };
        const auto cutting = [](ViewStage& s) {
            s.m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
            s.drag({{5, 50}, {100, 60}, {390, 50}});
        };
        const auto dragging = [](ViewStage& s) { s.drag({{200, 100}, {230, 110}, {190, 95}}); };
        const auto hovering = [](ViewStage& s) { s.move({200, 100}, Qt::NoButton); };
        const auto panning = [](ViewStage& s) {
            s.press({50, 50}, Qt::MiddleButton);
            s.move({60, 60}, Qt::MiddleButton);
        };
        const auto zooming = [](ViewStage& s) {
            s.press({50, 50}, Qt::MiddleButton, Qt::AltModifier);
            s.move({60, 60}, Qt::MiddleButton);
        };
        const auto holdingRight = [](ViewStage& s) {
            s.m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
            s.press({5, 50}, Qt::RightButton);
        };
        const QList<QPair<const char*, Begin>> begins{{"band", onEmpty}, {"cut", cutting},
            {"cut without path", holdingRight}, {"drag", dragging}, {"hover", hovering},
            {"pan", panning}, {"zoom", zooming}};
        for (const auto& begin : begins) {
            for (const char* ending : {"focus", "hide", "no scene", "other scene", "deleted scene",
                     "right button", "lost release"})
                row(qPrintable(q("%1, %2").arg(q(begin.first), q(ending))), begin.second, ending);
        }
    }

    void everyGesture_endsWithItsView()
    {
        QFETCH(Begin, begin);
        QFETCH(QString, ending);
        auto scene = std::make_unique<QGraphicsScene>();
        QGraphicsScene other;
        CuttingStage stage;
        TestView& view = stage.m_View;
        view.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
        view.setShakeDetectionEnabled(true);
        // In a scene that can go before the view.
        auto* node = new TestNode(q("N"));
        scene->addItem(node);
        node->setPos(-50, -20);
        other.addRect(-400, -400, 800, 800)->setPen(Qt::NoPen);
        view.setScene(scene.get());
        view.centerViewOn(QPointF(0, 0), true);
        begin(stage);

        if (ending == q("focus")) {
            QFocusEvent event(QEvent::FocusOut);
            QApplication::sendEvent(&view, &event);
            QVERIFY(!node->hovered());
        } else if (ending == q("hide")) {
            view.hide();
            view.show();
            QVERIFY(!scene->mouseGrabberItem());
            QVERIFY(!node->hovered());
        } else if (ending == q("no scene")) {
            view.setScene(nullptr);
        } else if (ending == q("other scene")) {
            view.setScene(&other);
        } else if (ending == q("deleted scene")) {
            scene.reset();
        } else if (ending == q("lost release")) {
            view.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
            QVERIFY(stage.isAtRest());
        } else {
            stage.press({100, 30}, Qt::RightButton);
            stage.release({100, 30}, Qt::RightButton);
        }
        stage.move({120, 120}, Qt::LeftButton);
        stage.release({120, 120}, Qt::LeftButton);
        stage.release({120, 120}, Qt::MiddleButton);
        stage.move({3, 3}, Qt::NoButton);
        QVERIFY(!view.drawingEdgeSeverPath());
        QVERIFY(view.cursorTrackingMode() != OrvNgView::CURSOR_TRACKING_SHAKE);

        // All is as before: a band selects what it meets.
        view.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
        view.setScene(&stage.m_Scene);
        view.centerViewOn(QPointF(0, 0), true);
        QVERIFY(stage.isAtRest());
        stage.drag({{399, 50}, {380, 60}, {2, 70}});
        stage.release({2, 70}, Qt::LeftButton);
        QCOMPARE(view.sortedSelection().size(), 0);
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
        QVERIFY(stage.m_Node->hovered());
        stage.move({60, 60}, Qt::NoButton);
        QVERIFY(!stage.m_Node->hovered());
        QVERIFY(beside->hovered());
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
        const QImage clean = stage.picture();
        QStringList freed;
        connect(stage.m_Node, &OrvNgNode::inputSourceChanged, &stage.m_View,
            [&](OrvNgNode* source, const QString&, const QString& input) {
                freed.append(source ? q("?") : input);
                OrvUndoManager::instance().push(new QUndoCommand);
            });
        stage.drag(stage.m_Across.mid(0, 2));
        const QColor severed = OrvNgStyle::instance().getSeveredEdgeColor();
        QCOMPARE(stage.color(0), severed);
        QCOMPARE(stage.color(1), plain);
        stage.m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE); // the key is let go
        stage.release(stage.m_Across.last(), Qt::LeftButton);
        QCOMPARE(stage.color(0), plain);
        QCOMPARE(stage.connectedEdges(), 3);

        stage.m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
        stage.press(stage.m_Across.first(), Qt::LeftButton);
        stage.release(stage.m_Across.first(), Qt::LeftButton);
        auto* stack = OrvUndoManager::instance().undoStack();
        QCOMPARE(stack->count(), 0);

        stage.drag(stage.m_Across);
        const QImage drawn = stage.picture();
        QVERIFY(drawn.copy(80, 95, 20, 15) != clean.copy(80, 95, 20, 15));
        QCOMPARE(drawn.copy(80, 120, 20, 60), clean.copy(80, 120, 20, 60));
        QVERIFY(stage.wheel(0, 120)); // swallowed
        QCOMPARE(stage.m_View.scaleNow(), 1.0);
        stage.release(stage.m_Across.last(), Qt::LeftButton);
        QCOMPARE(stage.connectedEdges(), 0);
        freed.sort();
        QCOMPARE(freed, (QStringList{q("in0"), q("in1"), q("in2")}));
        QCOMPARE(stack->count(), 1);
        QCOMPARE(stack->undoText(), q("Disconnect 3 Edges"));
        QVERIFY(stage.m_View.isInteractive());
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
        QVERIFY(stage.m_View.isInteractive());
    }

    void pickUpEdge_carriesAndDrops()
    {
        ViewStage stage;
        stage.m_Node->setPos(-5000, 0);
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
        QCOMPARE(stage.m_Scene.mouseGrabberItem(), edge);
        stage.move(pos + QPoint(150, 60), Qt::NoButton);
        QCOMPARE(stage.m_Scene.mouseGrabberItem(), edge); // it needs no button
        stage.m_View.pickUpEdge(pos + QPoint(150, 60));
        QVERIFY(!edge->isGrabbedFromPort());
        QVERIFY(!stage.m_Scene.mouseGrabberItem());

        // The menu of a drop takes the focus and gives it back; whoever else takes it ends the drag.
        stage.m_View.pickUpEdge(pos);
        for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
            QVERIFY(edge->isGrabbedFromPort());
            QFocusEvent event(QEvent::FocusOut, reason);
            QCoreApplication::sendEvent(&stage.m_View, &event);
        }
        QVERIFY(!edge->isDragging());
        QVERIFY(!stage.m_Scene.mouseGrabberItem());
    }
};

QTEST_MAIN(tst_OrvNgViewMouse)
#include "tst_OrvNgViewMouse.moc"
