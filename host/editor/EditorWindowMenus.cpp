#include "editor/EditorKeysDialog.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorView.h"
#include "editor/EditorWindow.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <array>

// The menus of the main window: every action with its keys.

namespace {

QKeySequence ctrl(Qt::Key key)
{
    return QKeySequence(static_cast<int>(Qt::CTRL) | static_cast<int>(key));
}

} // namespace

template <typename Receiver, typename Slot>
QAction* EditorWindow::addAction(QMenu* menu, const QString& text, const QList<QKeySequence>& keys,
    Receiver* receiver, Slot slot)
{
    QAction* action = menu->addAction(text);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, receiver, slot);
    return action;
}

void EditorWindow::buildMenus()
{
    buildFileMenu();
    buildViewMenu();
    buildNodeMenu();
    buildGoMenu();
    buildHelpMenu();
}

void EditorWindow::buildFileMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    addAction(menu, tr("&Open…"), {ctrl(Qt::Key_O)}, this, &EditorWindow::chooseFile);
    m_Reload
        = addAction(menu, tr("&Reload"), {QKeySequence(Qt::Key_F5)}, this, &EditorWindow::reload);
    menu->addSeparator();
    addAction(menu, tr("&Quit"), {ctrl(Qt::Key_Q)}, this, &EditorWindow::close);
}

void EditorWindow::buildViewMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&View"));
    addAction(menu, tr("Frame &All"), {QKeySequence(Qt::Key_A)}, this, &EditorWindow::frameAll);
    addAction(menu, tr("Frame &Selection"), {QKeySequence(Qt::Key_F)}, this,
        &EditorWindow::frameSelection);
    menu->addSeparator();
    addAction(menu, tr("Zoom &In"), {ctrl(Qt::Key_Equal), ctrl(Qt::Key_Plus)}, this,
        [this] { m_View->zoomIn(); });
    addAction(menu, tr("Zoom &Out"), {ctrl(Qt::Key_Minus)}, this, [this] { m_View->zoomOut(); });
    addAction(menu, tr("A&ctual Size"), {ctrl(Qt::Key_0)}, this, &EditorWindow::zoomToActualSize);
    menu->addSeparator();

    OrvShaderNetworkManager* grid = OrvShaderNetworkManager::instance();
    QAction* show = addAction(menu, tr("&Grid"), {QKeySequence(Qt::Key_G)}, grid,
        [grid](bool shown) { grid->setShowGrid(shown); });
    show->setCheckable(true);
    show->setChecked(grid->showGrid());
    connect(grid, &OrvShaderNetworkManager::showGridChanged, show, &QAction::setChecked);
}

void EditorWindow::buildNodeMenu()
{
    using Mode = EditorScene::Mode;
    struct Row
    {
        Mode mode;
        QString text;
    };
    const std::array<Row, 5> rows{{
        {Mode::PORT_LIST_EXPANDED, tr("Ports: &Expanded")},
        {Mode::PORT_LIST_T2B, tr("Ports: &Top to Bottom")},
        {Mode::PORT_LIST_GROUPED, tr("Ports: &Grouped")},
        {Mode::PORT_LIST_ONLY_CONNECTED, tr("Ports: Only &Connected")},
        {Mode::PORT_LIST_COLLAPSED, tr("Ports: C&ollapsed")},
    }};
    QMenu* menu = menuBar()->addMenu(tr("&Node"));
    int key = Qt::Key_1;
    for (const Row& row : rows) {
        addAction(menu, row.text, {QKeySequence(key)}, this,
            [this, mode = row.mode] { setPortListMode(mode); });
        ++key;
    }
    menu->addSeparator();
    addAction(menu, tr("&Arrange All"), {QKeySequence(Qt::Key_L)}, this, &EditorWindow::arrange);
}

void EditorWindow::buildGoMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Go"));
    addAction(menu, tr("&Enter Graph"), {QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)},
        this, &EditorWindow::enterSelected);
    m_Leave = addAction(menu, tr("&Leave Graph"),
        {QKeySequence(Qt::Key_U), QKeySequence(Qt::Key_Backspace)}, this, &EditorWindow::leave);
}

void EditorWindow::buildHelpMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Help"));
    addAction(
        menu, tr("&Keys and Mouse"), {QKeySequence(Qt::Key_F1)}, this, &EditorWindow::showKeys);
}

void EditorWindow::showKeys()
{
    EditorKeysDialog(menuBar(), this).exec();
}
