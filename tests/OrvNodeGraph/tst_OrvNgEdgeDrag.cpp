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
#include <QFile>
#include <QGraphicsPathItem>
#include <QMenu>
#include <QTimer>
#include <QUndoStack>

#include <functional>
#include <map>
#include <utility>

namespace {

const QLatin1Char kDot('.');

/// An extended node that may refuse sources.
class Node : public OrvNgExtendedNode
{
public:
    using OrvNgExtendedNode::OrvNgExtendedNode;
    ~Node() override { aboutToBeDestroyed(); }
    bool acceptsInputSource(OrvNgNode* source, const QString&, const QString&) override
    {
        return source->text() != QLatin1String("Odd");
    }
};

/// A network in a view: S feeds x of N and the only input of D; all other inputs are free. The host writes
/// down what it hears and keeps an undo step for each change.
struct Rig : ViewStage
{
    QHash<QString, QPointer<Node>> m_Nodes;
    QStringList m_Heard;
    QPointer<OrvNgEdge> m_Edge;
    std::function<void()> m_OnHeard = [] {};
    QStringList m_MenuEntries;

    Rig()
    {
        delete m_Node;
        OrvUndoManager::instance().undoStack()->clear();
        m_View.resize(1000, 700);
        m_View.centerViewOn(QPointF(0, 0), true);
        add("S", "", "o p", -450, -300);
        add("R", "", "a b", -450, 0);
        add("Odd", "", "o", -450, 200);
        add("N", "x z", "n", 250, -300);
        add("M", "y w", "", 250, -100);
        add("D", "only", "", 250, 60);
        add("K", "in", "out", -100, 200);
        run(QStringLiteral("connect N.x S.o, connect D.only S.p"));
        m_Edge = input(QStringLiteral("N.x"));
        flushEvents();
    }
    Node* operator[](const QString& path) const { return m_Nodes.value(path.section(kDot, 0, 0)); }
    Node* operator[](const char* name) const { return m_Nodes.value(QLatin1String(name)); }
    OrvNgEdge* input(const QString& to) const { return (*this)[to]->input(to.section(kDot, 1)); }

    /// A place by its name, in viewport coordinates; the cursor is there from now on, as the view scrolls
    /// when it is near the border.
    QPoint at(const QString& place)
    {
        const QHash<QString, double> shares{{QStringLiteral("source"), 0.04},
            {QStringLiteral("middle"), 0.5}, {QStringLiteral("dest"), 0.97}};
        QPointF found(0, 300); // where the view does not scroll
        if (shares.contains(place)) {
            found = m_Edge->mainEdge()->path().pointAtPercent(shares.value(place));
        } else if (Node* node = (*this)[place]) {
            const QString name = place.section(kDot, 1);
            OrvNgPort* in = node->inputPort(name);
            OrvNgPort* port = in ? in : node->outputPort(name);
            found = port ? port->portRectMappedToScene().center()
                         : node->mapToScene(node->nodeShapeRect().center());
        }
        const QPoint pos = m_View.mapFromScene(found);
        QCursor::setPos(m_View.viewport()->mapToGlobal(pos));
        return pos;
    }
    void carry(const QString& from, const QString& to)
    {
        const QPoint start = at(from);
        const QPoint end = at(to);
        drag({start, (start + end) / 2, end});
    }
    /// Pulls an edge out of a port, lets go, and presses elsewhere.
    void pull(const QString& port, const QString& to, Qt::MouseButton button)
    {
        carry(port, to);
        release(at(to), Qt::LeftButton);
        if (!m_Scene.mouseGrabberItem())
            qFatal("the edge does not stay on the cursor");
        const QPoint end = at(to);
        move(end, Qt::NoButton);
        press(end, button);
        release(end, button);
    }
    /// Does the steps of a row of edge-drags.txt, which describes them.
    void run(const QString& script)
    {
        using Deed = std::function<void(const QString&, const QString&)>;
        using S = const QString&;
        const Qt::MouseButton left = Qt::LeftButton;
        const Qt::MouseButton right = Qt::RightButton;
        const QSet<QString> locked{QStringLiteral("_locked")};
        // clang-format off
        const std::map<QString, Deed> deeds{
            {QStringLiteral("drag"), [&](S a, S b) { carry(a, b); release(at(b), left); }},
            {QStringLiteral("carry"), [&](S a, S b) { carry(a, b); }},
            {QStringLiteral("pull"), [&](S a, S b) { pull(a, b, left); }},
            {QStringLiteral("cancel"), [&](S a, S b) { pull(a, b, right); }},
            {QStringLiteral("press"), [&](S a, S) { press(at(a), left); }},
            {QStringLiteral("hover"), [&](S a, S) { move(at(a), Qt::NoButton); }},
            {QStringLiteral("release"), [&](S a, S) { release(at(a), left); }},
            {QStringLiteral("rightclick"), [&](S a, S) { press(at(a), right); release(at(a), right); }},
            {QStringLiteral("menu"), [&](S a, S) { inMenu(a); }},
            {QStringLiteral("shift"), [&](S a, S) { (*this)[a]->moveBy(-40, 40); }},
            {QStringLiteral("destroy"), [&](S a, S) { (*this)[a]->destroy(); flushEvents(); }},
            {QStringLiteral("grab"), [&](S a, S) { (*this)[a]->grabMouse(); (*this)[a]->ungrabMouse(); flushEvents(); }},
            {QStringLiteral("lock"), [&](S a, S) { (*this)[a]->updateInputTags(a.section(kDot, 1), locked); }},
            {QStringLiteral("connect"), [&](S a, S b) { input(a)->setSourceNode((*this)[b], b.section(kDot, 1)); }},
            {QStringLiteral("insert"), [&](S a, S) { m_Edge->insertNodeIntoEdge((*this)[a], input(a)); }}};
        // clang-format on
        for (const QString& step : script.split(QStringLiteral(", "))) {
            const QStringList words = step.split(QLatin1Char(' '));
            deeds.at(words.first())(words.value(1), words.value(2));
        }
    }
    /// What is done to the menu that the next drop opens: an entry is chosen, or it is closed.
    void inMenu(
        const QString& entry, const std::function<void()>& before = [] {})
    {
        QTimer::singleShot(0, &m_View, [this, entry, before] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                qFatal("no menu is open");
            for (const QAction* action : menu->actions())
                m_MenuEntries.append(
                    action->text() + QLatin1String(action->isChecked() ? "*" : ""));
            before();
            for (QAction* action : menu->actions()) {
                if (action->text() == entry)
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
            for (OrvNgEdge* edge : node ? node->inputs() : QList<OrvNgEdge*>()) {
                if (OrvNgNode* source = edge->sourceNode())
                    all.append(QStringLiteral("%1.%2=%3.%4")
                                   .arg(node->text(), edge->text(), source->text(),
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

private:
    void add(const char* name, const char* inputs, const char* outputs, double x, double y)
    {
        auto* node = new Node(nullptr);
        node->setText(QLatin1String(name));
        m_Scene.addItem(node);
        node->setPos(x, y);
        const auto words = [](const char* text) {
            return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        };
        for (const QString& input : words(inputs))
            node->createInput(input, false, {});
        for (const QString& output : words(outputs))
            node->createOutputPoint(output, true);
        node->setPortListMode(Node::PORT_LIST_EXPANDED);
        m_Nodes.insert(node->text(), node);
        QObject::connect(node, &OrvNgNode::inputSourceChanged, &m_View,
            [this, node](OrvNgNode* source, const QString& output, const QString& input) {
                const QString from
                    = source ? source->text() + kDot + output : QStringLiteral("none");
                m_Heard.append(QStringLiteral("%1.%2=%3").arg(node->text(), input, from));
                OrvUndoManager::instance().push(new QUndoCommand(m_Heard.constLast()));
                std::exchange(m_OnHeard, [] {})();
            });
        QObject::connect(node, &OrvNgNode::inputSourceRefused, &m_View,
            [this, node](OrvNgNode* source, const QString&, const QString& input) {
                m_Heard.append(QStringLiteral("%1.%2!%3").arg(node->text(), input, source->text()));
            });
    }
};

using Act = std::function<void(Rig&)>;

} // namespace

Q_DECLARE_METATYPE(Act)

class tst_OrvNgEdgeDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edgeFollowsItsStateTable_data()
    {
        const TestTable<QString, QString, QString, QString, QString> row(
            "script", "connections", "heard", "undo", "report");
        QFile file(QStringLiteral(ORV_TEST_DATA "/edge-drags.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        while (!file.atEnd()) {
            QStringList cells = QString::fromUtf8(file.readLine()).split(QLatin1Char('|'));
            for (QString& cell : cells)
                cell = cell.trimmed();
            if (cells.size() == 6)
                row(qPrintable(cells[0]), cells[1], cells[2], cells[3], cells[4], cells[5]);
        }
    }

    void edgeFollowsItsStateTable()
    {
        QFETCH(QString, script);
        QFETCH(QString, report);
        Rig rig;
        const DebugRecorder recorder;
        rig.run(script);
        flushEvents();
        QTEST(rig.connections(), "connections");
        QTEST(rig.m_Heard.join(QLatin1Char(' ')), "heard");
        QTEST(Rig::undoTexts(), "undo");
        QCOMPARE(recorder.messages().isEmpty(), report.isEmpty());
        QVERIFY(recorder.messages().join(QLatin1Char('\n')).contains(report));
        QVERIFY(!rig.m_Scene.mouseGrabberItem());
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
        };
        QFETCH(double, length);
        OrvNgStyle::instance().setEdgeClickRadius(60);
        // The edge runs straight down between the boxes' facing sides, from (0, 1) on.
        TestNode source(QStringLiteral("source"), QSizeF(2, 2));
        TestNode dest(QStringLiteral("dest"), QSizeF(2, 2));
        source.setPos(-1, -1);
        dest.setPos(-1, length + 1);
        dest.createInput(QStringLiteral("i"), true, {});
        OrvNgEdge* edge = dest.input(QStringLiteral("i"));
        edge->setSourceNode(&source, QStringLiteral("o"));
        QFETCH(double, belowTheSource);
        OrvNgNode* picked
            = (edge->*&Edge::getClosestNodeToMouseClick)(QPointF(0, 1 + belowTheSource));
        OrvNgStyle::instance().resetEdgeClickRadius();
        QTEST(picked ? picked->text() : QString(), "picked");
    }

    void bodyDrop_offersWhatFits()
    {
        Rig rig;
        rig["N"]->updateInputTags(QStringLiteral("z"), {QStringLiteral("_hidden")});
        rig["N"]->createInput(QStringLiteral("last"), false, {});
        rig.run(QStringLiteral("menu last, pull S.o N"));
        QCOMPARE(rig.m_MenuEntries, QStringList({QStringLiteral("x*"), QStringLiteral("last")}));
        QCOMPARE(rig.m_Heard, QStringList(QStringLiteral("N.last=S.o")));

        auto* dot = new OrvNgDotNode(nullptr); // whose first point has no label
        rig.m_Scene.addItem(dot);
        dot->setPos(-4, 296);
        for (const char* input : {"Input", "mask"})
            dot->createInput(QLatin1String(input), false, {});
        rig.m_MenuEntries.clear();
        rig.run(QStringLiteral("menu Input, pull S.o nowhere"));
        QCOMPARE(rig.m_MenuEntries, QStringList({QStringLiteral("Input"), QStringLiteral("mask")}));
        QCOMPARE(dot->input(QStringLiteral("Input"))->sourceNode(), rig["S"]);
    }

    void looseEnd_staysOnTheCursorWhileNodesMove()
    {
        Rig rig;
        rig.run(QStringLiteral("carry dest nowhere, shift S, shift N"));
        rig["S"]->setPortListMode(Node::PORT_LIST_T2B);
        const QPointF end = rig.m_Edge->mainEdge()->path().currentPosition();
        QVERIFY(QLineF(end, {0, 300}).length() <= OrvNgEdge::kArrowSafeLength + 1.0);
    }

    void slotsMayDestroyAnything_data()
    {
        const TestTable<Act, QString> row("act", "connections"); // when the first input has changed
        row(
            "both nodes", [](Rig& r) { r["N"]->destroy(), r["M"]->destroy(); }, "");
        row(
            "the edge, at once", [](Rig& r) { delete r.m_Edge; }, "M.y=S.o");
        row(
            "the scene's items", [](Rig& r) { r.m_Scene.clear(); }, "");
    }
    void slotsMayDestroyAnything()
    {
        QFETCH(Act, act);
        for (const bool inMenu : {false, true}) {
            Rig rig;
            const auto once = [&rig, &act] { act(rig); };
            if (inMenu)
                rig.inMenu(QStringLiteral("w"), once);
            else
                rig.m_OnHeard = once;
            rig.run(inMenu ? QStringLiteral("drag dest M") : QStringLiteral("drag dest M.y"));
            flushEvents();
            QVERIFY(!rig.m_Scene.mouseGrabberItem() && !rig.m_Edge);
            if (inMenu)
                QCOMPARE(rig.connections(), QString());
            else
                QTEST(rig.connections(), "connections");
        }
    }
};

QTEST_MAIN(tst_OrvNgEdgeDrag)
#include "tst_OrvNgEdgeDrag.moc"
