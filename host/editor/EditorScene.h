#pragma once

#include <QGraphicsScene>
#include <QHash>
#include <QVector>

#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <memory>

class NetDocument;
class NetScope;
class OrvNgPort;
struct NetNode;

/// The graphics of one scope of a document: a node for each node of the model, connected and laid
/// out. It answers what nodes propose (another port list mode) and explains what is under the
/// mouse.
///
/// Called by  EditorNavigator (makes and keeps scenes), EditorWindow (modes, arranging).
/// Uses       EditorNodeFactory, EditorPortColors, EditorToolTips, NetPlacement.
/// Tells      the window, through its signals.
class EditorScene : public QGraphicsScene
{
    Q_OBJECT

public:
    using Mode = OrvNgExtendedNode::PortListMode;
    using Nodes = QVector<OrvNgExtendedNode*>;

    /// Builds the whole scene. The document is shared, so that the scene may outlive the window's
    /// interest in it; scope is a position in its list of scopes.
    EditorScene(std::shared_ptr<const NetDocument> document, int scope,
        Mode mode = Mode::PORT_LIST_EXPANDED, QObject* parent = nullptr);
    ~EditorScene() override;

    const NetScope& scope() const;
    int scopeIndex() const { return m_ScopeIndex; }

    // Nodes, at the positions of their models in the scope

    const Nodes& nodes() const { return m_Nodes; }
    OrvNgExtendedNode* node(int index) const { return m_Nodes.value(index, nullptr); }
    /// -1 for an item that is no node of the scene and does not belong to one.
    int indexOf(const QGraphicsItem* item) const;
    Nodes selectedNodes() const;
    /// The edges that join two nodes.
    int connectionCount() const;
    /// Of the given nodes in scene coordinates; null for none.
    static QRectF boundsOf(const Nodes& nodes);
    /// The mean of the nodes' centres: where most of them are, while the centre of their bounds is
    /// often an empty place.
    static QPointF middleOf(const Nodes& nodes);

    // Changes

    /// Shows the ports of the nodes in that mode.
    void setPortListMode(const Nodes& nodes, Mode mode);
    /// Lays all nodes out anew by their present sizes, also those whose place the document gives.
    void arrange();

    /// What there is to say about a point, as rich text; empty where nothing is.
    QString toolTipAt(const QPointF& scenePos) const;

Q_SIGNALS:
    /// A double click on the node at that position in the scope. Sent while the scene still handles
    /// the event: receivers that replace the scene connect queued.
    void nodeActivated(int index);

protected:
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void helpEvent(QGraphicsSceneHelpEvent* event) override;

private:
    void buildNodes();
    void connectPorts();
    void place(bool asInDocument);
    void colorPorts(int nodeIndex);
    void markOpenEnds();
    void followMode(OrvNgExtendedNode* node, int mode);
    QString toolTipOfPort(int nodeIndex, const OrvNgPort* port) const;

    std::shared_ptr<const NetDocument> m_Document;
    int m_ScopeIndex;
    Nodes m_Nodes;
    QHash<const QGraphicsItem*, int> m_Indices;
};
