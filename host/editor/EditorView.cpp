#include "editor/EditorView.h"

#include <OrvCoreModules/OrvShortcutManager.h>

#include <QApplication>
#include <QFocusEvent>
#include <QGestureEvent>
#include <QGraphicsScene>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QTimer>
#include <QWheelEvent>

#include <OrvNodeGraph/OrvNgBackdropNode.h>
#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgNode.h>
#include <OrvNodeGraph/OrvNgResizeTriangleItem.h>
#include <cstdlib>

namespace {

constexpr qreal kFrameMargin = 40; // scene units
constexpr qreal kLargestFrameScale = 1.25;
constexpr int kReleaseDelay = 60; // milliseconds
constexpr qreal kPixelsPerAngle = 0.5; // for touchpads that tell angles only: 60 pixels a step

/// Fingers scroll; a wheel turns. Where the platform cannot tell them apart, all of it is a wheel.
bool isFingerScroll(const QWheelEvent& event)
{
    return event.phase() != Qt::NoScrollPhase
        || event.source() == Qt::MouseEventSynthesizedBySystem;
}

EditorView::HeldKeys heldKeyOf(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_C:
        return EditorView::HeldCut;
    case Qt::Key_D:
        return EditorView::HeldDot;
    case Qt::Key_S:
        return EditorView::HeldPlace;
    default:
        return {};
    }
}

bool isPlain(const QKeyEvent& event)
{
    return !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

bool isTypedInto(const QGraphicsScene* scene)
{
    const QGraphicsItem* item = scene ? scene->focusItem() : nullptr;
    return item && item->flags().testFlag(QGraphicsItem::ItemAcceptsInputMethod);
}

} // namespace

EditorView::EditorView(QWidget* parent)
    : OrvNgView(parent)
{
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setFrameShape(QFrame::NoFrame);
    setShakeDetectionEnabled(true);
    // Files are dropped on the window.
    setAcceptDrops(false);
    viewport()->setAcceptDrops(false);
#ifndef Q_OS_MACOS // there the same pinch comes as a native gesture
    viewport()->grabGesture(Qt::PinchGesture);
#endif
}

// Where it looks

void EditorView::frame(const QRectF& sceneRect)
{
    if (sceneRect.isNull())
        return;
    if (!isVisible()) {
        m_FrameWhenShown = sceneRect;
        return;
    }
    const QRectF padded
        = sceneRect.adjusted(-kFrameMargin, -kFrameMargin, kFrameMargin, kFrameMargin);
    const QSizeF smallest = QSizeF(viewport()->size()) / kLargestFrameScale;
    QRectF target(QPointF(), padded.size().expandedTo(smallest));
    target.moveCenter(padded.center());
    fitInView(target, Qt::KeepAspectRatio);
}

void EditorView::lookAt(const QPointF& scenePos, double scale)
{
    setLook({QTransform::fromScale(scale, scale), scenePos});
}

EditorView::Look EditorView::look() const
{
    return {transform(), mapToScene(viewport()->rect()).boundingRect().center()};
}

void EditorView::setLook(const Look& look)
{
    m_FrameWhenShown = {};
    setTransform(look.transform);
    setNewSceneRect(look.center);
    // The first pass may have been held back by the old scene rectangle.
    setNewSceneRect(look.center);
}

void EditorView::showEvent(QShowEvent* event)
{
    OrvNgView::showEvent(event);
    const QRectF waiting = m_FrameWhenShown;
    m_FrameWhenShown = {};
    frame(waiting);
}

void EditorView::hideEvent(QHideEvent* event)
{
    OrvNgView::hideEvent(event);
    letGoOfKeys();
    setMouseHeld(false);
    followActivity(false);
}

void EditorView::paintEvent(QPaintEvent* event)
{
    OrvNgView::paintEvent(event);
    const double scale = transform().m11();
    if (qFuzzyCompare(scale, m_PaintedScale))
        return;
    m_PaintedScale = scale;
    Q_EMIT scaleChanged(scale);
}

// Wheels and fingers

/// The scene point at a viewport position stays there to a fraction of a pixel. The anchor under the mouse
/// alone would round to whole pixels each time, and asks where the cursor is by now.
void EditorView::zoomAbout(const QPointF& viewPos, const std::function<void()>& zoom)
{
    const QTransform before = viewportTransform();
    const QPointF kept = before.inverted().map(viewPos);
    setTransformationAnchor(QGraphicsView::AnchorViewCenter);
    zoom();
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    if (!qFuzzyCompare(viewportTransform().determinant(), before.determinant()))
        panBy(viewPos - viewportTransform().map(kept));
}

/// Moves what is seen by viewport pixels.
void EditorView::panBy(const QPointF& pixels)
{
    const QPointF center(viewport()->width() * 0.5, viewport()->height() * 0.5);
    setNewSceneRect(viewportTransform().inverted().map(center - pixels));
}

void EditorView::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (isFingerScroll(*event) && !event->modifiers().testFlag(Qt::ControlModifier)) {
        const QPointF pixels = event->pixelDelta().isNull()
            ? QPointF(event->angleDelta()) * kPixelsPerAngle
            : QPointF(event->pixelDelta());
        if (event->buttons() == Qt::NoButton)
            panBy(pixels);
        return;
    }
    const int steps = m_WheelSteps.add(event->angleDelta(), event->timestamp());
    const QPoint oneStep(
        0, steps < 0 ? -QWheelEvent::DefaultDeltasPerStep : QWheelEvent::DefaultDeltasPerStep);
    for (int i = 0; i < std::abs(steps); ++i) {
        QWheelEvent step(event->position(), event->globalPosition(), QPoint(), oneStep,
            event->buttons(), event->modifiers(), Qt::NoScrollPhase, false);
        zoomAbout(event->position(), [&] { OrvNgView::wheelEvent(&step); });
    }
}

bool EditorView::viewportEvent(QEvent* event)
{
    const bool isDone = (event->type() == QEvent::NativeGesture
                            && zoomByGesture(static_cast<const QNativeGestureEvent*>(event)))
        || (event->type() == QEvent::Gesture && zoomByGesture(static_cast<QGestureEvent*>(event)));
    if (isDone)
        event->accept();
    return isDone || OrvNgView::viewportEvent(event);
}

bool EditorView::zoomByGesture(const QNativeGestureEvent* event)
{
    if (event->gestureType() != Qt::ZoomNativeGesture)
        return false;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QPointF viewPos = event->localPos();
#else
    const QPointF viewPos = event->position();
#endif
    zoomAbout(viewPos, [&] { scaleView(1.0 + event->value()); });
    return true;
}

bool EditorView::zoomByGesture(QGestureEvent* event)
{
    auto* pinch = static_cast<QPinchGesture*>(event->gesture(Qt::PinchGesture));
    if (!pinch)
        return false;
    event->accept(pinch);
    if (pinch->changeFlags().testFlag(QPinchGesture::ScaleFactorChanged)) {
        const QPointF viewPos = viewport()->mapFromGlobal(pinch->centerPoint().toPoint());
        zoomAbout(viewPos, [&] { scaleView(pinch->scaleFactor()); });
    }
    return true;
}

// Keys

void EditorView::keyPressEvent(QKeyEvent* event)
{
    if (isTypedInto(scene())) {
        OrvNgView::keyPressEvent(event);
        return;
    }
    const HeldKeys key = heldKeyOf(*event);
    if (key && isPlain(*event)) {
        // A drag that is under way stays what it is.
        const bool isTooLate = m_MouseHeld && key == HeldKeys(HeldCut);
        m_Releases.remove(int(key));
        if (!event->isAutoRepeat() && !isTooLate)
            setHeld(m_Held | key);
        return;
    }
    if (event->key() == Qt::Key_Tab || (event->key() == Qt::Key_Escape && cancel()))
        return;
    OrvNgView::keyPressEvent(event);
}

/// X11 sends releases while a key repeats, and they often do not say so: only one that no press follows at
/// once is meant.
void EditorView::keyReleaseEvent(QKeyEvent* event)
{
    const HeldKeys key = heldKeyOf(*event);
    if (!key)
        OrvNgView::keyReleaseEvent(event);
    if (event->isAutoRepeat() || !(m_Held & key))
        return;
    const int release = ++m_LastRelease;
    m_Releases.insert(int(key), release);
    QTimer::singleShot(kReleaseDelay, this, [this, key, release] {
        if (m_Releases.value(int(key)) == release)
            setHeld(m_Held & ~key);
    });
}

/// While Tab belongs to the graph it does not move the focus.
bool EditorView::focusNextPrevChild(bool next)
{
    if (OrvShortcutManager::instance().isSpecialShortcutEnabled(Qt::Key_Tab))
        return false;
    return OrvNgView::focusNextPrevChild(next);
}

/// The keys' releases go elsewhere from now on; under a popup the mouse button's too.
void EditorView::focusOutEvent(QFocusEvent* event)
{
    OrvNgView::focusOutEvent(event);
    letGoOfKeys();
    if (event->reason() == Qt::PopupFocusReason)
        setMouseHeld(false);
}

void EditorView::letGoOfKeys()
{
    m_Releases.clear();
    setHeld({});
    if (m_Cutting)
        cancelCut();
}

void EditorView::setHeld(HeldKeys held)
{
    if (held == m_Held)
        return;
    m_Held = held;
    followCutKey();
    Q_EMIT heldKeysChanged(m_Held);
}

/// A path that has been begun is drawn to its end, whichever of key and button is let go first.
void EditorView::followCutKey()
{
    const bool isWanted = m_Held.testFlag(HeldCut);
    if (isWanted == m_Cutting || (m_Cutting && m_MouseHeld))
        return;
    m_Cutting = isWanted;
    setCursorTrackingMode(m_Cutting ? CURSOR_TRACKING_SEVER_EDGES : CURSOR_TRACKING_NONE);
}

// The mouse

void EditorView::mousePressEvent(QMouseEvent* event)
{
    setMouseHeld(true);
    OrvNgView::mousePressEvent(event);
    followActivity(false);
    if (event->button() != Qt::LeftButton)
        return;
    m_PressPos = event->pos();
    m_Press.remember(scene());
    m_BandPossible = scene() && !scene()->mouseGrabberItem();
}

void EditorView::mouseDoubleClickEvent(QMouseEvent* event)
{
    setMouseHeld(true);
    m_BandPossible = false;
    OrvNgView::mouseDoubleClickEvent(event);
}

void EditorView::mouseMoveEvent(QMouseEvent* event)
{
    OrvNgView::mouseMoveEvent(event);
    if (event->buttons() == Qt::NoButton)
        setMouseHeld(false); // the release went elsewhere
    const bool isFar
        = (event->pos() - m_PressPos).manhattanLength() >= QApplication::startDragDistance();
    followActivity(
        event->buttons().testFlag(Qt::LeftButton) && (isFar || m_Activity != Activity::Idle));
}

void EditorView::mouseReleaseEvent(QMouseEvent* event)
{
    OrvNgView::mouseReleaseEvent(event);
    setMouseHeld(event->buttons() != Qt::NoButton);
    followActivity(false);
}

bool EditorView::canBandSelect(QGraphicsItem* item, const QPolygonF& band) const
{
    auto* backdrop = dynamic_cast<OrvNgBackdropNode*>(item);
    if (!backdrop)
        return true;
    QRectF titleBar = backdrop->boundingRect();
    titleBar.setHeight(qreal(backdrop->titleBarHeight()));
    return band.intersects(backdrop->mapToScene(titleBar));
}

void EditorView::followActivity(bool isDragging)
{
    const QGraphicsItem* grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    Activity activity = Activity::Idle;
    if (dynamic_cast<const OrvNgEdge*>(grabber))
        activity = Activity::CarryingEdge;
    else if (isDragging && dynamic_cast<const OrvNgBackdropNode*>(grabber))
        activity = Activity::DraggingBackdrop;
    else if (isDragging && dynamic_cast<const OrvNgNode*>(grabber))
        activity = Activity::DraggingNode;
    if (activity == m_Activity)
        return;
    m_Activity = activity;
    Q_EMIT activityChanged(m_Activity);
}

void EditorView::setMouseHeld(bool held)
{
    if (held == m_MouseHeld)
        return;
    m_MouseHeld = held;
    m_BandPossible = false;
    followCutKey();
    Q_EMIT mouseHeldChanged(held);
}

// Giving up

bool EditorView::cancel()
{
    const bool isDone = cancelWhatHoldsTheMouse();
    followActivity(false);
    return isDone;
}

bool EditorView::cancelWhatHoldsTheMouse()
{
    QGraphicsItem* grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    if (auto* edge = dynamic_cast<OrvNgEdge*>(grabber))
        return cancelEdge(edge);
    if (m_Cutting && m_MouseHeld)
        return cancelCut();
    if (dynamic_cast<OrvNgNode*>(grabber))
        return cancelNodeDrag();
    if (dynamic_cast<OrvNgResizeTriangleItem*>(grabber)) {
        grabber->ungrabMouse(); // the handle takes back a resize that it cannot finish
        return true;
    }
    return m_BandPossible && cancelBand();
}

bool EditorView::cancelEdge(OrvNgEdge* edge)
{
    const QPointer<OrvNgEdge> guard(edge);
    const QPoint globalPos = QCursor::pos();
    edge->releaseMouse(globalPos, mapToScene(viewport()->mapFromGlobal(globalPos)), true);
    if (guard && guard->scene() && guard->scene()->mouseGrabberItem() == guard)
        guard->ungrabMouse();
    return true;
}

bool EditorView::cancelCut()
{
    setCursorTrackingMode(CURSOR_TRACKING_NONE);
    m_Cutting = m_Held.testFlag(HeldCut);
    if (m_Cutting)
        setCursorTrackingMode(CURSOR_TRACKING_SEVER_EDGES);
    return true;
}

/// First the places: a node that loses the mouse elsewhere has been moved.
bool EditorView::cancelNodeDrag()
{
    m_Press.putBack();
    scene()->mouseGrabberItem()->ungrabMouse();
    return true;
}

bool EditorView::cancelBand()
{
    m_BandPossible = false;
    const QList<QGraphicsItem*> before = lastSelectionCombinedWith({});
    cancelDragSelect();
    const QList<QGraphicsItem*> now = scene()->selectedItems();
    for (QGraphicsItem* item : now)
        item->setSelected(before.contains(item));
    for (QGraphicsItem* item : before)
        item->setSelected(true);
    return true;
}
