#include "OrvNodeGraph/OrvNgNodeShape.h"

#include "OrvNodeGraph/OrvNgStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

namespace {

template <int Count> void drawPolygon(QPainter* painter, const QPointF (&points)[Count])
{
    painter->drawConvexPolygon(points, Count);
}

/// The corners are in by half the indent; the sides bulge out to touch the rectangle at half
/// height.
void drawBarrel(QPainter* painter, const QRectF& rect, float indent)
{
    const double inset = static_cast<double>(indent * 0.5F);
    const double middle = rect.top() + rect.height() * 0.5;
    QPainterPath path(QPointF(rect.left() + inset, rect.top()));
    path.quadTo(rect.left() - inset, middle, rect.left() + inset, rect.bottom());
    path.lineTo(rect.right() - inset, rect.bottom());
    path.quadTo(rect.right() + inset, middle, rect.right() - inset, rect.top());
    path.closeSubpath();
    painter->drawPath(path);
}

/// Counter-clockwise from the top left; every corner turns by 60°, with a quarter of the height for
/// radius.
void drawRoundedHexagon(QPainter* painter, const QRectF& rect)
{
    const double side = rect.height() * 0.5;
    const double radius = side * 0.5;
    const double slope = (radius + side) / qTan(qDegreesToRadians(60.0));
    const double point = radius / qCos(qDegreesToRadians(30.0));
    const double middle = rect.center().y() - radius;
    const auto corner = [side](double left, double top) { return QRectF(left, top, side, side); };

    QPainterPath path(QPointF(rect.left() + slope, rect.top()));
    path.arcTo(corner(rect.left() + slope - radius, rect.top()), 90.0, 60.0);
    path.arcTo(corner(rect.left() + point - radius, middle), 150.0, 60.0);
    path.arcTo(corner(rect.left() + slope - radius, rect.bottom() - side), 210.0, 60.0);
    path.arcTo(corner(rect.right() - slope - radius, rect.bottom() - side), -90.0, 60.0);
    path.arcTo(corner(rect.right() - radius - point, middle), -30.0, 60.0);
    path.arcTo(corner(rect.right() - slope - radius, rect.top()), 30.0, 60.0);
    path.closeSubpath();
    painter->drawPath(path);
}

} // namespace

namespace OrvNgNodeShape {

OrvNgNode::NodeShapeType resolve(int type, const QString& category)
{
    if (type >= OrvNgNode::ShapeRectangle && type <= OrvNgNode::ShapeRoundedHexagon)
        return static_cast<OrvNgNode::NodeShapeType>(type);
    for (const char* capsule : {"Basic", "Environment", "Geometry", "Procedural"}) {
        if (category == QLatin1String(capsule))
            return OrvNgNode::ShapeCapsule;
    }
    for (const char* teleport : {"TeleportBroadcast", "TeleportReceiver"}) {
        if (category == QLatin1String(teleport))
            return OrvNgNode::ShapeRoundedHexagon;
    }
    return OrvNgNode::ShapeRectangle;
}

void draw(QPainter* painter, const QRectF& rect, OrvNgNode::NodeShapeType type)
{
    const float indent = OrvNgStyle::instance().getNodeShapeIndentX();
    const double k = static_cast<double>(indent);
    const double half = rect.height() * 0.5;
    const double left = rect.left();
    const double top = rect.top();
    const double right = rect.right();
    const double bottom = rect.bottom();

    switch (type) {
    case OrvNgNode::ShapeRectangle:
        painter->drawRects(&rect, 1);
        break;
    case OrvNgNode::ShapeCapsule:
        painter->drawRoundedRect(rect, half, half);
        break;
    case OrvNgNode::ShapeRoundedRect:
        painter->drawRoundedRect(rect, k, k);
        break;
    case OrvNgNode::ShapeHexagon:
        drawPolygon<6>(painter,
            {{left + k, top}, {left, top + half}, {left + k, bottom}, {right - k, bottom},
                {right, top + half}, {right - k, top}});
        break;
    case OrvNgNode::ShapeFunnel:
        drawPolygon<4>(
            painter, {{left, top}, {left + k, bottom}, {right - k, bottom}, {right, top}});
        break;
    case OrvNgNode::ShapeTrapezoid:
        drawPolygon<4>(
            painter, {{left + k, top}, {left, bottom}, {right, bottom}, {right - k, top}});
        break;
    case OrvNgNode::ShapeBarrel:
        drawBarrel(painter, rect, indent);
        break;
    case OrvNgNode::ShapeRoundedHexagon:
        drawRoundedHexagon(painter, rect);
        break;
    default:
        break;
    }
}

} // namespace OrvNgNodeShape
