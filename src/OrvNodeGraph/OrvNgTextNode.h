#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

class QGraphicsEllipseItem;
class QGraphicsSimpleTextItem;

/// One line of plain text on a node's body, as a note in the graph. It has no header and no connection points
/// of its own; its body grows with the text and is never smaller than the style's minimum.
///
/// Called by  the host, OrvNgView (hover, selection).
/// Uses       OrvNgStyle.
/// Tells      its parent object its selection; the rest as every node.
class ORVNODEGRAPH_EXPORT OrvNgTextNode : public OrvNgNode
{
    Q_OBJECT

public:
    explicit OrvNgTextNode(QGraphicsItem* parent);
    ~OrvNgTextNode() override;

    /// Shows a text, fits the body to it and renames the object.
    void setText(const QString& text) override;
    QString text() override;
    /// Makes the body factor + 1 times the minimum width; less than 1 is reported and ignored.
    virtual void increaseSize(int factor);

    void setLocked(bool locked) override { showState(StateLocked, locked); }
    void setBypassed(bool bypassed) override { showState(StateBypassed, bypassed); }
    void setCached(bool cached) override { showState(StateCached, cached); }
    QBrush nodeUniColour() override { return nodeBrush(); }
    void setCorrectColor() override;

    QRectF boundingRect() const override { return m_Rect; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    /// The body in node coordinates, at least of the minimum size. What is not finite is ignored.
    void setRect(const QRectF& rect);
    /// Places the text in the middle of the body.
    void centerText();
    /// Fits the body to the text.
    void positionText();

    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    QRectF m_Rect;
    QGraphicsSimpleTextItem* m_Text = nullptr;
    QGraphicsEllipseItem* m_AutoInsertMarker = nullptr;
    bool m_IsTellingParent = false;
};
