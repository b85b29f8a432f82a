#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

#include <QLineF>
#include <QPainterPath>
#include <QPen>

#include <memory>

class OrvNgDotableMarkerItem;
class OrvNgEdgePens;
class OrvNgLodTextItem;
class QAction;
class QGraphicsEllipseItem;
class QGraphicsLineItem;
class QGraphicsPathItem;
class QGraphicsPolygonItem;
struct OrvNgEdgeRoute;

/// One connection from an output point of a source node to an input of a destination node, and at the same
/// time the input itself: every input of a node is one edge object for the node's whole life, free while it
/// has no source. An edge also stands for an unconnected output (no destination), the edge being pulled
/// out of an output, and the virtual edge of a node.
///
/// The edge paints nothing itself: path, arrow, label and the rarer parts are child items, made when the
/// edge is first shown, the rarer ones when first needed. Before that boundingRect() and shape() are empty;
/// mainEdge() makes path and arrow at once. All points are scene coordinates; the edge itself stays at
/// (0, 0).
///
/// Tags, given at construction or with setTags():
///   "_hidden"           not shown, unless "_showIfConnected" is there too
///   "_showIfConnected"  shown only while both ends are attached
///   "_locked"           cannot be picked up or reconnected by the user
///   "_dotted", "_thin"  how the pens draw
///
/// Who hears of a change: operations of the user notify the destination node
/// (OrvNgNode::notifyInputSourceChange); the setters that hosts call are silent.
///
/// Called by  the nodes at its ends (adjust), the host (setSourceNode), OrvNgView (hover, cutting).
/// Uses       OrvNgEdgeRouter for its path, OrvNgEdgePens for its pens, OrvNgEdgeEnds for its end nodes,
///            OrvNgEdgeDrop and OrvNgEdgeWiring for what the user does.
/// Tells      the nodes at its ends, which tell the host.
class ORVNODEGRAPH_EXPORT OrvNgEdge : public OrvSerializableObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    static constexpr double kArrowLength = 15.0;
    static constexpr double kArrowSafeLength
        = 11.25; ///< how far before the tip a straight line ends

    /// Attaches the edge to node, as its destination or as its source, and enters it into that node's list.
    /// flag marks the preferred (main) input. The caller adds the edge to the scene.
    OrvNgEdge(bool nodeIsDestination, OrvNgNode* node, bool flag, const QSet<QString>& tags);
    ~OrvNgEdge() override;

    using QGraphicsItem::isSelected;
    using QGraphicsItem::setSelected;
    /// The object's selection is the item's.
    void setSelected(bool selected, bool withChildren) override;

    // Ends

    /// Null for a free input, or while the source end is loose.
    OrvNgNode* sourceNode() const { return m_SourceNode; }
    /// Null for an unconnected output, or while the destination end is carried.
    OrvNgNode* destNode() const { return m_DestNode; }
    const QString& sourceOutputPoint() const { return m_SourceOutputPoint; }
    /// Stores the output point and re-adjusts.
    void setSourceOutputPoint(const QString& outputPoint);
    /// Connects, reconnects or (null) frees the source end. Silent; a call with the present values does nothing.
    void setSourceNode(OrvNgNode* node, const QString& outputPoint);
    /// Gives the edge another destination, whose input it becomes. Silent.
    void setDestNode(OrvNgNode* node);
    bool isFullConnected() const;

    /// Frees the source end of an edge that has a destination, which is notified.
    void detachFromSourceNode();
    /// Lets the destination end hang loose. The node keeps the edge among its inputs and gets it back at the
    /// end of the drag, so nobody is notified yet. grabEdge() follows.
    void detachFromDestNode();

    /// Leaves both nodes, hides, and deletes the edge later, from the event loop. Silent; a second call does
    /// nothing.
    virtual void destroy();

    // What the user does. The host hears of every input that changed; what replaces a connection is gathered
    // in one undo step. Refused where an end is null or the same node, an edge is locked, or the destination
    // does not accept it (OrvNgNode::acceptsInputSource): nothing changes then.

    /// Connects the source end.
    void setNewSourceNodeToEdge(OrvNgNode* node, const QString& outputPointName);
    /// Gives the input inputName of node this edge's source, and frees the input this edge stands for.
    void setNewDestNodeToEdge(OrvNgNode* node, const QString& inputName);
    /// Puts a node between the ends of this edge: freeInput, one of its inputs, gets this edge's source, and
    /// this edge gets the node's first output.
    void insertNodeIntoEdge(OrvNgNode* node, OrvNgEdge* freeInput);

    // Text, tags, states

    /// The text is the input's name (an output's for an unconnected edge); the pretty text is the label.
    virtual void setText(const QString& text, const QString& prettyText);
    QString text() const { return m_Text; }
    QString prettyText() const { return m_PrettyText; }
    void setTextVisible(bool visible);
    bool isTextVisible() const { return m_TextVisible; }

    bool hasTag(const QString& tag) const { return m_Tags.contains(tag); }
    void setTags(const QSet<QString>& tags);
    /// False exactly for an edge with the tag "_locked".
    bool isReconnectable() const;
    /// Both ends attach to clustered ports of nodes in the grouped mode.
    bool isClustered() const;
    bool isConnectedToInputPort() const;
    bool isConnectedToOutputPort() const;

    void setActivated(bool activated);
    bool isActivated() const { return hasFlag(FlagActivated); }
    void setBypassed(bool bypassed);
    void setSevered(bool severed);
    void setDebug(bool debug);
    void setDebugColor(const QColor& color);
    void markAsShared(bool shared);

    // Look

    /// Copies the pens from the style again.
    virtual void setupPen(bool shared);
    /// Applies the pen of the present state to path and arrow.
    void setEdgeColor();
    void hightlightForNodeInsert();
    void unHightlightForNodeInsert();
    /// Shows whether a press at pos, in edge coordinates, would pick an end up. The view calls it while the
    /// mouse moves over the edge, and once more with a point elsewhere when it has left.
    void highlightEdgeBasedOnClosestNode(const QPointF& pos);
    /// Shows and hides edge and children by tags, state and what the end nodes show.
    void setVisibilityForItems();
    /// Shows the marker at which a dot can be inserted in place of the label. Without effect on the edges of
    /// system shader nodes.
    void switchToDotableMode(bool on);

    // Geometry

    /// Follows the end nodes. A missing end lies at the other node's approach point; a loose end stays
    /// where the cursor left it.
    virtual void adjust();
    /// Recomputes the geometry for two end points; labelFraction (0 source, 1 destination) places the label.
    void adjust(QPointF source, QPointF dest, float labelFraction);
    /// The item that draws the path, made now if the edge has not been shown yet.
    QGraphicsPathItem* mainEdge();

    // Dragging an end

    /// Starts to carry an end: with isOutput the destination end, else the source end; fromPort says that
    /// the drag was pulled out of a port and goes on until the next press. pos is in edge coordinates.
    void grabEdge(const QPointF& pos, bool fromPort, bool isOutput);
    /// Ends the drag at a point, on what lies there: an end dropped on another point moves the connection, an
    /// end dropped on nothing frees the input, and one that is refused, or dropped by a port drag on nothing,
    /// or cancelled, goes back. Of several points that fit the user chooses in a menu at globalPos (screen
    /// pixels). Nothing happens without a drag. The edge may be gone afterwards.
    void releaseMouse(const QPoint& globalPos, const QPointF& scenePos, bool cancelled);
    bool isGrabbed() const { return m_Grabbed; }
    bool isGrabbedFromPort() const { return m_GrabbedFromPort; }
    /// An end is on the cursor, whichever it is.
    bool isDragging() const { return hasFlag(FlagDragging); }

    // QGraphicsItem

    /// Whether the view may draw path and arrow itself, far out (OrvNgNode::allowsFarPicture()).
    virtual bool allowsFarPicture() const;
    QPainterPath shape() const override;
    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

public Q_SLOTS:
    /// An entry of the menu of a drop: its properties "nodeUnderThis" and "inputName" or "outputPointName" say
    /// what was chosen. Without effect while no such menu is open.
    void onInputPointSelected(QAction* action);
    void onOutputPointSelected(QAction* action);

protected:
    enum class DropResult {
        NoTarget, ///< nothing lies there
        Connected, ///< made, or there already
        Refused
    };

    /// The end node that a press at pos, in edge coordinates, picks off; null for none.
    OrvNgNode* getClosestNodeToMouseClick(const QPointF& pos);
    /// Looks for a target among the items at the loose end and connects to it; may open a menu.
    DropResult checkAndCreateNewConnectionFromEdgeToNode(
        const QList<QGraphicsItem*>& items, const QPoint& globalPos, const QPointF& scenePos);
    /// Whether the cursor has left the port out of which it pulled the edge.
    bool hasLeftPort() const { return m_Drag && m_Drag->m_LeftPort; }

    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    bool sceneEvent(QEvent* event) override;
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;

    /// Makes path and arrow.
    void initialiseGraphicsItem();
    void finalizeAdjustment();
    /// Centres the label on the straight line between the ends, at a fraction of its length.
    void positionText(double fraction);
    /// First statement of every concrete class's destructor.
    void aboutToBeDestroyed();

private:
    friend class OrvNgNode;
    friend struct OrvNgFarEdge;

    enum Flag : quint32 {
        FlagDragging = 1U << 0,
        FlagBypassed = 1U << 1,
        FlagActivated = 1U << 2,
        FlagPreferred = 1U << 3,
        FlagDebug = 1U << 4,
        FlagSevered = 1U << 5
    };
    enum class LooseEnd { None, Source, Dest };
    static constexpr double kZ = -1.0; // always below nodes
    static constexpr double kCarriedZ = 1e4; // above everything: what the user carries is in sight
    struct Ends
    {
        QPointF m_Source;
        QPointF m_Dest;
        bool m_SourceIsSidePort = false;
        bool m_DestIsSidePort = false;
        bool operator==(const Ends& other) const;
    };

    /// What a drag must be able to put back.
    struct Drag
    {
        QPointer<OrvNgNode> m_LiftedSource; ///< of a carried source end, with its output
        QString m_LiftedPoint;
        QPointer<OrvNgNode> m_MenuNode; ///< whose points the open menu offers
        bool m_IsLifted = false;
        bool m_WasConnected = false;
        bool m_LeftPort = false;
        bool m_IsReleasing = false;
    };

    bool hasFlag(Flag flag) const { return (m_Flags & flag) != 0; }
    void setFlag(Flag flag, bool on);
    void changeState(Flag flag, bool on);
    LooseEnd looseEnd() const;
    bool isUnconnectedStub() const { return !m_DestNode && !m_HomeNode; }

    LooseEnd endAt(const QPointF& pos);
    Drag& startDrag();
    void liftSource();
    void followMouse(const QPointF& scenePos);
    bool comeHome();
    void cancelIfAbandoned();
    void tellFreed();
    void removeIfTemporary();
    void release(const QGraphicsSceneMouseEvent* event, bool cancelled);
    QList<QGraphicsItem*> itemsAtLooseEnd() const;
    DropResult dropDest(OrvNgNode* node, const QString& input, const QPoint& globalPos);
    DropResult dropSource(OrvNgNode* node, const QString& output, const QPoint& globalPos);
    DropResult choose(
        LooseEnd end, OrvNgNode* node, const QStringList& points, const QPoint& globalPos);
    void takeChoice(LooseEnd end, const QAction* action, const char* property);
    DropResult settleOn(LooseEnd end, OrvNgNode* node, const QString& point);
    bool isPresentSource(const OrvNgNode* node, const QString& output) const;

    void nodeGone(OrvNgNode* node);
    void outputGone();
    void giveUpMouse();
    void leaveSource();
    void leaveHome();
    void leaveNodes();
    void connectionChanged(const QPointer<OrvNgNode>& oldSource, const QString& oldPoint,
        const QPointer<OrvNgNode>& oldHome);
    void refreshSiblings(OrvNgNode* source, const QString& outputPoint, const OrvNgNode* home);

    void invalidateAdjustment() { m_HasAdjusted = false; }
    float labelFraction() const;
    void route();
    Ends clippedEnds() const;
    OrvNgEdgeRoute routeBetween(const Ends& ends) const;
    void placeChildren(const OrvNgEdgeRoute& route);
    void placeMidpointItems();
    void markShapeDirty();
    void announceChange();
    void updateShape() const;

    bool isShownAtAll() const;
    bool isHiddenByTags() const;
    bool isHiddenAsUnattached() const;
    bool isRepresentedByAnother() const;
    void updateLabel();
    void updateRareItems();
    void makeCrossLines();
    void makeGrabCircle();
    void applyPen(const QPen& pen);
    const OrvNgEdgePens& pens();
    const QPen& penForState();

    QPointer<OrvNgNode> m_SourceNode;
    QPointer<OrvNgNode> m_DestNode;
    QPointer<OrvNgNode>
        m_HomeNode; ///< the node that lists this edge as its input, also while the end is loose
    quint32 m_Flags = 0;
    QSet<QString> m_Tags;
    bool m_Grabbed = false;
    bool m_GrabbedFromPort = false;
    bool m_Shared = false;
    bool m_TextVisible = false;
    bool m_DotableMode = false;
    bool m_HasChildren = false; ///< path and arrow have been made
    bool m_HasAdjusted = false; ///< m_Ends and m_LabelFraction are those of the last adjustment
    bool m_RoutePending = false; ///< the children do not show m_Ends yet
    bool m_BoundsHeld = false; ///< the stored bounds are asked for, whether or not they still hold
    bool m_HasLeftScene = false; ///< has been in one, is in none
    bool m_IsDestroyed = false;
    bool m_IsDying = false;
    QString m_SourceOutputPoint;
    QString m_Text;
    QString m_PrettyText;

    // Children, null until needed
    QGraphicsPathItem* m_Line = nullptr;
    QGraphicsPolygonItem* m_Arrow = nullptr;
    OrvNgLodTextItem* m_Label = nullptr;
    QGraphicsLineItem* m_CrossLines[2] = {nullptr, nullptr};
    OrvNgDotableMarkerItem* m_Marker = nullptr;
    QGraphicsEllipseItem* m_GrabCircle = nullptr;

    std::unique_ptr<Drag> m_Drag; ///< null while no end is loose
    std::shared_ptr<const OrvNgEdgePens> m_Pens; ///< null until first needed
    QColor m_DebugColor;
    Ends m_Ends; ///< as given to the last adjustment, before clipping
    QPointF m_LoosePoint; ///< the cursor, while an end is carried
    double m_LabelFraction = 0.5;
    QLineF m_StraightLine; ///< from the clipped source end to the clipped destination end
    mutable QPainterPath m_Shape;
    mutable QRectF m_ShapeBounds;
    mutable bool m_ShapeDirty = false;
};
