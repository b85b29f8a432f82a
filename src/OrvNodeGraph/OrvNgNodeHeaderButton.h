#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QGraphicsItem>
#include <QPointer>

class OrvNgExtendedNode;

/// The button at the right end of a node's header: it shows the node's port list mode, and a press
/// on it proposes the next one. It changes nothing itself; the host answers the node's
/// notification. While the view is zoomed out so far that the button is not drawn, it takes no
/// presses either.
///
/// Called by  OrvNgNodeHeader, which places it; the scene (presses).
/// Uses       OrvSvgManager for the icon, OrvNgStyle for the threshold, at construction.
/// Tells      its node (OrvNgNode::notifyNodePortListModeChanged).
class ORVNODEGRAPH_EXPORT OrvNgNodeHeaderButton : public QGraphicsItem
{
public:
    /// A child item of the node.
    explicit OrvNgNodeHeaderButton(OrvNgExtendedNode* node);

    /// The side of the square, the height of the header; the node calls it when that changes.
    void setSide(double side);

    QRectF boundingRect() const override { return QRectF(0.0, 0.0, m_Side, m_Side); }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;

private:
    bool isDrawnAt(double levelOfDetail) const;
    void lightenHeaderEnd(QPainter* painter) const;
    void drawModeIcon(QPainter* painter) const;
    QString iconName() const;
    double iconOffset() const;

    QPointer<OrvNgExtendedNode> m_Node;
    float m_LodThreshold;
    double m_Side = 0.0;
};
