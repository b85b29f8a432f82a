#pragma once

#include "network/NetDefinitionLibrary.h"
#include "network/NetScope.h"

#include <QSet>

#include <memory>
#include <vector>

/// Makes scopes with their nodes and ports of the elements of a document; connections come after.
///
/// Called by  NetReader; NetEditor, which reads changed elements again.
/// Uses       NetXmlFile, NetDefinitionLibrary.
/// Tells      the reader what it could not resolve, by messages.
class NetScopeBuilder
{
public:
    using Files = std::vector<std::shared_ptr<const NetXmlFile>>;

    NetScopeBuilder(
        const Files& files, const NetDefinitionLibrary& definitions, QVector<NetMessage>* messages);

    /// The document level, then all graphs.
    QVector<NetScope> build();

    /// The box that an element below the root or below a nodegraph stands for, without what lies
    /// inside a graph. The namespace is the one in force around the element.
    NetNode read(
        pugi::xml_node element, NetScope::Kind around, int fileIndex, const QString& nameSpace);
    /// What a backdrop element says. Missing numbers are 0, sizes 1; a negative size is 0.
    static NetBackdrop readBackdrop(const NetXmlFile& file, pugi::xml_node element, int fileIndex);
    /// True when such an element is a box: a node, a nodegraph, an input or an output.
    static bool isBox(pugi::xml_node element);
    /// True for a tag that is part of the format's structure, and so is not a node category.
    static bool isStructural(const pugi::char_t* tag);

private:
    const NetXmlFile& file(int fileIndex) const
    {
        return *m_Files.at(static_cast<std::size_t>(fileIndex));
    }
    void addTopLevel(int fileIndex);
    bool isTaken(pugi::xml_node element, int fileIndex);
    void addElement(
        int scopeIndex, pugi::xml_node element, int fileIndex, const QString& nameSpace);
    void addGraph(int scopeIndex, pugi::xml_node element, int fileIndex, const QString& nameSpace);
    void addImpliedInputs(NetScope* scope, const QStringList& definitionNames);
    int append(int scopeIndex, NetNode node, const QString& nameSpace);
    NetNode nodeFrom(pugi::xml_node element, int fileIndex, NetNode::Kind kind) const;
    NetNode scopePort(
        pugi::xml_node element, NetScope::Kind around, int fileIndex, NetNode::Kind kind) const;
    void resolve(NetNode* node, pugi::xml_node element, const QString& nameSpace);
    QStringList definitionsOf(pugi::xml_node graph) const;
    int levelOf(int scopeIndex) const;
    void reportUnresolved();

    struct Unresolved
    {
        QString category;
        int count = 0;
        int fileIndex = 0;
        int line = 0;
    };

    const Files& m_Files;
    const NetDefinitionLibrary& m_Definitions;
    QVector<NetMessage>* m_Messages;
    QVector<NetScope> m_Scopes;
    QHash<QString, QStringList> m_Implementations; // graph name -> definition names
    QSet<QString> m_TopLevelNames;
    QVector<Unresolved> m_Unresolved; // one per category, in the order of the file
};
