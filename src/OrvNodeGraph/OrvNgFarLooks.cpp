#include "OrvNodeGraph/OrvNgFarLooks.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgInputPort.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"
#include "OrvNodeGraph/OrvNgOutputPort.h"

#include <QGraphicsPathItem>
#include <QGraphicsPolygonItem>
#include <QLinearGradient>

#include <cmath>
#include <typeinfo>

namespace {

constexpr double kStepsPerUnit = 8.0; // lengths that differ by less look alike
constexpr double kLinesPerRoot
    = 0.8; // of a curve's length: an arc is then off by a tenth of a pixel
constexpr int kMostLinesPerCurve = 64;

constexpr auto kUnusualFlags = QGraphicsItem::ItemClipsToShape
    | QGraphicsItem::ItemClipsChildrenToShape | QGraphicsItem::ItemIgnoresTransformations;

template <typename Class> bool isExactly(const QGraphicsItem& item)
{
    return typeid(item) == typeid(Class);
}

bool isPlain(const QGraphicsItem& item)
{
    return !(item.flags() & kUnusualFlags) && item.opacity() >= 1.0 && !item.graphicsEffect();
}

void appendCurve(QVector<QPointF>& points, const QPointF& c1, const QPointF& c2, const QPointF& end)
{
    const QPointF start = points.constLast();
    const double length
        = QLineF(start, c1).length() + QLineF(c1, c2).length() + QLineF(c2, end).length();
    const int lines = int(
        std::ceil(qBound(1.0, std::sqrt(length) * kLinesPerRoot, double(kMostLinesPerCurve))));
    points.reserve(points.size() + lines);
    for (int i = 1; i <= lines; ++i) {
        const double t = double(i) / lines;
        const double u = 1.0 - t;
        points.append(start * (u * u * u) + c1 * (3.0 * u * u * t) + c2 * (3.0 * u * t * t)
            + end * (t * t * t));
    }
}

/// False for a path of several pieces.
bool flatten(const QPainterPath& path, QVector<QPointF>& points)
{
    points.resize(0); // keeps its room
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element& element = path.elementAt(i);
        if (element.isMoveTo() && i > 0)
            return false;
        if (element.isCurveTo()) {
            appendCurve(points, element, path.elementAt(i + 1), path.elementAt(i + 2));
            i += 2;
        } else {
            points.append(element);
        }
    }
    return true;
}

} // namespace

void OrvNgFarLooks::clear()
{
    m_Numbers.clear();
    m_Uses.clear();
}

void OrvNgFarLooks::addLength(double length)
{
    m_Words.append(quint32(qRound(length * kStepsPerUnit)));
}

int OrvNgFarLooks::lookOf(OrvNgExtendedNode& node)
{
    if (!node.allowsFarPicture() || !isPlain(node)
        || node.sceneTransform().type() > QTransform::TxTranslate)
        return kNone;
    m_Words.clear();
    const QRectF bounds = node.boundingRect();
    const QRectF header = node.nodeShapeRect();
    addLength(bounds.height());
    addLength(header.left() - bounds.left());
    addLength(bounds.right() - header.right());
    addLength(header.top() - bounds.top());
    addLength(header.height());
    m_Words.append(quint32(node.resolvedShapeType()) | (node.isSelected() ? 256U : 0U)
        | (node.hovered() ? 512U : 0U) | (quint32(node.portListMode()) << 16));
    const QBrush brush = node.nodeBrush();
    if (const QGradient* gradient = brush.gradient()) {
        const QGradientStops stops = gradient->stops();
        for (const QGradientStop& stop : stops) {
            m_Words.append(quint32(stop.first * 1000.0));
            addColor(stop.second);
        }
    } else {
        addColor(brush.color());
    }
    if (!addChildren(node, -bounds.topLeft(), bounds.width()))
        return kNone;

    const QByteArray key = QByteArray::fromRawData(
        reinterpret_cast<const char*>(m_Words.constData()), m_Words.size() * int(sizeof(quint32)));
    const auto known = m_Numbers.constFind(key);
    if (known != m_Numbers.constEnd()) {
        ++m_Uses[*known];
        return *known;
    }
    const int number = m_Numbers.size();
    m_Numbers.insert(QByteArray(key.constData(), key.size()), number);
    m_Uses.append(1);
    return number;
}

/// offset leads from parent's coordinates to the top left corner of the node's bounds. Ports are described
/// from the end of the node at which they stand, so that the width remains open.
bool OrvNgFarLooks::addChildren(const QGraphicsItem& parent, const QPointF& offset, double width)
{
    const QList<QGraphicsItem*> children = parent.childItems();
    for (QGraphicsItem* child : children) {
        if (!child->isVisible() || isExactly<OrvNgLodTextItem>(*child)
            || isExactly<OrvNgNodeHeaderButton>(*child))
            continue;
        const QPointF childOffset = offset + child->pos();
        const bool isOutput = isExactly<OrvNgOutputPort>(*child);
        if (isOutput || isExactly<OrvNgInputPort>(*child)) {
            auto& port = static_cast<OrvNgPort&>(*child);
            const QPointF corner = childOffset + port.portRect().topLeft();
            m_Words.append((isOutput ? 1U : 2U) | (port.m_MouseHovered ? 4U : 0U));
            addLength(isOutput ? width - corner.x() : corner.x());
            addLength(corner.y());
            if (port.m_MouseHovered)
                addLength(port.rect().width());
            addColor(port.squareColor());
        } else if (!(child->flags() & QGraphicsItem::ItemHasNoContents)) {
            return false;
        }
        if (!isPlain(*child) || !addChildren(*child, childOffset, width))
            return false;
    }
    return true;
}

bool OrvNgFarEdge::read(const OrvNgEdge& edge)
{
    constexpr auto kUnusual
        = kUnusualFlags & ~QGraphicsItem::GraphicsItemFlags(QGraphicsItem::ItemClipsToShape);
    const QGraphicsPathItem* const line = edge.m_Line;
    const QGraphicsPolygonItem* const arrow = edge.m_Arrow;
    if (!edge.allowsFarPicture() || !line || !arrow || (edge.flags() & kUnusual)
        || edge.opacity() < 1.0 || edge.graphicsEffect()
        || edge.sceneTransform().type() != QTransform::TxNone || !isPlain(*line)
        || !isPlain(*arrow))
        return false;
    const QList<QGraphicsItem*> children = edge.childItems();
    for (const QGraphicsItem* child : children) {
        if (child != line && child != arrow && child != edge.m_Label && child->isVisible())
            return false;
    }
    const QPen pen = line->pen();
    const QBrush arrowBrush = arrow->brush();
    const QPolygonF triangle = arrow->polygon();
    if (!(pen.widthF() >= 0.0) || pen.style() != Qt::SolidLine
        || pen.brush().style() != Qt::SolidPattern || arrowBrush.style() != Qt::SolidPattern
        || arrow->pen().style() != Qt::NoPen || triangle.size() != 3
        || line->brush().style() != Qt::NoBrush || !flatten(line->path(), m_Points))
        return false;
    if (!line->isVisible())
        m_Points.clear();
    m_Line = line;
    m_Color = pen.color();
    m_Width = pen.widthF();
    m_IsCosmetic = pen.isCosmetic();
    m_HasArrow = arrow->isVisible();
    m_ArrowColor = arrowBrush.color();
    const QTransform arrowToScene = arrow->sceneTransform();
    for (int i = 0; i < 3; ++i)
        m_Arrow[i] = arrowToScene.map(triangle.at(i));
    return true;
}
