#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

class QGraphicsPolygonItem;
class QGraphicsTextItem;

/// A comment in the graph: a box with a cut top left corner around a label, which may be rich text. It has
/// no connection points and lies one step above ordinary nodes.
///
/// Colour and label are properties, so that the host's property editors find them. The box follows the
/// label and is never smaller than the style's minimum.
///
/// Called by  the host, OrvNgView (hover, selection).
/// Uses       OrvNgStyle, the host's test for rich text.
/// Tells      its parent object its selection; the rest as every node.
class ORVNODEGRAPH_EXPORT OrvNgUINode : public OrvNgNode
{
    Q_OBJECT
    // clazy:excludeall=qproperty-without-notify
    Q_PROPERTY(QColor nodeBackgroundColour READ nodeBackgroundColour WRITE setNodeBackgroundColour)
    Q_PROPERTY(QString label READ label WRITE setLabel)

public:
    explicit OrvNgUINode(QGraphicsItem* parent);
    ~OrvNgUINode() override;

    Q_INVOKABLE QColor nodeBackgroundColour() { return m_NodeBackgroundColour; }
    /// The fill of the box while the node is not selected. An invalid colour is ignored.
    Q_INVOKABLE void setNodeBackgroundColour(const QColor& Color);
    /// Shows a text, rich text as such, and fits the box to it. What exceeds 65,536 characters is cut off.
    /// In rich text runs of spaces are stored as no-break spaces, which keeps them visible.
    Q_INVOKABLE void setLabel(const QString& Text);
    /// The label as stored. A new node answers "C" while its box shows a placeholder.
    Q_INVOKABLE QString label() { return m_Label; }

    /// The label.
    void setText(const QString& text) override { setLabel(text); }
    QString text() override { return m_Label; }
    // The states are kept but have no look.
    void setLocked(bool locked) override { showState(StateLocked, locked); }
    void setBypassed(bool bypassed) override { showState(StateBypassed, bypassed); }
    void setCached(bool cached) override { showState(StateCached, cached); }
    QBrush nodeUniColour() override { return nodeBrush(); }
    void setCorrectColor() override;

    QRectF boundingRect() const override { return m_Rect; }

protected:
    /// The box in node coordinates, at least of the minimum size. What is not finite is ignored.
    void setRect(const QRectF& rect);
    /// Places the text in the middle of the box.
    void centerText();
    /// Fits the box to the text.
    void positionLabelText();
    void setSelectedBrush(bool selected);

    void drawSelectedOutline(QPainter* painter) override;
    void drawShape(QPainter* painter) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    void paintBox(const QBrush& brush);

    QGraphicsPolygonItem* m_Shape = nullptr;
    QGraphicsTextItem* m_Text = nullptr;
    QRectF m_Rect;
    QColor m_NodeBackgroundColour;
    QString m_Label;
    bool m_IsTellingParent = false;
};
