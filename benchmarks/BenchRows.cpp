#include "BenchRows.h"

#include "BenchEvents.h"
#include "BenchFloors.h"
#include "BenchTiming.h"

#include <QScrollBar>

#include <OrvNodeGraph/OrvNgExtendedNode.h>

namespace {

constexpr int kFewestSamples = 3;
constexpr int kMostSamples = 25;
constexpr double kRowTime = 2000.0; // ms; a row begins no sample after it
constexpr double kRowTimeOfLarge = 6000.0;
constexpr double kHopelessTime = 20000.0; // ms; one sample of that length is enough
constexpr int kLargeNetwork = 5000;

QVector<int> nodesAround(const BenchWorkload& workload, int count)
{
    // Column by column; a block of sqrt(count) columns with the middle node in its middle.
    const int side = qMin(qRound(std::sqrt(double(count))), workload.rows());
    const int middle = workload.middleNode();
    QVector<int> nodes{middle};
    for (int column = -side / 2; column < side - side / 2; ++column) {
        for (int row = -side / 2; row < side - side / 2; ++row) {
            const int node = middle + column * workload.rows() + row;
            if (node != middle && node >= 0 && node < workload.m_NodeCount)
                nodes.append(node);
        }
    }
    return nodes;
}

} // namespace

BenchFigure BenchRows::interleave(const Work& floor, const Work& row) const
{
    QVector<double> values;
    QVector<double> floors{floor()};
    QVector<double> ratios;
    const double limit = m_Workload.m_NodeCount < kLargeNetwork ? kRowTime : kRowTimeOfLarge;
    QElapsedTimer timer;
    timer.start();
    while (values.size() < kMostSamples
        && (values.size() < kFewestSamples || double(timer.elapsed()) < limit)) {
        values.append(row());
        floors.append(floor());
        const double around = (floors.at(floors.size() - 2) + floors.last()) / 2;
        ratios.append(values.last() / around);
        if (double(timer.elapsed()) > kHopelessTime)
            break;
    }
    return {benchMedian(values), benchMedian(floors), benchMedian(ratios)};
}

BenchGraph& BenchRows::graph()
{
    if (!m_Graph) {
        m_Graph = std::make_unique<BenchGraph>(m_Workload);
        m_Graph->allowPainting();
    }
    return *m_Graph;
}

// Building

BenchFigure BenchRows::build()
{
    m_Graph.reset();
    const auto floor = [this] {
        std::unique_ptr<BenchItemTree> tree;
        return benchTime([&] { tree = std::make_unique<BenchItemTree>(m_Workload); });
    };
    const int connections
        = BenchWorkload::kWiredInputs * (m_Workload.m_NodeCount - m_Workload.rows());
    return interleave(floor, [&] {
        std::unique_ptr<BenchGraph> graph;
        const double time = benchTime([&] { graph = std::make_unique<BenchGraph>(m_Workload); });
        benchRequire(graph->connectionCount() == connections, "not all inputs are wired");
        benchRequire(graph->frameCount() == 0, "something was painted while building");
        return time;
    });
}

BenchFigure BenchRows::memory()
{
    m_Graph.reset();
    const double perNode = 1024.0 * m_Workload.m_NodeCount;
    const auto floor = [&] {
        BenchItemTree tree(m_Workload, false);
        const double before = benchHeapBytes();
        tree.populate();
        QCoreApplication::processEvents();
        return (benchHeapBytes() - before) / perNode;
    };
    return interleave(floor, [&] {
        BenchGraph graph(m_Workload, false); // what an empty view keeps is no node's
        graph.allowPainting();
        graph.showAll();
        graph.frame();
        const double before = benchHeapBytes();
        graph.populate();
        graph.showAll();
        graph.frame();
        return (benchHeapBytes() - before) / perNode;
    });
}

BenchFigure BenchRows::deleteAll()
{
    m_Graph.reset();
    const auto floor = [this] {
        BenchItemTree tree(m_Workload);
        tree.settle();
        return benchTime([&] { tree.deleteAll(); });
    };
    return interleave(floor, [this] {
        BenchGraph graph(m_Workload);
        graph.allowPainting();
        graph.showAll();
        graph.frame();
        const double time = benchTime([&] { graph.deleteAll(); });
        benchRequire(graph.itemCount() == 0, "something is left in the scene");
        return time;
    });
}

// Frames

BenchFigure BenchRows::firstPaint()
{
    m_Graph.reset();
    BenchBarePainting bare(m_Workload, m_Workload.wholeInView());
    return interleave([&] { return benchTime([&] { bare.paint(); }); },
        [this] {
            BenchGraph graph(m_Workload);
            graph.showAll();
            benchRequire(graph.frameCount() == 0, "something was painted before");
            return benchTime([&] {
                graph.allowPainting();
                graph.frame();
            });
        });
}

BenchFigure BenchRows::panAll()
{
    graph().showAll();
    return pan(m_Workload.wholeInView());
}

BenchFigure BenchRows::panAtScaleOne()
{
    graph().showAtScaleOne();
    return pan(m_Workload.middleAtScaleOne());
}

BenchFigure BenchRows::pan(const QTransform& sceneToView)
{
    BenchBarePainting bare(m_Workload, sceneToView);
    OrvNgView& view = graph().view();
    const QPointF mark = m_Workload.posOf(m_Workload.middleNode());
    int steps = 0;
    const auto step = [&] {
        const QPoint before = view.mapFromScene(mark);
        const int sign = steps++ / 8 % 2 == 0 ? 1 : -1; // to and fro, within the margin
        const double time = benchTime([&] {
            view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->value() + sign * 7);
            view.verticalScrollBar()->setValue(view.verticalScrollBar()->value() + sign * 3);
            graph().frame();
        });
        benchRequire(before - view.mapFromScene(mark) == QPoint(sign * 7, sign * 3),
            "the view did not scroll");
        return time;
    };
    graph().frame();
    return interleave([&] { return benchTime([&] { bare.paint(); }); }, step);
}

BenchFigure BenchRows::zoomAll()
{
    constexpr double kStep = 0.98; // outwards; the steps of the wheel would end at its limit
    graph().showAll();
    graph().frame();
    BenchBarePainting bare(m_Workload, m_Workload.wholeInView());
    return interleave([&] { return benchTime([&] { bare.paint(); }); },
        [this] {
            OrvNgView& view = graph().view();
            const double before = view.transform().m11();
            const double time = benchTime([&] {
                view.scale(kStep, kStep);
                graph().frame();
            });
            benchRequire(
                qFuzzyCompare(view.transform().m11(), before * kStep), "the view did not zoom");
            return time;
        });
}

// Mouse

BenchFigure BenchRows::dragOneAtScaleOne()
{
    graph().showAtScaleOne();
    return drag(m_Workload.middleAtScaleOne(), {m_Workload.middleNode()});
}

BenchFigure BenchRows::dragOneAll()
{
    graph().showAll();
    return drag(m_Workload.wholeInView(), {m_Workload.middleNode()});
}

BenchFigure BenchRows::dragHundredAtScaleOne()
{
    graph().showAtScaleOne();
    return drag(m_Workload.middleAtScaleOne(), nodesAround(m_Workload, 100));
}

/// By one pixel to the right each step, held at the first node; all others are selected too.
BenchFigure BenchRows::drag(const QTransform& sceneToView, const QVector<int>& nodes)
{
    BenchBarePainting bare(m_Workload, sceneToView);
    graph().clearSelection();
    for (int node : nodes)
        graph().node(node)->setSelected(true);
    const QPoint start = graph().handleOf(nodes.first());
    QPoint mouse = start;
    graph().press(start);
    const double length = 1.0 / graph().view().transform().m11();
    const auto step = [&] {
        QVector<double> before;
        for (int node : nodes)
            before.append(graph().node(node)->scenePos().x());
        mouse.rx() += 1;
        const double time = benchTime([&] {
            graph().move(mouse);
            graph().frame();
        });
        for (int i = 0; i < nodes.size(); ++i) {
            const double way = graph().node(nodes.at(i))->scenePos().x() - before.at(i);
            benchRequire(qAbs(way - length) < 1e-3 * length, "a node did not follow the mouse");
        }
        return time;
    };
    step(); // the first move makes what the drag needs
    const BenchFigure figure = interleave([&] { return benchTime([&] { bare.paint(); }); }, step);
    graph().move(start); // every row finds the nodes in their places
    graph().release();
    benchRequire(graph().selectedNodeCount() == nodes.size(), "the selection changed");
    return figure;
}

BenchFigure BenchRows::band()
{
    constexpr int kMoves = 10;
    const QPoint from(1, 1); // nothing is in the corners when all is in view
    const QPoint to(BenchWorkload::kViewSize.width() - 2, BenchWorkload::kViewSize.height() - 2);
    graph().showAll();
    BenchBarePainting bare(m_Workload, m_Workload.wholeInView());
    const auto floor = [&] {
        return benchTime([&] {
            for (int i = 0; i < kMoves; ++i)
                bare.paint();
        });
    };
    return interleave(floor, [&] {
        graph().clearSelection();
        graph().frame();
        graph().press(from);
        const double time = benchTime([&] {
            for (int i = 1; i <= kMoves; ++i) {
                graph().move(from + (to - from) * i / kMoves);
                graph().frame();
            }
        });
        const int selected = graph().selectedNodeCount();
        graph().release();
        benchRequire(selected == m_Workload.m_NodeCount, "the band did not select all nodes");
        return time;
    });
}

BenchFigure BenchRows::hover()
{
    constexpr int kMoves = 200;
    const auto timeOfMoves = [](const std::function<void(const QPoint&)>& move) {
        const double time = benchTime([&] {
            for (int i = 0; i < kMoves; ++i)
                move(QPoint(400 + i * 7 % 800, 300 + i * 5 % 400));
        });
        QCoreApplication::processEvents(); // a platform sends many moves a frame
        return time / kMoves;
    };
    BenchItemTree tree(m_Workload);
    tree.showAtScaleOne();
    graph().clearSelection();
    graph().showAtScaleOne();
    graph().frame();
    const OrvNgExtendedNode* node = graph().node(m_Workload.middleNode());
    const BenchFigure figure
        = interleave([&] { return timeOfMoves([&](const QPoint& pos) { tree.moveMouse(pos); }); },
            [&] {
                const double time = timeOfMoves([this](const QPoint& pos) { graph().move(pos); });
                graph().move(graph().handleOf(m_Workload.middleNode()));
                benchRequire(node->hovered(), "the node under the mouse is not hovered");
                graph().move(QPoint(1, 1));
                benchRequire(!node->hovered(), "the node is hovered without the mouse");
                return time;
            });
    return figure;
}
