#include "OrvNodeGraph/OrvNgPortList.h"

#include "OrvNodeGraph/OrvNgColumnLayout.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgPortVisibility.h"

#include <algorithm>

namespace {

constexpr double kPortSpacing = 5.0;
const QLatin1String kHiddenTag("_hidden");

} // namespace

OrvNgPortList::OrvNgPortList(
    Side side, OrvGraphicsLinearLayout& mainLayout, double topMargin, double bottomMargin)
    : m_Side(side)
    , m_Layout(new OrvNgColumnLayout(kPortSpacing))
{
    m_Layout->setContentsMargins(0.0, topMargin, 0.0, bottomMargin);
    mainLayout.addItem(m_Layout);
}

/// Null for an item that a host put into the layout and that is no port.
OrvNgPort* OrvNgPortList::portAt(int layoutIndex) const
{
    QGraphicsLayoutItem* entry = m_Layout->itemAt(layoutIndex);
    QGraphicsItem* item = entry ? entry->graphicsItem() : nullptr;
    return item ? qobject_cast<OrvNgPort*>(item->toGraphicsObject()) : nullptr;
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
    for (int i = 0; i < m_Layout->count(); ++i) {
        OrvNgPort* candidate = portAt(i);
        if (candidate && candidate->isShown()
            && candidate->portRectMappedToScene().contains(scenePos))
            return candidate;
    }
    return nullptr;
}

OrvNgPort* OrvNgPortList::shownPortAround(const QPointF& scenePos) const
{
    OrvNgPort* port = shownPortUnderPos(scenePos);
    for (int i = 0; !port && i < m_Layout->count(); ++i) {
        OrvNgPort* candidate = portAt(i);
        if (candidate && candidate->isShown() && candidate->sceneBoundingRect().contains(scenePos))
            port = candidate;
    }
    return port;
}

QStringList OrvNgPortList::ordinaryNames() const
{
    QStringList names;
    for (int i = 0; i < m_Layout->count(); ++i) {
        const OrvNgPort* entry = portAt(i);
        if (entry && !entry->isClustered())
            names.append(entry->originalPortName());
    }
    return names;
}

void OrvNgPortList::insert(int layoutIndex, OrvNgPort* port)
{
    m_Layout->insertItem(layoutIndex, port); // the layout also becomes its parent
    m_Ports.insert(port->originalPortName(), port);
}

void OrvNgPortList::insertCluster(int layoutIndex, OrvNgPort* port)
{
    port->setClustered(true);
    insert(layoutIndex, port);
}

void OrvNgPortList::remove(const QString& name)
{
    OrvNgPort* port = m_Ports.take(name);
    if (port->isClustered())
        m_Clusters.removeCluster(name);
    m_Layout->removeItem(port);
    delete port;
    m_Layout->invalidate();
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
            m_Layout->removeItem(moved);
            m_Layout->insertItem(0, moved);
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
    for (int i = 0; i < m_Layout->count(); ++i) {
        OrvNgPort* port = portAt(i);
        if (!port)
            continue;
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
