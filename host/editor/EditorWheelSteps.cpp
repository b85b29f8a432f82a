#include "editor/EditorWheelSteps.h"

#include <QWheelEvent>

namespace {

constexpr int kStep = QWheelEvent::DefaultDeltasPerStep;
constexpr quint64 kPause = 500; // milliseconds
constexpr int kMostSteps = 8; // of one event; a wheel that claims more is not meant so

int gather(int* rest, int delta)
{
    const bool isTurnedBack = (delta > 0 && *rest < 0) || (delta < 0 && *rest > 0);
    const int sum
        = qBound(-kMostSteps * kStep, delta, kMostSteps * kStep) + (isTurnedBack ? 0 : *rest);
    *rest = sum % kStep;
    return sum / kStep;
}

} // namespace

int EditorWheelSteps::add(const QPoint& angleDelta, quint64 time)
{
    if (time < m_Time || time - m_Time > kPause)
        m_Rest = {};
    m_Time = time;
    return gather(&m_Rest.rx(), angleDelta.x()) + gather(&m_Rest.ry(), angleDelta.y());
}
