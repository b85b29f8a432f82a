#include "network/NetXmlFile.h"

#include "network/NetDefinition.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr qint64 kMaxFileSize = 256LL * 1024 * 1024;

QString tr(const char* text)
{
    return QCoreApplication::translate("NetXmlFile", text);
}

// A reason why the path cannot be read as a file at all; empty when there is none.
QString refusal(const QFileInfo& info)
{
    if (!info.exists())
        return tr("The file does not exist.");
    if (info.isDir())
        return tr("This is a folder, not a file.");
    if (!info.isFile())
        return tr("This is not a regular file.");
    if (info.size() > kMaxFileSize)
        return tr("The file is larger than 256 MB.");
    return {};
}

bool isBlank(const QByteArray& bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(),
        [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

bool isUtf16(const QByteArray& bytes)
{
    return bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE");
}

} // namespace

std::shared_ptr<const NetXmlFile> NetXmlFile::load(const QString& path, NetMessage* error)
{
    const QFileInfo info(path);
    *error
        = {NetMessage::Severity::Error, QDir::cleanPath(info.absoluteFilePath()), 0, refusal(info)};
    if (!error->text.isEmpty())
        return nullptr;

    QFile device(path);
    if (!device.open(QIODevice::ReadOnly)) {
        error->text = tr("The file cannot be read: %1.").arg(device.errorString());
        return nullptr;
    }
    return fromBytes(path, device.readAll(), error);
}

std::shared_ptr<const NetXmlFile> NetXmlFile::fromBytes(
    const QString& path, const QByteArray& bytes, NetMessage* error)
{
    auto file = std::make_shared<NetXmlFile>();
    file->m_Path = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    file->m_Bytes = bytes;
    *error = {NetMessage::Severity::Error, file->m_Path, 0, {}};
    if (!file->parse(error))
        return nullptr;
    return file;
}

bool NetXmlFile::parse(NetMessage* error)
{
    for (int i = 0; i < m_Bytes.size(); ++i) {
        if (m_Bytes.at(i) == '\n')
            m_Newlines.push_back(i);
    }
    if (isBlank(m_Bytes)) {
        error->text = tr("The file is empty.");
        return false;
    }
    if (isUtf16(m_Bytes)) {
        error->text = tr("The file is UTF-16 text; material documents are UTF-8.");
        return false;
    }
    // The encoding is always UTF-8, so that offsets in the tree are offsets in the bytes.
    const unsigned flags = pugi::parse_default | pugi::parse_comments | pugi::parse_declaration
        | pugi::parse_doctype | pugi::parse_pi | pugi::parse_ws_pcdata;
    const pugi::xml_parse_result result = m_Xml.load_buffer(
        m_Bytes.constData(), static_cast<std::size_t>(m_Bytes.size()), flags, pugi::encoding_utf8);
    if (!result || !root()) {
        error->line = lineAt(result.offset);
        error->text = tr("The file is not readable as XML: %1.")
                          .arg(QString::fromLatin1(result.description()).toLower());
        return false;
    }
    if (qstrcmp(root().name(), "materialx") != 0) {
        error->line = line(root());
        error->text = tr("The root element is <%1>; a material document has <materialx>.")
                          .arg(text(root().name()));
        return false;
    }
    return true;
}

int NetXmlFile::line(pugi::xml_node element) const
{
    return lineAt(element.offset_debug());
}

int NetXmlFile::lineAt(std::ptrdiff_t offset) const
{
    // The parser reports what is missing behind the last byte.
    const std::ptrdiff_t inside = std::min<std::ptrdiff_t>(offset, m_Bytes.size() - 1);
    const auto after = std::lower_bound(m_Newlines.cbegin(), m_Newlines.cend(), inside);
    return static_cast<int>(after - m_Newlines.cbegin()) + 1;
}

QString NetXmlFile::attribute(pugi::xml_node element, const char* name)
{
    const pugi::xml_attribute found = element.attribute(name);
    return found ? text(found.value()) : QString();
}

NetAttributes NetXmlFile::attributes(pugi::xml_node element)
{
    NetAttributes result;
    for (const pugi::xml_attribute attribute : element.attributes())
        result.append(text(attribute.name()), text(attribute.value()));
    return result;
}

NetPort NetXmlFile::port(pugi::xml_node element) const
{
    NetPort port;
    port.attributes = attributes(element);
    port.name = port.attributes.value(QLatin1String("name"));
    port.type = port.attributes.value(QLatin1String("type"));
    port.value = port.attributes.value(QLatin1String("value"));
    port.listed = true;
    port.line = line(element);
    return port;
}

QVector<NetPort> NetXmlFile::ports(pugi::xml_node element, const char* tag) const
{
    QVector<NetPort> ports;
    for (const pugi::xml_node child : element.children(tag)) {
        NetPort own = port(child);
        if (NetDefinition::indexOf(ports, own.name) < 0)
            ports.append(std::move(own));
    }
    return ports;
}
