#pragma once

#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <cmath>

/// The network of all figures, as numbers: about sqrt(N) columns, four inputs and two outputs a node, inputs 0
/// and 1 wired to two nodes of the previous column. The library's graph and the floors are made from it, and
/// neither from the other.
struct BenchWorkload
{
    static constexpr int kInputs = 4;
    static constexpr int kOutputs = 2;
    static constexpr int kWiredInputs = 2;
    static constexpr QSize kViewSize{1600, 1000}; // pixels
    static constexpr QSizeF kNodeSize{160.0, 150.0}; // of the floors' nodes, scene units

    int m_NodeCount = 0;

    int rows() const { return qMax(1, qRound(std::sqrt(double(m_NodeCount)))); }
    QPointF posOf(int node) const { return {node / rows() * 260.0, node % rows() * 220.0}; }
    /// The node that a wired input comes from; −1 in the first column.
    int sourceOf(int node, int input) const
    {
        const int column = node / rows();
        return column == 0 ? -1 : (column - 1) * rows() + (node + input) % rows();
    }
    int middleNode() const { return m_NodeCount / rows() / 2 * rows() + rows() / 2; }

    /// What the view shows when all is in view, with room to scroll a little.
    QRectF wholeRect() const
    {
        const QPointF last((m_NodeCount - 1) / rows() * 260.0, (rows() - 1) * 220.0);
        const QRectF nodes(QPointF(), last + QPointF(kNodeSize.width(), kNodeSize.height()));
        const double margin = 0.04 * qMax(nodes.width(), nodes.height());
        return nodes.adjusted(-margin, -margin, margin, margin);
    }
    double wholeScale() const
    {
        return qMin(
            kViewSize.width() / wholeRect().width(), kViewSize.height() / wholeRect().height());
    }
    /// From scene to view, with a scene point in the centre.
    static QTransform sceneToView(double scale, const QPointF& center)
    {
        return QTransform(scale, 0.0, 0.0, scale, kViewSize.width() / 2.0 - scale * center.x(),
            kViewSize.height() / 2.0 - scale * center.y());
    }
    QTransform wholeInView() const { return sceneToView(wholeScale(), wholeRect().center()); }
    QTransform middleAtScaleOne() const { return sceneToView(1.0, posOf(middleNode())); }
};
