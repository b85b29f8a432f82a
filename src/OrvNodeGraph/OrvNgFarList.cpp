#include "OrvNodeGraph/OrvNgFarList.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgFarLines.h"
#include "OrvNodeGraph/OrvNgFarTiles.h"
#include "OrvNodeGraph/OrvNgItemPainter.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QRegion>

#include <algorithm>
#include <tuple>

namespace {

constexpr QRectF kEverywhere(-4e9, -4e9, 8e9, 8e9);
constexpr int kMostLooks = 20000;
constexpr int kChangeTiles = 64; // in each direction

/// Rectangles, each as often as it was put in.
class RectBag
{
public:
    explicit RectBag(const QVector<QRectF>& rects)
        : m_Rects(rects)
        , m_Taken(rects.size())
    {
        std::sort(m_Rects.begin(), m_Rects.end(), isBefore);
    }
    void take(const QRectF& rect)
    {
        const auto found = std::lower_bound(m_Rects.cbegin(), m_Rects.cend(), rect, isBefore);
        for (int i = int(found - m_Rects.cbegin()); i < m_Rects.size(); ++i) {
            if (isBefore(rect, m_Rects.at(i)))
                return;
            if (!m_Taken.at(i)) {
                m_Taken[i] = true;
                return;
            }
        }
    }
    bool isEmpty() const { return !m_Taken.contains(false); }
    QRectF bounds() const
    {
        QRectF bounds;
        for (int i = 0; i < m_Rects.size(); ++i) {
            if (!m_Taken.at(i))
                bounds |= m_Rects.at(i);
        }
        return bounds;
    }

private:
    static bool isBefore(const QRectF& a, const QRectF& b)
    {
        return std::make_tuple(a.left(), a.top(), a.width(), a.height())
            < std::make_tuple(b.left(), b.top(), b.width(), b.height());
    }

    QVector<QRectF> m_Rects; ///< sorted
    QVector<bool> m_Taken;
};

} // namespace

void OrvNgFarList::clear()
{
    m_Items = {}; // clear() would keep the room of the largest scene
    m_Edges = {};
    m_Known = {};
    m_Others = {};
    m_Looks.clear();
}

bool OrvNgFarList::call(QGraphicsScene* scene, double reach)
{
    m_Reach = reach;
    m_Items.clear();
    m_Edges.clear();
    m_Known.clear();
    m_Others.clear();
    m_OtherPlaces.clear();
    m_OtherBounds = QRectF();
    const bool keepsLooks = m_Looks.count() <= kMostLooks;
    if (!keepsLooks)
        m_Looks.clear();
    const QVector<OrvNgRollCall::Entry> roll = OrvNgRollCall::hold(scene, kEverywhere, reach);
    m_Items.reserve(roll.size());
    int edges = 0;
    for (const OrvNgRollCall::Entry& entry : roll) {
        Item item;
        item.m_Item = entry.m_Item;
        item.m_Kind = entry.m_Kind;
        item.m_Z = entry.m_Item->zValue();
        reset(item);
        if (item.m_Kind == OrvNgRollCall::Kind::Other)
            m_OtherPlaces.append(m_Items.size());
        m_Items.append(item);
        edges += item.m_Kind == OrvNgRollCall::Kind::Edge ? 1 : 0;
        if (item.m_Kind == OrvNgRollCall::Kind::Other && !dynamic_cast<OrvNgNode*>(item.m_Item)) {
            m_Others.insert(item.m_Item);
            m_OtherBounds |= item.m_Bounds;
        }
    }
    m_Edges.reserve(edges);
    return keepsLooks;
}

bool OrvNgFarList::areOthersThere(QGraphicsScene* scene) const
{
    if (m_Others.isEmpty())
        return true;
    const QRectF area = m_OtherBounds.adjusted(-1.0, -1.0, 1.0, 1.0); // a line has no area
    const QVector<OrvNgRollCall::Entry> roll = OrvNgRollCall::hold(scene, area);
    const auto there = std::count_if(roll.cbegin(), roll.cend(),
        [this](const OrvNgRollCall::Entry& entry) { return m_Others.contains(entry.m_Item); });
    return there == m_Others.size();
}

bool OrvNgFarList::isKnown(const QVector<OrvNgRollCall::Entry>& roll)
{
    if (m_Known.isEmpty()) {
        m_Known.reserve(m_Items.size());
        for (const Item& item : qAsConst(m_Items))
            m_Known.insert(item.m_Item);
    }
    for (const OrvNgRollCall::Entry& entry : roll) {
        if (!m_Known.contains(entry.m_Item))
            return false;
    }
    return true;
}

/// Where an item that is known has changed, nothing is looked for: what remains is small, even when a band
/// selects thousands of nodes.
bool OrvNgFarList::refresh(QGraphicsScene* scene, const QVector<QRectF>& changed)
{
    QRectF area;
    for (const QRectF& rect : changed)
        area |= rect;
    OrvNgFarTiles tiles(area, kChangeTiles, kChangeTiles);
    for (const QRectF& rect : changed)
        tiles.mark(rect);
    RectBag unexplained(changed);
    for (Item& item : m_Items) {
        if (!tiles.touches(item.m_Bounds))
            continue;
        if (item.m_Z != item.m_Item->zValue() || item.m_Item->parentItem())
            return false;
        const Item before = item;
        reset(item);
        const bool isNode = item.m_Kind == OrvNgRollCall::Kind::Node; // no other comes unnoticed
        if (isNode)
            read(item);
        if (item.m_Bounds != before.m_Bounds) {
            if (meetsAnew(item, before.m_Bounds))
                return false;
            unexplained.take(before.m_Bounds);
        }
        if (isNode || item.m_Bounds != before.m_Bounds || item.m_Index != before.m_Index)
            unexplained.take(item.m_Bounds);
    }
    return unexplained.isEmpty() || isKnown(OrvNgRollCall::hold(scene, unexplained.bounds()));
}

/// Where an item of another class lies is known among those only that came within reach of it when the roll was
/// called.
bool OrvNgFarList::meetsAnew(const Item& item, const QRectF& before) const
{
    const auto isMet = [this, &item, &before](const Item& other) {
        const QRectF near = other.m_Bounds.adjusted(-m_Reach, -m_Reach, m_Reach, m_Reach);
        return other.m_Z == item.m_Z && other.m_Item != item.m_Item
            && near.intersects(item.m_Bounds) && !near.intersects(before);
    };
    if (item.m_Kind == OrvNgRollCall::Kind::Other)
        return std::any_of(m_Items.cbegin(), m_Items.cend(), isMet);
    return std::any_of(m_OtherPlaces.cbegin(), m_OtherPlaces.cend(),
        [this, &isMet](int place) { return isMet(m_Items.at(place)); });
}

/// Items of other classes are looked at wherever they lie: one that ignores the view's transform may reach
/// into the view from afar.
void OrvNgFarList::reset(Item& item)
{
    const bool isOther = item.m_Kind == OrvNgRollCall::Kind::Other;
    item.m_State = State::Unread;
    item.m_Bounds
        = isOther ? OrvNgRollCall::boundsOfTree(*item.m_Item) : item.m_Item->sceneBoundingRect();
    if (isOther)
        read(item);
}

bool OrvNgFarList::read(const QRectF& visible)
{
    bool isPaintable = true;
    for (Item& item : m_Items) {
        if (item.m_State == State::Unread && item.m_Bounds.intersects(visible))
            read(item);
        isPaintable = isPaintable && item.m_State != State::Foreign;
    }
    return isPaintable;
}

void OrvNgFarList::read(Item& item)
{
    if (!item.m_Item->isVisible()) {
        item.m_State = State::Hidden;
        return;
    }
    item.m_State = State::Asked;
    if (item.m_Kind == OrvNgRollCall::Kind::Node) {
        item.m_Index = m_Looks.lookOf(*static_cast<OrvNgExtendedNode*>(item.m_Item));
        if (item.m_Index != OrvNgFarLooks::kNone)
            item.m_State = State::Pictured;
    } else if (item.m_Kind == OrvNgRollCall::Kind::Edge) {
        if (item.m_Index < 0) {
            item.m_Index = m_Edges.size();
            m_Edges.append(OrvNgFarEdge());
        }
        if (m_Edges[item.m_Index].read(*static_cast<OrvNgEdge*>(item.m_Item)))
            item.m_State = State::Drawn;
    }
    if (item.m_State != State::Asked)
        return;
    item.m_Bounds = OrvNgRollCall::boundsOfTree(*item.m_Item);
    if (OrvNgItemPainter::needsFramework(item.m_Item))
        item.m_State = State::Foreign;
}

void OrvNgFarList::paint(QPainter* painter, QImage* canvas, const OrvNgFarPictures::Shot& shot,
    const QRegion& pixels, OrvNgFarPictures& pictures) const
{
    pictures.begin(shot);
    OrvNgFarLines lines(painter, canvas, pixels, shot);
    const QTransform toScene
        = QTransform::fromScale(1.0 / shot.m_PixelRatio, 1.0 / shot.m_PixelRatio)
        * shot.m_ToView.inverted();
    const auto inScene = [&toScene, &shot](const QRect& rect) {
        const double margin = kMargin * shot.m_PixelRatio;
        return toScene.mapRect(QRectF(rect).adjusted(-margin, -margin, margin, margin));
    };
    const QRectF outer = inScene(pixels.boundingRect());
    QVector<QRectF> parts;
    for (const QRect& rect : pixels)
        parts.append(inScene(rect));
    for (const Item& item : qAsConst(m_Items)) {
        // Compared by hand: an edge without height has an empty rectangle, which meets nothing.
        const auto meets = [&item](const QRectF& rect) {
            const QRectF& own = item.m_Bounds;
            return own.left() <= rect.right() && own.right() >= rect.left()
                && own.top() <= rect.bottom() && own.bottom() >= rect.top();
        };
        if (meets(outer) && std::any_of(parts.cbegin(), parts.cend(), meets))
            paint(painter, item, lines, shot, pictures);
    }
}

void OrvNgFarList::paint(QPainter* painter, const Item& item, OrvNgFarLines& lines,
    const OrvNgFarPictures::Shot& shot, OrvNgFarPictures& pictures) const
{
    switch (item.m_State) {
    case State::Drawn:
        lines.draw(m_Edges.at(item.m_Index));
        break;
    case State::Pictured:
        pictures.draw(painter, *static_cast<OrvNgExtendedNode*>(item.m_Item), item.m_Index,
            m_Looks.uses(item.m_Index), item.m_Bounds.topLeft(), item.m_Bounds.width());
        break;
    case State::Asked:
        OrvNgItemPainter::paint(painter, item.m_Item, shot.m_ToView, shot.m_Viewport);
        break;
    case State::Unread:
    case State::Hidden:
    case State::Foreign:
        break;
    }
}
