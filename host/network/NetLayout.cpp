#include "network/NetLayout.h"

#include "network/NetLanes.h"

#include <QByteArray>
#include <QLibrary>
#include <QMutex>
#include <QRectF>

#include <graphviz/gvc.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <numeric>
#include <set>
#include <vector>

namespace {

constexpr qreal kPointsPerInch = 72; // one point is one scene pixel
constexpr qreal kMaxLength = 60000; // of a node's side; Graphviz counts them in 16 bits
constexpr qreal kStraightReach = 4; // pixels off, up to which an edge is made straight
constexpr int kManyNodes = 400; // from here on, limits keep the time in bounds
constexpr qreal kTower
    = 2; // height to width, from which networks are no longer put above each other
constexpr qreal kSparse
    = 1.5; // area of a table to that of the tower, from which the table is too empty

QMutex& graphvizMutex()
{
    static QMutex s_Mutex;
    return s_Mutex;
}

// Only the layout engine is loaded, not the text and drawing plugins with their font libraries:
// boxes have no text. Where the engine lies elsewhere than at build time, Graphviz looks for it
// itself.
GVC_t* makeContext()
{
    QLibrary engine(QStringLiteral(ORV_GRAPHVIZ_ENGINE));
    const auto symbol = engine.resolve("gvplugin_dot_layout_LTX_library");
    if (!symbol)
        return gvContext();
    GVC_t* context = gvContextPlugins(nullptr, 0);
    gvAddLibrary(context, reinterpret_cast<gvplugin_library_t*>(symbol));
    return context;
}

// Kept for the life of the process, as the engine is.
GVC_t* context()
{
    static GVC_t* s_Context = makeContext();
    return s_Context;
}

struct GraphCloser
{
    void operator()(Agraph_t* graph) const
    {
        gvFreeLayout(context(), graph);
        agclose(graph);
    }
};
using Graph = std::unique_ptr<Agraph_t, GraphCloser>;

QByteArray inches(qreal pixels)
{
    return QByteArray::number(pixels / kPointsPerInch, 'f', 4);
}

// Graphviz takes names and values as writable C strings, and copies them.
void set(void* object, const char* name, const QByteArray& value)
{
    agsafeset(object, const_cast<char*>(name), const_cast<char*>(value.constData()),
        const_cast<char*>(""));
}

QSizeF sane(const QSizeF& size)
{
    const auto length
        = [](qreal value) { return std::isfinite(value) ? qBound(1.0, value, kMaxLength) : 1.0; };
    return {length(size.width()), length(size.height())};
}

// Whole pixels below the top of a node where an edge ends.
int portAt(qreal offset, const QSizeF& size)
{
    const qreal inside = std::isfinite(offset) && offset >= 0 ? offset : size.height() / 2;
    return static_cast<int>(qBound(0.0, inside, size.height() - 1));
}

QByteArray portName(int port)
{
    return 'p' + QByteArray::number(port);
}

QByteArray row(int width, int height, const QByteArray& attributes)
{
    return "<TR><TD FIXEDSIZE=\"TRUE\" WIDTH=\"" + QByteArray::number(width) + "\" HEIGHT=\""
        + QByteArray::number(height) + '"' + attributes + "></TD></TR>";
}

// An empty table with one row, a pixel high, for every place where edges end. (A record would be
// simpler, but Graphviz loses memory with each.)
QByteArray portTable(const QSizeF& size, const std::set<int>& ports)
{
    const int width = static_cast<int>(size.width());
    const int height = static_cast<int>(size.height());
    QByteArray table = "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"0\">";
    int y = 0;
    for (const int port : ports) {
        if (port > y)
            table += row(width, port - y, {});
        table += row(width, 1, " PORT=\"" + portName(port) + '"');
        y = port + 1;
    }
    if (height > y)
        table += row(width, height - y, {});
    return table + "</TABLE>";
}

void setHtmlLabel(Agraph_t* graph, Agnode_t* node, const QByteArray& html)
{
    char* text = agstrdup_html(graph, const_cast<char*>(html.constData()));
    agxset(node, agattr(graph, AGNODE, const_cast<char*>("label"), nullptr), text);
    agstrfree(graph, text);
}

/// One call of Graphviz: a connected network, or, without edges, boxes for a table.
struct Job
{
    QVector<QSizeF> sizes;
    QVector<NetLayoutEdge> edges;
    NetLayoutOptions options;
    int columns = 0; // of the table
    QVector<int> weights; // of the edges; empty: all the same
    int boxes = -1; // the first boxes are real, the others lanes; -1: all are
};

struct Block
{
    QVector<QPointF> corners; // empty when Graphviz could not do it
    QSizeF size;
    QVector<int> ranks; // of the boxes: their columns, from the left
};

Graph makeGraph(const Job& job)
{
    Graph graph(agopen(const_cast<char*>("layout"), Agdirected, nullptr));
    set(graph.get(), "splines", "false");
    // Boxes move towards each other by up to this much when edges are made straight.
    set(graph.get(), "nodesep", inches(job.options.nodeGap + 2 * kStraightReach));
    set(graph.get(), "ranksep", inches(job.options.columnGap));
    if (job.edges.isEmpty()) {
        // A table in the order given, row by row, tops aligned.
        const int gap = qRound(qBound(0.0, job.options.nodeGap, kMaxLength));
        set(graph.get(), "packmode", "array_it" + QByteArray::number(job.columns));
        set(graph.get(), "pack", QByteArray::number(gap));
    } else {
        set(graph.get(), "rankdir", "LR");
    }
    if (job.sizes.size() >= kManyNodes) {
        set(graph.get(), "nslimit", "2");
        set(graph.get(), "nslimit1", "2");
        set(graph.get(), "mclimit", "0.5");
    }
    return graph;
}

QVector<Agnode_t*> fill(Agraph_t* graph, const Job& job)
{
    QVector<Agnode_t*> nodes;
    std::vector<std::set<int>> ports(static_cast<std::size_t>(job.sizes.size()));
    for (const QSizeF& size : job.sizes) {
        QByteArray name = QByteArray::number(nodes.size());
        Agnode_t* node = agnode(graph, name.data(), 1);
        set(node, "shape", "box");
        set(node, "fixedsize", "true");
        set(node, "margin", "0");
        set(node, "width", inches(size.width()));
        set(node, "height", inches(size.height()));
        set(node, "label", "");
        nodes.append(node);
    }
    const auto attach = [&](Agedge_t* line, const char* side, int node, qreal offset) {
        if (job.boxes >= 0 && node >= job.boxes)
            return; // a lane has no height to attach at
        const int port = portAt(offset, job.sizes.at(node));
        set(line, side, portName(port));
        ports[static_cast<std::size_t>(node)].insert(port);
    };
    for (int i = 0; i < job.edges.size(); ++i) {
        const NetLayoutEdge& edge = job.edges.at(i);
        Agedge_t* line = agedge(graph, nodes.at(edge.source), nodes.at(edge.dest), nullptr, 1);
        attach(line, "tailport", edge.source, edge.sourceOffset);
        attach(line, "headport", edge.dest, edge.destOffset);
        if (!job.weights.isEmpty())
            set(line, "weight", QByteArray::number(job.weights.at(i)));
    }
    for (int i = 0; i < nodes.size(); ++i) {
        const std::set<int>& own = ports[static_cast<std::size_t>(i)];
        if (!own.empty())
            setHtmlLabel(graph, nodes.at(i), portTable(job.sizes.at(i), own));
    }
    return nodes;
}

Block runOnce(const Job& job)
{
    Block block;
    if (job.sizes.size() == 1)
        return {{QPointF()}, job.sizes.constFirst(), {0}};
    if (job.sizes.isEmpty())
        return block;
    const Graph graph = makeGraph(job);
    const QVector<Agnode_t*> nodes = fill(graph.get(), job);
    if (gvLayout(context(), graph.get(), "dot") != 0)
        return block;
    QRectF bounds;
    const int boxes = job.boxes >= 0 ? job.boxes : nodes.size();
    for (int i = 0; i < boxes; ++i) {
        const pointf centre = ND_coord(nodes.at(i)); // y grows upwards
        const QSizeF& size = job.sizes.at(i);
        block.corners.append({centre.x - size.width() / 2, -centre.y - size.height() / 2});
        block.ranks.append(ND_rank(nodes.at(i)));
        bounds |= QRectF(block.corners.constLast(), size);
    }
    for (QPointF& corner : block.corners)
        corner -= bounds.topLeft();
    block.size = bounds.size();
    return block;
}

// A second time where connections pass columns, with room for what will be drawn there.
Block run(const Job& job)
{
    Block first = runOnce(job);
    if (job.edges.isEmpty() || first.corners.isEmpty()
        || !NetLanes::areNeeded(job.edges, first.ranks))
        return first;
    const NetLaneGraph lanes = NetLanes::reserve(job.sizes, job.edges, first.ranks, first.corners);
    const Block second
        = runOnce({lanes.sizes, lanes.edges, job.options, 0, lanes.weights, job.sizes.size()});
    return second.corners.isEmpty() ? first : second;
}

qreal elongation(const QSizeF& size)
{
    return std::max(size.width() / size.height(), size.height() / size.width());
}

qreal area(const QSizeF& size)
{
    return size.width() * size.height();
}

// Boxes count as wide as the widest one, so that they stand at the left of their columns.
Block runTable(QVector<QSizeF> sizes, const NetLayoutOptions& options, int columns)
{
    qreal widest = 0;
    for (const QSizeF& size : qAsConst(sizes))
        widest = std::max(widest, size.width());
    for (QSizeF& size : sizes)
        size.setWidth(widest);
    return run({sizes, {}, options, columns, {}, -1});
}

int nearlySquare(int count)
{
    return std::max(1, static_cast<int>(std::ceil(std::sqrt(count))));
}

// Separate networks above each other read best, until there are so many that they make a tower;
// then a table, unless its cells are mostly empty because the networks differ much in size.
Block stack(const QVector<QSizeF>& sizes, const NetLayoutOptions& options)
{
    Block tower = runTable(sizes, options, 1);
    if (sizes.size() < 3 || tower.size.height() < kTower * tower.size.width())
        return tower;
    Block table = runTable(sizes, options, nearlySquare(sizes.size()));
    const bool better = !table.corners.isEmpty() && area(table.size) < kSparse * area(tower.size)
        && elongation(table.size) < elongation(tower.size);
    return better ? table : tower;
}

bool isUsable(const NetLayoutEdge& edge, int nodeCount)
{
    return edge.source >= 0 && edge.dest >= 0 && edge.source < nodeCount && edge.dest < nodeCount
        && edge.source != edge.dest;
}

// Turns round every edge that closes a circle on a walk from the first node on. (Graphviz would do
// the same, but loses memory with each.)
void breakCycles(int nodeCount, QVector<NetLayoutEdge>* edges)
{
    enum class Visit { Before, During, After };
    QVector<QVector<int>> leaving(nodeCount);
    for (int i = 0; i < edges->size(); ++i)
        leaving[edges->at(i).source].append(i);
    QVector<Visit> visits(nodeCount, Visit::Before);
    QVector<int> taken(nodeCount, 0); // of the edges that leave a node
    for (int first = 0; first < nodeCount; ++first) {
        QVector<int> way;
        if (visits.at(first) == Visit::Before)
            way.append(first);
        while (!way.isEmpty()) {
            const int node = way.constLast();
            visits[node] = Visit::During;
            if (taken.at(node) == leaving.at(node).size()) {
                visits[node] = Visit::After;
                way.removeLast();
                continue;
            }
            NetLayoutEdge& edge = (*edges)[leaving.at(node).at(taken[node]++)];
            if (visits.at(edge.dest) == Visit::Before)
                way.append(edge.dest);
            else if (visits.at(edge.dest) == Visit::During)
                edge = {edge.dest, edge.source, edge.destOffset, edge.sourceOffset};
        }
    }
}

/// The nodes divided into networks that have no connection to each other, in the order of their
/// first nodes.
class Networks
{
public:
    Networks(int nodeCount, const QVector<NetLayoutEdge>& edges)
        : m_Root(nodeCount)
    {
        std::iota(m_Root.begin(), m_Root.end(), 0);
        for (const NetLayoutEdge& edge : edges)
            join(edge.source, edge.dest);
        QVector<int> number(nodeCount, -1);
        for (int i = 0; i < nodeCount; ++i) {
            int& mine = number[root(i)];
            if (mine < 0) {
                mine = m_Members.size();
                m_Members.append(QVector<int>());
            }
            m_Members[mine].append(i);
        }
    }
    const QVector<QVector<int>>& members() const { return m_Members; }

private:
    int root(int node)
    {
        while (m_Root.at(node) != node)
            node = m_Root[node] = m_Root.at(m_Root.at(node));
        return node;
    }
    // The lower number leads, so that the result does not depend on the order of the edges.
    void join(int a, int b)
    {
        const int first = root(a);
        const int second = root(b);
        m_Root[std::max(first, second)] = std::min(first, second);
    }

    QVector<int> m_Root;
    QVector<QVector<int>> m_Members;
};

/// Lays out networks one by one and puts their blocks together.
class Arrangement
{
public:
    Arrangement(const QVector<NetLayoutNode>& nodes, const QVector<NetLayoutEdge>& edges,
        const NetLayoutOptions& options)
        : m_Options(options)
        , m_Place(nodes.size())
        , m_Number(nodes.size())
        , m_Corners(nodes.size())
    {
        for (const NetLayoutNode& node : nodes)
            m_Sizes.append(sane(node.size));
        std::copy_if(edges.cbegin(), edges.cend(), std::back_inserter(m_Edges),
            [this](const NetLayoutEdge& edge) { return isUsable(edge, m_Sizes.size()); });
        breakCycles(m_Sizes.size(), &m_Edges);
    }

    QVector<QPointF> arrange()
    {
        const Networks networks(m_Sizes.size(), m_Edges);
        QVector<int> singles;
        QVector<QVector<int>> groups;
        for (const QVector<int>& members : networks.members()) {
            if (members.size() == 1)
                singles += members;
            else
                groups.append(members);
        }
        const QSizeF upper = arrangeGroups(groups);
        arrangeSingles(singles, upper);
        for (QPointF& corner : m_Corners)
            corner = QPointF(std::round(corner.x()), std::round(corner.y()));
        straighten();
        moveToOrigin();
        return m_Corners;
    }

private:
    // Graphviz leaves connected ports a few pixels apart where it means a straight line: such boxes move
    // onto it. The step is so small that neighbours stay apart.
    void straighten()
    {
        QVector<int> order(m_Corners.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(),
            [this](int a, int b) { return m_Corners.at(a).x() < m_Corners.at(b).x(); });
        QVector<QVector<int>> entering(m_Corners.size());
        QVector<QVector<int>> leaving(m_Corners.size());
        for (int i = 0; i < m_Edges.size(); ++i) {
            entering[m_Edges.at(i).dest].append(i);
            leaving[m_Edges.at(i).source].append(i);
        }
        for (const int node : qAsConst(order))
            m_Corners[node].ry() -= leastOffset(entering.at(node));
        std::reverse(order.begin(), order.end());
        for (const int node : qAsConst(order)) {
            if (entering.at(node).isEmpty())
                m_Corners[node].ry() += leastOffset(leaving.at(node));
        }
    }

    void moveToOrigin()
    {
        QPointF least = m_Corners.value(0);
        for (const QPointF& corner : qAsConst(m_Corners))
            least = {std::min(least.x(), corner.x()), std::min(least.y(), corner.y())};
        for (QPointF& corner : m_Corners)
            corner -= least;
    }

    // How far below its source the nearest to straight of these edges ends, 0 when none is close.
    qreal leastOffset(const QVector<int>& edges) const
    {
        qreal least = kStraightReach + 1;
        for (const int i : edges) {
            const NetLayoutEdge& edge = m_Edges.at(i);
            const qreal offset
                = endAt(edge.dest, edge.destOffset) - endAt(edge.source, edge.sourceOffset);
            if (std::abs(offset) < std::abs(least))
                least = offset;
        }
        return std::abs(least) <= kStraightReach ? std::round(least) : 0;
    }

    qreal endAt(int node, qreal offset) const
    {
        const qreal inside = offset >= 0 ? offset : m_Sizes.at(node).height() / 2;
        return m_Corners.at(node).y() + inside;
    }

    // Returns the size of all groups together; null without groups.
    QSizeF arrangeGroups(const QVector<QVector<int>>& groups)
    {
        if (groups.isEmpty())
            return {0, 0};
        QVector<Block> blocks;
        QVector<QSizeF> sizes;
        const QVector<Job> jobs = jobsOf(groups);
        for (const Job& job : jobs) {
            blocks.append(run(job));
            sizes.append(blocks.constLast().size);
        }
        NetLayoutOptions wide = m_Options;
        wide.nodeGap = m_Options.columnGap; // room between networks
        const Block whole = stack(sizes, wide);
        for (int i = 0; i < groups.size(); ++i) {
            for (const int node : groups.at(i))
                m_Corners[node]
                    = whole.corners.value(i) + blocks.at(i).corners.value(m_Number.at(node));
        }
        return whole.size;
    }

    QVector<Job> jobsOf(const QVector<QVector<int>>& groups)
    {
        QVector<Job> jobs(groups.size());
        for (int i = 0; i < groups.size(); ++i) {
            jobs[i].options = m_Options;
            for (const int node : groups.at(i)) {
                m_Place[node] = i;
                m_Number[node] = jobs.at(i).sizes.size();
                jobs[i].sizes.append(m_Sizes.at(node));
            }
        }
        for (const NetLayoutEdge& edge : qAsConst(m_Edges)) {
            jobs[m_Place.at(edge.source)].edges.append({m_Number.at(edge.source),
                m_Number.at(edge.dest), edge.sourceOffset, edge.destOffset});
        }
        return jobs;
    }

    // Below the groups, in rows about as long as those are wide; nearly square without groups.
    void arrangeSingles(const QVector<int>& singles, const QSizeF& upper)
    {
        QVector<QSizeF> sizes;
        qreal widest = 1;
        for (const int node : singles) {
            sizes.append(m_Sizes.at(node));
            widest = std::max(widest, sizes.constLast().width());
        }
        const int fitting = static_cast<int>(upper.width() / (widest + m_Options.nodeGap));
        const Block block
            = runTable(sizes, m_Options, std::max(fitting, nearlySquare(singles.size())));
        const qreal top = upper.isEmpty() ? 0 : upper.height() + m_Options.columnGap;
        for (int i = 0; i < singles.size(); ++i)
            m_Corners[singles.at(i)] = block.corners.value(i) + QPointF(0, top);
    }

    NetLayoutOptions m_Options;
    QVector<QSizeF> m_Sizes;
    QVector<NetLayoutEdge> m_Edges;
    QVector<int> m_Place; // of a node: its group
    QVector<int> m_Number; // of a node: its position in the group
    QVector<QPointF> m_Corners;
};

} // namespace

QVector<QPointF> NetLayout::arrange(const QVector<NetLayoutNode>& nodes,
    const QVector<NetLayoutEdge>& edges, const NetLayoutOptions& options)
{
    const QMutexLocker locker(&graphvizMutex());
    return Arrangement(nodes, edges, options).arrange();
}
