#pragma once

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

#include <malloc.h>

/// In the order of an event loop: what is to be deleted goes before the next frame is painted.
inline void benchRunDueEvents()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

/// What the process has allocated and not freed.
inline double benchHeapBytes()
{
    return double(mallinfo2().uordblks) + double(mallinfo2().hblkhd);
}

/// As the platform sends it to a viewport; held is the state of the left button after the event.
inline void benchSendMouse(QWidget* viewport, QEvent::Type type, const QPoint& viewPos, bool held)
{
    QMouseEvent event(type, viewPos, viewport->mapToGlobal(viewPos),
        type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
        held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &event);
}
