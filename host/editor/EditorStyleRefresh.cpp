#include "editor/EditorStyleRefresh.h"

#include <QBrush>
#include <QGraphicsLineItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QMetaProperty>
#include <QPen>
#include <QScopedValueRollback>

#include <OrvNodeGraph/OrvNgBackdropNode.h>
#include <OrvNodeGraph/OrvNgDotableMarkerItem.h>
#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <OrvNodeGraph/OrvNgStyle.h>
#include <algorithm>
#include <utility>

namespace {

using Parts = EditorStyleRefresh::Parts;

bool isDerived(const QMetaProperty& property)
{
    const int type = property.userType();
    return type == QMetaType::QBrush || type == QMetaType::QPen
        || type == qMetaTypeId<QLinearGradient>();
}

// What an item has to do with a property. The scene's own colours are painted by the view, and ports
// read the colour of their text as they paint.
Parts partsOf(const QString& propertyName)
{
    static const QStringList s_Sizes{QStringLiteral("NodeTextPaddingX"),
        QStringLiteral("NodeTextPaddingY"), QStringLiteral("NodeShapeIndentX"),
        QStringLiteral("MinimumNodeWidth"), QStringLiteral("NodeHeight"),
        QStringLiteral("MinimumBackdropNodeWidth"), QStringLiteral("MinimumBackdropNodeHeight"),
        QStringLiteral("BackdropNodeTitleBarHeight"),
        QStringLiteral("BackdropNodeTitleBarPaddingLeftTop"),
        QStringLiteral("BackdropNodeTitleBarPaddingRightBottom")};
    if (propertyName.startsWith(QLatin1String("Grid"))
        || propertyName.startsWith(QLatin1String("Scene"))
        || propertyName.contains(QLatin1String("Port")))
        return {};
    if (s_Sizes.contains(propertyName))
        return EditorStyleRefresh::Layout;
    if (propertyName.contains(QLatin1String("Edge"))
        || propertyName.startsWith(QLatin1String("DotableMarker")))
        return EditorStyleRefresh::Edges;
    return EditorStyleRefresh::Nodes;
}

template <typename Item> void forChildren(QGraphicsItem* parent, void (*change)(Item*))
{
    const QList<QGraphicsItem*> children = parent->childItems();
    for (QGraphicsItem* child : children) {
        if (auto* item = dynamic_cast<Item*>(child))
            change(item);
    }
}

void refreshEdge(OrvNgEdge* edge)
{
    edge->markAsShared(false);
    forChildren<QGraphicsSimpleTextItem>(edge, [](QGraphicsSimpleTextItem* label) {
        label->setBrush(OrvNgStyle::instance().getEdgeLabelBrush());
    });
    forChildren<QGraphicsLineItem>(edge, [](QGraphicsLineItem* cross) {
        const OrvNgStyle& style = OrvNgStyle::instance();
        QPen pen = cross->pen();
        pen.setBrush(style.getCrossedOutBypassedEdgeBrush());
        pen.setWidth(std::max(1, style.getBypassedEdgePenWidth()));
        cross->setPen(pen);
    });
    forChildren<OrvNgDotableMarkerItem>(edge, [](OrvNgDotableMarkerItem* marker) {
        forChildren<QGraphicsRectItem>(marker, [](QGraphicsRectItem* diamond) {
            diamond->setBrush(OrvNgStyle::instance().getDotableMarkerBrush());
        });
    });
}

void refreshNode(OrvNgNode* node, Parts parts)
{
    if (parts & EditorStyleRefresh::Layout) {
        if (auto* extended = dynamic_cast<OrvNgExtendedNode*>(node))
            extended->updateWidget();
        else if (auto* backdrop = dynamic_cast<OrvNgBackdropNode*>(node))
            backdrop->setRect(backdrop->boundingRect());
    }
    // After the layout too: a node's gradient spans its shape.
    if (parts & (EditorStyleRefresh::Nodes | EditorStyleRefresh::Layout))
        node->setCorrectColor();
}

} // namespace

EditorStyleRefresh::EditorStyleRefresh(QGraphicsScene* scene)
    : QObject(scene)
    , m_Scene(scene)
{
    m_Timer.setSingleShot(true);
    connect(&m_Timer, &QTimer::timeout, this, &EditorStyleRefresh::run);
    const OrvNgStyle& style = OrvNgStyle::instance();
    connect(&style, &OrvNgStyle::colorsUpdated, this, &EditorStyleRefresh::takeColorsUpdated);
    const QMetaMethod slot = staticMetaObject.method(staticMetaObject.indexOfSlot("takeChange()"));
    const PartsBySignal& parts = partsBySignal();
    for (auto each = parts.cbegin(); each != parts.cend(); ++each)
        connect(&style, style.metaObject()->method(each.key()), this, slot);
}

// By the number of each changed signal. Brushes, pens and gradients change as what they are derived
// from does.
const EditorStyleRefresh::PartsBySignal& EditorStyleRefresh::partsBySignal()
{
    static const PartsBySignal s_Parts = [] {
        PartsBySignal parts;
        const QMetaObject& meta = OrvNgStyle::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            if (!isDerived(property))
                parts.insert(
                    property.notifySignalIndex(), partsOf(QString::fromLatin1(property.name())));
        }
        return parts;
    }();
    return s_Parts;
}

void EditorStyleRefresh::takeChange()
{
    m_MustDerive = true;
    schedule(partsBySignal().value(senderSignalIndex(), All));
}

// From outside it may follow values that were loaded, and those have no signal.
void EditorStyleRefresh::takeColorsUpdated()
{
    m_MustDerive = false;
    if (!s_IsDeriving)
        schedule(All);
}

void EditorStyleRefresh::schedule(Parts parts)
{
    m_Parts |= parts;
    if (!m_Timer.isActive())
        m_Timer.start(0);
}

void EditorStyleRefresh::run()
{
    if (m_MustDerive) {
        const QScopedValueRollback<bool> deriving(s_IsDeriving, true);
        Q_EMIT OrvNgStyle::instance().colorsUpdated();
    }
    refresh(m_Scene, std::exchange(m_Parts, {}));
}

void EditorStyleRefresh::refresh(QGraphicsScene* scene, Parts parts)
{
    if (parts) {
        const QList<QGraphicsItem*> items = scene->items();
        for (QGraphicsItem* item : items) {
            if (auto* node = dynamic_cast<OrvNgNode*>(item))
                refreshNode(node, parts);
            else if (auto* edge = dynamic_cast<OrvNgEdge*>(item); edge && (parts & Edges))
                refreshEdge(edge);
        }
    }
    scene->update();
}
