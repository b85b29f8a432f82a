#pragma once

#include <QByteArray>
#include <QColor>
#include <QHash>
#include <QPointF>
#include <QVector>

class OrvNgEdge;
class OrvNgExtendedNode;
class QGraphicsItem;
class QGraphicsPathItem;

/// Internal. What a node looks like below the level of detail at which its texts vanish, as a number: nodes
/// with the same number and width look alike. Numbers are handed out as looks come up, and hold until
/// clear().
///
/// Called by  OrvNgFarList.
/// Uses       the nodes and their ports.
/// Tells      nobody.
class OrvNgFarLooks
{
public:
    static constexpr int kNone = -1;

    /// kNone for a node that has to paint itself: one of a class that does not allow anything else, or one
    /// that is turned, scaled, clipped or translucent, or has children that the library does not know.
    int lookOf(OrvNgExtendedNode& node);
    int count() const { return m_Numbers.size(); }
    /// How often the look has been found.
    int uses(int look) const { return m_Uses.at(look); }
    void clear();

private:
    using Words = QVector<quint32>;
    bool addChildren(const QGraphicsItem& parent, const QPointF& offset, double width);
    void addColor(const QColor& color) { m_Words.append(color.rgba()); }
    void addLength(double length); ///< scene units

    QHash<QByteArray, int> m_Numbers;
    QVector<int> m_Uses;
    Words m_Words; ///< of the look that is being described
};

/// Internal. The picture of an edge far out, in scene coordinates.
///
/// Called by  OrvNgFarList.
/// Uses       OrvNgEdge.
/// Tells      nobody.
struct OrvNgFarEdge
{
    /// False for an edge that has to paint itself, as with OrvNgFarLooks::lookOf(); also where more than the
    /// path and the arrow is to be seen.
    bool read(const OrvNgEdge& edge);

    const QGraphicsPathItem* m_Line = nullptr; ///< of the edge
    QVector<QPointF> m_Points; ///< the path as a chain of lines; empty while hidden
    QColor m_Color;
    double m_Width = 0.0; ///< scene units; pixels if m_IsCosmetic
    bool m_IsCosmetic = false;
    bool m_HasArrow = false;
    QPointF m_Arrow[3];
    QColor m_ArrowColor;
};
