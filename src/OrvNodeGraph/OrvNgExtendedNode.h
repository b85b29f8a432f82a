#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

#include <QHash>
#include <QVector>

#include <memory>

class OrvNgNodeHeader;
class OrvNgPort;
class OrvNgPortList;

/// The node kind that shows its ports as widgets: a header row (icons, title, mode button) and
/// below it the output ports, then the input ports. Edges attach to the shown ports.
///
/// Port list modes, each with its own header icon:
///   expanded        every port except cluster ports
///   top to bottom   no ports and no button; edges attach where the base node puts them
///   grouped         cluster ports, and the ports that belong to no cluster
///   only connected  the ordinary ports that have a connection
///   collapsed       no ports; edges converge on the ends of the header
/// An input whose edge carries the tag "_hidden" is never shown.
///
/// A click on the header button only proposes the next mode (nodePortListModeChanged); the host
/// answers with setPortListMode(). New ports stay hidden until the next visibility pass: the host
/// makes all ports, sets the cluster maps, then the mode.
///
/// Child items that a host adds have to lie within boundingRect(): elsewhere they are neither found
/// nor, once the node itself is out of sight, drawn.
///
/// Geometry read after any call is up to date, without an event loop, except between
/// pauseInvalidation(true) and pauseInvalidation(false).
///
/// Called by  the host, OrvNgEdge (attachment points), OrvNgView (hover, port picking).
/// Uses       OrvNgPortList (ports and clusters of a side), OrvNgNodeHeader, OrvNgStyle.
/// Tells      its edges, the host and the view, all through OrvNgNode.
class ORVNODEGRAPH_EXPORT OrvNgExtendedNode : public OrvNgNode
{
    Q_OBJECT

public:
    /// Every int is a value of it, so that one a host casts can be refused instead of being
    /// undefined.
    enum PortListMode : int {
        PORT_LIST_EXPANDED = 0,
        PORT_LIST_T2B = 1,
        PORT_LIST_GROUPED = 2,
        PORT_LIST_ONLY_CONNECTED = 3,
        PORT_LIST_COLLAPSED = 4
    };
    Q_ENUM(PortListMode)

    explicit OrvNgExtendedNode(QGraphicsItem* parent);
    ~OrvNgExtendedNode() override;

    // Identity and state

    /// The title; long ones are shown cut. The whole text is the object name.
    void setText(const QString& text) override;
    QString text() override;
    void setLocked(bool locked) override;
    void setBypassed(bool bypassed) override;
    void setCached(bool cached) override;
    void setCurrentPaint(bool currentPaint) override;
    void setBaked(bool baked) override;
    void setOutdatedBaked(bool outdated) override;
    QBrush nodeUniColour() override;
    void setCorrectColor() override;

    // Ports

    using OrvNgNode::removeInput;
    using OrvNgNode::removeOutputPoint;

    /// Makes the input and its port, hidden; flag makes the port's text bold.
    void createInput(const QString& name, bool flag, const QSet<QString>& tags) override;
    /// An output gets a port, hidden, only with withEdge; one without attaches its edges as the
    /// base node does.
    void createOutputPoint(const QString& name, bool withEdge) override;
    void removeInput(int index) override;
    void removeOutputPoint(int index) override;
    /// A name that is taken by another input (output) is reported and nothing happens.
    void renameInput(const QString& from, const QString& to) override;
    void renameOutputPoint(const QString& from, const QString& to) override;
    /// Takes a changed pretty name of an input over into its port. Deliberate: one that went back
    /// to the bare name leaves the old text standing.
    void refreshPrettyName(const QString& name) override;

    /// Null for a name without a port.
    OrvNgPort* inputPort(const QString& name);
    OrvNgPort* outputPort(const QString& name);
    /// False for a name without a port.
    bool isInputPortVisible(const QString& name);
    bool isOutputPortVisible(const QString& name);
    /// Shows or hides one port until the next visibility pass. A port whose edge carries "_hidden"
    /// is not shown; an unknown name is ignored.
    void setInputPortVisible(const QString& name, bool visible);
    void setOutputPortVisible(const QString& name, bool visible);

    /// The ordinary ports as they stand from top to bottom; in the top-to-bottom mode the base
    /// node's order.
    QStringList sortedInputPoints() override;
    QStringList sortedOutputPoints() override;
    /// Cluster ports first, then the named ports in this order, then the rest as before. Names
    /// without a port are skipped.
    void reorderInputPorts(QStringList names);
    void reorderOutputPorts(QStringList names);

    /// The host's pretty name; "Input" ("Output") for a blank one, empty for a name that has none.
    virtual QString inputPortPrettyName(const QString& name);
    virtual QString outputPortPrettyName(const QString& name);

    // Clusters: a cluster port is named after its cluster

    /// Replaces the clusters of the inputs: cluster names with the names of their members, in the
    /// order of the cluster ports. Each cluster is an input of the node too. A cluster without a
    /// name, or with the name of an ordinary input, is reported and left out.
    void setInputPortClusterMap(QList<QPair<QString, QStringList>> clusters);
    /// The same for the outputs; clusters are not among outputPoints().
    void setOutputPortClusterMap(QList<QPair<QString, QStringList>> clusters);
    /// The members of a cluster; an unknown cluster is reported and has none.
    QStringList inputClusterPortName2ClusterList(const QString& cluster);
    QStringList outputClusterPortName2ClusterList(const QString& cluster);
    bool hasInputCluster(const QString& cluster) const;
    bool hasOutputCluster(const QString& cluster) const;
    /// The cluster of a member, empty for a port that belongs to none.
    QString inputPort2ClusterName(const QString& name) const;
    QString outputPort2ClusterName(const QString& name) const;
    bool inputPortBelongsToCluster(const QString& name) const;
    bool outputPortBelongsToCluster(const QString& name) const;
    bool hasClusteredPorts() const;
    QStringList clusteredInputPorts() const;
    QStringList clusteredOutputPorts() const;
    /// Connects an input silently; an edge that joins two clusters is freed again, because the host
    /// puts the edges of the members in its place. A null sourceNode only does the latter.
    void setClusteredInputEdgeSource(
        const QString& inputName, OrvNgNode* sourceNode, const QString& outputName);

    // Modes

    /// Shows the ports of a mode. A value outside the enumeration is reported and ignored.
    void setPortListMode(PortListMode mode);
    PortListMode portListMode() const { return m_PortListMode; }
    /// What a click on the header button proposes.
    PortListMode nextPortListMode() const;
    /// Brings the visibility of all ports in line with mode, clusters and connections.
    void applyPortVisibilityMode();
    /// Lays ports and header out again and re-adjusts the edges.
    void updateAfterPortVisibilityChange();

    // Header

    /// Adds a hidden icon by the name of its SVG; the result is its index.
    int addIcon(const QString& svgName);
    /// An unknown index is ignored.
    void setIconVisible(bool visible, int index);
    /// Places the visible icons side by side, then lays the node out.
    void updateIcons();
    /// Chooses which input edges show their label: in the grouped and the collapsed mode one of
    /// each bundle that lies on one line.
    void updateTextVisibility();
    /// Lays everything out anew, for changes that the node cannot know of.
    void updateWidget();

    // Geometry

    /// Computes header size, title and button places from contents and style.
    virtual void recalcNodeShapeRect();
    /// The header.
    QRectF nodeShapeRect() override;
    QRectF boundingRect() const override;
    /// Holds all layout work back while the host changes many things; resuming does it once.
    void pauseInvalidation(bool paused);
    /// A port needs more or less room than before. Called by the port.
    void portRoomChanged();

    // Attachment points in scene coordinates: the port's or its shown cluster's; for a hidden port
    // a fixed point near the end of the header; what the base node says in the top-to-bottom mode
    // or without a port.

    QPointF inputPortDestPos(const QString& name) override;
    QPointF inputPortSourcePos(const QString& name) override;
    QPointF outputPortSourcePos(const QString& name) override;
    QPointF outputPortDestPos(const QString& name) override;
    void reAdjustInputEdges() override;

    // Picking edges at ports

    /// The edge to pull out of the shown port under a point: an input's edge, or (isOutput) a new
    /// temporary edge of an output. Null without a port or when its edge is locked. isOutput may be
    /// null.
    OrvNgEdge* edgeForPortUnderPos(const QPointF& scenePos, bool* isOutput);
    /// Pulls that edge out and gives it the mouse; false when there is none.
    bool grabEdgeForPortUnderPos(const QPointF& scenePos);
    /// Whether a point lies on the shown port of one of this node's edges. False for a null or
    /// foreign edge.
    bool portForEdgeContains(OrvNgEdge* edge, const QPointF& scenePos);

    /// The input or output whose shown port lies under a scene point, its square before its row; null for
    /// none. A port that stands for a cluster gives the cluster's name.
    QString inputPointUnderPos(const QPointF& scenePos) const;
    QString outputPointUnderPos(const QPointF& scenePos) const;

    // QGraphicsItem

    bool allowsFarPicture() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    /// A double click on the header button is none on the node.
    bool isDoubleClickValid(const QPointF& itemPos) const override;

protected:
    /// The port's attachment point in scene coordinates; (0, 0) where the base node decides.
    QPointF inputPortPosInternal(const QString& name) const;
    QPointF outputPortPosInternal(const QString& name) const;

    void drawSelectedOutline(QPainter* painter) override;
    void drawShape(QPainter* painter) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;

private:
    class LayoutPause;

    void dropPort(OrvNgPortList& ports, const QString& name);
    void dropInputCluster(const QString& cluster);
    QString inputDisplayText(const QString& name);
    QString outputDisplayText(const QString& name) const;
    bool refusesEmptyName(const OrvNgPortList& ports, const QString& from, const QString& to);
    QList<QPair<QString, QStringList>> usableClusters(
        const OrvNgPortList& ports, const QList<QPair<QString, QStringList>>& clusters);
    void clustersChanged();
    void reorderPorts(OrvNgPortList& ports, const QStringList& names);

    bool showPorts();
    void refreshEdges();
    void showInputLabels(bool shown);
    bool bundlesEdges() const;

    bool attachmentPoint(
        const OrvNgPortList& ports, const QString& name, double headerX, QPointF& scenePos) const;
    bool inputAttachmentPoint(const QString& name, QPointF& scenePos) const;
    bool outputAttachmentPoint(const QString& name, QPointF& scenePos) const;
    double shownEdgesSpan();
    void resizeHeader(const QSizeF& size);
    void placePorts();

    void pullOutEdge(OrvNgEdge* edge, const QPointF& scenePos, bool isOutput);
    bool isBareHeader() const;
    void drawRoundedBody(QPainter* painter, double grownBy, const QColor& color) const;

    std::unique_ptr<OrvNgNodeHeader> m_Header;
    std::unique_ptr<OrvNgPortList> m_Inputs; ///< ports and clusters; the edges are the base node's
    std::unique_ptr<OrvNgPortList> m_Outputs;
    QVector<QPointer<OrvNgEdge>>
        m_LabelledEdges; ///< those whose label updateTextVisibility() switched on
    QRectF m_NodeShapeRect;
    QRectF m_BodyRect;
    QRectF m_FaceBounds;
    PortListMode m_PortListMode = PORT_LIST_EXPANDED;
    bool m_LayoutPaused = false;
    bool m_GeometryPending = false; ///< a layout request came while layouts were paused
    bool m_InParentSelection = false;
};
