#include "editor/EditorHistory.h"
#include "editor/EditorKeysDialog.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorView.h"
#include "editor/EditorWindow.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

#include <array>

// The menus of the main window: every action with its keys.

namespace {

QKeySequence ctrl(Qt::Key key)
{
    return QKeySequence(static_cast<int>(Qt::CTRL) | static_cast<int>(key));
}

QKeySequence ctrlShift(Qt::Key key)
{
    return QKeySequence(
        static_cast<int>(Qt::CTRL) | static_cast<int>(Qt::SHIFT) | static_cast<int>(key));
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

/// An action of the scene on show, whichever that is by then; not while the mouse is doing something.
QAction* EditorWindow::addSceneAction(
    QMenu* menu, const QString& text, const QList<QKeySequence>& keys, void (EditorScene::*slot)())
{
    QAction* action = addAction(menu, text, keys, this, [this, slot] {
        if (scene())
            (scene()->*slot)();
    });
    restWhileMouseHeld(action);
    return action;
}

void EditorWindow::restWhileMouseHeld(QAction* action)
{
    connect(m_View, &EditorView::mouseHeldChanged, action, &QAction::setDisabled);
}

void EditorWindow::buildMenus()
{
    buildFileMenu();
    buildEditMenu();
    buildSelectMenu();
    buildViewMenu();
    buildNodeMenu();
    buildBackdropMenu();
    buildGoMenu();
    buildHelpMenu();
}

void EditorWindow::buildFileMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    addAction(menu, tr("&Open…"), {ctrl(Qt::Key_O)}, this, &EditorWindow::chooseFile);
    QMenu* recent = menu->addMenu(tr("Open Re&cent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { buildRecentMenu(recent); });
    m_Reload
        = addAction(menu, tr("&Reload"), {QKeySequence(Qt::Key_F5)}, this, &EditorWindow::reload);
    menu->addSeparator();
    m_Save = addAction(menu, tr("&Save"), {ctrl(Qt::Key_S)}, this, &EditorWindow::save);
    m_SaveAs
        = addAction(menu, tr("Save &As…"), {ctrlShift(Qt::Key_S)}, this, &EditorWindow::saveAs);
    menu->addSeparator();
    addAction(menu, tr("&Quit"), {ctrl(Qt::Key_Q)}, this, &EditorWindow::close);
}

void EditorWindow::buildRecentMenu(QMenu* menu)
{
    menu->clear();
    const QStringList files = m_Settings.recentFiles();
    for (const QString& file : files) {
        QString text = tr("%1 in %2")
                           .arg(QFileInfo(file).fileName(),
                               QDir::toNativeSeparators(QFileInfo(file).absolutePath()));
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        addAction(menu, text, {}, this, [this, file] { openRecent(file); });
    }
    menu->addSeparator();
    addAction(menu, tr("&Clear List"), {}, this, [this] {
        m_Settings.clearRecentFiles();
    })->setEnabled(!files.isEmpty());
}

void EditorWindow::buildEditMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Edit"));
    m_History->undoAction()->setShortcuts({ctrl(Qt::Key_Z)});
    m_History->redoAction()->setShortcuts({ctrlShift(Qt::Key_Z), ctrl(Qt::Key_Y)});
    menu->addAction(m_History->undoAction());
    menu->addAction(m_History->redoAction());
    menu->addSeparator();
    addSceneAction(menu, tr("&Delete"), {QKeySequence(Qt::Key_Delete), QKeySequence(Qt::Key_X)},
        &EditorScene::deleteSelection);
    addSceneAction(
        menu, tr("&Extract from Chain"), {QKeySequence(Qt::Key_E)}, &EditorScene::extractSelection);
    menu->addSeparator();
    QAction* pickUp = addAction(menu, tr("&Pick Up or Drop Edge"), {QKeySequence(Qt::Key_P)},
        m_View, [this] { m_View->pickUpEdge(); });
    pickUp->setAutoRepeat(false);
    menu->addSeparator();
    m_Shake = addSwitch(menu, tr("&Shake a Node to Extract It"), {}, true);
    connect(m_Shake, &QAction::toggled, this, [this](bool on) {
        m_View->setShakeDetectionEnabled(on);
        m_Settings.setShakeOn(on);
    });
    addAction(
        menu, tr("Pre&ferences…"), {ctrl(Qt::Key_Comma)}, this, &EditorWindow::showPreferences);
}

void EditorWindow::buildSelectMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Select"));
    addSceneAction(menu, tr("&All"), {ctrl(Qt::Key_A)}, &EditorScene::selectAll);
    addSceneAction(menu, tr("&Nothing"), {ctrlShift(Qt::Key_A)}, &EditorScene::deselectAll);
    menu->addSeparator();
    addSceneAction(menu, tr("&Upstream"), {ctrl(Qt::Key_Left)}, &EditorScene::selectUpstream);
    addSceneAction(menu, tr("&Downstream"), {ctrl(Qt::Key_Right)}, &EditorScene::selectDownstream);
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
    buildGridActions(menu);
    menu->addSeparator();
    m_Minimap = addSwitch(menu, tr("&Minimap"), QKeySequence(Qt::Key_M), true);
    connect(m_Minimap, &QAction::toggled, this, [this](bool on) {
        m_View->setMinimapVisible(on);
        m_Settings.setMinimapOn(on);
    });
    buildNavigationMenu(menu);
}

QAction* EditorWindow::addSwitch(
    QMenu* menu, const QString& text, const QKeySequence& key, bool isOn)
{
    QAction* action = menu->addAction(text);
    action->setShortcut(key);
    action->setCheckable(true);
    action->setChecked(isOn);
    return action;
}

void EditorWindow::buildGridActions(QMenu* menu)
{
    OrvShaderNetworkManager* grid = OrvShaderNetworkManager::instance();
    QAction* show = addSwitch(menu, tr("&Grid"), QKeySequence(Qt::Key_G), grid->showGrid());
    connect(show, &QAction::toggled, grid, &OrvShaderNetworkManager::setShowGrid);
    connect(grid, &OrvShaderNetworkManager::showGridChanged, show, &QAction::setChecked);
    const QKeySequence snapKey(static_cast<int>(Qt::SHIFT) | static_cast<int>(Qt::Key_G));
    QAction* snap = addSwitch(menu, tr("Sna&p to Grid"), snapKey, grid->snapToGrid());
    connect(snap, &QAction::toggled, grid, &OrvShaderNetworkManager::setSnapToGrid);
    connect(grid, &OrvShaderNetworkManager::snapToGridChanged, snap, &QAction::setChecked);
    buildGridSizeMenu(menu->addMenu(tr("Grid Si&ze")));
}

/// The checks follow the grid when the menu opens: the size has other writers.
void EditorWindow::buildGridSizeMenu(QMenu* menu)
{
    OrvShaderNetworkManager* grid = OrvShaderNetworkManager::instance();
    auto* sizes = new QActionGroup(menu);
    for (const int size : {10, 20, 40, 80}) {
        QAction* action = addAction(menu, QString::number(size), {}, grid, [grid, size] {
            grid->setGridWidth(size);
            grid->setGridHeight(size);
        });
        action->setData(size);
        action->setCheckable(true);
        sizes->addAction(action);
    }
    QAction* custom = addAction(menu, tr("&Custom…"), {}, this, &EditorWindow::chooseGridSize);
    custom->setCheckable(true);
    sizes->addAction(custom);
    connect(menu, &QMenu::aboutToShow, sizes, [grid, sizes, custom] {
        custom->setChecked(true);
        const QList<QAction*> actions = sizes->actions();
        for (QAction* action : actions) {
            const int size = action->data().toInt();
            if (size == grid->gridWidth() && size == grid->gridHeight())
                action->setChecked(true);
        }
        custom->setText(custom->isChecked()
                ? tr("&Custom… (%1 × %2)").arg(grid->gridWidth()).arg(grid->gridHeight())
                : tr("&Custom…"));
    });
}

void EditorWindow::buildNavigationMenu(QMenu* menu)
{
    QMenu* schemes = menu->addMenu(tr("&Navigation"));
    m_Schemes = new QActionGroup(schemes);
    for (const QString& scheme : {QStringLiteral("Quill"), QStringLiteral("Harbor")}) {
        QAction* action = addSwitch(schemes, scheme, {}, scheme == m_View->navigationScheme());
        action->setData(scheme);
        m_Schemes->addAction(action);
        connect(action, &QAction::toggled, this, [this, scheme](bool on) {
            if (!on)
                return;
            m_View->setNavigationScheme(scheme);
            m_Settings.setNavigationScheme(scheme);
        });
    }
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

void EditorWindow::buildBackdropMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Backdrop"));
    addSceneAction(menu, tr("&Wrap Selection in Backdrop"), {QKeySequence(Qt::Key_B)},
        &EditorScene::wrapSelection);
    restWhileMouseHeld(
        addAction(menu, tr("Add &Note"), {QKeySequence(Qt::Key_N)}, this, &EditorWindow::addNote));
    menu->addSeparator();
    restWhileMouseHeld(addAction(
        menu, tr("&Rename…"), {QKeySequence(Qt::Key_F2)}, this, &EditorWindow::renameBackdrop));
    restWhileMouseHeld(addAction(menu, tr("&Colour…"), {}, this, &EditorWindow::recolorBackdrop));
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
    EditorKeysDialog(menuBar(), m_View->navigationScheme(), this).exec();
}
