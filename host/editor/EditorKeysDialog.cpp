#include "editor/EditorKeysDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>

namespace {

QString plain(QString menuText)
{
    return menuText.remove(QLatin1Char('&')).remove(QStringLiteral("…"));
}

QString keysOf(const QAction* action)
{
    QStringList keys;
    const QList<QKeySequence> shortcuts = action->shortcuts();
    for (const QKeySequence& shortcut : shortcuts)
        keys.append(shortcut.toString(QKeySequence::NativeText));
    keys.removeDuplicates();
    return keys.join(QStringLiteral(", "));
}

QString row(const QString& keys, const QString& what)
{
    return QStringLiteral("<tr><td style='padding-right:24px'><b>%1</b></td><td>%2</td></tr>")
        .arg(keys.toHtmlEscaped(), what.toHtmlEscaped());
}

QString heading(const QString& text)
{
    return QStringLiteral("<tr><td colspan='2' style='padding-top:8px;color:#9aa0aa'>%1</td></tr>")
        .arg(text.toHtmlEscaped());
}

QString menuRows(const QMenu* menu)
{
    QString rows;
    const QList<QAction*> actions = menu->actions();
    for (const QAction* action : actions) {
        const QString keys = keysOf(action);
        const QString name = action->data().toString();
        if (!keys.isEmpty())
            rows += row(keys, name.isEmpty() ? plain(action->text()) : name);
    }
    return rows.isEmpty() ? rows : heading(plain(menu->title())) + rows;
}

} // namespace

QString EditorKeysDialog::heldRows()
{
    return heading(tr("While held")) + row(tr("C"), tr("Drag across edges to cut them"))
        + row(tr("D"), tr("Click the marker of an edge to put a dot into it"))
        + row(tr("S"), tr("A dragged node is not put into the edge below it"))
        + row(tr("Escape"), tr("Give up what the mouse is doing"));
}

QString EditorKeysDialog::navigationRows(bool isHarbor)
{
    const QString pan = isHarbor ? tr("Middle button, Alt + Left button, two fingers")
                                 : tr("Middle button, Alt + Left or Right button, two fingers");
    const QString zoom
        = isHarbor ? tr("Alt + Right button, Alt + Ctrl + Left button") : tr("Alt + Middle button");
    const QString title = isHarbor ? tr("Navigation: Harbor") : tr("Navigation: Quill");
    return heading(title) + row(tr("Wheel, pinch"), tr("Zoom about the mouse"))
        + row(pan, tr("Pan")) + row(zoom, tr("Zoom by dragging"))
        + row(tr("Left button in the minimap"), tr("Look there"));
}

QString EditorKeysDialog::mouseRows()
{
    return heading(tr("Mouse"))
        + row(tr("Left button on a port, on an edge's end"), tr("Connect, reconnect"))
        + row(tr("Left button on empty space"), tr("Select by a band"))
        + row(tr("Shift, Ctrl, both"), tr("Add to, take from, toggle the selection"))
        + row(tr("Drop a node on an edge"), tr("Put it in"))
        + row(tr("Shake a dragged node"), tr("Take it out of its chain"))
        + row(tr("Right button while an edge is carried"), tr("Give it up"))
        + row(tr("Title bar of a backdrop"), tr("Select and move it with all inside"))
        + row(tr("Corners of a backdrop"), tr("Resize it"))
        + row(tr("Button at the right of a header"), tr("Next port list mode"))
        + row(tr("Double click"), tr("Enter a graph"));
}

EditorKeysDialog::EditorKeysDialog(
    const QMenuBar* menus, const QString& navigationScheme, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keys and Mouse"));
    QString menuHtml;
    const QList<QAction*> actions = menus->actions();
    for (const QAction* action : actions) {
        if (action->menu())
            menuHtml += menuRows(action->menu());
    }
    auto* tables = new QHBoxLayout;
    tables->setSpacing(40);
    const bool isHarbor = navigationScheme == QLatin1String("Harbor");
    for (const QString& rows : {menuHtml, heldRows() + navigationRows(isHarbor) + mouseRows()}) {
        auto* label
            = new QLabel(QStringLiteral("<table cellspacing='2'>%1</table>").arg(rows), this);
        tables->addWidget(label, 0, Qt::AlignTop);
    }
    auto* column = new QVBoxLayout(this);
    column->addLayout(tables);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
}
