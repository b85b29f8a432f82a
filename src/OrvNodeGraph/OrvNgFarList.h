#pragma once

#include "OrvNodeGraph/OrvNgFarLooks.h"
#include "OrvNodeGraph/OrvNgFarPictures.h"
#include "OrvNodeGraph/OrvNgRollCall.h"

#include <QRectF>
#include <QSet>

class OrvNgFarLines;
class QGraphicsScene;
class QRegion;

/// Internal. The top-level items of a scene in stacking order, with what is needed to paint them far out:
/// a number for how a node looks, a chain of lines for an edge. Both are read when the item first comes into
/// view, and again when the scene has changed where the item lies.
///
/// Called by  OrvNgFarFrame.
/// Uses       OrvNgRollCall, OrvNgFarLooks, OrvNgFarPictures, OrvNgItemPainter.
/// Tells      nobody.
class OrvNgFarList
{
public:
    /// Items paint outlines and thin lines up to so many viewport pixels outside their bounds.
    static constexpr int kMargin = 4;

    void clear();
    /// Makes the list anew. False when looks have got other numbers: pictures kept so far are to be dropped.
    /// reach is how far items paint beyond their bounds, scene units.
    bool call(QGraphicsScene* scene, double reach);
    /// False: the list has to be made anew, because what items paint reaches further than it was made for, so
    /// that more of them meet.
    bool suffices(double reach) const { return m_OtherPlaces.isEmpty() || reach <= m_Reach; }
    /// False: an item whose class tells nobody that it goes may have gone, so that the list has to be made anew.
    bool areOthersThere(QGraphicsScene* scene) const;
    /// The scene has changed in these rectangles. False: the list does not hold any more and has to be made
    /// anew, because an item is new, has been restacked, or is not ours.
    bool refresh(QGraphicsScene* scene, const QVector<QRectF>& changed);
    /// Reads what lies in a part of the scene. False: something there can only be painted by the framework.
    bool read(const QRectF& visible);
    /// Paints what meets a region, in device pixels, and has been read. The painter paints on canvas, in
    /// viewport coordinates, and is clipped to the region. The pictures are to be used with this list only.
    void paint(QPainter* painter, QImage* canvas, const OrvNgFarPictures::Shot& shot,
        const QRegion& pixels, OrvNgFarPictures& pictures) const;

private:
    enum class State {
        Unread,
        Hidden,
        Pictured, ///< a node
        Drawn, ///< an edge
        Asked, ///< paints itself
        Foreign ///< is painted by the framework
    };
    struct Item
    {
        QGraphicsItem* m_Item = nullptr;
        OrvNgRollCall::Kind m_Kind = OrvNgRollCall::Kind::Other;
        State m_State = State::Unread;
        int m_Index = -1; ///< a node's look; an edge's place in m_Edges, once it has one
        double m_Z = 0.0;
        QRectF m_Bounds; ///< scene coordinates
    };

    void reset(Item& item);
    void read(Item& item);
    void paint(QPainter* painter, const Item& item, OrvNgFarLines& lines,
        const OrvNgFarPictures::Shot& shot, OrvNgFarPictures& pictures) const;
    bool meetsAnew(const Item& item, const QRectF& before) const;
    bool isKnown(const QVector<OrvNgRollCall::Entry>& roll);

    QVector<Item> m_Items;
    double m_Reach = 0.0; ///< scene units
    QVector<OrvNgFarEdge> m_Edges;
    QSet<const QGraphicsItem*> m_Others; ///< of m_Items those that are neither nodes nor edges
    QVector<int> m_OtherPlaces; ///< in m_Items, of all that are of other classes, nodes included
    QRectF m_OtherBounds; ///< of m_Others, scene coordinates
    QSet<const QGraphicsItem*> m_Known; ///< all of m_Items, once asked for
    OrvNgFarLooks m_Looks;
};
