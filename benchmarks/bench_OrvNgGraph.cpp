// What a whole graph costs: building, painting, moving, hovering, selecting, deleting and keeping N extended nodes.
//
// The network: about sqrt(N) columns, four inputs and two outputs a node, inputs 0 and 1 wired to two nodes
// of the previous column. The view is 1600 x 1000, antialiased, updated whole, on the raster engine.
// Figures depend on the machine: compare columns and runs on one machine, not numbers across machines.

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QGraphicsScene>
#include <QMouseEvent>

#include <benchmark/benchmark.h>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <OrvNodeGraph/OrvNgView.h>
#include <cmath>
#include <cstdio>
#include <malloc.h>
#include <map>
#include <memory>

namespace {

constexpr double kColumnStep = 260.0;
constexpr double kRowStep = 220.0;

void runDueEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

double heapBytes()
{
    return double(mallinfo2().uordblks) + double(mallinfo2().hblkhd);
}

class Graph
{
public:
    explicit Graph(int nodeCount)
    {
        const int rows = qMax(1, qRound(std::sqrt(double(nodeCount))));
        for (int i = 0; i < nodeCount; ++i)
            m_Nodes.append(makeNode(i, rows));
        for (int i = rows; i < nodeCount; ++i) {
            const int column = i / rows;
            const int row = i % rows;
            for (int input = 0; input < 2; ++input) {
                const int source = (column - 1) * rows + (row + input) % rows;
                m_Nodes.at(i)
                    ->input(inputName(input))
                    ->setSourceNode(m_Nodes.at(source), outputName(input));
            }
        }
        m_View.setScene(&m_Scene);
        m_View.init();
        m_View.resize(1600, 1000);
        m_View.show();
    }
    ~Graph()
    {
        m_View.setScene(nullptr);
        deleteAll();
    }

    void deleteAll()
    {
        for (OrvNgNode* node : qAsConst(m_Nodes))
            node->destroy();
        m_Nodes.clear();
        runDueEvents();
    }

    void showAll()
    {
        m_View.fitInView(m_Scene.itemsBoundingRect(), Qt::KeepAspectRatio);
        runDueEvents();
    }

    void showAtScaleOne()
    {
        m_View.centerViewOn(m_Nodes.at(m_Nodes.size() / 2)->scenePos(), true);
        runDueEvents();
    }

    void paint() { m_View.viewport()->repaint(); }

    OrvNgNode* middleNode() { return m_Nodes.at(m_Nodes.size() / 2); }

    void moveMouse(const QPoint& viewPos) { sendMouse(QEvent::MouseMove, viewPos, Qt::NoButton); }

    /// In the corner, where nothing is when all is shown.
    void beginBand() { sendMouse(QEvent::MouseButtonPress, QPoint(1, 1), Qt::LeftButton); }
    void moveBand(const QPoint& viewPos) { sendMouse(QEvent::MouseMove, viewPos, Qt::LeftButton); }
    int selectedCount() const { return m_Scene.selectedItems().size(); }

private:
    void sendMouse(QEvent::Type type, const QPoint& viewPos, Qt::MouseButton held)
    {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : held;
        QMouseEvent event(type, viewPos, m_View.viewport()->mapToGlobal(viewPos), button, held,
            Qt::NoModifier);
        QCoreApplication::sendEvent(m_View.viewport(), &event);
    }

    static QString inputName(int i) { return QStringLiteral("input%1").arg(i); }
    static QString outputName(int i) { return QStringLiteral("output%1").arg(i); }

    OrvNgExtendedNode* makeNode(int index, int rows)
    {
        auto* node = new OrvNgExtendedNode(nullptr);
        m_Scene.addItem(node);
        node->setCategory(QStringLiteral("Math"));
        node->setCorrectColor();
        for (int i = 0; i < 4; ++i)
            node->createInput(inputName(i), i == 0, {});
        for (int i = 0; i < 2; ++i)
            node->createOutputPoint(outputName(i), true);
        node->setText(QStringLiteral("multiply%1").arg(index));
        node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
        node->setPos((index / rows) * kColumnStep, (index % rows) * kRowStep);
        return node;
    }

    QGraphicsScene m_Scene;
    OrvNgView m_View{nullptr};
    QList<OrvNgExtendedNode*> m_Nodes;
};

void buildUntilPainted(benchmark::State& state)
{
    for (auto _ : state) {
        auto graph = std::make_unique<Graph>(int(state.range(0)));
        graph->showAll();
        graph->paint();
        state.PauseTiming();
        graph.reset();
        state.ResumeTiming();
    }
}

void repaintAllInView(benchmark::State& state)
{
    Graph graph(int(state.range(0)));
    graph.showAll();
    graph.paint();
    for (auto _ : state)
        graph.paint();
}

void repaintAtScaleOne(benchmark::State& state)
{
    Graph graph(int(state.range(0)));
    graph.showAtScaleOne();
    graph.paint();
    for (auto _ : state)
        graph.paint();
}

void moveNodeAndRepaint(benchmark::State& state)
{
    Graph graph(int(state.range(0)));
    graph.showAtScaleOne();
    graph.paint();
    double step = 1.0;
    for (auto _ : state) {
        graph.middleNode()->moveBy(step, 0);
        graph.paint();
        step = -step;
    }
}

void hoverMove(benchmark::State& state)
{
    Graph graph(int(state.range(0)));
    graph.showAtScaleOne();
    graph.paint();
    int i = 0;
    for (auto _ : state) {
        graph.moveMouse(QPoint(400 + (i * 7) % 800, 300 + (i * 5) % 400));
        ++i;
    }
}

/// A band that holds all nodes but some at its end grows and shrinks by a few pixels.
void moveBand(benchmark::State& state)
{
    Graph graph(int(state.range(0)));
    graph.showAll();
    graph.paint();
    graph.beginBand();
    graph.moveBand(QPoint(1580, 980));
    if (graph.selectedCount() < state.range(0) / 2)
        state.SkipWithError("the band selects too little");
    int i = 0;
    for (auto _ : state) {
        graph.moveBand(QPoint(1580 - (i * 7) % 40, 980 - (i * 5) % 40));
        ++i;
    }
}

void deleteAllNodes(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto graph = std::make_unique<Graph>(int(state.range(0)));
        graph->showAll();
        state.ResumeTiming();
        graph->deleteAll();
        state.PauseTiming();
        graph.reset();
        state.ResumeTiming();
    }
}

void memoryPerNode(benchmark::State& state)
{
    const int nodeCount = int(state.range(0));
    for (auto _ : state) {
        const double before = heapBytes();
        Graph graph(nodeCount);
        graph.showAll();
        state.counters["KB"] = (heapBytes() - before) / 1024.0 / nodeCount;
    }
}

/// Prints one line a row, one column a network size.
class TableReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            const std::string& row = run.run_name.function_name;
            if (m_Values.find(row) == m_Values.end())
                m_Rows.push_back(row);
            const auto memory = run.counters.find("KB");
            m_Values[row].push_back(
                memory == run.counters.end() ? run.GetAdjustedRealTime() : double(memory->second));
        }
    }

    void Finalize() override
    {
        for (const std::string& row : m_Rows) {
            std::printf("%-44s", row.c_str());
            for (const double value : m_Values[row])
                std::printf("%12.3f", value);
            std::printf("\n");
        }
    }

private:
    std::vector<std::string> m_Rows;
    std::map<std::string, std::vector<double>> m_Values;
};

void addRow(const char* name, void (*function)(benchmark::State&), int iterations)
{
    benchmark::RegisterBenchmark(name, function)
        ->Arg(100)
        ->Arg(1000)
        ->Arg(10000)
        ->Iterations(iterations)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OrvBenchmark"));
    OrvShaderNetworkManager::instance()->setShowGrid(false);

    addRow("build until painted, ms", buildUntilPainted, 1);
    addRow("repaint, all in view, ms", repaintAllInView, 10);
    addRow("repaint at scale 1, ms", repaintAtScaleOne, 50);
    addRow("move a node by a pixel and repaint, ms", moveNodeAndRepaint, 50);
    addRow("hover move, ms", hoverMove, 200);
    addRow("move a band around all, ms", moveBand, 50);
    addRow("delete all, ms", deleteAllNodes, 1);
    addRow("memory a node, KB", memoryPerNode, 1);

    benchmark::Initialize(&argc, argv);
    TableReporter reporter;
    std::printf("%-44s%12s%12s%12s\n", "nodes", "100", "1000", "10000");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
