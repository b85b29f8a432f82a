#include "network/NetReader.h"

#include "network/NetConnector.h"
#include "network/NetPlacement.h"
#include "network/NetScopeBuilder.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

using FilePtr = std::shared_ptr<const NetXmlFile>;

QString tr(const char* text)
{
    return QCoreApplication::translate("NetReader", text);
}

/// Follows the includes of a document, depth first.
class IncludeWalk
{
public:
    IncludeWalk(const NetSearchPath& searchPath, QVector<NetMessage>* messages)
        : m_SearchPath(searchPath)
        , m_Messages(messages)
    {
    }

    /// False when a file includes itself, directly or through others.
    bool follow(const FilePtr& file)
    {
        m_Files.push_back(file);
        m_Open.append(identity(file->path()));
        for (const pugi::xml_node element : file->root().children("xi:include")) {
            if (!include(*file, element))
                return false;
        }
        m_Open.removeLast();
        return true;
    }
    std::vector<FilePtr> takeFiles() { return std::move(m_Files); }

private:
    static QString identity(const QString& path) { return QFileInfo(path).canonicalFilePath(); }

    bool include(const NetXmlFile& from, pugi::xml_node element)
    {
        const QString reference = NetXmlFile::attribute(element, "href");
        const QString path = m_SearchPath.resolve(reference, from.path());
        NetMessage message{NetMessage::Severity::Warning, from.path(), from.line(element), {}};
        if (path.isEmpty()) {
            message.text = tr("The included file \"%1\" was not found.").arg(reference);
            m_Messages->append(message);
            return true;
        }
        if (m_Open.contains(identity(path))) {
            message.severity = NetMessage::Severity::Error;
            message.text = tr("The include of \"%1\" leads back to itself.").arg(reference);
            m_Messages->append(message);
            return false;
        }
        if (alreadyRead(path))
            return true;
        NetMessage problem;
        if (const FilePtr file = NetXmlFile::load(path, &problem))
            return follow(file);
        problem.severity = NetMessage::Severity::Warning;
        m_Messages->append(problem);
        message.text = tr("The included file \"%1\" cannot be used.").arg(reference);
        m_Messages->append(message);
        return true;
    }

    bool alreadyRead(const QString& path) const
    {
        return std::any_of(
            m_Files.cbegin(), m_Files.cend(), [wanted = identity(path)](const FilePtr& file) {
                return identity(file->path()) == wanted;
            });
    }

    const NetSearchPath& m_SearchPath;
    QVector<NetMessage>* m_Messages;
    std::vector<FilePtr> m_Files;
    QStringList m_Open; // from the document down to the file being read
};

} // namespace

NetReadResult NetReader::read(const QString& path) const
{
    NetMessage problem;
    const FilePtr file = NetXmlFile::load(path, &problem);
    return file ? read(file, {}) : NetReadResult{nullptr, {problem}};
}

NetReadResult NetReader::read(const QString& path, const QByteArray& bytes) const
{
    NetMessage problem;
    const FilePtr file = NetXmlFile::fromBytes(path, bytes, &problem);
    return file ? read(file, {}) : NetReadResult{nullptr, {problem}};
}

NetReadResult NetReader::read(const FilePtr& file, NetReadResult result) const
{
    IncludeWalk walk(m_SearchPath, &result.messages);
    if (!walk.follow(file))
        return result;

    const auto document = std::make_shared<NetDocument>();
    document->m_Files = walk.takeFiles();
    const auto library = NetDefinitionLibrary::load(m_SearchPath.definitionFolders(file->path()));
    result.messages += library->messages();
    document->m_Definitions = NetDefinitionLibrary(library);
    for (const FilePtr& each : document->m_Files)
        document->m_Definitions.add(*each);
    document->m_Definitions.finish();

    NetScopeBuilder builder(document->m_Files, document->m_Definitions, &result.messages);
    document->m_Scopes = builder.build();
    NetConnector(document->m_Files, &document->m_Scopes, &result.messages).connectAll();
    for (NetScope& scope : document->m_Scopes)
        NetPlacement::rememberUnit(&scope);
    result.document = document;
    return result;
}
