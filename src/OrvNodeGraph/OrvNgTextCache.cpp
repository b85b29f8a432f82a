#include "OrvNodeGraph/OrvNgTextCache.h"

#include <QCache>
#include <QFont>
#include <QFontMetrics>

namespace {

constexpr int kKeptEntries = 2000;

struct Key
{
    QString m_Text;
    QFont m_Font;
    bool operator==(const Key& other) const
    {
        return m_Text == other.m_Text && m_Font == other.m_Font;
    }
};

/// By the text alone: hashing a font costs more than comparing it, and few fonts share a text.
uint qHash(const Key& key, uint seed)
{
    return ::qHash(key.m_Text, seed);
}

QString withLineSeparators(QString text)
{
    return text.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
}

} // namespace

OrvNgTextCache::Entry::Entry(const QString& text, const QFont& font)
    : m_Layout(withLineSeparators(text), font)
{
    if (text.isEmpty()) // an empty line would still be as high as its font
        return;
    m_LineSize = QFontMetrics(font).size(Qt::TextSingleLine, text);
    m_Layout.setCacheEnabled(true);
    m_Layout.beginLayout();
    while (m_Layout.createLine().isValid()) { }
    m_Layout.endLayout(); // before this the lines have no size
    double top = 0.0;
    for (int i = 0; i < m_Layout.lineCount(); ++i) {
        QTextLine line = m_Layout.lineAt(i);
        m_DrawnWidth = qMax(m_DrawnWidth, line.naturalTextWidth());
        line.setPosition(QPointF(0.0, top));
        top += line.height();
    }
}

void OrvNgTextCache::Entry::draw(QPainter* painter, const QPointF& topLeft) const
{
    m_Layout.draw(painter, topLeft);
}

const OrvNgTextCache::Entry& OrvNgTextCache::find(const QString& text, const QFont& font)
{
    // Never deleted: fonts must not outlive the application object's font database.
    static auto* const s_Entries = new QCache<Key, Entry>(kKeptEntries);
    const Key key{text, font};
    Entry* entry = s_Entries->object(key);
    if (!entry) {
        entry = new Entry(text, font);
        s_Entries->insert(key, entry);
    }
    return *entry;
}
