#pragma once

#include "editor/EditorPress.h"
#include "editor/EditorWheelSteps.h"

#include <QFlags>
#include <QHash>
#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <OrvNodeGraph/OrvNgView.h>
#include <functional>

class QGestureEvent;
class QNativeGestureEvent;
class OrvNgEdge;

/// The editor's view: zooms about the mouse with every kind of wheel and touchpad, frames rectangles,
/// remembers where it looked, knows the keys that mean something while they are held, and gives up what the
/// mouse is doing.
///
/// Called by  EditorNavigator, EditorWindow.
/// Uses       OrvNgView, EditorWheelSteps, EditorPress, the shortcut manager (Tab).
/// Tells      the window, through its signals.
class EditorView : public OrvNgView
{
    Q_OBJECT

public:
    /// Where a view looks: its transform and the scene point at its centre.
    struct Look
    {
        QTransform transform;
        QPointF center;
    };

    /// What a key means while it is held.
    enum HeldKey {
        HeldCut = 1, ///< C: a drag cuts edges
        HeldDot = 2, ///< D: edges show where a dot can be put in
        HeldPlace = 4 ///< S: a dragged node is not put into the edge below it
    };
    Q_DECLARE_FLAGS(HeldKeys, HeldKey)

    /// What the mouse is doing with an item.
    enum class Activity { Idle, DraggingNode, DraggingBackdrop, CarryingEdge };
    Q_ENUM(Activity)

    explicit EditorView(QWidget* parent);

    /// Fits a scene rectangle with a margin, without magnifying beyond 125 %. Before the view is
    /// shown it is remembered and done then. A null rectangle is ignored.
    void frame(const QRectF& sceneRect);
    /// Looks at a point at a fixed scale (1 is 100 %).
    void lookAt(const QPointF& scenePos, double scale);

    Look look() const;
    void setLook(const Look& look);

    /// "Quill" or "Harbor": which buttons and modifiers pan and zoom.
    void setNavigationScheme(const QString& scheme) { m_NavigationScheme = scheme; }
    const QString& navigationScheme() const { return m_NavigationScheme; }

    // What the user is doing

    HeldKeys heldKeys() const { return m_Held; }
    /// A mouse button that went down here is not up yet: something may be under way that an undo would
    /// disturb.
    bool isMouseHeld() const { return m_MouseHeld; }
    /// A node is dragged once it has gone far enough to mean it; an edge is carried with the button up too.
    Activity activity() const { return m_Activity; }
    /// Gives up what the mouse is doing: an edge goes home, a path cuts nothing, dragged nodes go back, a
    /// band selects nothing. False when there was nothing.
    bool cancel();

    bool isAutoInsertOn() override { return !m_Held.testFlag(HeldPlace); }

Q_SIGNALS:
    /// The scale of the last paint differs from the one before; 1 is 100 %.
    void scaleChanged(double scale);
    void heldKeysChanged(EditorView::HeldKeys held);
    void mouseHeldChanged(bool held);
    void activityChanged(EditorView::Activity activity);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    /// A backdrop's body is empty space: bands drawn inside it would select it otherwise.
    bool canBandSelect(QGraphicsItem* item, const QPolygonF& band) const override;
    bool paintsOnlyScene() const override { return true; }

private:
    void zoomAbout(const QPointF& viewPos, const std::function<void()>& zoom);
    void panBy(const QPointF& pixels);
    bool zoomByGesture(const QNativeGestureEvent* event);
    bool zoomByGesture(QGestureEvent* event);

    void setHeld(HeldKeys held);
    void letGoOfKeys();
    void followCutKey();
    void setMouseHeld(bool held);
    void followActivity(bool isDragging);
    bool cancelWhatHoldsTheMouse();
    bool cancelEdge(OrvNgEdge* edge);
    bool cancelCut();
    bool cancelNodeDrag();
    bool cancelBand();

    QRectF m_FrameWhenShown;
    double m_PaintedScale = 0;
    EditorWheelSteps m_WheelSteps;
    EditorPress m_Press;
    HeldKeys m_Held;
    QHash<int, int>
        m_Releases; ///< by key, the number of its last release; none since its last press
    int m_LastRelease = 0;
    bool m_Cutting = false; ///< the cursor cuts; outlasts the key until the button is up
    bool m_MouseHeld = false;
    QPoint m_PressPos; ///< of the left button, in viewport pixels
    Activity m_Activity = Activity::Idle;
    bool m_BandPossible = false; ///< the left button went down and nothing took it
};

Q_DECLARE_OPERATORS_FOR_FLAGS(EditorView::HeldKeys)
