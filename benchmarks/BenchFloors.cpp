#include "BenchFloors.h"

#include "BenchEvents.h"

#include <QGraphicsPathItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsWidget>
#include <QPainter>

namespace {

constexpr double kHeader = 30.0; // scene units, as all below
constexpr double kPort = 10.0;
constexpr double kRowStep = 24.0;
constexpr double kRadius = 6.0;
constexpr double kEdgeWidth = 2.0;

/// The ports of a node at the origin, inputs first.
QVector<QRectF> portRects()
{
    QVector<QRectF> rects;
    for (int i = 0; i < BenchWorkload::kInputs + BenchWorkload::kOutputs; ++i) {
        const bool isInput = i < BenchWorkload::kInputs;
        const int row = isInput ? i : i - BenchWorkload::kInputs;
        rects.append({isInput ? 0.0 : BenchWorkload::kNodeSize.width() - kPort,
            kHeader + 8.0 + row * kRowStep, kPort, kPort});
    }
    return rects;
}

QPainterPath edgePath(const BenchWorkload& workload, int node, int input)
{
    const QVector<QRectF> ports = portRects();
    const int output = BenchWorkload::kInputs + input % BenchWorkload::kOutputs;
    const QPointF from = workload.posOf(workload.sourceOf(node, input)) + ports.at(output).center();
    const QPointF to = workload.posOf(node) + ports.at(input).center();
    const QPointF reach(qMax(40.0, (to.x() - from.x()) / 2), 0.0);
    QPainterPath path(from);
    path.cubicTo(from + reach, to - reach, to);
    return path;
}

} // namespace

BenchBarePainting::BenchBarePainting(const BenchWorkload& workload, const QTransform& sceneToView)
    : m_SceneToView(sceneToView)
    , m_Ports(portRects())
{
    const QRectF visible
        = sceneToView.inverted().mapRect(QRectF(QPointF(), BenchWorkload::kViewSize));
    for (int node = 0; node < workload.m_NodeCount; ++node) {
        if (visible.intersects({workload.posOf(node), BenchWorkload::kNodeSize}))
            m_Nodes.append(workload.posOf(node));
        for (int input = 0; input < BenchWorkload::kWiredInputs; ++input) {
            if (workload.sourceOf(node, input) < 0)
                continue;
            const QPainterPath path = edgePath(workload, node, input);
            if (visible.intersects(path.controlPointRect().adjusted(0, -1, 0, 1)))
                m_Edges.append(path);
        }
    }
}

void BenchBarePainting::paint()
{
    m_Image.fill(QColor(45, 45, 45));
    QPainter painter(&m_Image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setTransform(m_SceneToView);
    painter.setPen(QPen(QColor(200, 200, 200), kEdgeWidth));
    for (const QPainterPath& edge : qAsConst(m_Edges))
        painter.drawPath(edge);
    const QPen outline(QColor(20, 20, 20), 1.0);
    for (const QPointF& pos : qAsConst(m_Nodes)) {
        painter.setTransform(QTransform::fromTranslate(pos.x(), pos.y()) * m_SceneToView);
        painter.setPen(outline);
        painter.setBrush(QColor(80, 80, 80));
        painter.drawRoundedRect(QRectF(QPointF(), BenchWorkload::kNodeSize), kRadius, kRadius);
        painter.setBrush(QColor(90, 120, 60));
        painter.drawRoundedRect(
            QRectF(0.0, 0.0, BenchWorkload::kNodeSize.width(), kHeader), kRadius, kRadius);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(220, 160, 60));
        painter.drawRects(m_Ports);
    }
}

BenchItemTree::BenchItemTree(const BenchWorkload& workload, bool populated)
    : m_Workload(workload)
{
    if (populated)
        populate();
    m_View.setScene(&m_Scene);
    m_View.setFrameShape(QFrame::NoFrame);
    m_View.setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    m_View.setRenderHint(QPainter::Antialiasing);
    m_View.viewport()->setMouseTracking(true);
    m_View.resize(BenchWorkload::kViewSize);
    m_View.viewport()->setUpdatesEnabled(false); // the view's painting is no part of any floor
    m_View.show();
    QCoreApplication::processEvents();
}

BenchItemTree::~BenchItemTree()
{
    settle();
    deleteAll();
}

void BenchItemTree::populate()
{
    for (int node = 0; node < m_Workload.m_NodeCount; ++node) {
        addNode(node);
        addEdges(node);
    }
}

void BenchItemTree::addNode(int node)
{
    auto* widget = new QGraphicsWidget;
    widget->setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable);
    widget->setAcceptHoverEvents(true);
    m_Scene.addItem(widget);
    QVector<QRectF> parts = portRects();
    parts.append(QRectF(0.0, 0.0, BenchWorkload::kNodeSize.width(), kHeader));
    for (const QRectF& part : qAsConst(parts))
        (new QGraphicsWidget(widget))->setGeometry(part);
    widget->setGeometry({m_Workload.posOf(node), BenchWorkload::kNodeSize});
    m_Nodes.append(widget);
}

void BenchItemTree::addEdges(int node)
{
    static const QPolygonF s_Arrow{{{0.0, 0.0}, {-8.0, 4.0}, {-8.0, -4.0}}};
    for (int input = 0; input < BenchWorkload::kWiredInputs; ++input) {
        if (m_Workload.sourceOf(node, input) < 0)
            continue;
        auto* edge = new QGraphicsPathItem(edgePath(m_Workload, node, input));
        edge->setZValue(-1.0);
        m_Scene.addItem(edge);
        (new QGraphicsPolygonItem(s_Arrow, edge))->setPos(edge->path().currentPosition());
        m_Edges.append(edge);
    }
}

void BenchItemTree::settle()
{
    QCoreApplication::processEvents();
    m_Scene.items(m_Workload.posOf(0)); // an item that is not indexed yet is deleted in linear time
}

void BenchItemTree::deleteAll()
{
    for (QGraphicsItem* edge : qAsConst(m_Edges))
        delete edge;
    m_Edges.clear();
    for (QGraphicsWidget* node : qAsConst(m_Nodes)) {
        m_Scene.removeItem(
            node); // a widget deleted inside the scene walks the chain of all widgets
        node->deleteLater();
    }
    m_Nodes.clear();
    benchRunDueEvents();
}

void BenchItemTree::showAtScaleOne()
{
    m_View.setTransform({});
    m_View.centerOn(m_Workload.posOf(m_Workload.middleNode()));
    settle();
}

void BenchItemTree::moveMouse(const QPoint& viewPos)
{
    benchSendMouse(m_View.viewport(), QEvent::MouseMove, viewPos, false);
}
