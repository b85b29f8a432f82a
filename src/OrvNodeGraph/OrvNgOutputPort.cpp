#include "OrvNodeGraph/OrvNgOutputPort.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"

#include <algorithm>

namespace {

constexpr double kTextGap = 2.0;

}

OrvNgOutputPort::OrvNgOutputPort(
    OrvNgExtendedNode* node, const QString& text, const QString& name, Birth birth)
    : OrvNgPort(node, text, name, false, birth)
{
    setText(text);
}

QRectF OrvNgOutputPort::boundingRect() const
{
    return isShown() ? unstretchedRect().united(rect()) : QRectF();
}

QPointF OrvNgOutputPort::squarePos() const
{
    return QPointF(rect().width() - kPortWidth, 0.0);
}

QPointF OrvNgOutputPort::textPos() const
{
    return QPointF(rect().width() - kPortWidth - textWidth() - kTextGap, textTop());
}

bool OrvNgOutputPort::isConnected() const
{
    if (!node())
        return false;
    const QList<OrvNgEdge*>& edges = node()->outputs();
    const QString name = originalPortName();
    return std::any_of(edges.cbegin(), edges.cend(), [&name](const OrvNgEdge* edge) {
        return edge->destNode() && edge->sourceOutputPoint() == name;
    });
}
