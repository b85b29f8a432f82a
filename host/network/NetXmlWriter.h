#pragma once

#include "network/NetXmlFile.h"
#include "network/NetXmlPatches.h"
#include "network/NetXmlTag.h"

/// Attributes to write, in order.
using NetXmlPairs = QVector<QPair<QByteArray, QString>>;

/// Works out the smallest change of a file's text for a change of one of its elements, in the style of
/// what stands around: indentation, line ends, quotes, the blank before "/>". Only what is new is
/// escaped.
///
/// Called by  NetEditor.
/// Uses       NetXmlTag.
/// Tells      nobody.
class NetXmlWriter
{
public:
    /// The file must outlive the writer; its tree gives the elements to change.
    NetXmlWriter(const NetXmlFile& file, NetXmlPatches* patches);

    /// Whether a value can be written as it is. Some characters have no place in a file, not even escaped:
    /// they are left out.
    static bool canWrite(const QString& value);

    /// Gives the element those attributes. Those of the names in `replaced` go, unless they are wanted
    /// too; a new attribute takes the place of one that goes, else it stands behind the one wanted
    /// before it, else at the end. The text of a value that does not change stays as it is.
    void setAttributes(pugi::xml_node element, const NetXmlPairs& wanted,
        const QVector<QByteArray>& replaced = {});
    /// Adds an input behind those that the element has; opens up an element that closes itself.
    void addInput(pugi::xml_node element, const NetXmlPairs& attributes);
    /// Adds a node with one input right before an element.
    void addNodeBefore(pugi::xml_node element, const QByteArray& tag, const NetXmlPairs& attributes,
        const NetXmlPairs& inputAttributes);
    /// Adds an element without children behind everything that the one around it holds; opens up one that
    /// closes itself. It gets its own line where the last child, or else the one around, stands on one.
    void addLast(pugi::xml_node around, const QByteArray& tag, const NetXmlPairs& attributes);
    /// Takes the element out, and with it its lines where nothing else stands on them.
    void remove(pugi::xml_node element);

private:
    NetXmlTag tagOf(pugi::xml_node element) const;
    int lineBegin(int position) const;
    bool isFirstOnLine(int position) const;
    /// The white space before the element on its line; null when something else stands there.
    QByteArray indentOf(pugi::xml_node element) const;
    QByteArray childIndentOf(pugi::xml_node element) const;
    QByteArray lineEndAt(int position) const;
    int behindComments(int position) const;
    QByteArray newTag(const QByteArray& tag, const NetXmlPairs& attributes, char quote) const;
    QByteArray closingAt(int position) const;
    void openUp(pugi::xml_node element, const QByteArray& child);
    static QByteArray escaped(const QString& value, char quote);
    static QByteArray written(const QPair<QByteArray, QString>& pair, char quote);

    const QByteArray& m_Text;
    NetXmlPatches* m_Patches;
};
