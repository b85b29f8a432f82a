#include "editor/EditorSettings.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QMainWindow>
#include <QSettings>

namespace {

constexpr int kMostRecentFiles = 10;
constexpr int kStateVersion = 1; // of the window's bars

const auto kRecentFiles = QStringLiteral("recentFiles");
const auto kShake = QStringLiteral("preferences/shakeToExtract");
const auto kMinimap = QStringLiteral("view/minimap");
const auto kNavigation = QStringLiteral("view/navigation");
const auto kGeometry = QStringLiteral("window/geometry");
const auto kState = QStringLiteral("window/state");
const auto kShowGrid = QStringLiteral("grid/show");
const auto kSnapToGrid = QStringLiteral("grid/snap");
const auto kGridWidth = QStringLiteral("grid/width");
const auto kGridHeight = QStringLiteral("grid/height");

} // namespace

EditorSettings::EditorSettings() = default;

EditorSettings::EditorSettings(std::unique_ptr<QSettings> file)
    : m_File(std::move(file))
{
}

EditorSettings::EditorSettings(EditorSettings&& other) noexcept = default;
EditorSettings& EditorSettings::operator=(EditorSettings&& other) noexcept = default;
EditorSettings::~EditorSettings() = default;

QStringList EditorSettings::recentFiles() const
{
    return m_File ? m_File->value(kRecentFiles).toStringList().mid(0, kMostRecentFiles)
                  : QStringList();
}

void EditorSettings::addRecentFile(const QString& path)
{
    if (!m_File)
        return;
    QStringList files = recentFiles();
    files.removeAll(path);
    files.prepend(path);
    m_File->setValue(kRecentFiles, QStringList(files.mid(0, kMostRecentFiles)));
}

void EditorSettings::removeRecentFile(const QString& path)
{
    if (!m_File)
        return;
    QStringList files = recentFiles();
    files.removeAll(path);
    m_File->setValue(kRecentFiles, files);
}

void EditorSettings::clearRecentFiles()
{
    if (m_File)
        m_File->remove(kRecentFiles);
}

bool EditorSettings::isShakeOn() const
{
    return !m_File || m_File->value(kShake, true).toBool();
}

void EditorSettings::setShakeOn(bool on)
{
    if (m_File)
        m_File->setValue(kShake, on);
}

bool EditorSettings::isMinimapOn() const
{
    return !m_File || m_File->value(kMinimap, true).toBool();
}

void EditorSettings::setMinimapOn(bool on)
{
    if (m_File)
        m_File->setValue(kMinimap, on);
}

QString EditorSettings::navigationScheme() const
{
    const auto harbor = QStringLiteral("Harbor");
    const bool isHarbor = m_File && m_File->value(kNavigation).toString() == harbor;
    return isHarbor ? harbor : QStringLiteral("Quill");
}

void EditorSettings::setNavigationScheme(const QString& scheme)
{
    if (m_File)
        m_File->setValue(kNavigation, scheme);
}

void EditorSettings::keepWindow(const QMainWindow& window)
{
    if (!m_File)
        return;
    m_File->setValue(kGeometry, window.saveGeometry());
    m_File->setValue(kState, window.saveState(kStateVersion));
}

bool EditorSettings::restoreWindow(QMainWindow* window) const
{
    if (!m_File || !window->restoreGeometry(m_File->value(kGeometry).toByteArray()))
        return false;
    window->restoreState(m_File->value(kState).toByteArray(), kStateVersion);
    return true;
}

void EditorSettings::keepGrid()
{
    if (!m_File)
        return;
    const auto* grid = OrvShaderNetworkManager::instance();
    m_File->setValue(kShowGrid, grid->showGrid());
    m_File->setValue(kSnapToGrid, grid->snapToGrid());
    m_File->setValue(kGridWidth, grid->gridWidth());
    m_File->setValue(kGridHeight, grid->gridHeight());
}

void EditorSettings::restoreGrid() const
{
    if (!m_File)
        return;
    auto* grid = OrvShaderNetworkManager::instance();
    const auto size = [this](const QString& key, int standard) {
        const int kept = m_File->value(key, standard).toInt();
        return kept > 0 && kept <= kLargestGrid ? kept : standard;
    };
    grid->setShowGrid(m_File->value(kShowGrid, grid->showGrid()).toBool());
    grid->setSnapToGrid(m_File->value(kSnapToGrid, grid->snapToGrid()).toBool());
    grid->setGridWidth(size(kGridWidth, grid->gridWidth()));
    grid->setGridHeight(size(kGridHeight, grid->gridHeight()));
}
