#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

/// Internal. The clusters of one side of a node: named groups of ordinary ports, each shown as a
/// single port that carries the cluster's name.
///
/// A plain value. Member names need not exist as ports. A member listed in several clusters belongs
/// to the last of them.
///
/// Called by  OrvNgExtendedNode, which holds one for its inputs and one for its outputs.
/// Uses       nothing.
/// Tells      nobody.
class OrvNgPortClusters
{
public:
    /// Cluster names with their member names, in the order in which the node shows them.
    using List = QList<QPair<QString, QStringList>>;

    /// Replaces all clusters. A name that occurs twice becomes one cluster with the members of
    /// both.
    void assign(const List& clusters);
    void removeCluster(const QString& cluster);
    /// A connection point got another name: follows it, as a member and as a cluster.
    void rename(const QString& from, const QString& to);

    const List& list() const { return m_List; }
    bool isEmpty() const { return m_List.isEmpty(); }
    bool hasCluster(const QString& cluster) const { return m_Members.contains(cluster); }
    bool hasMember(const QString& member) const { return m_ClusterOf.contains(member); }
    /// Empty for a name that is no member.
    QString clusterOf(const QString& member) const { return m_ClusterOf.value(member); }
    /// Empty for an unknown cluster.
    QStringList members(const QString& cluster) const { return m_Members.value(cluster); }
    QStringList names() const { return m_Members.keys(); }

private:
    List m_List;
    QHash<QString, QStringList> m_Members;
    QHash<QString, QString> m_ClusterOf;
};
