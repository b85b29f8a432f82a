#pragma once

#include <QByteArray>
#include <QVector>

/// A few places of a text with what stood there before and what stands there after a change.
///
/// Called by  NetXmlWriter, which collects them; NetEditor, which makes the change and takes it back.
/// Uses       nothing.
/// Tells      nobody.
class NetXmlPatches
{
public:
    /// Adds a place, from begin to end in the text before the change. Places may touch, but must not
    /// overlap; at one position, text to insert goes in the order of the calls.
    void add(const QByteArray& text, int begin, int end, const QByteArray& after);
    bool isEmpty() const { return m_Patches.isEmpty(); }

    /// The text after the change. A null array if this is not the text that the change was made for.
    QByteArray applied(const QByteArray& text) const;
    /// The text before the change, from the text after it; null as above.
    QByteArray reverted(const QByteArray& text) const;

private:
    struct Patch
    {
        int offset = 0; // in the text before the change
        QByteArray before;
        QByteArray after;
    };

    QVector<Patch> m_Patches; // by offset
};
