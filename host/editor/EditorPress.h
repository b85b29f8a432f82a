#pragma once

#include <QPair>
#include <QPointF>
#include <QPointer>
#include <QVector>

class OrvNgNode;
class QGraphicsScene;

/// Where the nodes stood that a press of the mouse may drag, so that the drag can be given up. Nodes that
/// the host has deleted since are left out.
///
/// Called by  EditorView.
/// Uses       OrvNgNode, the grid settings.
/// Tells      nobody.
class EditorPress
{
public:
    /// After the scene has seen the press, which may have selected the node under the mouse. Without a node
    /// that holds the mouse there is nothing to remember. The scene may be null.
    void remember(const QGraphicsScene* scene);
    /// Puts the nodes back exactly, whether or not they snap to the grid.
    void putBack() const;

private:
    QVector<QPair<QPointer<OrvNgNode>, QPointF>> m_Places; ///< in the parents' coordinates
};
