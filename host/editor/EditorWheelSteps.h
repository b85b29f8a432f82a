#pragma once

#include <QPoint>

/// Gathers the small turns of fine wheels to whole steps, so that one notch of any wheel zooms by the same
/// amount. Each axis gathers for itself; what is left over is forgotten when the wheel turns back or has
/// rested.
///
/// Called by  EditorView.
/// Uses       nothing else.
/// Tells      nobody.
class EditorWheelSteps
{
public:
    /// Takes an angle in eighths of a degree, as wheel events have it, and its time in milliseconds. Answers
    /// with the whole steps that are full now, both axes together; positive away from the user.
    int add(const QPoint& angleDelta, quint64 time);

private:
    QPoint m_Rest;
    quint64 m_Time = 0;
};
