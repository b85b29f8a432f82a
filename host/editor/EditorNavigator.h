#pragma once

#include "editor/EditorScene.h"
#include "editor/EditorView.h"

#include <QHash>
#include <QObject>

#include <memory>

/// Which scope of the document the view shows, and the way from one to another. Scenes are made at
/// the first visit and kept until the document goes, with where the view looked, so that coming
/// back finds everything as it was left. A change of the document in a scope that is not on show, which
/// undo and redo make, shows that scope.
///
/// Called by  EditorWindow.
/// Uses       EditorScene, EditorView, NetEditor.
/// Tells      the window, through scopeChanged.
class EditorNavigator : public QObject
{
    Q_OBJECT

public:
    using EditorPtr = std::shared_ptr<NetEditor>;

    /// Shows scopes in that view, which must outlive the navigator's use of it.
    explicit EditorNavigator(EditorView* view, QObject* parent = nullptr);
    ~EditorNavigator() override;

    /// Takes another document and shows one of its scopes. Everything of the old one goes.
    void setDocument(const EditorPtr& editor, int scope);
    /// Null before the first document.
    const EditorPtr& editor() const { return m_Editor; }
    const NetDocument* document() const { return m_Editor ? &m_Editor->document() : nullptr; }

    /// The scene on show; null before the first document.
    EditorScene* scene() const { return m_Scene; }
    /// Position of the scope on show; -1 before the first document.
    int scopeIndex() const { return m_Scene ? m_Scene->scopeIndex() : -1; }

    /// The scope inside a node of the scope on show: a graph's own, or the graph of the same
    /// document that implements the node's definition; -1 when there is none.
    int scopeInside(int nodeIndex) const;
    /// Jumps to a scope; false when there is none at that position, or it is on show already.
    bool showScope(int scope);
    /// Shows the scope inside a node of the scope on show; false when there is none.
    bool enter(int nodeIndex);
    /// Goes back to the scope from which this one was entered, after a jump to the one around it;
    /// false at the document level.
    bool leave();
    bool canLeave() const;

    /// The mode in which scenes show their ports from now on.
    void setInitialMode(EditorScene::Mode mode) { m_InitialMode = mode; }

Q_SIGNALS:
    /// Another scope, or the same one of another document, is on show.
    void scopeChanged();

private:
    bool canShow(int scope) const;
    void show(int scope);
    void rememberLook();
    void followEditor();
    void noteChange(int scope);
    void revealChange();
    EditorScene* makeScene(int scope);

    EditorView* m_View;
    EditorPtr m_Editor;
    EditorScene* m_Scene = nullptr; ///< one of m_Scenes
    QHash<int, EditorScene*> m_Scenes; ///< by scope; children of this
    QHash<int, EditorView::Look> m_Looks;
    QVector<int> m_ChangedScopes; ///< since the event loop ran last
    QVector<int> m_CameFrom; ///< scopes from which was entered, the last one at the end
    EditorScene::Mode m_InitialMode = EditorScene::Mode::PORT_LIST_EXPANDED;
};
