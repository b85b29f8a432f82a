#pragma once

#include "editor/EditorScene.h"
#include "editor/EditorView.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>

namespace EditorTesting {

/// Somebody in front of a view: names what is on show, points at it, and uses the mouse.
class EditorUser
{
public:
    explicit EditorUser(EditorView* view)
        : m_View(view)
    {
    }

    EditorScene* scene() const { return dynamic_cast<EditorScene*>(m_View->scene()); }
    /// -1 where there is none.
    int index(const char* name) const
    {
        const QVector<NetNode>& nodes = scene()->scope().nodes;
        for (int i = 0; i < nodes.size(); ++i) {
            if (nodes.at(i).name == QLatin1String(name))
                return i;
        }
        return -1;
    }
    OrvNgNode* node(const char* name) const { return scene()->node(index(name)); }
    OrvNgPort* port(const char* nodeName, const char* name) const
    {
        auto* item = dynamic_cast<OrvNgExtendedNode*>(node(nodeName));
        OrvNgPort* input = item->inputPort(QLatin1String(name));
        return input ? input : item->outputPort(QLatin1String(name));
    }
    OrvNgEdge* edge(const char* nodeName, const char* input) const
    {
        return node(nodeName)->input(QLatin1String(input));
    }

    // Places in the viewport

    QPoint at(const QPointF& scenePos) const { return m_View->mapFromScene(scenePos); }
    QPoint atPort(const char* nodeName, const char* name) const
    {
        return at(port(nodeName, name)->portRectMappedToScene().center());
    }
    QPoint atHeader(const char* name) const
    {
        return at(node(name)->mapToScene(node(name)->nodeShapeRect().center()));
    }
    /// Of the modes of ports.
    QPoint atButton(const char* name) const
    {
        const QRectF header = node(name)->nodeShapeRect();
        const QPointF inside = QPointF(-1, 1) * header.height() / 2;
        return at(node(name)->mapToScene(header.topRight() + inside));
    }

    // The mouse

    void send(QEvent::Type type, const QPoint& pos, Qt::MouseButton button)
    {
        QWidget* viewport = m_View->viewport();
        QMouseEvent event(type, pos, viewport->mapToGlobal(pos), button, m_Held, Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &event);
    }
    void press(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
    {
        m_Held |= button;
        send(QEvent::MouseButtonPress, pos, button);
    }
    void move(const QPoint& pos)
    {
        send(QEvent::MouseMove, pos, Qt::NoButton);
        QCoreApplication::processEvents();
    }
    void release(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
    {
        m_Held &= ~Qt::MouseButtons(button);
        send(QEvent::MouseButtonRelease, pos, button);
    }
    void click(const QPoint& pos)
    {
        press(pos);
        release(pos);
    }
    void doubleClick(const QPoint& pos)
    {
        click(pos);
        send(QEvent::MouseButtonDblClick, pos, Qt::LeftButton);
        release(pos);
    }
    void moveAlong(const QVector<QPoint>& way)
    {
        for (int i = 1; i < way.size(); ++i) {
            for (int part = 1; part <= 4; ++part) {
                const QPoint pos = way.at(i - 1) + (way.at(i) - way.at(i - 1)) * part / 4;
                send(QEvent::MouseMove, pos, Qt::NoButton);
            }
        }
    }
    void dragAlong(const QVector<QPoint>& way)
    {
        press(way.constFirst());
        moveAlong(way);
        release(way.constLast());
    }
    void drag(const QPoint& from, const QPoint& to) { dragAlong({from, to}); }
    /// Pulls an edge out of a port and drops it with a second click.
    void connectPorts(const QPoint& from, const QPoint& to)
    {
        drag(from, to);
        click(to);
    }

    Qt::MouseButtons m_Held;

private:
    EditorView* m_View;
};

} // namespace EditorTesting
