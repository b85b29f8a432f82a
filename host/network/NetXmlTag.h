#pragma once

#include <QByteArray>
#include <QVector>

/// The start tag of one element, byte by byte: where its attributes stand in the text.
///
/// Only for text that a parser took already. All positions count bytes from the start of the text.
///
/// Called by  NetXmlWriter.
/// Uses       nothing.
/// Tells      nobody.
class NetXmlTag
{
public:
    struct Attribute
    {
        int spaceBegin = 0; ///< of the white space before the name
        int begin = 0; ///< of the name
        int nameEnd = 0;
        int valueBegin = 0; ///< behind the opening quote
        int valueEnd = 0; ///< at the closing quote
        int end = 0; ///< behind the closing quote
    };

    /// Reads the tag whose '<' stands at the position.
    NetXmlTag(const QByteArray& text, int begin);

    QByteArray name() const { return m_Text.mid(m_Begin + 1, m_NameEnd - m_Begin - 1); }
    QByteArray attributeName(const Attribute& attribute) const
    {
        return m_Text.mid(attribute.begin, attribute.nameEnd - attribute.begin);
    }
    const QVector<Attribute>& attributes() const { return m_Attributes; }
    int begin() const { return m_Begin; }
    /// Behind the last attribute, or behind the name when there is none.
    int lastEnd() const
    {
        return m_Attributes.isEmpty() ? m_NameEnd : m_Attributes.constLast().end;
    }
    bool isSelfClosing() const { return m_SelfClosing; }
    /// Behind the '>'.
    int end() const { return m_End; }
    /// Behind the '>' of the closing tag, or of this one if it closes itself.
    int elementEnd() const;
    /// The quote that the tag's attributes use.
    char quote() const;

private:
    int skipSpace(int position) const;

    QByteArray m_Text;
    QVector<Attribute> m_Attributes;
    int m_Begin = 0;
    int m_NameEnd = 0;
    int m_End = 0;
    bool m_SelfClosing = false;
};
