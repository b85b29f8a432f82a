#pragma once

#include <QDialog>

class QMenuBar;

/// The overview of keys and mouse: every menu action that has a key, what keys mean while they are held, and
/// what the mouse does in the graph.
///
/// Called by  EditorWindow.
/// Uses       the actions of a menu bar, so that the overview is never behind them.
/// Tells      nobody.
class EditorKeysDialog : public QDialog
{
    Q_OBJECT

public:
    /// The scheme, "Quill" or "Harbor", decides what the mouse does with Alt.
    EditorKeysDialog(
        const QMenuBar* menus, const QString& navigationScheme, QWidget* parent = nullptr);

private:
    static QString heldRows();
    static QString navigationRows(bool isHarbor);
    static QString mouseRows();
};
