#include "OrvNodeGraph/OrvNgFarTiles.h"

#include <cmath>

OrvNgFarTiles::OrvNgFarTiles(const QRectF& area, int columns, int rows)
    : m_Area(area)
{
    if (!(area.width() > 0.0 && area.height() > 0.0) || columns < 1 || rows < 1)
        return;
    m_Columns = columns;
    m_Rows = rows;
    m_Marks.resize(columns * rows);
}

OrvNgFarTiles::Span OrvNgFarTiles::span(const QRectF& rect) const
{
    const QRectF cut = rect & m_Area;
    // An area of a single line still lies in tiles.
    const bool isOutside = m_Marks.isEmpty() || rect.left() > m_Area.right()
        || rect.right() < m_Area.left() || rect.top() > m_Area.bottom()
        || rect.bottom() < m_Area.top();
    if (isOutside)
        return {1, 1, 0, 0};
    const QRectF& inside = cut.isNull() ? rect : cut;
    const auto tile = [](double offset, double extent, int count) {
        return qBound(0, int(std::floor(qBound(-1.0, offset / extent, 2.0) * count)), count - 1);
    };
    return {tile(inside.left() - m_Area.left(), m_Area.width(), m_Columns),
        tile(inside.top() - m_Area.top(), m_Area.height(), m_Rows),
        tile(inside.right() - m_Area.left(), m_Area.width(), m_Columns),
        tile(inside.bottom() - m_Area.top(), m_Area.height(), m_Rows)};
}

void OrvNgFarTiles::mark(const QRectF& rect)
{
    const Span tiles = span(rect);
    for (int row = tiles.m_Top; row <= tiles.m_Bottom; ++row) {
        for (int column = tiles.m_Left; column <= tiles.m_Right; ++column)
            m_Marks[row * m_Columns + column] = true;
    }
}

bool OrvNgFarTiles::touches(const QRectF& rect) const
{
    const Span tiles = span(rect);
    for (int row = tiles.m_Top; row <= tiles.m_Bottom; ++row) {
        for (int column = tiles.m_Left; column <= tiles.m_Right; ++column) {
            if (m_Marks.at(row * m_Columns + column))
                return true;
        }
    }
    return false;
}

QRegion OrvNgFarTiles::region() const
{
    const double width = m_Columns > 0 ? m_Area.width() / m_Columns : 0.0;
    const double height = m_Rows > 0 ? m_Area.height() / m_Rows : 0.0;
    QRegion region;
    for (int row = 0; row < m_Rows; ++row) {
        for (int column = 0; column < m_Columns; ++column) {
            const int first = column;
            while (column < m_Columns && m_Marks.at(row * m_Columns + column))
                ++column;
            if (column == first)
                continue;
            const QRectF run(m_Area.left() + first * width, m_Area.top() + row * height,
                (column - first) * width, height);
            region |= run.toAlignedRect() & m_Area.toAlignedRect();
        }
    }
    return region;
}
