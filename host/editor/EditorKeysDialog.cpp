#include "editor/EditorKeysDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

constexpr qreal kLargestPart = 0.9; // of the screen

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
    return QStringLiteral("<tr><td style='padding-right:14px'><b>%1</b></td><td>%2</td></tr>")
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

/// The groups of rows in two columns that are about as long; no group is divided.
QStringList inHalves(const QStringList& groups)
{
    const QLatin1String row("<tr>");
    const int all = groups.join(QString()).count(row);
    QStringList columns{QString(), QString()};
    for (const QString& group : groups) {
        const bool isFirst
            = columns.at(0).count(row) * 2 + group.count(row) <= all && columns.at(1).isEmpty();
        columns[isFirst ? 0 : 1] += group;
    }
    return columns;
}

QScrollArea* scrolled(QWidget* widget, QWidget* parent)
{
    auto* area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(widget);
    return area;
}

} // namespace

QString EditorKeysDialog::heldRows()
{
    return heading(tr("While held")) + row(tr("C"), tr("Drag across edges to cut them"))
        + row(tr("D"), tr("Click the marker of an edge for a dot"))
        + row(tr("S"), tr("Dragged nodes are put into no edge"))
        + row(tr("Escape"), tr("Give up what the mouse is doing"));
}

QString EditorKeysDialog::navigationRows(bool isHarbor)
{
    const QString pan = isHarbor ? tr("Alt + Left button") : tr("Alt + Left, Right button");
    const QString zoom
        = isHarbor ? tr("Alt + Right, Ctrl + Alt + Left") : tr("Alt + Middle button");
    const QString title = isHarbor ? tr("Navigation: Harbor") : tr("Navigation: Quill");
    return heading(title) + row(tr("Wheel, pinch"), tr("Zoom about the mouse"))
        + row(tr("Middle button, two fingers"), tr("Pan")) + row(pan, tr("Pan"))
        + row(zoom, tr("Zoom by dragging"))
        + row(tr("Left button in the minimap"), tr("Look there"));
}

QString EditorKeysDialog::mouseRows()
{
    return heading(tr("Mouse")) + row(tr("Drag from port or edge's end"), tr("Connect, reconnect"))
        + row(tr("Drag on empty space"), tr("Select by a band"))
        + row(tr("Shift, Ctrl, both"), tr("Add to, take from, toggle the selection"))
        + row(tr("Drop a node on an edge"), tr("Put it in"))
        + row(tr("Shake a dragged node"), tr("Take it out of its chain"))
        + row(tr("Right button, edge in hand"), tr("Give it up"))
        + row(tr("Title bar of a backdrop"), tr("Select and move it with all inside"))
        + row(tr("Corners of a backdrop"), tr("Resize it"))
        + row(tr("Button in a header"), tr("Next port list mode"))
        + row(tr("Double click"), tr("Enter a graph, edit a text"));
}

EditorKeysDialog::EditorKeysDialog(
    const QMenuBar* menus, const QString& navigationScheme, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keys and Mouse"));
    QStringList groups;
    const QList<QAction*> actions = menus->actions();
    for (const QAction* action : actions) {
        if (action->menu())
            groups.append(menuRows(action->menu()));
    }
    QStringList columns = inHalves(groups);
    const bool isHarbor = navigationScheme == QLatin1String("Harbor");
    columns.append(heldRows() + navigationRows(isHarbor) + mouseRows());
    auto* overview = new QWidget(this);
    auto* tables = new QHBoxLayout(overview);
    tables->setSpacing(28);
    for (const QString& rows : qAsConst(columns)) {
        auto* label
            = new QLabel(QStringLiteral("<table cellspacing='2'>%1</table>").arg(rows), overview);
        tables->addWidget(label, 0, Qt::AlignTop);
    }
    auto* column = new QVBoxLayout(this);
    column->addWidget(scrolled(overview, this));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    // A scroll area asks for less than its contents.
    const QSize margins(40, 80);
    resize((overview->sizeHint() + margins).boundedTo(screen()->availableSize() * kLargestPart));
}
