#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

class QGraphicsEllipseItem;
class QGraphicsPixmapItem;

/// The small round node at which an edge bends or forks: a filled disc without title, labels and
/// ports. The host gives it the input "Input" and the output "Output", whose names are not shown.
///
/// The disc takes the style's dot size, or grows around an icon. While the node is selected a smaller
/// disc in the selection colour lies on it.
///
/// Called by  the host, OrvNgView, OrvNgEdge, as every node.
/// Uses       OrvNgNodeBrush, OrvNgStyle.
/// Tells      the host's object of this node (its QObject parent) of the selection; the rest through
///            OrvNgNode.
class ORVNODEGRAPH_EXPORT OrvNgDotNode : public OrvNgNode
{
    Q_OBJECT

public:
    explicit OrvNgDotNode(QGraphicsItem* parent);
    ~OrvNgDotNode() override;

    /// Kept as the object name; it is not shown.
    void setText(const QString& text) override;
    QString text() override;
    /// Without effect on the look.
    void setLocked(bool locked) override;
    void setBypassed(bool bypassed) override;
    void setCached(bool cached) override;
    QBrush nodeUniColour() override;
    /// Colours the disc: the debug colour, bypassed, cached, else the node's own colours or the
    /// style's. The category does not count. Then shows the selection disc or hides it.
    void setCorrectColor() override;

    /// Shows an icon in a disc that grows or shrinks to hold it; offset moves the icon from the
    /// middle. A null pixmap is ignored.
    void setPixmap(const QPixmap& pixmap, const QPoint& offset) override;

    /// Empty for "Input", which stays unlabelled.
    QString inputPointPrettyName(const QString& name) override;
    /// Empty for "Output".
    QString outputPointPrettyName(const QString& name) override;

    /// The disc with its outline.
    QRectF boundingRect() const override;

protected:
    void drawShape(QPainter* painter) override;
    QColor hoveredOutlineColor() override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    void resizeDisc(double diameter);
    void tellParentSelected(bool selected);

    QGraphicsEllipseItem* m_Disc = nullptr;
    QGraphicsEllipseItem* m_SelectionDisc = nullptr;
    QGraphicsPixmapItem* m_Icon = nullptr; ///< the last one; null until setPixmap()
    QRectF m_DiscBounds;
    bool m_InParentSelection = false;
};
