#pragma once

#include "network/NetDefinition.h"
#include "network/NetXmlFile.h"

#include <QHash>
#include <QStringList>

/// What an instance says about itself when it looks for its definition.
struct NetDefinitionQuery
{
    QString nodeDef; ///< name of the wanted definition; empty to look by category
    QString category;
    QString nameSpace; ///< in force where the instance stands; empty for none
    QString type;
    QString version; ///< empty: the default version
    QString target; ///< empty fits every target
    const QVector<NetPort>* inputs = nullptr; ///< the listed ones; null for none
};

/// A set of node definitions with the rule that finds an instance's own.
///
/// Files are parsed once per process for as long as they do not change. A library may stand on a
/// base: a document's own definitions stand on those of the folders it searches.
///
/// Called by  NetReader; later the node search, for the list of categories.
/// Uses       NetXmlFile.
/// Tells      the reader which library files are unreadable, by messages.
class NetDefinitionLibrary
{
public:
    using Ptr = QSharedPointer<const NetDefinitionLibrary>;

    /// The definitions in all documents below the folders, each folder searched as filesIn() says.
    /// Two calls with the same files give the same object.
    static Ptr load(const QStringList& folders);
    /// The documents that a search folder contributes, sorted: everything below its folder
    /// "libraries", or everything below itself when it has none. Bounded in depth, number and size
    /// of files.
    static QStringList filesIn(const QString& folder);

    NetDefinitionLibrary() = default;
    explicit NetDefinitionLibrary(Ptr base)
        : m_Base(std::move(base))
    {
    }

    /// Adds the definitions directly below the root of a document. A name that is already there
    /// stays.
    void add(const NetXmlFile& file);
    /// Fills in what definitions inherit. Call once, after the last add() and before the first
    /// look-up.
    void finish();

    /// The definition that an instance gets, or null. Its nodedef decides; without one, candidates
    /// of its category, first with its namespace, then plain, the base's before the own ones: the
    /// first whose version, target and output type fit and which has every listed input with the
    /// same type.
    NetDefinitionPtr find(const NetDefinitionQuery& query) const;
    /// The definition of that name, own before the base's; null when there is none.
    NetDefinitionPtr byName(const QString& name) const;
    /// All definitions of a category, the base's first.
    QVector<NetDefinitionPtr> candidates(const QString& category) const;
    /// Every category once, sorted; the base's included.
    QStringList categories() const;
    /// Unreadable files met by load(); infos, as no document depends on them alone.
    const QVector<NetMessage>& messages() const { return m_Messages; }

private:
    void insert(const NetDefinition& definition);
    void inheritInto(NetDefinition* definition) const;
    NetDefinitionPtr firstFit(const QString& category, const NetDefinitionQuery& query) const;

    Ptr m_Base;
    QVector<QSharedPointer<NetDefinition>> m_All;
    QHash<QString, int> m_ByName;
    QHash<QString, QVector<int>> m_ByCategory;
    QVector<NetMessage> m_Messages;
};
