#include "OrvNodeGraph/OrvNgBackdropNode.h"

#include "OrvNodeGraph/OrvNgBackdropNesting.h"
#include "OrvNodeGraph/OrvNgBackdropTitleBarItem.h"
#include "OrvNodeGraph/OrvNgBackdropTitleTextItem.h"
#include "OrvNodeGraph/OrvNgFrameRect.h"
#include "OrvNodeGraph/OrvNgModelSelection.h"
#include "OrvNodeGraph/OrvNgPlantedFault.h"
#include "OrvNodeGraph/OrvNgReport.h"
#include "OrvNodeGraph/OrvNgResizeTriangleItem.h"
#include "OrvNodeGraph/OrvNgSceneNodes.h"
#include "OrvNodeGraph/OrvNgSnapPause.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextColor.h"
#include "OrvNodeGraph/OrvNgView.h"

#include "OrvCore/OrvText.h"

#include <QEvent>
#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsTextItem>
#include <QPainter>
#include <QPen>
#include <QStyleOptionGraphicsItem>
#include <QTextDocument>

#include <cmath>

namespace {

constexpr int kMostLabelCharacters
    = 16384; // shown; breaking a long word into lines takes seconds beyond
constexpr char kFile[] = "src/OrvNodeGraph/OrvNgBackdropNode";
constexpr int kLightGray = 236; // from here on a colour is adjusted to a darker one
constexpr int kAdjustment = 20; // of each channel, 0 to 255
constexpr double kHighlightWidth = 2.0; // screen pixels
constexpr int kBorderShade = 130; // percent, as for QColor::darker()
constexpr int kHandleAlpha = 90;
constexpr double kSamePlace = 1e-9; // scene units; less is rounding

QRectF markerRect()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const float width = style.getAutoInsertItemWidth();
    const float height = style.getAutoInsertItemHeight();
    return QRectF(int(-width / 2.0F), int(-height / 2.0F), int(width), int(height));
}

double levelOfDetail(const QPainter& painter)
{
    return QStyleOptionGraphicsItem::levelOfDetailFromTransform(painter.worldTransform());
}

} // namespace

/// The text in the body. It ends where the frame does, and is not drawn where it could not be read.
class OrvNgBackdropNode::LabelItem : public QGraphicsTextItem
{
public:
    explicit LabelItem(OrvNgBackdropNode* backdrop)
        : QGraphicsTextItem(backdrop)
        , m_LodThreshold(double(OrvNgStyle::instance().getSceneLODSwitchThreshold()))
    {
        // A text item takes drops and hover for its editor, which this one does not have.
        setAcceptDrops(false);
        setAcceptHoverEvents(false);
        setAcceptedMouseButtons(Qt::NoButton);
        document()->setDocumentMargin(0.0); // stands below the title, with its distances
    }

    void setRoom(const QSizeF& room)
    {
        prepareGeometryChange();
        m_Height = room.height();
        setTextWidth(qMax(1.0, room.width()));
    }

    /// The lines, as far as they are inside the frame; without the empty rest beside them.
    bool isOnLines(const QPointF& pos) const
    {
        return !document()->isEmpty()
            && QRectF(0, 0, document()->idealWidth(),
                qMin(QGraphicsTextItem::boundingRect().height(), m_Height))
                   .contains(pos);
    }

    QRectF boundingRect() const override
    {
        QRectF bounds = QGraphicsTextItem::boundingRect();
        const double reach = bounds.height() + backdrop().m_TitleText->mostHeightGrowth();
        bounds.setHeight(qMin(reach, m_Height));
        return bounds;
    }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override
    {
        const double scale = levelOfDetail(*painter);
        if (scale <= m_LodThreshold || backdrop().isMinimapRendering())
            return;
        painter->save();
        painter->setClipRect(boundingRect(), Qt::IntersectClip);
        // The title grows far out; this text makes way, and what is exposed with it.
        const double growth = backdrop().m_TitleText->heightGrowthAt(scale);
        QStyleOptionGraphicsItem moved(*option);
        moved.exposedRect.translate(0.0, -growth);
        painter->translate(0.0, growth);
        QGraphicsTextItem::paint(painter, &moved, widget);
        painter->restore();
    }

private:
    OrvNgBackdropNode& backdrop() const { return *static_cast<OrvNgBackdropNode*>(parentItem()); }

    double m_LodThreshold;
    double m_Height = 0.0;
};

OrvNgBackdropNode::OrvNgBackdropNode(QGraphicsItem* parent)
    : OrvNgNode(parent)
    , m_Label(QStringLiteral("B"))
    , m_NodeBackgroundColour(OrvNgStyle::instance().getBackdropNodeBackgroundColor())
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    setShapeType(ShapeRectangle);
    buildItems();
    OrvNgBackdropNode::setRect(
        QRectF(0, 0, style.getMinimumBackdropNodeWidth(), style.getMinimumBackdropNodeHeight()));
    OrvNgBackdropNode::setCorrectColor();
    setZValue(OrvNgBackdropNesting::zValue(m_ZOrder, style.getBackdropNodeBaseZValue()));
}

OrvNgBackdropNode::~OrvNgBackdropNode()
{
    aboutToBeDestroyed();
}

void OrvNgBackdropNode::buildItems()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    m_TitleBar = new OrvNgBackdropTitleBarItem(this);
    m_TitleText = new OrvNgBackdropTitleTextItem(this);
    m_LabelText = new LabelItem(this);
    m_LabelText->setPlainText(tr("This is a test comment"));
    m_AutoInsertMarker = new QGraphicsEllipseItem(markerRect(), this);
    m_AutoInsertMarker->setVisible(false);
    for (int corner = 0; corner < int(m_Handles.size()); ++corner)
        m_Handles[size_t(corner)]
            = new OrvNgResizeTriangleItem(style.getBackdropNodeResizeAreaPadding(),
                style.getBackdropNodeResizeHoverAreaBrush(), this, Qt::Corner(corner));
}

// Children

QList<QPointer<OrvNgNode>> OrvNgBackdropNode::nodesInside()
{
    QList<QPointer<OrvNgNode>> nodes;
    if (!scene())
        return nodes;
    const QList<QGraphicsItem*> items
        = scene()->items(sceneBoundingRect(), Qt::ContainsItemBoundingRect, Qt::DescendingOrder);
    for (QGraphicsItem* item : items) {
        auto* node = dynamic_cast<OrvNgNode*>(item);
        if (node && node != this)
            nodes.append(node);
    }
    return nodes;
}

bool OrvNgBackdropNode::nodeCanBelongToBackdropChildren(const OrvNgNode* node) const
{
    return node && node->isVisible() && !node->isSystemShaderNode();
}

/// Asking the scene walks every port and text inside, too slow for each move of a resize.
bool OrvNgBackdropNode::hasSameChildren() const
{
    QSet<OrvNgNode*> former;
    for (const QPointer<OrvNgNode>& child : m_Children)
        former.insert(child);
    const QRectF area = sceneBoundingRect();
    const QSet<OrvNgNode*> nodes = OrvNgSceneNodes::nodes(scene());
    int found = 0;
    for (OrvNgNode* node : nodes) {
        if (node == this || !nodeCanBelongToBackdropChildren(node)
            || !area.contains(node->sceneBoundingRect()))
            continue;
        if (!former.contains(node))
            return false;
        ++found;
    }
    return found == former.size();
}

void OrvNgBackdropNode::refreshChildrenList(bool deselectUnused)
{
    const QList<QPointer<OrvNgNode>> formerChildren = m_Children;
    const QList<QPointer<OrvNgNode>> inside = hasSameChildren() ? formerChildren : nodesInside();
    m_Children.clear();
    QList<OrvNgBackdropNode*> backdrops{this};
    for (const QPointer<OrvNgNode>& node : inside)
        addBackdropChildren(node, backdrops);

    const QPointer<OrvNgBackdropNode> self(this);
    if (backdrops.size() > 1)
        raiseInner(backdrops);
    if (self && deselectUnused)
        deselectUnusedChildren(formerChildren);
}

QList<QPointer<OrvNgNode>> OrvNgBackdropNode::refreshedChildrenList(bool deselectUnused)
{
    refreshChildrenList(deselectUnused);
    return m_Children;
}

void OrvNgBackdropNode::addBackdropChildren(OrvNgNode* node, QList<OrvNgBackdropNode*>& backdrops)
{
    if (node == this || !nodeCanBelongToBackdropChildren(node))
        return;
    m_Children.append(node);
    if (auto* backdrop = dynamic_cast<OrvNgBackdropNode*>(node))
        backdrops.append(backdrop);
}

void OrvNgBackdropNode::deselectUnusedChildren(const QList<QPointer<OrvNgNode>>& formerChildren)
{
    QSet<OrvNgNode*> present;
    for (const QPointer<OrvNgNode>& child : qAsConst(m_Children))
        present.insert(child);
    for (const QPointer<OrvNgNode>& node : formerChildren) {
        if (node && !present.contains(node))
            node->setSelected(false);
    }
}

void OrvNgBackdropNode::selectChildren(bool selected)
{
    const QList<QPointer<OrvNgNode>> children = m_Children;
    for (const QPointer<OrvNgNode>& node : children) {
        if (node)
            node->setSelected(selected);
    }
}

// Stacking

void OrvNgBackdropNode::setZOrder(int order)
{
    if (order == m_ZOrder)
        return;
    m_ZOrder = order;
    setZValue(
        OrvNgBackdropNesting::zValue(order, OrvNgStyle::instance().getBackdropNodeBaseZValue()));
    Q_EMIT zOrderChanged(order);
}

void OrvNgBackdropNode::raiseInner(const QList<OrvNgBackdropNode*>& backdrops)
{
    QVector<OrvNgBackdropNesting::Frame> frames;
    QVector<QPointer<OrvNgBackdropNode>> guarded; // listeners of a raised frame may delete others
    for (OrvNgBackdropNode* backdrop : backdrops) {
        frames.append({backdrop->sceneBoundingRect(), backdrop->zValue(), backdrop->zOrder()});
        guarded.append(backdrop);
    }
    const QVector<int> orders = OrvNgBackdropNesting::raisedOrders(
        frames, OrvNgStyle::instance().getBackdropNodeBaseZValue());
    for (int i = 0; i < guarded.size(); ++i) {
        if (guarded.at(i))
            guarded.at(i)->setZOrder(orders.at(i));
    }
}

void OrvNgBackdropNode::restackAmongNeighbours()
{
    QList<OrvNgBackdropNode*> neighbours;
    const QRectF area = sceneBoundingRect();
    const QSet<OrvNgNode*> frames = OrvNgSceneNodes::frames(scene());
    for (OrvNgNode* node : frames) {
        if (!nodeCanBelongToBackdropChildren(node) || !node->sceneBoundingRect().intersects(area))
            continue;
        if (auto* backdrop = dynamic_cast<OrvNgBackdropNode*>(node))
            neighbours.append(backdrop);
    }
    raiseInner(neighbours);
}

// Place and size

/// Children that are items of the frame or of another child move with those.
QVector<OrvNgBackdropNode::Dragged> OrvNgBackdropNode::movableChildren() const
{
    QVector<Dragged> movable;
    movable.reserve(m_Children.size());
    for (const QPointer<OrvNgNode>& child : m_Children) {
        if (!child)
            continue;
        bool isCarried = false;
        for (QGraphicsItem* above = child->parentItem(); above && !isCarried;
             above = above->parentItem())
            isCarried = above == this || m_Children.contains(dynamic_cast<OrvNgNode*>(above));
        if (!isCarried)
            movable.append({child, child->pos()});
    }
    return movable;
}

void OrvNgBackdropNode::placeChildren(const QVector<Dragged>& children, const QPointF& offset)
{
    const OrvNgSnapPause exact;
    for (const Dragged& child : children) {
        const QPointF wanted = child.m_Pos + offset;
        // Selected children have been moved with the frame: a last bit's difference is no move.
        if (child.m_Node && (child.m_Node->pos() - wanted).manhattanLength() > kSamePlace)
            child.m_Node->setPos(wanted);
    }
}

void OrvNgBackdropNode::setPosition(const QPointF& pos)
{
    if (pos == this->pos() || !std::isfinite(pos.x()) || !std::isfinite(pos.y()))
        return;
    const QPointer<OrvNgBackdropNode> self(this);
    refreshChildrenList(false);
    if (!self)
        return;
    const QVector<Dragged> children = movableChildren();
    const QPointF origin = this->pos();
    const OrvNgSnapPause exact;
    setPos(pos);
    if (self)
        placeChildren(children, this->pos() - origin);
}

void OrvNgBackdropNode::setRect(const QRectF& rect)
{
    if (!OrvNgFrameRect::isFinite(rect))
        return;
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QRectF wanted = OrvNgFrameRect::atLeast(
        rect, QSizeF(style.getMinimumBackdropNodeWidth(), style.getMinimumBackdropNodeHeight()));
    if (!OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::BoundsUnannounced))
        prepareGeometryChange();
    m_Rect = wanted;
    layOutItems();
    reAdjustEdges();
    notifySceneOfChange();
}

void OrvNgBackdropNode::resizeNode(const QSizeF& size)
{
    setRect(QRectF(m_Rect.topLeft(), size));
}

void OrvNgBackdropNode::wrapAroundSelection(const QRectF& sceneRect, bool withPadding)
{
    if (!OrvNgFrameRect::isFinite(sceneRect))
        return;
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QRectF inner = sceneRect.normalized();
    const QPointF offset = withPadding ? style.getBackdropNodeWrapAroundTopLeft()
                                       : style.getBackdropNodeWrapAroundTopLeftNoPadding();
    const double bar = double(style.getBackdropNodeTitleBarHeight());
    const int padding = style.getBackdropNodeWrapAroundPadding();
    {
        const OrvNgSnapPause exact;
        setPos(inner.topLeft() - offset - QPointF(0.0, bar));
    }
    resizeNode(inner.size() + QSizeF(offset.x() + padding, offset.y() + bar + padding));
}

void OrvNgBackdropNode::wrapAroundNodes(const QRectF& sceneRect, const QList<OrvNgNode*>& nodes)
{
    QRectF area = sceneRect;
    if (area.isEmpty()) {
        area = QRectF();
        const QSet<OrvNgNode*> known = OrvNgSceneNodes::nodes(scene());
        for (OrvNgNode* node : nodes) {
            if (node != this && known.contains(node)) // a deleted node is not known
                area |= node->sceneBoundingRect();
        }
    }
    if (area.isEmpty())
        return;
    wrapAroundSelection(area, true);
    refreshChildrenList(false);
}

void OrvNgBackdropNode::replace(OrvNgNode* other)
{
    auto* otherBackdrop = dynamic_cast<OrvNgBackdropNode*>(other);
    if (!otherBackdrop) {
        orvNgReport(kFile, __LINE__, QStringLiteral("otherBackdrop is NULL"));
        return;
    }
    OrvNgNode::replace(otherBackdrop);
    otherBackdrop->resizeNode(m_Rect.size());
}

// Look

float OrvNgBackdropNode::titleBarHeight()
{
    return OrvNgStyle::instance().getBackdropNodeTitleBarHeight();
}

void OrvNgBackdropNode::layOutItems()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QPointF leftTop = style.getBackdropNodeTitleBarPaddingLeftTop();
    const QPointF rightBottom = style.getBackdropNodeTitleBarPaddingRightBottom();
    m_TitleBar->setRect(QRectF(
        m_Rect.topLeft(), QSizeF(m_Rect.width(), qMin(double(titleBarHeight()), m_Rect.height()))));
    m_TitleText->setPos(m_Rect.topLeft() + leftTop);
    m_TitleText->setRoom(
        m_Rect.size() - QSizeF(leftTop.x() + rightBottom.x(), leftTop.y() + rightBottom.y()));
    m_AutoInsertMarker->setPos(m_Rect.center());
    positionLabelText();

    const double size = m_Handles.front()->boundingRect().width();
    const QRectF places = m_Rect.adjusted(0, 0, -size, -size);
    m_Handles[Qt::TopLeftCorner]->setPos(places.topLeft());
    m_Handles[Qt::TopRightCorner]->setPos(places.topRight());
    m_Handles[Qt::BottomLeftCorner]->setPos(places.bottomLeft());
    m_Handles[Qt::BottomRightCorner]->setPos(places.bottomRight());
}

void OrvNgBackdropNode::positionLabelText()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QPointF leftTop = style.getBackdropNodeTitleBarPaddingLeftTop();
    const QPointF rightBottom = style.getBackdropNodeTitleBarPaddingRightBottom();
    const double top = m_TitleBar->rect().height() + leftTop.y();
    m_LabelText->setPos(m_Rect.topLeft() + QPointF(leftTop.x(), top));
    m_LabelText->setRoom(QSizeF(m_Rect.width() - leftTop.x() - rightBottom.x(),
        qMax(0.0, m_Rect.height() - top - rightBottom.y())));
}

QColor OrvNgBackdropNode::adjustedBackgroundColor()
{
    const QColor& color = m_NodeBackgroundColour;
    const int change = qGray(color.rgb()) < kLightGray ? kAdjustment : -kAdjustment;
    return QColor(qBound(0, color.red() + change, 255), qBound(0, color.green() + change, 255),
        qBound(0, color.blue() + change, 255), color.alpha());
}

void OrvNgBackdropNode::setNodeBackgroundColour(const QColor& color)
{
    if (!color.isValid())
        return;
    m_NodeBackgroundColour = color.toRgb();
    m_HasOwnColour = true;
    setCorrectColor();
    update();
}

void OrvNgBackdropNode::setCorrectColor()
{
    setNodeBrush(m_NodeBackgroundColour);
    updateChildColors();
}

void OrvNgBackdropNode::updateChildColors()
{
    setSelectedBrush(isSelected());
}

void OrvNgBackdropNode::setSelectedBrush(bool selected)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const QBrush bar = selected ? style.getSelectedNodeBrush()
        : m_HasOwnColour        ? QBrush(adjustedBackgroundColor())
                                : style.getBackdropNodeTitleBarBrush();
    QColor onBar = OrvNgTextColor::on(bar.color());
    QColor onBody = OrvNgTextColor::on(m_NodeBackgroundColour);
    m_TitleBar->setBrush(bar);
    m_TitleText->setBrush(onBar);
    m_LabelText->setDefaultTextColor(onBody);
    if (!m_HasOwnColour) {
        for (OrvNgResizeTriangleItem* handle : m_Handles)
            handle->setFillColor(style.getBackdropNodeResizeHoverAreaBrush().color());
        return;
    }
    // The handles stand on bar and body in their texts' colours, only fainter.
    onBar.setAlpha(kHandleAlpha);
    onBody.setAlpha(kHandleAlpha);
    m_Handles[Qt::TopLeftCorner]->setFillColor(onBar);
    m_Handles[Qt::TopRightCorner]->setFillColor(onBar);
    m_Handles[Qt::BottomLeftCorner]->setFillColor(onBody);
    m_Handles[Qt::BottomRightCorner]->setFillColor(onBody);
}

void OrvNgBackdropNode::setLabel(const QString& text)
{
    m_Label = text;
    if (OrvIsHtmlText(m_Label)) {
        OrvReplaceConsecutiveSpacesWithNbsp(m_Label);
        m_LabelText->setHtml(m_Label.left(kMostLabelCharacters));
    } else {
        m_LabelText->setPlainText(m_Label.left(kMostLabelCharacters));
    }
    positionLabelText();
}

void OrvNgBackdropNode::setTitleText(const QString& title)
{
    setObjectName(title);
    m_TitleText->setTitleText(title);
}

QString OrvNgBackdropNode::text()
{
    return m_TitleText->text();
}

void OrvNgBackdropNode::hightlightBackdropForNodeInsert()
{
    m_IsHighlighted = true;
    update();
}

void OrvNgBackdropNode::unHightlightBackdropForNodeInsert()
{
    m_IsHighlighted = false;
    update();
}

QColor OrvNgBackdropNode::hoveredOutlineColor()
{
    return adjustedBackgroundColor();
}

bool OrvNgBackdropNode::isMinimapRendering() const
{
    const QList<QGraphicsView*> views = scene() ? scene()->views() : QList<QGraphicsView*>();
    const auto* view = views.isEmpty() ? nullptr : qobject_cast<OrvNgView*>(views.constFirst());
    return view && view->isMinimapRendering();
}

void OrvNgBackdropNode::drawShape(QPainter* painter)
{
    OrvNgNode::drawShape(painter);
    // Far out the title grows, and its bar with it.
    const QRectF bar = m_TitleBar->rect();
    const double growth = m_TitleText->heightGrowthAt(levelOfDetail(*painter));
    if (growth > 0.0 && !isMinimapRendering())
        painter->fillRect(
            QRectF(bar.bottomLeft(), QSizeF(bar.width(), growth)), m_TitleBar->brush());

    painter->setBrush(Qt::NoBrush);
    QPen border(m_NodeBackgroundColour.darker(kBorderShade), 0.0);
    if (m_IsHighlighted)
        border = QPen(OrvNgStyle::instance().getHighlightForNodeInsertEdgeColor(),
            kHighlightWidth * outlineWidthScale());
    border.setJoinStyle(Qt::MiterJoin);
    if (!m_IsHighlighted && hovered())
        return;
    const double inset = border.widthF() / 2.0;
    painter->setPen(border);
    painter->drawRect(m_Rect.adjusted(inset, inset, -inset, -inset));
}

QPainterPath OrvNgBackdropNode::shape() const
{
    QPainterPath path;
    path.addRect(m_Rect);
    return path;
}

// Events

void OrvNgBackdropNode::setSelected(bool selected, bool withChildren)
{
    const QPointer<OrvNgBackdropNode> self(this);
    OrvNgNode::setSelected(selected, withChildren);
    if (self && withChildren)
        selectChildren(selected);
}

QVariant OrvNgBackdropNode::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedChange) {
        OrvNgModelSelection::tell(parent(), value.toBool(), m_IsTellingParent);
        setSelectedBrush(value.toBool());
    } else if (change == ItemSelectedHasChanged) {
        m_TitleBar->setSelected(value.toBool());
    }
    return OrvNgNode::itemChange(change, value);
}

bool OrvNgBackdropNode::sceneEvent(QEvent* event)
{
    if (event->type() == QEvent::UngrabMouse)
        endDrag();
    return OrvNgNode::sceneEvent(event);
}

bool OrvNgBackdropNode::isOnText(const QPointF& pos) const
{
    return m_TitleText->contains(m_TitleText->mapFromParent(pos))
        || m_LabelText->isOnLines(m_LabelText->mapFromParent(pos))
        || (m_AutoInsertMarker->isVisible()
            && m_AutoInsertMarker->contains(m_AutoInsertMarker->mapFromParent(pos)));
}

void OrvNgBackdropNode::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        OrvNgNode::mousePressEvent(event);
        return;
    }
    const bool isOnTexts = isOnText(event->pos());
    if (!isOnTexts && !m_TitleBar->rect().contains(event->pos())) {
        event->ignore(); // for what lies below, or a band
        return;
    }
    const QPointer<OrvNgBackdropNode> self(this);
    refreshChildrenList(false);
    if (!self)
        return;
    const bool selects = isSelectMousePressEvent(event);
    OrvNgNode::mousePressEvent(event);
    if (self && selects && !isOnTexts)
        selectChildren(isSelected());
    if (self)
        startDrag();
}

void OrvNgBackdropNode::startDrag()
{
    m_IsDragging = true;
    m_DragOrigin = pos();
    m_Dragged = movableChildren();
    for (const QPointer<OrvNgNode>& child : qAsConst(m_Children)) {
        if (child)
            child->savePosition();
    }
}

void OrvNgBackdropNode::endDrag()
{
    m_IsDragging = false;
    m_Dragged.clear();
}

void OrvNgBackdropNode::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    const QPointer<OrvNgBackdropNode> self(this);
    OrvNgNode::mouseMoveEvent(event);
    if (self && m_IsDragging && event->buttons().testFlag(Qt::LeftButton)) {
        const QVector<Dragged> children = m_Dragged;
        placeChildren(children, pos() - m_DragOrigin);
    }
}

void OrvNgBackdropNode::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    const bool isMoved = m_IsDragging && pos() != m_DragOrigin;
    if (event->button() == Qt::LeftButton)
        endDrag();
    const QPointer<OrvNgBackdropNode> self(this);
    OrvNgNode::mouseReleaseEvent(event);
    if (self && isMoved && event->button() == Qt::LeftButton)
        restackAmongNeighbours();
}
