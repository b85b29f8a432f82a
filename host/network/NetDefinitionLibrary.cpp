#include "network/NetDefinitionLibrary.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QSet>
#include <QStringBuilder>

#include <algorithm>

namespace {

constexpr int kMaxDepth = 8;
constexpr int kMaxFiles = 2000;
constexpr int kMaxFolders = 4000;
constexpr qint64 kMaxFileSize = 16LL * 1024 * 1024;
constexpr int kMaxInheritance = 16;

QString qualified(const QString& nameSpace, const QString& name)
{
    return nameSpace.isEmpty() ? name : nameSpace % QLatin1Char(':') % name;
}

bool isTrue(const QString& text)
{
    return text == QLatin1String("true");
}

QVector<NetPort> definedPorts(const NetXmlFile& file, pugi::xml_node element, const char* tag)
{
    QVector<NetPort> ports = file.ports(element, tag);
    for (NetPort& port : ports) {
        port.defaultValue = port.value;
        port.value.clear();
        port.definitionAttributes = port.attributes;
        port.attributes = {};
        port.listed = false;
        port.defined = true;
        port.line = 0;
    }
    return ports;
}

NetDefinition definitionFrom(const NetXmlFile& file, pugi::xml_node element)
{
    NetDefinition definition;
    definition.attributes = NetXmlFile::attributes(element);
    const auto text = [&definition](const char* name) {
        return definition.attributes.value(QLatin1String(name));
    };
    QString nameSpace = text("namespace");
    if (nameSpace.isNull())
        nameSpace = NetXmlFile::attribute(file.root(), "namespace");
    definition.name = qualified(nameSpace, text("name"));
    definition.category = qualified(nameSpace, text("node"));
    definition.nodeGroup = text("nodegroup");
    definition.version = text("version");
    definition.target = text("target");
    definition.inherit = text("inherit");
    definition.defaultVersion = isTrue(text("isdefaultversion"));
    definition.file = file.path();
    definition.line = file.line(element);
    definition.inputs = definedPorts(file, element, "input");
    definition.outputs = definedPorts(file, element, "output");
    return definition;
}

QVector<NetDefinition> definitionsIn(const NetXmlFile& file)
{
    QVector<NetDefinition> definitions;
    for (const pugi::xml_node element : file.root().children("nodedef"))
        definitions.append(definitionFrom(file, element));
    return definitions;
}

struct ParsedFile
{
    QString stamp; // changes when the file changes
    QVector<NetDefinition> definitions;
    QVector<NetMessage> messages;
};

// What is kept between documents: every library file once, and the libraries built of them.
struct Cache
{
    QMutex mutex;
    QHash<QString, ParsedFile> files;
    QHash<QString, NetDefinitionLibrary::Ptr> libraries;
};

Cache& cache()
{
    static Cache s_Cache;
    return s_Cache;
}

QString stampOf(const QString& path)
{
    const QFileInfo info(path);
    return QString::number(info.lastModified().toMSecsSinceEpoch()) % QLatin1Char('/')
        % QString::number(info.size());
}

const ParsedFile& parsed(const QString& path, const QString& stamp)
{
    ParsedFile& entry = cache().files[path];
    if (entry.stamp == stamp)
        return entry;
    entry = {stamp, {}, {}};
    NetMessage problem;
    if (const auto file = NetXmlFile::load(path, &problem)) {
        entry.definitions = definitionsIn(*file);
    } else {
        problem.severity = NetMessage::Severity::Info;
        entry.messages.append(problem);
    }
    return entry;
}

struct FolderWalk
{
    QStringList files;
    int folders = 0;
};

// Folders behind links are left out: they may lead in circles.
void collect(const QDir& folder, int depth, FolderWalk* walk)
{
    if (depth > kMaxDepth || ++walk->folders > kMaxFolders)
        return;
    const QFileInfoList entries = folder.entryInfoList(
        {QStringLiteral("*.mtlx")}, QDir::Files | QDir::AllDirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (walk->files.size() >= kMaxFiles)
            return;
        if (entry.isFile() && entry.size() <= kMaxFileSize)
            walk->files.append(QDir::cleanPath(entry.absoluteFilePath()));
        else if (entry.isDir() && !entry.isSymLink())
            collect(QDir(entry.absoluteFilePath()), depth + 1, walk);
    }
}

bool targetFits(const QString& offered, const QString& wanted)
{
    if (offered.isEmpty() || wanted.isEmpty())
        return true;
    const QStringList targets = offered.split(QLatin1Char(','), Qt::SkipEmptyParts);
    return std::any_of(targets.cbegin(), targets.cend(),
        [&wanted](const QString& target) { return target.trimmed() == wanted; });
}

bool versionFits(const NetDefinition& definition, const QString& wanted)
{
    return definition.version == wanted || (wanted.isEmpty() && definition.defaultVersion);
}

bool inputsFit(const NetDefinition& definition, const QVector<NetPort>* listed)
{
    if (!listed)
        return true;
    return std::all_of(listed->cbegin(), listed->cend(), [&definition](const NetPort& port) {
        const int i = NetDefinition::indexOf(definition.inputs, port.name);
        return i >= 0 && definition.inputs.at(i).type == port.type;
    });
}

void appendMissing(QVector<NetPort>* ports, const QVector<NetPort>& inherited)
{
    for (const NetPort& port : inherited) {
        if (NetDefinition::indexOf(*ports, port.name) < 0)
            ports->append(port);
    }
}

} // namespace

NetDefinitionLibrary::Ptr NetDefinitionLibrary::load(const QStringList& folders)
{
    QStringList files;
    for (const QString& folder : folders)
        files += filesIn(folder);
    files.removeDuplicates();

    Cache& shared = cache();
    const QMutexLocker locker(&shared.mutex);
    QString identity;
    QStringList stamps;
    for (const QString& path : qAsConst(files)) {
        stamps.append(stampOf(path));
        identity += path % QLatin1Char('|') % stamps.constLast() % QLatin1Char('\n');
    }
    const auto known = shared.libraries.constFind(identity);
    if (known != shared.libraries.cend())
        return *known;

    const auto library = QSharedPointer<NetDefinitionLibrary>::create();
    for (int i = 0; i < files.size(); ++i) {
        const ParsedFile& file = parsed(files.at(i), stamps.at(i));
        for (const NetDefinition& definition : file.definitions)
            library->insert(definition);
        library->m_Messages += file.messages;
    }
    library->finish();
    if (shared.libraries.size() >= 8) // a session meets one or two sets of folders
        shared.libraries.clear();
    return *shared.libraries.insert(identity, library);
}

QStringList NetDefinitionLibrary::filesIn(const QString& folder)
{
    FolderWalk walk;
    const QDir own(folder);
    const QDir libraries(own.filePath(QStringLiteral("libraries")));
    if (libraries.exists())
        collect(libraries, 0, &walk);
    else if (own.exists())
        collect(own, 0, &walk);
    return walk.files;
}

void NetDefinitionLibrary::add(const NetXmlFile& file)
{
    const QVector<NetDefinition> definitions = definitionsIn(file);
    for (const NetDefinition& definition : definitions)
        insert(definition);
}

void NetDefinitionLibrary::insert(const NetDefinition& definition)
{
    if (m_ByName.contains(definition.name))
        return;
    m_ByName.insert(definition.name, m_All.size());
    m_ByCategory[definition.category].append(m_All.size());
    m_All.append(QSharedPointer<NetDefinition>::create(definition));
}

void NetDefinitionLibrary::finish()
{
    QVector<QPair<int, NetDefinition>> complete;
    for (int i = 0; i < m_All.size(); ++i) {
        if (m_All.at(i)->inherit.isEmpty())
            continue;
        complete.append({i, *m_All.at(i)});
        inheritInto(&complete.last().second);
    }
    // Only now, so that each walk above saw the definitions as they were written.
    for (const auto& [index, definition] : qAsConst(complete))
        *m_All[index] = definition;
}

void NetDefinitionLibrary::inheritInto(NetDefinition* definition) const
{
    QSet<QString> seen{definition->name};
    QString next = definition->inherit;
    for (int depth = 0; depth < kMaxInheritance && !next.isEmpty(); ++depth) {
        const NetDefinitionPtr base = byName(next);
        if (!base || seen.contains(base->name))
            return;
        seen.insert(base->name);
        appendMissing(&definition->inputs, base->inputs);
        appendMissing(&definition->outputs, base->outputs);
        if (definition->nodeGroup.isEmpty())
            definition->nodeGroup = base->nodeGroup;
        next = base->inherit;
    }
}

NetDefinitionPtr NetDefinitionLibrary::byName(const QString& name) const
{
    const auto found = m_ByName.constFind(name);
    if (found != m_ByName.cend())
        return m_All.at(*found);
    return m_Base ? m_Base->byName(name) : NetDefinitionPtr();
}

QVector<NetDefinitionPtr> NetDefinitionLibrary::candidates(const QString& category) const
{
    QVector<NetDefinitionPtr> found
        = m_Base ? m_Base->candidates(category) : QVector<NetDefinitionPtr>();
    const QVector<int> own = m_ByCategory.value(category);
    for (const int index : own)
        found.append(m_All.at(index));
    return found;
}

QStringList NetDefinitionLibrary::categories() const
{
    QStringList names = m_ByCategory.keys();
    if (m_Base)
        names += m_Base->categories();
    names.removeDuplicates();
    names.sort();
    return names;
}

NetDefinitionPtr NetDefinitionLibrary::find(const NetDefinitionQuery& query) const
{
    const bool named = !query.nodeDef.isEmpty();
    const QString& wanted = named ? query.nodeDef : query.category;
    for (const QString& name : {qualified(query.nameSpace, wanted), wanted}) {
        if (NetDefinitionPtr found = named ? byName(name) : firstFit(name, query))
            return found;
    }
    return {};
}

NetDefinitionPtr NetDefinitionLibrary::firstFit(
    const QString& category, const NetDefinitionQuery& query) const
{
    const QVector<NetDefinitionPtr> offered = candidates(category);
    for (const NetDefinitionPtr& definition : offered) {
        if (targetFits(definition->target, query.target) && versionFits(*definition, query.version)
            && definition->type() == query.type && inputsFit(*definition, query.inputs))
            return definition;
    }
    return {};
}
