#pragma once

#include <QStringList>

#include <memory>

class QMainWindow;
class QSettings;

/// What is kept from one run to the next: the window's place, the files opened last, preferences. Without a
/// file behind it nothing is kept and everything has its default. Values that make no sense count as
/// missing.
///
/// Called by  EditorWindow; main, which chooses the file.
/// Uses       QSettings.
/// Tells      nobody.
class EditorSettings
{
public:
    static constexpr int kLargestGrid = 1000; ///< scene units

    EditorSettings();
    explicit EditorSettings(std::unique_ptr<QSettings> file);
    EditorSettings(EditorSettings&& other) noexcept;
    EditorSettings& operator=(EditorSettings&& other) noexcept;
    ~EditorSettings();

    /// Absolute paths, the last one opened first; ten at most.
    QStringList recentFiles() const;
    void addRecentFile(const QString& path);
    void removeRecentFile(const QString& path);
    void clearRecentFiles();

    /// Whether shaking a dragged node takes it out of its connections.
    bool isShakeOn() const;
    void setShakeOn(bool on);

    bool isMinimapOn() const;
    void setMinimapOn(bool on);

    /// "Quill" or "Harbor".
    QString navigationScheme() const;
    void setNavigationScheme(const QString& scheme);

    /// Where the window was, and how large.
    void keepWindow(const QMainWindow& window);
    /// False when there is nothing to restore.
    bool restoreWindow(QMainWindow* window) const;

    /// The grid that all views share.
    void keepGrid();
    void restoreGrid() const;

private:
    std::unique_ptr<QSettings> m_File; ///< null: nothing is kept
};
