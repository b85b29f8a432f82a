#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QCoreApplication>
#include <QPointF>
#include <QPointer>
#include <QUndoCommand>

class OrvNgNode;

/// One move of one node, for the host's undo stack. Moves are never merged. Once its node is deleted
/// the command does nothing.
///
/// Pushing it runs redo(), which puts the node where it is already and tells the host so. While nodes
/// snap to the grid the node lands on the grid; the signal carries the stored point all the same.
///
/// Called by  the host, when a drag has ended.
/// Uses       OrvNgNode.
/// Tells      listeners of the node's posChanged().
class ORVNODEGRAPH_EXPORT OrvNgNodePositionChangeUndo : public QUndoCommand
{
    Q_DECLARE_TR_FUNCTIONS(OrvNgNodePositionChangeUndo)

public:
    /// From where the node stood at its last press or savePosition() to where it stands now.
    /// Deliberate: the former is a scene position, the latter one in the parent's coordinates, and
    /// undo() takes both for the latter; a node with a parent item goes back to the numbers of its
    /// scene position.
    explicit OrvNgNodePositionChangeUndo(OrvNgNode* node);
    /// Both positions in the coordinates of the node's parent.
    OrvNgNodePositionChangeUndo(OrvNgNode* node, const QPointF& oldPos, const QPointF& newPos);

    void undo() override;
    void redo() override;

private:
    void place(const QPointF& pos);

    QPointer<OrvNgNode> m_Node;
    QPointF m_OldPosition;
    QPointF m_NewPosition;
};
