#include "OrvNodeGraph/OrvNgView.h"

#include "OrvNodeGraph/OrvNgCursorPath.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgFarFrame.h"
#include "OrvNodeGraph/OrvNgGrid.h"
#include "OrvNodeGraph/OrvNgGuardedItem.h"
#include "OrvNodeGraph/OrvNgMinimap.h"
#include "OrvNodeGraph/OrvNgNavigation.h"
#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgPartialUpdates.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgRubberBand.h"
#include "OrvNodeGraph/OrvNgSceneNodes.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include "OrvCore/OrvPixmap.h"
#include "OrvCore/OrvResourceInfo.h"
#include "OrvCoreModules/OrvShaderNetworkManager.h"
#include "OrvCoreModules/OrvShortcutManager.h"

#include <QGraphicsScene>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopeGuard>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

namespace {

constexpr int kBoundsDelay = 50; // milliseconds
constexpr int kAutoScrollInterval = 50; // milliseconds
constexpr int kAutoScrollBorder = 30; // viewport pixels
constexpr int kAutoScrollStep = 10; // viewport pixels
constexpr double kSmallestZoom = 0.07; // of zoomIn() and zoomOut(), both inclusive
constexpr double kLargestZoom = 100.0;
constexpr double kWheelFactor = 1.15;
constexpr double kFarthestCoordinate = 1e9; // scroll bars count in int

bool isFinite(const QRectF& rect)
{
    return qIsFinite(rect.x()) && qIsFinite(rect.y()) && qIsFinite(rect.right())
        && qIsFinite(rect.bottom());
}

/// Grown by its own size on every side.
QRectF withMargin(const QRectF& rect)
{
    return rect.adjusted(-rect.width(), -rect.height(), rect.width(), rect.height());
}

QPointF viewCenter(const QSize& viewportSize)
{
    return QPointF(viewportSize.width() * 0.5, viewportSize.height() * 0.5);
}

bool isReachable(const QPointF& scenePos)
{
    return std::abs(scenePos.x()) <= kFarthestCoordinate
        && std::abs(scenePos.y()) <= kFarthestCoordinate;
}

QCursor razorCursor()
{
    const QPixmap pixmap = OrvPixmap::createQPixmapFromPath(
        OrvResourceInfo::instance().iconPath() + QStringLiteral("/Razor.png"));
    return pixmap.isNull() ? QCursor(Qt::CrossCursor) : QCursor(pixmap, 7, 26);
}

void setTabEnabled(bool enabled)
{
    OrvShortcutManager::instance().setEnabledSpecialShortcut(Qt::Key_Tab, enabled);
}

/// A left-button event at the place of another one, for the base class's hand scrolling.
QMouseEvent asLeftButton(const QMouseEvent& event, QEvent::Type type, Qt::MouseButtons buttons,
    Qt::KeyboardModifiers modifiers)
{
    return QMouseEvent(type, event.localPos(), event.windowPos(), event.screenPos(), Qt::LeftButton,
        buttons, modifiers);
}

} // namespace

OrvNgView::OrvNgView(QWidget* parent)
    : QGraphicsView(parent)
    , m_Minimap(std::make_unique<OrvNgMinimap>())
    , m_PartialUpdates(std::make_unique<OrvNgPartialUpdates>())
    , m_Band(std::make_unique<OrvNgRubberBand>())
    , m_Path(std::make_unique<OrvNgCursorPath>())
    , m_Grid(std::make_unique<OrvNgGrid>())
    , m_Far(std::make_unique<OrvNgFarFrame>())
    , m_RazorCursor(razorCursor())
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    setTransformationAnchor(QGraphicsView::AnchorViewCenter);
    setResizeAnchor(QGraphicsView::AnchorViewCenter);
    setDragMode(QGraphicsView::NoDrag);
    setRubberBandSelectionMode(Qt::IntersectsItemBoundingRect);
    setRenderHints(
        QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    // Without it a scene whose items ask for no hover events gets no moves while no button is held.
    viewport()->setMouseTracking(true);
    m_Clock.start();
    connectServices();
}

OrvNgView::~OrvNgView() = default;

void OrvNgView::connectServices()
{
    connect(&m_AutoScrollTimer, &QTimer::timeout, this, &OrvNgView::autoScroll);
    m_BoundsTimer.setSingleShot(true);
    connect(&m_BoundsTimer, &QTimer::timeout, this, &OrvNgView::calculateVisibleNodesBoundingRect);

    const auto* network = OrvShaderNetworkManager::instance();
    connect(network, &OrvShaderNetworkManager::showGridChanged, this, &OrvNgView::setGridEnabled);
    connect(
        network, &OrvShaderNetworkManager::gridHeightChanged, this, &OrvNgView::refreshBackground);
    connect(
        network, &OrvShaderNetworkManager::gridWidthChanged, this, &OrvNgView::refreshBackground);

    const OrvNgStyle& style = OrvNgStyle::instance();
    connect(&style, &OrvNgStyle::SceneBackgroundBrushChanged, this, &OrvNgView::refreshBackground);
    connect(&style, &OrvNgStyle::GridPenChanged, this, &OrvNgView::refreshBackground);
    watchStyle();
}

void OrvNgView::init()
{
    m_BoundsDirty = true;
    calculateVisibleNodesBoundingRect();
    setNewSceneRect();
    setGridEnabled(OrvShaderNetworkManager::instance()->showGrid());
}

// What is visible

QPointF OrvNgView::sceneCenter(const QSize& viewportSize) const
{
    return viewportTransform().inverted().map(viewCenter(viewportSize));
}

QRectF OrvNgView::viewportInSceneCoords()
{
    return mapToScene(viewport()->rect()).boundingRect();
}

float OrvNgView::aspect() const
{
    return float(width()) / float(qMax(1, height()));
}

void OrvNgView::centerViewOn(const QPointF& point, bool resetScale)
{
    if (!isReachable(point))
        return;
    if (resetScale)
        setTransform(QTransform::fromScale(1.0, 1.0));
    const QTransform before = transform();
    centerWithinSceneRect(point);
    const QPointF miss = viewportTransform().map(point) - viewCenter(viewport()->size());
    if (miss.manhattanLength() > 0.5 && !viewport()->size().isEmpty()) {
        QRectF visible = viewportInSceneCoords();
        visible.moveCenter(point);
        setTransform(before);
        setSceneRect(sceneRect().united(withMargin(visible)));
        centerWithinSceneRect(point);
    }
    m_CenteredSize = viewport()->size();
}

void OrvNgView::centerWithinSceneRect(const QPointF& point)
{
    centerOn(point);
    // The scroll bars count whole pixels: the rest goes into the transform.
    const QPointF measured = visibleCenter();
    const ViewportAnchor anchor = transformationAnchor();
    setTransformationAnchor(QGraphicsView::NoAnchor);
    translate(measured.x() - point.x(), measured.y() - point.y());
    setTransformationAnchor(anchor);
}

void OrvNgView::fitInView(QRectF rect, Qt::AspectRatioMode mode)
{
    if (!isFinite(rect))
        return;
    const QTransform before = transform();
    const QPointF centerBefore = visibleCenter();
    QGraphicsView::fitInView(rect, mode);
    if (!OrvNgNavigation::isUsable(transform())) {
        setTransform(before);
        setNewSceneRect(centerBefore);
        return;
    }
    setNewSceneRect();
    if (mode == Qt::KeepAspectRatio)
        centerViewOn(rect.center(), false);
}

void OrvNgView::setNewSceneRect()
{
    setNewSceneRect(visibleCenter());
}

void OrvNgView::setNewSceneRect(const QPointF& SceneCenter)
{
    const QRectF rect = withMargin(viewportInSceneCoords().united(m_VisibleNodeBounds));
    if (rect != sceneRect())
        setSceneRect(rect);
    centerViewOn(SceneCenter, false);
}

void OrvNgView::contentsChanged()
{
    m_BoundsDirty = true;
    m_BoundsTimer.start(kBoundsDelay);
}

void OrvNgView::calculateVisibleNodesBoundingRect()
{
    if (!m_BoundsDirty)
        return;
    m_BoundsDirty = false;
    m_Minimap->markStale();
    if (m_MinimapShown)
        viewport()->update();

    QRectF bounds;
    bool isFirst = true;
    const QSet<OrvNgNode*> nodes = OrvNgSceneNodes::nodes(scene());
    for (const OrvNgNode* node : nodes) {
        if (!node->isVisible())
            continue;
        const QRectF nodeBounds = node->sceneBoundingRect();
        if (!isFinite(nodeBounds))
            continue;
        bounds = isFirst ? nodeBounds : bounds | nodeBounds;
        isFirst = false;
    }
    if (bounds == m_VisibleNodeBounds)
        return;
    m_VisibleNodeBounds = bounds;
    const auto extent = [](double length) { return length > 0.0 ? length : 1.0; };
    m_NodeBoundsAspect = extent(bounds.width()) / extent(bounds.height());
    if (!m_MinimapShown && shouldDisplayMinimap())
        viewport()->update(); // what changed was painted before its bounds were known
    setNewSceneRect();
}

double OrvNgView::calcOnePixelInSceneSpace() const
{
    bool invertible = false;
    const QTransform toScene = viewportTransform().inverted(&invertible);
    if (!invertible)
        return m_OnePixelInSceneSpace;
    return std::abs(toScene.map(QPointF(1.0, 0.0)).x() - toScene.map(QPointF(0.0, 0.0)).x());
}

// Minimap

bool OrvNgView::isMinimapRendering() const
{
    return m_Minimap->isRendering();
}

void OrvNgView::setMinimapVisible(bool visible)
{
    if (visible)
        m_Minimap->markStale();
    m_MinimapVisible = visible;
    viewport()->update();
}

OrvNgMinimapFrame OrvNgView::minimapFrame() const
{
    return OrvNgMinimapFrame(size(), viewport()->size(), m_VisibleNodeBounds, m_NodeBoundsAspect);
}

QRect OrvNgView::minimapRect()
{
    return minimapFrame().m_Rect;
}

/// With its border.
QRect OrvNgView::minimapArea() const
{
    return minimapFrame().m_Rect.adjusted(-1, -1, 1, 1);
}

int OrvNgView::minimapWidth() const
{
    return OrvNgMinimapFrame::sizeFor(size()).width();
}

int OrvNgView::minimapHeight() const
{
    return OrvNgMinimapFrame::sizeFor(size()).height();
}

bool OrvNgView::isInMinimap(const QPoint& viewPos) const
{
    return minimapFrame().m_Rect.contains(viewPos);
}

QPointF OrvNgView::mapMinimapPosToScenePos(const QPoint& viewPos)
{
    if (!m_MinimapShown || !isInMinimap(viewPos))
        return QPointF(0.0, 0.0);
    return minimapFrame().toScene(viewPos);
}

/// In doubles: nodes far out at a deep zoom are more pixels away than an int counts.
bool OrvNgView::shouldDisplayMinimap() const
{
    if (!m_MinimapVisible || !scene() || m_VisibleNodeBounds.isNull())
        return false;
    const QRectF nodes = viewportTransform().mapRect(m_VisibleNodeBounds);
    return !(std::floor(nodes.left()) >= 0.0 && std::floor(nodes.top()) >= 0.0
        && std::ceil(nodes.right()) <= viewport()->width()
        && std::ceil(nodes.bottom()) <= viewport()->height());
}

// Zooming and panning by steps

void OrvNgView::zoomIn(double scaleFactor, QGraphicsView::ViewportAnchor Anchor)
{
    const ViewportAnchor anchor = transformationAnchor();
    setTransformationAnchor(Anchor);
    scaleView(scaleFactor);
    setTransformationAnchor(anchor);
}

void OrvNgView::zoomOut(double scaleFactor, QGraphicsView::ViewportAnchor Anchor)
{
    if (scaleFactor > 0.0)
        zoomIn(1.0 / scaleFactor, Anchor);
}

void OrvNgView::scaleView(double scaleFactor)
{
    if (!scene() || !(scaleFactor > 0.0))
        return;
    const QTransform scaled = QTransform(transform()).scale(scaleFactor, scaleFactor);
    const double width = scaled.mapRect(QRectF(0.0, 0.0, 1.0, 1.0)).width();
    // Written so that a width that is not a number is refused as well.
    if (!(width >= kSmallestZoom && width <= kLargestZoom))
        return;
    scaleAboutAnchor(scaleFactor);
}

/// The base class centres by whole pixels; about the centre this is exact, so that steps back and
/// forth end where they began.
void OrvNgView::scaleAboutAnchor(double factor)
{
    const QPointF center = visibleCenter();
    scale(factor, factor);
    if (transformationAnchor() == QGraphicsView::AnchorViewCenter)
        setNewSceneRect(center);
    else
        setNewSceneRect();
}

void OrvNgView::panUp()
{
    verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepSub);
}

void OrvNgView::panDown()
{
    verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
}

void OrvNgView::panLeft()
{
    horizontalScrollBar()->triggerAction(isRightToLeft() ? QAbstractSlider::SliderSingleStepAdd
                                                         : QAbstractSlider::SliderSingleStepSub);
}

void OrvNgView::panRight()
{
    horizontalScrollBar()->triggerAction(isRightToLeft() ? QAbstractSlider::SliderSingleStepSub
                                                         : QAbstractSlider::SliderSingleStepAdd);
}

void OrvNgView::wheelEvent(QWheelEvent* event)
{
    if (!scene())
        QGraphicsView::wheelEvent(event);
    if (drawingEdgeSeverPath()) {
        event->accept();
        return;
    }
    if (isNavigating()) {
        event->ignore();
        return;
    }
    const double delta = double(event->angleDelta().x()) + double(event->angleDelta().y());
    // Deliberate: not held to the limits of zoomIn(), so that the wheel gets out of scales beyond.
    const double factor = delta > 0.0 ? kWheelFactor : delta < 0.0 ? 1.0 / kWheelFactor : 1.0;
    if (OrvNgNavigation::isUsable(QTransform(transform()).scale(factor, factor)))
        scaleAboutAnchor(factor);
    else
        setNewSceneRect();
    event->accept();
}

// Scrolling while something is dragged near the border

void OrvNgView::autoScroll()
{
    advanceWhileDragging(false);
}

void OrvNgView::advanceWhileDragging(bool restartTimer)
{
    QGraphicsItem* grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    if (!grabber || isNavigating())
        return;
    if (dynamic_cast<OrvNgNode*>(grabber) || dynamic_cast<OrvNgEdge*>(grabber))
        autoScrollAdvance(nullptr, restartTimer);
}

void OrvNgView::autoScrollAdvance(OrvNgNode*, bool restartTimer)
{
    const QPoint cursor = mapFromGlobal(QCursor::pos());
    const QRect area(0, 0, width(), height());
    // At a large scale a bar may stand at the least number there is.
    const auto scroll = [](QScrollBar* bar, int step) {
        bar->setValue(int(
            qBound(qint64(bar->minimum()), qint64(bar->value()) + step, qint64(bar->maximum()))));
    };
    if (cursor.x() < area.left() + kAutoScrollBorder)
        scroll(horizontalScrollBar(), -kAutoScrollStep);
    if (cursor.y() < area.top() + kAutoScrollBorder)
        scroll(verticalScrollBar(), -kAutoScrollStep);
    if (cursor.x() > area.right() - kAutoScrollBorder)
        scroll(horizontalScrollBar(), kAutoScrollStep);
    if (cursor.y() > area.bottom() - kAutoScrollBorder)
        scroll(verticalScrollBar(), kAutoScrollStep);
    if (restartTimer)
        m_AutoScrollTimer.start(kAutoScrollInterval);
}

// Navigation drags

bool OrvNgView::isNavigationHarbor()
{
    return OrvNgNavigation::isHarbor(m_NavigationScheme);
}

bool OrvNgView::isNavigationQuill()
{
    return OrvNgNavigation::isQuill(m_NavigationScheme);
}

/// Deliberate: a place of the minimap that shows the scene's origin exactly counts as outside it.
bool OrvNgView::pressStartsInMinimap(QMouseEvent* event)
{
    const QPointF scenePos = mapMinimapPosToScenePos(event->pos());
    if (event->button() != Qt::LeftButton || scenePos.isNull())
        return false;
    m_AutoScrollTimer.stop();
    cancelNavigation();
    endEditing();
    setInteractive(true);
    m_NavigationMode = NavigationMinimap;
    centerViewOn(scenePos, false);
    event->accept();
    return true;
}

/// Beyond its border the cursor counts as on it. Once all nodes are in view the minimap is gone, and the
/// view stays where it is.
void OrvNgView::followMinimapDrag(const QPoint& viewPos)
{
    if (m_NavigationMode != NavigationMinimap || !m_MinimapShown)
        return;
    const OrvNgMinimapFrame frame = minimapFrame();
    const QPoint inside(qBound(frame.m_Rect.left(), viewPos.x(), frame.m_Rect.right()),
        qBound(frame.m_Rect.top(), viewPos.y(), frame.m_Rect.bottom()));
    centerViewOn(frame.toScene(inside), false);
}

void OrvNgView::endMinimapDrag()
{
    if (m_NavigationMode != NavigationMinimap)
        return;
    m_NavigationMode = NavigationNone;
    setNewSceneRect(); // so that a pan has a margin again
}

bool OrvNgView::pressStartsNavigation(QMouseEvent* event)
{
    m_AutoScrollTimer.stop();
    cancelNavigation(); // another button may still hold one
    cancelDragSelect();
    setInteractive(true);
    const OrvNgNavigation::Start start
        = OrvNgNavigation::startFor(event->button(), event->modifiers(), m_NavigationScheme);
    switch (start.m_Drag) {
    case OrvNgNavigation::Drag::Pan:
        startPan(event, start.m_DroppedModifiers);
        return true;
    case OrvNgNavigation::Drag::Zoom:
        startZoomDrag(event);
        return true;
    case OrvNgNavigation::Drag::None:
        break;
    }
    return false;
}

/// The base class scrolls by hand: not interactive, it sees a plain drag with the left button, and
/// no item sees it at all.
void OrvNgView::startPan(QMouseEvent* event, Qt::KeyboardModifiers droppedModifiers)
{
    m_NavigationMode = NavigationPan;
    setDragMode(QGraphicsView::ScrollHandDrag);
    setInteractive(false);
    const auto restore = qScopeGuard([this] { setInteractive(true); });
    QMouseEvent press = asLeftButton(*event, QEvent::MouseButtonPress,
        event->buttons() | Qt::LeftButton, event->modifiers() & ~droppedModifiers);
    QGraphicsView::mousePressEvent(&press);
    event->accept();
}

bool OrvNgView::releaseEndsPan(QMouseEvent* event)
{
    if (m_NavigationMode != NavigationPan)
        return false;
    QMouseEvent release = asLeftButton(*event, QEvent::MouseButtonRelease,
        event->buttons() & ~Qt::MouseButtons(Qt::LeftButton), event->modifiers());
    endPan(&release);
    event->accept();
    return true;
}

/// Not interactive, the base class does not take the release for a click that clears the selection.
void OrvNgView::endPan(const QMouseEvent* release)
{
    m_NavigationMode = NavigationNone;
    {
        setInteractive(false);
        const auto restore = qScopeGuard([this] { setInteractive(true); });
        QMouseEvent event(*release);
        QGraphicsView::mouseReleaseEvent(&event);
    }
    setDragMode(QGraphicsView::NoDrag);
    setNewSceneRect(); // so that the next pan has a margin again
}

void OrvNgView::startZoomDrag(const QMouseEvent* event)
{
    m_NavigationMode = NavigationZoom;
    m_ZoomPressViewPos = event->pos();
    m_ZoomPressScenePos = mapToScene(event->pos());
    m_ZoomPressSceneCenter = visibleCenter();
    m_ZoomPressScale = float(transform().m11());
    setDragMode(QGraphicsView::NoDrag);
    viewport()->setCursor(Qt::SizeFDiagCursor);
}

void OrvNgView::followZoomDrag(const QMouseEvent* event)
{
    if (m_NavigationMode != NavigationZoom)
        return;
    const double factor = OrvNgNavigation::zoomDragFactor(m_ZoomPressViewPos, event->pos(), size());
    const double scale = double(m_ZoomPressScale) * factor;
    const QTransform zoomed = QTransform::fromScale(scale, scale);
    if (!OrvNgNavigation::isUsable(zoomed))
        return;
    // Deliberate: a rotation and an uneven scale are dropped here.
    setTransform(zoomed);
    if (transformationAnchor() != QGraphicsView::AnchorUnderMouse)
        return;
    setTransformationAnchor(QGraphicsView::NoAnchor);
    setNewSceneRect(
        OrvNgNavigation::centerZoomedAbout(m_ZoomPressScenePos, m_ZoomPressSceneCenter, factor));
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
}

void OrvNgView::endZoomDrag()
{
    if (m_NavigationMode != NavigationZoom)
        return;
    m_NavigationMode = NavigationNone;
    setDragMode(QGraphicsView::NoDrag);
    viewport()->unsetCursor();
    setNewSceneRect();
}

/// For a drag whose release goes elsewhere: focus lost, view hidden, another button pressed.
void OrvNgView::cancelNavigation()
{
    endZoomDrag();
    endMinimapDrag();
    if (m_NavigationMode != NavigationPan)
        return;
    const QPoint globalPos = QCursor::pos();
    const QMouseEvent release(QEvent::MouseButtonRelease, viewport()->mapFromGlobal(globalPos),
        globalPos, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    endPan(&release);
}

// Keys, focus and hover

void OrvNgView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Down:
        return; // Deliberate: the arrows neither scroll nor reach the items.
    default:
        QGraphicsView::keyPressEvent(event);
    }
}

// Deliberate: none of the four passes its event on to the base class.

void OrvNgView::enterEvent(QEvent*)
{
    setTabEnabled(true);
}

void OrvNgView::leaveEvent(QEvent*)
{
    setTabEnabled(false);
    clearHover();
}

void OrvNgView::focusInEvent(QFocusEvent*)
{
    setTabEnabled(true);
}

void OrvNgView::focusOutEvent(QFocusEvent* event)
{
    if (event->reason() != Qt::PopupFocusReason) // the menu of a drop
        cancelCarriedEdge();
    setTabEnabled(false);
    cancelNavigation();
    endEditing();
}

// Showing and resizing

void OrvNgView::showEvent(QShowEvent* event)
{
    const ViewportAnchor anchor = transformationAnchor();
    setTransformationAnchor(QGraphicsView::AnchorViewCenter);
    setResizeAnchor(QGraphicsView::AnchorViewCenter);
    QGraphicsView::showEvent(event);
    setTransformationAnchor(anchor);
    spareWidgetBackground();
}

void OrvNgView::hideEvent(QHideEvent* event)
{
    cancelNavigation();
    endEditing();
    cancelCarriedEdge();
    giveUpLostGrab();
    m_AutoScrollTimer.stop();
    QGraphicsView::hideEvent(event);
}

/// Deliberate: not passed to the base class, which would centre by whole pixels.
void OrvNgView::resizeEvent(QResizeEvent* event)
{
    if (!scene())
        return;
    // The first resize knows no old size; the viewport may have been centred on something before
    // it.
    QSize oldSize = event->oldSize();
    if (!oldSize.isValid())
        oldSize = m_CenteredSize.isValid() ? m_CenteredSize : viewport()->size();
    const QPointF oldCenter = sceneCenter(oldSize);
    setNewSceneRect();
    centerViewOn(oldCenter, false);
}
