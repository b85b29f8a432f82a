#pragma once

#include "network/NetEditor.h"
#include "network/NetPlacement.h"

#include <QGraphicsScene>
#include <QHash>
#include <QSet>
#include <QVector>

#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <memory>

class EditorBackdrops;
class EditorEdits;
class EditorWiringGuide;
class OrvNgEdge;
class OrvNgPort;

/// The graphics of one scope of a document: a node for each node of the model, connected and laid out. It
/// follows the model: what the user does to nodes and edges becomes undo steps that change the model, and
/// the scene shows what the model then says. It also explains what is under the mouse.
///
/// Called by  EditorNavigator (makes and keeps scenes), EditorWindow (actions), its nodes (rules, drops).
/// Uses       NetEditor, EditorBackdrops, EditorEdits, EditorWiringGuide, EditorNodeFactory, EditorToolTips,
///            NetPlacement.
/// Tells      the window, through its signals.
class EditorScene : public QGraphicsScene
{
    Q_OBJECT

public:
    using Mode = OrvNgExtendedNode::PortListMode;
    using Nodes = QVector<OrvNgNode*>;

    /// Builds the whole scene. The document is shared, so that the scene may outlive the window's interest
    /// in it; scope is a position in its list of scopes.
    EditorScene(std::shared_ptr<NetEditor> editor, int scope, Mode mode = Mode::PORT_LIST_EXPANDED,
        QObject* parent = nullptr);
    ~EditorScene() override;

    const std::shared_ptr<NetEditor>& editor() const { return m_Editor; }
    const NetScope& scope() const;
    int scopeIndex() const { return m_ScopeIndex; }
    /// Backdrops and notes; they are not among the nodes.
    const EditorBackdrops& backdrops() const { return *m_Backdrops; }
    EditorBackdrops& backdrops() { return *m_Backdrops; }

    // Nodes, by the positions of their models in the scope

    /// All nodes that are there; removed ones are not.
    Nodes nodes() const;
    /// Null for a position out of range, and for a removed node.
    OrvNgNode* node(int index) const { return m_Nodes.value(index, nullptr); }
    /// -1 for an item that is no node of the scene and does not belong to one.
    int indexOf(const QGraphicsItem* item) const;
    Nodes selectedNodes() const;
    /// The edges that join two nodes.
    int connectionCount() const;
    /// Of all nodes, backdrops and notes, or of those that are selected, in scene coordinates; null for
    /// none.
    QRectF contentBounds() const;
    QRectF selectionBounds() const;
    /// Of the given nodes in scene coordinates; null for none.
    static QRectF boundsOf(const Nodes& nodes);
    /// The mean of the nodes' centres: where most of them are, while the centre of their bounds is
    /// often an empty place.
    static QPointF middleOf(const Nodes& nodes);

    // Ports: between the names on the nodes and the model. Positions are -1 for what the model has not

    NetPortRef inputOf(const QGraphicsItem* node, const QString& name) const;
    NetPortRef outputOf(const QGraphicsItem* node, const QString& name) const;
    /// The edge that stands for an input; null when there is none.
    OrvNgEdge* edgeOf(const NetPortRef& input) const;
    /// Empty when the connection may be made, else one sentence.
    QString whyNotConnect(const OrvNgNode* source, const QString& output, const OrvNgNode* dest,
        const QString& input) const;

    // Places

    /// Whether the node stands where the scene put it last.
    bool isAtRest(int index) const;
    /// Puts the node back where the model has it.
    void putBack(int index);
    /// Where the node stands now, as the model would write it.
    QPointF filePosition(int index) const;
    /// Places a node whose position the model cannot hold.
    void placeLoose(int index, const QPointF& corner);
    /// A top left corner in scene coordinates as the model would write it.
    QPointF filePosition(const QPointF& corner) const;
    /// A rectangle in scene coordinates as the model would write it.
    QRectF fileRect(const QRectF& rect) const;
    /// Of the model's positions, as when the scene was built.
    NetPlacement::Unit unit() const { return m_Unit; }
    /// The release that ends the resize of that backdrop is under way.
    bool isResizing(int backdrop) const { return m_Resized == backdrop; }

    /// Gives the input the connection that the model has, silently, and both ends their colours.
    void showConnection(const NetPortRef& input);
    void colorPorts(int index);

    /// Shows the ports of the nodes in that mode; dots have none.
    void setPortListMode(const Nodes& nodes, Mode mode);

    /// What there is to say about a point, as rich text; empty where nothing is.
    QString toolTipAt(const QPointF& scenePos) const;

    // Called by the nodes

    /// The user let go of the node that the mouse dragged.
    void nodeDropped(OrvNgNode* node);
    /// The node lost the mouse, after a drop or otherwise.
    void nodeLetGo(OrvNgNode* node);
    /// The node is being deleted, by whomever.
    void nodeGone(OrvNgNode* node);

public Q_SLOTS:
    /// Lays all nodes out anew by their present sizes, also those whose place the document gives.
    void arrange();
    /// Shows on every connection the marker at which a click inserts a dot, or hides it again.
    void setDotMode(bool shown);
    /// Backdrops and notes too.
    void deleteSelection();
    /// Takes a node out of its chain, which closes where the types allow it.
    void extract(OrvNgNode* node);
    /// The same for the node under the mouse button, else for every selected node.
    void extractSelection();
    void selectAll();
    void deselectAll();
    /// Puts a new backdrop around all that is selected, and selects it.
    void wrapSelection();
    /// Adds a note there and asks for its text.
    void addNote(const QPointF& scenePos);
    /// Asks for the title of a backdrop, or the text of a note.
    void renameBackdrop(int backdrop);
    /// The answer to textWanted().
    void setBackdropText(int backdrop, const QString& text, bool isDoc);
    void setBackdropColor(int backdrop, const QColor& color);
    /// Adds all that leads to the selected nodes, or all that follows from them, to the selection.
    void selectUpstream();
    void selectDownstream();

Q_SIGNALS:
    /// A double click on the node at that position in the scope. Sent while the scene still handles
    /// the event: receivers that replace the scene connect queued.
    void nodeActivated(int index);
    /// The user wants to change a text of the backdrop or note at that position in the scope: the title, or
    /// what a note says or stands below a title (isDoc). text is the present one. Receivers that open a
    /// dialog connect queued, as above, and call setBackdropText().
    void textWanted(int backdrop, const QString& text, bool isDoc);
    /// One sentence for the user: why something was not done.
    void status(const QString& text);

protected:
    bool event(QEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void helpEvent(QGraphicsSceneHelpEvent* event) override;

private:
    OrvNgNode* buildNode(int index);
    void enter(OrvNgNode* node);
    void buildNodes();
    void connectPorts();
    QVector<QPointF> corners(bool asInDocument) const;
    void setCorner(int index, const QPointF& corner);
    void colorInput(const NetPortRef& input);
    void colorOutput(const NetPortRef& output);
    bool isMissing(const NetPortRef& input) const;
    void showMissing(const NetPortRef& input);
    void showHidden(const NetPortRef& input);

    // The model changed
    void listenToModel();
    void followMoves(const QVector<int>& nodes);
    void followAddition(int index);
    void followRemoval(int index);

    QString whyNoInput(const OrvNgNode* source, const QString& output, const OrvNgNode* dest) const;
    void followMode(OrvNgNode* node, int mode);
    void select(bool upstream);
    QString toolTipOfPort(int nodeIndex, const OrvNgPort* port) const;
    OrvNgEdge* carriedEdge() const;
    void askForText(int backdrop, bool isDoc);

    using PortKey = QPair<int, int>;

    std::shared_ptr<NetEditor> m_Editor;
    int m_ScopeIndex;
    Mode m_Mode; ///< of nodes that come later
    NetPlacement::Unit m_Unit; ///< as when the scene was built: moves must not change it
    QVector<OrvNgNode*> m_Nodes; ///< null for removed nodes
    QHash<const QGraphicsItem*, int> m_Indices;
    QVector<QPointF> m_Places; ///< where the scene put the nodes last
    QVector<QPointF> m_LooseCorners; ///< for nodes without a position in the model
    QHash<PortKey, NetPortRef> m_Sources; ///< of the inputs as they are coloured now
    QSet<PortKey> m_Missing; ///< inputs shown with a source that does not exist
    QHash<int, Mode> m_RemovedModes; ///< a node that comes back looks as before
    std::unique_ptr<EditorBackdrops> m_Backdrops;
    std::unique_ptr<EditorEdits> m_Edits;
    std::unique_ptr<EditorWiringGuide> m_Guide;
    bool m_DotMode = false;
    bool m_IsClosing = false;
    int m_Resized = -1; ///< the backdrop whose resize ends just now
    int m_Following = 0; ///< above 0 while the scene takes over a change of the model
};
