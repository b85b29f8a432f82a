#pragma once

#include "editor/EditorBackdrops.h"
#include "editor/EditorTesting.h"
#include "editor/EditorUser.h"

#include <OrvCore/OrvUndoManager.h>

#include <QTest>
#include <QUndoStack>

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
        : EditorUser(&m_View)
        , m_Editor(std::make_shared<NetEditor>(NetReader(NetSearchPath()).read(file).document))
        , m_Scene(std::make_unique<EditorScene>(m_Editor, 0))
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
    OrvNgNode* backdrop(const char* name) const
    {
        return m_Scene->backdrops().item(backdropIndex(name));
    }
    int backdropIndex(const char* name) const
    {
        const QVector<NetBackdrop>& all = m_Scene->scope().backdrops;
        for (int i = 0; i < all.size(); ++i) {
            if (all.at(i).name == QLatin1String(name))
                return i;
        }
        return -1;
    }
    /// Whether the screen shows the very backdrops and notes that the model has.
    bool isTrueOfBackdrops() const
    {
        const NetScope& scope = m_Scene->scope();
        bool result = true;
        for (int i = 0; i < scope.backdrops.size(); ++i) {
            const NetBackdrop& model = scope.backdrops.at(i);
            OrvNgNode* item = m_Scene->backdrops().item(i);
            result = result && (item != nullptr) != model.removed;
            if (!item)
                continue;
            const QRectF rect = NetPlacement::toScene(model.rect, m_Scene->unit());
            result = result && isNear(item->pos(), rect.topLeft())
                && isNear(item->boundingRect().bottomRight(), {rect.width(), rect.height()})
                && item->text() == (model.isNote ? model.doc : model.title)
                && item->nodeUniColour().color() == EditorBackdrops::colorOf(model);
        }
        return result;
    }
    static bool isNear(const QPointF& a, const QPointF& b)
    {
        return (a - b).manhattanLength() < 1e-3;
    }
    /// Whether the screen shows the very connections and places that the model has.
    bool isTrue() const
    {
        const NetScope& scope = m_Scene->scope();
        bool result = m_Scene->connectionCount() == scope.connections.size() && isTrueOfBackdrops();
        for (const NetConnection& each : scope.connections) {
            const OrvNgEdge* shownEdge = m_Scene->edgeOf({each.destNode, each.destPort});
            result
                = result && shownEdge && shownEdge->sourceNode() == m_Scene->node(each.sourceNode);
        }
        for (int i = 0; i < scope.nodes.size(); ++i) {
            const OrvNgNode* item = m_Scene->node(i);
            const QPointF apart = item && scope.nodes.at(i).hasPosition
                ? m_Scene->filePosition(i) - scope.nodes.at(i).position
                : QPointF();
            result = result && (item != nullptr) != scope.nodes.at(i).removed
                && apart.manhattanLength() < 1e-6;
        }
        return result;
    }
};

} // namespace EditorTesting
