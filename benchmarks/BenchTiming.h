#pragma once

#include <QElapsedTimer>
#include <QVector>

#include <algorithm>

/// Milliseconds that something takes.
template <typename Work> double benchTime(const Work& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

/// Of at least one value.
inline double benchMedian(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 == 1 ? values.at(middle)
                                  : (values.at(middle - 1) + values.at(middle)) / 2;
}
