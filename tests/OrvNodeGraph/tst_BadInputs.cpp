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
#include "support/Literals.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QGraphicsSceneMouseEvent>
#include <QtTest>

#include <cfloat>
#include <climits>
#include <functional>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

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

bool isNumber(const QVariant& value)
{
    const QRectF rect = value.toRectF();
    return qIsFinite(value.toDouble() + rect.x() + rect.y() + rect.width() + rect.height());
}

bool isSound(const QRectF& rect)
{
    return isNumber(rect) && rect.width() >= 0.0 && rect.height() >= 0.0;
}

template <typename Base> struct Open : Base
{
    using Base::Base;
    using Base::setRect;
};

/// Nodes of every class, connected. `when` says what surrounds them: a view, a scene without one, none, or
/// a view in the middle of a drag, a band or a cutting path.
struct World : ViewStage
{
    QString m_When;
    QGraphicsScene m_Other;
    QList<QPointer<OrvNgNode>> m_Nodes;
    QPointer<OrvNgExtendedNode> m_Source = make<OrvNgExtendedNode>({-150, -60});
    QPointer<OrvNgExtendedNode> m_Dest = make<OrvNgExtendedNode>({20, -60});
    QPointer<OrvNgDotNode> m_Dot = make<OrvNgDotNode>({-60, 70});
    QPointer<Open<OrvNgUINode>> m_Note = make<Open<OrvNgUINode>>({-150, 40});
    QPointer<Open<OrvNgTextNode>> m_Text = make<Open<OrvNgTextNode>>({120, 40});
    QPointer<OrvNgBackdropNode> m_Backdrop = make<OrvNgBackdropNode>({-190, -90});
    QPointer<OrvNgEdge> m_Edge;
    DebugRecorder m_Reports;
    QTimer m_MenuCloser; ///< a drop that finds several inputs opens a menu and waits
    QString m_Fault; ///< the first one found

    explicit World(const QString& when)
        : m_When(when)
    {
        m_MenuCloser.start(5);
        m_MenuCloser.callOnTimeout([] {
            if (QWidget* menu = QApplication::activePopupWidget())
                menu->close();
        });
        for (OrvNgExtendedNode* node : {m_Source.data(), m_Dest.data()}) {
            for (const char* name : {"a", "b", "c", "d"})
                node->createInput(q(name), *name == 'a', {});
            for (const char* name : {"out", "rest"})
                node->createOutputPoint(q(name), true);
            node->setInputPortClusterMap({{q("group"), {q("c"), q("d")}}});
            node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
        }
        addPoints(m_Dot.data());
        m_Edge = m_Dest->input(q("b"));
        m_Edge->setSourceNode(m_Source, q("out"));
        m_Dest->input(q("c"))->setSourceNode(m_Dot, q("out"));
        m_Dot->input(q("a"))->setSourceNode(m_Source, q("rest"));
        if (when == q("no view") || when == q("off-scene"))
            m_View.setScene(nullptr);
        m_View.setGridEnabled(true);
        if (when == q("cut"))
            m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
        if (when == q("drag"))
            drag({{250, 50}, {235, 58}, {205, 74}});
        else if (when == q("cut") || when == q("band"))
            drag({{380, 5}, {365, 13}, {335, 29}});
    }
    ~World()
    {
        m_View.setScene(nullptr);
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
    template <typename Node> static Node* addPoints(Node* node)
    {
        node->createInput(q("a"), false, {});
        node->createOutputPoint(q("out"), true);
        return node;
    }
    OrvNgNode* dying()
    {
        auto* node = addPoints(make<OrvNgExtendedNode>({}));
        node->destroy();
        return node;
    }
    QList<OrvNgNode*> nodes()
    {
        auto* foreign = addPoints(make<OrvNgDotNode>({}));
        m_Other.addItem(foreign);
        return {nullptr, foreign, dying(), m_Dest, m_Dot, m_Backdrop, m_Note};
    }
    QList<OrvNgEdge*> edges()
    {
        OrvNgEdge* gone = m_Source->input(q("d"));
        if (gone)
            gone->destroy();
        return {nullptr, gone, m_Source->input(q("a")), m_Edge, m_Dest->virtualInputEdge(),
            m_Source->outputEdge(q("rest"))};
    }
    void paint()
    {
        if (!m_View.viewport()->size().isEmpty())
            picture();
    }
    /// Of the nodes; what is not a number leaves it as it is.
    QVector<QRectF> geometry() const
    {
        QVector<QRectF> all;
        for (int i = 0; i < 6; ++i)
            all.append(m_Nodes.at(i) ? m_Nodes.at(i)->sceneBoundingRect() : QRectF());
        return all;
    }
    void expect(bool isRight, const char* fault, const QObject* where = nullptr)
    {
        if (!isRight && m_Fault.isEmpty())
            m_Fault = q(where ? where->metaObject()->className() : "") + q(" ") + q(fault);
    }
    void check();
    void checkNode(OrvNgNode& node);
    void checkUse();
};

void World::checkNode(OrvNgNode& node)
{
    expect(
        isSound(node.sceneBoundingRect()) && isSound(node.shape().boundingRect()), "bounds", &node);
    expect(qMax(qAbs(node.x()), qAbs(node.y())) <= 2e8 && isSound(node.nodeShapeRect()), "place",
        &node);
    auto* extended = qobject_cast<OrvNgExtendedNode*>(&node);
    QSet<QString> names;
    for (OrvNgEdge* edge : node.inputs()) {
        const QString name = edge->text();
        names.insert(name);
        expect(edge->destNode() == &node || edge->isDragging(), "has another's input", &node);
        expect(isSound(edge->mainEdge()->sceneBoundingRect()) && isSound(edge->sceneBoundingRect()),
            "edge", &node);
        OrvNgPort* port = extended ? extended->inputPort(name) : nullptr;
        expect(!extended || (port && port->originalPortName() == name), "port", &node);
    }
    for (OrvNgEdge* edge : node.outputs())
        expect(edge->sourceNode() == &node && node.outputs().count(edge) == 1,
            "has another's output", &node);
    QStringList points = node.outputPoints();
    for (const QString& cluster : extended ? extended->clusteredOutputPorts() : QStringList())
        expect(!points.contains(cluster), "cluster named like an output", &node);
    expect(names.size() == node.inputCount() && !points.removeDuplicates(), "points of one name",
        &node);
}

void World::check()
{
    for (const QPointer<OrvNgNode>& node : qAsConst(m_Nodes)) {
        if (node && !node->isBeingDeleted())
            checkNode(*node);
    }
    const QTransform at = m_View.transform();
    expect(at.isInvertible() && at.m11() > 0.0 && at.m11() == at.m22() && at.m12() == 0.0, "scale");
    for (const QRectF& rect :
        {m_View.sceneRect(), m_View.visibleNodeBounds(), m_View.viewportInSceneCoords()})
        expect(isSound(rect), "view");
    if (m_View.scene())
        paint();
}

/// A good call after the bad ones does what it should.
void World::checkUse()
{
    OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    release({200, 150}, Qt::LeftButton);
    m_View.setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
    flushEvents();
    auto* node = addPoints(make<OrvNgExtendedNode>({7, 9}));
    for (const QPointer<OrvNgNode>& other : qAsConst(m_Nodes)) {
        if (!other || other == node || other->isBeingDeleted())
            continue;
        const double width = qMin(other->sceneBoundingRect().width(), 1e9);
        other->setPos(other->pos() * 0.5 + QPointF(3, 4));
        const double change = other->sceneBoundingRect().width() - width;
        expect(qAbs(change) <= 1e-6 * width + 1, "changes its size as it moves", other);
        if (other->outputPoints().isEmpty())
            continue;
        node->input(q("a"))->setSourceNode(other, other->outputPoints().constFirst());
        expect(node->input(q("a"))->isFullConnected(), "cannot be connected", other);
    }
    m_View.centerViewOn({12, 13}, true);
    expect(!m_View.scene() || isNear(m_View.center(), {12, 13}, 1e-3), "cannot be centred");
    check();
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
    QFETCH_GLOBAL(QString, when);
    QStringList faults;
    for (int i = 0; i < calls.size(); ++i) {
        World world(when);
        int j = 0;
        for (; j < 2 * values.size() && world.m_Fault.isEmpty(); ++j) {
            const QVector<QRectF> before = world.geometry();
            if (world.m_Dest && world.m_Source && world.m_Edge)
                calls.at(i)(world, values.at(j / 2));
            world.check();
            world.expect(
                isNumber(values.at(j / 2)) || world.geometry() == before, "moved by no number");
        }
        flushEvents();
        world.checkUse();
        if (!world.m_Fault.isEmpty())
            faults.append(q("call %1, value %2: %3").arg(i).arg((j - 1) / 2).arg(world.m_Fault));
    }
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
}

QStringList s_Warnings;

} // namespace

class tst_BadInputs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("when");
        for (const char* when : {"in a view", "off-scene", "no view", "drag", "band", "cut"})
            QTest::newRow(when) << q(when);
    }
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
    void texts()
    {
        QFETCH_GLOBAL(QString, when);
        const auto positions = [](S s) { return QHash<QString, QPair<QPoint, QPoint>>{{s, {{INT_MAX, INT_MIN}, {INT_MIN, 9}}}}; };
        runCalls<QString>(strings().mid(0, when == q("off-scene") ? -1 : when == q("in a view") ? 23 : 21),
            {[](W w, S s) { w.m_Dest->setText(s); w.m_Dot->setText(s); w.m_Text->setText(s); w.m_Note->setLabel(s); },
                [](W w, S s) { w.m_Backdrop->setLabel(s); w.m_Backdrop->setTitleText(s); },
                [](W w, S s) { w.m_Dest->createInput(s, true, {s, q("_hidden")}); w.m_Dest->applyPortVisibilityMode(); },
                [](W w, S s) { w.m_Dest->createOutputPoint(s, true); w.m_Dest->createOutputPoint(s, false); },
                [](W w, S s) { w.m_Dest->removeInput(s); w.m_Dest->removeOutputPoint(s); },
                [](W w, S s) { w.m_Dest->renameInput(w.m_Dest->sortedInputPoints().constLast(), s); w.m_Dest->renameOutputPoint(w.m_Dest->outputPoints().constLast(), s); },
                [](W w, S s) { w.m_Dest->renameInput(s, q("group")); w.m_Dest->renameOutputPoint(s, s); },
                [](W w, S s) { w.m_Dest->refreshPrettyName(s); w.m_Dest->setConnectionPrettyNames({{s, s}}, {{s, s}}); w.m_Dest->refreshPrettyName(s); },
                [positions](W w, S s) { w.m_Dot->setConnectionPositions(positions(s), positions(s)); },
                [](W w, S s) { w.m_Dest->setCategory(s); w.m_Dest->setCorrectColor(); QLinearGradient out; w.m_Dest->getNodeBrush(out); },
                [](W w, S s) { w.m_Dest->setInputPortVisible(s, true); w.m_Dest->setOutputPortVisible(s, true); w.m_Dest->inputPortDestPos(s); w.m_Dest->outputPortSourcePos(s); },
                [](W w, S s) { w.m_Dest->addOutputEdge(s); w.m_Dest->removeUnusedOutput(s); w.m_Dest->updateInputTags(s, {s}); w.m_Dest->createVirtualInputEdge(s); w.m_Dest->createTemporaryOutputEdge(s); },
                [](W w, S s) { w.m_Dest->setInputPortClusterMap({{s, {s, q("a"), q("b")}}, {s, {}}, {q("y"), {q("a"), q("y")}}}); w.m_Dest->setPortListMode(OrvNgExtendedNode::PORT_LIST_GROUPED); },
                [](W w, S s) { w.m_Dest->setOutputPortClusterMap({{s, {s, q("out")}}, {q("out"), {}}}); w.m_Dest->createOutputPoint(s, true); },
                [](W w, S s) { w.m_Dest->reorderInputPorts({s, q("b"), s, q("group")}); w.m_Dest->reorderOutputPorts({s, s}); },
                [](W w, S s) { w.m_Dest->inputClusterPortName2ClusterList(s); w.m_Dest->setClusteredInputEdgeSource(s, w.m_Source, s); w.m_Dest->setClusteredInputEdgeSource(q("a"), w.m_Source, s); },
                [](W w, S s) { w.m_Dest->setIconVisible(true, w.m_Dest->addIcon(s)); w.m_Dest->inputPort(q("b"))->setText(s); },
                [](W w, S s) { w.m_Edge->setText(w.m_Edge->text(), s); w.m_Edge->setTextVisible(true); w.m_Edge->setTags({s, q("_thin"), q("_dotted")}); w.m_Edge->setSourceOutputPoint(s); },
                [](W w, S s) { w.m_Edge->setSourceNode(w.m_Source, s); w.m_Edge->setNewSourceNodeToEdge(w.m_Dot, s); w.m_Edge->setNewDestNodeToEdge(w.m_Dot, s); }});
    }

    void numbers()
    {
        using Mode = OrvNgExtendedNode::PortListMode;
        runCalls<int>(kInts,
            {[](W w, I i) { w.m_Dest->removeInput(i); w.m_Dest->removeOutput(i); w.m_Dest->removeOutputPoint(i); },
                [](W w, I i) { w.m_Dest->setShapeType(i); w.m_Dest->updateIcons(); w.m_Text->increaseSize(i); },
                [](W w, I i) { w.m_Dest->setPortListMode(Mode(i)); w.m_Dest->notifyNodePortListModeChanged(i); w.m_Dest->nextPortListMode(); },
                [](W w, I i) { w.m_Dest->addIcon(q("NodeExpanded")); w.m_Dest->setIconVisible(i % 2 == 0, i); },
                [](W w, I i) { OrvNgNode* node; OrvNgEdge* edge; OrvNgPort* port; for (int mask = 0; mask < 8; ++mask) w.m_View.itemsUnderPos({i, i}, mask & 1 ? &node : nullptr, mask & 2 ? &edge : nullptr, mask & 4 ? &port : nullptr); },
                [](W w, I i) { w.m_Dest->pauseInvalidation(i % 2 == 0); w.m_Dest->removeInput(0); w.m_Dest->pauseInvalidation(false); OrvGraphicsLinearLayout layout(Qt::Vertical); layout.setInvalidationPaused(true); layout.activate(); layout.setInvalidationPaused(i > 0); layout.invalidate(); },
                [](W w, I i) { w.m_Backdrop->setZOrder(i); w.m_Backdrop->refreshChildrenList(true); w.m_Backdrop->restackAmongNeighbours(); },
                [](W w, I i) { w.m_Dot->setPixmap(QPixmap(i == 77 ? 20000 : 1, i > 1 ? 1 : 0), QPoint(i, 9)); },
                [](W w, I i) { w.m_View.setCursorTrackingMode(OrvNgView::OrvCursorTrackingMode(i)); w.m_View.resize(qBound(0, i, 3000), qBound(0, i, 1)); },
                [](W w, I i) { w.m_View.setPosByViewportPos(w.m_Dest, QPoint(i, i)); w.m_View.setPosByViewportPos(w.m_Dest->inputPort(q("b")), QPoint(i, 0)); },
                [](W w, I i) {
                    auto* grid = OrvShaderNetworkManager::instance();
                    grid->setSnapToGrid(true); grid->setGridWidth(i); grid->setGridHeight(i); w.m_Dest->setPos(i, 3);
                    for (const double scale : {0.0071, 0.07, 100.0, 1.0}) { w.m_View.setTransform(QTransform::fromScale(scale, scale)); w.paint(); }
                    grid->setGridWidth(20); grid->setGridHeight(20); },
                [](W w, I i) { for (int click = 0; click < 300 && w.m_View.scene(); ++click) w.wheel(i, i); }});
    }

    void floats()
    {
        const auto path = [](double f) { return QList<QPointF>{{f, 0}, {0, f}, {f, f}, {f, f}, {-90, -90}, {90, 90}}; };
        runCalls<double>(kFloats,
            {[](W w, F f) { for (OrvNgNode* node : QList<OrvNgNode*>{w.m_Dest, w.m_Dot, w.m_Note, w.m_Text, w.m_Backdrop}) { node->setPos(f, f); node->setPos(0, f); } },
                [](W w, F f) { w.m_Backdrop->setPosition({f, 0}); w.m_Backdrop->resizeNode({f, f}); },
                [](W w, F f) { w.m_Edge->adjust(QPointF(f, 0), QPointF(0, -f), 0.5F); w.m_Edge->setTextVisible(true); w.m_Edge->setBypassed(true); w.m_Edge->switchToDotableMode(true); },
                [](W w, F f) { w.m_Edge->setTextVisible(true); w.m_Edge->adjust(QPointF(f, f), QPointF(f, f + 1e-5), 2.0F); w.m_Edge->adjust({f, f}, {f, f}, -1.0F); w.m_Edge->adjust(QPointF(0, 0), QPointF(1e7, 0), qAbs(f) > FLT_MAX ? float(kInf) : float(f)); },
                [](W w, F f) { w.m_Dot->setConnectionTextPositions({{q("a"), float(qBound(-1e38, f, 1e38))}}, {{q("out"), float(kNan)}}); },
                [](W w, F f) { w.m_Edge->grabEdge({f, f}, false, false); w.m_Edge->releaseMouse({}, {f, f}, false); w.m_Edge->grabEdge({0, 0}, true, true); w.m_Edge->grabEdge({f, 0}, true, false); w.m_Edge->releaseMouse({}, {0, f}, true); w.m_Edge->releaseMouse({}, {0, f}, true); },
                [](W w, F f) { w.m_Edge->highlightEdgeBasedOnClosestNode({f, f}); w.m_Dest->inputPointUnderPos({f, 0}); w.m_Dest->isDoubleClickValid({f, f}); w.m_Dest->grabEdgeForPortUnderPos({f, f}); },
                [](W w, F f) { w.m_View.zoomIn(f); w.m_View.zoomOut(f, QGraphicsView::AnchorUnderMouse); w.m_View.centerViewOn({f, 0}, false); w.m_View.setNewSceneRect(QPointF(0, f)); },
                [path](W w, F f) { w.m_View.cursorPathBounds(path(f), f); w.m_View.edgesCrossingPath(path(f)); w.m_View.severEdgesAlongPath(path(f)); },
                [](W w, F f) { OrvNgResizeTriangleItem alone(8.0F, Qt::red, w.m_Dest, Qt::TopLeftCorner), own(8.0F, Qt::red, w.m_Backdrop, Qt::TopLeftCorner); alone.resizeParent({f, f}); own.resizeParent({f, f}); own.resizeParent({f, 0}); },
                [](W w, F f) { OrvNgNodePositionChangeUndo step(w.m_Dest, {f, 0}, {0, f}); step.undo(); step.redo(); },
                [](W w, F f) { w.m_Dest->inputPort(q("b"))->setGeometry({f, 0, 9, f}); w.m_Dest->updateWidget(); }});
    }

    void rectangles()
    {
        runCalls<QRectF>(kRects,
            {[](W w, R r) { w.m_Backdrop->setRect(r); w.m_Backdrop->refreshChildrenList(true); w.m_Note->setRect(r); w.m_Text->setRect(r); },
                [](W w, R r) { w.m_Backdrop->wrapAroundSelection(r, true); w.m_Backdrop->wrapAroundSelection(r, false); },
                [](W w, R r) { w.m_Backdrop->wrapAroundNodes(r, {nullptr, w.m_Backdrop, w.dying(), w.m_Dest}); },
                [](W w, R r) { w.m_View.fitInView(r, Qt::KeepAspectRatio); w.m_View.setTransform({}); },
                [](W w, R r) { OrvNgBackdropNodeRectChangeUndo step(w.m_Backdrop, r, r.translated(9, 9)); step.undo(); step.redo(); },
                [](W, R r) { QImage image(9, 9, QImage::Format_RGB32); QPainter painter(&image); for (int type = -1; type < 10; ++type) OrvNgNode::drawNodeShape(&painter, r, OrvNgNode::NodeShapeType(type), q("Misc")); }});
    }

    void pointers()
    {
        using N = OrvNgNode* const&;
        using E = OrvNgEdge* const&;
        // Each value comes from the world of its call: an index into its lists.
        const auto ofNodes = [](void (*call)(World&, N)) { return [call](W w, I i) { OrvNgNode* node = w.nodes().at(i % 7); call(w, node); flushEvents(); }; };
        const auto ofEdges = [](void (*call)(World&, E)) { return [call](W w, I i) { OrvNgEdge* edge = w.edges().at(i % 6); call(w, edge); flushEvents(); }; };
        runCalls<int>({0, 1, 2, 3, 4, 5, 6},
            {ofNodes([](W w, N n) { w.m_Edge->setSourceNode(n, q("out")); }), ofNodes([](W w, N n) { w.m_Edge->setDestNode(n); }),
                ofNodes([](W w, N n) { w.m_Edge->setNewSourceNodeToEdge(n, q("out")); w.m_Edge->setNewDestNodeToEdge(n, q("a")); }),
                ofNodes([](W w, N n) { w.m_Edge->insertNodeIntoEdge(n, n ? n->input(q("a")) : nullptr); w.m_Edge->insertNodeIntoEdge(n, w.m_Edge); }),
                ofNodes([](W w, N n) { w.m_Dest->replace(n); }), ofNodes([](W w, N n) { w.m_Backdrop->replace(n); }),
                ofNodes([](W w, N n) { w.m_Dest->setClusteredInputEdgeSource(q("a"), n, q("out")); w.m_Dest->notifyInputSourceChange(n, {}, {}); }),
                ofNodes([](W w, N n) { QList<OrvNgBackdropNode*> all; w.m_Backdrop->addBackdropChildren(n, all); w.m_Backdrop->addBackdropChildren(n, all); w.m_Backdrop->setPosition({1, 2}); w.m_Backdrop->selectChildren(true); }),
                ofNodes([](W w, N n) { OrvNgNodePositionChangeUndo step(n); OrvNgBackdropNodeRectChangeUndo resize(qobject_cast<OrvNgBackdropNode*>(n)); flushEvents(); step.undo(); resize.undo(); Q_UNUSED(w) }),
                ofNodes([](W w, N n) { w.m_View.setPosByViewportPos(n, {1, 2}); OrvNgView::OrvNgSelectionIdSorter(n, w.m_Dest); OrvNgView::OrvNgSelectionIdSorter(w.m_Dest, n); }),
                ofNodes([](W w, N n) { OrvNgDotableMarkerItem marker(nullptr); w.m_Scene.addItem(&marker); marker.setRootNode(n); if (n != w.m_Dest) delete n; QGraphicsSceneMouseEvent press(QEvent::GraphicsSceneMousePress); press.setButton(Qt::LeftButton); w.m_Scene.sendEvent(&marker, &press); w.m_Scene.removeItem(&marker); }),
                ofNodes([](W w, N n) { if (n && n != w.m_Dest) { n->destroy(); n->createInput(q("z"), true, {}); n->createOutputPoint(q("z"), true); n->destroy(); delete n; } }),
                ofEdges([](W w, E e) { w.m_Dot->containsEdge(e); w.m_Dest->doesEdgeBelongToThisNode(e); w.m_Dest->portForEdgeContains(e, {}); w.m_Dest->notifyEdgeDotableMarkerIsClicked(e); }),
                ofEdges([](W w, E e) { w.m_Dot->setupNodeForInsertionIntoEdge(e); w.m_Dot->processAutoinsert(); }), ofEdges([](W w, E e) { w.m_Edge->insertNodeIntoEdge(w.m_Dot, e); }),
                ofEdges([](W w, E e) { if (e && e != w.m_Edge) { e->grabEdge({}, false, false); e->detachFromDestNode(); e->detachFromSourceNode(); e->releaseMouse({}, {}, false); } })});
    }
    // clang-format on

    /// Whatever a property takes, it keeps: it never tells twice of one value, and all classes live with it.
    void style()
    {
        QFETCH_GLOBAL(QString, when);
        if (when != q("in a view"))
            return; // it takes a while
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
        for (const QVariant& value : QVariantList{QPoint(INT_MAX, INT_MIN), QPoint(-1, 0), QColor(),
                 QColor(1, 2, 3, 0), QBrush(), QBrush(QPixmap()), QPen(Qt::NoPen),
                 QPen(QBrush(), 1e300), QVariant::fromValue(QPair<QColor, QColor>()),
                 QVariant::fromValue(QLinearGradient()),
                 QVariant::fromValue(OrvColor(float(kNan), 1e30F, -1.0F, 2.0F))})
            values[value.userType()].append(value);
        int tried = 0;
        for (int p = meta->propertyOffset(); p < meta->propertyCount(); ++p) {
            const QMetaProperty property = meta->property(p);
            for (const QVariant& value : qAsConst(values[property.userType()])) {
                property.write(&style, value);
                QSignalSpy changes(&style, property.notifySignal());
                property.write(&style, value);
                QVERIFY2(changes.isEmpty(), property.name());
                style.refreshProperties();
                World world(when);
                world.check();
                QVERIFY2(world.m_Fault.isEmpty(),
                    qPrintable(
                        q("%1 = %2: %3").arg(q(property.name()), value.toString(), world.m_Fault)));
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
