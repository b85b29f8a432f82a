#include "editor/EditorEdits.h"

#include "editor/EditorBackdrops.h"
#include "editor/EditorCommand.h"
#include "editor/EditorScene.h"

#include <OrvCore/OrvUndoManager.h>

#include <QCoreApplication>
#include <QPointer>

#include <OrvNodeGraph/OrvNgBackdropNode.h>
#include <OrvNodeGraph/OrvNgDotableMarkerItem.h>
#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgNode.h>
#include <OrvNodeGraph/OrvNgStyle.h>

namespace {

const QSizeF kNoteSize(220, 80); // scene units

QString tr(const char* text)
{
    return QCoreApplication::translate("EditorEdits", text);
}

// The marker stands in the middle of what is seen of the edge.
QPointF markerPosition(const OrvNgEdge* edge)
{
    const QList<QGraphicsItem*> children = edge->childItems();
    for (QGraphicsItem* child : children) {
        if (dynamic_cast<OrvNgDotableMarkerItem*>(child))
            return child->scenePos();
    }
    return edge->sceneBoundingRect().center();
}

} // namespace

NetEditor& EditorEdits::editor() const
{
    return *m_Scene->editor();
}

int EditorEdits::scopeIndex() const
{
    return m_Scene->scopeIndex();
}

const NetNode& EditorEdits::model(int node) const
{
    return m_Scene->scope().nodes.at(node);
}

QString EditorEdits::inputText(const NetPortRef& input) const
{
    return QStringLiteral("%1.%2").arg(
        model(input.node).displayName(), model(input.node).inputs.at(input.port).name);
}

bool EditorEdits::push(NetEditor::ChangePtr change, const QString& text)
{
    return EditorCommand::push(m_Scene->editor(), std::move(change), text);
}

// Wiring

bool EditorEdits::connectInput(const NetPortRef& source, const NetPortRef& dest)
{
    const QString whyNot = editor().whyNotConnect(scopeIndex(), source, dest);
    if (!whyNot.isEmpty()) {
        Q_EMIT m_Scene->status(whyNot);
        return false;
    }
    const NetNode& from = model(source.node);
    const NetNode& to = model(dest.node);
    return push(editor().connectInput(scopeIndex(), source, dest),
        tr("Connect %1.%2 to %3.%4")
            .arg(from.displayName(), from.outputs.at(source.port).name, to.displayName(),
                to.inputs.at(dest.port).name));
}

bool EditorEdits::disconnectInput(const NetPortRef& dest)
{
    const QString whyNot = editor().whyNotDisconnect(scopeIndex(), dest);
    if (!whyNot.isEmpty()) {
        Q_EMIT m_Scene->status(whyNot);
        return false;
    }
    return push(editor().disconnectInput(scopeIndex(), dest),
        tr("Disconnect %1.%2")
            .arg(model(dest.node).displayName(), model(dest.node).inputs.at(dest.port).name));
}

void EditorEdits::wire(
    OrvNgNode* source, const QString& output, OrvNgNode* dest, const QString& input)
{
    const NetPortRef to = m_Scene->inputOf(dest, input);
    const NetPortRef from = m_Scene->outputOf(source, output);
    if (to.port < 0)
        return;
    const bool isDone = from.port >= 0 ? connectInput(from, to) : disconnectInput(to);
    if (!isDone)
        m_Scene->showConnection(to); // the edge goes back to what the model says
}

// Moving

/// What has moved and may. What must not is put back.
QVector<NetMove> EditorEdits::pendingMoves(QString* whyNot)
{
    QVector<NetMove> moves;
    const int count = m_Scene->scope().nodes.size();
    for (int i = 0; i < count; ++i) {
        if (m_Scene->isAtRest(i))
            continue;
        const QString refusal = editor().whyNotMove(scopeIndex(), i);
        if (refusal.isEmpty()) {
            moves.append({i, m_Scene->filePosition(i)});
            continue;
        }
        *whyNot = refusal;
        m_Scene->putBack(i);
    }
    return moves;
}

QVector<NetBackdropMove> EditorEdits::pendingBackdropMoves(QString* whyNot)
{
    QVector<NetBackdropMove> moves;
    EditorBackdrops& shown = m_Scene->backdrops();
    const int count = m_Scene->scope().backdrops.size();
    for (int i = 0; i < count; ++i) {
        if (shown.isAtRest(i))
            continue;
        const QString refusal = editor().whyNotChangeBackdrop(scopeIndex(), i);
        if (refusal.isEmpty()) {
            moves.append({i, shown.fileRect(i)});
            continue;
        }
        *whyNot = refusal;
        shown.putBack(i);
    }
    return moves;
}

void EditorEdits::commitMoves()
{
    QString whyNot;
    const QVector<NetMove> moves = pendingMoves(&whyNot);
    const QVector<NetBackdropMove> backdropMoves = pendingBackdropMoves(&whyNot);
    if (!whyNot.isEmpty())
        Q_EMIT m_Scene->status(whyNot);
    QVector<int> nodes;
    QVector<int> backdrops;
    for (const NetMove& move : moves)
        nodes.append(move.node);
    for (const NetBackdropMove& move : backdropMoves)
        backdrops.append(move.backdrop);
    const OrvUndoManager::AutoMacro step(backdrops.isEmpty() && nodes.size() == 1
            ? tr("Move node %1").arg(listed(nodes, {}))
            : tr("Move %1").arg(listed(nodes, backdrops)));
    if (!moves.isEmpty() && !push(editor().moveNodes(scopeIndex(), moves), tr("Move nodes"))) {
        for (const int node : qAsConst(nodes))
            m_Scene->putBack(node);
    }
    if (!backdropMoves.isEmpty()
        && !push(editor().moveBackdrops(scopeIndex(), backdropMoves), tr("Move backdrops"))) {
        for (const int each : qAsConst(backdrops))
            m_Scene->backdrops().putBack(each);
    }
}

void EditorEdits::arrange(const QVector<QPointF>& corners)
{
    QVector<NetMove> moves;
    for (int i = 0; i < corners.size(); ++i) {
        if (!m_Scene->node(i))
            continue;
        if (editor().whyNotMove(scopeIndex(), i).isEmpty())
            moves.append({i, m_Scene->filePosition(corners.at(i))});
        else
            m_Scene->placeLoose(i, corners.at(i));
    }
    push(editor().moveNodes(scopeIndex(), moves), tr("Arrange %1 nodes").arg(moves.size()));
}

// Inserting

/// The first free input of the node that fits; null when none does.
OrvNgEdge* EditorEdits::inputForInsertion(OrvNgNode* node, OrvNgEdge* edge, QString* whyNot) const
{
    const QStringList outputs = node->sortedOutputPoints();
    if (outputs.isEmpty())
        return nullptr;
    // The library gives the edge the first output.
    *whyNot = m_Scene->whyNotConnect(node, outputs.constFirst(), edge->destNode(), edge->text());
    if (!whyNot->isEmpty())
        return nullptr;
    const QStringList names = node->sortedInputPoints();
    for (const QString& name : names) {
        OrvNgEdge* input = node->input(name);
        if (!input || input->sourceNode() || m_Scene->inputOf(node, name).port < 0)
            continue;
        const QString refusal
            = m_Scene->whyNotConnect(edge->sourceNode(), edge->sourceOutputPoint(), node, name);
        if (refusal.isEmpty())
            return input;
        if (whyNot->isEmpty())
            *whyNot = refusal;
    }
    return nullptr;
}

void EditorEdits::insert(OrvNgNode* node, OrvNgEdge* edge)
{
    QString whyNot;
    OrvNgEdge* input = inputForInsertion(node, edge, &whyNot);
    if (!input) {
        commitMoves();
        if (!whyNot.isEmpty())
            Q_EMIT m_Scene->status(whyNot);
        return;
    }
    // The library opens a step with the same text inside.
    const OrvUndoManager::AutoMacro step(
        tr("Insert '%1' into '%2.%3'-'%4.%5'")
            .arg(node->text(), edge->sourceNode()->text(), edge->sourceOutputPoint(),
                edge->destNode()->text(), edge->text()));
    commitMoves();
    edge->insertNodeIntoEdge(node, input);
}

void EditorEdits::drop(OrvNgNode* node)
{
    const QPointer<OrvNgEdge> edge = node->highlightedEdge();
    if (!edge || !edge->isFullConnected()) {
        commitMoves();
        return;
    }
    edge->unHightlightForNodeInsert();
    OrvNgEdge* freeInput = nullptr;
    if (node->canBeInsertedIntoAnEdge(freeInput))
        insert(node, edge);
    else
        commitMoves(); // the user asked for no insertion after the drag had begun
}

void EditorEdits::insertDot(OrvNgEdge* edge)
{
    const NetPortRef dest = edge ? m_Scene->inputOf(edge->destNode(), edge->text()) : NetPortRef();
    if (dest.port < 0)
        return;
    const qreal half = (OrvNgStyle::instance().getDotNodeSize() + 1) / 2.0; // with the outline
    const QPointF corner = markerPosition(edge) - QPointF(half, half);
    const QString text = tr("Insert a dot into %1").arg(inputText(dest));
    if (push(editor().insertDot(scopeIndex(), dest, m_Scene->filePosition(corner)), text))
        return;
    const QString whyNot = editor().whyNotDisconnect(scopeIndex(), dest);
    Q_EMIT m_Scene->status(whyNot.isEmpty() ? tr("A dot cannot be inserted here.") : whyNot);
}

// Removing

void EditorEdits::remove(const Nodes& nodes, const QVector<int>& backdrops)
{
    commitMoves(); // of a drag that is still going on, so that undo finds the nodes there
    QVector<int> indices;
    QString whyNot;
    for (OrvNgNode* node : nodes) {
        const int index = m_Scene->indexOf(node);
        const QString refusal = editor().whyNotRemove(scopeIndex(), index);
        if (refusal.isEmpty())
            indices.append(index);
        else
            whyNot = refusal;
    }
    if (!whyNot.isEmpty())
        Q_EMIT m_Scene->status(whyNot);
    const QVector<int> frames = changeable(backdrops);
    const OrvUndoManager::AutoMacro step(tr("Delete %1").arg(listed(indices, frames)));
    if (!indices.isEmpty())
        push(editor().removeNodes(scopeIndex(), indices), tr("Delete nodes"));
    if (!frames.isEmpty())
        push(editor().removeBackdrops(scopeIndex(), frames), tr("Delete backdrops"));
}

/// The source of the node's first connected input that may feed dest in the node's place.
NetPortRef EditorEdits::sourceInsteadOf(int node, const NetPortRef& dest) const
{
    for (int port = 0; port < model(node).inputs.size(); ++port) {
        const NetConnection* each = editor().connectionTo(scopeIndex(), {node, port});
        if (!each)
            continue;
        const NetPortRef source{each->sourceNode, each->sourcePort};
        if (editor().whyNotConnect(scopeIndex(), source, dest).isEmpty())
            return source;
    }
    return {};
}

void EditorEdits::extract(int node)
{
    // Copied: every change makes another list.
    const QVector<NetConnection> connections = m_Scene->scope().connections;
    for (const NetConnection& each : connections) {
        if (each.sourceNode != node)
            continue;
        const NetPortRef dest{each.destNode, each.destPort};
        const NetPortRef source = sourceInsteadOf(node, dest);
        if (source.node >= 0)
            connectInput(source, dest);
        else
            disconnectInput(dest);
    }
    for (const NetConnection& each : connections) {
        if (each.destNode == node)
            disconnectInput({each.destNode, each.destPort});
    }
}

void EditorEdits::extract(const Nodes& nodes)
{
    if (nodes.isEmpty())
        return;
    const OrvUndoManager::AutoMacro step(nodes.size() == 1
            ? tr("Extract %1").arg(nodes.constFirst()->text())
            : tr("Extract %1 nodes").arg(nodes.size()));
    for (OrvNgNode* node : nodes)
        extract(m_Scene->indexOf(node));
}

// Backdrops and notes

const NetBackdrop& EditorEdits::backdrop(int index) const
{
    return m_Scene->scope().backdrops.at(index);
}

/// For the history: one by its name, several by their number.
QString EditorEdits::listed(const QVector<int>& nodes, const QVector<int>& backdrops) const
{
    QVector<int> frames;
    int notes = 0;
    for (const int each : backdrops) {
        if (backdrop(each).isNote)
            ++notes;
        else
            frames.append(each);
    }
    QStringList parts;
    if (frames.size() == 1)
        parts += backdrop(frames.constFirst()).title;
    else if (frames.size() > 1)
        parts += tr("%1 backdrops").arg(frames.size());
    if (notes > 0)
        parts += notes == 1 ? tr("a note") : tr("%1 notes").arg(notes);
    if (nodes.size() == 1)
        parts += model(nodes.constFirst()).displayName();
    else if (nodes.size() > 1)
        parts += tr("%1 nodes").arg(nodes.size());
    if (parts.size() < 2)
        return parts.value(0);
    const QString last = parts.takeLast();
    return tr("%1 and %2").arg(parts.join(QStringLiteral(", ")), last);
}

bool EditorEdits::mayChange(int backdrop) const
{
    if (!m_Scene->backdrops().item(backdrop))
        return false;
    const QString whyNot = editor().whyNotChangeBackdrop(scopeIndex(), backdrop);
    if (!whyNot.isEmpty())
        Q_EMIT m_Scene->status(whyNot);
    return whyNot.isEmpty();
}

QVector<int> EditorEdits::changeable(const QVector<int>& backdrops) const
{
    QVector<int> result;
    for (const int each : backdrops) {
        if (mayChange(each))
            result.append(each);
    }
    return result;
}

/// Of nodes whose positions the document does not have.
QVector<NetMove> EditorEdits::movesOfLoose(const Nodes& nodes) const
{
    QVector<NetMove> moves;
    for (OrvNgNode* node : nodes) {
        const int index = m_Scene->indexOf(node);
        if (!model(index).hasPosition && editor().whyNotMove(scopeIndex(), index).isEmpty())
            moves.append({index, m_Scene->filePosition(index)});
    }
    return moves;
}

int EditorEdits::add(const NetBackdrop& backdrop, const QString& text)
{
    const int index = m_Scene->scope().backdrops.size();
    push(editor().addBackdrop(scopeIndex(), backdrop), text);
    OrvNgNode* added = m_Scene->backdrops().item(index);
    if (!added)
        return -1;
    m_Scene->clearSelection();
    added->setSelected(true);
    return index;
}

void EditorEdits::wrap(const Nodes& nodes, const QRectF& bounds)
{
    if (bounds.isEmpty()) {
        Q_EMIT m_Scene->status(tr("Select the nodes that the backdrop is to frame."));
        return;
    }
    OrvNgBackdropNode measure(nullptr);
    measure.wrapAroundSelection(bounds, true);
    NetBackdrop wanted;
    wanted.title = tr("Backdrop");
    wanted.rect = m_Scene->fileRect(measure.sceneBoundingRect());
    const OrvUndoManager::AutoMacro step(tr("Add a backdrop"));
    const QVector<NetMove> moves = movesOfLoose(nodes);
    if (!moves.isEmpty())
        push(editor().moveNodes(scopeIndex(), moves), tr("Place nodes"));
    add(wanted, tr("Add a backdrop"));
}

int EditorEdits::addNote(const QPointF& scenePos)
{
    NetBackdrop wanted;
    wanted.isNote = true;
    wanted.title = tr("Note");
    wanted.doc = tr("Note");
    wanted.rect = m_Scene->fileRect(QRectF(scenePos, kNoteSize));
    return add(wanted, tr("Add a note"));
}

void EditorEdits::setBackdropText(int index, const QString& text, bool isDoc)
{
    if (!mayChange(index))
        return;
    if (!isDoc)
        push(editor().setBackdropTitle(scopeIndex(), index, text),
            tr("Rename %1").arg(backdrop(index).title));
    else
        push(editor().setBackdropDoc(scopeIndex(), index, text),
            tr("Change the text of %1").arg(listed({}, {index})));
}

void EditorEdits::setBackdropColor(int index, const QColor& color)
{
    if (color.isValid() && mayChange(index))
        push(editor().setBackdropColor(scopeIndex(), index, color.name().toUpper()),
            tr("Colour %1").arg(listed({}, {index})));
}

// Reach

QVector<bool> EditorEdits::reachable(
    const NetScope& scope, const QVector<int>& seeds, bool upstream)
{
    QVector<QVector<int>> next(scope.nodes.size());
    for (const NetConnection& each : scope.connections) {
        if (upstream)
            next[each.destNode].append(each.sourceNode);
        else
            next[each.sourceNode].append(each.destNode);
    }
    QVector<bool> reached(scope.nodes.size(), false);
    QVector<int> waiting = seeds;
    while (!waiting.isEmpty()) {
        const int node = waiting.takeLast();
        if (reached.at(node))
            continue;
        reached[node] = true;
        waiting += next.at(node);
    }
    return reached;
}
