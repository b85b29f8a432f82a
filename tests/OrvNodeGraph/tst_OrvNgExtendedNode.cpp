#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"
#include "support/ExtendedRig.h"
#include "support/TestTable.h"

#include <QFontMetrics>
#include <QtTest>

using Node = OrvNgExtendedNode;

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
        const TestTable<int, bool, QString, bool> row("mode", "connected", "inputs", "outputs");
        row("expanded", Node::PORT_LIST_EXPANDED, true, "a b c", true);
        row("top to bottom", Node::PORT_LIST_T2B, true, "", false);
        row("grouped", Node::PORT_LIST_GROUPED, false, "c group", true);
        row("only connected, one", Node::PORT_LIST_ONLY_CONNECTED, true, "b", false);
        row("only connected, none", Node::PORT_LIST_ONLY_CONNECTED, false, "", false);
        row("collapsed", Node::PORT_LIST_COLLAPSED, true, "", false);
    }
    void mode_decidesShownPorts()
    {
        QFETCH(int, mode);
        QFETCH(bool, connected);
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
            const QStringList inputs = rig.shownInputs();
            QTEST(inputs.join(QLatin1Char(' ')), "inputs");
            QCOMPARE(rig.m_Node->isOutputPortVisible(kOut), outputs);
            const int rows = inputs.size() + (outputs ? 2 : 0);
            const int gaps = qMax(0, inputs.size() - 1) + (outputs ? 1 : 0);
            const double row = qMax(18, QFontMetrics(QFont()).height());
            QCOMPARE(rig.m_Node->boundingRect().height(), // margins above and below the lists
                rig.m_Node->nodeShapeRect().height() + 5 + rows * row + gaps * 5 + 5);
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
            QVERIFY(!rig.m_Node->isInputPortVisible(kA));
        }
    }

    void connecting_updatesOnlyConnectedPorts()
    {
        ExtendedRig rig;
        rig.setMode(Node::PORT_LIST_ONLY_CONNECTED);
        rig.m_Source->setPortListMode(Node::PORT_LIST_ONLY_CONNECTED);
        for (Node* source : {rig.m_Source, static_cast<Node*>(nullptr)}) {
            rig.m_Node->input(kB)->setSourceNode(source, source ? kOut : QString());
            QCOMPARE(rig.shownInputs(), source ? QStringList(kB) : QStringList());
            QCOMPARE(rig.m_Source->isOutputPortVisible(kOut), source != nullptr);
        }
    }

    void badCalls_areReportedAndChangeNothing()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        node.setInputPortClusterMap({{kGroup, {kA}}});
        rig.setMode(Node::PORT_LIST_GROUPED);
        DebugRecorder recorder;
        node.setPortListMode(static_cast<Node::PortListMode>(5));
        node.removeInput(-1);
        QCOMPARE(node.inputClusterPortName2ClusterList(kA), QStringList());
        node.setInputPortClusterMap({{kGroup, {kA}}, {kB, {kC}}});
        node.renameInput(kA, kB);
        node.createInput(kA, true, {});
        node.setIconVisible(true, 0);
        node.setInputPortVisible(kOuts, true);
        node.applyPortVisibilityMode();
        QString reported;
        for (const DebugRecorder::Report& report : recorder.reports())
            reported += report.file.section(QLatin1Char('/'), -1) + QStringLiteral(": ")
                + report.message + QLatin1Char('\n');
        QCOMPARE(reported,
            QStringLiteral("OrvNgExtendedNode: No such port list mode : 5\n"
                           "OrvNgExtendedNode: Specified index is out of range\n"
                           "OrvNgNode: Specified index is out of range\n"
                           "OrvNgExtendedNode: Such InputClusterPortName does not exist : a\n"
                           "OrvNgExtendedNode: Cluster name is empty or taken : b\n"
                           "OrvNgExtendedNode: Input name is taken : b\n"
                           "OrvNgNode: [ !! ] Input 'a' exists already on node ''\n"));
        QCOMPARE(node.portListMode(), Node::PORT_LIST_GROUPED);
        QCOMPARE(node.sortedInputPoints(), QStringList({kA, kB, kC}));
        QCOMPARE(rig.shownInputs(), QStringList({kB, kC, kGroup}));
        QVERIFY(!node.inputPort(kB)->isClustered() && !node.inputPortBelongsToCluster(kC));

        node.createOutputPoint(kOuts, false); // without a port
        recorder.clear();
        node.removeOutputPoint(kOuts);
        QCOMPARE(recorder.messages(), QStringList(QStringLiteral("Could not remove an edge 2")));
    }

    // Points, names and clusters

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
        QCOMPARE(rig.m_Node->inputPort2ClusterName(renamed), kGroup);
    }

    void prettyNames_areShownByPorts()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        const QString blank = QStringLiteral("blank"), late = QStringLiteral("late");
        node.setConnectionPrettyNames(
            {{late, kWide}, {blank, QStringLiteral("  ")}, {kA, kWide}}, {{blank, QString()}});
        node.createInput(late, false, {});
        node.createInput(blank, false, {});
        node.createOutputPoint(blank, true);
        QCOMPARE(node.inputPort(late)->text(), kWide);
        QCOMPARE(node.inputPort(blank)->text(), QStringLiteral("Input"));
        QCOMPARE(node.outputPort(blank)->text(), blank);
        QCOMPARE(node.inputPort(kA)->text(), kA);
        node.refreshPrettyName(kA);
        QCOMPARE(node.inputPort(kA)->text(), kWide);
    }

    void reorder_putsClustersFirstThenNamedThenRest()
    {
        ExtendedRig rig;
        const QString second = QStringLiteral("second");
        rig.m_Node->setInputPortClusterMap({{kGroup, {kA}}, {second, {kB}}});
        rig.setMode(Node::PORT_LIST_GROUPED);
        rig.m_Node->reorderInputPorts({kC, QStringLiteral("unknown"), kB, kC});
        QCOMPARE(rig.m_Node->sortedInputPoints(), QStringList({kC, kB, kA}));
        const double middle = rig.inputSquare(second).y();
        QVERIFY(rig.inputSquare(kGroup).y() < middle && middle < rig.inputSquare(kC).y());
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
        QCOMPARE(node.input(kGroup)->prettyText(), QString()); // its edge carries no label
        QCOMPARE(node.inputPort(kGroup)->text(), kGroup);
        node.setInputPortClusterMap({{kWide, {kC}}});
        QVERIFY(!node.inputPort(kGroup) && node.inputPort(kWide)->isClustered());
        QCOMPARE(node.inputPort2ClusterName(kA) + node.inputPort2ClusterName(kC), kWide);
        QCOMPARE(rig.shownInputs(), QStringList({kA, kB}));
        node.setInputPortClusterMap({});
        node.setOutputPortClusterMap({});
        QVERIFY(!node.hasClusteredPorts() && !node.outputPort(kOuts) && node.outputPort(kOut));
        QCOMPARE(node.inputCount(), 3);
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
    }

    void bundle_showsAndLabelsItsFirstEdge_data()
    {
        const TestTable<int> row("mode");
        row("grouped", Node::PORT_LIST_GROUPED);
        row("collapsed", Node::PORT_LIST_COLLAPSED);
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
        QString seen;
        const auto look = [&] {
            for (const OrvNgEdge* edge : node.inputs()) {
                QCOMPARE(edge->isTextVisible(), edge->isVisible());
                if (edge->isVisible())
                    seen.append(edge->text());
            }
        };
        look();
        first->setTags({QStringLiteral("_hidden")});
        look();
        first->setTags({});
        look();
        first->setSourceNode(nullptr, QString());
        look();
        first->setSourceNode(rig.m_Source, kOut);
        look();
        first->setDestNode(&other);
        look();
        node.removeInput(kB);
        look();
        QCOMPARE(seen, QStringLiteral("abababc"));
    }

    // Geometry

    void edges_attachAtPortClusterOrHeaderEnd()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        node.setInputConnectionPositions({{kA, {QPoint(-10, -20), QPoint(-10, -50)}}});
        node.setInputPortClusterMap({{kGroup, {kA, kB}}});
        node.setOutputPortClusterMap({{kOuts, {kOut}}});
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

    void geometry_isRightWithoutEventLoop()
    {
        ExtendedRig rig;
        Node& node = *rig.m_Node;
        rig.setMode(Node::PORT_LIST_EXPANDED);
        const double before = node.inputPortDestPos(kC).y();
        const double step = before - node.inputPortDestPos(kB).y();
        const double width = node.nodeShapeRect().width();
        node.setInputPortVisible(kA, false);
        QCOMPARE(node.inputPortDestPos(kC).y(), before - step);
        node.removeInput(kB);
        node.inputPort(kC)->setText(kWide);
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(node.inputPortDestPos(kC).y(), before - 2 * step);
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
    }
};

QTEST_MAIN(tst_OrvNgExtendedNode)
#include "tst_OrvNgExtendedNode.moc"
