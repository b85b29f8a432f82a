#pragma once

#include "OrvNodeGraph/OrvNgPort.h"

/// An output: the square at the right end of the widget, however wide the node is, the text to its
/// left. Connected means that some edge leads from this output to a node. The text is never bold.
///
/// Called by  OrvNgExtendedNode.
/// Uses       OrvNgPort, the node's output edges.
/// Tells      nobody beyond its base class.
class ORVNODEGRAPH_EXPORT OrvNgOutputPort : public OrvNgPort
{
    Q_OBJECT

public:
    OrvNgOutputPort(OrvNgExtendedNode* node, const QString& text, const QString& name,
        Birth birth = Birth::Shown);

    /// Reaches to the square, which lies outside the text's room in a stretched port.
    QRectF boundingRect() const override;

protected:
    QPointF squarePos() const override;
    QPointF textPos() const override;
    bool isConnected() const override;
};
