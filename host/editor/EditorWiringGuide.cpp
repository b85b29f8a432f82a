#include "editor/EditorWiringGuide.h"

#include "editor/EditorEdits.h"
#include "editor/EditorPortColors.h"
#include "editor/EditorScene.h"

#include <OrvNodeGraph/OrvNgPort.h>

namespace {

constexpr qreal kStepBackOpacity = 0.45; // of nodes without a port that fits

} // namespace

void EditorWiringGuide::follow(OrvNgEdge* carried)
{
    if (m_IsShown == (carried != nullptr) && m_Carried == carried && m_IsValid)
        return;
    if (m_IsShown)
        end();
    m_Carried = carried;
    m_IsValid = true;
    m_IsShown = carried && begin();
}

/// False when the ends that the edge still has belong to no node of the scene.
bool EditorWiringGuide::wish(Wish* wish) const
{
    const NetScope& scope = m_Scene->scope();
    if (OrvNgNode* dest = m_Carried->destNode()) { // then the source end is loose
        const NetPortRef input = m_Scene->inputOf(dest, m_Carried->text());
        if (input.port < 0)
            return false;
        wish->type = scope.nodes.at(input.node).inputs.at(input.port).type;
        wish->anchor = input.node;
        wish->excluded = EditorEdits::reachable(scope, {input.node}, false);
        return true;
    }
    const NetPortRef output
        = m_Scene->outputOf(m_Carried->sourceNode(), m_Carried->sourceOutputPoint());
    if (output.port < 0)
        return false;
    wish->isInput = true;
    wish->type = scope.nodes.at(output.node).outputs.at(output.port).type;
    wish->anchor = output.node;
    wish->excluded = EditorEdits::reachable(scope, {output.node}, true);
    return true;
}

bool EditorWiringGuide::begin()
{
    Wish wished;
    if (!wish(&wished))
        return false;
    for (int i = 0; i < m_Scene->scope().nodes.size(); ++i)
        mark(i, wished);
    return true;
}

void EditorWiringGuide::mark(int index, const Wish& wish)
{
    OrvNgNode* item = m_Scene->node(index);
    if (!item)
        return;
    const NetNode& node = m_Scene->scope().nodes.at(index);
    // What an include brought in cannot be changed, so its inputs take nothing.
    const bool isOpen = !wish.excluded.at(index) && !(wish.isInput && node.fileIndex > 0);
    auto* extended = dynamic_cast<OrvNgExtendedNode*>(item);
    bool hasFit = false;
    const auto show = [&](const NetPort& port, bool isWishedSide, OrvNgPort* shown) {
        const bool fits = isOpen && isWishedSide && port.type == wish.type;
        hasFit = hasFit || fits;
        if (shown)
            shown->setSpecialPortColor(fits ? EditorPortColors::offeredColor(port.type)
                                            : EditorPortColors::faintColor(port.type));
    };
    for (const NetPort& port : node.inputs)
        show(port, wish.isInput, extended ? extended->inputPort(port.name) : nullptr);
    for (const NetPort& port : node.outputs)
        show(port, !wish.isInput, extended ? extended->outputPort(port.name) : nullptr);
    item->setOpacity(hasFit || index == wish.anchor ? 1.0 : kStepBackOpacity);
}

void EditorWiringGuide::end()
{
    m_IsShown = false;
    for (int i = 0; i < m_Scene->scope().nodes.size(); ++i) {
        OrvNgNode* item = m_Scene->node(i);
        if (!item)
            continue;
        item->setOpacity(1.0);
        m_Scene->colorPorts(i);
    }
}
