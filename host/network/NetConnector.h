#pragma once

#include "network/NetMessage.h"
#include "network/NetScope.h"
#include "network/NetXmlFile.h"

#include <memory>
#include <vector>

/// Finds the source of every connected input, once all nodes are there: a node may stand before its
/// source.
///
/// Called by  NetReader, NetEditor.
/// Uses       NetScope.
/// Tells      the reader what leads nowhere, by messages.
class NetConnector
{
public:
    using Files = std::vector<std::shared_ptr<const NetXmlFile>>;

    NetConnector(const Files& files, QVector<NetScope>* scopes, QVector<NetMessage>* messages);

    void connectAll();
    /// Finds the sources of one node's inputs again, after an edit.
    void reconnect(NetScope* scope, int nodeIndex);
    /// Drops the connections and open ends of one node's inputs.
    static void disconnect(NetScope* scope, int nodeIndex);
    /// Ports that only a use tells of have the type of the first input in the file that uses them. Gives them
    /// that type again, after an edit; those that nothing uses any more keep the type they had. The order is
    /// that of the boxes with an element in the document's own file; all others come behind them.
    static void retypeByUse(NetScope* scope, const QVector<int>& order);

private:
    struct Wanted
    {
        NetBinding binding = NetBinding::NodeName;
        QString name;
        QString output; // null when not given
    };
    struct Source
    {
        int node = -1;
        int port = -1;
    };

    static bool wantedBy(const NetPort& port, Wanted* wanted);
    void connectInput(NetScope* scope, int nodeIndex, int portIndex);
    Source find(NetScope* scope, const Wanted& wanted, const NetPort& dest);
    Source findInterface(NetScope* scope, const Wanted& wanted, const NetPort& dest);
    static Source outputOf(
        NetScope* scope, int nodeIndex, const Wanted& wanted, const NetPort& dest);
    NetOpenEnd::Reason reasonFor(
        const NetScope& scope, const NetNode& dest, const Wanted& wanted) const;
    void report(const NetScope& scope, const NetOpenEnd& end);
    static void completeOutputs(NetScope* scope);

    const Files& m_Files;
    QVector<NetScope>* m_Scopes;
    QVector<NetMessage>* m_Messages;
};
