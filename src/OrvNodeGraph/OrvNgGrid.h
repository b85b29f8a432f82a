#pragma once

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QRectF>
#include <QSize>
#include <QTransform>
#include <QVector>

/// Internal. Paints a scene background and the grid over it: lines through every multiple of the
/// cell's width and height.
///
/// On an image, drawn lines are alike in all pixel rows, and in all pixel columns. So one strip of
/// pixels across the vertical lines and one across the horizontal ones tell the whole grid, and few
/// of the frame's rows differ. Each of those is blended once, over the background where that is an
/// opaque colour, and then copied. The pixels are those of drawing line by line, in a fraction of
/// its time. The rows are kept for the next frame and made anew when something they depend on has
/// changed, as it has in every frame of a pan.
///
/// Called by  OrvNgView.
/// Uses       nothing: values in, pixels out.
/// Tells      nobody.
class OrvNgGrid
{
public:
    /// Fills an exposed scene rectangle and paints the lines that cross it. The painter maps scene
    /// to device coordinates; its pen may be left set to pen. cell is in scene units, and less than
    /// 1 counts as 1. No lines are painted at a level of detail of 0.007 and below.
    void paint(QPainter* painter, const QRectF& exposed, const QSize& cell, const QPen& pen,
        const QBrush& background);

private:
    /// All that the rows depend on.
    struct Frame
    {
        QTransform m_ToDevice; ///< from scene coordinates: scale and phase
        QRectF m_Exposed;
        QRect m_Pixels; ///< the same in device pixels; rectangles nearly alike may touch one more
        QSize m_Cell; ///< invalid: nothing is kept
        QPen m_Pen;
        QColor m_Background; ///< opaque, or invalid: the rows do not hold the background
        QPainter::RenderHints m_Hints;

        bool operator==(const Frame& other) const;
    };

    void makeRows(const QImage& across, const QImage& down, const QSize& pixels);
    QVector<QRgb> assignRows(const QImage& down, int height);
    void reserveRows(const QSize& pixels);
    void paintKept(QPainter* painter, const QRect& pixels);

    Frame m_Kept;
    QImage m_Rows; ///< the different rows of pixels, each once; may be higher than they need
    QVector<int> m_RowAt; ///< by device pixels below the exposed area's top: which of m_Rows
    QImage m_Slab; ///< some rows of the frame, in the order they are painted
};
