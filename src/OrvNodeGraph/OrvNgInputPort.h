#pragma once

#include "OrvNodeGraph/OrvNgPort.h"

/// An input: the square at the left end, the text to its right. Connected means that the input's
/// edge has a source; a cluster port in the grouped mode is also connected when any of its members
/// is.
///
/// Called by  OrvNgExtendedNode.
/// Uses       OrvNgPort, the node's input edges.
/// Tells      nobody beyond its base class.
class ORVNODEGRAPH_EXPORT OrvNgInputPort : public OrvNgPort
{
    Q_OBJECT

public:
    OrvNgInputPort(OrvNgExtendedNode* node, const QString& text, const QString& name, bool boldText,
        Birth birth = Birth::Shown);

protected:
    QPointF squarePos() const override;
    QPointF textPos() const override;
    bool isConnected() const override;
};
