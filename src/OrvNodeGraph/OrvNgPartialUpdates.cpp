#include "OrvNodeGraph/OrvNgPartialUpdates.h"

#include "OrvNodeGraph/OrvNgRollCall.h"
#include "OrvNodeGraph/OrvNgView.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QVector>

namespace {

constexpr QRectF kCountable(-1e9, -1e9, 2e9, 2e9); // viewport pixels that an int holds

/// The framework's rectangles of changes then mean nothing.
bool reachesBeyondPixels(const OrvNgView& view)
{
    return view.scene()
        && !kCountable.contains(view.viewportTransform().mapRect(view.scene()->sceneRect()));
}

void setUpdateMode(
    const QVector<QPointer<OrvNgView>>& views, QGraphicsView::ViewportUpdateMode mode)
{
    for (const QPointer<OrvNgView>& view : views) {
        if (view)
            view->setViewportUpdateMode(mode);
    }
}

} // namespace

QVector<QPointer<OrvNgView>> OrvNgPartialUpdates::viewsThatPaintPartly(const QGraphicsScene& scene)
{
    QVector<QPointer<OrvNgView>> views;
    const QList<QGraphicsView*> all = scene.views();
    for (QGraphicsView* each : all) {
        auto* view = qobject_cast<OrvNgView*>(each);
        if (view && view->canPaintPartly())
            views.append(view);
    }
    return views;
}

void OrvNgPartialUpdates::follow(QGraphicsScene* scene)
{
    if (scene == m_Scene)
        return;
    if (m_Scene)
        m_Scene->removeEventFilter(this);
    m_Scene = scene;
    if (scene)
        scene->installEventFilter(this);
}

/// The scene's queued calls are delivered here, because a filter does not learn when an event has been dealt with.
bool OrvNgPartialUpdates::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::MetaCall || watched != m_Scene)
        return false;
    const QVector<QPointer<OrvNgView>> views = viewsThatPaintPartly(*m_Scene);
    if (views.isEmpty())
        return false;
    // Somebody who hears of the scene's changes keeps it from telling where an item was that has left it.
    const bool hasLeft = m_RollChanges != OrvNgRollCall::changes();
    m_RollChanges = OrvNgRollCall::changes();
    setUpdateMode(views, QGraphicsView::BoundingRectViewportUpdate);
    watched->event(event); // may delete any of the views, and this
    setUpdateMode(views, QGraphicsView::FullViewportUpdate);
    for (const QPointer<OrvNgView>& view : views) {
        if (view && (hasLeft || reachesBeyondPixels(*view)))
            view->viewport()->update();
    }
    return true;
}
