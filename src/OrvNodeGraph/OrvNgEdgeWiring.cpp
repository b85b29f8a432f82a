#include "OrvNodeGraph/OrvNgEdgeWiring.h"

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgEdgeEnds.h"
#include "OrvNodeGraph/OrvNgReport.h"

#include "OrvCore/OrvUndoManager.h"

#include <optional>

namespace {

using OrvNgEdgeWiring::Result;

constexpr char kFile[] = "src/OrvNodeGraph/OrvNgEdge";

/// One end of a connection, as it was when the operation began.
struct End
{
    QPointer<OrvNgNode> m_Node;
    QString m_Point;
};

End sourceOf(const OrvNgEdge& edge)
{
    return {edge.sourceNode(), edge.sourceOutputPoint()};
}

End inputOf(const OrvNgEdge& edge)
{
    return {edge.destNode(), edge.text()};
}

bool accepts(const End& source, const End& input)
{
    if (input.m_Node->acceptsInputSource(source.m_Node, source.m_Point, input.m_Point))
        return true;
    input.m_Node->notifyInputSourceRefused(source.m_Node, source.m_Point, input.m_Point);
    return false;
}

void tellFreed(const End& input)
{
    if (input.m_Node)
        input.m_Node->notifyInputSourceChange(nullptr, QString(), input.m_Point);
}

/// Says nothing of a connection that an earlier slot has taken back or taken apart.
void tellConnected(const QPointer<OrvNgEdge>& edge, const End& source, const End& input)
{
    if (edge && source.m_Node && input.m_Node && edge->sourceNode() == source.m_Node)
        input.m_Node->notifyInputSourceChange(source.m_Node, source.m_Point, input.m_Point);
}

QString movedText(const End& fixed, const End& from, const End& to)
{
    return OrvNgEdge::tr("Moved output %1.%2 from %3.%4 to %5.%6")
        .arg(fixed.m_Node->text(), fixed.m_Point, from.m_Node->text(), from.m_Point,
            to.m_Node->text(), to.m_Point);
}

/// The first of two edges that the user may not reconnect is reported.
bool areReconnectable(const OrvNgEdge& first, const OrvNgEdge& second)
{
    if (first.isReconnectable() && second.isReconnectable())
        return true;
    OrvNgEdgeWiring::reportLocked((first.isReconnectable() ? second : first).text());
    return false;
}

} // namespace

void OrvNgEdgeWiring::reportLocked(const QString& input)
{
    const QByteArray text = input.toLocal8Bit();
    orvNgReport(kFile, __LINE__, QString::asprintf("Non-reconnectable edge, %s", text.constData()));
}

void OrvNgEdgeWiring::reportNoOutput()
{
    orvNgReport(kFile, __LINE__,
        QStringLiteral("[ !! ] Selected source node has NO OUTPUT to connect to!"));
}

bool OrvNgEdgeWiring::isSameConnection(const OrvNgEdge& edge, const OrvNgEdge& input)
{
    return &edge == &input
        || (edge.sourceNode() == input.sourceNode()
            && edge.sourceOutputPoint() == input.sourceOutputPoint());
}

Result OrvNgEdgeWiring::connectSource(OrvNgEdge& edge, OrvNgNode* node, const QString& output)
{
    if (!node || !edge.destNode() || node == edge.destNode()
        || !OrvNgEdgeEnds::hasOutput(node, output))
        return Result::Refused;
    const End before = sourceOf(edge);
    const End after{node, output};
    const End input = inputOf(edge);
    if (before.m_Node == node && before.m_Point == output)
        return Result::Connected;
    if (!areReconnectable(edge, edge) || !accepts(after, input))
        return Result::Refused;

    std::optional<OrvUndoManager::AutoMacro> macro;
    if (before.m_Node)
        macro.emplace(movedText(input, before, after));
    edge.setSourceNode(node, output);
    tellConnected(&edge, after, input);
    return Result::Connected;
}

Result OrvNgEdgeWiring::connectDest(OrvNgEdge& edge, OrvNgNode* node, const QString& input)
{
    OrvNgEdge* target = node ? node->input(input) : nullptr;
    if (!target || !edge.sourceNode() || node == edge.sourceNode())
        return Result::Refused;
    if (target == &edge)
        return Result::Connected;
    if (!areReconnectable(edge, *target))
        return Result::Refused;
    if (node->inputCount() == 1 && target->sourceNode() == edge.sourceNode()) {
        const QByteArray text = input.toLocal8Bit();
        orvNgReport(kFile, __LINE__,
            QString::asprintf(
                "[ !! ] Attempting to double-connect on input point '%s' for candidate "
                "dest node, aborting!",
                text.constData()));
        return Result::Refused;
    }
    const End source = sourceOf(edge);
    const End before = inputOf(edge); // no node for an edge out of an output
    const End after = inputOf(*target);
    const bool isNew = !isSameConnection(edge, *target);
    if (isNew && !accepts(source, after))
        return Result::Refused;

    std::optional<OrvUndoManager::AutoMacro> macro;
    if (before.m_Node) {
        macro.emplace(movedText(source, before, after));
        edge.setSourceNode(nullptr, QString());
    }
    const QPointer<OrvNgEdge> guarded(target);
    target->setSourceNode(source.m_Node, source.m_Point);
    tellFreed(before);
    if (isNew)
        tellConnected(guarded, source, after);
    return Result::Connected;
}

void OrvNgEdgeWiring::insertNode(OrvNgEdge& edge, OrvNgNode* node, OrvNgEdge* freeInput)
{
    if (!node || !freeInput || !edge.isFullConnected() || freeInput->destNode() != node
        || node == edge.sourceNode() || node == edge.destNode()
        || !areReconnectable(edge, *freeInput))
        return;
    const QStringList outputs = node->sortedOutputPoints();
    if (outputs.isEmpty()) {
        reportNoOutput();
        return;
    }
    const End source = sourceOf(edge);
    const End input = inputOf(*freeInput);
    const End output{node, outputs.constFirst()};
    const End dest = inputOf(edge);
    if (!accepts(source, input) || !accepts(output, dest))
        return;

    const OrvUndoManager::AutoMacro macro(
        OrvNgEdge::tr("Insert '%1' into '%2.%3'-'%4.%5'")
            .arg(node->text(), source.m_Node->text(), source.m_Point, dest.m_Node->text(),
                dest.m_Point));
    const QPointer<OrvNgEdge> into(freeInput);
    const QPointer<OrvNgEdge> guarded(&edge);
    freeInput->setSourceNode(source.m_Node, source.m_Point);
    edge.setSourceNode(node, output.m_Point);
    tellConnected(into, source, input);
    tellConnected(guarded, output, dest);
}
