#include "OrvNodeGraph/OrvNgBackdropNesting.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

using Frame = OrvNgBackdropNesting::Frame;

constexpr float kStep = 0.01F;
constexpr float kHighest = -1.01F; // below edges and nodes

double area(const Frame& frame)
{
    return frame.m_SceneRect.width() * frame.m_SceneRect.height();
}

// Levels tell apart what shares the highest z value.
bool isAbove(const Frame& frame, const Frame& other)
{
    if (frame.m_ZValue != other.m_ZValue)
        return frame.m_ZValue > other.m_ZValue;
    return frame.m_Order > other.m_Order;
}

} // namespace

double OrvNgBackdropNesting::zValue(int order, float base)
{
    const float z = float(order) * kStep + base;
    return double(qMin(z, qMax(base, kHighest)));
}

bool OrvNgBackdropNesting::isInside(const QRectF& inner, const QRectF& outer)
{
    return outer.contains(inner) && outer != inner;
}

QVector<int> OrvNgBackdropNesting::raisedOrders(QVector<Frame> frames, float base)
{
    // From the largest on: when a frame is compared with those in it, its own level is final.
    QVector<int> bySize(frames.size());
    std::iota(bySize.begin(), bySize.end(), 0);
    std::stable_sort(bySize.begin(), bySize.end(),
        [&frames](int a, int b) { return area(frames.at(a)) > area(frames.at(b)); });

    for (auto outerIndex = bySize.cbegin(); outerIndex != bySize.cend(); ++outerIndex) {
        const Frame outer = frames.at(*outerIndex);
        for (auto innerIndex = outerIndex + 1; innerIndex != bySize.cend(); ++innerIndex) {
            Frame& inner = frames[*innerIndex];
            if (!isInside(inner.m_SceneRect, outer.m_SceneRect) || isAbove(inner, outer))
                continue;
            inner.m_Order = qMin(outer.m_Order, std::numeric_limits<int>::max() - 1) + 1;
            inner.m_ZValue = zValue(inner.m_Order, base);
        }
    }
    QVector<int> orders;
    orders.reserve(frames.size());
    for (const Frame& frame : qAsConst(frames))
        orders.append(frame.m_Order);
    return orders;
}
