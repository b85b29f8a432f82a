#include "editor/EditorNavigator.h"

EditorNavigator::EditorNavigator(EditorView* view, QObject* parent)
    : QObject(parent)
    , m_View(view)
{
}

EditorNavigator::~EditorNavigator() = default;

void EditorNavigator::setDocument(const EditorPtr& editor, int scope)
{
    if (m_Editor)
        m_Editor->disconnect(this);
    const QHash<int, EditorScene*> oldScenes = m_Scenes;
    m_Scenes.clear();
    m_Looks.clear();
    m_CameFrom.clear();
    m_ChangedScopes.clear();
    m_Editor = editor;
    m_Scene = nullptr;
    followEditor();
    show(scope);
    // Later: the call may come out of an event that an old scene is still handling.
    for (EditorScene* old : oldScenes)
        old->deleteLater();
}

void EditorNavigator::followEditor()
{
    const auto note = [this](int scope) { noteChange(scope); };
    NetEditor* editor = m_Editor.get();
    connect(editor, &NetEditor::nodesMoved, this, note);
    connect(editor, &NetEditor::inputChanged, this, note);
    connect(editor, &NetEditor::nodeAdded, this, note);
    connect(editor, &NetEditor::nodeRemoved, this, note);
    connect(editor, &NetEditor::backdropChanged, this, note);
    connect(editor, &NetEditor::backdropAdded, this, note);
    connect(editor, &NetEditor::backdropRemoved, this, note);
}

void EditorNavigator::noteChange(int scope)
{
    if (m_ChangedScopes.isEmpty())
        QMetaObject::invokeMethod(this, &EditorNavigator::revealChange, Qt::QueuedConnection);
    if (!m_ChangedScopes.contains(scope))
        m_ChangedScopes.append(scope);
}

/// A change inside a graph may change its box in the scope around it too. As long as some of it is on show,
/// nothing needs to be shown; so what the user does here never leads away.
void EditorNavigator::revealChange()
{
    const QVector<int> changed = m_ChangedScopes;
    m_ChangedScopes.clear();
    if (!changed.isEmpty() && !changed.contains(scopeIndex()))
        showScope(changed.constFirst());
}

EditorScene* EditorNavigator::makeScene(int scope)
{
    auto* scene = new EditorScene(m_Editor, scope, m_InitialMode, this);
    // Queued, because entering replaces the scene that handles the click.
    connect(
        scene, &EditorScene::nodeActivated, this,
        [this, scene](int nodeIndex) {
            if (scene == m_Scene)
                enter(nodeIndex);
        },
        Qt::QueuedConnection);
    return scene;
}

void EditorNavigator::rememberLook()
{
    // A view that was never shown has not looked anywhere yet.
    if (m_Scene && m_View->isVisible())
        m_Looks.insert(m_Scene->scopeIndex(), m_View->look());
}

void EditorNavigator::show(int scope)
{
    rememberLook();
    EditorScene*& scene = m_Scenes[scope];
    if (!scene)
        scene = makeScene(scope);
    m_Scene = scene;
    m_View->setScene(scene);
    m_View->init();
    const auto look = m_Looks.constFind(scope);
    if (look != m_Looks.cend())
        m_View->setLook(*look);
    else
        m_View->frame(scene->contentBounds());
    Q_EMIT scopeChanged();
}

int EditorNavigator::scopeInside(int nodeIndex) const
{
    if (!m_Scene || nodeIndex < 0 || nodeIndex >= m_Scene->scope().nodes.size())
        return -1;
    const NetNode& node = m_Scene->scope().nodes.at(nodeIndex);
    if (node.innerScope >= 0 || !node.definition)
        return node.innerScope;
    for (const NetScope& scope : document()->scopes()) {
        if (scope.kind == NetScope::Kind::FunctionalGraph && scope.definition
            && scope.definition->name == node.definition->name)
            return scope.index;
    }
    return -1;
}

bool EditorNavigator::canShow(int scope) const
{
    return m_Editor && scope >= 0 && scope < document()->scopes().size() && scope != scopeIndex();
}

bool EditorNavigator::showScope(int scope)
{
    if (!canShow(scope))
        return false;
    m_CameFrom.clear(); // a jump begins a new way: back is out
    show(scope);
    return true;
}

bool EditorNavigator::enter(int nodeIndex)
{
    const int scope = scopeInside(nodeIndex);
    if (!canShow(scope))
        return false;
    m_CameFrom.append(scopeIndex());
    show(scope);
    return true;
}

bool EditorNavigator::canLeave() const
{
    return m_Scene && (!m_CameFrom.isEmpty() || m_Scene->scope().parent >= 0);
}

bool EditorNavigator::leave()
{
    if (!canLeave())
        return false;
    const int outer = m_CameFrom.isEmpty() ? m_Scene->scope().parent : m_CameFrom.takeLast();
    show(outer);
    return true;
}
