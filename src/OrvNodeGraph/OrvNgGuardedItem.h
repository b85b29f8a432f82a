#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

class QGraphicsItem;
class QGraphicsScene;

/// Internal. Remembers an item of any kind that the host may delete at any time. Most items are objects,
/// or belong to one; only for the host's own items that do not, the scene's items are looked through.
///
/// Called by  OrvNgView.
/// Uses       QPointer, the parents of the item.
/// Tells      nobody.
class OrvNgGuardedItem
{
public:
    OrvNgGuardedItem() = default;
    /// Remembers a live item.
    explicit OrvNgGuardedItem(QGraphicsItem* item);

    /// The item, null when it is gone or not in that scene, or the scene is null.
    QGraphicsItem* in(const QGraphicsScene* scene) const;

private:
    QGraphicsItem* m_Item = nullptr;
    QVector<QGraphicsItem*> m_Parents; ///< up to the first that is an object, or to the last of all
    QPointer<QObject> m_Object; ///< the last parent, or without parents the item, as an object
    bool m_HasObject = false;
};
