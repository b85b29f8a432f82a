#pragma once

#include "network/NetDocument.h"
#include "network/NetSearchPath.h"

/// What came of opening a file.
struct NetReadResult
{
    /// Null when an error is among the messages; otherwise complete.
    std::shared_ptr<NetDocument> document;
    /// In the order of the work: files, then definitions, then connections.
    QVector<NetMessage> messages;
};

/// Opens documents: reads the file and its includes, finds definitions, builds the scopes.
///
/// Errors (no document): the file is missing, empty, a folder, unreadable, not XML or has another
/// root; an include leads back to a file that is being read. Warnings (the rest opens): an included
/// file is missing or unusable; a connection names nothing that exists. Infos: a category or a
/// functional graph without a definition; a document output that names a graph as a node; an
/// included element whose name is taken.
///
/// Called by  the main window and the command line.
/// Uses       NetXmlFile, NetDefinitionLibrary, NetScopeBuilder, NetConnector.
/// Tells      its caller, by messages with file and line.
class NetReader
{
public:
    explicit NetReader(NetSearchPath searchPath = NetSearchPath::withEnvironment())
        : m_SearchPath(std::move(searchPath))
    {
    }

    NetReadResult read(const QString& path) const;
    /// The same, as if the file at that path held those bytes; nothing need be there.
    NetReadResult read(const QString& path, const QByteArray& bytes) const;

private:
    NetReadResult read(const std::shared_ptr<const NetXmlFile>& file, NetReadResult result) const;

    NetSearchPath m_SearchPath;
};
