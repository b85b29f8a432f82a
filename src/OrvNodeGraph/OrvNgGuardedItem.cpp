#include "OrvNodeGraph/OrvNgGuardedItem.h"

#include <QGraphicsItem>
#include <QGraphicsScene>

OrvNgGuardedItem::OrvNgGuardedItem(QGraphicsItem* item)
    : m_Item(item)
    , m_Object(dynamic_cast<QObject*>(item))
{
    QGraphicsItem* last = item;
    while (!m_Object && last->parentItem()) {
        last = last->parentItem();
        m_Parents.append(last);
        m_Object = dynamic_cast<QObject*>(last);
    }
    m_HasObject = !m_Object.isNull();
}

/// From the outermost parent inwards, so that nothing is asked before it is known to live.
QGraphicsItem* OrvNgGuardedItem::in(const QGraphicsScene* scene) const
{
    if (!m_Item || !scene || (m_HasObject && !m_Object))
        return nullptr;
    QGraphicsItem* const outermost = m_Parents.isEmpty() ? m_Item : m_Parents.constLast();
    if (!m_HasObject && !scene->items().contains(outermost))
        return nullptr;
    for (int i = m_Parents.size() - 1; i >= 0; --i) {
        QGraphicsItem* const child = i == 0 ? m_Item : m_Parents.at(i - 1);
        if (!m_Parents.at(i)->childItems().contains(child))
            return nullptr;
    }
    return m_Item->scene() == scene ? m_Item : nullptr;
}
