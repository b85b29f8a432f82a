#pragma once

#include "OrvNodeGraph/OrvNgConnectionTable.h"
#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include "OrvCore/OrvSerializableObject.h"

#include <QBrush>
#include <QColor>
#include <QGraphicsItem>
#include <QPointer>
#include <QSet>
#include <QStringList>

class OrvNgEdge;
class OrvNgView;
class QLinearGradient;
class QPixmap;

/// The abstract base of every node of the graph.
///
/// Inputs and outputs: every input is an edge object that ends at this node, made by createInput() and
/// kept for the node's whole life; a free input is an edge without a source. Outputs are names; the edges
/// that leave the node are listed beside them. Two extra edges, each at most one, serve interaction: the
/// virtual input edge and the temporary output edge; neither is in the lists.
///
/// Category and brush: the style's property "<category>NodeBrush" is the body's gradient; the category
/// "_System" is looked up as "System". setCategory() and the colour setters only store: the caller follows
/// with setCorrectColor().
///
/// Mouse: a press selects, by the modifier keys held; a drag moves all selected nodes, unless the press left
/// the pressed one unselected. While it is dragged, the node marks the edge and the frame that would take
/// it in; only the host acts on that, when the drag ends (processAutoinsert()).
///
/// A concrete class begins its destructor with aboutToBeDestroyed(), so that the host's slots still find
/// a whole node.
///
/// Called by  the host, OrvNgView (hover, selection), OrvNgEdge (positions, lists).
/// Uses       OrvNgStyle, OrvNgEdge, OrvNgNodeShape, OrvNgNodeBrush, OrvNgNodeInsertion.
/// Tells      the host through signals and the notify… hooks, its edges, the first view of its scene.
class ORVNODEGRAPH_EXPORT OrvNgNode : public OrvSerializableObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// The outline of the body; 0 and every value outside 1 to 8 mean "chosen from the category".
    enum NodeShapeType : int {
        ShapeFromCategory = 0,
        ShapeRectangle = 1,
        ShapeCapsule = 2,
        ShapeRoundedRect = 3,
        ShapeHexagon = 4,
        ShapeFunnel = 5,
        ShapeTrapezoid = 6,
        ShapeBarrel = 7,
        ShapeRoundedHexagon = 8
    };

    /// What a press on a node does to the selection, by the modifier keys held.
    enum OrvNgSelectMode : int {
        SelectReplace = 0, ///< neither Shift nor Control
        SelectAdd = 1, ///< Shift
        SelectRemove = 2, ///< Control
        SelectToggle = 3 ///< both
    };

    explicit OrvNgNode(QGraphicsItem* parent);
    ~OrvNgNode() override;

    using QGraphicsItem::isSelected;
    using QGraphicsItem::setSelected;
    /// The object's selection is the item's.
    void setSelected(bool selected, bool withChildren) override;

    // Identity and state

    virtual void setText(const QString& text) = 0;
    virtual QString text() = 0;
    virtual void setLocked(bool locked) = 0;
    virtual void setBypassed(bool bypassed) = 0;
    virtual void setCached(bool cached) = 0;
    virtual void setCurrentPaint(bool) { }
    virtual void setBaked(bool) { }
    virtual void setOutdatedBaked(bool) { }
    /// Switches the debug colour on or off; it shows only while it is valid.
    virtual void setDebug(bool debug);
    /// The brush that stands for the whole node, for instance in an overview.
    virtual QBrush nodeUniColour() = 0;
    virtual void setPixmap(const QPixmap&, const QPoint&) { }

    // Connection points

    /// Makes the input edge of a new input. flag marks the preferred (main) input; tags are the edge's.
    /// A name that is already an input is reported and ignored.
    virtual void createInput(const QString& name, bool flag, const QSet<QString>& tags);
    /// Destroys the input edge at an index of inputs(); a bad index is reported.
    virtual void removeInput(int index);
    /// Nothing happens for an unknown name.
    virtual void removeInput(const QString& name);
    /// Adds an output name, once; withEdge also gives it an unconnected edge (addOutputEdge()).
    virtual void createOutputPoint(const QString& name, bool withEdge);
    /// Removes the output name at an index of outputPoints(), frees the inputs it fed and destroys its
    /// unconnected edges; a bad index is reported.
    virtual void removeOutputPoint(int index);
    virtual void removeOutputPoint(const QString& name);
    virtual void renameOutputPoint(const QString& from, const QString& to);
    /// The output names in the order in which the node shows them.
    virtual QStringList sortedOutputPoints();
    /// The name to show for an output; the name itself where the host gave none.
    virtual QString outputPointPrettyName(const QString& name);
    /// Destroys the node's own edges, frees the inputs it feeds and deletes the node later, from the event
    /// loop. Silent: the host asked for it. A second call does nothing.
    virtual void destroy();
    /// destroy() was called, or the destructor runs: nothing may be connected to it any more.
    bool isBeingDeleted() const { return m_IsDestroyed || m_IsDying; }
    /// Moves other to this node's place and hands all connections over to it, by name where it can and by
    /// order otherwise; each changed input is notified. This node stays. Null is reported.
    virtual void replace(OrvNgNode* other);
    virtual QStringList sortedInputPoints();
    virtual void renameInput(const QString& from, const QString& to);
    virtual void refreshPrettyName(const QString&) { }
    virtual QString inputPointPrettyName(const QString& name);

    // Geometry

    /// The body's rectangle in node coordinates.
    virtual QRectF nodeShapeRect();

    // Host notifications: called on the node concerned, they emit the signal of the same meaning

    /// A user-made change gave the input `input` of this node the source `node` (null: none) and that
    /// node's output `output` (empty when null).
    virtual void notifyInputSourceChange(
        OrvNgNode* node, const QString& output, const QString& input);
    /// The user asks for another port list mode; the host answers with setPortListMode().
    virtual void notifyNodePortListModeChanged(int mode);
    /// The user clicked the dotable marker of an edge that leaves this node; null when the marker does not
    /// stand on an edge.
    virtual void notifyEdgeDotableMarkerIsClicked(OrvNgEdge* edge);

    // Wiring rules of the host, asked before a user-made change

    /// Whether an input of this node may get its source from that output. False refuses the drop: nothing
    /// changes, and notifyInputSourceRefused() follows. Menus of a drop leave refused inputs out. Not asked
    /// by the setters that hosts call.
    virtual bool acceptsInputSource(OrvNgNode* source, const QString& output, const QString& input);
    /// A drop on an input of this node was refused; emits the signal of the same meaning.
    virtual void notifyInputSourceRefused(
        OrvNgNode* source, const QString& output, const QString& input);

    /// Recomputes the node brush from state and category; call it after changing either.
    virtual void setCorrectColor() { }
    virtual void reAdjustEdges();
    virtual void reAdjustInputEdges();
    virtual void reAdjustOutputEdges();

    // Where edges attach, in scene coordinates: an edge's own end (…DestPos of an input, …SourcePos of an
    // output) and the approach point outside the node, for an end that is missing. The centre of the node
    // for an unknown name.
    virtual QPointF inputPortSourcePos(const QString& name);
    virtual QPointF inputPortDestPos(const QString& name);
    virtual QPointF outputPortSourcePos(const QString& name);
    virtual QPointF outputPortDestPos(const QString& name);

    /// Whether a double click at a point in node coordinates counts as one on the node.
    virtual bool isDoubleClickValid(const QPointF& itemPos) const;

    // Shape, category, colours: these setters store, setCorrectColor() applies

    static NodeShapeType resolveShapeType(NodeShapeType type, const QString& category);
    /// Draws the outline of a shape into rect, in the painter's coordinates, with its pen and brush.
    static void drawNodeShape(
        QPainter* painter, const QRectF& rect, NodeShapeType type, const QString& category);
    NodeShapeType resolvedShapeType() const;
    void setShapeType(int type);
    NodeShapeType shapeType() const { return static_cast<NodeShapeType>(m_ShapeType); }
    void setCategory(const QString& category);
    const QString& category() const { return m_Category; }
    /// The gradient of the node's category; out stays as it is for an empty or unknown category. The caller
    /// sets start and final stop.
    void getNodeBrush(QLinearGradient& out);
    /// Both invalid: no own colours. One invalid: both take the other.
    void setNodeColor(const QColor& first, const QColor& second);
    void setDebugColor(const QColor& color);
    void setGuiActive(bool active);
    bool isGuiActive() const { return m_GuiActive; }

    void setHovered(bool hovered);
    bool hovered() const;
    /// A system shader node is never shown, nor are its edges.
    void setIsSystemShaderNode(bool isSystem);
    bool isSystemShaderNode() const { return m_IsSystemShaderNode; }

    /// Grows with the order in which nodes were selected; -1 while not selected.
    int selectionId() const { return m_SelectionId; }
    /// The last selection id handed out.
    static int s_SelectionIndex;

    // Edges and points

    /// The edge of an input, null for an unknown name.
    OrvNgEdge* input(const QString& name);
    bool inputExists(const QString& name);
    int inputCount() const;
    /// One edge per input, in creation order.
    const QList<OrvNgEdge*>& inputs() { return m_Inputs; }
    /// The edges that leave this node, unconnected ones included.
    const QList<OrvNgEdge*>& outputs() { return m_Outputs; }
    int outputCount() const;
    const QStringList& outputPoints() { return m_OutputPoints; }
    int outputPointCount() const;
    /// The first edge that leaves an output, connected ones before unconnected ones; null when none does.
    OrvNgEdge* outputEdge(const QString& name);
    bool containsEdge(OrvNgEdge* edge);
    /// Whether the edge lives and dies with this node: its input edges, the virtual and the temporary edge
    /// and its unconnected output edges.
    bool doesEdgeBelongToThisNode(OrvNgEdge* edge);

    /// Gives an output an unconnected edge, once; only for a node that is in a scene.
    void addOutputEdge(const QString& name);
    /// Takes the edge at an index of outputs() off this node: an edge with a destination loses its source, an
    /// unconnected one is destroyed. A bad index is reported.
    void removeOutput(int index);
    /// Removes the first unconnected edge of an output, if there is one.
    void removeUnusedOutput(const QString& name);

    /// The first input without a source, null when there is none.
    OrvNgEdge* getNextFreeInputEdgeOnNode();
    /// The name of the first free input, else of the first input; empty without inputs.
    QString getNextInputPointOnNode();
    void updateInputTags(const QString& name, const QSet<QString>& tags);

    // Tables by name: each setter replaces the whole table and refreshes the edges concerned

    QString inputPointDescriptiveName(const QString& name);
    QString outputPointDescriptiveName(const QString& name);
    QPair<QPoint, QPoint> inputConnectionPosition(const QString& name);
    QPair<QPoint, QPoint> outputConnectionPosition(const QString& name);
    float inputConnectionTextPosition(const QString& name);
    float outputConnectionTextPosition(const QString& name);
    void setInputConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>>& positions);
    void setOutputConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>>& positions);
    void setConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>>& inputPositions,
        const QHash<QString, QPair<QPoint, QPoint>>& outputPositions);
    void setInputConnectionTextPositions(const QHash<QString, float>& positions);
    void setOutputConnectionTextPositions(const QHash<QString, float>& positions);
    void setConnectionTextPositions(
        const QHash<QString, float>& inputPositions, const QHash<QString, float>& outputPositions);
    void setInputConnectionPrettyNames(const QMap<QString, QString>& names);
    void setOutputConnectionPrettyNames(const QMap<QString, QString>& names);
    void setConnectionPrettyNames(
        const QMap<QString, QString>& inputNames, const QMap<QString, QString>& outputNames);
    void setInputConnectionDescriptiveNames(const QMap<QString, QString>& names);
    void setOutputConnectionDescriptiveNames(const QMap<QString, QString>& names);
    void setConnectionDescriptiveNames(
        const QMap<QString, QString>& inputNames, const QMap<QString, QString>& outputNames);

    // Edges of an interaction: a second create replaces the first

    /// An edge into this node, drawn while a connection is being made; locked, thin and dotted.
    OrvNgEdge* createVirtualInputEdge(const QString& outputPointName);
    void removeVirtualInputEdge();
    OrvNgEdge* virtualInputEdge();
    /// The edge that is pulled out of an output; its destination end is loose.
    OrvNgEdge* createTemporaryOutputEdge(const QString& outputPointName);
    void removeTemporaryOutputEdge();
    OrvNgEdge* temporaryOutputEdge();

    // Moves

    /// Remembers the scene position for the undo step of a move.
    void savePosition();
    QPointF previousPosition() { return m_PreviousPosition; }
    /// Shift and Control decide; other keys are not looked at.
    static OrvNgSelectMode resolveSelectionMode(const QFlags<Qt::KeyboardModifier>& modifiers);

    // Inserting a node into an edge: the host calls these when a drag or a drop ends

    /// Whether the node could be put into some edge: the view allows it, an input is free (freeInput, null
    /// otherwise) and the node has an output.
    bool canBeInsertedIntoAnEdge(OrvNgEdge*& freeInput);
    /// For a node that is dropped onto an edge by other means than a drag: inserts it at once where it can.
    void setupNodeForInsertionIntoEdge(OrvNgEdge* edge);
    /// Inserts the node into the edge that the drag highlighted, if there is one and the node could be
    /// inserted when it was pressed.
    void processAutoinsert();
    /// The edge into which the dragged node would go. It stays highlighted after the release, for the host
    /// to decide, until the next press; null when there is none.
    OrvNgEdge* highlightedEdge() const;

    // Frames: a node that takes other nodes in while they are dragged over it

    virtual bool isBackdrop() const { return false; }
    virtual void hightlightBackdropForNodeInsert() { }
    virtual void unHightlightBackdropForNodeInsert() { }

    // Far out

    /// Whether the view may show a picture of its own in place of the item, below the style's
    /// SceneLODSwitchThreshold: one that equals what the library's class paints. False asks paint() as ever,
    /// at any scale. The library's classes answer for themselves only; a subclass that paints nothing of its
    /// own says so by returning true. Only extended nodes are ever shown so.
    virtual bool allowsFarPicture() const { return false; }

    // QGraphicsItem

    /// The union of the children's bounds; subclasses with a face of their own say more.
    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    int type() const override;

Q_SIGNALS:
    void hoveredChanged(bool hovered);
    /// A move command placed the node, in its parent's coordinates.
    void posChanged(const QPointF& pos);
    void inputSourceChanged(OrvNgNode* node, QString output, QString input);
    /// A user-made change was refused by acceptsInputSource() of this node.
    void inputSourceRefused(OrvNgNode* source, QString output, QString input);
    void nodePortListModeChanged(int mode);
    void clickedOnDotableMarkerOnEdge(OrvNgEdge* edge);

protected:
    /// The states a node can show.
    enum StateFlag : quint32 {
        StateBypassed = 1U << 0,
        StateCached = 1U << 1,
        StateLocked = 1U << 2,
        StateBaked = 1U << 3,
        StateOutdatedBaked = 1U << 4,
        StateDebug = 1U << 5,
        StateCurrentPaint = 1U << 6,
        StateHovered = 1U << 7
    };

    virtual void drawSelectedOutline(QPainter* painter);
    virtual void drawShape(QPainter* painter);
    virtual QColor hoveredOutlineColor();

    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    bool sceneEvent(QEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;

    /// A left press that selects.
    bool isSelectMousePressEvent(QGraphicsSceneMouseEvent* event) const;
    /// A left release at the very point of the press: a click.
    bool isSelectMouseReleaseEvent(QGraphicsSceneMouseEvent* event) const;
    /// The mode of the last left press.
    OrvNgSelectMode selectionMode() const { return m_SelectionMode; }

    /// The child whose shape finds the edge under a dragged node; hidden ones serve too. Null: no edge is
    /// ever highlighted. An item that is not a child of this node is reported and ignored.
    void setInsertionProbe(QGraphicsItem* probe);
    /// Inserts the node into the highlighted edge, whether or not it could be inserted when it was pressed.
    void insertThisNodeIntoHighlightedEdge();

    bool hasState(StateFlag flag) const { return (m_StateFlags & flag) != 0; }
    void setState(StateFlag flag, bool on);
    /// Sets the flag, then recolours and repaints the node.
    void showState(StateFlag flag, bool on);
    bool isDebug() const { return hasState(StateDebug); }
    const QColor& debugColor() const { return m_DebugColor; }
    /// The colours of setNodeColor(), for the top and the bottom of the body.
    const QColor& nodeColor() const { return m_NodeColor; }
    const QColor& nodeColor2() const { return m_NodeColor2; }
    /// The brush for the node's present states, category and own colours.
    QBrush resolvedBrush();

    const QBrush& nodeBrush() const { return m_NodeBrush; }
    void setNodeBrush(const QBrush& brush) { m_NodeBrush = brush; }
    const OrvNgConnectionTable& inputTable() const { return m_InputTable; }
    const OrvNgConnectionTable& outputTable() const { return m_OutputTable; }

    /// Texts over 128 characters are cut there and end in "...".
    static QString elidedText(const QString& text);
    /// Takes the length of a screen pixel from the view that widget belongs to; kept for other widgets.
    void updateOutlineWidthScale(QWidget* widget);
    /// The length of one screen pixel in scene units at the last paint.
    double outlineWidthScale() const { return m_OutlineWidthScale; }

    /// Takes the children's bounds over into boundingRect(). Call it after moving or resizing a child.
    void updateBounds();
    /// For classes whose bounds are their own: the scene is not asked to forget them for every new child.
    void keepOwnBounds() { m_BoundsFollowChildren = false; }
    /// Tells the first view of the scene, if it is ours, that bounds may have changed.
    void notifySceneOfChange();
    /// First statement of every concrete class's destructor: deselects, drops hover and mouse grab, and
    /// leaves every edge, while the whole object still lives.
    void aboutToBeDestroyed();

private:
    friend class OrvNgEdge;
    friend class OrvNgFarLooks;
    void registerInputEdge(OrvNgEdge* edge);
    void registerOutputEdge(OrvNgEdge* edge);

    OrvNgView* firstView() const;
    bool isAutoInsertOn() const;

    QVariant positionChange(const QVariant& value);
    void holdBoundsForChange();
    void followSelection();
    void followScene();
    void showOrHideEdges();
    void dropSelection();

    void pressSelects(OrvNgSelectMode mode);
    void startDrag();
    void cancelDrag();
    void highlightTargets();
    void highlightEdge(OrvNgEdge* edge);
    void highlightBackdrop(OrvNgNode* backdrop);
    OrvNgEdge* inputForInsertion();

    OrvNgEdge* addToScene(OrvNgEdge* edge);
    void refreshInputTexts();
    void refreshOutputTexts();

    QList<OrvNgEdge*> m_Inputs;
    QList<OrvNgEdge*> m_Outputs;
    quint32 m_StateFlags = 0;
    QPointer<OrvNgEdge> m_TemporaryOutputEdge;
    QPointer<OrvNgEdge> m_VirtualInputEdge;
    QStringList m_OutputPoints;
    bool m_GuiActive = true;
    QPointF m_PreviousPosition; ///< scene coordinates
    OrvNgSelectMode m_SelectionMode = SelectReplace;
    QGraphicsItem* m_InsertionProbe = nullptr; ///< a child
    QPointer<OrvNgEdge> m_HighlightedEdge;
    bool m_CanAutoInsert = false;
    QPointer<OrvNgEdge> m_FreeInputEdge; ///< the input free at the press
    QPointer<OrvNgNode> m_HighlightedBackdrop;
    bool m_LeftButtonHeld = false; ///< since a press on this node
    bool m_MayDrag = true; ///< false after a press that left the node unselected or a drag cut off
    int m_SelectionId = -1;
    OrvNgConnectionTable m_InputTable;
    OrvNgConnectionTable m_OutputTable;
    bool m_IsSystemShaderNode = false;
    int m_ShapeType = ShapeRectangle;
    QColor m_NodeColor;
    QColor m_NodeColor2;
    QColor m_DebugColor;
    QBrush m_NodeBrush;
    QString m_Category;
    double m_OutlineWidthScale = 1.0;
    mutable QRectF m_Bounds;
    mutable bool m_BoundsDirty = false;
    bool m_BoundsFollowChildren = true;
    bool m_BoundsHeld = false; ///< the stored bounds are asked for, whether or not they still hold
    bool m_WasVisible = true; ///< what the edges were last told
    bool m_HasLeftScene = false; ///< has been in one, is in none
    bool m_IsDestroyed = false;
    bool m_IsDying = false;
};
