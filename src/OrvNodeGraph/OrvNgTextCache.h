#pragma once

#include <QSizeF>
#include <QTextLayout>

class QFont;
class QPainter;

/// Internal. A text laid out once for all items that show it in the same font.
///
/// Ports of one name exist thousands of times, and every paint of a text item lays its text out anew:
/// measuring was a quarter of the time to build a node, laying out a third of a frame at scale 1.
///
/// The latest two thousand are kept; what is rarer is laid out again when it is next asked for.
///
/// Called by  OrvNgPort, OrvNgLodTextItem.
/// Uses       nothing.
/// Tells      nobody.
class OrvNgTextCache
{
public:
    class Entry
    {
    public:
        Entry(const QString& text, const QFont& font);

        /// The text measured as a single line; an empty text has no size.
        const QSizeF& lineSize() const { return m_LineSize; }
        /// As wide as it is drawn.
        double drawnWidth() const { return m_DrawnWidth; }
        /// Draws with the painter's pen; topLeft in the painter's coordinates. Line breaks begin new lines.
        void draw(QPainter* painter, const QPointF& topLeft) const;

    private:
        QTextLayout m_Layout;
        QSizeF m_LineSize{0.0, 0.0};
        double m_DrawnWidth = 0.0;
    };

    /// Valid until the next call.
    static const Entry& find(const QString& text, const QFont& font);
};
