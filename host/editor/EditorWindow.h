#pragma once

#include "editor/EditorScene.h"
#include "editor/EditorSettings.h"
#include "network/NetMessage.h"
#include "network/NetSearchPath.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class EditorBreadcrumbBar;
class EditorHistory;
class EditorMessageBar;
class EditorNavigator;
class EditorQuestions;
class EditorSaving;
class EditorView;
class QAction;
class QActionGroup;
class QLabel;
class QMenu;

/// The main window: one view on one scope of one document, with a breadcrumb bar, a message bar, a
/// status bar and menus. A document that cannot be opened leaves the present one as it is, and so does a
/// user who wants to keep unsaved changes.
///
/// Called by  main, the user.
/// Uses       NetReader, EditorNavigator, EditorView, EditorHistory, EditorSaving, EditorSettings.
/// Tells      the user.
class EditorWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit EditorWindow(const NetSearchPath& searchPath = NetSearchPath::withEnvironment(),
        QWidget* parent = nullptr);
    ~EditorWindow() override;

    /// Takes preferences and the list of recent files from there, and keeps them there. Without, nothing is
    /// kept.
    void useSettings(EditorSettings settings);
    /// Puts the window where it was in the last run; false when that is not known.
    bool restorePlace();
    /// Who answers the window's questions; without, dialogs ask the user.
    void setQuestions(std::unique_ptr<EditorQuestions> questions);

    // The document

    /// Opens a document at the scope worth showing first, with an empty history. False when it cannot be
    /// opened: the present one stays, and messages() and the message bar say why. False too when the user
    /// rather keeps the present one's unsaved changes.
    bool openFile(const QString& path);
    /// Reads the present file again and shows the same scope; what was wrong with it shows in the
    /// message bar. False when it cannot be read, there is none, or unsaved changes are kept.
    bool reload();
    bool save();
    /// Includes that the file finds no longer, or elsewhere, at its new place show in the message bar.
    bool saveAs();
    /// What the last openFile() or reload() had to say.
    const QVector<NetMessage>& messages() const { return m_Messages; }
    /// Absolute path; empty before the first document.
    QString filePath() const;

    // The scope

    /// Shows a graph by its path or name, an empty name the document level; false when there is
    /// none.
    bool showGraph(const QString& pathOrName);
    /// The paths of all graphs of the document.
    QStringList graphPaths() const;
    EditorNavigator* navigator() const { return m_Navigator; }
    EditorView* view() const { return m_View; }
    /// The scene on show; null before the first document.
    EditorScene* scene() const;

public Q_SLOTS:
    void chooseFile();
    void frameAll();
    /// Frames everything when nothing is selected.
    void frameSelection();
    void zoomToActualSize();
    /// Of the selected nodes; of all when nothing is selected.
    void setPortListMode(EditorScene::Mode mode);
    void arrange();
    /// Enters the graph inside the selected node.
    void enterSelected();
    void leave();
    void showKeys();
    void showPreferences();
    /// At the mouse; in the middle of the view when the mouse is elsewhere.
    void addNote();
    /// Of the selected backdrop; of the outer one when it was selected with those inside.
    void renameBackdrop();
    void recolorBackdrop();
    /// Asks for the size of the grid's cells.
    void chooseGridSize();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildBars();
    void connectParts();
    void buildMenus();
    void buildFileMenu();
    void buildRecentMenu(QMenu* menu);
    void buildEditMenu();
    void buildSelectMenu();
    void buildViewMenu();
    void buildGridActions(QMenu* menu);
    void buildGridSizeMenu(QMenu* menu);
    void buildNavigationMenu(QMenu* menu);
    QAction* addSwitch(QMenu* menu, const QString& text, const QKeySequence& key, bool isOn);
    void buildNodeMenu();
    void buildBackdropMenu();
    void buildGoMenu();
    void buildHelpMenu();
    template <typename Receiver, typename Slot>
    QAction* addAction(QMenu* menu, const QString& text, const QList<QKeySequence>& keys,
        Receiver* receiver, Slot slot);
    QAction* addSceneAction(QMenu* menu, const QString& text, const QList<QKeySequence>& keys,
        void (EditorScene::*slot)());
    void restWhileMouseHeld(QAction* action);

    const NetDocument* document() const;
    void followScope();
    void followSave(const QString& path);
    void followHeldKeys();
    QStringList hints() const;
    void showHints();
    QString scopeTitle(int scope) const;
    void showTitle();
    void showFacts();
    int chosenBackdrop();
    void askForText(int backdrop, const QString& text, bool isDoc);
    void showStatus(const QString& text);
    void openRecent(const QString& path);
    bool read(const QString& path, const QString& scopePath);

    NetSearchPath m_SearchPath;
    QVector<NetMessage> m_Messages;
    EditorView* m_View = nullptr;
    EditorNavigator* m_Navigator = nullptr;
    EditorBreadcrumbBar* m_Breadcrumbs = nullptr;
    EditorMessageBar* m_MessageBar = nullptr;
    EditorHistory* m_History = nullptr;
    EditorSaving* m_Saving = nullptr;
    EditorSettings m_Settings;
    QPointer<EditorScene> m_DotScene; ///< shows the markers for dots, as long as the key is held
    QString m_Hint; ///< what the held keys do, or would do now
    QLabel* m_Facts = nullptr;
    QLabel* m_Scale = nullptr;
    QAction* m_Save = nullptr;
    QAction* m_SaveAs = nullptr;
    QAction* m_Reload = nullptr;
    QAction* m_Leave = nullptr;
    QAction* m_Shake = nullptr;
    QAction* m_Minimap = nullptr;
    QActionGroup* m_Schemes = nullptr; ///< each action's data is the scheme's name
};
