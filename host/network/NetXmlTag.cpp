#include "network/NetXmlTag.h"

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Behind the next occurrence; the end of the text when there is none.
int behind(const QByteArray& text, const char* what, int from)
{
    const int found = text.indexOf(what, from);
    return found < 0 ? text.size() : found + static_cast<int>(qstrlen(what));
}

} // namespace

NetXmlTag::NetXmlTag(const QByteArray& text, int begin)
    : m_Text(text)
    , m_Begin(begin)
{
    int position = begin + 1;
    const auto at = [this](int i) { return i < m_Text.size() ? m_Text.at(i) : '>'; };
    while (!isSpace(at(position)) && at(position) != '/' && at(position) != '>')
        ++position;
    m_NameEnd = position;
    for (;;) {
        Attribute attribute;
        attribute.spaceBegin = position;
        position = skipSpace(position);
        if (at(position) == '/' || at(position) == '>')
            break;
        attribute.begin = position;
        while (!isSpace(at(position)) && at(position) != '=' && position < m_Text.size())
            ++position;
        attribute.nameEnd = position;
        position = skipSpace(skipSpace(position) + 1);
        attribute.valueBegin = position + 1;
        const int close = m_Text.indexOf(at(position), attribute.valueBegin);
        attribute.valueEnd = close < 0 ? m_Text.size() : close;
        position = attribute.end = attribute.valueEnd + 1;
        m_Attributes.append(attribute);
    }
    m_SelfClosing = at(position) == '/';
    m_End = behind(m_Text, ">", position);
}

int NetXmlTag::skipSpace(int position) const
{
    while (position < m_Text.size() && isSpace(m_Text.at(position)))
        ++position;
    return position;
}

int NetXmlTag::elementEnd() const
{
    int position = m_End;
    for (int depth = m_SelfClosing ? 0 : 1; depth > 0 && position < m_Text.size();) {
        position = m_Text.indexOf('<', position);
        if (position < 0)
            return m_Text.size();
        const char next = m_Text.size() > position + 1 ? m_Text.at(position + 1) : '!';
        if (next == '/') {
            position = behind(m_Text, ">", position);
            --depth;
        } else if (next == '?') {
            position = behind(m_Text, "?>", position + 2);
        } else if (next == '!') {
            const bool data = m_Text.mid(position, 9) == "<![CDATA[";
            // Not the dashes of the beginning: "<!-->" is no whole comment.
            position = behind(m_Text, data ? "]]>" : "-->", position + 4);
        } else {
            const NetXmlTag inner(m_Text, position);
            position = inner.end();
            depth += inner.isSelfClosing() ? 0 : 1;
        }
    }
    return position;
}

char NetXmlTag::quote() const
{
    return m_Attributes.isEmpty() ? '"' : m_Text.at(m_Attributes.constFirst().valueBegin - 1);
}
