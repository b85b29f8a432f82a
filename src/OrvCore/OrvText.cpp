#include "OrvCore/OrvText.h"

#include <QRegularExpression>

namespace {

constexpr int kScannedLength = 10000; // characters

// The elements of Qt's rich text subset. Attributes count only with a value: "x<b and c>y" is no
// tag.
const QString kMarkupPattern = QStringLiteral(
    R"(<(?:!doctype\b[^>]*|!--|\?xml\b[^>]*|/?(?:)"
    "a|address|b|big|blockquote|body|br|center|cite|code|dd|dfn|div|dl|dt|em|font|h[1-6]|head|hr|"
    "html|"
    "i|img|kbd|li|link|meta|nobr|ol|p|pre|qt|s|samp|small|span|strong|style|sub|sup|table|tbody|td|"
    "tfoot|th|thead|title|tr|tt|u|ul|var"
    R"()(?:\s+[a-z-]+\s*=\s*(?:"[^"]*"|'[^']*'|[^\s"'>]+))*\s*/?>))");

// True when a "<" at the index begins a tag, which ends at `lastClose` at the latest, rather than
// standing for "less than".
bool beginsTag(const QString& text, int index, int lastClose)
{
    if (text.at(index) != QLatin1Char('<') || index >= lastClose)
        return false;
    const QChar next = text.at(index + 1);
    return next.isLetter() || next == QLatin1Char('/') || next == QLatin1Char('!');
}

int behindSpaces(const QString& text, int index)
{
    while (index < text.size() && text.at(index) == QLatin1Char(' '))
        ++index;
    return index;
}

} // namespace

bool OrvIsHtmlText(const QString& text)
{
    static const QRegularExpression s_Markup(
        kMarkupPattern, QRegularExpression::CaseInsensitiveOption);
    if (!text.contains(QLatin1Char('<')))
        return false;
    return s_Markup.match(text.left(kScannedLength)).hasMatch();
}

void OrvReplaceConsecutiveSpacesWithNbsp(QString& text)
{
    const int lastClose = text.lastIndexOf(QLatin1Char('>'));
    bool atBeginning = true;
    for (int index = 0; index < text.size();) {
        if (beginsTag(text, index, lastClose)) {
            index = text.indexOf(QLatin1Char('>'), index) + 1;
            atBeginning = true;
            continue;
        }
        const int end = behindSpaces(text, index);
        if (end - index >= 2) {
            const int first = atBeginning ? index : index + 1;
            text.replace(first, end - first, QString(end - first, QChar::Nbsp));
        }
        atBeginning = end == index && text.at(index) == QLatin1Char('\n');
        index = qMax(end, index + 1);
    }
}
