#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/ExtendedRig.h"
#include "support/TestTable.h"

#include <QFontMetrics>
#include <QtTest>

#include <functional>

using Node = OrvNgExtendedNode;
using Action = std::function<void(Node&)>;
Q_DECLARE_METATYPE(Action)

namespace {

const QString kOuts = QStringLiteral("outs");
const QString kWide(60, QLatin1Char('m'));

QStringList labelledInputs(Node& node)
{
    QStringList names;
    for (const OrvNgEdge* edge : node.inputs()) {
        if (edge->isTextVisible())
            names.append(edge->text());
    }
    return names;
}

} // namespace

class tst_OrvNgExtendedNode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Modes

    void mode_decidesShownPorts_data()
    {
        const TestTable<int, bool, QStringList, bool> row("mode", "connected", "inputs", "outputs");
        const QStringList none;
        row("expanded", int(Node::PORT_LIST_EXPANDED), true, QStringList({kA, kB, kC}), true);
        row("top to bottom", int(Node::PORT_LIST_T2B), true, none, false);
        row("grouped", int(Node::PORT_LIST_GROUPED), false, QStringList({kC, kGroup}), true);
        row("only connected, one", int(Node::PORT_LIST_ONLY_CONNECTED), true, QStringList(kB),
            false);
        row("only connected, none", int(Node::PORT_LIST_ONLY_CONNECTED), false, none, false);
        row("collapsed", int(Node::PORT_LIST_COLLAPSED), true, none, false);
    }
    void mode_decidesShownPorts()
    {
        QFETCH(int, mode);
        QFETCH(bool, connected);
        QFETCH(QStringList, inputs);
        QFETCH(bool, outputs);
        ExtendedRig rig;
        QCOMPARE(rig.shownInputs(), QStringList()); // new ports wait for a pass
        rig.m_Node->setInputPortClusterMap({{kGroup, {kA, kB}}});
        QCOMPARE(rig.shownInputs(), QStringList(kGroup)); // cluster ports do not
        if (connected)
            rig.connectInput(kB);
        for (int previous = 0; previous < 5; ++previous) { // from every mode into this one
            rig.setMode(previous);
            rig.setMode(mode);
            QCOMPARE(rig.shownInputs(), inputs);
            QCOMPARE(rig.m_Node->isOutputPortVisible(kOut), outputs);
            const int rows = inputs.size() + (outputs ? 2 : 0);
            const int gaps = qMax(0, inputs.size() - 1) + (outputs ? 1 : 0);
            const double row = qMax(18, QFontMetrics(QFont()).height());
            const QRectF header = rig.m_Node->nodeShapeRect();
            QCOMPARE(rig.m_Node->boundingRect().height(), // margins above and below the lists
                header.height() + 5 + rows * row + gaps * 5 + 5);
        }
    }

    void hiddenTag_keepsPortHiddenInEveryMode()
    {
        ExtendedRig rig;
        rig.connectInput(kA);
        rig.m_Node->updateInputTags(kA, {QStringLiteral("_hidden")});
        for (int mode = 0; mode < 5; ++mode) {
            rig.setMode(mode);
            rig.m_Node->setInputPortVisible(kA, true);
            rig.m_Node->setInputPortVisible(kB, true);
            QVERIFY(!rig.m_Node->isInputPortVisible(kA) && rig.m_Node->isInputPortVisible(kB));
        }
    }

    void connecting_updatesOnlyConnectedPorts()
    {
        ExtendedRig rig;
        rig.setMode(Node::PORT_LIST_ONLY_CONNECTED);
        rig.m_Source->setPortListMode(Node::PORT_LIST_ONLY_CONNECTED);
        QVERIFY(!rig.m_Source->isOutputPortVisible(kOut));
        rig.connectInput(kB);
        QCOMPARE(rig.shownInputs(), QStringList(kB));
        QVERIFY(rig.m_Source->isOutputPortVisible(kOut));
        rig.m_Node->input(kB)->setSourceNode(nullptr, QString());
        QCOMPARE(rig.shownInputs(), QStringList());
        QVERIFY(!rig.m_Source->isOutputPortVisible(kOut));
    }

    // What is refused or unknown changes nothing

    void badCall_isReportedAndChangesNothing_data()
    {
        const TestTable<Action, QStringList> row("action", "reports");
        const QString badIndex = QStringLiteral("Specified index is out of range");
        const QStringList badIndexTwice = {QStringLiteral("OrvNgExtendedNode: ") + badIndex,
            QStringLiteral("OrvNgNode: ") + badIndex};
        const auto own = [](const char* message) {
            return QStringList(QStringLiteral("OrvNgExtendedNode: ") + QLatin1String(message));
        };
        row(
            "mode after the last",
            [](Node& n) { n.setPortListMode(static_cast<Node::PortListMode>(5)); },
            own("No such port list mode : 5"));
        row(
            "input index -1", [](Node& n) { n.removeInput(-1); }, badIndexTwice);
        row(
            "members of an unknown input cluster",
            [](Node& n) { QCOMPARE(n.inputClusterPortName2ClusterList(kA), QStringList()); },
            own("Such InputClusterPortName does not exist : a"));
        row(
            "cluster named like an input",
            [](Node& n) {
                n.setInputPortClusterMap({{kGroup, {kA}}, {kB, {kC}}});
            },
            own("Cluster name is empty or taken : b"));
        row(
            "input renamed to a taken name", [](Node& n) { n.renameInput(kA, kB); },
            own("Input name is taken : b"));
        row(
            "input made twice", [](Node& n) { n.createInput(kA, true, {}); },
            QStringList(QStringLiteral("OrvNgNode: [ !! ] Input 'a' exists already on node ''")));
        row(
            "icon that does not exist", [](Node& n) { n.setIconVisible(true, 0); }, QStringList());
        row(
            "port that does not exist", [](Node& n) { n.setInputPortVisible(kOuts, true); },
            QStringList());
    }
    void badCall_isReportedAndChangesNothing()
    {
        QFETCH(Action, action);
        QFETCH(QStringList, reports);
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        node.setInputPortClusterMap({{kGroup, {kA}}});
        rig.setMode(Node::PORT_LIST_GROUPED);
        DebugRecorder recorder;
        action(node);
        node.applyPortVisibilityMode();
        QStringList reported;
        for (const DebugRecorder::Report& report : recorder.reports())
            reported += report.file.section(QLatin1Char('/'), -1) + QStringLiteral(": ")
                + report.message;
        QCOMPARE(reported, reports);
        QCOMPARE(node.portListMode(), Node::PORT_LIST_GROUPED);
        QCOMPARE(node.sortedInputPoints(), QStringList({kA, kB, kC}));
        QCOMPARE(node.sortedOutputPoints(), QStringList({kOut, kRest}));
        QCOMPARE(rig.shownInputs(), QStringList({kB, kC, kGroup}));
        QCOMPARE(node.inputCount(), 4);
        QCOMPARE(node.outputPointCount(), 2);
        QVERIFY(!node.inputPort(kB)->isClustered() && !node.inputPortBelongsToCluster(kC));
    }

    // Points, names and clusters

    void removedPoint_takesItsPortAlong()
    {
        ExtendedRig rig;
        rig.m_Node->removeInput(1);
        QVERIFY(!rig.m_Node->inputPort(kB) && !rig.m_Node->inputExists(kB));
        QCOMPARE(rig.m_Node->sortedInputPoints(), QStringList({kA, kC}));

        rig.m_Node->createOutputPoint(kOuts, false); // without a port
        QVERIFY(!rig.m_Node->outputPort(kOuts));
        DebugRecorder recorder;
        rig.m_Node->removeOutputPoint(kOuts);
        QCOMPARE(recorder.messages(), QStringList(QStringLiteral("Could not remove an edge 2")));
        QCOMPARE(rig.m_Node->outputPointCount(), 2);
    }

    void renamedInput_keepsItsPortAndCluster()
    {
        ExtendedRig rig;
        rig.m_Node->setInputPortClusterMap({{kGroup, {kA}}});
        OrvNgPort* port = rig.m_Node->inputPort(kA);
        const QString renamed = QStringLiteral("renamed");
        rig.connectInput(kA);
        rig.m_Node->renameInput(kA, renamed);
        QCOMPARE(rig.m_Node->input(renamed)->sourceNode(), rig.m_Source);
        QCOMPARE(rig.m_Node->inputPort(renamed), port);
        QCOMPARE(port->text(), renamed);
        QVERIFY(rig.m_Node->inputExists(renamed));
        QVERIFY(!rig.m_Node->inputPort(kA) && !rig.m_Node->inputExists(kA));
        QCOMPARE(rig.m_Node->inputPort2ClusterName(renamed), kGroup);
    }

    void prettyNames_areShownByPorts()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        const QString blank = QStringLiteral("blank"), late = QStringLiteral("late");
        const QString nice = QStringLiteral("Base Colour");
        node.setConnectionPrettyNames(
            {{late, nice}, {blank, QStringLiteral("  ")}, {kA, nice}}, {{blank, QString()}});
        node.createInput(late, false, {});
        node.createInput(blank, false, {});
        node.createOutputPoint(blank, true);
        QCOMPARE(node.inputPort(late)->text(), nice);
        QCOMPARE(node.input(late)->prettyText(), nice);
        QCOMPARE(node.inputPort(blank)->text(), QStringLiteral("Input"));
        QCOMPARE(node.outputPort(blank)->text(), blank);

        QCOMPARE(node.inputPort(kA)->text(), kA);
        node.refreshPrettyName(kA);
        QCOMPARE(node.inputPort(kA)->text(), nice);
    }

    void reorder_putsClustersFirstThenNamedThenRest()
    {
        ExtendedRig rig;
        const QString second = QStringLiteral("second");
        rig.m_Node->setInputPortClusterMap({{kGroup, {kA}}, {second, {kB}}});
        rig.setMode(Node::PORT_LIST_GROUPED);
        rig.m_Node->reorderInputPorts({kC, QStringLiteral("unknown"), kB, kC});
        QCOMPARE(rig.m_Node->sortedInputPoints(), QStringList({kC, kB, kA}));
        QVERIFY(rig.inputSquare(kGroup).y() < rig.inputSquare(second).y());
        QVERIFY(rig.inputSquare(second).y() < rig.inputSquare(kC).y());

        rig.m_Node->reorderOutputPorts({kRest});
        QCOMPARE(rig.m_Node->sortedOutputPoints(), QStringList({kRest, kOut}));
        QVERIFY(rig.outputSquare(kRest).y() < rig.outputSquare(kOut).y());
    }

    void clusterMap_replacesTheLast()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        rig.setMode(Node::PORT_LIST_GROUPED);
        node.setInputPortClusterMap({{kGroup, {kA, kB}}});
        node.setOutputPortClusterMap({{kOuts, {kOut}}});
        QCOMPARE(rig.shownInputs(), QStringList({kC, kGroup}));
        node.setInputConnectionPrettyNames({{kA, kWide}});
        QCOMPARE(node.input(kA)->prettyText(), kWide);
        QCOMPARE(node.input(kGroup)->prettyText(), QString()); // its edge carries no label
        QCOMPARE(node.inputPort(kGroup)->text(), kGroup);
        const QString other = QStringLiteral("other");
        node.setInputPortClusterMap({{other, {kC}}});
        QCOMPARE(node.inputCount(), 4);
        QVERIFY(!node.inputPort(kGroup) && node.inputPort(other)->isClustered());
        QCOMPARE(node.inputPort2ClusterName(kA), QString());
        QCOMPARE(node.inputPort2ClusterName(kC), other);
        QCOMPARE(rig.shownInputs(), QStringList({kA, kB}));

        node.setInputPortClusterMap({});
        node.setOutputPortClusterMap({});
        QVERIFY(!node.hasClusteredPorts() && !node.outputPort(kOuts) && node.outputPort(kOut));
        QCOMPARE(node.inputCount(), 3);
        QCOMPARE(node.outputPoints(), QStringList({kOut, kRest}));
    }

    void labels_showOnePerBundleOrAllWithoutPorts()
    {
        ExtendedRig rig;
        for (const QString& name : {kA, kB, kC})
            rig.connectInput(name);
        rig.m_Node->setInputPortClusterMap({{kGroup, {kA, kB}}});
        rig.m_Node->input(kB)->setTextVisible(true); // the host's wish gives way to legibility
        rig.setMode(Node::PORT_LIST_GROUPED);
        QCOMPARE(labelledInputs(*rig.m_Node), QStringList({kA, kC}));
        rig.setMode(Node::PORT_LIST_COLLAPSED);
        QCOMPARE(labelledInputs(*rig.m_Node), QStringList({kA}));
        rig.m_Node->input(kA)->setSourceNode(nullptr, QString());
        QCOMPARE(labelledInputs(*rig.m_Node), QStringList({kB}));
        rig.setMode(Node::PORT_LIST_EXPANDED);
        QCOMPARE(labelledInputs(*rig.m_Node), QStringList());

        rig.setMode(Node::PORT_LIST_T2B);
        rig.m_Node->createInput(kOuts, false, {});
        QCOMPARE(labelledInputs(*rig.m_Node), QStringList({kA, kB, kC, kGroup, kOuts}));
        rig.setMode(Node::PORT_LIST_ONLY_CONNECTED);
        QCOMPARE(labelledInputs(*rig.m_Node), QStringList());
    }

    void bundle_showsAndLabelsItsFirstEdge_data()
    {
        const TestTable<int> row("mode");
        row("grouped", int(Node::PORT_LIST_GROUPED));
        row("collapsed", int(Node::PORT_LIST_COLLAPSED));
    }
    void bundle_showsAndLabelsItsFirstEdge()
    {
        QFETCH(int, mode);
        ExtendedRig rig;
        Node other(nullptr);
        Node& node = *rig.m_Node;
        rig.m_Source->setOutputPortClusterMap({{kOuts, {kOut}}});
        node.setInputPortClusterMap({{kGroup, {kA, kB, kC}}});
        rig.m_Source->setPortListMode(static_cast<Node::PortListMode>(mode));
        rig.setMode(mode);
        for (const QString& name : {kC, kB, kA})
            rig.connectInput(name);
        OrvNgEdge* first = node.input(kA);
        const Action steps[]
            = {[](Node&) {}, [&](Node&) { first->setTags({QStringLiteral("_hidden")}); },
                [&](Node&) { first->setTags({}); },
                [&](Node&) { first->setSourceNode(nullptr, QString()); },
                [&](Node&) { first->setSourceNode(rig.m_Source, kOut); },
                [&](Node&) { first->setDestNode(&other); }, [](Node& n) { n.removeInput(kB); }};
        QStringList seen;
        for (const Action& step : steps) {
            step(node);
            for (const OrvNgEdge* edge : node.inputs()) {
                QCOMPARE(edge->isTextVisible(), edge->isVisible());
                if (edge->isVisible())
                    seen.append(edge->text());
            }
        }
        QCOMPARE(seen, QStringList({kA, kB, kA, kB, kA, kB, kC}));
    }

    // Geometry

    void edges_attachAtPortClusterOrHeaderEnd()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        node.setInputConnectionPositions({{kA, {QPoint(-10, -20), QPoint(-10, -50)}}});
        node.setInputPortClusterMap({{kGroup, {kA, kB}}});
        node.setOutputPortClusterMap({{kOuts, {kOut}}});
        rig.setMode(Node::PORT_LIST_EXPANDED);
        QCOMPARE(node.inputPortDestPos(kA), rig.inputSquare(kA));
        rig.setMode(Node::PORT_LIST_GROUPED);
        QCOMPARE(node.inputPortDestPos(kA), rig.inputSquare(kGroup));
        QCOMPARE(node.inputPortSourcePos(kB), rig.inputSquare(kGroup));
        QCOMPARE(node.inputPortDestPos(kC), rig.inputSquare(kC));
        QCOMPARE(node.outputPortSourcePos(kOut), rig.outputSquare(kOuts));
        const double middle = 60 + node.nodeShapeRect().height() / 2;
        node.setInputPortVisible(kGroup, false);
        QCOMPARE(node.inputPortDestPos(kA), QPointF(410, middle));
        rig.setMode(Node::PORT_LIST_COLLAPSED);
        QCOMPARE(node.inputPortDestPos(kA), QPointF(410, middle));
        QCOMPARE(
            node.outputPortDestPos(kOut), QPointF(400 + node.nodeShapeRect().width() - 10, middle));
        rig.setMode(Node::PORT_LIST_T2B);
        const QPointF centre = node.mapToScene(node.boundingRect().center());
        QCOMPARE(node.inputPortDestPos(kA), centre + QPointF(-10, -20));
        QCOMPARE(node.inputPortSourcePos(kA), centre + QPointF(-10, -50));
    }

    void geometry_isRightWithoutEventLoopAndScene()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        rig.setMode(Node::PORT_LIST_EXPANDED);
        Node offScene(nullptr);
        ExtendedRig::addPoints(offScene);
        offScene.setPortListMode(Node::PORT_LIST_EXPANDED);
        offScene.setPos(node.pos());
        QCOMPARE(offScene.boundingRect(), node.boundingRect());
        QCOMPARE(offScene.inputPortDestPos(kC), node.inputPortDestPos(kC));

        const double before = node.inputPortDestPos(kC).y();
        const double step = before - node.inputPortDestPos(kB).y();
        const double height = node.boundingRect().height();
        const double width = node.nodeShapeRect().width();
        node.setInputPortVisible(kA, false);
        QCOMPARE(node.inputPortDestPos(kC).y(), before - step);
        node.removeInput(kB);
        node.inputPort(kC)->setText(kWide);
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(node.inputPortDestPos(kC).y(), before - 2 * step);
            QCOMPARE(node.boundingRect().height(), height - 2 * step);
            QVERIFY(node.nodeShapeRect().width() > width + 100);
            QCOMPARE(node.outputPortSourcePos(kOut).x(), 400 + node.nodeShapeRect().width() - 6);
            QCoreApplication::processEvents();
        }
    }

    void pausedNode_isLaidOutWhenResumed()
    {
        ExtendedRig rig;
        rig.setMode(Node::PORT_LIST_COLLAPSED);
        const QRectF before = rig.m_Node->boundingRect();
        rig.m_Node->pauseInvalidation(true);
        rig.setMode(Node::PORT_LIST_EXPANDED);
        rig.m_Node->setText(kWide);
        QCOMPARE(rig.m_Node->boundingRect(), before);
        rig.m_Node->pauseInvalidation(false);
        QVERIFY(rig.m_Node->boundingRect().width() > before.width() + 200);
        QCOMPARE(rig.m_Node->inputPortDestPos(kA), rig.inputSquare(kA));
        QVERIFY(rig.m_Node->sceneBoundingRect().contains(rig.inputSquare(kC) + QPointF(0, 9)));
    }
};

QTEST_MAIN(tst_OrvNgExtendedNode)
#include "tst_OrvNgExtendedNode.moc"
