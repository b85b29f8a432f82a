#include "editor/EditorWindow.h"

#include "editor/EditorBackdrops.h"
#include "editor/EditorBreadcrumbBar.h"
#include "editor/EditorHistory.h"
#include "editor/EditorMessageBar.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorPreferencesDialog.h"
#include "editor/EditorQuestions.h"
#include "editor/EditorSaving.h"
#include "editor/EditorView.h"
#include "network/NetEditor.h"
#include "network/NetReader.h"

#include <OrvCore/OrvUndoManager.h>
#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>
#include <QVBoxLayout>

namespace {

constexpr int kStatusTime = 6000; // milliseconds

/// The waiting cursor, for as long as it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }

private:
    Q_DISABLE_COPY(WaitCursor)
};

QString droppedFile(const QMimeData* data)
{
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 ? urls.constFirst().toLocalFile() : QString();
}

/// The includes that lead elsewhere, or nowhere, since the document's file has its present path.
QVector<NetMessage> movedIncludes(
    const NetDocument& document, const QString& oldPath, const NetSearchPath& searchPath)
{
    const NetXmlFile& file = document.file();
    QVector<NetMessage> messages;
    for (const pugi::xml_node element : file.root().children("xi:include")) {
        const QString name = NetXmlFile::attribute(element, "href");
        const QString before = searchPath.resolve(name, oldPath);
        const QString now = searchPath.resolve(name, file.path());
        if (before == now)
            continue;
        NetMessage message{NetMessage::Severity::Warning, file.path(), file.line(element), {}};
        message.text = now.isEmpty()
            ? EditorWindow::tr("The included file \"%1\" is not found from here.").arg(name)
            : EditorWindow::tr("From here, \"%1\" includes another file.").arg(name);
        messages.append(message);
    }
    return messages;
}

} // namespace

EditorWindow::EditorWindow(const NetSearchPath& searchPath, QWidget* parent)
    : QMainWindow(parent)
    , m_SearchPath(searchPath)
{
    setAcceptDrops(true);
    setWindowTitle(QCoreApplication::applicationName());
    buildBars();
    m_Navigator = new EditorNavigator(m_View, this);
    m_History = new EditorHistory(m_View, this);
    m_Saving = new EditorSaving(m_Navigator, m_MessageBar, this);
    buildMenus();
    connectParts();
    for (QAction* action : {m_Save, m_SaveAs, m_Reload, m_Leave})
        action->setEnabled(false);
    m_View->setFocus();
}

void EditorWindow::connectParts()
{
    connect(m_Navigator, &EditorNavigator::scopeChanged, this, &EditorWindow::followScope);
    connect(m_Breadcrumbs, &EditorBreadcrumbBar::scopeClicked, m_Navigator,
        &EditorNavigator::showScope);
    connect(m_View, &EditorView::scaleChanged, this,
        [this](double scale) { m_Scale->setText(tr("%1 %").arg(qRound(scale * 100))); });
    connect(m_View, &EditorView::heldKeysChanged, this, &EditorWindow::followHeldKeys);
    connect(m_View, &EditorView::activityChanged, this, &EditorWindow::showHints);
    connect(m_View, &EditorView::shakeToExtractTriggered, this, [this] {
        if (scene())
            scene()->extractSelection();
    });
    connect(m_History, &EditorHistory::status, this, &EditorWindow::showStatus);
    connect(m_Saving, &EditorSaving::saved, this, &EditorWindow::followSave);
    const QUndoStack* stack = OrvUndoManager::instance().undoStack();
    connect(stack, &QUndoStack::cleanChanged, this, &EditorWindow::showTitle);
    connect(stack, &QUndoStack::indexChanged, this, &EditorWindow::showFacts);
}

EditorWindow::~EditorWindow()
{
    // Losing the focus for the last time, the view lets go of the keys: of no interest here any more.
    m_View->disconnect(this);
    // The history is everybody's, and knows this window's documents.
    m_History->clear();
    // The scenes are the navigator's, the view is the central widget's: neither dies with the
    // other.
    m_View->setScene(nullptr);
}

void EditorWindow::useSettings(EditorSettings settings)
{
    m_Settings = std::move(settings);
    m_Settings.restoreGrid();
    m_Shake->setChecked(m_Settings.isShakeOn());
    m_Minimap->setChecked(m_Settings.isMinimapOn());
    const QString scheme = m_Settings.navigationScheme();
    const QList<QAction*> schemes = m_Schemes->actions();
    for (QAction* action : schemes) {
        if (action->data().toString() == scheme)
            action->setChecked(true);
    }
}

bool EditorWindow::restorePlace()
{
    return m_Settings.restoreWindow(this);
}

void EditorWindow::setQuestions(std::unique_ptr<EditorQuestions> questions)
{
    m_Saving->setQuestions(std::move(questions));
}

void EditorWindow::buildBars()
{
    auto* center = new QWidget(this);
    auto* column = new QVBoxLayout(center);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_Breadcrumbs = new EditorBreadcrumbBar(center);
    m_MessageBar = new EditorMessageBar(center);
    m_View = new EditorView(center);
    m_View->init();
    column->addWidget(m_Breadcrumbs);
    column->addWidget(m_MessageBar);
    column->addWidget(m_View, 1);
    setCentralWidget(center);

    m_Facts = new QLabel(this);
    m_Scale = new QLabel(this);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addPermanentWidget(m_Facts);
    statusBar()->addPermanentWidget(m_Scale);
}

bool EditorWindow::read(const QString& path, const QString& scopePath)
{
    const WaitCursor waiting;
    const NetReadResult result = NetReader(m_SearchPath).read(path);
    m_Messages = result.messages;
    if (!result.document) {
        m_MessageBar->setMessages(tr("Not opened."), m_Messages);
        return false;
    }
    const int wanted = scopePath.isNull() ? -1 : result.document->indexOfScope(scopePath);
    m_History->clear(); // before the document of which it knows goes
    m_Navigator->setDocument(std::make_shared<NetEditor>(result.document),
        wanted < 0 ? result.document->firstScope() : wanted);
    m_MessageBar->setMessages(QString(), m_Messages);
    return true;
}

bool EditorWindow::openFile(const QString& path)
{
    if (!m_Saving->mayLose() || !read(path, QString()))
        return false;
    m_Settings.addRecentFile(filePath());
    return true;
}

void EditorWindow::openRecent(const QString& path)
{
    if (!openFile(path) && !QFileInfo::exists(path))
        m_Settings.removeRecentFile(path);
}

bool EditorWindow::reload()
{
    const QString path = filePath();
    if (path.isEmpty() || !m_Saving->mayLose())
        return false;
    const QString scopePath = scene()->scope().path;
    const EditorView::Look look = m_View->look();
    // An empty path that is not null: the document level.
    if (!read(path, scopePath.isNull() ? QString(QLatin1String("")) : scopePath))
        return false;
    if (scene()->scope().path == scopePath)
        m_View->setLook(look);
    return true;
}

bool EditorWindow::save()
{
    return m_Saving->save();
}

bool EditorWindow::saveAs()
{
    const QString oldPath = filePath();
    if (!m_Saving->saveAs())
        return false;
    const QVector<NetMessage> moved = movedIncludes(*document(), oldPath, m_SearchPath);
    if (!moved.isEmpty())
        m_MessageBar->setMessages(tr("Includes are found relative to the file."), moved);
    return true;
}

/// The document may have another file by now.
void EditorWindow::followSave(const QString& path)
{
    m_Settings.addRecentFile(path);
    followScope();
    showStatus(tr("Saved: %1").arg(QDir::toNativeSeparators(path)));
}

QString EditorWindow::filePath() const
{
    return document() ? document()->filePath() : QString();
}

const NetDocument* EditorWindow::document() const
{
    return m_Navigator->document();
}

bool EditorWindow::showGraph(const QString& pathOrName)
{
    if (!document())
        return false;
    const int scope = document()->indexOfScope(pathOrName);
    if (scope >= 0 && scope != m_Navigator->scopeIndex())
        m_Navigator->showScope(scope);
    return scope >= 0;
}

QStringList EditorWindow::graphPaths() const
{
    QStringList paths;
    if (!document())
        return paths;
    for (const NetScope& scope : document()->scopes()) {
        if (scope.parent >= 0)
            paths.append(scope.path);
    }
    return paths;
}

EditorScene* EditorWindow::scene() const
{
    return m_Navigator->scene();
}

void EditorWindow::chooseFile()
{
    const QString path = m_Saving->questions()->pathToOpen(QFileInfo(filePath()).absolutePath());
    if (!path.isEmpty())
        openFile(path);
}

void EditorWindow::frameAll()
{
    if (scene())
        m_View->frame(scene()->contentBounds());
}

void EditorWindow::frameSelection()
{
    if (!scene())
        return;
    const QRectF selected = scene()->selectionBounds();
    m_View->frame(selected.isNull() ? scene()->contentBounds() : selected);
}

void EditorWindow::zoomToActualSize()
{
    m_View->lookAt(m_View->look().center, 1.0);
}

void EditorWindow::chooseGridSize()
{
    auto* grid = OrvShaderNetworkManager::instance();
    const int size = m_Saving->questions()->gridSize(grid->gridWidth());
    if (size <= 0)
        return;
    grid->setGridWidth(size);
    grid->setGridHeight(size);
}

void EditorWindow::showPreferences()
{
    EditorPreferencesDialog::showFor(this);
}

void EditorWindow::addNote()
{
    if (!scene())
        return;
    const QWidget* viewport = m_View->viewport();
    const QPoint mouse = viewport->mapFromGlobal(QCursor::pos());
    scene()->addNote(
        viewport->rect().contains(mouse) ? m_View->mapToScene(mouse) : m_View->look().center);
}

/// -1, after saying so, when it is not clear which one is meant.
int EditorWindow::chosenBackdrop()
{
    if (!scene())
        return -1;
    const EditorBackdrops& backdrops = scene()->backdrops();
    const QVector<int> selected = backdrops.selected();
    QRectF bounds;
    for (const int index : selected)
        bounds |= backdrops.item(index)->sceneBoundingRect();
    for (const int index : selected) {
        if (backdrops.item(index)->sceneBoundingRect() == bounds)
            return index;
    }
    showStatus(tr("Select one backdrop or note."));
    return -1;
}

void EditorWindow::renameBackdrop()
{
    const int backdrop = chosenBackdrop();
    if (backdrop >= 0)
        scene()->renameBackdrop(backdrop);
}

void EditorWindow::recolorBackdrop()
{
    const QPointer<EditorScene> scene = this->scene();
    const int backdrop = chosenBackdrop();
    if (backdrop < 0)
        return;
    const QColor color = m_Saving->questions()->color(tr("Colour of the Backdrop"),
        EditorBackdrops::colorOf(scene->scope().backdrops.at(backdrop)));
    if (scene && color.isValid())
        scene->setBackdropColor(backdrop, color);
}

void EditorWindow::askForText(int backdrop, const QString& text, bool isDoc)
{
    const QPointer<EditorScene> scene = qobject_cast<EditorScene*>(sender());
    if (!scene)
        return;
    const std::optional<QString> answer = m_Saving->questions()->text(
        isDoc ? tr("Text") : tr("Title"), isDoc ? tr("Text:") : tr("Title:"), text, isDoc);
    if (scene && answer)
        scene->setBackdropText(backdrop, *answer, isDoc);
}

void EditorWindow::setPortListMode(EditorScene::Mode mode)
{
    if (!scene())
        return;
    const EditorScene::Nodes selected = scene()->selectedNodes();
    scene()->setPortListMode(selected.isEmpty() ? scene()->nodes() : selected, mode);
}

void EditorWindow::arrange()
{
    if (!scene())
        return;
    scene()->arrange();
    frameAll();
}

void EditorWindow::enterSelected()
{
    if (!scene())
        return;
    const EditorScene::Nodes selected = scene()->selectedNodes();
    const int index = selected.size() == 1 ? scene()->indexOf(selected.constFirst()) : -1;
    if (!m_Navigator->enter(index))
        showStatus(tr("Select one node with a graph inside to enter it."));
}

void EditorWindow::leave()
{
    m_Navigator->leave();
}

void EditorWindow::followScope()
{
    QVector<EditorBreadcrumbBar::Crumb> crumbs;
    const QVector<int> trail = document()->scopeTrail(m_Navigator->scopeIndex());
    for (const int scope : trail)
        crumbs.append({scopeTitle(scope), scope});
    m_Breadcrumbs->setTrail(crumbs);
    connect(scene(), &EditorScene::status, this, &EditorWindow::showStatus, Qt::UniqueConnection);
    // The dialog keeps the program waiting: not while the scene handles a double click.
    connect(scene(), &EditorScene::textWanted, this, &EditorWindow::askForText,
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
    for (QAction* action : {m_Save, m_SaveAs, m_Reload})
        action->setEnabled(true);
    m_Leave->setEnabled(m_Navigator->canLeave());
    followHeldKeys();
    showTitle();
    showFacts();
}

QString EditorWindow::scopeTitle(int scope) const
{
    return scope == 0 ? QFileInfo(filePath()).fileName() : document()->scopes().at(scope).name;
}

void EditorWindow::showTitle()
{
    setWindowModified(EditorSaving::isModified());
    if (!document())
        return;
    QStringList titles;
    const QVector<int> trail = document()->scopeTrail(m_Navigator->scopeIndex());
    for (const int scope : trail)
        titles.append(scopeTitle(scope));
    // In a name the place holder of the modified mark is just three characters.
    const QString title = titles.join(QStringLiteral(" \u203A "))
                              .replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
    setWindowTitle(
        QStringLiteral("%1[*] \u2014 %2").arg(title, QCoreApplication::applicationName()));
}

/// What holds while keys are held: markers in the scene, and a hint that says so.
void EditorWindow::followHeldKeys()
{
    const EditorView::HeldKeys held = m_View->heldKeys();
    EditorScene* dotScene = held.testFlag(EditorView::HeldDot) ? scene() : nullptr;
    if (m_DotScene && m_DotScene != dotScene)
        m_DotScene->setDotMode(false);
    if (dotScene && m_DotScene != dotScene)
        dotScene->setDotMode(true);
    m_DotScene = dotScene;
    showHints();
}

QStringList EditorWindow::hints() const
{
    using Activity = EditorView::Activity;
    const EditorView::HeldKeys held = m_View->heldKeys();
    QStringList hints;
    if (held.testFlag(EditorView::HeldCut))
        hints.append(tr("Drag across edges to cut them."));
    if (held.testFlag(EditorView::HeldDot))
        hints.append(tr("Click a marker to put a dot into its edge."));
    if (held.testFlag(EditorView::HeldPlace))
        hints.append(tr("Nodes are not put into the edges below them."));
    const Activity activity = m_View->activity();
    if (activity == Activity::DraggingNode && !held)
        hints.append(tr("S: do not put it into an edge."));
    if (activity == Activity::DraggingNode || activity == Activity::DraggingBackdrop)
        hints.append(tr("Escape: put it back."));
    if (activity == Activity::CarryingEdge)
        hints.append(tr("Right click or Escape: cancel."));
    return hints;
}

/// A message that came meanwhile stays when the hints go.
void EditorWindow::showHints()
{
    const QString hint = hints().join(QStringLiteral("   "));
    if (!hint.isEmpty())
        statusBar()->showMessage(hint);
    else if (statusBar()->currentMessage() == m_Hint)
        statusBar()->clearMessage();
    m_Hint = hint;
}

void EditorWindow::showStatus(const QString& text)
{
    statusBar()->showMessage(text, kStatusTime);
}

void EditorWindow::showFacts()
{
    if (!scene())
        return;
    m_Facts->setText(tr("Nodes: %1    Connections: %2")
                         .arg(scene()->nodes().size())
                         .arg(scene()->connectionCount()));
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    if (!m_Saving->mayLose()) {
        event->ignore();
        return;
    }
    m_Settings.keepWindow(*this);
    m_Settings.keepGrid();
    event->accept();
}

void EditorWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!droppedFile(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void EditorWindow::dropEvent(QDropEvent* event)
{
    const QString path = droppedFile(event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // Later: a question would keep the program waiting from which the file comes.
    QTimer::singleShot(0, this, [this, path] { openFile(path); });
}
