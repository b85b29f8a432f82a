#pragma once

#include "editor/EditorScene.h"
#include "network/NetMessage.h"
#include "network/NetSearchPath.h"

#include <QMainWindow>

class EditorBreadcrumbBar;
class EditorMessageBar;
class EditorNavigator;
class EditorView;
class QAction;
class QLabel;
class QMenu;

/// The main window: one view on one scope of one document, with a breadcrumb bar, a message bar, a
/// status bar and menus. A document that cannot be opened leaves the present one as it is.
///
/// Called by  main, the user.
/// Uses       NetReader, EditorNavigator, EditorView.
/// Tells      the user.
class EditorWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit EditorWindow(const NetSearchPath& searchPath = NetSearchPath::withEnvironment(),
        QWidget* parent = nullptr);
    ~EditorWindow() override;

    // The document

    /// Opens a document at the scope worth showing first. False when it cannot be opened: the
    /// present one stays, and messages() and the message bar say why.
    bool openFile(const QString& path);
    /// Reads the present file again and shows the same scope; what was wrong with it shows in the
    /// message bar. False when it cannot be read, or there is none.
    bool reload();
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

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildBars();
    void buildMenus();
    void buildFileMenu();
    void buildViewMenu();
    void buildNodeMenu();
    void buildGoMenu();
    void buildHelpMenu();
    template <typename Receiver, typename Slot>
    QAction* addAction(QMenu* menu, const QString& text, const QList<QKeySequence>& keys,
        Receiver* receiver, Slot slot);

    void followScope();
    void showFacts();
    bool read(const QString& path, const QString& scopePath);

    NetSearchPath m_SearchPath;
    QVector<NetMessage> m_Messages;
    EditorView* m_View = nullptr;
    EditorNavigator* m_Navigator = nullptr;
    EditorBreadcrumbBar* m_Breadcrumbs = nullptr;
    EditorMessageBar* m_MessageBar = nullptr;
    QLabel* m_Facts = nullptr;
    QLabel* m_Scale = nullptr;
    QAction* m_Reload = nullptr;
    QAction* m_Leave = nullptr;
};
