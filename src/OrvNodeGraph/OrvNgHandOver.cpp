#include "OrvNodeGraph/OrvNgHandOver.h"

#include "OrvNodeGraph/OrvNgEdge.h"

namespace {

using EdgePointer = QPointer<OrvNgEdge>;

struct Move
{
    EdgePointer m_From;
    EdgePointer m_To; ///< null: the connection is lost
};

OrvNgEdge* freeInput(OrvNgEdge* candidate, const QSet<OrvNgEdge*>& taken)
{
    return candidate && !candidate->sourceNode() && !taken.contains(candidate) ? candidate
                                                                               : nullptr;
}

// Same names first, so that a match by order never takes the place of one by name.
QList<Move> plannedMoves(OrvNgNode* from, OrvNgNode* to)
{
    QList<Move> moves;
    QSet<OrvNgEdge*> taken;
    for (OrvNgEdge* edge : from->inputs()) {
        if (!edge->sourceNode())
            continue;
        OrvNgEdge* target = freeInput(to->input(edge->text()), taken);
        taken.insert(target);
        moves.append(Move{edge, target});
    }
    for (Move& move : moves) {
        for (OrvNgEdge* edge : to->inputs()) {
            if (move.m_To)
                break;
            move.m_To = freeInput(edge, taken);
            taken.insert(move.m_To);
        }
    }
    return moves;
}

void moveInputs(OrvNgNode* from, OrvNgNode* to)
{
    const QPointer<OrvNgNode> guardedFrom(from);
    const QPointer<OrvNgNode> guardedTo(to);
    const QList<Move> moves = plannedMoves(from, to);
    for (const Move& move : moves) {
        if (!guardedFrom || !guardedTo || !move.m_From)
            return;
        const QPointer<OrvNgNode> source(move.m_From->sourceNode());
        const QString output = move.m_From->sourceOutputPoint();
        move.m_From->setSourceNode(nullptr, QString());
        if (move.m_To)
            move.m_To->setSourceNode(source, output);
        from->notifyInputSourceChange(nullptr, QString(), move.m_From->text());
        if (guardedTo && move.m_To && move.m_To->sourceNode())
            to->notifyInputSourceChange(source, output, move.m_To->text());
    }
}

QString outputInPlaceOf(const QString& output, OrvNgNode* from, OrvNgNode* to)
{
    const QStringList& offered = to->outputPoints();
    if (offered.contains(output))
        return output;
    return offered.value(from->outputPoints().indexOf(output), offered.value(0));
}

void moveOutputs(OrvNgNode* from, OrvNgNode* to)
{
    const QPointer<OrvNgNode> guardedFrom(from);
    const QPointer<OrvNgNode> guardedTo(to);
    QList<EdgePointer> edges;
    for (OrvNgEdge* edge : from->outputs()) {
        if (edge->destNode())
            edges.append(edge);
    }
    for (const EdgePointer& edge : qAsConst(edges)) {
        if (!guardedFrom || !guardedTo)
            return;
        if (!edge || !edge->destNode())
            continue;
        const QString output = outputInPlaceOf(edge->sourceOutputPoint(), from, to);
        OrvNgNode* source = to->outputPoints().isEmpty() ? nullptr : to;
        edge->setSourceNode(source, output);
        edge->destNode()->notifyInputSourceChange(source, output, edge->text());
    }
}

} // namespace

void OrvNgHandOver::moveConnections(OrvNgNode* from, OrvNgNode* to)
{
    const QPointer<OrvNgNode> guardedFrom(from);
    const QPointer<OrvNgNode> guardedTo(to);
    moveInputs(from, to);
    if (guardedFrom && guardedTo)
        moveOutputs(from, to);
}
