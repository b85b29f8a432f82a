#pragma once

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgPortClusters.h"

#include <QVector>

/// Internal. The ports of one side of an extended node: in the order in which they stand, by name, and
/// the clusters. Both sides follow the same rules; what differs is asked of m_Side.
///
/// It stands the shown ports one below the other itself. Qt's layouts do the same for every style and
/// stretch, and pay for it with three layouts, two more widgets and several events for each node: a
/// fifth of the time to build one and 7 KB.
///
/// Called by  OrvNgExtendedNode, which holds one for its inputs and one for its outputs.
/// Uses       OrvNgPortClusters, OrvNgPortVisibility.
/// Tells      the edges of ports that it shows or hides.
class OrvNgPortList
{
public:
    enum class Side { Inputs, Outputs };

    explicit OrvNgPortList(Side side)
        : m_Side(side)
    {
    }
    Q_DISABLE_COPY(OrvNgPortList)

    /// The least width of the shown ports, and their height with the spacing between them.
    QSizeF room() const;
    /// Stands the shown ports one below the other, each as wide as width and the port allow. top and width
    /// in the coordinates of the ports' parent.
    void place(double top, double width);
    /// Deletes all ports. Their node is about to go.
    void deletePorts();

    const OrvNgPortClusters& clusters() const { return m_Clusters; }
    void setClusters(const OrvNgPortClusters::List& clusters) { m_Clusters.assign(clusters); }

    bool contains(const QString& name) const { return m_Ports.contains(name); }
    /// Null for a name without a port.
    OrvNgPort* port(const QString& name) const { return m_Ports.value(name); }
    bool isShown(const QString& name) const;
    /// The port at which the edges of a point attach: its own, or in the grouped mode the shown
    /// port of its cluster. Null for a name without a port.
    OrvNgPort* attachingPort(const QString& name, OrvNgExtendedNode::PortListMode mode) const;
    /// The topmost shown port whose square contains a point; null when there is none.
    OrvNgPort* shownPortUnderPos(const QPointF& scenePos) const;
    /// The same, else the first shown port whose row, text included, lies under the point.
    OrvNgPort* shownPortAround(const QPointF& scenePos) const;
    /// The ports that stand for a single point each, from top to bottom.
    QStringList ordinaryNames() const;

    /// Takes a port in at a place, -1 for the end. Ports are made with OrvNgPort::Birth::HiddenInNode.
    void insert(int index, OrvNgPort* port);
    /// Inserts a port at a place as that of a whole cluster, and shows it.
    void insertCluster(int index, OrvNgPort* port);
    /// Deletes a port, and with a cluster's port the cluster. The name must have one.
    void remove(const QString& name);
    /// Files the port of a point under the point's new name; nothing happens without a port.
    void rename(const QString& from, const QString& to, const QString& text);
    /// Cluster ports first, then the named ports, then the rest as before.
    void reorder(const QStringList& names);

    /// Shows the ports of a mode; true when some port appeared or went. edges are the node's input
    /// edges or the edges that leave it.
    bool show(OrvNgExtendedNode::PortListMode mode, const QList<OrvNgEdge*>& edges);
    /// How many ports the last show() showed because they are connected; 0 in every other mode.
    int connectedShown() const { return m_ConnectedShown; }

private:
    using EdgesByPoint = QMultiHash<QString, OrvNgEdge*>;
    using EdgeRange = QPair<EdgesByPoint::const_iterator, EdgesByPoint::const_iterator>;

    EdgesByPoint edgesByPoint(const QList<OrvNgEdge*>& edges) const;
    bool belongsInto(
        OrvNgExtendedNode::PortListMode mode, const OrvNgPort& port, const EdgeRange& edges) const;

    const Side m_Side;
    QVector<OrvNgPort*> m_Order; ///< from top to bottom, hidden ones included
    QHash<QString, OrvNgPort*> m_Ports; ///< by connection point or cluster name
    OrvNgPortClusters m_Clusters;
    int m_ConnectedShown = 0;
};
