#pragma once

#include "BenchGraph.h"
#include "BenchWorkload.h"

#include <functional>
#include <memory>

/// What a row measured: medians over the samples.
struct BenchFigure
{
    double m_Value = 0.0;
    double m_Floor = 0.0;
    double m_Ratio = 0.0; ///< of each sample to the floors right before and after it
};

/// The rows' measurements on one network. Each throws std::runtime_error when what it measures did not happen.
class BenchRows
{
public:
    explicit BenchRows(int nodeCount)
        : m_Workload{nodeCount}
    {
    }

    BenchFigure build();
    BenchFigure firstPaint();
    BenchFigure panAll();
    BenchFigure zoomAll();
    BenchFigure panAtScaleOne();
    BenchFigure dragOneAtScaleOne();
    BenchFigure dragOneAll();
    BenchFigure dragHundredAtScaleOne();
    BenchFigure band();
    BenchFigure hover();
    BenchFigure deleteAll();
    BenchFigure memory();

    /// The next row begins with a graph of its own, for instance after a fault in the middle of a drag.
    void forgetGraph() { m_Graph.reset(); }

private:
    using Work = std::function<double()>;

    /// Floor, row, floor, row, … floor: what else the machine does slows both down.
    BenchFigure interleave(const Work& floor, const Work& row) const;
    BenchFigure pan(const QTransform& sceneToView);
    BenchFigure drag(const QTransform& sceneToView, const QVector<int>& nodes);
    /// For the rows that leave the graph as it is; made when first asked for.
    BenchGraph& graph();

    BenchWorkload m_Workload;
    std::unique_ptr<BenchGraph> m_Graph;
};
