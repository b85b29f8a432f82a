#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>
#include <QPen>
#include <QtMath>

OrvNgDotableMarkerItem::OrvNgDotableMarkerItem(QGraphicsItem* parent)
    : QGraphicsItem(parent)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const int size = style.getDotDiamondNodeSize();
    // Deliberate: whole halves, so a square of odd size lies half a unit off centre, to the bottom
    // right.
    const int half = size / 2;
    m_Diamond = new QGraphicsRectItem(-half, -half, size, size, this);
    m_Diamond->setRotation(45.0);
    m_Diamond->setBrush(style.getDotableMarkerBrush());
    m_Diamond->setPen(Qt::NoPen);
    m_Diamond->setAcceptedMouseButtons(Qt::NoButton); // presses are the marker's

    const double diagonal = M_SQRT2 * size;
    m_Bounds = QRectF(-diagonal / 2.0, -diagonal / 2.0, diagonal, diagonal);
}

void OrvNgDotableMarkerItem::setSelected(bool selected, bool withChildren)
{
    setSelected(selected);
    OrvSerializableObject::setSelected(selected, withChildren);
}

void OrvNgDotableMarkerItem::setRootNode(OrvNgNode* node)
{
    m_RootNode = node;
}

void OrvNgDotableMarkerItem::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*)
{
    // The diamond draws.
}

void OrvNgDotableMarkerItem::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QGraphicsItem::mousePressEvent(event);
        return;
    }
    // Accepted first, and also without a root node: the edge underneath must not be grabbed, and
    // the host may remove the edge, and this marker with it, while it handles the click.
    event->accept();
    if (m_RootNode)
        m_RootNode->notifyEdgeDotableMarkerIsClicked(dynamic_cast<OrvNgEdge*>(parentItem()));
}
