#pragma once

#include "OrvNodeGraph/OrvNgView.h"
#include "support/TestNode.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QImage>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

/// A view of 400 by 200 pixels without a frame, its inner doings open to tests.
class TestView : public OrvNgView
{
public:
    TestView()
        : OrvNgView(nullptr)
    {
        setFrameShape(QFrame::NoFrame);
        resize(400, 200);
    }
    using OrvNgView::autoScrollAdvance;
    using OrvNgView::cursorPathBounds;
    using OrvNgView::cursorTrackingMode;
    using OrvNgView::drawBackground;
    using OrvNgView::drawingEdgeSeverPath;
    using OrvNgView::edgesCrossingPath;
    using OrvNgView::m_NavigationScheme;
    using OrvNgView::setCursorTrackingMode;
    using OrvNgView::setNewSceneRect;
    using OrvNgView::severEdgesAlongPath;
    using OrvNgView::sortedSelection;

    bool isAutoInsertOn() override { return m_AutoInsert; }

    bool m_AutoInsert = true;

    QPointF center() { return viewportInSceneCoords().center(); }
    double scaleNow() const { return transform().m11(); }
    QPoint scrolled() const
    {
        return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
    }
};

/// A shown view at scale 1 on a scene with one node around the origin, and the mouse over it.
///
/// Called by  tests of the view.
/// Uses       OrvNgView, TestNode.
/// Tells      nobody.
struct ViewStage
{
    QGraphicsScene m_Scene;
    TestNode* m_Node = new TestNode;
    TestView m_View;

    ViewStage()
    {
        m_Scene.addItem(m_Node);
        m_Node->setPos(-50, -20);
        m_View.setScene(&m_Scene);
        m_View.show();
        m_View.init();
        m_View.centerViewOn(QPointF(0, 0), true);
        if (!QTest::qWaitForWindowExposed(&m_View))
            qFatal("the view is not shown");
    }

    void mouse(QEvent::Type type, const QPoint& pos, Qt::MouseButton button,
        Qt::MouseButtons buttons, int modifiers = 0)
    {
        QMouseEvent event(type, pos, m_View.viewport()->mapToGlobal(pos), button, buttons,
            Qt::KeyboardModifiers(modifiers));
        QApplication::sendEvent(m_View.viewport(), &event);
    }
    void press(const QPoint& pos, Qt::MouseButton button, int modifiers = 0)
    {
        mouse(QEvent::MouseButtonPress, pos, button, button, modifiers);
    }
    void move(const QPoint& pos, Qt::MouseButton held, int modifiers = 0)
    {
        mouse(QEvent::MouseMove, pos, Qt::NoButton, held, modifiers);
    }
    void release(const QPoint& pos, Qt::MouseButton button, int modifiers = 0)
    {
        mouse(QEvent::MouseButtonRelease, pos, button, Qt::NoButton, modifiers);
    }
    /// The viewport, one pixel for each of its own whatever the screen's ratio.
    QImage picture()
    {
        QImage image(m_View.viewport()->size(), QImage::Format_RGB32);
        m_View.viewport()->render(&image);
        return image;
    }
    /// A press of the left button and moves, without the release.
    void drag(const QList<QPoint>& way, int modifiers = 0)
    {
        press(way.first(), Qt::LeftButton, modifiers);
        for (const QPoint& pos : way.mid(1))
            move(pos, Qt::LeftButton, modifiers);
    }
    TestNode* add(const QString& text, const QPointF& scenePos, const QSizeF& size = {20, 20})
    {
        auto* node = new TestNode(text, size);
        m_Scene.addItem(node);
        node->setPos(scenePos);
        return node;
    }
    bool wheel(int x, int y)
    {
        const QPointF pos(200, 100);
        QWheelEvent event(pos, m_View.viewport()->mapToGlobal(pos.toPoint()), QPoint(), {x, y},
            Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_View.viewport(), &event);
        return event.isAccepted();
    }
    bool isAtRest()
    {
        const QPointF center = m_View.center();
        move(QPoint(90, 90), Qt::NoButton);
        move(QPoint(120, 130), Qt::NoButton);
        return m_View.dragMode() == QGraphicsView::NoDrag && m_View.isInteractive()
            && m_View.viewport()->cursor().shape() == Qt::ArrowCursor && m_View.center() == center;
    }
};

inline bool isNear(const QPointF& a, const QPointF& b, double tolerance = 1e-6)
{
    return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance;
}
