#pragma once

#include "network/NetNode.h"

#include <QHash>
#include <QRectF>

/// How an input or output names its source.
enum class NetBinding { NodeName, NodeGraph, InterfaceName, Output };

/// One edge inside a scope. Ends are positions in NetScope::nodes and in the ports of those nodes.
struct NetConnection
{
    int sourceNode = -1;
    int sourcePort = -1; ///< in outputs of the source
    int destNode = -1;
    int destPort = -1; ///< in inputs of the destination
    NetBinding binding = NetBinding::NodeName;
    int line = 0; ///< of the element that names the source
};

/// An input that names a source which cannot be drawn in the scope.
struct NetOpenEnd
{
    enum class Reason {
        Missing, ///< nothing of that name exists (a warning)
        Tolerated, ///< an output that names a graph as if it were a node (an info)
        Outside ///< the source is a graph or output of the document, around the scope
    };
    int destNode = -1;
    int destPort = -1;
    NetBinding binding = NetBinding::NodeName;
    Reason reason = Reason::Missing;
    QString wantedName;
    QString wantedOutput; ///< null when the element names none
    int line = 0;
};

/// A titled rectangle behind nodes, in the unit of the file; see NetPlacement.
struct NetBackdrop
{
    QString name;
    QString title; ///< uiname, else name
    QString doc; ///< what it says; of a note, its text
    QString color; ///< uicolor as written; empty for none
    bool isNote = false; ///< says of itself that it contains nothing: an explicit, empty "contains"
    bool removed = false; ///< taken out of the document; its place in the list stays
    QRectF rect;
    NetAttributes attributes;
    int fileIndex = 0;
    int line = 0;
};

/// What one view shows: the document level, or the inside of one nodegraph.
///
/// Called by  the scene controller, which builds one scene of it; NetLayout's callers.
/// Uses       NetNode.
/// Tells      nobody.
class NetScope
{
public:
    enum class Kind {
        Document,
        CompoundGraph, ///< has inputs of its own
        FunctionalGraph ///< implements a definition, whose inputs are its own
    };

    Kind kind = Kind::Document;
    QString name; ///< of the graph; empty for the document level
    QString
        path; ///< names from the document level down, divided by '/'; empty for the document level
    int index = 0; ///< own position in NetDocument::scopes()
    int parent = -1; ///< position of the scope around this one; -1 for the document level
    NetDefinitionPtr definition; ///< functional graphs: what it implements; null when not found
    NetAttributes attributes; ///< of the nodegraph, or of the root element
    QString nameSpace; ///< in force for the elements inside; empty for none
    QVector<NetNode> nodes; ///< as read, in the order of the file, implied inputs first; edits mark
        ///< nodes as removed and add new ones at the end
    QVector<NetConnection> connections; ///< by position of the destination
    QVector<NetOpenEnd> openEnds; ///< by position of the destination
    QVector<NetBackdrop> backdrops;
    bool isCut = false; ///< nested too deeply: what is inside was not read, and nothing can be added
    bool inPixels = false; ///< unit of all file positions inside, decided once, when it was read
    int fileIndex = 0;
    int line = 0;

    /// Position of the first node of that kind and name; -1 when there is none.
    int indexOf(NetNode::Kind nodeKind, const QString& nodeName) const;
    /// True when another node is the first of this one's kind and name, or of its other name.
    bool isHidden(int nodeIndex) const;
    /// Position of the node with that key; -1 when there is none. Keys stay as they are for as long
    /// as the document is open, so the second node of a name keeps its number when the first one is
    /// removed.
    int indexOfKey(const QString& key) const;
    /// Adds a node, gives it its key and returns its position.
    int append(NetNode node);
    /// Makes the node also known by another name, unless the name is taken (for namespaces).
    void addAlias(int nodeIndex, const QString& alias);
    /// Marks nodes as removed, or as there again. A removed one is found by no name and no key.
    void setRemoved(const QVector<int>& nodeIndices, bool removed);
    /// Position of the connection that ends there; -1 when there is none.
    int connectionTo(int destNode, int destPort) const;
    /// Position of the nodegraph's box whose inside is that scope; -1 when there is none.
    int boxOf(int innerScope) const;

private:
    void rememberName(int nodeIndex, const QString& nodeName);

    QHash<QPair<int, QString>, int> m_First;
    QHash<QPair<int, QString>, int> m_Occurrences;
    QHash<QString, int> m_Keys;
    QHash<int, QString> m_Aliases;
};
