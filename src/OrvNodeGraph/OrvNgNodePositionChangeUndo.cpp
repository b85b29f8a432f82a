#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"

#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgPlantedFault.h"

#include <QHash>

#include <cmath>

OrvNgNodePositionChangeUndo::OrvNgNodePositionChangeUndo(OrvNgNode* node)
    : OrvNgNodePositionChangeUndo(
        node, node ? node->previousPosition() : QPointF(), node ? node->pos() : QPointF())
{
}

OrvNgNodePositionChangeUndo::OrvNgNodePositionChangeUndo(
    OrvNgNode* node, const QPointF& oldPos, const QPointF& newPos)
    : m_Node(node)
    , m_OldPosition(oldPos)
    , m_NewPosition(newPos)
{
    setText(tr("Move node %1").arg(node ? node->text() : QString()));
}

void OrvNgNodePositionChangeUndo::undo()
{
    place(m_OldPosition);
}

void OrvNgNodePositionChangeUndo::redo()
{
    place(m_NewPosition);
}

void OrvNgNodePositionChangeUndo::place(const QPointF& pos)
{
    if (OrvNgPlantedFault::isPlanted(OrvNgPlantedFault::RawNodeInUndo)) {
        static QHash<const QUndoCommand*, OrvNgNode*> s_Nodes;
        if (m_Node)
            s_Nodes.insert(this, m_Node);
        if (OrvNgNode* node = s_Nodes.value(this))
            node->savePosition();
    }
    if (!m_Node || !std::isfinite(pos.x()) || !std::isfinite(pos.y()))
        return;
    m_Node->setPos(pos);
    if (m_Node)
        Q_EMIT m_Node->posChanged(pos);
}
