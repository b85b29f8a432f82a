#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCore/OrvUndoManager.h"

#include <QAction>
#include <QGraphicsPathItem>
#include <QMenu>
#include <QScopeGuard>
#include <QTimer>
#include <QUndoStack>

#include <functional>

namespace {

/// An extended node that may refuse sources.
class Node : public OrvNgExtendedNode
{
public:
    explicit Node(const QString& name)
        : OrvNgExtendedNode(nullptr)
    {
        setText(name);
        setPortListMode(PORT_LIST_EXPANDED);
    }
    ~Node() override { aboutToBeDestroyed(); }
    bool acceptsInputSource(OrvNgNode* source, const QString&, const QString&) override
    {
        return source->text() != QLatin1String("Odd");
    }
};

/// A network in a view: S feeds x of N and the only input of D; all other inputs are free. The host writes
/// down what it hears and keeps an undo step for each change.
class Rig
{
public:
    QGraphicsScene m_Scene;
    TestView m_View;
    QHash<QString, QPointer<Node>> m_Nodes;
    QStringList m_Heard;
    QPointer<OrvNgEdge> m_Edge;
    std::function<void()> m_OnHeard = [] {};
    QPoint m_Cursor;

    Rig()
    {
        OrvUndoManager::instance().undoStack()->clear();
        m_View.resize(1000, 700);
        add("S", "", "o p", -450, -300);
        add("R", "", "a b", -450, 0);
        add("Odd", "", "o", -450, 200);
        add("N", "x z", "n", 250, -300);
        add("M", "y w", "", 250, -100);
        add("D", "only", "", 250, 60);
        add("K", "in", "out", -100, 200);
        m_Edge = connectInput("N", "x", "S", "o");
        connectInput("D", "only", "S", "p");
        m_View.setScene(&m_Scene);
        m_View.show();
        m_View.init();
        m_View.centerViewOn(QPointF(0, 0), true);
        if (!QTest::qWaitForWindowExposed(&m_View))
            qFatal("the view is not shown");
        // Far from the border, near which the view would scroll.
        QCursor::setPos(m_View.mapToGlobal(m_View.rect().center()));
        flushEvents();
    }
    ~Rig()
    {
        m_Scene.clear();
        flushEvents();
    }
    Q_DISABLE_COPY(Rig)

    Node* operator[](const char* name) const { return m_Nodes.value(QLatin1String(name)); }

    // Places, in scene coordinates

    QPointF onEdge(double share) const { return m_Edge->mainEdge()->path().pointAtPercent(share); }
    QPointF inPort(const char* node, const char* name) const
    {
        return centre((*this)[node]->inputPort(QLatin1String(name)));
    }
    QPointF outPort(const char* node, const char* name) const
    {
        return centre((*this)[node]->outputPort(QLatin1String(name)));
    }
    QPointF header(const char* node) const
    {
        Node* item = (*this)[node];
        return item->mapToScene(item->nodeShapeRect().center());
    }
    static QPointF nowhere() { return {0, 320}; }

    // The mouse

    void press(const QPointF& scenePos, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, scenePos, button, button);
    }
    void moveTo(const QPointF& scenePos, Qt::MouseButtons held = Qt::LeftButton)
    {
        send(QEvent::MouseMove, scenePos, Qt::NoButton, held);
    }
    void release(const QPointF& scenePos, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, scenePos, button, Qt::NoButton);
    }
    void carry(const QPointF& from, const QPointF& to)
    {
        press(from);
        moveTo((from + to) / 2);
        moveTo(to);
    }
    void drag(const QPointF& from, const QPointF& to)
    {
        carry(from, to);
        release(to);
    }
    /// Pulls an edge out of a port, lets go, and presses elsewhere.
    void pull(const QPointF& port, const QPointF& to, Qt::MouseButton button = Qt::LeftButton)
    {
        drag(port, to);
        if (!m_Scene.mouseGrabberItem())
            qFatal("the edge does not stay on the cursor");
        moveTo(to, Qt::NoButton);
        press(to, button);
        release(to, button);
    }
    /// What is done to the menu that the next drop opens: an entry is chosen, or null: it is closed.
    void inMenu(
        const char* entry, std::function<void()> before = [] {})
    {
        const QString text = QLatin1String(entry);
        QTimer::singleShot(0, &m_View, [this, text, before] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                qFatal("no menu is open");
            m_MenuEntries.clear();
            for (const QAction* action : menu->actions())
                m_MenuEntries.append(
                    (action->isChecked() ? QStringLiteral("*") : QString()) + action->text());
            before();
            for (QAction* action : menu->actions()) {
                if (action->text() == text)
                    action->trigger();
            }
            menu->close();
        });
    }

    // The outcome

    QString connections() const
    {
        QStringList all;
        for (const QPointer<Node>& node : m_Nodes) {
            if (!node || node->isBeingDeleted())
                continue;
            for (OrvNgEdge* edge : node->inputs()) {
                if (edge->destNode() != node)
                    all.append(
                        QStringLiteral("%1.%2 is not at home").arg(node->text(), edge->text()));
                if (edge->sourceNode())
                    all.append(QStringLiteral("%1.%2=%3.%4")
                                   .arg(node->text(), edge->text(), edge->sourceNode()->text(),
                                       edge->sourceOutputPoint()));
            }
        }
        all.sort();
        all.removeOne(QStringLiteral("D.only=S.p"));
        return all.join(QLatin1Char(' '));
    }
    static QString undoTexts()
    {
        QStringList texts;
        const QUndoStack* stack = OrvUndoManager::instance().undoStack();
        for (int i = 0; i < stack->count(); ++i)
            texts.append(stack->text(i));
        return texts.join(QLatin1Char(' '));
    }
    QStringList m_MenuEntries;

    OrvNgEdge* connectInput(
        const char* node, const char* input, const char* source, const char* output)
    {
        OrvNgEdge* edge = (*this)[node]->input(QLatin1String(input));
        edge->setSourceNode((*this)[source], QLatin1String(output));
        return edge;
    }

private:
    void add(const char* name, const char* inputs, const char* outputs, double x, double y)
    {
        auto* node = new Node(QLatin1String(name));
        m_Scene.addItem(node);
        node->setPos(x, y);
        for (const QString& input : words(inputs))
            node->createInput(input, false, {});
        for (const QString& output : words(outputs))
            node->createOutputPoint(output, true);
        node->setPortListMode(Node::PORT_LIST_EXPANDED);
        m_Nodes.insert(node->text(), node);
        QObject::connect(node, &OrvNgNode::inputSourceChanged, &m_View,
            [this, node](OrvNgNode* source, const QString& output, const QString& input) {
                hear(QStringLiteral("%1.%2=%3")
                         .arg(node->text(), input,
                             source ? source->text() + QLatin1Char('.') + output
                                    : QStringLiteral("none")));
            });
        QObject::connect(node, &OrvNgNode::inputSourceRefused, &m_View,
            [this, node](OrvNgNode* source, const QString&, const QString& input) {
                m_Heard.append(QStringLiteral("%1.%2!%3").arg(node->text(), input, source->text()));
            });
    }
    static QStringList words(const char* text)
    {
        return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    void hear(const QString& what)
    {
        m_Heard.append(what);
        OrvUndoManager::instance().push(new QUndoCommand(what));
        m_OnHeard();
    }
    static QPointF centre(OrvNgPort* port) { return port->mapToScene(port->portRect().center()); }
    void send(QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
        Qt::MouseButtons buttons)
    {
        m_Cursor = m_View.mapFromScene(scenePos);
        QCursor::setPos(
            m_View.viewport()->mapToGlobal(m_Cursor)); // the view scrolls near its border
        QMouseEvent event(type, m_Cursor, m_View.viewport()->mapToGlobal(m_Cursor), button, buttons,
            Qt::NoModifier);
        QApplication::sendEvent(m_View.viewport(), &event);
    }
};

using Script = std::function<void(Rig&)>;

} // namespace

Q_DECLARE_METATYPE(Script)

class tst_OrvNgEdgeDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edgeFollowsItsStateTable_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<QString>("connections");
        QTest::addColumn<QString>("heard");
        QTest::addColumn<QString>("undo");
        QTest::addColumn<QString>("report");
        const auto row = [](const char* name, const char* connections, const char* heard,
                             const char* undo, const char* report, const Script& script) {
            const auto text = [](const char* chars) { return QString::fromLatin1(chars); };
            QTest::newRow(name) << script << text(connections) << text(heard) << text(undo)
                                << text(report);
        };
        const char* const toSource = "Detaching at source output point 'o'";
        const char* const toDest = "Detaching at dest input point 'x'";
        const char* const gone = "Removed temp edge 'o'";

        // The source end of the edge itself
        row("source end to another output", "N.x=R.a", "N.x=R.a",
            "Moved output N.x from S.o to R.a", toSource,
            [](Rig& r) { r.drag(r.onEdge(0.04), r.outPort("R", "a")); });
        row("source end back to its output", "N.x=S.o", "", "", toSource,
            [](Rig& r) { r.drag(r.onEdge(0.04), r.outPort("S", "o")); });
        row("source end to nothing", "", "N.x=none", "N.x=none", toSource,
            [](Rig& r) { r.drag(r.onEdge(0.04), Rig::nowhere()); });
        row("source end to the own node", "N.x=S.o", "", "", toSource,
            [](Rig& r) { r.drag(r.onEdge(0.04), r.header("N")); });
        row("source end to a node without outputs", "N.x=S.o", "", "",
            "has NO OUTPUT to connect to!", [](Rig& r) { r.drag(r.onEdge(0.04), r.header("M")); });
        row("source end, output from the menu", "N.x=R.b", "N.x=R.b",
            "Moved output N.x from S.o to R.b", toSource, [](Rig& r) {
                r.inMenu("b");
                r.drag(r.onEdge(0.04), r.header("R"));
            });
        row("source end, menu closed", "N.x=S.o", "", "", toSource, [](Rig& r) {
            r.inMenu("");
            r.drag(r.onEdge(0.04), r.header("R"));
        });
        row("source end, refused by the host", "N.x=S.o", "N.x!Odd", "", toSource,
            [](Rig& r) { r.drag(r.onEdge(0.04), r.outPort("Odd", "o")); });
        row("source dies while its end is carried", "", "N.x=none", "N.x=none", toSource,
            [](Rig& r) {
                r.carry(r.onEdge(0.04), r.header("N"));
                r["S"]->destroy();
                flushEvents();
                r.release(r.header("N"));
            });

        // The destination end of the edge itself
        row("dest end to another node", "M.y=S.o", "N.x=none M.y=S.o",
            "Moved output S.o from N.x to M.y", toDest,
            [](Rig& r) { r.drag(r.onEdge(0.97), r.inPort("M", "y")); });
        row("dest end to a taken input", "M.y=S.o", "N.x=none M.y=S.o",
            "Moved output S.o from N.x to M.y", toDest, [](Rig& r) {
                r.connectInput("M", "y", "R", "a");
                r.drag(r.onEdge(0.97), r.inPort("M", "y"));
            });
        row("dest end back home", "N.x=S.o", "", "", toDest,
            [](Rig& r) { r.drag(r.onEdge(0.97), r.inPort("N", "x")); });
        row("dest end to another input of its node", "N.z=S.o", "N.x=none N.z=S.o",
            "Moved output S.o from N.x to N.z", toDest,
            [](Rig& r) { r.drag(r.onEdge(0.97), r.inPort("N", "z")); });
        row("dest end to nothing", "", "N.x=none", "N.x=none", toDest,
            [](Rig& r) { r.drag(r.onEdge(0.97), Rig::nowhere()); });
        row("dest end to the own source", "N.x=S.o", "", "", toDest,
            [](Rig& r) { r.drag(r.onEdge(0.97), r.header("S")); });
        row("dest end to a locked input", "N.x=S.o", "", "", "Non-reconnectable edge, y",
            [](Rig& r) {
                r["M"]->updateInputTags(QStringLiteral("y"), {QStringLiteral("_locked")});
                r.drag(r.onEdge(0.97), r.inPort("M", "y"));
            });
        row("dest end to the one input that has this source", "N.x=S.o", "", "",
            "Attempting to double-connect on input point 'only'",
            [](Rig& r) { r.drag(r.onEdge(0.97), r.inPort("D", "only")); });
        row("dest end to where the connection exists", "M.y=S.o", "N.x=none",
            "Moved output S.o from N.x to M.y", toDest, [](Rig& r) {
                r.connectInput("M", "y", "S", "o");
                r.drag(r.onEdge(0.97), r.inPort("M", "y"));
            });
        row("dest end, menu closed", "N.x=S.o", "", "", toDest, [](Rig& r) {
            r.inMenu("");
            r.drag(r.onEdge(0.97), r.header("M"));
        });
        row("source dies while the dest end is carried", "", "N.x=none", "N.x=none", toDest,
            [](Rig& r) {
                r.carry(r.onEdge(0.97), r.inPort("M", "y"));
                r["S"]->destroy();
                flushEvents();
                r.release(r.inPort("M", "y"));
            });
        row("home dies while the dest end is carried", "", "", "", toDest, [](Rig& r) {
            r.carry(r.onEdge(0.97), r.inPort("M", "y"));
            r["N"]->destroy();
            flushEvents();
            r.release(r.inPort("M", "y"));
        });
        row("another item takes the mouse", "N.x=S.o", "", "", toDest, [](Rig& r) {
            r.carry(r.onEdge(0.97), Rig::nowhere());
            r["M"]->grabMouse();
            r["M"]->ungrabMouse();
            flushEvents();
            r.release(Rig::nowhere());
        });
        row("the button was let go unseen, the source gone", "", "N.x=none", "N.x=none", toDest,
            [](Rig& r) {
                r.carry(r.onEdge(0.97), Rig::nowhere());
                r["S"]->destroy();
                flushEvents();
                r.moveTo(Rig::nowhere(), Qt::NoButton);
            });

        // Presses that pick nothing up
        row("press on a locked edge", "N.x=S.o", "", "", "Non-reconnectable edge, x", [](Rig& r) {
            r.m_Edge->setTags({QStringLiteral("_locked")});
            r.drag(r.onEdge(0.97), Rig::nowhere());
        });
        row("press in the middle", "N.x=S.o", "", "", "",
            [](Rig& r) { r.drag(r.onEdge(0.5), Rig::nowhere()); });
        row("right press on the arrow", "N.x=S.o", "", "", "", [](Rig& r) {
            r.press(r.onEdge(0.97), Qt::RightButton);
            r.release(Rig::nowhere(), Qt::RightButton);
        });

        // Pulled out of the input's port
        row("port, reconnected", "N.x=R.a", "N.x=R.a", "Moved output N.x from S.o to R.a", "",
            [](Rig& r) { r.pull(r.inPort("N", "x"), r.outPort("R", "a")); });
        row("port of a free input", "N.x=S.o N.z=R.b", "N.z=R.b", "N.z=R.b", "",
            [](Rig& r) { r.pull(r.inPort("N", "z"), r.outPort("R", "b")); });
        row("port, dropped on nothing", "N.x=S.o", "", "", "",
            [](Rig& r) { r.pull(r.inPort("N", "x"), Rig::nowhere()); });
        row("port, cancelled over a target", "N.x=S.o", "", "", "",
            [](Rig& r) { r.pull(r.inPort("N", "x"), r.outPort("R", "a"), Qt::RightButton); });
        row("source dies while the port is pulled", "", "N.x=none", "N.x=none", "", [](Rig& r) {
            r.carry(r.inPort("N", "x"), Rig::nowhere());
            r["S"]->destroy();
            flushEvents();
            r.press(Rig::nowhere());
        });

        // Pulled out of an output's port
        row("output to an input", "M.y=S.o N.x=S.o", "M.y=S.o", "M.y=S.o", gone,
            [](Rig& r) { r.pull(r.outPort("S", "o"), r.inPort("M", "y")); });
        row("output, input from the menu", "M.w=S.o N.x=S.o", "M.w=S.o", "M.w=S.o", gone,
            [](Rig& r) {
                r.inMenu("w");
                r.pull(r.outPort("S", "o"), r.header("M"));
            });
        row("output to nothing", "N.x=S.o", "", "", gone,
            [](Rig& r) { r.pull(r.outPort("S", "o"), Rig::nowhere()); });
        row("output, cancelled over a target", "N.x=S.o", "", "", gone,
            [](Rig& r) { r.pull(r.outPort("S", "o"), r.inPort("M", "y"), Qt::RightButton); });
        row("output to its own node", "N.x=S.o", "", "", gone,
            [](Rig& r) { r.pull(r.outPort("S", "o"), r.header("S")); });
        row("output, refused by the host", "N.x=S.o", "M.y!Odd", "", gone,
            [](Rig& r) { r.pull(r.outPort("Odd", "o"), r.inPort("M", "y")); });
        row("output's node dies", "", "", "", gone, [](Rig& r) {
            r.carry(r.outPort("S", "o"), r.inPort("M", "y"));
            r["S"]->destroy();
            flushEvents();
            r.press(Rig::nowhere());
        });

        // Without the mouse
        row("insertion", "K.in=S.o N.x=K.out", "K.in=S.o N.x=K.out", "Insert 'K' into 'S.o'-'N.x'",
            "", [](Rig& r) {
                r.m_Edge->insertNodeIntoEdge(r["K"], r["K"]->input(QStringLiteral("in")));
            });
        row("insertion into a locked edge", "N.x=S.o", "", "", "Non-reconnectable edge, x",
            [](Rig& r) {
                r.m_Edge->setTags({QStringLiteral("_locked")});
                r.m_Edge->insertNodeIntoEdge(r["K"], r["K"]->input(QStringLiteral("in")));
            });
        row("source destroyed at rest", "", "", "", "", [](Rig& r) { r["S"]->destroy(); });
    }

    void edgeFollowsItsStateTable()
    {
        QFETCH(Script, script);
        QFETCH(QString, report);
        Rig rig;
        const DebugRecorder recorder;
        script(rig);
        flushEvents();
        QTEST(rig.connections(), "connections");
        QTEST(rig.m_Heard.join(QLatin1Char(' ')), "heard");
        QTEST(Rig::undoTexts(), "undo");
        QCOMPARE(recorder.messages().join(QLatin1Char('\n')).contains(report), true);
        if (report.isEmpty())
            QCOMPARE(recorder.messages(), QStringList());
        QVERIFY(!rig.m_Scene.mouseGrabberItem());
        for (const QGraphicsItem* item : rig.m_Scene.items()) {
            const auto* edge = dynamic_cast<const OrvNgEdge*>(item);
            QVERIFY(!edge || !edge->isDragging());
        }
    }

    void pick_choosesTheNearerEnd_data()
    {
        const TestTable<double, double, QString> row("length", "belowTheSource", "picked");
        row("halfway on a short edge", 100.0, 50.0, "dest");
        row("just before halfway", 100.0, 49.0, "source");
        row("a fifth of a long edge", 1011.25, 199.0, "source");
        row("beyond a fifth of it", 1011.25, 201.0, "");
        row("near the far end of it", 1011.25, 900.0, "dest");
    }
    void pick_choosesTheNearerEnd()
    {
        struct Edge : OrvNgEdge
        {
            using OrvNgEdge::getClosestNodeToMouseClick;
            using OrvNgEdge::OrvNgEdge;
            ~Edge() override { aboutToBeDestroyed(); }
        };
        QFETCH(double, length);
        QFETCH(double, belowTheSource);
        OrvNgStyle& style = OrvNgStyle::instance();
        const auto radius = style.getEdgeClickRadius();
        const auto restore = qScopeGuard([&] { style.setEdgeClickRadius(radius); });
        style.setEdgeClickRadius(60);
        // The edge runs straight down between the boxes' facing sides, from (0, 1) on.
        TestNode source(QStringLiteral("source"), QSizeF(2, 2));
        TestNode dest(QStringLiteral("dest"), QSizeF(2, 2));
        source.setPos(-1, -1);
        dest.setPos(-1, length + 1);
        Edge edge(true, &dest, false, {});
        edge.setSourceNode(&source, QStringLiteral("o"));
        OrvNgNode* picked = edge.getClosestNodeToMouseClick(QPointF(0, 1 + belowTheSource));
        QTEST(picked ? picked->text() : QString(), "picked");
    }

    void bodyDrop_offersWhatFits()
    {
        Rig rig;
        rig["N"]->updateInputTags(QStringLiteral("z"), {QStringLiteral("_hidden")});
        rig["N"]->createInput(QStringLiteral("last"), false, {});
        rig.inMenu("last");
        rig.pull(rig.outPort("S", "o"), rig.header("N"));
        QCOMPARE(rig.m_MenuEntries, QStringList({QStringLiteral("*x"), QStringLiteral("last")}));
        QCOMPARE(rig.m_Heard, QStringList(QStringLiteral("N.last=S.o")));

        auto* dot = new OrvNgDotNode(nullptr); // whose first point has no label
        rig.m_Scene.addItem(dot);
        for (const char* input : {"Input", "mask"})
            dot->createInput(QLatin1String(input), false, {});
        rig.inMenu("Input");
        rig.pull(rig.outPort("S", "o"), dot->sceneBoundingRect().center());
        QCOMPARE(rig.m_MenuEntries, QStringList({QStringLiteral("Input"), QStringLiteral("mask")}));
        QCOMPARE(dot->input(QStringLiteral("Input"))->sourceNode(), rig["S"]);
    }

    void looseEnd_staysOnTheCursorWhileNodesMove()
    {
        Rig rig;
        rig.carry(rig.onEdge(0.97), Rig::nowhere());
        rig["S"]->moveBy(40, 40);
        rig["N"]->moveBy(-40, 0);
        rig["S"]->setPortListMode(Node::PORT_LIST_T2B);
        const QPainterPath path = rig.m_Edge->mainEdge()->path();
        const double toCursor = QLineF(path.currentPosition(), Rig::nowhere()).length();
        QVERIFY2(
            toCursor <= OrvNgEdge::kArrowSafeLength + 1.0, qPrintable(QString::number(toCursor)));
        rig.release(rig.inPort("N", "x"));
        QCOMPARE(rig.connections(), QStringLiteral("N.x=S.o"));
    }

    void slotsMayDestroyAnything_data()
    {
        QTest::addColumn<Script>("act");
        QTest::addColumn<QString>(
            "afterConnecting"); // the slot runs when the first input has changed
        const auto row = [](const char* name, const char* connections, const Script& act) {
            QTest::newRow(name) << act << QString::fromLatin1(connections);
        };
        row("both nodes", "", [](Rig& r) {
            r["N"]->destroy();
            r["M"]->destroy();
        });
        row("the edge, at once", "M.y=S.o", [](Rig& r) { delete r.m_Edge; });
        row("the nodes, at once", "", [](Rig& r) {
            delete r["N"];
            delete r["M"];
            delete r["S"];
        });
        row("the scene's items", "", [](Rig& r) { r.m_Scene.clear(); });
    }

    void slotsMayDestroyAnything()
    {
        QFETCH(Script, act);
        QFETCH(QString, afterConnecting);
        for (const bool inMenu : {false, true}) {
            Rig rig;
            bool acted = false;
            const auto once = [&] {
                if (!std::exchange(acted, true))
                    act(rig);
            };
            if (inMenu) {
                rig.inMenu("w", once);
                rig.drag(rig.onEdge(0.97), rig.header("M"));
            } else {
                rig.m_OnHeard = once;
                rig.drag(rig.onEdge(0.97), rig.inPort("M", "y"));
            }
            flushEvents();
            QVERIFY(acted);
            QVERIFY(!rig.m_Scene.mouseGrabberItem());
            QCOMPARE(rig.connections(), inMenu ? QString() : afterConnecting);
        }
    }
};

QTEST_MAIN(tst_OrvNgEdgeDrag)
#include "tst_OrvNgEdgeDrag.moc"
