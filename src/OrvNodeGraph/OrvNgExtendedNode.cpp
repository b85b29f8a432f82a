#include "OrvNodeGraph/OrvNgExtendedNode.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgEdgeBundles.h"
#include "OrvNodeGraph/OrvNgInputPort.h"
#include "OrvNodeGraph/OrvNgNodeHeader.h"
#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"
#include "OrvNodeGraph/OrvNgOutputPort.h"
#include "OrvNodeGraph/OrvNgPortList.h"
#include "OrvNodeGraph/OrvNgPortVisibility.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgRollCall.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>
#include <typeinfo>

/// Holds layout work back for a scope; the caller then lays out once. Within another pause it does
/// nothing.
class OrvNgExtendedNode::LayoutPause
{
public:
    explicit LayoutPause(OrvNgExtendedNode& node)
        : m_Pause(node.m_LayoutPaused, true)
    {
    }

private:
    const QScopedValueRollback<bool> m_Pause;
};

namespace {

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgExtendedNode";
constexpr double kPortListMargin = 5.0; // above the first and below the last port
constexpr double kHeaderAttachX
    = 10.0; // where the edges of hidden ports meet, from the header's ends
constexpr double kBodyRadius = 5.0;
constexpr double kMinimumBodyHeight = 10.0;
constexpr double kSelectedOutlinePixels = 2.0;
const QLatin1String kHiddenTag("_hidden");

QString withLocalName(const char* format, const QString& name)
{
    return QString::asprintf(format, name.toLocal8Bit().constData());
}

} // namespace

// Construction

OrvNgExtendedNode::OrvNgExtendedNode(QGraphicsItem* parent)
    : OrvNgNode(parent)
    , m_Header(std::make_unique<OrvNgNodeHeader>(*this))
    , m_Inputs(std::make_unique<OrvNgPortList>(OrvNgPortList::Side::Inputs))
    , m_Outputs(std::make_unique<OrvNgPortList>(OrvNgPortList::Side::Outputs))
{
    // Then neither the scene's index nor a paint looks at the parts of a node that is out of sight.
    setFlag(ItemContainsChildrenInShape);
    keepOwnBounds();
    setInsertionProbe(m_Header->autoInsertMarker());
    OrvNgExtendedNode::recalcNodeShapeRect();
}

OrvNgExtendedNode::~OrvNgExtendedNode()
{
    m_LayoutPaused = true; // nobody will see the ports again
    aboutToBeDestroyed();
    // Out of the scene as a whole object: the index forgets an item that is deleted in the scene
    // only in a pass over all others, and each port would become a top-level item before it is
    // deleted.
    if (scene())
        scene()->removeItem(this);
    m_Outputs->deletePorts();
    m_Inputs->deletePorts();
}

// Identity and state

void OrvNgExtendedNode::setText(const QString& text)
{
    setObjectName(text);
    if (m_Header->setTitle(elidedText(text)))
        updateAfterPortVisibilityChange();
}

QString OrvNgExtendedNode::text()
{
    return objectName();
}

void OrvNgExtendedNode::setLocked(bool locked)
{
    showState(StateLocked, locked);
}

void OrvNgExtendedNode::setBypassed(bool bypassed)
{
    showState(StateBypassed, bypassed);
}

void OrvNgExtendedNode::setCached(bool cached)
{
    showState(StateCached, cached);
}

void OrvNgExtendedNode::setCurrentPaint(bool currentPaint)
{
    showState(StateCurrentPaint, currentPaint);
}

void OrvNgExtendedNode::setBaked(bool baked)
{
    showState(StateBaked, baked);
}

void OrvNgExtendedNode::setOutdatedBaked(bool outdated)
{
    showState(StateOutdatedBaked, outdated);
}

QBrush OrvNgExtendedNode::nodeUniColour()
{
    return nodeBrush();
}

void OrvNgExtendedNode::setCorrectColor()
{
    setNodeBrush(resolvedBrush());
    const OrvNgStyle& style = OrvNgStyle::instance();
    m_Header->setTitleBrush(
        hasState(StateBypassed) ? style.getBypassedNodeTextBrush() : style.getNodeTextBrush());
}

// Ports

QString OrvNgExtendedNode::inputPortPrettyName(const QString& name)
{
    const QMap<QString, QString>& names = inputTable().m_PrettyNames;
    const auto entry = names.constFind(name);
    if (entry == names.constEnd())
        return QString();
    return entry->trimmed().isEmpty() ? tr("Input") : *entry;
}

QString OrvNgExtendedNode::outputPortPrettyName(const QString& name)
{
    const QMap<QString, QString>& names = outputTable().m_PrettyNames;
    const auto entry = names.constFind(name);
    if (entry == names.constEnd())
        return QString();
    return entry->trimmed().isEmpty() ? tr("Output") : *entry;
}

QString OrvNgExtendedNode::inputDisplayText(const QString& name)
{
    const QString pretty = inputPortPrettyName(name);
    return pretty.isEmpty() ? name : pretty;
}

/// Deliberate: no "Output" for a blank pretty name here, unlike outputPortPrettyName().
QString OrvNgExtendedNode::outputDisplayText(const QString& name) const
{
    return outputTable().prettyName(name);
}

void OrvNgExtendedNode::createInput(const QString& name, bool flag, const QSet<QString>& tags)
{
    if (!inputExists(name) && !m_Inputs->contains(name)) {
        m_Inputs->insert(-1,
            new OrvNgInputPort(
                this, inputDisplayText(name), name, flag, OrvNgPort::Birth::HiddenInNode));
    }
    OrvNgNode::createInput(name, flag, tags);
    OrvNgEdge* edge = m_PortListMode == PORT_LIST_T2B ? input(name) : nullptr;
    if (edge)
        edge->setTextVisible(true);
}

void OrvNgExtendedNode::createOutputPoint(const QString& name, bool withEdge)
{
    if (hasOutputCluster(name)) {
        orvNgReport(kFile, __LINE__, withLocalName("Output name is taken : %s", name));
        return;
    }
    if (withEdge && !m_Outputs->contains(name)) {
        m_Outputs->insert(-1,
            new OrvNgOutputPort(
                this, outputDisplayText(name), name, OrvNgPort::Birth::HiddenInNode));
        if (outputPoints().contains(name))
            reAdjustEdges(); // those that it had without a port now end at the port
    }
    OrvNgNode::createOutputPoint(name, withEdge);
}

/// Deletes a port. The caller lays the node out again.
void OrvNgExtendedNode::dropPort(OrvNgPortList& ports, const QString& name)
{
    ports.remove(name);
}

void OrvNgExtendedNode::removeInput(int index)
{
    if (index < 0 || index >= inputCount()) {
        orvNgReport(kFile, __LINE__, QStringLiteral("Specified index is out of range"));
        OrvNgNode::removeInput(index);
        return;
    }
    const QString name = inputs().at(index)->text();
    const bool hasPort = m_Inputs->contains(name);
    if (hasPort)
        dropPort(*m_Inputs, name);
    else
        orvNgReport(kFile, __LINE__, QString::asprintf("Could not remove an edge %d", index));
    OrvNgNode::removeInput(index);
    if (hasPort)
        updateAfterPortVisibilityChange();
}

void OrvNgExtendedNode::removeOutputPoint(int index)
{
    if (index < 0 || index >= outputPointCount()) {
        orvNgReport(kFile, __LINE__, QStringLiteral("Specified index is out of range"));
        OrvNgNode::removeOutputPoint(index);
        return;
    }
    const QString name = outputPoints().at(index);
    const bool hasPort = m_Outputs->contains(name);
    if (hasPort)
        dropPort(*m_Outputs, name);
    else
        orvNgReport(kFile, __LINE__, QString::asprintf("Could not remove an edge %d", index));
    OrvNgNode::removeOutputPoint(index);
    if (hasPort)
        updateAfterPortVisibilityChange();
}

/// Members of a cluster without a name could not be told from ports that belong to none.
bool OrvNgExtendedNode::refusesEmptyName(
    const OrvNgPortList& ports, const QString& from, const QString& to)
{
    if (!to.isEmpty() || !ports.clusters().hasCluster(from))
        return false;
    orvNgReport(kFile, __LINE__, withLocalName("Cluster name is empty or taken : %s", to));
    return true;
}

void OrvNgExtendedNode::renameInput(const QString& from, const QString& to)
{
    if (refusesEmptyName(*m_Inputs, from, to))
        return;
    if (from != to && (inputExists(to) || m_Inputs->contains(to))) {
        orvNgReport(kFile, __LINE__, withLocalName("Input name is taken : %s", to));
        return;
    }
    {
        const LayoutPause pause(*this);
        m_Inputs->rename(from, to, inputDisplayText(to));
        OrvNgNode::renameInput(from, to);
    }
    updateAfterPortVisibilityChange();
}

void OrvNgExtendedNode::renameOutputPoint(const QString& from, const QString& to)
{
    if (refusesEmptyName(*m_Outputs, from, to))
        return;
    if (from != to && (outputPoints().contains(to) || m_Outputs->contains(to))) {
        orvNgReport(kFile, __LINE__, withLocalName("Output name is taken : %s", to));
        return;
    }
    {
        const LayoutPause pause(*this);
        m_Outputs->rename(from, to, outputDisplayText(to));
        OrvNgNode::renameOutputPoint(from, to);
    }
    updateAfterPortVisibilityChange();
}

void OrvNgExtendedNode::refreshPrettyName(const QString& name)
{
    const QString text = inputDisplayText(name);
    OrvNgPort* port = inputPort(name);
    if (port && text != name)
        port->setText(text);
    OrvNgNode::refreshPrettyName(name);
}

OrvNgPort* OrvNgExtendedNode::inputPort(const QString& name)
{
    return m_Inputs->port(name);
}

OrvNgPort* OrvNgExtendedNode::outputPort(const QString& name)
{
    return m_Outputs->port(name);
}

bool OrvNgExtendedNode::isInputPortVisible(const QString& name)
{
    return m_Inputs->isShown(name);
}

bool OrvNgExtendedNode::isOutputPortVisible(const QString& name)
{
    return m_Outputs->isShown(name);
}

void OrvNgExtendedNode::setInputPortVisible(const QString& name, bool visible)
{
    const OrvNgEdge* edge = input(name);
    if (OrvNgPort* port = inputPort(name))
        port->setVisible(visible && !(edge && edge->hasTag(kHiddenTag)));
}

void OrvNgExtendedNode::setOutputPortVisible(const QString& name, bool visible)
{
    const OrvNgEdge* edge = outputEdge(name);
    if (OrvNgPort* port = outputPort(name))
        port->setVisible(visible && !(edge && edge->hasTag(kHiddenTag)));
}

QStringList OrvNgExtendedNode::sortedInputPoints()
{
    return m_PortListMode == PORT_LIST_T2B ? OrvNgNode::sortedInputPoints()
                                           : m_Inputs->ordinaryNames();
}

QStringList OrvNgExtendedNode::sortedOutputPoints()
{
    return m_PortListMode == PORT_LIST_T2B ? OrvNgNode::sortedOutputPoints()
                                           : m_Outputs->ordinaryNames();
}

void OrvNgExtendedNode::reorderPorts(OrvNgPortList& ports, const QStringList& names)
{
    ports.reorder(names);
    if (m_LayoutPaused)
        m_GeometryPending = true;
    else
        placePorts();
}

void OrvNgExtendedNode::reorderInputPorts(QStringList names)
{
    reorderPorts(*m_Inputs, names);
    reAdjustInputEdges();
}

void OrvNgExtendedNode::reorderOutputPorts(QStringList names)
{
    reorderPorts(*m_Outputs, names);
    reAdjustEdges();
}

// Clusters

/// Without the clusters that cannot have a port: those without a name, or named like an ordinary
/// point.
QList<QPair<QString, QStringList>> OrvNgExtendedNode::usableClusters(
    const OrvNgPortList& ports, const QList<QPair<QString, QStringList>>& clusters)
{
    const bool isInput = &ports == m_Inputs.get();
    QList<QPair<QString, QStringList>> usable;
    for (const auto& entry : clusters) {
        const QString& name = entry.first;
        const bool isPoint = isInput ? inputExists(name) : outputPoints().contains(name);
        if (name.isEmpty() || isPoint || ports.contains(name))
            orvNgReport(
                kFile, __LINE__, withLocalName("Cluster name is empty or taken : %s", name));
        else
            usable.append(entry);
    }
    return usable;
}

/// Removes the input of a cluster, and with it its port (removeInput(int) is virtual). The port of
/// an input whose edge the host has destroyed already goes too.
void OrvNgExtendedNode::dropInputCluster(const QString& cluster)
{
    OrvNgNode::removeInput(cluster);
    if (m_Inputs->contains(cluster))
        dropPort(*m_Inputs, cluster);
}

void OrvNgExtendedNode::setInputPortClusterMap(QList<QPair<QString, QStringList>> clusters)
{
    {
        const LayoutPause pause(*this);
        const OrvNgPortClusters::List previous = m_Inputs->clusters().list();
        for (const auto& entry : previous)
            dropInputCluster(entry.first);
        m_Inputs->setClusters(usableClusters(*m_Inputs, clusters));
        int index = 0;
        for (const auto& entry : m_Inputs->clusters().list()) {
            const QString& name = entry.first;
            m_Inputs->insertCluster(index++,
                new OrvNgInputPort(this, name, name, false, OrvNgPort::Birth::HiddenInNode));
            OrvNgNode::createInput(name, false, {});
            if (OrvNgEdge* edge = input(name))
                edge->setText(name, QString());
        }
    }
    clustersChanged();
}

void OrvNgExtendedNode::setOutputPortClusterMap(QList<QPair<QString, QStringList>> clusters)
{
    {
        const LayoutPause pause(*this);
        const OrvNgPortClusters::List previous = m_Outputs->clusters().list();
        for (const auto& entry : previous)
            dropPort(*m_Outputs, entry.first);
        m_Outputs->setClusters(usableClusters(*m_Outputs, clusters));
        int index = 0;
        for (const auto& entry : m_Outputs->clusters().list()) {
            const QString& name = entry.first;
            m_Outputs->insertCluster(
                index++, new OrvNgOutputPort(this, name, name, OrvNgPort::Birth::HiddenInNode));
        }
    }
    clustersChanged();
}

/// New cluster ports are shown at once; in the grouped mode their members make room for them too.
void OrvNgExtendedNode::clustersChanged()
{
    if (m_PortListMode == PORT_LIST_GROUPED)
        showPorts();
    refreshEdges();
    updateAfterPortVisibilityChange();
}

QStringList OrvNgExtendedNode::inputClusterPortName2ClusterList(const QString& cluster)
{
    if (!hasInputCluster(cluster))
        orvNgReport(kFile, __LINE__,
            withLocalName("Such InputClusterPortName does not exist : %s", cluster));
    return m_Inputs->clusters().members(cluster);
}

QStringList OrvNgExtendedNode::outputClusterPortName2ClusterList(const QString& cluster)
{
    if (!hasOutputCluster(cluster))
        orvNgReport(kFile, __LINE__,
            withLocalName("Such OutputClusterPortName does not exist : %s", cluster));
    return m_Outputs->clusters().members(cluster);
}

bool OrvNgExtendedNode::hasInputCluster(const QString& cluster) const
{
    return m_Inputs->clusters().hasCluster(cluster);
}

bool OrvNgExtendedNode::hasOutputCluster(const QString& cluster) const
{
    return m_Outputs->clusters().hasCluster(cluster);
}

QString OrvNgExtendedNode::inputPort2ClusterName(const QString& name) const
{
    return m_Inputs->clusters().clusterOf(name);
}

QString OrvNgExtendedNode::outputPort2ClusterName(const QString& name) const
{
    return m_Outputs->clusters().clusterOf(name);
}

bool OrvNgExtendedNode::inputPortBelongsToCluster(const QString& name) const
{
    return m_Inputs->clusters().hasMember(name);
}

bool OrvNgExtendedNode::outputPortBelongsToCluster(const QString& name) const
{
    return m_Outputs->clusters().hasMember(name);
}

bool OrvNgExtendedNode::hasClusteredPorts() const
{
    return !m_Inputs->clusters().isEmpty() || !m_Outputs->clusters().isEmpty();
}

QStringList OrvNgExtendedNode::clusteredInputPorts() const
{
    return m_Inputs->clusters().names();
}

QStringList OrvNgExtendedNode::clusteredOutputPorts() const
{
    return m_Outputs->clusters().names();
}

void OrvNgExtendedNode::setClusteredInputEdgeSource(
    const QString& inputName, OrvNgNode* sourceNode, const QString& outputName)
{
    OrvNgEdge* edge = input(inputName);
    if (!edge)
        return;
    if (sourceNode)
        edge->setSourceNode(sourceNode, outputName);
    if (edge->isClustered())
        edge->setSourceNode(nullptr, outputName);
}

// Modes

OrvNgExtendedNode::PortListMode OrvNgExtendedNode::nextPortListMode() const
{
    return OrvNgPortVisibility::nextMode(m_PortListMode, hasClusteredPorts());
}

void OrvNgExtendedNode::setPortListMode(PortListMode mode)
{
    if (!OrvNgPortVisibility::isValid(mode)) {
        orvNgReport(kFile, __LINE__, QString::asprintf("No such port list mode : %d", int(mode)));
        return;
    }
    const PortListMode previous = m_PortListMode;
    m_PortListMode = mode;
    if (previous == mode) {
        applyPortVisibilityMode();
        return;
    }
    m_Header->button().setVisible(mode != PORT_LIST_T2B);
    if (previous == PORT_LIST_T2B)
        showInputLabels(false);
    // Edges attach elsewhere in another mode even where no port appears or goes.
    showPorts();
    refreshEdges();
    updateAfterPortVisibilityChange();
    if (mode == PORT_LIST_T2B)
        showInputLabels(true);
    update();
}

/// Without ports beside them, the inputs of a node say their names on the edges.
void OrvNgExtendedNode::showInputLabels(bool shown)
{
    for (OrvNgEdge* edge : inputs())
        edge->setTextVisible(shown);
}

/// What an edge shows depends on the modes and clusters of the nodes at its ends.
void OrvNgExtendedNode::refreshEdges()
{
    const QList<OrvNgEdge*> edges = inputs() + outputs();
    for (OrvNgEdge* edge : edges) {
        edge->setVisibilityForItems();
        if (edge->isFullConnected())
            edge->setEdgeColor();
    }
}

void OrvNgExtendedNode::applyPortVisibilityMode()
{
    if (showPorts())
        updateAfterPortVisibilityChange();
}

/// One visibility pass over both sides; true when some port appeared or went.
bool OrvNgExtendedNode::showPorts()
{
    const LayoutPause pause(*this);
    const bool inputsChanged = m_Inputs->show(m_PortListMode, inputs());
    const bool outputsChanged = m_Outputs->show(m_PortListMode, outputs());
    return inputsChanged || outputsChanged;
}

void OrvNgExtendedNode::updateAfterPortVisibilityChange()
{
    if (m_LayoutPaused) {
        m_GeometryPending = true;
        return;
    }
    m_GeometryPending = false;
    recalcNodeShapeRect();
    reAdjustEdges();
}

void OrvNgExtendedNode::portRoomChanged()
{
    updateAfterPortVisibilityChange();
}

// Header

int OrvNgExtendedNode::addIcon(const QString& svgName)
{
    return m_Header->addIcon(svgName);
}

void OrvNgExtendedNode::setIconVisible(bool visible, int index)
{
    if (m_Header->setIconVisible(visible, index))
        updateIcons();
}

void OrvNgExtendedNode::updateIcons()
{
    m_Header->placeIcons(resolvedShapeType() == ShapeRoundedHexagon);
    updateAfterPortVisibilityChange();
}

void OrvNgExtendedNode::updateTextVisibility()
{
    if (!bundlesEdges() && m_LabelledEdges.isEmpty())
        return;
    const QList<OrvNgEdge*> labelled = OrvNgEdgeBundles::representatives(*this);
    const QSet<const OrvNgEdge*> kept(labelled.cbegin(), labelled.cend());
    for (const QPointer<OrvNgEdge>& edge : qAsConst(m_LabelledEdges)) {
        if (edge && !kept.contains(edge))
            edge->setTextVisible(false);
    }
    if (bundlesEdges()) {
        for (OrvNgEdge* edge : inputs()) {
            if (edge->isTextVisible() && edge->sourceNode() && edge->isVisible()
                && !kept.contains(edge))
                edge->setTextVisible(false); // the host had switched it on
        }
    }
    m_LabelledEdges.clear();
    for (OrvNgEdge* edge : labelled) {
        edge->setTextVisible(true);
        m_LabelledEdges.append(edge);
    }
}

bool OrvNgExtendedNode::bundlesEdges() const
{
    return OrvNgEdgeBundles::bundlesEdges(m_PortListMode);
}

void OrvNgExtendedNode::updateWidget()
{
    updateAfterPortVisibilityChange();
    update();
}

// Geometry

/// The width that the attachment points of the shown input edges ask for.
double OrvNgExtendedNode::shownEdgesSpan()
{
    OrvNgHeaderLayout::EdgeSpan span;
    for (const OrvNgEdge* edge : inputs()) {
        if (edge->isVisible())
            span.include(mapFromScene(inputPortDestPos(edge->text())).x());
    }
    return span.width();
}

void OrvNgExtendedNode::recalcNodeShapeRect()
{
    if (m_LayoutPaused) {
        m_GeometryPending = true;
        return;
    }
    const OrvNgHeaderLayout::Arrangement header
        = m_Header->arrange(shownEdgesSpan(), m_Inputs->room().width(), m_Outputs->room().width());
    resizeHeader(header.m_Size);
    m_Header->place(header);
    placePorts();
    notifySceneOfChange();
}

void OrvNgExtendedNode::resizeHeader(const QSizeF& size)
{
    if (size == m_NodeShapeRect.size())
        return;
    const bool gradientMoves = size.height() != m_NodeShapeRect.height();
    m_NodeShapeRect = QRectF(QPointF(0.0, 0.0), size);
    if (gradientMoves)
        setCorrectColor(); // NOLINT(clang-analyzer-optin.cplusplus.VirtualCall): a new node has its own colours
}

/// Outputs below the header, inputs below them; a node without shown ports has the margins as well.
void OrvNgExtendedNode::placePorts()
{
    const double width = m_NodeShapeRect.width();
    const double outputsTop = m_NodeShapeRect.height() + kPortListMargin;
    const double inputsTop = outputsTop + m_Outputs->room().height();
    const double bottom = inputsTop + m_Inputs->room().height() + kPortListMargin;
    const QRectF bounds(0.0, 0.0, width, bottom);
    if (bounds != m_FaceBounds) {
        prepareGeometryChange();
        m_FaceBounds = bounds;
    }
    m_Outputs->place(outputsTop, width);
    m_Inputs->place(inputsTop, width);
}

QRectF OrvNgExtendedNode::nodeShapeRect()
{
    return m_NodeShapeRect;
}

QRectF OrvNgExtendedNode::boundingRect() const
{
    if (OrvNgRollCall::answers(this, OrvNgRollCall::Kind::Node))
        return OrvNgRollCall::nowhere();
    return m_FaceBounds;
}

void OrvNgExtendedNode::pauseInvalidation(bool paused)
{
    m_LayoutPaused = paused;
    if (!paused && m_GeometryPending)
        updateAfterPortVisibilityChange();
}

// Attachment points

/// False when the base node decides where the edges of a point attach.
bool OrvNgExtendedNode::attachmentPoint(
    const OrvNgPortList& ports, const QString& name, double headerX, QPointF& scenePos) const
{
    OrvNgPort* port = ports.attachingPort(name, m_PortListMode);
    if (!port || m_PortListMode == PORT_LIST_T2B)
        return false;
    scenePos = port->isShown() ? port->mapToScene(port->portCenterPos())
                               : mapToScene(QPointF(headerX, m_NodeShapeRect.height() * 0.5));
    return true;
}

bool OrvNgExtendedNode::inputAttachmentPoint(const QString& name, QPointF& scenePos) const
{
    return attachmentPoint(*m_Inputs, name, kHeaderAttachX, scenePos);
}

bool OrvNgExtendedNode::outputAttachmentPoint(const QString& name, QPointF& scenePos) const
{
    return attachmentPoint(*m_Outputs, name, m_NodeShapeRect.width() - kHeaderAttachX, scenePos);
}

QPointF OrvNgExtendedNode::inputPortPosInternal(const QString& name) const
{
    QPointF scenePos;
    inputAttachmentPoint(name, scenePos);
    return scenePos;
}

QPointF OrvNgExtendedNode::outputPortPosInternal(const QString& name) const
{
    QPointF scenePos;
    outputAttachmentPoint(name, scenePos);
    return scenePos;
}

QPointF OrvNgExtendedNode::inputPortDestPos(const QString& name)
{
    QPointF scenePos;
    return inputAttachmentPoint(name, scenePos) ? scenePos : OrvNgNode::inputPortDestPos(name);
}

QPointF OrvNgExtendedNode::inputPortSourcePos(const QString& name)
{
    QPointF scenePos;
    return inputAttachmentPoint(name, scenePos) ? scenePos : OrvNgNode::inputPortSourcePos(name);
}

QPointF OrvNgExtendedNode::outputPortSourcePos(const QString& name)
{
    QPointF scenePos;
    return outputAttachmentPoint(name, scenePos) ? scenePos : OrvNgNode::outputPortSourcePos(name);
}

QPointF OrvNgExtendedNode::outputPortDestPos(const QString& name)
{
    QPointF scenePos;
    return outputAttachmentPoint(name, scenePos) ? scenePos : OrvNgNode::outputPortDestPos(name);
}

void OrvNgExtendedNode::reAdjustInputEdges()
{
    OrvNgNode::reAdjustInputEdges();
    updateTextVisibility();
    QSet<OrvNgExtendedNode*> destinations;
    for (const OrvNgEdge* edge : outputs()) {
        auto* node = qobject_cast<OrvNgExtendedNode*>(edge->destNode());
        if (node && (node->bundlesEdges() || !node->m_LabelledEdges.isEmpty()))
            destinations.insert(node);
    }
    for (OrvNgExtendedNode* node : qAsConst(destinations))
        node->updateTextVisibility();
}

// Picking edges at ports

OrvNgEdge* OrvNgExtendedNode::edgeForPortUnderPos(const QPointF& scenePos, bool* isOutput)
{
    if (isOutput)
        *isOutput = false;
    if (const OrvNgPort* port = m_Inputs->shownPortUnderPos(scenePos)) {
        OrvNgEdge* edge = input(port->originalPortName());
        if (edge && edge->isReconnectable())
            return edge;
    }
    const OrvNgPort* port = m_Outputs->shownPortUnderPos(scenePos);
    OrvNgEdge* edge = port ? createTemporaryOutputEdge(port->originalPortName()) : nullptr;
    if (!edge || !edge->isReconnectable())
        return nullptr;
    if (isOutput)
        *isOutput = true;
    return edge;
}

/// Pulls the edge out of its port and lets it have the mouse. An edge shows itself when it is
/// grabbed; an item that is not visible could not take the mouse.
void OrvNgExtendedNode::pullOutEdge(OrvNgEdge* edge, const QPointF& scenePos, bool isOutput)
{
    edge->grabEdge(edge->mapFromScene(scenePos), true, isOutput);
    if (edge->scene() && edge->isVisible() && edge->scene()->mouseGrabberItem() != edge)
        edge->grabMouse();
}

bool OrvNgExtendedNode::grabEdgeForPortUnderPos(const QPointF& scenePos)
{
    bool isOutput = false;
    OrvNgEdge* edge = edgeForPortUnderPos(scenePos, &isOutput);
    if (!edge || !edge->isReconnectable())
        return false;
    pullOutEdge(edge, scenePos, isOutput);
    return true;
}

bool OrvNgExtendedNode::portForEdgeContains(OrvNgEdge* edge, const QPointF& scenePos)
{
    if (!edge)
        return false;
    OrvNgPort* port = nullptr;
    if (inputs().contains(edge))
        port = inputPort(edge->text());
    else if (edge == temporaryOutputEdge() || outputs().contains(edge))
        port = outputPort(edge->sourceOutputPoint());
    return port && port->isShown() && port->portRectMappedToScene().contains(scenePos);
}

QString OrvNgExtendedNode::inputPointUnderPos(const QPointF& scenePos) const
{
    const OrvNgPort* port = m_Inputs->shownPortAround(scenePos);
    return port ? port->originalPortName() : QString();
}

QString OrvNgExtendedNode::outputPointUnderPos(const QPointF& scenePos) const
{
    const OrvNgPort* port = m_Outputs->shownPortAround(scenePos);
    return port ? port->originalPortName() : QString();
}

// Painting

bool OrvNgExtendedNode::allowsFarPicture() const
{
    return typeid(*this) == typeid(OrvNgExtendedNode);
}

void OrvNgExtendedNode::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget* widget)
{
    m_BodyRect = boundingRect();
    m_BodyRect.setTop(m_NodeShapeRect.height());
    m_BodyRect.setHeight(qMax(kMinimumBodyHeight, m_BodyRect.height()));
    updateOutlineWidthScale(widget);
    drawSelectedOutline(painter);
    drawShape(painter);
}

/// No body below the header, because no port can be shown there.
bool OrvNgExtendedNode::isBareHeader() const
{
    switch (m_PortListMode) {
    case PORT_LIST_T2B:
    case PORT_LIST_COLLAPSED:
        return true;
    case PORT_LIST_ONLY_CONNECTED:
        return m_Inputs->connectedShown() == 0 && m_Outputs->connectedShown() == 0;
    case PORT_LIST_EXPANDED:
    case PORT_LIST_GROUPED:
        break;
    }
    return false;
}

void OrvNgExtendedNode::drawRoundedBody(
    QPainter* painter, double grownBy, const QColor& color) const
{
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawRoundedRect(m_BodyRect.adjusted(-grownBy, -grownBy, grownBy, grownBy),
        kBodyRadius + grownBy, kBodyRadius + grownBy);
}

void OrvNgExtendedNode::drawShape(QPainter* painter)
{
    if (!isBareHeader()) {
        if (hovered())
            drawRoundedBody(painter, outlineWidthScale(), hoveredOutlineColor());
        drawRoundedBody(painter, 0.0, QColor(64, 64, 64));
    }
    OrvNgNode::drawShape(painter);
}

void OrvNgExtendedNode::drawSelectedOutline(QPainter* painter)
{
    if (!isBareHeader()) {
        if (!isSelected())
            return;
        drawRoundedBody(painter, kSelectedOutlinePixels * outlineWidthScale(),
            OrvNgStyle::instance().getSelectedNodeColor());
    }
    OrvNgNode::drawSelectedOutline(painter);
}

bool OrvNgExtendedNode::isDoubleClickValid(const QPointF& itemPos) const
{
    const OrvNgNodeHeaderButton& button = m_Header->button();
    return !button.shape().contains(button.mapFromParent(itemPos));
}

// Events

QVariant OrvNgExtendedNode::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedHasChanged) {
        setCorrectColor();
        auto* model = qobject_cast<OrvSerializableObject*>(parent());
        if (model && !m_InParentSelection) {
            // The host's object may select this node in turn.
            const QScopedValueRollback<bool> guard(m_InParentSelection, true);
            model->setSelected(value.toBool());
        }
    }
    return OrvNgNode::itemChange(change, value);
}

void OrvNgExtendedNode::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    const QPointer<OrvNgExtendedNode> self(this);
    bool isOutput = false;
    OrvNgEdge* edge = event->button() == Qt::LeftButton
        ? edgeForPortUnderPos(event->scenePos(), &isOutput)
        : nullptr;
    if (edge)
        pullOutEdge(edge, event->scenePos(), isOutput);
    // A press on a port selects as one on the rest of the node does.
    if (self)
        OrvNgNode::mousePressEvent(event);
    if (edge)
        event->accept(); // also when this node cannot be selected: the edge holds the mouse now
}
