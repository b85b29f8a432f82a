#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/Literals.h"
#include "support/ViewStage.h"

#include "OrvCore/OrvUndoManager.h"

#include <QTimer>
#include <QUndoStack>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

OrvNgExtendedNode* addNode(QGraphicsScene& scene, const QPointF& pos)
{
    auto* node = new OrvNgExtendedNode(nullptr);
    scene.addItem(node);
    node->setPos(pos);
    for (const char* name : {"a", "b"})
        node->createInput(q(name), false, {});
    node->createOutputPoint(q("out"), true);
    node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
    return node;
}

/// A host that keeps its graph in a static: the scene dies after the application. The style is asked last of
/// all.
struct Static
{
    std::unique_ptr<QGraphicsScene> m_Scene = std::make_unique<QGraphicsScene>();
    float m_NodeHeight = OrvNgStyle::instance().getNodeHeight();

    Static()
    {
        OrvNgExtendedNode* source = addNode(*m_Scene, {});
        OrvNgExtendedNode* dest = addNode(*m_Scene, {300, 0});
        dest->input(q("a"))->setSourceNode(source, q("out"));
        dest->setSelected(true);
        m_Scene->addItem(new OrvNgBackdropNode(nullptr));
    }
    ~Static()
    {
        m_Scene.reset();
        if (m_NodeHeight != OrvNgStyle::instance().getNodeHeight())
            std::_Exit(EXIT_FAILURE);
    }
};
} // namespace

class tst_Teardown : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parts_dieInAnyOrder_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("order");
        for (const char* state : {"rest", "node", "edge", "band", "cut", "pan", "menu"}) {
            QString order = q("isv"); // items, scene, view
            do {
                QTest::newRow(qPrintable(q("%1, %2").arg(q(state), order))) << q(state) << order;
            } while (std::next_permutation(order.begin(), order.end()));
        }
    }

    /// In the middle of what the user does; nobody is told, no undo step is made and nothing stays.
    void parts_dieInAnyOrder()
    {
        QFETCH(QString, state);
        QFETCH(QString, order);
        static QStringList s_Warnings;
        s_Warnings.clear();
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type != QtDebugMsg && !text.contains(q("does not support")))
                s_Warnings.append(text);
        });
        QUndoStack* steps = OrvUndoManager::instance().undoStack();
        steps->clear();
        auto scene = std::make_unique<QGraphicsScene>();
        auto view = std::make_unique<TestView>();
        auto* frame = new OrvNgBackdropNode(nullptr);
        scene->addItem(frame);
        frame->setRect({-190, -90, 380, 180});
        const QPointer<OrvNgExtendedNode> source = addNode(*scene, {-180, -60});
        const QPointer<OrvNgExtendedNode> dest = addNode(*scene, {40, -60});
        dest->input(q("a"))->setSourceNode(source, q("out"));
        int heard = 0;
        for (OrvNgNode* node : {source.data(), dest.data()})
            connect(node, &OrvNgNode::inputSourceChanged, this, [&heard] { ++heard; });
        view->setScene(scene.get());
        view->show();
        view->init();
        view->centerViewOn({}, true);
        source->setSelected(true);

        const Qt::MouseButton held = state == q("pan") ? Qt::MiddleButton : Qt::LeftButton;
        const auto send = [&](QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button) {
            const QPoint pos = view->mapFromScene(scenePos);
            QMouseEvent event(type, pos, view->viewport()->mapToGlobal(pos), button, held, {});
            QApplication::sendEvent(view->viewport(), &event);
        };
        const QPointF port = source->outputPort(q("out"))->portRectMappedToScene().center();
        if (state == q("cut"))
            view->setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
        if (state == q("menu")) {
            QVERIFY(source->grabEdgeForPortUnderPos(port));
        } else if (state != q("rest")) {
            const QPointF from = state == q("edge") ? port
                : state == q("node")                ? dest->sceneBoundingRect().center()
                                                    : QPointF(0, 95);
            send(QEvent::MouseButtonPress, from, held);
            for (int i = 1; i < 5; ++i)
                send(QEvent::MouseMove, from - QPointF(7 * i, 30 * i), Qt::NoButton);
        }
        QCOMPARE(scene->mouseGrabberItem() != nullptr, q("node edge menu").contains(state));

        const auto tearDown = [&] {
            QCOMPARE(QApplication::activePopupWidget() != nullptr, state == q("menu"));
            for (const QChar part : order) {
                if (part == QLatin1Char('v'))
                    view.reset();
                else if (part == QLatin1Char('s'))
                    scene.reset();
                while (part == QLatin1Char('i') && scene && !scene->items().isEmpty())
                    delete scene->items().constFirst()->topLevelItem();
            }
        };
        if (state == q("menu")) { // the library waits in it, called by the host
            QTimer::singleShot(0, this, tearDown);
            source->temporaryOutputEdge()->releaseMouse(
                {}, dest->sceneBoundingRect().center(), false);
        } else {
            tearDown();
        }
        flushEvents();
        qInstallMessageHandler(nullptr);
        QVERIFY(!source && !dest && !scene && !view);
        QCOMPARE(heard, 0);
        QCOMPARE(steps->count(), 0);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
        QCOMPARE(s_Warnings, QStringList());
    }

    /// What it is about happens when main() has returned; a fault ends the program with a failure.
    void nodes_outliveTheApplication()
    {
        static Static s_Static;
        QCOMPARE(s_Static.m_Scene->selectedItems().size(), 1);
    }
};

QTEST_MAIN(tst_Teardown)
#include "tst_Teardown.moc"
