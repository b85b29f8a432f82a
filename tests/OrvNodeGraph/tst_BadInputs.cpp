#include "OrvNodeGraph/OrvGraphicsLinearLayout.h"
#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgBackdropNodeRectChangeUndo.h"
#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgResizeTriangleItem.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "support/DebugRecorder.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QGraphicsPathItem>
#include <QGraphicsSceneMouseEvent>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <cfloat>
#include <climits>
#include <functional>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

const QList<double> kFloats{kNan, kInf, -kInf, -0.0, 5e-324, 1e-300, -1.0, 0.0, 1e7, -1e7, 2.2e9,
    -2.2e9, 1e12, 1e300, -DBL_MAX, DBL_MAX};
const QList<int> kInts{-1, 0, 1, 2, 3, 4, 5, 77, 1000, INT_MIN, INT_MAX};
const QList<QRectF> kRects{{}, {5, 5, 0, 0}, {0, 0, -50, -9}, {0, 0, 90, 0}, {kNan, 0, 10, 10},
    {0, 0, kNan, 10}, {0, 0, kInf, kInf}, {-kInf, 0, 10, 10}, {1e7, 1e7, 1e7, 1e7},
    {2.2e9, -2.2e9, 10, 10}, {-1e300, -1e300, 2e300, 2e300}, {0, 0, 1e-300, 1e-300}};

QStringList strings()
{
    QStringList all{{}, q(""), q(" "), q("e\u0301\u0301\u0301"), q("\u05d0\u202eb"), q("a\n\tb"),
        q("<b>"), q("&nbsp;"), q("<p><table width=99999999><b"), q("<img src='x' width=1e9>"),
        q("%1%n"), q("%s%n"), q("a/b=c"), q("a"), q("A"), q("out"), q("group"),
        QString(QChar(0xd800)), QString(2, QChar(0))};
    for (const int size : {128, 129, 65536, 65537, 1000000})
        all.append(QString(size, QLatin1Char('m')));
    return all;
}

template <typename Base> struct Open : Base
{
    using Base::Base;
    using Base::setRect;
};

/// Nodes of every class, connected. `when` says what surrounds them: a view, a scene without one, none, or
/// a view in the middle of a drag, a band or a cutting path.
struct World
{
    QString m_When;
    QGraphicsScene m_Scene;
    QGraphicsScene m_Other;
    TestView m_View;
    TestView m_Second;
    QList<QPointer<OrvNgNode>> m_Nodes;
    QPointer<OrvNgExtendedNode> m_Source = make<OrvNgExtendedNode>({-150, -60});
    QPointer<OrvNgExtendedNode> m_Node = make<OrvNgExtendedNode>({20, -60});
    QPointer<OrvNgDotNode> m_Dot = make<OrvNgDotNode>({-60, 70});
    QPointer<Open<OrvNgUINode>> m_Note = make<Open<OrvNgUINode>>({-150, 40});
    QPointer<Open<OrvNgTextNode>> m_Text = make<Open<OrvNgTextNode>>({120, 40});
    QPointer<OrvNgBackdropNode> m_Backdrop = make<OrvNgBackdropNode>({-190, -90});
    QPointer<OrvNgEdge> m_Edge;
    DebugRecorder m_Reports;

    explicit World(const QString& when)
        : m_When(when)
    {
        m_MenuCloser.start(5);
        m_MenuCloser.callOnTimeout([] {
            if (QWidget* menu = QApplication::activePopupWidget())
                menu->close();
        });
        for (OrvNgExtendedNode* node : {m_Source.data(), m_Node.data()}) {
            for (const char* name : {"a", "b", "c", "d"})
                node->createInput(q(name), *name == 'a', {});
            for (const char* name : {"out", "rest"})
                node->createOutputPoint(q(name), true);
            node->setInputPortClusterMap({{q("group"), {q("c"), q("d")}}});
            node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
        }
        m_Dot->createInput(q("a"), false, {});
        m_Dot->createOutputPoint(q("out"), true);
        m_Edge = m_Node->input(q("b"));
        m_Edge->setSourceNode(m_Source, q("out"));
        m_Node->input(q("c"))->setSourceNode(m_Dot, q("out"));
        m_Dot->input(q("a"))->setSourceNode(m_Source, q("rest"));
        if (when == q("no view") || when == q("off-scene"))
            return;
        for (TestView* view : {&m_View, &m_Second}) {
            view->setScene(&m_Scene);
            view->init();
            view->centerViewOn({}, true);
        }
        m_View.show();
        m_View.setGridEnabled(true);
        if (when == q("drag"))
            drag({250, 50});
        else if (when == q("band"))
            drag({380, 5});
        else if (when == q("cut")) {
            m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
            drag({380, 5});
        }
    }
    QTimer m_MenuCloser; ///< a drop that finds several inputs opens a menu and waits
    ~World()
    {
        m_View.setScene(nullptr);
        m_Second.setScene(nullptr);
        for (const QPointer<OrvNgNode>& node : qAsConst(m_Nodes))
            delete node;
        flushEvents();
    }
    template <typename Node> Node* make(const QPointF& pos)
    {
        auto* node = new Node(nullptr);
        if (m_When != q("off-scene"))
            m_Scene.addItem(node);
        node->setPos(pos);
        m_Nodes.append(node);
        return node;
    }
    void send(QEvent::Type type, const QPoint& pos, Qt::MouseButton button, Qt::MouseButtons held)
    {
        QMouseEvent event(type, pos, m_View.viewport()->mapToGlobal(pos), button, held, {});
        QApplication::sendEvent(m_View.viewport(), &event);
    }
    void drag(const QPoint& from)
    {
        send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int i = 1; i < 4; ++i)
            send(QEvent::MouseMove, from - QPoint(15 * i, -8 * i), Qt::NoButton, Qt::LeftButton);
    }
    OrvNgNode* dying()
    {
        auto* node = make<OrvNgExtendedNode>({});
        node->createInput(q("a"), false, {});
        node->createOutputPoint(q("out"), true);
        node->destroy();
        return node;
    }
    QList<OrvNgNode*> nodes()
    {
        auto* foreign = make<OrvNgDotNode>({});
        m_Other.addItem(foreign);
        foreign->createInput(q("a"), false, {});
        foreign->createOutputPoint(q("out"), true);
        return {nullptr, foreign, dying(), m_Node, m_Dot, m_Backdrop, m_Note};
    }
    QList<OrvNgEdge*> edges()
    {
        OrvNgEdge* gone = m_Source->input(q("d"));
        if (gone)
            gone->destroy();
        return {nullptr, gone, m_Source->input(q("a")), m_Edge, m_Node->virtualInputEdge(),
            m_Source->outputEdge(q("rest"))};
    }
    void paint()
    {
        QImage image(m_View.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
        if (!image.isNull())
            m_View.viewport()->render(&image);
    }
    /// Of the nodes; what is not a number leaves it as it is.
    QVector<QRectF> geometry() const
    {
        QVector<QRectF> all;
        for (const OrvNgNode* node :
            QList<OrvNgNode*>{m_Source, m_Node, m_Dot, m_Note, m_Text, m_Backdrop})
            all.append(node ? node->sceneBoundingRect() : QRectF());
        return all;
    }
    QString check();
    QString checkNode(OrvNgNode& node);
    QString checkUse();
};

template <typename Value> bool isNumber(const Value&)
{
    return true;
}
bool isNumber(double value)
{
    return qIsFinite(value);
}
bool isNumber(const QRectF& rect)
{
    return qIsFinite(rect.x() + rect.y() + rect.width() + rect.height());
}

bool isSound(const QRectF& rect)
{
    return qIsFinite(rect.x()) && qIsFinite(rect.y()) && qIsFinite(rect.right())
        && qIsFinite(rect.bottom()) && rect.width() >= 0.0 && rect.height() >= 0.0;
}

QString World::checkNode(OrvNgNode& node)
{
    if (!isSound(node.sceneBoundingRect()) || !isSound(node.shape().boundingRect()))
        return q("bounds");
    if (!(qMax(qAbs(node.x()), qAbs(node.y())) <= 2e8) || !isSound(node.nodeShapeRect()))
        return q("place");
    QSet<QString> names;
    for (OrvNgEdge* edge : node.inputs()) {
        names.insert(edge->text());
        if (edge->destNode() != &node && !edge->isDragging())
            return q("input edge of another node");
        if (!isSound(edge->mainEdge()->sceneBoundingRect()) || !isSound(edge->sceneBoundingRect()))
            return q("bounds of an edge");
    }
    if (names.size() != node.inputCount())
        return q("inputs of one name");
    for (OrvNgEdge* edge : node.outputs()) {
        if (edge->sourceNode() != &node || node.outputs().count(edge) != 1)
            return q("output edge of another node");
    }
    QStringList points = node.outputPoints();
    if (points.removeDuplicates() > 0)
        return q("outputs of one name");
    auto* extended = qobject_cast<OrvNgExtendedNode*>(&node);
    for (const QString& name : extended ? names.values() : QStringList()) {
        if (!extended->inputPort(name) || extended->inputPort(name)->originalPortName() != name)
            return q("port");
    }
    for (const QString& cluster : extended ? extended->clusteredOutputPorts() : QStringList()) {
        if (node.outputPoints().contains(cluster))
            return q("cluster named like an output");
    }
    return {};
}

/// What is wrong, empty when nothing is.
QString World::check()
{
    for (const QPointer<OrvNgNode>& node : qAsConst(m_Nodes)) {
        const QString fault = node && !node->isBeingDeleted() ? checkNode(*node) : QString();
        if (!fault.isEmpty())
            return q(node->metaObject()->className()) + q(": ") + fault;
    }
    for (TestView* view : {&m_View, &m_Second}) {
        const QTransform at = view->transform();
        if (!at.isInvertible() || !(at.m11() > 0.0) || at.m11() != at.m22() || at.m12() != 0.0
            || !isSound(view->sceneRect()) || !isSound(view->visibleNodeBounds())
            || !isSound(view->viewportInSceneCoords()))
            return q("view");
    }
    if (m_View.scene())
        paint();
    return {};
}

/// A good call after the bad ones does what it should.
QString World::checkUse()
{
    OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    send(QEvent::MouseButtonRelease, {200, 150}, Qt::LeftButton, Qt::NoButton);
    m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
    flushEvents();
    auto* node = make<OrvNgExtendedNode>({7, 9});
    node->createInput(q("in"), false, {});
    node->createOutputPoint(q("out"), true);
    for (const QPointer<OrvNgNode>& other : qAsConst(m_Nodes)) {
        if (!other || other == node || other->isBeingDeleted())
            continue;
        const QRectF before = other->sceneBoundingRect();
        other->setPos(other->pos() * 0.5 + QPointF(3, 4));
        const double width = qMin(before.width(), 1e9);
        if (qAbs(other->sceneBoundingRect().width() - width) > 1e-6 * width + 1)
            return q("a node's size changes as it moves");
        if (other->outputPoints().isEmpty())
            continue;
        node->input(q("in"))->setSourceNode(other, other->outputPoints().constFirst());
        if (!node->input(q("in"))->isFullConnected())
            return q("cannot be connected");
    }
    m_View.centerViewOn({12, 13}, true);
    if (m_View.scene() && !isNear(m_View.center(), {12, 13}, 1e-3))
        return q("cannot be centred");
    return check();
}

using W = World&;
using S = const QString&;
using I = const int&;
using F = const double&;
using R = const QRectF&;
template <typename Value> using Calls = QList<std::function<void(World&, const Value&)>>;

/// Each call with each value, twice in a row, on a world of its own.
template <typename Value> void runCalls(const QList<Value>& values, const Calls<Value>& calls)
{
    QFETCH(QString, when);
    QStringList faults;
    for (int i = 0; i < calls.size(); ++i) {
        World world(when);
        QString fault;
        for (int j = 0; j < 2 * values.size() && fault.isEmpty(); ++j) {
            const QVector<QRectF> before = world.geometry();
            if (world.m_Node && world.m_Source && world.m_Edge)
                calls.at(i)(world, values.at(j / 2));
            fault = world.check();
            if (!isNumber(values.at(j / 2)) && world.geometry() != before)
                fault += q("moved by what is not a number");
            if (!fault.isEmpty())
                faults.append(q("call %1, value %2: %3").arg(i).arg(j / 2).arg(fault));
        }
        flushEvents();
        fault = world.checkUse();
        if (!fault.isEmpty())
            faults.append(q("after call %1: %2").arg(i).arg(fault));
    }
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
}

QStringList s_Warnings;

} // namespace

class tst_BadInputs : public QObject
{
    Q_OBJECT

    static void surroundings()
    {
        QTest::addColumn<QString>("when");
        for (const char* when : {"in a view", "off-scene", "no view", "drag", "band", "cut"})
            QTest::newRow(when) << q(when);
    }

private Q_SLOTS:
    void initTestCase()
    {
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            // The platform's remarks on windows, and Qt's on a line of a million characters.
            if (type != QtDebugMsg && !text.contains(q("does not support"))
                && !text.contains(q("text too long")))
                s_Warnings.append(text);
        });
    }
    void cleanup()
    {
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
        const QStringList warnings = s_Warnings;
        s_Warnings.clear();
        QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join(QLatin1Char('\n'))));
    }

    // clang-format off
    void texts_data() { surroundings(); }
    void texts()
    {
        QFETCH(QString, when);
        const auto positions = [](S s) {
            return QHash<QString, QPair<QPoint, QPoint>>{{s, {{INT_MAX, INT_MIN}, {INT_MIN, 9}}}};
        };
        runCalls<QString>(strings().mid(0, when == q("off-scene") ? -1 : when == q("in a view") ? 23 : 21),
            {[](W w, S s) { w.m_Node->setText(s); w.m_Dot->setText(s); w.m_Text->setText(s); },
                [](W w, S s) { w.m_Note->setLabel(s); },
                [](W w, S s) { w.m_Backdrop->setLabel(s); },
                [](W w, S s) { w.m_Backdrop->setTitleText(s); },
                [](W w, S s) { w.m_Node->createInput(s, true, {s, q("_hidden")}); w.m_Node->applyPortVisibilityMode(); },
                [](W w, S s) { w.m_Node->createOutputPoint(s, true); w.m_Node->createOutputPoint(s, false); },
                [](W w, S s) { w.m_Node->removeInput(s); w.m_Node->removeOutputPoint(s); },
                [](W w, S s) { w.m_Node->renameInput(w.m_Node->sortedInputPoints().constLast(), s); },
                [](W w, S s) { w.m_Node->renameOutputPoint(w.m_Node->outputPoints().constLast(), s); },
                [](W w, S s) { w.m_Node->renameInput(s, q("group")); w.m_Node->renameOutputPoint(s, s); },
                [](W w, S s) { w.m_Node->refreshPrettyName(s); w.m_Node->setConnectionPrettyNames({{s, s}}, {{s, s}}); w.m_Node->refreshPrettyName(s); },
                [positions](W w, S s) { w.m_Dot->setConnectionPositions(positions(s), positions(s)); },
                [](W w, S s) { w.m_Node->setCategory(s); w.m_Node->setCorrectColor(); QLinearGradient out; w.m_Node->getNodeBrush(out); },
                [](W w, S s) { w.m_Node->setInputPortVisible(s, true); w.m_Node->setOutputPortVisible(s, true); w.m_Node->inputPortDestPos(s); w.m_Node->outputPortSourcePos(s); },
                [](W w, S s) { w.m_Node->addOutputEdge(s); w.m_Node->removeUnusedOutput(s); w.m_Node->updateInputTags(s, {s}); },
                [](W w, S s) { w.m_Node->createVirtualInputEdge(s); w.m_Node->createTemporaryOutputEdge(s); },
                [](W w, S s) { w.m_Node->setInputPortClusterMap({{s, {s, q("a"), q("b")}}, {s, {}}, {q("y"), {q("a"), q("y")}}}); w.m_Node->setPortListMode(OrvNgExtendedNode::PORT_LIST_GROUPED); },
                [](W w, S s) { w.m_Node->setOutputPortClusterMap({{s, {s, q("out")}}, {q("out"), {}}}); w.m_Node->createOutputPoint(s, true); },
                [](W w, S s) { w.m_Node->reorderInputPorts({s, q("b"), s, q("group")}); w.m_Node->reorderOutputPorts({s, s}); },
                [](W w, S s) { w.m_Node->inputClusterPortName2ClusterList(s); w.m_Node->setClusteredInputEdgeSource(s, w.m_Source, s); w.m_Node->setClusteredInputEdgeSource(q("a"), w.m_Source, s); },
                [](W w, S s) { w.m_Node->setIconVisible(true, w.m_Node->addIcon(s)); },
                [](W w, S s) { w.m_Edge->setText(w.m_Edge->text(), s); w.m_Edge->setTextVisible(true); },
                [](W w, S s) { w.m_Edge->setTags({s, q("_thin"), q("_dotted")}); w.m_Edge->setSourceOutputPoint(s); },
                [](W w, S s) { w.m_Edge->setSourceNode(w.m_Source, s); w.m_Edge->setNewSourceNodeToEdge(w.m_Dot, s); w.m_Edge->setNewDestNodeToEdge(w.m_Dot, s); },
                [](W w, S s) { w.m_Node->inputPort(q("b"))->setText(s); }});
    }

    void numbers_data() { surroundings(); }
    void numbers()
    {
        using Mode = OrvNgExtendedNode::PortListMode;
        runCalls<int>(kInts,
            {[](W w, I i) { w.m_Node->removeInput(i); w.m_Node->removeOutput(i); w.m_Node->removeOutputPoint(i); },
                [](W w, I i) { w.m_Node->setShapeType(i); w.m_Node->updateIcons(); },
                [](W w, I i) { w.m_Node->setPortListMode(Mode(i)); w.m_Node->notifyNodePortListModeChanged(i); w.m_Node->nextPortListMode(); },
                [](W w, I i) { w.m_Node->addIcon(q("NodeExpanded")); w.m_Node->setIconVisible(i % 2 == 0, i); },
                [](W w, I i) { w.m_Text->increaseSize(i); },
                [](W w, I i) { OrvNgNode* node; OrvNgEdge* edge; OrvNgPort* port; for (int mask = 0; mask < 8; ++mask) w.m_View.itemsUnderPos({i, i}, mask & 1 ? &node : nullptr, mask & 2 ? &edge : nullptr, mask & 4 ? &port : nullptr); },
                [](W w, I i) { w.m_Node->pauseInvalidation(i % 2 == 0); w.m_Node->removeInput(0); w.m_Node->pauseInvalidation(false); OrvGraphicsLinearLayout layout(Qt::Vertical); layout.setInvalidationPaused(true); layout.activate(); layout.setInvalidationPaused(i > 0); layout.invalidate(); },
                [](W w, I i) { w.m_Backdrop->setZOrder(i); w.m_Backdrop->refreshChildrenList(true); w.m_Backdrop->restackAmongNeighbours(); },
                [](W w, I i) { w.m_View.setCursorTrackingMode(OrvNgView::OrvCursorTrackingMode(i)); },
                [](W w, I i) { w.m_Dot->setPixmap(QPixmap(i == 77 ? 20000 : 1, i > 1 ? 1 : 0), QPoint(i, 9)); },
                [](W w, I i) { w.m_View.resize(qBound(0, i, 3000), qBound(0, i, 1)); },
                [](W w, I i) { w.m_View.setPosByViewportPos(w.m_Node, QPoint(i, i)); w.m_View.setPosByViewportPos(w.m_Node->inputPort(q("b")), QPoint(i, 0)); },
                [](W w, I i) {
                    auto* grid = OrvShaderNetworkManager::instance();
                    grid->setSnapToGrid(true); grid->setGridWidth(i); grid->setGridHeight(i);
                    w.m_Node->setPos(i, 3);
                    for (const double scale : {0.0071, 0.07, 100.0, 1.0}) {
                        w.m_View.setTransform(QTransform::fromScale(scale, scale));
                        w.paint();
                    }
                    grid->setGridWidth(20); grid->setGridHeight(20);
                },
                [](W w, I i) {
                    QWheelEvent event({9, 9}, w.m_View.mapToGlobal({9, 9}), {}, {i, i}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
                    for (int click = 0; click < 300 && w.m_View.scene(); ++click)
                        QApplication::sendEvent(w.m_View.viewport(), &event);
                }});
    }

    void floats_data() { surroundings(); }
    void floats()
    {
        const auto path = [](double f) { return QList<QPointF>{{f, 0}, {0, f}, {f, f}, {f, f}, {-90, -90}, {90, 90}}; };
        runCalls<double>(kFloats,
            {[](W w, F f) { for (OrvNgNode* node : QList<OrvNgNode*>{w.m_Node, w.m_Dot, w.m_Note, w.m_Text, w.m_Backdrop}) { node->setPos(f, f); node->setPos(0, f); } },
                [](W w, F f) { w.m_Backdrop->setPosition({f, 0}); w.m_Backdrop->resizeNode({f, f}); },
                [](W w, F f) { w.m_Edge->adjust(QPointF(f, 0), QPointF(0, -f), 0.5F); w.m_Edge->setTextVisible(true); w.m_Edge->setBypassed(true); w.m_Edge->switchToDotableMode(true); },
                [](W w, F f) { w.m_Edge->adjust(QPointF(f, f), QPointF(f, f + 1e-5), 2.0F); w.m_Edge->adjust({f, f}, {f, f}, -1.0F); },
                [](W w, F f) { w.m_Edge->setTextVisible(true); w.m_Edge->adjust(QPointF(0, 0), QPointF(1e7, 0), qAbs(f) > FLT_MAX ? float(kInf) : float(f)); },
                [](W w, F f) { w.m_Dot->setConnectionTextPositions({{q("a"), float(qBound(-1e38, f, 1e38))}}, {{q("out"), float(kNan)}}); },
                [](W w, F f) { w.m_Edge->grabEdge({f, f}, false, false); w.m_Edge->releaseMouse({}, {f, f}, false); },
                [](W w, F f) { w.m_Edge->grabEdge({0, 0}, true, true); w.m_Edge->grabEdge({f, 0}, true, false); w.m_Edge->releaseMouse({}, {0, f}, true); w.m_Edge->releaseMouse({}, {0, f}, true); },
                [](W w, F f) { w.m_Edge->highlightEdgeBasedOnClosestNode({f, f}); w.m_Node->inputPointUnderPos({f, 0}); w.m_Node->isDoubleClickValid({f, f}); w.m_Node->grabEdgeForPortUnderPos({f, f}); },
                [](W w, F f) { w.m_View.zoomIn(f); w.m_View.zoomOut(f, QGraphicsView::AnchorUnderMouse); },
                [](W w, F f) { w.m_View.centerViewOn({f, 0}, false); w.m_View.setNewSceneRect(QPointF(0, f)); },
                [path](W w, F f) { w.m_View.cursorPathBounds(path(f), f); w.m_View.edgesCrossingPath(path(f)); w.m_View.severEdgesAlongPath(path(f)); },
                [](W w, F f) { OrvNgResizeTriangleItem alone(8.0F, Qt::red, w.m_Node, Qt::TopLeftCorner), own(8.0F, Qt::red, w.m_Backdrop, Qt::TopLeftCorner); alone.resizeParent({f, f}); own.resizeParent({f, f}); own.resizeParent({f, 0}); },
                [](W w, F f) { OrvNgNodePositionChangeUndo step(w.m_Node, {f, 0}, {0, f}); step.undo(); step.redo(); },
                [](W w, F f) { w.m_Node->inputPort(q("b"))->setGeometry({f, 0, 9, f}); w.m_Node->updateWidget(); }});
    }

    void rectangles_data() { surroundings(); }
    void rectangles()
    {
        runCalls<QRectF>(kRects,
            {[](W w, R r) { w.m_Backdrop->setRect(r); w.m_Backdrop->refreshChildrenList(true); },
                [](W w, R r) { w.m_Backdrop->wrapAroundSelection(r, true); w.m_Backdrop->wrapAroundSelection(r, false); },
                [](W w, R r) { w.m_Backdrop->wrapAroundNodes(r, {nullptr, w.m_Backdrop, w.dying(), w.m_Node}); },
                [](W w, R r) { w.m_Note->setRect(r); w.m_Text->setRect(r); },
                [](W w, R r) { w.m_View.fitInView(r, Qt::KeepAspectRatio); w.m_View.setTransform({}); },
                [](W w, R r) { OrvNgBackdropNodeRectChangeUndo step(w.m_Backdrop, r, r.translated(9, 9)); step.undo(); step.redo(); },
                [](W, R r) {
                    QImage image(9, 9, QImage::Format_RGB32);
                    QPainter painter(&image);
                    for (int type = -1; type < 10; ++type)
                        OrvNgNode::drawNodeShape(&painter, r, OrvNgNode::NodeShapeType(type), q("Misc"));
                }});
    }

    void pointers_data() { surroundings(); }
    void pointers()
    {
        QFETCH(QString, when);
        using N = OrvNgNode* const&;
        using E = OrvNgEdge* const&;
        // Each value comes from the world of its call: an index into its lists.
        const auto ofNodes = [](void (*call)(World&, N)) { return [call](W w, I i) { OrvNgNode* node = w.nodes().at(i % 7); call(w, node); flushEvents(); }; };
        const auto ofEdges = [](void (*call)(World&, E)) { return [call](W w, I i) { OrvNgEdge* edge = w.edges().at(i % 6); call(w, edge); flushEvents(); }; };
        runCalls<int>({0, 1, 2, 3, 4, 5, 6},
            {ofNodes([](W w, N n) { w.m_Edge->setSourceNode(n, q("out")); }), ofNodes([](W w, N n) { w.m_Edge->setDestNode(n); }),
                ofNodes([](W w, N n) { w.m_Edge->setNewSourceNodeToEdge(n, q("out")); w.m_Edge->setNewDestNodeToEdge(n, q("a")); }),
                ofNodes([](W w, N n) { w.m_Edge->insertNodeIntoEdge(n, n ? n->input(q("a")) : nullptr); w.m_Edge->insertNodeIntoEdge(n, w.m_Edge); }),
                ofNodes([](W w, N n) { w.m_Node->replace(n); }), ofNodes([](W w, N n) { w.m_Backdrop->replace(n); }),
                ofNodes([](W w, N n) { w.m_Node->setClusteredInputEdgeSource(q("a"), n, q("out")); w.m_Node->notifyInputSourceChange(n, {}, {}); }),
                ofNodes([](W w, N n) { QList<OrvNgBackdropNode*> all; w.m_Backdrop->addBackdropChildren(n, all); w.m_Backdrop->addBackdropChildren(n, all); w.m_Backdrop->setPosition({1, 2}); w.m_Backdrop->selectChildren(true); }),
                ofNodes([](W w, N n) { OrvNgNodePositionChangeUndo step(n); OrvNgBackdropNodeRectChangeUndo resize(qobject_cast<OrvNgBackdropNode*>(n)); flushEvents(); step.undo(); resize.undo(); Q_UNUSED(w) }),
                ofNodes([](W w, N n) { w.m_View.setPosByViewportPos(n, {1, 2}); OrvNgView::OrvNgSelectionIdSorter(n, w.m_Node); OrvNgView::OrvNgSelectionIdSorter(w.m_Node, n); }),
                ofNodes([](W w, N n) { OrvNgDotableMarkerItem marker(nullptr); w.m_Scene.addItem(&marker); marker.setRootNode(n); if (n != w.m_Node) delete n; QGraphicsSceneMouseEvent press(QEvent::GraphicsSceneMousePress); press.setButton(Qt::LeftButton); w.m_Scene.sendEvent(&marker, &press); w.m_Scene.removeItem(&marker); }),
                ofNodes([](W w, N n) { if (n && n != w.m_Node) { n->destroy(); n->createInput(q("z"), true, {}); n->createOutputPoint(q("z"), true); n->destroy(); delete n; } }),
                ofEdges([](W w, E e) { w.m_Dot->containsEdge(e); w.m_Node->doesEdgeBelongToThisNode(e); w.m_Node->portForEdgeContains(e, {}); w.m_Node->notifyEdgeDotableMarkerIsClicked(e); }),
                ofEdges([](W w, E e) { w.m_Dot->setupNodeForInsertionIntoEdge(e); w.m_Dot->processAutoinsert(); }),
                ofEdges([](W w, E e) { w.m_Edge->insertNodeIntoEdge(w.m_Dot, e); }),
                ofEdges([](W w, E e) { if (e && e != w.m_Edge) { e->grabEdge({}, false, false); e->detachFromDestNode(); e->detachFromSourceNode(); e->releaseMouse({}, {}, false); } })});
    }
    // clang-format on

    /// Whatever a property takes, it keeps: it never tells twice of one value, and all classes live with it.
    void style()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        const QMetaObject* meta = style.metaObject();
        QHash<int, QVariantList> values;
        for (const double f : kFloats)
            values[QMetaType::Float].append(
                qAbs(f) > FLT_MAX ? (f > 0 ? FLT_MAX : float(kNan)) : float(f));
        for (const int i : kInts)
            values[QMetaType::Int].append(i);
        for (const QRectF& rect : kRects)
            values[QMetaType::QPointF].append(rect.topLeft());
        values[QMetaType::QPoint] = {QPoint(INT_MAX, INT_MIN), QPoint(-1, 0)};
        values[QMetaType::QColor] = {QColor(), QColor(1, 2, 3, 0)};
        values[QMetaType::QBrush] = {QBrush(), QBrush(QPixmap())};
        values[QMetaType::QPen] = {QPen(Qt::NoPen), QPen(QBrush(), 1e300)};
        values[qMetaTypeId<QPair<QColor, QColor>>()]
            = {QVariant::fromValue(QPair<QColor, QColor>())};
        values[qMetaTypeId<QLinearGradient>()] = {QVariant::fromValue(QLinearGradient())};
        values[qMetaTypeId<OrvColor>()]
            = {QVariant::fromValue(OrvColor(float(kNan), 1e30F, -1.0F, 2.0F)),
                QVariant::fromValue(OrvColor(9.0F, -9.0F, 0.0F, 0.0F))};
        int tried = 0;
        for (int p = meta->propertyOffset(); p < meta->propertyCount(); ++p) {
            const QMetaProperty property = meta->property(p);
            for (const QVariant& value : qAsConst(values[property.userType()])) {
                const QVariant before = property.read(&style);
                property.write(&style, value);
                QSignalSpy changes(&style, property.notifySignal());
                property.write(&style, value);
                QVERIFY2(changes.isEmpty(), property.name());
                style.refreshProperties();
                World world(q("in a view"));
                const QString fault = world.check();
                QVERIFY2(fault.isEmpty(),
                    qPrintable(q("%1 = %2: %3").arg(q(property.name()), value.toString(), fault)));
                property.write(&style, before);
                ++tried;
            }
            property.reset(&style);
        }
        style.refreshProperties();
        QVERIFY(tried > 300);
    }
};

QTEST_MAIN(tst_BadInputs)
#include "tst_BadInputs.moc"
