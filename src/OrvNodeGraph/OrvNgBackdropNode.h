#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

#include <QVector>

#include <array>

class OrvNgBackdropTitleBarItem;
class OrvNgBackdropTitleTextItem;
class OrvNgResizeTriangleItem;
class QGraphicsEllipseItem;
class QGraphicsTextItem;

/// A frame around a group of nodes: a coloured rectangle with a title bar, a label below it and a handle in
/// each corner. Nodes that lie wholly inside are its children for as long as they stay there.
///
/// A press on the title bar selects the frame with its children, by the modifier keys as for every node; a
/// drag by the title bar or the texts moves exactly the children that were inside at the press, selected or
/// not. The body lets presses through. Frames may nest; inner ones are stacked above outer ones, and all of
/// them below edges and nodes.
///
/// Children are not tracked: they are collected at each press, setPosition() and resize, and by
/// refreshChildrenList().
///
/// Called by  the host, OrvNgNode (highlight while a node is dragged over), OrvNgResizeTriangleItem.
/// Uses       OrvNgBackdropNesting, OrvNgStyle, the host's snap setting and test for rich text.
/// Tells      listeners of zOrderChanged; its parent object its selection; the rest as every node.
class ORVNODEGRAPH_EXPORT OrvNgBackdropNode : public OrvNgNode
{
    Q_OBJECT

public:
    explicit OrvNgBackdropNode(QGraphicsItem* parent);
    ~OrvNgBackdropNode() override;

    // Children

    /// The nodes wholly inside, whether or not they may be children, topmost first. Empty without a scene.
    QList<QPointer<OrvNgNode>> nodesInside();
    /// Not for null, hidden nodes and system shader nodes.
    bool nodeCanBelongToBackdropChildren(const OrvNgNode* node) const;
    /// Collects the children anew and lifts nested frames above the frames around them; a second call changes
    /// nothing. deselectUnused deselects those that are children no longer.
    void refreshChildrenList(bool deselectUnused);
    QList<QPointer<OrvNgNode>> refreshedChildrenList(bool deselectUnused);
    /// As of the last refresh; entries of deleted nodes are null.
    QList<QPointer<OrvNgNode>> childrenList() { return m_Children; }
    /// Adds a node that may be a child, and to backdrops if it is one.
    void addBackdropChildren(OrvNgNode* node, QList<OrvNgBackdropNode*>& backdrops);
    void deselectUnusedChildren(const QList<QPointer<OrvNgNode>>& formerChildren);
    void selectChildren(bool selected);

    // Stacking

    /// The nesting level; it decides the z value. Levels beyond 899 are not stacked any higher.
    void setZOrder(int order);
    int zOrder() { return m_ZOrder; }
    /// Lifts frames that lie inside others above those, among all frames that meet this one. The end of a
    /// drag or resize calls it; children lists stay as they are.
    void restackAmongNeighbours();

    // Place and size

    /// Moves the frame and what is inside it, exactly, whatever the grid. For moves by program.
    void setPosition(const QPointF& pos);
    /// The frame's rectangle in its own coordinates, at least of the style's minimum size. What is not
    /// finite is ignored.
    void setRect(const QRectF& rect);
    /// Keeps the top left corner.
    void resizeNode(const QSizeF& size);
    /// Remembers the rectangle for the undo step of a resize.
    void saveBoundingRect() { m_PreviousBoundingRect = boundingRect(); }
    QRectF previousBoundingRect() { return m_PreviousBoundingRect; }
    /// Puts the frame around a rectangle in scene coordinates, with the style's distances. Moves no child.
    void wrapAroundSelection(const QRectF& sceneRect, bool withPadding);
    /// The same around nodes when the rectangle is empty, with padding, and collects the children. Nodes
    /// that are not in the frame's scene do not count.
    void wrapAroundNodes(const QRectF& sceneRect, const QList<OrvNgNode*>& nodes);
    /// Gives another backdrop, besides place and connections, this one's size. Anything else is reported.
    void replace(OrvNgNode* other) override;

    // Look

    /// A shade of the frame's colour, lighter, or darker for very light colours.
    QColor adjustedBackgroundColor();
    /// An invalid colour is ignored.
    void setNodeBackgroundColour(const QColor& color);
    QColor nodeBackgroundColour() { return m_NodeBackgroundColour; }
    /// Gives title bar, texts and handles the colours that go with the present ones.
    void updateChildColors();
    void setSelectedBrush(bool selected);

    /// The text below the title bar, rich text as such; "B" until set, while a placeholder shows.
    void setLabel(const QString& text);
    QString label() { return m_Label; }
    /// The title, also the object's name.
    void setTitleText(const QString& title);
    void positionLabelText();
    /// Scene units.
    float titleBarHeight();

    /// The title.
    void setText(const QString& text) override { setTitleText(text); }
    QString text() override;
    // The states are kept but have no look.
    void setLocked(bool locked) override { showState(StateLocked, locked); }
    void setBypassed(bool bypassed) override { showState(StateBypassed, bypassed); }
    void setCached(bool cached) override { showState(StateCached, cached); }
    QBrush nodeUniColour() override { return nodeBrush(); }
    void setCorrectColor() override;

    bool isBackdrop() const override { return true; }
    void hightlightBackdropForNodeInsert() override;
    void unHightlightBackdropForNodeInsert() override;

    using OrvNgNode::setSelected;
    /// Selects or deselects the frame, on demand with its children as of the last refresh.
    void setSelected(bool selected, bool withChildren) override;

    /// Whether the first view of the scene renders its minimap at the moment.
    bool isMinimapRendering() const;

    QRectF boundingRect() const override { return m_Rect; }
    QPainterPath shape() const override;

Q_SIGNALS:
    void zOrderChanged(int order);

protected:
    void drawShape(QPainter* painter) override;
    QColor hoveredOutlineColor() override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    bool sceneEvent(QEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;

private:
    class LabelItem;
    struct Dragged
    {
        QPointer<OrvNgNode> m_Node;
        QPointF m_Pos; ///< when the drag began, in its parent's coordinates
    };

    void buildItems();
    void layOutItems();
    bool hasSameChildren() const;
    bool isOnText(const QPointF& pos) const;
    QVector<Dragged> movableChildren() const;
    void startDrag();
    void endDrag();
    static void placeChildren(const QVector<Dragged>& children, const QPointF& offset);
    void raiseInner(const QList<OrvNgBackdropNode*>& backdrops);

    OrvNgBackdropTitleBarItem* m_TitleBar = nullptr;
    OrvNgBackdropTitleTextItem* m_TitleText = nullptr;
    LabelItem* m_LabelText = nullptr;
    QGraphicsEllipseItem* m_AutoInsertMarker = nullptr;
    std::array<OrvNgResizeTriangleItem*, 4> m_Handles{}; ///< by Qt::Corner
    QString m_Label;
    QColor m_NodeBackgroundColour;
    bool m_HasOwnColour = false;
    QRectF m_Rect;
    QRectF m_PreviousBoundingRect;
    QList<QPointer<OrvNgNode>> m_Children;
    int m_ZOrder = 0;
    bool m_IsHighlighted = false;
    bool m_IsTellingParent = false;
    bool m_IsDragging = false; ///< between a press that may move the frame and its release
    QPointF m_DragOrigin; ///< pos() at the press
    QVector<Dragged> m_Dragged;
};
