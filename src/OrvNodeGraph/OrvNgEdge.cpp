#include "OrvNodeGraph/OrvNgEdge.h"

#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgEdgeEnds.h"
#include "OrvNodeGraph/OrvNgEdgePens.h"
#include "OrvNodeGraph/OrvNgEdgeRouter.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgPlantedFault.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgRollCall.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsPathItem>
#include <QGraphicsPolygonItem>
#include <QGraphicsScene>
#include <QPainter>
#include <QPainterPathStroker>
#include <QPen>

#include <cmath>
#include <limits>
#include <typeinfo>

namespace {

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgEdge";

constexpr double kShapeCurveThreshold = 5.0;
constexpr double kMinimumHitWidth = 1.0;
constexpr double kReach = 1e12; // scene units from the origin
constexpr double kLabelNearSource = 0.1; // while an end is carried the label stays near the cursor
constexpr double kLabelNearDest = 0.9;
constexpr double kLabelCorner = 4.0;
constexpr double kCrossSize = 6.0;
// Empty, but not null: to a scene without views a null rectangle that changes means that everything has changed,
// for which it asks all its items for their bounds.
constexpr QRectF kNoBounds(0.0, 0.0, 0.0, std::numeric_limits<double>::min());
constexpr QRectF kGrabCircleRect(-7.0, -7.0, 14.0, 14.0);

// Farther out there is no route, and lengths would overflow in the end.
bool isInReach(const QPointF& point)
{
    return std::abs(point.x()) <= kReach && std::abs(point.y()) <= kReach;
}

bool isSystemNode(const OrvNgNode* node)
{
    return node && node->isSystemShaderNode();
}

bool isConcealed(const OrvNgNode* node)
{
    return node && (node->isSystemShaderNode() || !node->isVisible());
}

/// An edge's label: the text on a piece of scene background, so that the edge does not strike it through.
class EdgeLabel : public OrvNgLodTextItem
{
public:
    EdgeLabel(const QString& text, QGraphicsItem* parent)
        : OrvNgLodTextItem(text, parent)
    {
        setBrush(OrvNgStyle::instance().getEdgeLabelBrush());
    }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override
    {
        if (!isReadable(painter))
            return;
        painter->setPen(Qt::NoPen);
        painter->setBrush(OrvNgStyle::instance().getSceneBackgroundBrush());
        painter->drawRoundedRect(boundingRect(), kLabelCorner, kLabelCorner);
        OrvNgLodTextItem::paint(painter, option, widget);
    }
};

/// Knows its bounds without stroking its path, as Qt would after every change.
class EdgeLine : public QGraphicsPathItem
{
public:
    QRectF boundingRect() const override
    {
        const double reach = qMax(1.0, pen().widthF());
        return path().controlPointRect().adjusted(-reach, -reach, reach, reach);
    }
};

/// A node that is being deleted takes no more connections; one that is null only takes the present one away.
bool canEndAt(const OrvNgNode* node)
{
    if (!node || !node->isBeingDeleted())
        return true;
    orvNgReport(kFile, __LINE__, QStringLiteral("[ !! ] The node is being deleted"));
    return false;
}

/// One polygon for all arrows, which share its data; the tip is at the origin.
const QPolygonF& arrowShape()
{
    static const QPolygonF s_Shape(
        QVector<QPointF>{{-OrvNgEdge::kArrowLength, OrvNgEdge::kArrowLength / 2},
            {-OrvNgEdge::kArrowLength, -OrvNgEdge::kArrowLength / 2}, {0, 0}});
    return s_Shape;
}

// The rectangle at which edges that do not end at ports stop.
QRectF clipRectInScene(OrvNgNode* node)
{
    return node->mapRectToScene(node->nodeShapeRect());
}

} // namespace

bool OrvNgEdge::Ends::operator==(const Ends& other) const
{
    // Exact, where QPointF would compare with a tolerance.
    return m_Source.x() == other.m_Source.x() && m_Source.y() == other.m_Source.y()
        && m_Dest.x() == other.m_Dest.x() && m_Dest.y() == other.m_Dest.y()
        && m_SourceIsSidePort == other.m_SourceIsSidePort
        && m_DestIsSidePort == other.m_DestIsSidePort;
}

OrvNgEdge::OrvNgEdge(bool nodeIsDestination, OrvNgNode* node, bool flag, const QSet<QString>& tags)
    : m_Tags(tags)
{
    setZValue(kZ);
    setFlags(ItemClipsToShape);
    setAcceptHoverEvents(true);
    setVisible(false);
    setFlag(FlagPreferred, flag);
    m_TextVisible = !OrvNgEdgeEnds::isSidePortNode(node);
    if (!node)
        return;
    if (nodeIsDestination) {
        m_DestNode = node;
        m_HomeNode = node;
        node->registerInputEdge(this);
    } else {
        m_SourceNode = node;
        node->registerOutputEdge(this);
    }
}

OrvNgEdge::~OrvNgEdge()
{
    OrvNgEdge::aboutToBeDestroyed();
}

void OrvNgEdge::aboutToBeDestroyed()
{
    if (m_IsDying)
        return;
    m_IsDying = true;
    OrvNgRollCall::noteChange();
    giveUpMouse();
    if (!OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::EdgeStaysInLists))
        leaveNodes();
}

void OrvNgEdge::destroy()
{
    if (m_IsDestroyed || m_IsDying)
        return;
    m_IsDestroyed = true;
    giveUpMouse();
    leaveNodes();
    setFlag(FlagDragging, false);
    setVisible(false);
    deleteLater();
}

void OrvNgEdge::giveUpMouse()
{
    if (scene() && scene()->mouseGrabberItem() == this)
        ungrabMouse();
}

void OrvNgEdge::setSelected(bool selected, bool withChildren)
{
    setSelected(selected);
    OrvSerializableObject::setSelected(selected, withChildren);
}

// Ends

void OrvNgEdge::setSourceOutputPoint(const QString& outputPoint)
{
    if (m_SourceOutputPoint == outputPoint)
        return;
    m_SourceOutputPoint = outputPoint;
    invalidateAdjustment();
    adjust();
}

void OrvNgEdge::setSourceNode(OrvNgNode* node, const QString& outputPoint)
{
    if (m_IsDestroyed || (m_SourceNode == node && m_SourceOutputPoint == outputPoint)
        || !canEndAt(node))
        return;
    const QPointer<OrvNgNode> oldSource(m_SourceNode);
    const QString oldPoint = m_SourceOutputPoint;
    if (oldSource != node) {
        leaveSource();
        m_SourceNode = node;
        if (node)
            node->registerOutputEdge(this);
    }
    m_SourceOutputPoint = outputPoint;
    connectionChanged(oldSource, oldPoint, m_HomeNode);
}

void OrvNgEdge::setDestNode(OrvNgNode* node)
{
    if (m_IsDestroyed || (m_DestNode == node && m_HomeNode == node) || !canEndAt(node))
        return;
    if (node && node != m_HomeNode && node->inputExists(m_Text)) {
        orvNgReport(kFile, __LINE__,
            QStringLiteral("[ !! ] Input '%1' exists already on node '%2'")
                .arg(m_Text, node->text()));
        return;
    }
    const QPointer<OrvNgNode> oldHome(m_HomeNode);
    leaveHome();
    m_DestNode = node;
    m_HomeNode = node;
    if (node)
        node->registerInputEdge(this);
    connectionChanged(m_SourceNode, m_SourceOutputPoint, oldHome);
}

bool OrvNgEdge::isFullConnected() const
{
    return m_SourceNode && m_DestNode;
}

void OrvNgEdge::detachFromSourceNode()
{
    if (!m_DestNode || !m_SourceNode)
        return;
    setSourceNode(nullptr, QString());
    m_DestNode->notifyInputSourceChange(nullptr, QString(), QString(m_Text));
}

void OrvNgEdge::nodeGone(OrvNgNode* node)
{
    if (m_HomeNode == node || (!m_HomeNode && m_DestNode == node)) {
        destroy();
        return;
    }
    if (m_SourceNode == node)
        outputGone();
}

void OrvNgEdge::outputGone()
{
    if (isUnconnectedStub())
        destroy();
    else
        setSourceNode(nullptr, QString());
}

void OrvNgEdge::leaveSource()
{
    if (m_SourceNode)
        m_SourceNode->m_Outputs.removeOne(this);
    m_SourceNode.clear();
}

void OrvNgEdge::leaveHome()
{
    if (m_HomeNode)
        m_HomeNode->m_Inputs.removeOne(this);
    m_HomeNode.clear();
}

void OrvNgEdge::leaveNodes()
{
    const QPointer<OrvNgNode> source(m_SourceNode);
    const QPointer<OrvNgNode> home(m_HomeNode);
    leaveSource();
    leaveHome();
    m_DestNode.clear();
    refreshSiblings(source, m_SourceOutputPoint, home);
    OrvNgEdgeEnds::connectionsChanged(source);
    OrvNgEdgeEnds::connectionsChanged(home);
}

// The nodes come last: which label of several edges on one line shows depends on which edge does.
void OrvNgEdge::connectionChanged(const QPointer<OrvNgNode>& oldSource, const QString& oldPoint,
    const QPointer<OrvNgNode>& oldHome)
{
    invalidateAdjustment();
    adjust();
    setEdgeColor();
    refreshSiblings(oldSource, oldPoint, oldHome);
    refreshSiblings(m_SourceNode, m_SourceOutputPoint, m_HomeNode);
    OrvNgEdgeEnds::connectionsChanged(m_SourceNode);
    OrvNgEdgeEnds::connectionsChanged(m_DestNode);
    if (oldSource != m_SourceNode)
        OrvNgEdgeEnds::connectionsChanged(oldSource);
    if (oldHome != m_HomeNode)
        OrvNgEdgeEnds::connectionsChanged(oldHome);
}

// Other edges show or hide with this one: the unconnected tail of the same output, and the edges that lie
// on the same line because their nodes merge several points into one place. home is the node whose input
// this edge is, or was.
void OrvNgEdge::refreshSiblings(
    OrvNgNode* source, const QString& outputPoint, const OrvNgNode* home)
{
    if (!source || source->isBeingDeleted())
        return; // all of its edges go
    if (home && home->isBeingDeleted())
        home = nullptr;
    const QList<OrvNgEdge*> edges = source->m_Outputs;
    for (OrvNgEdge* edge : edges) {
        if (edge == this)
            continue;
        const bool isTail = edge->isUnconnectedStub() && edge->m_SourceOutputPoint == outputPoint;
        const bool liesBeside = home && edge->m_DestNode == home
            && !OrvNgEdgeEnds::sharedInputPlace(edge->m_DestNode, edge->m_Text).isEmpty();
        if (isTail || liesBeside)
            edge->setVisibilityForItems();
    }
}

// Text, tags, states

void OrvNgEdge::setText(const QString& text, const QString& prettyText)
{
    if (m_Text != text)
        invalidateAdjustment();
    m_Text = text;
    m_PrettyText = prettyText;
    if (m_Label) {
        m_Label->setText(prettyText);
        positionText(m_LabelFraction); // its size has changed
    }
    adjust();
    updateLabel();
}

void OrvNgEdge::setTextVisible(bool visible)
{
    m_TextVisible = visible;
    updateLabel();
}

void OrvNgEdge::setTags(const QSet<QString>& tags)
{
    if (m_Tags == tags)
        return;
    m_Tags = tags;
    if (m_Pens)
        setupPen(m_Shared);
    invalidateAdjustment();
    adjust();
    setEdgeColor();
    refreshSiblings(m_SourceNode, m_SourceOutputPoint, m_HomeNode);
    OrvNgEdgeEnds::tagsChanged(m_HomeNode);
    OrvNgEdgeEnds::tagsChanged(m_SourceNode);
}

bool OrvNgEdge::isReconnectable() const
{
    return !hasTag(QStringLiteral("_locked"));
}

bool OrvNgEdge::isClustered() const
{
    return OrvNgEdgeEnds::isClusteredInput(m_DestNode, m_Text)
        && OrvNgEdgeEnds::isClusteredOutput(m_SourceNode, m_SourceOutputPoint);
}

bool OrvNgEdge::isConnectedToInputPort() const
{
    return OrvNgEdgeEnds::showsInputPort(m_DestNode, m_Text);
}

bool OrvNgEdge::isConnectedToOutputPort() const
{
    return OrvNgEdgeEnds::showsOutputPort(m_SourceNode, m_SourceOutputPoint);
}

void OrvNgEdge::setFlag(Flag flag, bool on)
{
    m_Flags = on ? (m_Flags | flag) : (m_Flags & ~quint32(flag));
}

void OrvNgEdge::changeState(Flag flag, bool on)
{
    setFlag(flag, on);
    setEdgeColor();
}

void OrvNgEdge::setActivated(bool activated)
{
    changeState(FlagActivated, activated);
}

void OrvNgEdge::setBypassed(bool bypassed)
{
    changeState(FlagBypassed, bypassed);
    updateRareItems();
}

void OrvNgEdge::setSevered(bool severed)
{
    changeState(FlagSevered, severed);
}

void OrvNgEdge::setDebug(bool debug)
{
    changeState(FlagDebug, debug);
}

void OrvNgEdge::setDebugColor(const QColor& color)
{
    m_DebugColor = color;
    if (m_Pens) {
        auto pens = std::make_shared<OrvNgEdgePens>(*m_Pens);
        pens->setDebugColor(color);
        m_Pens = pens;
    }
    setEdgeColor();
}

void OrvNgEdge::markAsShared(bool shared)
{
    setupPen(shared);
    setEdgeColor();
    update();
}

// Look

void OrvNgEdge::setupPen(bool shared)
{
    m_Shared = shared;
    m_Pens = OrvNgEdgePens::get(hasFlag(FlagPreferred), shared, m_DebugColor, m_Tags);
}

const OrvNgEdgePens& OrvNgEdge::pens()
{
    if (!m_Pens)
        setupPen(m_Shared);
    if (!m_Pens)
        m_Pens = std::make_shared<OrvNgEdgePens>(); // a subclass made pens of its own
    return *m_Pens;
}

const QPen& OrvNgEdge::penForState()
{
    OrvNgEdgePens::State state;
    state.m_Debug = hasFlag(FlagDebug) && m_DebugColor.isValid();
    state.m_Severed = hasFlag(FlagSevered);
    state.m_Bypassed = hasFlag(FlagBypassed);
    state.m_Activated = hasFlag(FlagActivated);
    state.m_Clustered = isClustered();
    return pens().forState(state);
}

void OrvNgEdge::setEdgeColor()
{
    if (!m_HasChildren)
        return; // the pen is applied when they are made
    if (!m_Line) {
        orvNgReport(kFile, __LINE__, QStringLiteral("m_line is NULL"));
        return;
    }
    if (!m_Arrow) {
        orvNgReport(kFile, __LINE__, QStringLiteral("m_arrow is NULL"));
        return;
    }
    applyPen(penForState());
}

void OrvNgEdge::applyPen(const QPen& pen)
{
    if (pen.widthF() != m_Line->pen().widthF())
        markShapeDirty();
    m_Line->setPen(pen);
    m_Arrow->setBrush(pen.brush());
}

void OrvNgEdge::hightlightForNodeInsert()
{
    if (!mainEdge())
        return;
    const OrvNgStyle& style = OrvNgStyle::instance();
    applyPen(style.getHighlightForNodeInsertPen());
    m_Arrow->setBrush(style.getHighlightForNodeInsertEdgeBrush());
}

void OrvNgEdge::unHightlightForNodeInsert()
{
    setEdgeColor();
}

void OrvNgEdge::switchToDotableMode(bool on)
{
    if (isSystemNode(m_SourceNode) || isSystemNode(m_DestNode))
        return;
    m_DotableMode = on;
    updateLabel();
    updateRareItems();
    if (m_Marker)
        m_Marker->setRootNode(m_SourceNode);
}

// Visibility

void OrvNgEdge::setVisibilityForItems()
{
    const bool shown = isShownAtAll();
    if (shown && !m_HasChildren)
        initialiseGraphicsItem();
    if (shown != isVisible())
        setVisible(shown);
    updateLabel();
    updateRareItems();
}

bool OrvNgEdge::isShownAtAll() const
{
    if (m_IsDestroyed || m_IsDying)
        return false;
    if (isDragging())
        return true;
    return !isConcealed(m_SourceNode) && !isConcealed(m_DestNode) && !isHiddenByTags()
        && !isHiddenAsUnattached() && !isRepresentedByAnother();
}

bool OrvNgEdge::isHiddenByTags() const
{
    if (m_Tags.isEmpty())
        return false;
    if (hasTag(QStringLiteral("_showIfConnected")))
        return !isFullConnected();
    return hasTag(QStringLiteral("_hidden"));
}

// A node with ports at its sides shows its free ports themselves; elsewhere a free end is drawn as a tail
// where the host gave the point an approach.
bool OrvNgEdge::isHiddenAsUnattached() const
{
    if (isFullConnected())
        return false;
    OrvNgNode* end = m_SourceNode ? m_SourceNode : m_DestNode;
    if (!end || OrvNgEdgeEnds::isSidePortNode(end) || m_Ends.m_Source == m_Ends.m_Dest)
        return true;
    if (!isUnconnectedStub())
        return false;
    for (const OrvNgEdge* edge : qAsConst(end->m_Outputs)) {
        if (edge->m_DestNode && edge->m_SourceOutputPoint == m_SourceOutputPoint)
            return true;
    }
    return false;
}

// Of the edges that lie on top of each other the first in the destination's order is drawn.
bool OrvNgEdge::isRepresentedByAnother() const
{
    const QString destPlace = OrvNgEdgeEnds::sharedInputPlace(m_DestNode, m_Text);
    if (destPlace.isEmpty() || !m_SourceNode)
        return false;
    const QString sourcePlace = OrvNgEdgeEnds::sharedOutputPlace(m_SourceNode, m_SourceOutputPoint);
    if (sourcePlace.isEmpty())
        return false;
    for (const OrvNgEdge* edge : qAsConst(m_DestNode->m_Inputs)) {
        if (edge == this)
            return false;
        if (edge->m_SourceNode == m_SourceNode && !edge->isHiddenByTags()
            && OrvNgEdgeEnds::sharedInputPlace(m_DestNode, edge->m_Text) == destPlace
            && OrvNgEdgeEnds::sharedOutputPlace(m_SourceNode, edge->m_SourceOutputPoint)
                == sourcePlace)
            return true;
    }
    return false;
}

void OrvNgEdge::updateLabel()
{
    const bool shown = m_TextVisible && !m_DotableMode && m_HasChildren && isVisible()
        && !m_PrettyText.isEmpty();
    if (shown && !m_Label) {
        m_Label = new EdgeLabel(m_PrettyText, this);
        positionText(m_LabelFraction);
    }
    if (m_Label)
        m_Label->setVisible(shown);
}

void OrvNgEdge::updateRareItems()
{
    const bool crossed
        = hasFlag(FlagBypassed) && isFullConnected() && !isDragging() && m_HasChildren;
    const bool marked = m_DotableMode && !isDragging();
    const bool circled = looseEnd() == LooseEnd::Source;
    const bool isAnyNew
        = (crossed && !m_CrossLines[0]) || (marked && !m_Marker) || (circled && !m_GrabCircle);
    if (crossed && !m_CrossLines[0])
        makeCrossLines();
    for (QGraphicsLineItem* line : m_CrossLines) {
        if (line)
            line->setVisible(crossed);
    }

    if (marked && !m_Marker)
        m_Marker = new OrvNgDotableMarkerItem(this);
    if (m_Marker)
        m_Marker->setVisible(marked);

    if (circled && !m_GrabCircle)
        makeGrabCircle();
    if (m_GrabCircle)
        m_GrabCircle->setVisible(circled);
    // Those that were there already are placed with the path.
    if (isAnyNew)
        placeMidpointItems();
}

void OrvNgEdge::makeCrossLines()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QPen pen(style.getCrossedOutBypassedEdgeBrush(), qMax(1, style.getBypassedEdgePenWidth()),
        Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    const QLineF falling(-kCrossSize, -kCrossSize, kCrossSize, kCrossSize);
    const QLineF rising(-kCrossSize, kCrossSize, kCrossSize, -kCrossSize);
    m_CrossLines[0] = new QGraphicsLineItem(falling, this);
    m_CrossLines[1] = new QGraphicsLineItem(rising, this);
    for (QGraphicsLineItem* line : m_CrossLines)
        line->setPen(pen);
}

void OrvNgEdge::makeGrabCircle()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    m_GrabCircle = new QGraphicsEllipseItem(kGrabCircleRect, this);
    m_GrabCircle->setBrush(style.getSelectableEdgeBrush());
    m_GrabCircle->setPen(QPen(style.getEdgeColor(), 1.0));
}

// Geometry

void OrvNgEdge::initialiseGraphicsItem()
{
    if (m_HasChildren)
        return;
    m_HasChildren = true;
    m_Line = new EdgeLine;
    m_Arrow = new QGraphicsPolygonItem(arrowShape());
    m_Arrow->setPen(Qt::NoPen);
    applyPen(penForState());
    if (m_RoutePending)
        route();
    // Else the scene would clip to the edge's shape, to paint nothing: a fifth of a frame. A subclass may
    // paint.
    QGraphicsItem::setFlag(ItemHasNoContents, typeid(*this) == typeid(OrvNgEdge));
    // Last: before, nobody had to be told of the children's changes.
    m_Line->setParentItem(this);
    m_Arrow->setParentItem(this);
}

QGraphicsPathItem* OrvNgEdge::mainEdge()
{
    if (!m_HasChildren) {
        initialiseGraphicsItem();
        adjust();
    }
    return m_Line;
}

OrvNgEdge::LooseEnd OrvNgEdge::looseEnd() const
{
    if (!isDragging())
        return LooseEnd::None;
    if (!m_DestNode)
        return LooseEnd::Dest;
    if (!m_SourceNode)
        return LooseEnd::Source;
    return m_Grabbed ? LooseEnd::Dest : LooseEnd::Source;
}

void OrvNgEdge::adjust()
{
    if (m_IsDestroyed || m_IsDying)
        return;
    // A free input shows its port instead: nothing is computed before somebody asks for the edge.
    if (!m_HasChildren && !m_SourceNode && !isDragging()
        && OrvNgEdgeEnds::isSidePortNode(m_DestNode)) {
        setVisible(false);
        return;
    }

    const LooseEnd loose = looseEnd();
    QPointF source = loose == LooseEnd::Source ? m_LoosePoint : m_Ends.m_Source;
    QPointF dest = loose == LooseEnd::Dest ? m_LoosePoint : m_Ends.m_Dest;
    if (m_SourceNode && loose != LooseEnd::Source)
        source = m_SourceNode->outputPortSourcePos(m_SourceOutputPoint);
    if (m_DestNode && loose != LooseEnd::Dest)
        dest = m_DestNode->inputPortDestPos(m_Text);
    if (!m_SourceNode && m_DestNode && loose == LooseEnd::None)
        source = m_DestNode->inputPortSourcePos(m_Text);
    if (!m_DestNode && m_SourceNode && loose == LooseEnd::None)
        dest = m_SourceNode->outputPortDestPos(m_SourceOutputPoint);
    adjust(source, dest, labelFraction());
}

float OrvNgEdge::labelFraction() const
{
    switch (looseEnd()) {
    case LooseEnd::Source:
        return float(kLabelNearSource);
    case LooseEnd::Dest:
        return float(kLabelNearDest);
    case LooseEnd::None:
        break;
    }
    if (m_DestNode && m_DestNode->inputTable().m_TextPositions.contains(m_Text))
        return m_DestNode->inputTable().textPosition(m_Text);
    if (m_SourceNode)
        return m_SourceNode->outputTable().textPosition(m_SourceOutputPoint);
    return 0.5F;
}

void OrvNgEdge::adjust(QPointF source, QPointF dest, float labelFraction)
{
    if (!isInReach(source) || !isInReach(dest) || !std::isfinite(labelFraction))
        return;
    const LooseEnd loose = looseEnd();
    Ends ends;
    ends.m_Source = source;
    ends.m_Dest = dest;
    ends.m_SourceIsSidePort
        = loose != LooseEnd::Source && OrvNgEdgeEnds::isSidePortNode(m_SourceNode);
    ends.m_DestIsSidePort = loose != LooseEnd::Dest && OrvNgEdgeEnds::isSidePortNode(m_DestNode);

    if (m_HasAdjusted && ends == m_Ends) {
        if (m_LabelFraction == double(labelFraction))
            return;
        m_LabelFraction = double(labelFraction);
        positionText(m_LabelFraction);
        finalizeAdjustment();
        return;
    }
    m_HasAdjusted = true;
    m_Ends = ends;
    m_LabelFraction = double(labelFraction);
    m_RoutePending = true;
    if (m_HasChildren)
        route();
    finalizeAdjustment();
}

void OrvNgEdge::route()
{
    m_RoutePending = false;
    markShapeDirty();
    if (m_Ends.m_Source == m_Ends.m_Dest) {
        m_StraightLine = QLineF(m_Ends.m_Source, m_Ends.m_Dest);
        placeChildren(OrvNgEdgeRouter::degenerate(m_Ends.m_Source));
        return;
    }
    const Ends ends = clippedEnds();
    m_StraightLine = QLineF(ends.m_Source, ends.m_Dest);
    placeChildren(routeBetween(ends));
}

OrvNgEdge::Ends OrvNgEdge::clippedEnds() const
{
    Ends ends = m_Ends;
    const QLineF line(m_Ends.m_Source, m_Ends.m_Dest);
    if (!ends.m_DestIsSidePort && m_DestNode && !m_Grabbed)
        OrvNgEdgeRouter::findIntersectionPoint(line, clipRectInScene(m_DestNode), ends.m_Dest);
    const bool bothTopToBottom = !ends.m_SourceIsSidePort && !ends.m_DestIsSidePort;
    if (bothTopToBottom && m_SourceNode && looseEnd() != LooseEnd::Source)
        OrvNgEdgeRouter::findIntersectionPoint(
            QLineF(line.p2(), line.p1()), clipRectInScene(m_SourceNode), ends.m_Source);

    // Overlapping nodes: clipping would turn the edge around.
    const QPointF along = line.p2() - line.p1();
    if (QPointF::dotProduct(ends.m_Dest - ends.m_Source, along) <= 0.0) {
        ends.m_Source = line.p1();
        ends.m_Dest = line.p2();
    }
    return ends;
}

OrvNgEdgeRoute OrvNgEdge::routeBetween(const Ends& ends) const
{
    if (ends.m_SourceIsSidePort && ends.m_DestIsSidePort)
        return OrvNgEdgeRouter::sideToSide(ends.m_Source, ends.m_Dest);
    if (ends.m_SourceIsSidePort)
        return OrvNgEdgeRouter::sideToTop(ends.m_Source, ends.m_Dest);
    if (ends.m_DestIsSidePort)
        return OrvNgEdgeRouter::topToSide(ends.m_Source, ends.m_Dest);
    return OrvNgEdgeRouter::straight(ends.m_Source, ends.m_Dest);
}

void OrvNgEdge::placeChildren(const OrvNgEdgeRoute& route)
{
    m_Line->setPath(route.m_Path);
    m_Arrow->setPos(route.m_ArrowTip);
    // Angles count counter-clockwise, item rotations clockwise.
    m_Arrow->setRotation(-route.m_ArrowAngle);
    positionText(m_LabelFraction);
    placeMidpointItems();
}

void OrvNgEdge::placeMidpointItems()
{
    const bool isPoint = m_StraightLine.p1() == m_StraightLine.p2();
    const QPointF midpoint = isPoint ? m_StraightLine.p1() : m_StraightLine.pointAt(0.5);
    const double rotation = isPoint ? 0.0 : -m_StraightLine.angle();
    QGraphicsItem* const items[] = {m_Marker, m_CrossLines[0], m_CrossLines[1]};
    for (QGraphicsItem* item : items) {
        if (!item)
            continue;
        item->setPos(midpoint);
        item->setRotation(rotation);
    }
    if (m_GrabCircle)
        m_GrabCircle->setPos(m_StraightLine.p1());
}

void OrvNgEdge::positionText(double fraction)
{
    if (m_Label)
        m_Label->setPos(m_StraightLine.pointAt(fraction) - m_Label->boundingRect().center());
}

void OrvNgEdge::finalizeAdjustment()
{
    if (!isFullConnected() || isDragging())
        switchToDotableMode(false);
    setVisibilityForItems();
    update();
}

// The scene has indexed the bounds of the last shape; they are announced before the next is computed.
void OrvNgEdge::markShapeDirty()
{
    announceChange();
    m_ShapeDirty = true;
}

void OrvNgEdge::announceChange()
{
    m_BoundsHeld = true;
    prepareGeometryChange();
    m_BoundsHeld = false;
}

QVariant OrvNgEdge::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSceneHasChanged && !m_IsDying) {
        // Views that did not show it before take no notice of it otherwise.
        if (scene() && m_HasLeftScene)
            announceChange();
        m_HasLeftScene = !scene();
    }
    return QGraphicsItem::itemChange(change, value);
}

void OrvNgEdge::updateShape() const
{
    m_ShapeDirty = false;
    QPainterPathStroker stroker;
    stroker.setCurveThreshold(kShapeCurveThreshold);
    stroker.setWidth(qMax(kMinimumHitWidth, m_Line->pen().widthF()));
    m_Shape = stroker.createStroke(m_Line->path());
    m_Shape.addPath(m_Arrow->mapToParent(m_Arrow->shape()));
    m_ShapeBounds = m_Shape.boundingRect();
}

QPainterPath OrvNgEdge::shape() const
{
    if (m_ShapeDirty)
        updateShape();
    return m_Shape;
}

QRectF OrvNgEdge::boundingRect() const
{
    if (OrvNgRollCall::answers(this, OrvNgRollCall::Kind::Edge))
        return OrvNgRollCall::nowhere();
    if (m_ShapeDirty && !m_BoundsHeld)
        updateShape();
    return m_BoundsHeld && m_ShapeBounds.isNull() ? kNoBounds : m_ShapeBounds;
}

bool OrvNgEdge::allowsFarPicture() const
{
    return typeid(*this) == typeid(OrvNgEdge);
}

void OrvNgEdge::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*)
{
}
