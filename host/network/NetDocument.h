#pragma once

#include "network/NetDefinitionLibrary.h"
#include "network/NetMessage.h"
#include "network/NetScope.h"
#include "network/NetXmlFile.h"

/// An open document: its scopes, its definitions, and the file that it came from.
///
/// Scopes stand in one list: the document level first, then every nodegraph in the order of the
/// file, a nested one behind the one around it, and what includes brought in last. All of it is
/// values; a reader makes it whole.
///
/// Called by  the main window and the scene controller, which only read it; NetEditor.
/// Uses       NetScope, NetDefinitionLibrary, NetXmlFile.
/// Tells      nobody.
class NetDocument
{
public:
    /// Absolute path of the document.
    const QString& filePath() const { return m_Files.front()->path(); }
    /// The document's own file with all edits; another object after each of them.
    const NetXmlFile& file() const { return *m_Files.front(); }
    /// The document's own file, then every included one in the order in which it was met.
    const std::vector<std::shared_ptr<const NetXmlFile>>& files() const { return m_Files; }
    /// Text of the root's attribute "version"; empty for none.
    QString version() const { return documentScope().attributes.value(QLatin1String("version")); }

    /// Never empty; the first is the document level.
    const QVector<NetScope>& scopes() const { return m_Scopes; }
    const NetScope& documentScope() const { return m_Scopes.constFirst(); }
    /// Position of the scope with that path ("NG_wood", "outer/inner"), else of the first graph
    /// with that name at any level; 0 for an empty text, -1 when there is none.
    int indexOfScope(const QString& pathOrName) const;
    /// Positions of the scopes from the document level down to the given one, for a breadcrumb bar;
    /// empty for a position that is out of range.
    QVector<int> scopeTrail(int scope) const;
    /// The scope worth showing first: the document level, or the only graph when nothing else is
    /// there.
    int firstScope() const;

    /// The document's own definitions, standing on those of the folders that were searched.
    const NetDefinitionLibrary& definitions() const { return m_Definitions; }

private:
    friend class NetReader;
    friend class NetEditor;

    std::vector<std::shared_ptr<const NetXmlFile>> m_Files;
    QVector<NetScope> m_Scopes;
    NetDefinitionLibrary m_Definitions;
};
