#pragma once

#include "editor/EditorBackdrops.h"
#include "editor/EditorNodeFactory.h"
#include "editor/EditorTesting.h"
#include "editor/EditorUser.h"

#include <OrvCore/OrvUndoManager.h>

#include <QGraphicsTextItem>
#include <QTest>
#include <QUndoStack>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgStyle.h>

namespace EditorTesting {

inline QUndoStack& history()
{
    return *OrvUndoManager::instance().undoStack();
}

/// The document in a view of its own, and a user.
struct Stage : EditorUser
{
    std::shared_ptr<NetEditor> m_Editor;
    std::unique_ptr<EditorScene> m_Scene;
    EditorView m_View{nullptr};
    QStringList m_Status;

    explicit Stage(const QString& file)
        : Stage(std::make_shared<NetEditor>(NetReader(NetSearchPath()).read(file).document), 0)
    {
    }
    Stage(std::shared_ptr<NetEditor> editor, int scope)
        : EditorUser(&m_View)
        , m_Editor(std::move(editor))
        , m_Scene(std::make_unique<EditorScene>(m_Editor, scope))
    {
        history().clear();
        QObject::connect(m_Scene.get(), &EditorScene::status,
            [this](const QString& text) { m_Status.append(text); });
        m_View.setScene(m_Scene.get());
        m_View.init();
        m_View.resize(1400, 700);
        m_View.show();
        m_View.lookAt(EditorScene::boundsOf(m_Scene->nodes()).center(), 1.0);
        if (!QTest::qWaitForWindowExposed(&m_View))
            qFatal("the view is not shown");
        // The view scrolls while the real cursor is near its border and something is carried.
        QCursor::setPos(m_View.mapToGlobal(m_View.rect().center()));
        flush();
    }
    ~Stage()
    {
        history().clear();
        m_View.setScene(nullptr);
    }

    /// The connections on the screen, "a>b.in1", in alphabetic order; a dot is called "dot".
    QString shown() const
    {
        QStringList all;
        for (OrvNgNode* dest : m_Scene->nodes()) {
            for (OrvNgEdge* each : dest->inputs()) {
                if (each->isFullConnected())
                    all.append(QStringLiteral("%1>%2.%3")
                                   .arg(nameOf(each->sourceNode()), nameOf(dest), each->text()));
            }
        }
        all.sort();
        return all.join(QLatin1Char(' '));
    }
    QString nameOf(OrvNgNode* item) const
    {
        const NetNode& model = m_Scene->scope().nodes.at(m_Scene->indexOf(item));
        return model.isDot() ? QStringLiteral("dot") : model.name;
    }
    OrvNgNode* backdrop(const QByteArray& name) const
    {
        return m_Scene->backdrops().item(backdropIndex(name));
    }
    int backdropIndex(const QByteArray& name) const
    {
        return indexIn(m_Scene->scope().backdrops, name);
    }
    bool isTrue() const { return lie().isEmpty(); }
    QString lie() const { return lieOf(*m_Scene); }
    /// What the screen shows of connections, places, backdrops and notes otherwise than the model; empty for
    /// nothing.
    static QString lieOf(const EditorScene& scene)
    {
        const NetScope& scope = scene.scope();
        if (scene.connectionCount() != scope.connections.size())
            return QStringLiteral("%1 connections").arg(scene.connectionCount());
        for (const NetConnection& each : scope.connections) {
            const OrvNgEdge* edge = scene.edgeOf({each.destNode, each.destPort});
            if (!edge || edge->sourceNode() != scene.node(each.sourceNode)
                || edge->sourceOutputPoint()
                    != EditorNodeFactory::outputName(
                        scope.nodes.at(each.sourceNode), each.sourcePort))
                return QStringLiteral("source of %1.%2").arg(each.destNode).arg(each.destPort);
        }
        for (int i = 0; i < scope.nodes.size(); ++i) {
            const OrvNgNode* item = scene.node(i);
            const QPointF apart = item && scope.nodes.at(i).hasPosition
                ? scene.filePosition(i) - scope.nodes.at(i).position
                : QPointF();
            if ((item != nullptr) == scope.nodes.at(i).removed || !(apart.manhattanLength() < 1e-6))
                return QStringLiteral("node %1, off by %2, %3")
                    .arg(i)
                    .arg(apart.x())
                    .arg(apart.y());
        }
        for (int i = 0; i < scope.backdrops.size(); ++i) {
            if (!isTrueOfBackdrop(scene, i))
                return QStringLiteral("backdrop %1").arg(i);
        }
        return {};
    }

private:
    static bool isTrueOfBackdrop(const EditorScene& scene, int index)
    {
        const NetBackdrop& model = scene.scope().backdrops.at(index);
        OrvNgNode* item = scene.backdrops().item(index);
        if (!item)
            return model.removed;
        const auto isNear
            = [](const QPointF& a, const QPointF& b) { return (a - b).manhattanLength() < 1e-3; };
        const QRectF rect = NetPlacement::toScene(model.rect, scene.unit());
        const QSizeF size = rect.size().expandedTo(leastSizeOf(item, model.isNote));
        return !model.removed && isNear(item->pos(), rect.topLeft())
            && isNear(item->boundingRect().bottomRight(), {size.width(), size.height()})
            && item->text() == (model.isNote ? model.doc : model.title)
            && item->nodeUniColour().color() == EditorBackdrops::colorOf(model);
    }
    /// Of a note, what its text needs.
    static QSizeF leastSizeOf(const QGraphicsItem* item, bool isNote)
    {
        const OrvNgStyle& style = OrvNgStyle::instance();
        if (!isNote)
            return QSizeF(
                style.getMinimumBackdropNodeWidth(), style.getMinimumBackdropNodeHeight());
        QSizeF size(
            double(style.getMinimumNodeWidth()), double(style.getMinimumStickyNoteNodeHeight()));
        for (const QGraphicsItem* child : item->childItems()) {
            if (auto* text = dynamic_cast<const QGraphicsTextItem*>(child))
                size = size.expandedTo(text->boundingRect().size());
        }
        return size;
    }
};

} // namespace EditorTesting
