#include "OrvNodeGraph/OrvNgNode.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgHandOver.h"
#include "OrvNodeGraph/OrvNgNodeBrush.h"
#include "OrvNodeGraph/OrvNgNodeShape.h"
#include "OrvNodeGraph/OrvNgPlantedFault.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgSceneNodes.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgView.h"

#include <QGraphicsScene>
#include <QLinearGradient>
#include <QPainter>
#include <QPen>

namespace {

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgNode";

// Reports of this class that hosts tell apart by their line.
constexpr int kLineTemporaryEdge = 503;
constexpr int kLineRemoveOutput = 563;
constexpr int kLineRemoveOutputPoint = 625;
constexpr int kLineRemoveInput = 733;
constexpr int kLineReplace = 890;

constexpr int kMaxTextLength = 128;
constexpr double kSelectedOutlineWidth = 4.0; // screen pixels; the body hides the inner half
constexpr double kHoveredOutlineWidth = 2.0;

void reportBadIndex(int line)
{
    orvNgReport(kFile, line, QStringLiteral("Specified index is out of range"));
}

// Unites the bounds of everything below parent, hidden items included, in the space that toTop maps to.
void uniteChildren(const QGraphicsItem* parent, const QTransform& toTop, QRectF& bounds)
{
    const QList<QGraphicsItem*> children = parent->childItems();
    for (const QGraphicsItem* child : children) {
        const QTransform childToTop = child->itemTransform(parent) * toTop;
        bounds |= childToTop.mapRect(child->boundingRect());
        uniteChildren(child, childToTop, bounds);
    }
}

QRectF childrenBounds(const QGraphicsItem* item)
{
    QRectF bounds;
    uniteChildren(item, QTransform(), bounds);
    return bounds;
}

QPen outlinePen(const QColor& color, double width)
{
    return QPen(QBrush(color), width, Qt::SolidLine, Qt::SquareCap, Qt::RoundJoin);
}

QColor firstColor(const QBrush& brush)
{
    const QGradient* gradient = brush.gradient();
    if (gradient && !gradient->stops().isEmpty())
        return gradient->stops().constFirst().second;
    return brush.color();
}

const QSet<QString>& virtualEdgeTags()
{
    static const QSet<QString> tags{
        QStringLiteral("_locked"), QStringLiteral("_thin"), QStringLiteral("_dotted")};
    return tags;
}

} // namespace

int OrvNgNode::s_SelectionIndex = 0;

OrvNgNode::OrvNgNode(QGraphicsItem* parent)
    : QGraphicsItem(parent)
{
    // Signals carry edges, which string-based and queued connections must know.
    static const int edgeType = qRegisterMetaType<OrvNgEdge*>("OrvNgEdge*");
    Q_UNUSED(edgeType)
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
}

OrvNgNode::~OrvNgNode()
{
    OrvNgNode::aboutToBeDestroyed();
}

void OrvNgNode::aboutToBeDestroyed()
{
    if (m_IsDying)
        return;
    dropSelection();
    setHovered(false);
    cancelDrag();
    m_IsDying = true;
    if (scene() && scene()->mouseGrabberItem() == this)
        ungrabMouse();

    const QList<OrvNgEdge*> edges = m_Inputs + m_Outputs;
    for (OrvNgEdge* edge : edges) {
        if (!OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::NodeLeavesEdges))
            edge->nodeGone(this);
    }
    if (m_TemporaryOutputEdge)
        m_TemporaryOutputEdge->destroy();
    removeVirtualInputEdge();
    if (!OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::StaleNodeList))
        OrvNgSceneNodes::leave(this);
    notifySceneOfChange();
}

void OrvNgNode::dropSelection()
{
    if (!isSelected())
        return;
    setSelected(false);
    // The scene forgets deselected items only when it is asked for the selection; otherwise it would tell
    // of the change once more when half of this object is gone.
    if (scene())
        scene()->selectedItems();
}

void OrvNgNode::setSelected(bool selected, bool withChildren)
{
    setSelected(selected);
    OrvSerializableObject::setSelected(selected, withChildren);
}

// Connection points

void OrvNgNode::createInput(const QString& name, bool flag, const QSet<QString>& tags)
{
    if (inputExists(name)) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] Input '%1' exists already on node '%2'").arg(name, text()));
        return;
    }
    auto* edge = addToScene(new OrvNgEdge(true, this, flag, tags));
    edge->setText(name, inputPointPrettyName(name));
}

void OrvNgNode::removeInput(int index)
{
    if (index < 0 || index >= m_Inputs.size()) {
        reportBadIndex(kLineRemoveInput);
        return;
    }
    m_Inputs.at(index)->destroy();
}

void OrvNgNode::removeInput(const QString& name)
{
    const int index = m_Inputs.indexOf(input(name));
    if (index >= 0)
        removeInput(index);
}

void OrvNgNode::createOutputPoint(const QString& name, bool withEdge)
{
    if (!m_OutputPoints.contains(name))
        m_OutputPoints.append(name);
    if (withEdge)
        addOutputEdge(name);
}

void OrvNgNode::removeOutputPoint(int index)
{
    if (index < 0 || index >= m_OutputPoints.size()) {
        reportBadIndex(kLineRemoveOutputPoint);
        return;
    }
    const QString name = m_OutputPoints.at(index);
    if (m_TemporaryOutputEdge && m_TemporaryOutputEdge->sourceOutputPoint() == name)
        removeTemporaryOutputEdge();
    const QList<OrvNgEdge*> edges = m_Outputs;
    for (OrvNgEdge* edge : edges) {
        if (edge->sourceOutputPoint() == name)
            edge->outputGone();
    }
    m_OutputPoints.removeAt(index);
}

void OrvNgNode::removeOutputPoint(const QString& name)
{
    const int index = m_OutputPoints.indexOf(name);
    if (index >= 0)
        removeOutputPoint(index);
}

void OrvNgNode::renameInput(const QString& from, const QString& to)
{
    if (from != to && inputExists(to)) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] Input '%1' exists already on node '%2'").arg(to, text()));
        return;
    }
    const QList<OrvNgEdge*> edges = m_Inputs;
    for (OrvNgEdge* edge : edges) {
        // Deliberate: the new name is also the label, whatever the pretty-name table says of it.
        if (edge->text() == from)
            edge->setText(to, to);
    }
}

void OrvNgNode::renameOutputPoint(const QString& from, const QString& to)
{
    if (from != to && m_OutputPoints.contains(to)) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] Output '%1' exists already on node '%2'").arg(to, text()));
        return;
    }
    const QList<OrvNgEdge*> edges = m_Outputs;
    for (OrvNgEdge* edge : edges) {
        if (edge->sourceOutputPoint() != from)
            continue;
        edge->setSourceOutputPoint(to);
        if (!edge->destNode())
            edge->setText(to, outputPointPrettyName(to));
    }
    const int index = m_OutputPoints.indexOf(from);
    if (index >= 0)
        m_OutputPoints[index] = to;
}

QStringList OrvNgNode::sortedInputPoints()
{
    QStringList names;
    names.reserve(m_Inputs.size());
    for (const OrvNgEdge* edge : qAsConst(m_Inputs))
        names.append(edge->text());
    return names;
}

QStringList OrvNgNode::sortedOutputPoints()
{
    return m_OutputPoints;
}

QString OrvNgNode::inputPointPrettyName(const QString& name)
{
    return m_InputTable.prettyName(name);
}

QString OrvNgNode::outputPointPrettyName(const QString& name)
{
    return m_OutputTable.prettyName(name);
}

void OrvNgNode::destroy()
{
    if (m_IsDestroyed)
        return;
    m_IsDestroyed = true;
    cancelDrag();
    const QList<OrvNgEdge*> inputs = m_Inputs;
    for (OrvNgEdge* edge : inputs)
        edge->destroy();
    const QList<OrvNgEdge*> outputs = m_Outputs;
    for (OrvNgEdge* edge : outputs)
        edge->nodeGone(this);
    removeTemporaryOutputEdge();
    removeVirtualInputEdge();
    deleteLater();
}

void OrvNgNode::replace(OrvNgNode* other)
{
    if (!other) {
        orvNgReport(kFile, kLineReplace, QStringLiteral("other is NULL"));
        return;
    }
    if (other == this)
        return;
    other->setPos(pos());
    OrvNgHandOver::moveConnections(this, other);
}

// Geometry

QRectF OrvNgNode::nodeShapeRect()
{
    return boundingRect();
}

QRectF OrvNgNode::boundingRect() const
{
    if (m_BoundsDirty && !m_BoundsHeld) {
        m_Bounds = childrenBounds(this);
        m_BoundsDirty = false;
    }
    return m_Bounds;
}

void OrvNgNode::updateBounds()
{
    const QRectF bounds = childrenBounds(this);
    if (!m_BoundsDirty && bounds == m_Bounds)
        return;
    holdBoundsForChange();
    m_Bounds = bounds;
    m_BoundsDirty = false;
}

void OrvNgNode::holdBoundsForChange()
{
    // The scene asks for the bounds it has indexed, and a child that is still being built cannot be asked.
    m_BoundsHeld = true;
    prepareGeometryChange();
    m_BoundsHeld = false;
}

void OrvNgNode::reAdjustEdges()
{
    reAdjustInputEdges();
    reAdjustOutputEdges();
}

void OrvNgNode::reAdjustInputEdges()
{
    const QList<OrvNgEdge*> edges = m_Inputs;
    for (OrvNgEdge* edge : edges)
        edge->adjust();
    if (m_VirtualInputEdge)
        m_VirtualInputEdge->adjust();
}

void OrvNgNode::reAdjustOutputEdges()
{
    const QList<OrvNgEdge*> edges = m_Outputs;
    for (OrvNgEdge* edge : edges)
        edge->adjust();
    if (m_TemporaryOutputEdge)
        m_TemporaryOutputEdge->adjust();
}

QPointF OrvNgNode::inputPortSourcePos(const QString& name)
{
    return mapToScene(boundingRect().center() + m_InputTable.position(name).second);
}

QPointF OrvNgNode::inputPortDestPos(const QString& name)
{
    return mapToScene(boundingRect().center() + m_InputTable.position(name).first);
}

QPointF OrvNgNode::outputPortSourcePos(const QString& name)
{
    return mapToScene(boundingRect().center() + m_OutputTable.position(name).first);
}

QPointF OrvNgNode::outputPortDestPos(const QString& name)
{
    return mapToScene(boundingRect().center() + m_OutputTable.position(name).second);
}

bool OrvNgNode::isDoubleClickValid(const QPointF&) const
{
    return true;
}

// Host notifications

void OrvNgNode::notifyInputSourceChange(
    OrvNgNode* node, const QString& output, const QString& input)
{
    Q_EMIT inputSourceChanged(node, output, input);
}

bool OrvNgNode::acceptsInputSource(OrvNgNode*, const QString&, const QString&)
{
    return true;
}

void OrvNgNode::notifyInputSourceRefused(
    OrvNgNode* source, const QString& output, const QString& input)
{
    Q_EMIT inputSourceRefused(source, output, input);
}

void OrvNgNode::notifyNodePortListModeChanged(int mode)
{
    Q_EMIT nodePortListModeChanged(mode);
}

void OrvNgNode::notifyEdgeDotableMarkerIsClicked(OrvNgEdge* edge)
{
    Q_EMIT clickedOnDotableMarkerOnEdge(edge);
}

// Shape, category, colours

OrvNgNode::NodeShapeType OrvNgNode::resolveShapeType(NodeShapeType type, const QString& category)
{
    return OrvNgNodeShape::resolve(type, category);
}

OrvNgNode::NodeShapeType OrvNgNode::resolvedShapeType() const
{
    return OrvNgNodeShape::resolve(m_ShapeType, m_Category);
}

void OrvNgNode::drawNodeShape(
    QPainter* painter, const QRectF& rect, NodeShapeType type, const QString& category)
{
    OrvNgNodeShape::draw(painter, rect, OrvNgNodeShape::resolve(type, category));
}

void OrvNgNode::setShapeType(int type)
{
    m_ShapeType = type;
    update();
}

void OrvNgNode::setCategory(const QString& category)
{
    m_Category = category;
}

void OrvNgNode::getNodeBrush(QLinearGradient& out)
{
    OrvNgNodeBrush::categoryGradient(m_Category, out);
}

void OrvNgNode::setNodeColor(const QColor& first, const QColor& second)
{
    m_NodeColor = first.isValid() ? first : second;
    m_NodeColor2 = second.isValid() ? second : first;
}

void OrvNgNode::setDebugColor(const QColor& color)
{
    m_DebugColor = color;
}

void OrvNgNode::setDebug(bool debug)
{
    showState(StateDebug, debug);
}

void OrvNgNode::setGuiActive(bool active)
{
    m_GuiActive = active;
}

void OrvNgNode::setState(StateFlag flag, bool on)
{
    m_StateFlags = on ? (m_StateFlags | flag) : (m_StateFlags & ~quint32(flag));
}

void OrvNgNode::showState(StateFlag flag, bool on)
{
    setState(flag, on);
    if (OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::NoRepaint))
        return;
    // A subclass that forgot aboutToBeDestroyed() gets here from the base's destructor: harmless.
    setCorrectColor(); // NOLINT(clang-analyzer-optin.cplusplus.VirtualCall)
    update();
}

QBrush OrvNgNode::resolvedBrush()
{
    OrvNgNodeBrush::State state;
    state.m_CurrentPaint = hasState(StateCurrentPaint);
    state.m_Override = isDebug();
    state.m_Bypassed = hasState(StateBypassed);
    state.m_Cached = hasState(StateCached);
    state.m_Baked = hasState(StateBaked);
    state.m_OutdatedBaked = hasState(StateOutdatedBaked);
    state.m_Locked = hasState(StateLocked);
    state.m_OverrideColor = m_DebugColor;
    state.m_NodeColor = m_NodeColor;
    state.m_NodeColor2 = m_NodeColor2;
    state.m_Category = m_Category;
    return OrvNgNodeBrush::resolve(state, nodeShapeRect());
}

bool OrvNgNode::hovered() const
{
    return hasState(StateHovered);
}

void OrvNgNode::setHovered(bool hovered)
{
    if (hasState(StateHovered) == hovered)
        return;
    showState(StateHovered, hovered);
    Q_EMIT hoveredChanged(hovered);
}

void OrvNgNode::setIsSystemShaderNode(bool isSystem)
{
    m_IsSystemShaderNode = isSystem;
    setVisible(!isSystem);
}

// Edges and points

OrvNgEdge* OrvNgNode::input(const QString& name)
{
    for (OrvNgEdge* edge : qAsConst(m_Inputs)) {
        if (edge->m_Text == name)
            return edge;
    }
    return nullptr;
}

bool OrvNgNode::inputExists(const QString& name)
{
    return input(name) != nullptr;
}

int OrvNgNode::inputCount() const
{
    return m_Inputs.size();
}

int OrvNgNode::outputCount() const
{
    return m_Outputs.size();
}

int OrvNgNode::outputPointCount() const
{
    return m_OutputPoints.size();
}

OrvNgEdge* OrvNgNode::outputEdge(const QString& name)
{
    OrvNgEdge* unconnected = nullptr;
    for (OrvNgEdge* edge : qAsConst(m_Outputs)) {
        if (edge->sourceOutputPoint() != name)
            continue;
        if (edge->destNode())
            return edge;
        if (!unconnected)
            unconnected = edge;
    }
    return unconnected;
}

bool OrvNgNode::containsEdge(OrvNgEdge* edge)
{
    return edge && (m_Inputs.contains(edge) || m_Outputs.contains(edge));
}

bool OrvNgNode::doesEdgeBelongToThisNode(OrvNgEdge* edge)
{
    if (!edge)
        return false;
    return m_Inputs.contains(edge) || edge == m_TemporaryOutputEdge || edge == m_VirtualInputEdge
        || (m_Outputs.contains(edge) && edge->isUnconnectedStub());
}

void OrvNgNode::addOutputEdge(const QString& name)
{
    if (!scene())
        return;
    for (const OrvNgEdge* edge : qAsConst(m_Outputs)) {
        if (edge->m_Text == name)
            return;
    }
    auto* edge = new OrvNgEdge(false, this, false, {});
    edge->setSourceOutputPoint(name);
    addToScene(edge);
    edge->setText(name, outputPointPrettyName(name));
}

void OrvNgNode::removeOutput(int index)
{
    if (index < 0 || index >= m_Outputs.size()) {
        reportBadIndex(kLineRemoveOutput);
        return;
    }
    m_Outputs.at(index)->outputGone();
}

void OrvNgNode::removeUnusedOutput(const QString& name)
{
    for (int i = 0; i < m_Outputs.size(); ++i) {
        const OrvNgEdge* edge = m_Outputs.at(i);
        if (edge->isUnconnectedStub() && edge->sourceOutputPoint() == name) {
            removeOutput(i);
            return;
        }
    }
}

OrvNgEdge* OrvNgNode::getNextFreeInputEdgeOnNode()
{
    for (OrvNgEdge* edge : qAsConst(m_Inputs)) {
        if (!edge->sourceNode())
            return edge;
    }
    return nullptr;
}

QString OrvNgNode::getNextInputPointOnNode()
{
    if (m_Inputs.isEmpty())
        return QString();
    const OrvNgEdge* edge = getNextFreeInputEdgeOnNode();
    return (edge ? edge : m_Inputs.constFirst())->text();
}

void OrvNgNode::updateInputTags(const QString& name, const QSet<QString>& tags)
{
    if (OrvNgEdge* edge = input(name))
        edge->setTags(tags);
}

void OrvNgNode::registerInputEdge(OrvNgEdge* edge)
{
    if (!m_Inputs.contains(edge))
        m_Inputs.append(edge);
}

void OrvNgNode::registerOutputEdge(OrvNgEdge* edge)
{
    if (!m_Outputs.contains(edge))
        m_Outputs.append(edge);
}

OrvNgEdge* OrvNgNode::addToScene(OrvNgEdge* edge)
{
    if (scene())
        scene()->addItem(edge);
    return edge;
}

// Tables by name

QString OrvNgNode::inputPointDescriptiveName(const QString& name)
{
    return m_InputTable.descriptiveName(name);
}

QString OrvNgNode::outputPointDescriptiveName(const QString& name)
{
    return m_OutputTable.descriptiveName(name);
}

QPair<QPoint, QPoint> OrvNgNode::inputConnectionPosition(const QString& name)
{
    return m_InputTable.position(name);
}

QPair<QPoint, QPoint> OrvNgNode::outputConnectionPosition(const QString& name)
{
    return m_OutputTable.position(name);
}

float OrvNgNode::inputConnectionTextPosition(const QString& name)
{
    return m_InputTable.textPosition(name);
}

float OrvNgNode::outputConnectionTextPosition(const QString& name)
{
    return m_OutputTable.textPosition(name);
}

void OrvNgNode::setInputConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>>& positions)
{
    m_InputTable.m_Positions = positions;
    reAdjustInputEdges();
}

void OrvNgNode::setOutputConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>>& positions)
{
    m_OutputTable.m_Positions = positions;
    reAdjustOutputEdges();
}

void OrvNgNode::setConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>>& inputPositions,
    const QHash<QString, QPair<QPoint, QPoint>>& outputPositions)
{
    setInputConnectionPositions(inputPositions);
    setOutputConnectionPositions(outputPositions);
}

void OrvNgNode::setInputConnectionTextPositions(const QHash<QString, float>& positions)
{
    m_InputTable.m_TextPositions = positions;
    reAdjustInputEdges();
}

void OrvNgNode::setOutputConnectionTextPositions(const QHash<QString, float>& positions)
{
    m_OutputTable.m_TextPositions = positions;
    reAdjustOutputEdges();
}

void OrvNgNode::setConnectionTextPositions(
    const QHash<QString, float>& inputPositions, const QHash<QString, float>& outputPositions)
{
    setInputConnectionTextPositions(inputPositions);
    setOutputConnectionTextPositions(outputPositions);
}

void OrvNgNode::setInputConnectionPrettyNames(const QMap<QString, QString>& names)
{
    m_InputTable.m_PrettyNames = names;
    refreshInputTexts();
}

void OrvNgNode::setOutputConnectionPrettyNames(const QMap<QString, QString>& names)
{
    m_OutputTable.m_PrettyNames = names;
    refreshOutputTexts();
}

void OrvNgNode::setConnectionPrettyNames(
    const QMap<QString, QString>& inputNames, const QMap<QString, QString>& outputNames)
{
    setInputConnectionPrettyNames(inputNames);
    setOutputConnectionPrettyNames(outputNames);
}

void OrvNgNode::setInputConnectionDescriptiveNames(const QMap<QString, QString>& names)
{
    m_InputTable.m_DescriptiveNames = names;
}

void OrvNgNode::setOutputConnectionDescriptiveNames(const QMap<QString, QString>& names)
{
    m_OutputTable.m_DescriptiveNames = names;
}

void OrvNgNode::setConnectionDescriptiveNames(
    const QMap<QString, QString>& inputNames, const QMap<QString, QString>& outputNames)
{
    setInputConnectionDescriptiveNames(inputNames);
    setOutputConnectionDescriptiveNames(outputNames);
}

void OrvNgNode::refreshInputTexts()
{
    const QList<OrvNgEdge*> edges = m_Inputs;
    for (OrvNgEdge* edge : edges) {
        if (!edge->prettyText().isEmpty()) // else it has no label on purpose, as a cluster's
            edge->setText(edge->text(), inputPointPrettyName(edge->text()));
    }
}

void OrvNgNode::refreshOutputTexts()
{
    const QList<OrvNgEdge*> edges = m_Outputs;
    for (OrvNgEdge* edge : edges) {
        if (edge->isUnconnectedStub())
            edge->setText(edge->text(), outputPointPrettyName(edge->text()));
    }
}

// Edges of an interaction

OrvNgEdge* OrvNgNode::createVirtualInputEdge(const QString& outputPointName)
{
    removeVirtualInputEdge();
    auto* edge = new OrvNgEdge(true, this, false, virtualEdgeTags());
    edge->leaveHome();
    m_VirtualInputEdge = edge;
    edge->setSourceOutputPoint(outputPointName);
    addToScene(edge);
    edge->setText(outputPointName, inputPointPrettyName(outputPointName));
    return edge;
}

void OrvNgNode::removeVirtualInputEdge()
{
    if (m_VirtualInputEdge)
        m_VirtualInputEdge->destroy();
    m_VirtualInputEdge.clear();
}

OrvNgEdge* OrvNgNode::virtualInputEdge()
{
    return m_VirtualInputEdge;
}

OrvNgEdge* OrvNgNode::createTemporaryOutputEdge(const QString& outputPointName)
{
    if (m_TemporaryOutputEdge)
        m_TemporaryOutputEdge->destroy();
    auto* edge = new OrvNgEdge(false, this, false, {});
    m_Outputs.removeOne(edge);
    m_TemporaryOutputEdge = edge;
    edge->setSourceOutputPoint(outputPointName);
    addToScene(edge);
    edge->setText(outputPointName, outputPointPrettyName(outputPointName));
    return edge;
}

void OrvNgNode::removeTemporaryOutputEdge()
{
    if (m_TemporaryOutputEdge) {
        const QByteArray text = m_TemporaryOutputEdge->text().toLocal8Bit();
        orvNgReport(kFile, kLineTemporaryEdge,
            QString::asprintf("[ -- ] *** Removed temp edge '%s' on node %p", text.constData(),
                static_cast<void*>(this)));
    }
    if (m_TemporaryOutputEdge)
        m_TemporaryOutputEdge->destroy();
    m_TemporaryOutputEdge.clear();
}

OrvNgEdge* OrvNgNode::temporaryOutputEdge()
{
    return m_TemporaryOutputEdge;
}

// Changes of the item

QVariant OrvNgNode::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (m_IsDying)
        return QGraphicsItem::itemChange(change, value);
    switch (change) {
    case ItemPositionChange:
        return QGraphicsItem::itemChange(change, positionChange(value));
    case ItemChildRemovedChange:
        if (value.value<QGraphicsItem*>() == m_InsertionProbe)
            m_InsertionProbe = nullptr;
        Q_FALLTHROUGH();
    case ItemChildAddedChange:
        if (m_BoundsFollowChildren)
            holdBoundsForChange();
        m_BoundsDirty = true;
        notifySceneOfChange();
        break;
    case ItemSceneChange:
        notifySceneOfChange();
        break;
    case ItemSceneHasChanged:
        if (!scene())
            cancelDrag();
        else if (m_HasLeftScene)
            holdBoundsForChange(); // views that did not show it before take no notice of it otherwise
        m_HasLeftScene = !scene();
        followScene();
        notifySceneOfChange();
        break;
    case ItemPositionHasChanged:
        if (!OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::EdgesStayBehind))
            reAdjustEdges();
        notifySceneOfChange();
        break;
    case ItemVisibleHasChanged:
        // The scene also says so once for every new item, at the first event: there all is in place.
        if (m_WasVisible == isVisible())
            break;
        m_WasVisible = isVisible();
        reAdjustEdges();
        showOrHideEdges();
        notifySceneOfChange();
        break;
    case ItemSelectedHasChanged:
        followSelection();
        break;
    default:
        break;
    }
    return QGraphicsItem::itemChange(change, value);
}

/// The scene's slots, which run before the item is told, may have changed the selection again.
void OrvNgNode::followSelection()
{
    if (!isSelected())
        m_SelectionId = -1;
    else if (m_SelectionId == -1)
        m_SelectionId = ++s_SelectionIndex;
}

void OrvNgNode::showOrHideEdges()
{
    QList<OrvNgEdge*> edges = m_Inputs + m_Outputs;
    if (m_VirtualInputEdge)
        edges.append(m_VirtualInputEdge);
    for (OrvNgEdge* edge : qAsConst(edges))
        edge->setVisibilityForItems();
}

// The node's own edges are top-level items: they come and go with the node's scene.
void OrvNgNode::followScene()
{
    OrvNgSceneNodes::enter(this);
    QList<OrvNgEdge*> edges = m_Inputs;
    edges << m_VirtualInputEdge.data() << m_TemporaryOutputEdge.data();
    for (OrvNgEdge* edge : qAsConst(m_Outputs)) {
        if (edge->isUnconnectedStub())
            edges << edge;
    }
    for (OrvNgEdge* edge : qAsConst(edges)) {
        if (!edge || edge->scene() == scene())
            continue;
        if (scene()) {
            scene()->addItem(edge);
            edge->adjust();
        } else {
            edge->scene()->removeItem(edge);
        }
    }
}

void OrvNgNode::notifySceneOfChange()
{
    if (OrvNgView* view = firstView())
        view->contentsChanged();
}

// The first view of the node's scene; null without one, and when it is not ours.
OrvNgView* OrvNgNode::firstView() const
{
    if (!scene())
        return nullptr;
    const QList<QGraphicsView*> views = scene()->views();
    return views.isEmpty() ? nullptr : qobject_cast<OrvNgView*>(views.constFirst());
}

bool OrvNgNode::isAutoInsertOn() const
{
    OrvNgView* view = firstView();
    return !view || view->isAutoInsertOn();
}

// Painting

int OrvNgNode::type() const
{
    return UserType + 1;
}

void OrvNgNode::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget* widget)
{
    updateOutlineWidthScale(widget);
    drawSelectedOutline(painter);
    drawShape(painter);
}

void OrvNgNode::updateOutlineWidthScale(QWidget* widget)
{
    if (auto* view = widget ? qobject_cast<OrvNgView*>(widget->parent()) : nullptr)
        m_OutlineWidthScale = view->onePixelInSceneSpace();
}

void OrvNgNode::drawSelectedOutline(QPainter* painter)
{
    if (!isSelected())
        return;
    painter->setPen(outlinePen(OrvNgStyle::instance().getSelectedNodeColor(),
        kSelectedOutlineWidth * m_OutlineWidthScale));
    painter->setBrush(Qt::NoBrush);
    OrvNgNodeShape::draw(painter, nodeShapeRect(), resolvedShapeType());
}

void OrvNgNode::drawShape(QPainter* painter)
{
    if (hovered())
        painter->setPen(
            outlinePen(hoveredOutlineColor(), kHoveredOutlineWidth * m_OutlineWidthScale));
    else
        painter->setPen(Qt::NoPen);
    painter->setBrush(m_NodeBrush);
    OrvNgNodeShape::draw(painter, nodeShapeRect(), resolvedShapeType());
}

QColor OrvNgNode::hoveredOutlineColor()
{
    return firstColor(m_NodeBrush);
}

QString OrvNgNode::elidedText(const QString& text)
{
    if (text.size() <= kMaxTextLength)
        return text;
    return text.left(kMaxTextLength) + QStringLiteral("...");
}
