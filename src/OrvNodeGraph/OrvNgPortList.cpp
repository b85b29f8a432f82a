#include "OrvNodeGraph/OrvNgPortList.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgPortVisibility.h"

#include <algorithm>
#include <utility>

namespace {

constexpr double kPortSpacing = 5.0;
const QLatin1String kHiddenTag("_hidden");

} // namespace

QSizeF OrvNgPortList::room() const
{
    double width = 0.0;
    double height = 0.0;
    double gap = 0.0;
    for (const OrvNgPort* port : m_Order) {
        if (!port->isShown())
            continue;
        const QSizeF room = port->room();
        width = qMax(width, room.width());
        height += gap + room.height();
        gap = kPortSpacing;
    }
    return QSizeF(width, height);
}

void OrvNgPortList::place(double top, double width)
{
    for (OrvNgPort* port : qAsConst(m_Order)) {
        if (!port->isShown())
            continue;
        const double height = port->room().height();
        port->setGeometry(QRectF(0.0, top, width, height));
        top += height + kPortSpacing;
    }
}

void OrvNgPortList::deletePorts()
{
    const QVector<OrvNgPort*> ports = std::exchange(m_Order, {});
    m_Ports.clear();
    qDeleteAll(ports);
}

bool OrvNgPortList::isShown(const QString& name) const
{
    const OrvNgPort* own = port(name);
    return own && own->isShown();
}

OrvNgPort* OrvNgPortList::attachingPort(
    const QString& name, OrvNgExtendedNode::PortListMode mode) const
{
    OrvNgPort* own = port(name);
    if (own && mode == OrvNgExtendedNode::PORT_LIST_GROUPED && m_Clusters.hasMember(name)) {
        const QString cluster = m_Clusters.clusterOf(name);
        return isShown(cluster) ? port(cluster) : own;
    }
    return own;
}

OrvNgPort* OrvNgPortList::shownPortUnderPos(const QPointF& scenePos) const
{
    for (OrvNgPort* port : m_Order) {
        if (port->isShown() && port->portRectMappedToScene().contains(scenePos))
            return port;
    }
    return nullptr;
}

OrvNgPort* OrvNgPortList::shownPortAround(const QPointF& scenePos) const
{
    if (OrvNgPort* port = shownPortUnderPos(scenePos))
        return port;
    for (OrvNgPort* port : m_Order) {
        if (port->isShown() && port->sceneBoundingRect().contains(scenePos))
            return port;
    }
    return nullptr;
}

QStringList OrvNgPortList::ordinaryNames() const
{
    QStringList names;
    for (const OrvNgPort* port : m_Order) {
        if (!port->isClustered())
            names.append(port->originalPortName());
    }
    return names;
}

void OrvNgPortList::insert(int index, OrvNgPort* port)
{
    m_Order.insert(index < 0 ? m_Order.size() : index, port);
    m_Ports.insert(port->originalPortName(), port);
}

void OrvNgPortList::insertCluster(int index, OrvNgPort* port)
{
    port->setClustered(true);
    insert(index, port);
    port->setVisible(true);
}

void OrvNgPortList::remove(const QString& name)
{
    OrvNgPort* port = m_Ports.take(name);
    if (port->isClustered())
        m_Clusters.removeCluster(name);
    m_Order.removeOne(port);
    delete port;
}

void OrvNgPortList::rename(const QString& from, const QString& to, const QString& text)
{
    OrvNgPort* port = m_Ports.take(from);
    if (!port)
        return;
    m_Ports.insert(to, port);
    m_Clusters.rename(from, to);
    port->setOriginalPortName(to);
    port->setText(text);
}

void OrvNgPortList::reorder(const QStringList& names)
{
    const auto moveToTop = [this](const QString& name) {
        if (OrvNgPort* moved = port(name)) {
            m_Order.removeOne(moved);
            m_Order.prepend(moved);
        }
    };
    std::for_each(names.crbegin(), names.crend(), moveToTop);
    const OrvNgPortClusters::List& clusters = m_Clusters.list();
    std::for_each(clusters.crbegin(), clusters.crend(),
        [&moveToTop](const auto& cluster) { moveToTop(cluster.first); });
}

/// The edges that count as a port's own: the edge of each input, which is the first with its name,
/// or the edges that lead from each output to a node and are not hidden.
OrvNgPortList::EdgesByPoint OrvNgPortList::edgesByPoint(const QList<OrvNgEdge*>& edges) const
{
    EdgesByPoint result;
    for (OrvNgEdge* edge : edges) {
        if (m_Side == Side::Outputs && edge->destNode() && !edge->hasTag(kHiddenTag))
            result.insert(edge->sourceOutputPoint(), edge);
        else if (m_Side == Side::Inputs && !result.contains(edge->text()))
            result.insert(edge->text(), edge);
    }
    return result;
}

bool OrvNgPortList::belongsInto(
    OrvNgExtendedNode::PortListMode mode, const OrvNgPort& port, const EdgeRange& edges) const
{
    const OrvNgEdge* edge = edges.first == edges.second ? nullptr : edges.first.value();
    const bool isInput = m_Side == Side::Inputs;
    if (isInput && (!edge || edge->hasTag(kHiddenTag)))
        return false;
    OrvNgPortVisibility::Port facts;
    facts.m_IsCluster = port.isClustered();
    facts.m_IsClusterMember = m_Clusters.hasMember(port.originalPortName());
    facts.m_IsConnected = edge && (!isInput || edge->sourceNode());
    return OrvNgPortVisibility::isShown(mode, facts);
}

bool OrvNgPortList::show(OrvNgExtendedNode::PortListMode mode, const QList<OrvNgEdge*>& nodeEdges)
{
    const EdgesByPoint edgesOfPorts = edgesByPoint(nodeEdges);
    bool anyChanged = false;
    m_ConnectedShown = 0;
    for (OrvNgPort* port : qAsConst(m_Order)) {
        const EdgeRange edges = edgesOfPorts.equal_range(port->originalPortName());
        const bool belongs = belongsInto(mode, *port, edges);
        if (belongs && mode == OrvNgExtendedNode::PORT_LIST_ONLY_CONNECTED)
            ++m_ConnectedShown;

        const bool changes = port->isShown() != belongs;
        if (changes)
            port->setVisible(belongs);
        if (changes || port->isClustered())
            std::for_each(
                edges.first, edges.second, [](OrvNgEdge* edge) { edge->setVisibilityForItems(); });
        anyChanged = anyChanged || changes;
    }
    return anyChanged;
}
