#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QGraphicsItem>

/// A named SVG icon, drawn into a rectangle of its own. An icon that the host does not have draws
/// nothing and keeps its rectangle.
///
/// Called by  OrvNgNodeHeader, which places it.
/// Uses       OrvSvgManager, at every paint.
/// Tells      nobody.
class ORVNODEGRAPH_EXPORT OrvNgSvgIconItem : public QGraphicsItem
{
public:
    /// svgName is the icon's name without directory and suffix. The rectangle is empty until
    /// setRect().
    OrvNgSvgIconItem(const QString& svgName, QGraphicsItem* parent);

    /// In item coordinates. A rectangle with a number that is not finite is ignored.
    void setRect(const QRectF& rect);

    QRectF boundingRect() const override { return m_Rect; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QRectF m_Rect;
    QString m_SvgName;
};
