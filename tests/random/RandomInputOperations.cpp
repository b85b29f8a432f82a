// What the user of the random host does with mouse and keys, and what the host does in answer.
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "RandomWorld.h"

#include "OrvCore/OrvUndoManager.h"

#include <QApplication>
#include <QCursor>
#include <QGraphicsPathItem>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

namespace {

using W = RandomWorld;
using Keys = Qt::KeyboardModifiers;
#define DO(...) [&] { __VA_ARGS__; }

const QList<Qt::MouseButton> kButtons{Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};

// Places

QPointF centerOf(OrvNgPort& port)
{
    return port.mapToScene(port.portRect().center());
}

OrvNgPort* anyPort(W& w)
{
    OrvNgExtendedNode* node = w.anyExtended();
    const OrvNgEdge* input = w.anyInput(node);
    if (input && w.maybe(0.4))
        return node->inputPort(input->text());
    return node ? node->outputPort(w.anyOutput(node)) : nullptr;
}

QPointF anyTargetInScene(W& w)
{
    const int kind = w.below(10);
    OrvNgNode* node = w.anyLiveNode();
    const QRectF body = node ? node->nodeShapeRect() : QRectF();
    if (kind == 0 && node) // header button, handles, title bar
        return node->mapToScene(QPointF(w.maybe() ? body.left() + 4 : body.right() - 4,
            w.maybe() ? body.top() + 4 : body.bottom() - 4));
    if (kind < 5 && node)
        return node->mapToScene(body.center()) + QPointF(w.between(-20, 20), w.between(-8, 8));
    OrvNgPort* port = kind < 7 ? anyPort(w) : nullptr;
    if (port)
        return centerOf(*port);
    OrvNgEdge* edge = kind < 9 ? w.anyEdge() : nullptr;
    const QPainterPath path = edge && edge->isVisible() ? edge->mainEdge()->path() : QPainterPath();
    if (!path.isEmpty())
        return path.pointAtPercent(w.between(0, 1));
    return {w.between(-400, 400), w.between(-300, 300)};
}

/// No mouse goes far beyond the screen.
QPoint viewPos(W& w, const QPointF& scenePos)
{
    const QPoint pos = w.m_View->mapFromScene(scenePos);
    return {qBound(-2000, pos.x(), 2000), qBound(-2000, pos.y(), 2000)};
}

QPoint anyTarget(W& w)
{
    if (w.maybe(0.1))
        return {w.below(w.m_View->width() + 60) - 30, w.below(w.m_View->height() + 60) - 30};
    return viewPos(w, anyTargetInScene(w));
}

Keys anyKeys(W& w)
{
    Keys keys;
    for (const auto key : {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier})
        keys.setFlag(key, w.maybe(0.12));
    return keys;
}

// Mouse

void mouse(W& w, QEvent::Type type, const QPoint& pos, Qt::MouseButton button, Keys keys)
{
    w.m_Held.setFlag(button, type != QEvent::MouseButtonRelease && button != Qt::NoButton);
    w.m_MousePos = pos;
    QWidget* viewport = w.m_View->viewport();
    QMouseEvent event(type, pos, viewport->mapToGlobal(pos), button, w.m_Held, keys);
    QApplication::sendEvent(viewport, &event);
}

void press(W& w, const QPoint& pos, Qt::MouseButton button = Qt::LeftButton, Keys keys = {})
{
    mouse(w, QEvent::MouseButtonPress, pos, button, keys);
}

void release(W& w, Qt::MouseButton button = Qt::LeftButton, Keys keys = {})
{
    mouse(w, QEvent::MouseButtonRelease, w.m_MousePos, button, keys);
}

void glide(W& w, const QPoint& to, int moves, Keys keys = {})
{
    const QPoint from = w.m_MousePos;
    for (int i = 1; i <= moves; ++i)
        mouse(w, QEvent::MouseMove, from + (to - from) * i / moves, Qt::NoButton, keys);
}

/// What a host does when the user lets go, mostly.
void finishDrag(W& w, double probability = 0.7)
{
    QList<QPointer<OrvNgNode>> dragged;
    for (OrvNgNode* node : w.nodes()) {
        if (node->highlightedEdge()
            || (node->isSelected() && node->pos() != node->previousPosition()))
            dragged.append(node);
    }
    for (const QPointer<OrvNgNode>& node : qAsConst(dragged)) {
        if (node && w.maybe(0.3)) {
            w.hostActs();
            OrvUndoManager::instance().push(new OrvNgNodePositionChangeUndo(node));
        }
        if (node && w.maybe(probability))
            node->processAutoinsert();
    }
}

// Single events

void anyPress(W& w)
{
    press(w, anyTarget(w), w.of(kButtons + QList<Qt::MouseButton>{Qt::LeftButton}), anyKeys(w));
}

void anyMove(W& w)
{
    glide(w, anyTarget(w), 1 + w.below(3), anyKeys(w));
}

void anyRelease(W& w)
{
    const Qt::MouseButton button = w.of(kButtons);
    if (w.maybe(0.5))
        w.m_MousePos = anyTarget(w);
    if (w.m_Held.testFlag(button) && w.maybe(0.1))
        w.m_Held.setFlag(button, false); // the release is lost
    else if (w.m_Held.testFlag(button) || w.maybe(0.05)) // or one that nobody has pressed
        release(w, button, anyKeys(w));
    if (button == Qt::LeftButton)
        finishDrag(w);
}

void doubleClick(W& w)
{
    const QPoint pos = anyTarget(w);
    const Keys keys = anyKeys(w);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
        mouse(w, type, pos, Qt::LeftButton, keys);
        release(w, Qt::LeftButton, keys);
    }
    finishDrag(w);
}

void wheel(W& w)
{
    const QPoint pos = anyTarget(w);
    const QPoint angle(w.below(3) * 120 - 120, w.below(5) * 120 - 240);
    QWheelEvent event(pos, w.m_View->viewport()->mapToGlobal(pos), QPoint(), angle, w.m_Held,
        anyKeys(w), Qt::NoScrollPhase, false);
    QApplication::sendEvent(w.m_View->viewport(), &event);
}

void key(W& w)
{
    const QList<Qt::Key> keys{Qt::Key_Left, Qt::Key_Up, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_Delete,
        Qt::Key_A, Qt::Key_Space, Qt::Key_Return};
    QTest::keyClick(w.m_View, w.of(keys), anyKeys(w));
}

void enterLeave(W& w)
{
    QEvent event(w.maybe() ? QEvent::Enter : QEvent::Leave);
    QApplication::sendEvent(w.maybe() ? w.m_View : w.m_View->viewport(), &event);
}

void focus(W& w)
{
    w.maybe() ? w.m_Edit->setFocus() : w.m_View->setFocus();
}

void resize(W& w)
{
    w.dealWithMoves();
    const QList<QSize> odd{{1, 1}, {0, 0}, {3000, 60}};
    w.m_Window->resize(w.maybe(0.1) ? w.of(odd) : QSize(300 + w.below(300), 200 + w.below(300)));
}

void hideShow(W& w)
{
    QWidget* widget = w.maybe() ? w.m_View : w.m_Window.get();
    w.dealWithMoves();
    widget->hide();
    if (w.maybe(0.3)) {
        w.process();
        anyMove(w);
    }
    w.dealWithMoves();
    widget->show();
}

/// Mostly brings the graph back into sight, so that the mouse finds something.
void look(W& w)
{
    if (w.maybe(0.2))
        w.m_View->fitInView(w.m_Scene->itemsBoundingRect(), Qt::KeepAspectRatio);
    else if (w.maybe(0.2))
        w.m_View->centerViewOn(QPointF(w.anyNumber(), w.anyNumber()), w.maybe(0.7));
    else
        w.m_View->centerViewOn(QPointF(0, 0), true);
}

// Gestures

/// The host acts while the user is at something.
void meddle(W& w, double probability)
{
    if (!w.maybe(probability))
        return;
    w.hostActs();
    w.of(RandomOperations::reactions(true))(w);
}

void drag(W& w)
{
    static const QList<RandomAct> s_Meanwhile = RandomOperations::deaths()
        + QList<RandomAct>{focus, hideShow, anyPress, wheel} + RandomOperations::reactions(true);
    const Keys keys = w.maybe(0.8) ? Keys() : anyKeys(w);
    const OrvNgNode* node = w.anyLiveNode();
    const QPointF corner = node ? node->sceneBoundingRect().topLeft() : QPointF();
    const QPoint from = node && w.maybe(0.7)
        ? viewPos(w, corner + QPointF(w.between(2, 60), w.between(2, 16)))
        : anyTarget(w);
    mouse(w, QEvent::MouseMove, from, Qt::NoButton, keys);
    press(w, from, Qt::LeftButton, keys);
    glide(w, anyTarget(w), 1 + w.below(4), keys);
    if (w.maybe(0.2)) { // under the user's hand
        w.hostActs();
        w.of(s_Meanwhile)(w);
        glide(w, anyTarget(w), 2, keys);
    }
    if (!w.maybe(0.93))
        return;
    release(w, Qt::LeftButton, keys);
    finishDrag(w);
}

/// Out of a port, to somewhere, and a click there.
void pull(W& w)
{
    OrvNgPort* port = anyPort(w);
    if (!port)
        return;
    press(w, viewPos(w, centerOf(*port)));
    glide(w, anyTarget(w), 1 + w.below(3));
    if (w.maybe(0.7))
        release(w);
    meddle(w, 0.1);
    glide(w, anyTarget(w), 2);
    if (!w.maybe(0.9))
        return;
    const Qt::MouseButton button = w.maybe(0.85) ? Qt::LeftButton : Qt::RightButton;
    press(w, w.m_MousePos, button);
    release(w, button);
}

void band(W& w)
{
    const Keys keys = anyKeys(w) & ~Keys(Qt::AltModifier);
    press(w, QPoint(2, 2), Qt::LeftButton, keys);
    glide(w, w.m_View->viewport()->rect().center(), 2, keys);
    meddle(w, 0.3);
    glide(w, anyTarget(w), 2, keys);
    if (w.maybe(0.9))
        release(w, Qt::LeftButton, keys);
}

void sever(W& w)
{
    w.m_View->setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_SEVER_EDGES);
    const QPoint from = anyTarget(w);
    press(w, from);
    glide(w, from + QPoint(w.below(400) - 200, w.below(300) - 150), 6);
    meddle(w, 0.1);
    if (w.maybe(0.9))
        release(w);
    if (w.maybe(0.9))
        w.m_View->setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
}

void shake(W& w)
{
    w.m_View->setShakeDetectionEnabled(true);
    const OrvNgNode* node = w.anyLiveNode();
    if (!node)
        return;
    const QPoint from = viewPos(w, node->sceneBoundingRect().center());
    press(w, from);
    for (int i = 0; i < 7; ++i)
        glide(w, from + QPoint(i % 2 ? 60 : -60, 3), 2);
    release(w);
    finishDrag(w);
    w.m_View->setShakeDetectionEnabled(w.maybe());
}

void pickUp(W& w)
{
    w.m_View->pickUpEdge(anyTarget(w));
    glide(w, anyTarget(w), 2);
    if (w.maybe(0.7))
        w.m_View->pickUpEdge(anyTarget(w));
}

void navigate(W& w)
{
    if (w.maybe(0.1))
        w.m_View->setNavigationSchemeName(QLatin1String(w.maybe(0.6) ? "Quill" : "Harbor"));
    const Keys keys = w.maybe(0.4) ? Qt::AltModifier : Qt::NoModifier;
    const Qt::MouseButton button = w.maybe(0.7) ? Qt::MiddleButton : Qt::RightButton;
    press(w, anyTarget(w), button, keys);
    glide(w, anyTarget(w), 3, keys);
    if (w.maybe(0.1))
        press(w, w.m_MousePos, Qt::LeftButton, keys);
    if (w.maybe(0.9))
        release(w, button, keys);
}

void viewCalls(W& w)
{
    RandomView& view = *w.m_View;
    const QRectF rect(w.anyNumber(), w.anyNumber(), w.anyNumber(), w.anyNumber());
    const auto track
        = [&view](int mode) { view.setCursorTrackingMode(OrvNgView::OrvCursorTrackingMode(mode)); };
    w.oneOf({DO(view.zoomIn(w.anyNumber())), DO(view.zoomOut(1.2)),
        DO(view.scaleView(w.anyNumber())), DO(view.fitInView(rect, Qt::KeepAspectRatio)),
        DO(view.panUp()), DO(view.panRight()), DO(view.setMinimapVisible(w.maybe(0.7))),
        DO(track(w.below(3)), track(OrvNgView::CURSOR_TRACKING_NONE))});
}

/// The user lets everything go and moves the mouse once; afterwards nothing may linger.
void settle(W& w)
{
    w.m_View->setCursorTrackingMode(OrvNgView::CURSOR_TRACKING_NONE);
    w.m_MousePos = QPoint(3, 3);
    for (const Qt::MouseButton button : kButtons) {
        if (w.m_Held.testFlag(button))
            release(w, button);
    }
    glide(w, w.m_MousePos, 1);
    if (w.isAnyEdgeCarried()) {
        press(w, w.m_MousePos, Qt::RightButton);
        release(w, Qt::RightButton);
    }
    glide(w, w.m_MousePos + QPoint(1, 0), 1);
    finishDrag(w, 1);
    w.flush();
    w.m_Reacts = false;
    w.flush(); // what slots have destroyed meanwhile
    glide(w, w.m_MousePos, 1); // the cursor is looked up again when something has moved below it
    w.m_AtRest = true;
}

/// The window system keeps a release for itself; the next move tells that no button is held.
void loseRelease(W& w)
{
    press(w, anyTarget(w));
    glide(w, anyTarget(w), 1 + w.below(2));
    w.m_Held.setFlag(Qt::LeftButton, false);
    settle(w);
}

// Time

void timers(W& w)
{
    for (RandomView* view : {w.m_View, w.m_Watcher}) {
        view->calculateVisibleNodesBoundingRect();
        view->autoScroll();
    }
}

void repaint(W& w)
{
    w.dealWithMoves();
    w.m_View->viewport()->repaint();
    if (w.maybe(0.2))
        w.m_View->grab();
}

void deleteDeferred(W&)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

void RandomOperations::answerMenu(W& w, QMenu& menu)
{
    const QPointer<QMenu> guard(&menu);
    if (w.m_Reacts && w.maybe(0.25)) {
        w.hostActs();
        w.of(reactions(w.mayDelete()))(w);
        if (w.maybe())
            deleteDeferred(w);
    }
    if (!guard)
        return;
    QAction* choice = w.of(menu.actions());
    if (choice && w.maybe(0.7)) {
        menu.setActiveAction(choice);
        QTest::keyClick(&menu, Qt::Key_Return);
    } else if (w.maybe(0.2)) {
        w.dealWithMoves();
        w.m_View->hide();
        w.m_View->show();
    }
    if (guard)
        menu.close();
}

QList<RandomOperation> RandomOperations::input()
{
    const auto cursor
        = [](W& w) { QCursor::setPos(w.m_View->viewport()->mapToGlobal(anyTarget(w))); };
    return {{"press", 30, anyPress}, {"moveMouse", 50, anyMove}, {"release", 30, anyRelease},
        {"doubleClick", 8, doubleClick}, {"wheel", 10, wheel}, {"key", 6, key},
        {"cursor", 4, cursor}, {"enterLeave", 6, enterLeave}, {"focus", 6, focus},
        {"resize", 5, resize}, {"hideShow", 5, hideShow}, {"look", 15, look},

        {"drag", 40, drag}, {"pull", 40, pull}, {"band", 15, band}, {"sever", 8, sever},
        {"shake", 4, shake}, {"pickUp", 8, pickUp}, {"navigate", 8, navigate},
        {"viewCalls", 8, viewCalls}, {"settle", 15, settle}, {"loseRelease", 6, loseRelease},

        {"process", 30, [](W& w) { w.process(); }}, {"deferred", 25, deleteDeferred},
        {"timers", 10, timers}, {"repaint", 20, repaint}};
}
