#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QCoreApplication>
#include <QPointer>
#include <QRectF>
#include <QUndoCommand>

class OrvNgBackdropNode;

/// One change of one backdrop's rectangle, in its own coordinates, for the host's undo stack. Pushing it
/// sets the rectangle that is there already. Once its backdrop is deleted the command does nothing.
///
/// Called by  OrvNgResizeTriangleItem, when a resize has ended, and the host.
/// Uses       OrvNgBackdropNode.
/// Tells      nobody.
class ORVNODEGRAPH_EXPORT OrvNgBackdropNodeRectChangeUndo : public QUndoCommand
{
    Q_DECLARE_TR_FUNCTIONS(OrvNgBackdropNodeRectChangeUndo)

public:
    /// From the rectangle at the last saveBoundingRect() to the present one.
    explicit OrvNgBackdropNodeRectChangeUndo(OrvNgBackdropNode* backdrop);
    OrvNgBackdropNodeRectChangeUndo(
        OrvNgBackdropNode* backdrop, const QRectF& oldRect, const QRectF& newRect);

    void undo() override;
    void redo() override;

private:
    QPointer<OrvNgBackdropNode> m_Backdrop;
    QRectF m_OldRect;
    QRectF m_NewRect;
};
