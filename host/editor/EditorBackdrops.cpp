#include "editor/EditorBackdrops.h"

#include "editor/EditorNode.h"
#include "editor/EditorScene.h"
#include "editor/EditorSnapPause.h"

#include <QGraphicsTextItem>
#include <QRegularExpression>

#include <OrvNodeGraph/OrvNgResizeTriangleItem.h>
#include <OrvNodeGraph/OrvNgStyle.h>
#include <algorithm>

namespace {

const QColor kPaper(228, 214, 160);
constexpr int kBarAbove = 20; // of each channel, 0 to 255

} // namespace

EditorBackdrops::EditorBackdrops(EditorScene* scene)
    : m_Scene(scene)
{
}

// Items

const NetBackdrop& EditorBackdrops::model(int index) const
{
    return m_Scene->scope().backdrops.at(index);
}

OrvNgNode* EditorBackdrops::item(int index) const
{
    return m_Shown.value(index).item;
}

OrvNgBackdropNode* EditorBackdrops::frame(int index) const
{
    return dynamic_cast<OrvNgBackdropNode*>(item(index));
}

void EditorBackdrops::build()
{
    const int count = m_Scene->scope().backdrops.size();
    m_Shown.resize(count);
    for (int i = 0; i < count; ++i) {
        if (!model(i).removed)
            make(i);
    }
    for (int i = 0; i < count; ++i) {
        if (OrvNgBackdropNode* backdrop = frame(i))
            backdrop->refreshChildrenList(false);
    }
}

void EditorBackdrops::make(int index)
{
    OrvNgNode* made = nullptr;
    if (model(index).isNote) {
        made = new EditorNote;
    } else {
        auto* backdrop = new EditorBackdrop;
        // A step of the history puts it back by the library's command, which snaps.
        QObject::connect(backdrop, &OrvNgNode::posChanged, m_Scene, [this, backdrop] {
            const int place = indexOf(backdrop);
            if (place >= 0 && !m_Scene->isResizing(place))
                putBack(place);
        });
        made = backdrop;
    }
    m_Shown[index].item = made;
    m_Indices.insert(made, index);
    show(index);
    m_Scene->addItem(made);
}

void EditorBackdrops::show(int index)
{
    const NetBackdrop& said = model(index);
    if (OrvNgBackdropNode* backdrop = frame(index)) {
        backdrop->setTitleText(said.title);
        backdrop->setLabel(said.doc);
    }
    color(index);
    putBack(index);
}

void EditorBackdrops::color(int index)
{
    const QColor color = colorOf(model(index));
    if (auto* note = dynamic_cast<EditorNote*>(item(index)))
        note->setNodeBackgroundColour(color);
    else if (OrvNgBackdropNode* backdrop = frame(index))
        backdrop->setNodeBackgroundColour(color);
}

int EditorBackdrops::indexOf(const QGraphicsItem* item) const
{
    for (; item; item = item->parentItem()) {
        const auto found = m_Indices.constFind(item);
        if (found != m_Indices.cend())
            return *found;
    }
    return -1;
}

QVector<OrvNgNode*> EditorBackdrops::items() const
{
    QVector<OrvNgNode*> all;
    for (const Shown& each : m_Shown) {
        if (each.item)
            all.append(each.item);
    }
    return all;
}

QVector<int> EditorBackdrops::selected() const
{
    QVector<int> indices;
    for (int i = 0; i < m_Shown.size(); ++i) {
        if (m_Shown.at(i).item && m_Shown.at(i).item->isSelected())
            indices.append(i);
    }
    return indices;
}

EditorBackdrops::Text EditorBackdrops::textOf(const QGraphicsItem* hit) const
{
    const int index = indexOf(hit);
    if (index < 0)
        return Text::None;
    if (model(index).isNote || dynamic_cast<const QGraphicsTextItem*>(hit))
        return Text::Doc;
    for (const QGraphicsItem* part = hit; part != item(index); part = part->parentItem()) {
        if (dynamic_cast<const OrvNgResizeTriangleItem*>(part))
            return Text::None;
    }
    return hit == item(index) ? Text::None : Text::Title; // the body lets everything through
}

void EditorBackdrops::forget(OrvNgNode* item)
{
    const auto found = m_Indices.find(item);
    if (found == m_Indices.end())
        return;
    m_Shown[*found] = {};
    m_Indices.erase(found);
}

// Places

// A size that changes by itself is the style's doing and is none of the model's business.
bool EditorBackdrops::isAtRest(int index) const
{
    const Shown shown = m_Shown.value(index);
    return !shown.item
        || (shown.item->pos() == shown.pos
            && (!m_Scene->isResizing(index) || shown.item->boundingRect().size() == shown.size));
}

void EditorBackdrops::putBack(int index)
{
    OrvNgNode* placed = item(index);
    if (!placed)
        return;
    const QRectF rect = NetPlacement::toScene(model(index).rect, m_Scene->unit());
    if (auto* note = dynamic_cast<EditorNote*>(placed))
        note->fill(model(index).doc, rect.size());
    else if (OrvNgBackdropNode* backdrop = frame(index))
        backdrop->setRect(QRectF(QPointF(), rect.size()));
    {
        const EditorSnapPause exact;
        placed->setPos(rect.topLeft());
    }
    m_Shown[index].pos = placed->pos();
    m_Shown[index].size = placed->boundingRect().size();
}

QRectF EditorBackdrops::fileRect(int index) const
{
    const Shown& shown = m_Shown.at(index);
    const QRectF now(shown.item->pos(), shown.item->boundingRect().size());
    QRectF rect = model(index).rect;
    if (now.topLeft() != shown.pos)
        rect.moveTopLeft(m_Scene->filePosition(now.topLeft()));
    if (!m_Scene->isResizing(index))
        return rect;
    // What is shown may be larger than what the model says: only a change of it counts.
    const QSizeF size = m_Scene->fileRect(now).size();
    if (now.width() != shown.size.width())
        rect.setWidth(size.width());
    if (now.height() != shown.size.height())
        rect.setHeight(size.height());
    return rect;
}

// Following the model

void EditorBackdrops::restack(int index)
{
    if (OrvNgBackdropNode* backdrop = frame(index))
        backdrop->restackAmongNeighbours();
}

void EditorBackdrops::followChange(int index)
{
    show(index);
    restack(index);
}

void EditorBackdrops::followAddition(int index)
{
    m_Shown.resize(m_Scene->scope().backdrops.size());
    if (item(index))
        return;
    make(index);
    restack(index);
}

void EditorBackdrops::followRemoval(int index)
{
    OrvNgNode* gone = item(index);
    if (!gone)
        return;
    forget(gone);
    gone->destroy();
    gone->hide(); // it is deleted later
}

void EditorBackdrops::recolor()
{
    for (int i = 0; i < m_Shown.size(); ++i) {
        if (item(i))
            color(i);
    }
}

// Colours

QColor EditorBackdrops::colorOf(const NetBackdrop& backdrop)
{
    QColor own = colorFromText(backdrop.color);
    if (own.isValid())
        return own;
    if (backdrop.isNote)
        return kPaper;
    // The frame makes its title bar lighter than its body.
    const QColor bar = OrvNgStyle::instance().getBackdropNodeTitleBarColor();
    return QColor(qMax(0, bar.red() - kBarAbove), qMax(0, bar.green() - kBarAbove),
        qMax(0, bar.blue() - kBarAbove));
}

QColor EditorBackdrops::colorFromText(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1Char('#')))
        return QColor(trimmed);
    static const QRegularExpression s_Gaps(QStringLiteral("[,\\s]+"));
    const QStringList parts = trimmed.split(s_Gaps, Qt::SkipEmptyParts);
    if (parts.size() != 3 && parts.size() != 4)
        return {};
    qreal channels[3];
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        channels[i] = parts.at(i).toDouble(&isNumber);
        if (!isNumber || qIsNaN(channels[i]))
            return {};
        channels[i] = qBound(0.0, channels[i], 1.0);
    }
    return QColor::fromRgbF(channels[0], channels[1], channels[2]);
}
