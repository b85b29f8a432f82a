#include "network/NetXmlWriter.h"

#include <algorithm>
#include <iterator>

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isSpace(char c)
{
    return isBlank(c) || c == '\r' || c == '\n';
}

// What no file of this format can hold, not even escaped; it comes with text from other programs.
bool isForbidden(QChar c)
{
    return (c < QLatin1Char(' ') && c != QLatin1Char('\n') && c != QLatin1Char('\r')
               && c != QLatin1Char('\t'))
        || c.unicode() >= 0xFFFE;
}

} // namespace

NetXmlWriter::NetXmlWriter(const NetXmlFile& file, NetXmlPatches* patches)
    : m_Text(file.bytes())
    , m_Patches(patches)
{
}

bool NetXmlWriter::canWrite(const QString& value)
{
    return std::none_of(value.cbegin(), value.cend(), isForbidden);
}

NetXmlTag NetXmlWriter::tagOf(pugi::xml_node element) const
{
    return {m_Text, static_cast<int>(element.offset_debug()) - 1};
}

int NetXmlWriter::lineBegin(int position) const
{
    return position == 0 ? 0 : m_Text.lastIndexOf('\n', position - 1) + 1;
}

bool NetXmlWriter::isFirstOnLine(int position) const
{
    return std::all_of(m_Text.cbegin() + lineBegin(position), m_Text.cbegin() + position, isBlank);
}

QByteArray NetXmlWriter::indentOf(pugi::xml_node element) const
{
    const int begin = tagOf(element).begin();
    const int line = lineBegin(begin);
    return isFirstOnLine(begin) ? QByteArray(m_Text.constData() + line, begin - line)
                                : QByteArray();
}

QByteArray NetXmlWriter::childIndentOf(pugi::xml_node element) const
{
    const QByteArray own = indentOf(element);
    const bool isRoot = element.parent().type() != pugi::node_element;
    const QByteArray around = isRoot ? QByteArray() : indentOf(element.parent());
    if (own.size() > around.size() && own.startsWith(around))
        return own + own.mid(around.size());
    return own + (own.contains('\t') ? "\t" : "  ");
}

QByteArray NetXmlWriter::lineEndAt(int position) const
{
    int newline = position == 0 ? -1 : m_Text.lastIndexOf('\n', position - 1);
    if (newline < 0)
        newline = m_Text.indexOf('\n', position);
    return newline > 0 && m_Text.at(newline - 1) == '\r' ? "\r\n" : "\n";
}

// A comment behind an element, on the same line, belongs to it.
int NetXmlWriter::behindComments(int position) const
{
    for (int next = position;;) {
        while (next < m_Text.size() && isBlank(m_Text.at(next)))
            ++next;
        if (m_Text.mid(next, 4) != "<!--")
            return position;
        next = m_Text.indexOf("-->", next + 4); // behind the dashes of the beginning
        if (next < 0)
            return position;
        position = next += 3;
    }
}

// "/>" with or without a blank before it, as the nearest element does.
QByteArray NetXmlWriter::closingAt(int position) const
{
    int near = m_Text.lastIndexOf("/>", position);
    if (near < 0)
        near = m_Text.indexOf("/>", position);
    return near > 0 && !isBlank(m_Text.at(near - 1)) ? "/>" : " />";
}

QByteArray NetXmlWriter::escaped(const QString& value, char quote)
{
    QString legal;
    std::remove_copy_if(value.cbegin(), value.cend(), std::back_inserter(legal), isForbidden);
    QByteArray text = legal.toUtf8();
    text.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
    text.replace('\n', "&#10;").replace('\r', "&#13;").replace('\t', "&#9;");
    return quote == '"' ? text.replace('"', "&quot;") : text.replace('\'', "&apos;");
}

QByteArray NetXmlWriter::written(const QPair<QByteArray, QString>& pair, char quote)
{
    return pair.first + '=' + quote + escaped(pair.second, quote) + quote;
}

QByteArray NetXmlWriter::newTag(
    const QByteArray& tag, const NetXmlPairs& attributes, char quote) const
{
    QByteArray text = '<' + tag;
    for (const auto& pair : attributes)
        text += ' ' + written(pair, quote);
    return text;
}

void NetXmlWriter::setAttributes(
    pugi::xml_node element, const NetXmlPairs& wanted, const QVector<QByteArray>& replaced)
{
    const NetXmlTag tag = tagOf(element);
    QVector<const NetXmlTag::Attribute*> going;
    QVector<const NetXmlTag::Attribute*> kept(wanted.size(), nullptr);
    for (const NetXmlTag::Attribute& attribute : tag.attributes()) {
        const QByteArray name = tag.attributeName(attribute);
        const auto found = std::find_if(wanted.cbegin(), wanted.cend(),
            [&name](const auto& pair) { return pair.first == name; });
        if (found != wanted.cend() && !kept.at(static_cast<int>(found - wanted.cbegin())))
            kept[static_cast<int>(found - wanted.cbegin())] = &attribute;
        else if (replaced.contains(name))
            going.append(&attribute);
    }
    int last = tag.lastEnd();
    for (int i = 0; i < wanted.size(); ++i) {
        const auto& pair = wanted.at(i);
        if (const NetXmlTag::Attribute* old = kept.at(i)) {
            last = old->end;
            if (NetXmlFile::attribute(element, pair.first.constData()) != pair.second) {
                m_Patches->add(m_Text, old->valueBegin, old->valueEnd,
                    escaped(pair.second, m_Text.at(old->valueEnd)));
            }
        } else if (!going.isEmpty()) {
            const NetXmlTag::Attribute* place = going.takeFirst();
            last = place->end;
            m_Patches->add(
                m_Text, place->begin, place->end, written(pair, m_Text.at(place->valueEnd)));
        } else {
            m_Patches->add(m_Text, last, last, ' ' + written(pair, tag.quote()));
        }
    }
    for (const NetXmlTag::Attribute* gone : qAsConst(going))
        m_Patches->add(m_Text, gone->spaceBegin, gone->end, {});
}

void NetXmlWriter::addInput(pugi::xml_node element, const NetXmlPairs& attributes)
{
    const NetXmlTag tag = tagOf(element);
    const QByteArray input = newTag("input", attributes, tag.quote()) + closingAt(tag.elementEnd());
    const bool ownLine = isFirstOnLine(tag.begin());
    const QByteArray newLine = ownLine ? lineEndAt(tag.begin()) : QByteArray();
    const QByteArray indent = ownLine ? childIndentOf(element) : QByteArray();
    if (tag.isSelfClosing()) {
        openUp(element, input);
        return;
    }
    pugi::xml_node last;
    for (const pugi::xml_node child : element.children("input"))
        last = child;
    const pugi::xml_node neighbour = last ? last : element.find_child([](pugi::xml_node child) {
        return child.type() == pugi::node_element;
    });
    const bool lined = neighbour ? isFirstOnLine(tagOf(neighbour).begin()) : ownLine;
    const QByteArray before = lined
        ? lineEndAt(tag.begin()) + (neighbour ? indentOf(neighbour) : indent)
        : QByteArray();
    const int place = last
        ? (lined ? behindComments(tagOf(last).elementEnd()) : tagOf(last).elementEnd())
        : tag.end();
    const bool flat = m_Text.mid(place, 2) == "</";
    m_Patches->add(m_Text, place, place,
        before + input + (flat && lined ? newLine + indentOf(element) : QByteArray()));
}

void NetXmlWriter::openUp(pugi::xml_node element, const QByteArray& child)
{
    const NetXmlTag tag = tagOf(element);
    const bool ownLine = isFirstOnLine(tag.begin());
    const QByteArray newLine = ownLine ? lineEndAt(tag.begin()) : QByteArray();
    const QByteArray indent = ownLine ? childIndentOf(element) : QByteArray();
    m_Patches->add(m_Text, tag.lastEnd(), tag.end(),
        '>' + newLine + indent + child + newLine + (ownLine ? indentOf(element) : QByteArray())
            + "</" + tag.name() + '>');
}

void NetXmlWriter::addLast(
    pugi::xml_node around, const QByteArray& tag, const NetXmlPairs& attributes)
{
    const NetXmlTag outer = tagOf(around);
    if (outer.isSelfClosing()) {
        openUp(around, newTag(tag, attributes, outer.quote()) + closingAt(outer.elementEnd()));
        return;
    }
    pugi::xml_node last;
    for (const pugi::xml_node child : around.children()) {
        if (child.type() == pugi::node_element)
            last = child;
    }
    const NetXmlTag model = last ? tagOf(last) : outer;
    const int closing = m_Text.lastIndexOf("</", outer.elementEnd() - 1);
    int place = closing;
    while (place > outer.end() && isSpace(m_Text.at(place - 1)))
        --place;
    QByteArray before;
    QByteArray after;
    if (isFirstOnLine(model.begin())) {
        const QByteArray newLine = lineEndAt(model.begin());
        before = newLine + (last ? indentOf(last) : childIndentOf(around));
        if (place == closing)
            after = newLine + indentOf(around);
    }
    m_Patches->add(m_Text, place, place,
        before + newTag(tag, attributes, model.quote()) + closingAt(place) + after);
}

void NetXmlWriter::addNodeBefore(pugi::xml_node element, const QByteArray& tag,
    const NetXmlPairs& attributes, const NetXmlPairs& inputAttributes)
{
    const NetXmlTag next = tagOf(element);
    const bool ownLine = isFirstOnLine(next.begin());
    const QByteArray lineEnd = ownLine ? lineEndAt(next.begin()) : QByteArray();
    const QByteArray indent = lineEnd + indentOf(element);
    const QByteArray inner = ownLine ? lineEnd + childIndentOf(element) : QByteArray();
    m_Patches->add(m_Text, next.begin(), next.begin(),
        newTag(tag, attributes, next.quote()) + '>' + inner
            + newTag("input", inputAttributes, next.quote()) + closingAt(next.elementEnd()) + indent
            + "</" + tag + '>' + indent);
}

void NetXmlWriter::remove(pugi::xml_node element)
{
    const NetXmlTag tag = tagOf(element);
    int begin = tag.begin();
    int end = tag.elementEnd();
    int rest = end;
    while (rest < m_Text.size() && isBlank(m_Text.at(rest)))
        ++rest;
    if (m_Text.mid(rest, 2) == "\r\n")
        ++rest;
    if (isFirstOnLine(begin) && rest < m_Text.size() && m_Text.at(rest) == '\n') {
        begin = lineBegin(begin);
        end = rest + 1;
    }
    m_Patches->add(m_Text, begin, end, {});
}
