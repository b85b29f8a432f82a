#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QGraphicsSimpleTextItem>

/// The title of a backdrop: one line, cut to the room it has. When the view is zoomed out it is drawn larger,
/// as far as there is room below, so that frames can be told apart in an overview of the graph.
///
/// Called by  OrvNgBackdropNode.
/// Uses       OrvNgBackdropNode (whether the minimap is being rendered, which shows no texts).
/// Tells      nobody.
class ORVNODEGRAPH_EXPORT OrvNgBackdropTitleTextItem : public QGraphicsSimpleTextItem
{
public:
    /// parent is the backdrop.
    explicit OrvNgBackdropTitleTextItem(QGraphicsItem* parent);

    /// text() is the whole title, whatever of it is shown.
    void setTitleText(const QString& text);
    /// What the text may fill from its position on, in scene units.
    void setRoom(const QSizeF& room);
    /// How many times its normal size the text is drawn by a painter of that scale, at least 1.
    double growthAt(double levelOfDetail) const;
    /// How much more height it takes there, in scene units.
    double heightGrowthAt(double levelOfDetail) const
    {
        return (growthAt(levelOfDetail) - 1.0) * m_LineHeight;
    }
    double mostHeightGrowth() const { return heightGrowthAt(0.0); }

    /// Where the text can appear at any zoom.
    QRectF boundingRect() const override;
    /// The text at its normal size.
    QPainterPath shape() const override;
    bool contains(const QPointF& point) const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QRectF textRect() const;
    void measure();
    void fitTo(double growth);

    QString m_Line; ///< the title without line breaks
    QString m_Shown; ///< what fits of it at m_ShownGrowth
    double m_ShownGrowth = 0.0; ///< 0: m_Shown is out of date
    QSizeF m_Room;
    double m_LineWidth = 0.0;
    double m_LineHeight = 0.0;
    double m_Ascent = 0.0;
};
