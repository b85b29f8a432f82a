#include "editor/EditorNode.h"

#include "editor/EditorScene.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsTextItem>

#include <OrvNodeGraph/OrvNgStyle.h>
#include <type_traits>

void EditorNoteBox::fill(const QString& text, const QSizeF& size)
{
    const double least = double(OrvNgStyle::instance().getMinimumNodeWidth());
    const QList<QGraphicsItem*> children = childItems();
    for (QGraphicsItem* child : children) {
        if (auto* shown = dynamic_cast<QGraphicsTextItem*>(child))
            shown->setTextWidth(size.width() > 0 ? qMax(size.width(), least) : -1);
    }
    setLabel(text);
    setRect(QRectF(QPointF(), size.expandedTo(boundingRect().size())));
}

template <typename Base>
EditorNodeOf<Base>::EditorNodeOf()
    : Base(nullptr)
{
    // Extended nodes have a probe for the edges under them. A dot is small: all of it is one.
    if constexpr (std::is_same_v<Base, OrvNgDotNode>) {
        auto* probe = new QGraphicsEllipseItem(this->boundingRect(), this);
        probe->hide();
        this->setInsertionProbe(probe);
    }
}

template <typename Base> EditorNodeOf<Base>::~EditorNodeOf()
{
    if (EditorScene* scene = editorScene())
        scene->nodeGone(this);
    this->aboutToBeDestroyed();
}

template <typename Base> EditorScene* EditorNodeOf<Base>::editorScene() const
{
    return qobject_cast<EditorScene*>(this->scene());
}

template <typename Base>
bool EditorNodeOf<Base>::acceptsInputSource(
    OrvNgNode* source, const QString& output, const QString& input)
{
    const EditorScene* scene = editorScene();
    return !scene || scene->whyNotConnect(source, output, this, input).isEmpty();
}

template <typename Base> void EditorNodeOf<Base>::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    // The library inserts only nodes whose outputs have edges, be they unconnected ones. Thousands of
    // nodes need none until then.
    const QStringList outputs
        = event->button() == Qt::LeftButton ? this->outputPoints() : QStringList();
    for (const QString& output : outputs)
        this->addOutputEdge(output);
    Base::mousePressEvent(event);
}

template <typename Base> void EditorNodeOf<Base>::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    const bool isDrop = event->button() == Qt::LeftButton;
    Base::mouseReleaseEvent(event);
    EditorScene* scene = editorScene();
    if (isDrop && scene)
        scene->nodeDropped(this);
}

template <typename Base> bool EditorNodeOf<Base>::sceneEvent(QEvent* event)
{
    // The mouse goes after a drop, and also when a popup, another window or a deletion takes it.
    EditorScene* scene = event->type() == QEvent::UngrabMouse ? editorScene() : nullptr;
    const bool isHandled = Base::sceneEvent(event);
    if (scene)
        scene->nodeLetGo(this);
    return isHandled;
}

template class EditorNodeOf<OrvNgExtendedNode>;
template class EditorNodeOf<OrvNgDotNode>;
template class EditorNodeOf<OrvNgBackdropNode>;
template class EditorNodeOf<EditorNoteBox>;
