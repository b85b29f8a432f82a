#include "network/NetLanes.h"

#include <QHash>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace {

constexpr int kDirect = 1; // between neighbouring columns
constexpr int kStraight = 30; // a lane in line with its end
constexpr int kBend = 6; // the step from one half of the way to the other
const QSizeF kLaneSize(1, 1);

// Lanes of edges that leave the same place are drawn on top of each other and need room once.
using Place = std::tuple<int, int, int>; // box, offset, column

class Builder
{
public:
    Builder(
        const QVector<QSizeF>& sizes, const QVector<int>& ranks, const QVector<QPointF>& corners)
        : m_Ranks(ranks)
        , m_Corners(corners)
    {
        m_Graph.sizes = sizes;
        for (int i = 0; i < sizes.size(); ++i) {
            const qreal centre = corners.at(i).x() + sizes.at(i).width() / 2;
            m_ColumnCentres.insert(ranks.at(i), centre);
        }
    }

    void add(const NetLayoutEdge& edge)
    {
        const int first = m_Ranks.at(edge.source) + 1;
        const int last = m_Ranks.at(edge.dest) - 1;
        const qreal right = m_Corners.at(edge.source).x() + m_Graph.sizes.at(edge.source).width();
        const qreal middle = (right + m_Corners.at(edge.dest).x()) / 2;

        NetLayoutEdge step{edge.source, -1, edge.sourceOffset, -1};
        bool isBeforeMiddle = true;
        for (int column = first; column <= last; ++column) {
            const bool wasBeforeMiddle = isBeforeMiddle;
            isBeforeMiddle = isBeforeMiddle && m_ColumnCentres.value(column, middle) < middle;
            step.dest = isBeforeMiddle ? sharedLane(edge, column) : newLane();
            connect(step, isBeforeMiddle == wasBeforeMiddle ? kStraight : kBend);
            step = {step.dest, -1, -1, -1};
        }
        step.dest = edge.dest;
        step.destOffset = edge.destOffset;
        const bool isDirect = last < first;
        connect(step, isDirect ? kDirect : (isBeforeMiddle ? kBend : kStraight));
    }

    NetLaneGraph take() { return std::move(m_Graph); }

private:
    int newLane()
    {
        m_Graph.sizes.append(kLaneSize);
        return m_Graph.sizes.size() - 1;
    }

    int sharedLane(const NetLayoutEdge& edge, int column)
    {
        const Place place(edge.source, qRound(edge.sourceOffset), column);
        const auto known = m_Lanes.find(place);
        if (known != m_Lanes.end())
            return known->second;
        const int lane = newLane();
        m_Lanes.emplace(place, lane);
        return lane;
    }

    void connect(const NetLayoutEdge& step, int weight)
    {
        const bool isLane = weight == kStraight;
        if (isLane && !m_Connected.emplace(step.source, step.dest).second)
            return; // shared with an edge before
        m_Graph.edges.append(step);
        m_Graph.weights.append(weight);
    }

    const QVector<int>& m_Ranks;
    const QVector<QPointF>& m_Corners;
    NetLaneGraph m_Graph;
    QHash<int, qreal> m_ColumnCentres;
    std::map<Place, int> m_Lanes;
    std::set<std::pair<int, int>> m_Connected;
};

} // namespace

NetLaneGraph NetLanes::reserve(const QVector<QSizeF>& sizes, const QVector<NetLayoutEdge>& edges,
    const QVector<int>& ranks, const QVector<QPointF>& corners)
{
    Builder builder(sizes, ranks, corners);
    for (const NetLayoutEdge& edge : edges)
        builder.add(edge);
    return builder.take();
}

bool NetLanes::areNeeded(const QVector<NetLayoutEdge>& edges, const QVector<int>& ranks)
{
    return std::any_of(edges.cbegin(), edges.cend(), [&ranks](const NetLayoutEdge& edge) {
        return ranks.at(edge.dest) - ranks.at(edge.source) > 1;
    });
}
