#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

class QGraphicsRectItem;

/// The small diamond at an edge's midpoint at which a dot node can be inserted. It inserts nothing itself:
/// a left click is passed to the root node, which tells the host. Size and colour are the style's at
/// construction.
///
/// Called by  OrvNgEdge, which places and shows it; the scene (presses).
/// Uses       OrvNgStyle.
/// Tells      its root node.
class ORVNODEGRAPH_EXPORT OrvNgDotableMarkerItem : public OrvSerializableObject,
                                                   public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    explicit OrvNgDotableMarkerItem(QGraphicsItem* parent);

    using QGraphicsItem::isSelected;
    using QGraphicsItem::setSelected;
    /// The object's selection is the item's.
    void setSelected(bool selected, bool withChildren) override;

    /// The node that hears of clicks, the source of the edge; null: clicks are swallowed.
    void setRootNode(OrvNgNode* node);

    QRectF boundingRect() const override { return m_Bounds; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

Q_SIGNALS:
    /// For the host's use; nothing in the library emits it.
    void notifyCreateDotNode(const QPointF& pos);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;

private:
    QGraphicsRectItem* m_Diamond = nullptr;
    QRectF m_Bounds;
    QPointer<OrvNgNode> m_RootNode;
};
