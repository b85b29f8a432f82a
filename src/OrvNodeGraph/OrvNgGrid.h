#pragma once

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPixmap>
#include <QRectF>
#include <QSize>
#include <QTransform>
#include <QVector>

/// Internal. Paints a scene background and the grid over it: lines through every multiple of the
/// cell's width and height.
///
/// On an image, drawn lines are alike in all pixel rows, and in all pixel columns. So the grid is
/// painted by one row of its vertical lines, repeated downwards, and by bands for its horizontal
/// ones. The pixels are those of drawing line by line, in a fraction of its time. Over an opaque
/// colour the row holds the background too, and where the bands are many the whole frame is one
/// picture. All is kept for the next frame and made anew only when something it depends on has
/// changed.
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
    /// All that row and bands depend on.
    struct Frame
    {
        QTransform m_ToDevice; ///< from scene coordinates: scale and phase
        double m_PixelRatio = 1.0;
        QRectF m_Exposed;
        QSize m_Cell; ///< invalid: nothing is kept
        QPen m_Pen;
        QColor m_Background; ///< opaque, or invalid: the row does not hold the background
        QPainter::RenderHints m_Hints;

        bool operator==(const Frame& other) const;
    };

    /// Pixel rows of one colour, across the whole exposed area.
    struct Band
    {
        int m_Top; ///< device pixels below the exposed area's top
        int m_Height;
        QColor m_Color;
    };

    void makeRow(const QImage& strip, int width); // device pixels
    void makeBands(const QImage& strip, int height);
    void makePicture(const QSize& pixels);
    void paintKept(QPainter* painter, const QRect& pixels) const;

    Frame m_Kept;
    QPixmap m_Row;
    QVector<Band> m_Bands;
    QImage m_Picture; ///< row and bands of the whole frame
    bool m_HasPicture = false; ///< false where the bands are few
};
