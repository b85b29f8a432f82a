#include "OrvNodeGraph/OrvNgRollCall.h"

#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QScopeGuard>
#include <QSet>

#include <algorithm>

quint64 OrvNgRollCall::s_Changes = 0;
QVector<OrvNgRollCall::Entry>* OrvNgRollCall::s_Roll = nullptr;

QRectF OrvNgRollCall::boundsOfTree(const QGraphicsItem& item)
{
    return item.mapRectToScene(item.boundingRect() | item.childrenBoundingRect());
}

QRectF OrvNgRollCall::nowhere()
{
    return QRectF(-1e18, -1e18, 1.0, 1.0);
}

bool OrvNgRollCall::isNoted(const QGraphicsItem* item, Kind kind)
{
    if (item->parentItem())
        return false;
    if (s_Roll->isEmpty() || s_Roll->constLast().m_Item != item)
        s_Roll->append({const_cast<QGraphicsItem*>(item), kind});
    return true;
}

QVector<OrvNgRollCall::Entry> OrvNgRollCall::hold(
    QGraphicsScene* scene, const QRectF& rect, double reach)
{
    // Items that are new to the scene's index are filed here, with their true bounds.
    scene->items(QRectF(rect.topLeft(), QSizeF(1e-3, 1e-3)));

    QVector<Entry> roll;
    QList<QGraphicsItem*> found;
    {
        s_Roll = &roll;
        const auto end = qScopeGuard([] { s_Roll = nullptr; });
        found = scene->items(rect, Qt::IntersectsItemBoundingRect, Qt::AscendingOrder);
    }
    QSet<const QGraphicsItem*> ours;
    QVector<QGraphicsItem*> others;
    for (QGraphicsItem* item : qAsConst(found)) {
        if (item->parentItem())
            continue;
        if (ours.isEmpty()) {
            for (const Entry& entry : qAsConst(roll))
                ours.insert(entry.m_Item);
        }
        if (!ours.contains(item))
            others.append(item);
    }
    for (QGraphicsItem* item : qAsConst(others))
        insertOther(roll, scene, item, reach);
    return roll;
}

/// Above everything with a lower z value; among equals as the scene stacks those that overlap it or come within
/// reach, which is all that can be seen.
void OrvNgRollCall::insertOther(
    QVector<Entry>& roll, QGraphicsScene* scene, QGraphicsItem* item, double reach)
{
    const double z = item->zValue();
    const auto first = std::lower_bound(roll.begin(), roll.end(), z,
        [](const Entry& entry, double value) { return entry.m_Item->zValue() < value; });
    const auto last = std::upper_bound(first, roll.end(), z,
        [](double value, const Entry& entry) { return value < entry.m_Item->zValue(); });
    auto place = last;
    if (first != last) {
        const QRectF near = boundsOfTree(*item).adjusted(-reach, -reach, reach, reach);
        const QList<QGraphicsItem*> stack
            = scene->items(near, Qt::IntersectsItemBoundingRect, Qt::AscendingOrder);
        QSet<const QGraphicsItem*> above;
        for (int i = stack.size() - 1; i >= 0 && stack.at(i) != item; --i)
            above.insert(stack.at(i)->topLevelItem());
        place = std::find_if(
            first, last, [&above](const Entry& entry) { return above.contains(entry.m_Item); });
    }
    roll.insert(place, {item, Kind::Other});
}
