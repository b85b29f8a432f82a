#pragma once

#include "editor/EditorScene.h"
#include "editor/EditorView.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include <OrvNodeGraph/OrvNgPort.h>
#include <algorithm>

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
    /// Of nodes or backdrops; -1 where there is none.
    template <typename Item> static int indexIn(const QVector<Item>& all, const QByteArray& name)
    {
        const auto found = std::find_if(all.cbegin(), all.cend(),
            [&name](const Item& each) { return each.name.toUtf8() == name; });
        return found == all.cend() ? -1 : int(found - all.cbegin());
    }
    int index(const QByteArray& name) const { return indexIn(scene()->scope().nodes, name); }
    OrvNgNode* node(const QByteArray& name) const { return scene()->node(index(name)); }
    OrvNgPort* port(const QByteArray& nodeName, const QByteArray& name) const
    {
        auto* item = dynamic_cast<OrvNgExtendedNode*>(node(nodeName));
        OrvNgPort* input = item->inputPort(QString::fromUtf8(name));
        return input ? input : item->outputPort(QString::fromUtf8(name));
    }

    // Places in the viewport

    QPoint at(const QPointF& scenePos) const { return m_View->mapFromScene(scenePos); }
    QPoint atPort(const QByteArray& nodeName, const QByteArray& name) const
    {
        return at(port(nodeName, name)->portRectMappedToScene().center());
    }
    QPoint atHeader(const QByteArray& name) const
    {
        return at(node(name)->mapToScene(node(name)->nodeShapeRect().center()));
    }
    /// Of the modes of ports.
    QPoint atButton(const QByteArray& name) const
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
    void glide(const QPoint& from, const QPoint& to)
    {
        for (int part = 1; part <= 4; ++part)
            send(QEvent::MouseMove, from + (to - from) * part / 4, Qt::NoButton);
    }
    void drag(const QPoint& from, const QPoint& to)
    {
        press(from);
        glide(from, to);
        release(to);
    }
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
