#pragma once

#include <QRectF>
#include <QRegion>
#include <QVector>

/// Internal. Which tiles of an area have been marked: a set of any number of rectangles that takes the same
/// room and time whatever their number.
///
/// Called by  OrvNgFarFrame (pixels to paint anew), OrvNgFarList (where the scene changed).
/// Uses       nothing.
/// Tells      nobody.
class OrvNgFarTiles
{
public:
    OrvNgFarTiles() = default;
    /// The area is cut into columns times rows tiles; an empty one has none.
    OrvNgFarTiles(const QRectF& area, int columns, int rows);

    void mark(const QRectF& rect);
    /// Whether a rectangle reaches into a marked tile.
    bool touches(const QRectF& rect) const;
    /// The marked tiles, for an area in whole pixels.
    QRegion region() const;

private:
    struct Span
    {
        int m_Left, m_Top, m_Right, m_Bottom; ///< of tiles, inclusive; empty when left > right
    };
    Span span(const QRectF& rect) const;

    QRectF m_Area;
    int m_Columns = 0;
    int m_Rows = 0;
    QVector<bool> m_Marks;
};
