#include "OrvNodeGraph/OrvNgBackdropNodeRectChangeUndo.h"

#include "OrvNodeGraph/OrvNgBackdropNode.h"

OrvNgBackdropNodeRectChangeUndo::OrvNgBackdropNodeRectChangeUndo(OrvNgBackdropNode* backdrop)
    : OrvNgBackdropNodeRectChangeUndo(backdrop,
        backdrop ? backdrop->previousBoundingRect() : QRectF(),
        backdrop ? backdrop->boundingRect() : QRectF())
{
}

OrvNgBackdropNodeRectChangeUndo::OrvNgBackdropNodeRectChangeUndo(
    OrvNgBackdropNode* backdrop, const QRectF& oldRect, const QRectF& newRect)
    : m_Backdrop(backdrop)
    , m_OldRect(oldRect)
    , m_NewRect(newRect)
{
    setText(tr("Resize node %1").arg(backdrop ? backdrop->text() : QString()));
}

void OrvNgBackdropNodeRectChangeUndo::undo()
{
    if (m_Backdrop)
        m_Backdrop->setRect(m_OldRect);
}

void OrvNgBackdropNodeRectChangeUndo::redo()
{
    if (m_Backdrop)
        m_Backdrop->setRect(m_NewRect);
}
