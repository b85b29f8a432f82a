#include "editor/EditorWindow.h"

#include "editor/EditorBreadcrumbBar.h"
#include "editor/EditorMessageBar.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorView.h"
#include "network/NetEditor.h"
#include "network/NetReader.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QStatusBar>
#include <QVBoxLayout>

namespace {

constexpr int kHintTime = 4000; // milliseconds

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

} // namespace

EditorWindow::EditorWindow(const NetSearchPath& searchPath, QWidget* parent)
    : QMainWindow(parent)
    , m_SearchPath(searchPath)
{
    setAcceptDrops(true);
    setWindowTitle(QCoreApplication::applicationName());
    buildBars();
    m_Navigator = new EditorNavigator(m_View, this);
    connect(m_Navigator, &EditorNavigator::scopeChanged, this, &EditorWindow::followScope);
    connect(m_Breadcrumbs, &EditorBreadcrumbBar::scopeClicked, m_Navigator,
        &EditorNavigator::showScope);
    connect(m_View, &EditorView::scaleChanged, this,
        [this](double scale) { m_Scale->setText(tr("%1 %").arg(qRound(scale * 100))); });
    buildMenus();
    m_Reload->setEnabled(false);
    m_Leave->setEnabled(false);
    m_View->setFocus();
}

EditorWindow::~EditorWindow()
{
    // The scenes are the navigator's, the view is the central widget's: neither dies with the
    // other.
    m_View->setScene(nullptr);
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
    m_Navigator->setDocument(std::make_shared<NetEditor>(result.document),
        wanted < 0 ? result.document->firstScope() : wanted);
    m_MessageBar->setMessages(QString(), m_Messages);
    return true;
}

bool EditorWindow::openFile(const QString& path)
{
    return read(path, QString());
}

bool EditorWindow::reload()
{
    const QString path = filePath();
    if (path.isEmpty())
        return false;
    const QString scopePath = scene()->scope().path;
    const EditorView::Look look = m_View->look();
    // An empty path that is not null: the document level.
    if (!read(path, scopePath.isNull() ? QStringLiteral("") : scopePath))
        return false;
    if (scene()->scope().path == scopePath)
        m_View->setLook(look);
    return true;
}

QString EditorWindow::filePath() const
{
    return m_Navigator->document() ? m_Navigator->document()->filePath() : QString();
}

bool EditorWindow::showGraph(const QString& pathOrName)
{
    if (!m_Navigator->document())
        return false;
    const int scope = m_Navigator->document()->indexOfScope(pathOrName);
    if (scope >= 0 && scope != m_Navigator->scopeIndex())
        m_Navigator->showScope(scope);
    return scope >= 0;
}

QStringList EditorWindow::graphPaths() const
{
    QStringList paths;
    if (!m_Navigator->document())
        return paths;
    for (const NetScope& scope : m_Navigator->document()->scopes()) {
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
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Document"),
        QFileInfo(filePath()).absolutePath(), tr("Shader networks (*.mtlx);;All files (*)"));
    if (!path.isEmpty())
        openFile(path);
}

void EditorWindow::frameAll()
{
    if (scene())
        m_View->frame(EditorScene::boundsOf(scene()->nodes()));
}

void EditorWindow::frameSelection()
{
    if (!scene())
        return;
    const EditorScene::Nodes selected = scene()->selectedNodes();
    m_View->frame(EditorScene::boundsOf(selected.isEmpty() ? scene()->nodes() : selected));
}

void EditorWindow::zoomToActualSize()
{
    m_View->lookAt(m_View->look().center, 1.0);
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
        statusBar()->showMessage(tr("Select one node with a graph inside to enter it."), kHintTime);
}

void EditorWindow::leave()
{
    m_Navigator->leave();
}

void EditorWindow::followScope()
{
    const NetDocument& document = *m_Navigator->document();
    const QString fileName = QFileInfo(document.filePath()).fileName();
    QVector<EditorBreadcrumbBar::Crumb> crumbs;
    QStringList titles;
    const QVector<int> trail = document.scopeTrail(m_Navigator->scopeIndex());
    for (const int scope : trail) {
        const QString text = scope == 0 ? fileName : document.scopes().at(scope).name;
        crumbs.append({text, scope});
        titles.append(text);
    }
    m_Breadcrumbs->setTrail(crumbs);
    setWindowTitle(
        QStringLiteral("%1 \u2014 %2")
            .arg(titles.join(QStringLiteral(" \u203A ")), QCoreApplication::applicationName()));
    m_Reload->setEnabled(true);
    m_Leave->setEnabled(m_Navigator->canLeave());
    showFacts();
}

void EditorWindow::showFacts()
{
    m_Facts->setText(tr("Nodes: %1    Connections: %2")
                         .arg(scene()->nodes().size())
                         .arg(scene()->connectionCount()));
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
    openFile(path);
}
