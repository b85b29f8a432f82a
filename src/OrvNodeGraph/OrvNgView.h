#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QCursor>
#include <QElapsedTimer>
#include <QGraphicsView>
#include <QHash>
#include <QPointer>
#include <QTimer>

#include <memory>

class OrvNgCursorPath;
class OrvNgEdge;
class OrvNgFarFrame;
class OrvNgGrid;
class OrvNgGuardedItem;
class OrvNgMinimap;
class OrvNgNode;
class OrvNgPartialUpdates;
class OrvNgPort;
class OrvNgRubberBand;
struct OrvNgMinimapFrame;

/// The widget in which the user looks at the graph and edits it. The host sets its own scene, then
/// calls init().
///
/// The scene rectangle always holds the visible area and the bounds of all visible nodes, with a
/// margin as large as itself on every side, so that the user never pans or zooms against a wall.
///
/// Navigation: the wheel and a zoom drag zoom, a pan moves by hand; the scheme, "Quill" or
/// "Harbor", says which button and modifiers start them. A zoom that would leave the view without a
/// usable transform is not made, and points and rectangles that are not finite are ignored.
///
/// Editing: a press that starts no navigation goes to the items. On empty space it begins a rubber
/// band, whose effect on the selection the modifiers decide (OrvNgNode::OrvNgSelectMode). The view
/// also hovers what is under the cursor, cuts edges along a drawn path, and notices when a dragged
/// node is shaken. All of it ends when the view loses the focus, is hidden or gets another scene;
/// only the tracking mode CURSOR_TRACKING_SEVER_EDGES stays until the host leaves it.
///
/// Called by  the host (actions, fit, centre), OrvNgNode (changes, length of a pixel).
/// Uses       OrvNgNavigation, OrvNgSelectionRule and OrvNgShakeDetector for its rules, OrvNgGrid,
///            OrvNgRubberBand, OrvNgMinimap, OrvNgStyle and the host's grid settings to paint, OrvUndoManager.
/// Tells      the host's shortcuts whether Tab belongs to the graph, nodes, ports and edges that
///            they are hovered, edges that they are cut, the host that a node was shaken.
class ORVNODEGRAPH_EXPORT OrvNgView : public QGraphicsView
{
    Q_OBJECT

public:
    /// What the held mouse button does, besides editing.
    enum OrvNavigationMode : quint32 {
        NavigationNone = 0,
        NavigationZoom = 1,
        NavigationPan = 3,
        NavigationMinimap = 4
    };

    /// What the moving mouse leaves behind.
    enum OrvCursorTrackingMode : int {
        CURSOR_TRACKING_NONE = 0,
        CURSOR_TRACKING_SEVER_EDGES = 1, ///< a drag draws a path that cuts edges
        CURSOR_TRACKING_SHAKE = 2 ///< a node is dragged; quick reversals are counted
    };

    explicit OrvNgView(QWidget* parent);
    ~OrvNgView() override;

    /// Takes over nodes and grid settings. Call it after setScene(); without a scene it sets up an
    /// empty view.
    void init();

    // What is visible

    /// Brings a scene point to the exact centre of the view, at scale 1 when resetScale is set. The
    /// scene rectangle grows where the view could not scroll there. Points farther than 1e9 from
    /// the origin are ignored.
    void centerViewOn(const QPointF& point, bool resetScale);
    /// Scales the view so that a scene rectangle fills it, whatever the limits of zoomIn(). Only
    /// with Qt::KeepAspectRatio is the rectangle also centred exactly. Deliberate: hides the base
    /// class's.
    void fitInView(QRectF rect, Qt::AspectRatioMode mode);
    /// The union of the bounds of all visible nodes in scene coordinates, null when there is none.
    /// Up to 50 ms behind the scene.
    QRectF visibleNodeBounds() { return m_VisibleNodeBounds; }
    /// The visible part of the scene; its bounding rectangle if the view is rotated.
    QRectF viewportInSceneCoords();
    /// Width divided by height of the widget.
    float aspect() const;

    /// Items are being painted into the minimap, not into the view.
    bool isMinimapRendering() const;

    // Minimap: in the viewport's bottom right corner, all geometry in viewport pixels. A left press in
    // it centres the view on the point pressed, and a drag goes on doing so.

    /// On unless switched off. Even then it shows only while a visible node lies outside the view.
    void setMinimapVisible(bool visible);
    QRect minimapRect();
    int minimapWidth() const;
    /// A fifth of the widget's height.
    int minimapHeight() const;
    bool isInMinimap(const QPoint& viewPos) const;
    /// The scene point shown at a point of the minimap; (0, 0) outside it and while it is not shown.
    QPointF mapMinimapPosToScenePos(const QPoint& viewPos);
    bool shouldDisplayMinimap() const;

    // Editing

    /// The topmost node, edge and port at a viewport position, null where there is none. Null
    /// arguments are not looked for.
    void itemsUnderPos(const QPoint& pos, OrvNgNode** node, OrvNgEdge** edge, OrvNgPort** port);
    /// Moves an item so that its origin lies under a viewport position. Null is reported.
    void setPosByViewportPos(QGraphicsItem* item, const QPoint& pos);
    /// Orders nodes as they were selected; other items come after them, null last.
    static bool OrvNgSelectionIdSorter(const QGraphicsItem* a, const QGraphicsItem* b);
    /// Repaints a part of the viewport, or all of it where the update mode asks for that.
    void updateViewportRect(const QRect& rect);
    /// False keeps dragged nodes from being inserted into edges.
    virtual bool isAutoInsertOn() { return true; }
    /// Off unless switched on: whether shaking a dragged node is noticed.
    void setShakeDetectionEnabled(bool enabled) { m_ShakeDetectionEnabled = enabled; }
    bool isShakeDetectionEnabled() const { return m_ShakeDetectionEnabled; }

Q_SIGNALS:
    /// The node that is being dragged was shaken: the host takes it out of its connections.
    void shakeToExtractTriggered();

public Q_SLOTS:
    /// Nodes have come, gone, moved or changed size: the node bounds follow 50 ms after the last
    /// call.
    void contentsChanged();
    /// Picks an edge up at the port under the cursor, or drops the edge that is carried.
    void pickUpEdge();
    /// The same at a viewport position.
    void pickUpEdge(const QPoint& LocalPos);
    /// One zoom step about Anchor. Steps that would leave a scale of 0.07 to 100 are not made, and
    /// factors that are not positive and finite are ignored.
    void zoomIn(double scaleFactor = 1.2,
        QGraphicsView::ViewportAnchor Anchor = QGraphicsView::AnchorViewCenter);
    void zoomOut(double scaleFactor = 1.2,
        QGraphicsView::ViewportAnchor Anchor = QGraphicsView::AnchorViewCenter);
    /// One single step of a scroll bar.
    void panUp();
    void panDown();
    void panLeft();
    void panRight();
    /// Shows or hides the grid; the host's setting calls it.
    void setGridEnabled(bool Enabled);
    /// Repaints after a change of grid size or background colours.
    void refreshBackground();
    /// The length of one viewport pixel in scene units at the last paint. Items that paint outlines
    /// of constant width on the screen call it.
    double onePixelInSceneSpace() const { return m_OnePixelInSceneSpace; }

protected Q_SLOTS:
    /// One step of scrolling while a node or an edge is dragged near the border.
    void autoScroll();
    /// Fits the scene rectangle to the visible area and the node bounds; nothing moves on the
    /// screen.
    void setNewSceneRect();
    /// The same, then centres the view on a scene point.
    void setNewSceneRect(const QPointF& SceneCenter);
    void calculateVisibleNodesBoundingRect();

    // Cutting: paths are scene points; those that are not finite are left out

    QPainterPath cursorPainterPath(const QList<QPointF>& Path, bool InViewportSpace);
    /// Scene bounds of a path; null for fewer than two points. Deliberate: they reach to the right
    /// of the points, by Margin and then by twice Margin, and up and down by Margin.
    QRectF cursorPathBounds(const QList<QPointF>& Path, double Margin = 0);
    /// The same in viewport pixels.
    QRect viewportCursorPathBounds(const QList<QPointF>& Path, double Margin = 0);
    /// The edges that a path crosses and the user may change, topmost first.
    QList<OrvNgEdge*> edgesCrossingPath(const QList<QPointF>& Path);
    /// Disconnects those edges, in one undo step.
    void severEdgesAlongPath(const QList<QPointF>& Path);
    /// The host enters and leaves CURSOR_TRACKING_SEVER_EDGES, for instance while a key is held.
    /// What has been tracked is dropped.
    void setCursorTrackingMode(OrvNgView::OrvCursorTrackingMode Mode);

protected:
    OrvCursorTrackingMode cursorTrackingMode() { return m_CursorTrackingMode; }
    /// A path that will cut edges has been begun and not ended.
    bool drawingEdgeSeverPath() const;
    QList<QGraphicsItem*> sortedBySelectionOrder(QList<QGraphicsItem*> items);
    /// The selected items of the scene; none without a scene.
    QList<QGraphicsItem*> sortedSelection();
    /// The items of a, then those of b that are not among them.
    QList<QGraphicsItem*> mergeItemLists(QList<QGraphicsItem*> a, QList<QGraphicsItem*> b);
    /// What was selected at the last press and still exists, then the other items.
    QList<QGraphicsItem*> lastSelectionCombinedWith(QList<QGraphicsItem*> items);
    /// Ends the rubber band; the selection stays as it is.
    void cancelDragSelect();
    /// Whether a selectable item that the rubber band reaches counts as inside it. The band is in
    /// scene coordinates. The answer may depend only on how the two meet.
    virtual bool canBandSelect(QGraphicsItem* item, const QPolygonF& band) const;
    /// Whether the view shows nothing but the scene, and its items paint within their bounds and two viewport
    /// pixels around them. Then only what has changed is repainted, and scrolling moves what is there, although
    /// the update mode is that of full updates. False for derived classes that do not say so: they may paint
    /// what else they show whenever there is an update.
    virtual bool paintsOnlyScene() const;

    /// Zooms by a factor about the transformation anchor, within the limits of zoomIn().
    void scaleView(double scaleFactor);
    /// Scrolls by one step towards each border that the cursor is near or beyond. node is not used.
    void autoScrollAdvance(OrvNgNode* node, bool restartTimer);
    /// The length of one viewport pixel along the view's x axis in scene units, now.
    double calcOnePixelInSceneSpace() const;
    /// "Quill" or "Harbor"; with any other name only what both share navigates.
    void setNavigationSchemeName(const QString& name) { m_NavigationScheme = name; }
    bool isNavigationHarbor();
    bool isNavigationQuill();

    // Event overrides

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void drawBackground(QPainter* painter, const QRectF& rect) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private Q_SLOTS:
    void forgetFarPicture();

private:
    void connectServices();

    // Steps of the mouse handlers: those that return a bool say whether the event is dealt with

    void press(QMouseEvent* event);
    void pressWithRazor(QMouseEvent* event);
    void rememberSelection(Qt::KeyboardModifiers modifiers);
    void passPressToItems(QMouseEvent* event);
    bool pressHoldsNode(const QMouseEvent* event);
    void pressOnEmptySpace(QMouseEvent* event);
    void trackCursor(const QPoint& viewPos);
    bool moveDrawsSeverPath(QMouseEvent* event);
    void detectShake();
    void followHover(const QPoint& viewPos);
    bool moveDrawsBand(QMouseEvent* event);
    bool releaseSeversEdges(QMouseEvent* event);
    void passReleaseToItems(QMouseEvent* event);

    void hoverPort(OrvNgPort* port);
    void hoverEdge(OrvNgEdge* edge, const QPointF& scenePos);
    void hoverNode(OrvNgNode* node);
    void clearHover();
    void markEdgesToSever(const QList<OrvNgEdge*>& edges);
    QList<OrvNgEdge*> inStackingOrder(const QList<OrvNgEdge*>& edges);
    void clearTracking();
    void giveUpLostGrab();
    OrvNgEdge* carriedEdge() const;
    void cancelCarriedEdge();
    void selectByBand(const QRect& before);
    QList<QGraphicsItem*> itemsToJudge(const QRect& before);
    QList<QGraphicsItem*> selectableItemsIn(const QRegion& region);
    bool isUnrotated() const { return viewportTransform().type() <= QTransform::TxScale; }
    void endEditing();
    void noticeScene();

    OrvNgMinimapFrame minimapFrame() const;
    QRect minimapArea() const;
    bool pressStartsInMinimap(QMouseEvent* event);
    void followMinimapDrag(const QPoint& viewPos);
    void endMinimapDrag();
    bool pressStartsNavigation(QMouseEvent* event);
    bool releaseEndsPan(QMouseEvent* event);
    void startPan(QMouseEvent* event, Qt::KeyboardModifiers droppedModifiers);
    void startZoomDrag(const QMouseEvent* event);
    void followZoomDrag(const QMouseEvent* event);
    void endPan(const QMouseEvent* event);
    void endZoomDrag();
    void cancelNavigation();
    bool isNavigating() const { return m_NavigationMode != NavigationNone; }

    friend class OrvNgPartialUpdates;
    bool canPaintPartly() const;
    bool canMovePixels() const;
    double gridReach() const;
    void movePixels(int dx, int dy);
    void spareWidgetBackground();
    void watchStyle();
    bool isFar(const QTransform& toView) const;
    bool isPaintingOnScreen() const;
    bool updateFarPicture();
    void paintNear(const QPaintEvent* event);
    void paintFar(const QPaintEvent* event);
    void paintOverview(QImage* picture, const QTransform& toPicture);
    void paintSeverPath();
    void paintBand();
    void paintMinimap();

    void scaleAboutAnchor(double factor);
    void centerWithinSceneRect(const QPointF& point);
    void advanceWhileDragging(bool restartTimer);
    QPointF sceneCenter(const QSize& viewportSize) const;
    QPointF visibleCenter() const { return sceneCenter(viewport()->size()); }

    OrvNavigationMode m_NavigationMode = NavigationNone;
    QPoint m_ZoomPressViewPos;
    QPointF m_ZoomPressScenePos;
    QPointF m_ZoomPressSceneCenter;
    float m_ZoomPressScale = 1.0F; ///< m11 of the view's transform
    bool m_MinimapVisible = true;
    bool m_MinimapShown = false; ///< the last paint drew it
    QRect m_MinimapPainted; ///< where that is now, in viewport pixels
    std::unique_ptr<OrvNgMinimap> m_Minimap;
    std::unique_ptr<OrvNgPartialUpdates> m_PartialUpdates;
    bool m_GridEnabled = false;
    QTimer m_AutoScrollTimer;

    QPointer<QGraphicsScene> m_EditedScene; ///< to which the state of editing belongs
    QPointer<OrvNgNode> m_HoveredNode;
    QPointer<OrvNgPort> m_HoveredPort;
    QPointer<OrvNgEdge> m_HighlightedEdge;
    std::unique_ptr<OrvNgRubberBand> m_Band;
    QTransform m_BandTransform; ///< of the viewport when the band's items were last looked for
    bool m_ShakeDetectionEnabled = false;
    bool m_PressGaveMouse = false; ///< to an item, which loses it with the release
    QList<QGraphicsItem*> m_OrderAtPress; ///< what was selected, maybe gone: keys for the next
    QHash<const QGraphicsItem*, OrvNgGuardedItem> m_SelectionAtPress;
    int m_SelectionMode = 0; ///< OrvNgNode::OrvNgSelectMode of the press
    OrvCursorTrackingMode m_CursorTrackingMode = CURSOR_TRACKING_NONE;
    std::unique_ptr<OrvNgCursorPath> m_Path;
    QElapsedTimer m_Clock; ///< of the path
    QList<QPointer<OrvNgEdge>> m_EdgesToSever; ///< marked while the path is drawn

protected:
    /// "Quill" or "Harbor"; a derived class may set it.
    QString m_NavigationScheme = QStringLiteral("Quill");

private:
    QRectF m_VisibleNodeBounds;
    double m_NodeBoundsAspect = 1.0; ///< width divided by height; an extent of 0 counts as 1
    QTimer m_BoundsTimer;
    bool m_BoundsDirty = true;
    std::unique_ptr<OrvNgGrid> m_Grid;
    std::unique_ptr<OrvNgFarFrame> m_Far;
    double m_FarScale = 0.0; ///< level of detail up to which no item shows its texts
    QCursor m_RazorCursor;
    double m_OnePixelInSceneSpace = 1.0;
    QSize m_CenteredSize; ///< of the viewport when the view was last centred; invalid before
};
