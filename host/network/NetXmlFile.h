#pragma once

#include "network/NetMessage.h"
#include "network/NetPort.h"

#include <QByteArray>
#include <QVector>

#include <pugixml.hpp>

#include <memory>
#include <vector>

/// One file as it was read: its bytes, its element tree, and the way from an element to its line.
///
/// Comments, blank text, declaration and document type stay in the tree, and the bytes are kept as
/// they were, so that a file can be written again with only the changed places touched.
///
/// Called by  NetReader, NetDefinitionLibrary and NetEditor.
/// Uses       pugixml, which takes the raw '<' that real files have in attribute values.
/// Tells      its caller what was wrong, by a message.
class NetXmlFile
{
public:
    /// Reads the file. Null when it cannot be used; the message then says why, and at which line.
    static std::shared_ptr<const NetXmlFile> load(const QString& path, NetMessage* error);

    /// The same for bytes that are at hand already.
    static std::shared_ptr<const NetXmlFile> fromBytes(
        const QString& path, const QByteArray& bytes, NetMessage* error);

    const QString& path() const { return m_Path; }
    const QByteArray& bytes() const { return m_Bytes; }
    const pugi::xml_document& xml() const { return m_Xml; }
    /// The materialx element; never null.
    pugi::xml_node root() const { return m_Xml.document_element(); }
    /// Line of the element's tag, from 1.
    int line(pugi::xml_node element) const;
    /// Line of a byte of the file, from 1.
    int lineAt(std::ptrdiff_t offset) const;

    static QString text(const pugi::char_t* utf8) { return QString::fromUtf8(utf8); }
    /// An attribute's text; a null string when the element has none of that name.
    static QString attribute(pugi::xml_node element, const char* name);
    static NetAttributes attributes(pugi::xml_node element);
    /// The port that an input or output element describes, as listed.
    NetPort port(pugi::xml_node element) const;
    /// Of the element's children with that tag; of two of one name only the first, which alone counts.
    QVector<NetPort> ports(pugi::xml_node element, const char* tag) const;

private:
    bool parse(NetMessage* error);

    QString m_Path;
    QByteArray m_Bytes;
    pugi::xml_document m_Xml;
    std::vector<std::ptrdiff_t> m_Newlines;
};
