#pragma once

#include <QtGlobal>

/// Internal. Ten faults of the kinds that editors like this one are known to have. A build with
/// ORV_PLANT_FAULTS takes the number of one of them from the environment variable ORV_PLANTED_FAULT and
/// has it; tools/check-planted-faults shows that the random test finds each. In every other build the
/// compiler drops them.
///
/// Called by  the functions that hold a fault.
/// Uses       the environment.
/// Tells      nobody.
namespace OrvNgPlantedFault {

enum Fault {
    RawHoveredNode = 1, ///< the view unhovers a node that has died
    EdgeStaysInLists, ///< a deleted edge remains among the edges of its nodes
    RawNodeInUndo, ///< an undo command turns to a node that has died
    ThisAfterSlot, ///< an edge that a slot has deleted goes on with its drop
    RawSelectionAtPress, ///< the band asks items that have died since the press
    BoundsUnannounced, ///< a backdrop changes its bounds behind the scene's back
    NodeLeavesEdges, ///< the edges of a dead node stay in the scene
    EdgesStayBehind, ///< edges lie where the node was before its last move
    NoRepaint, ///< the looks of a state appear with the next repaint
    StaleNodeList, ///< the list of a scene's nodes keeps those that have died
};

#ifdef ORV_PLANT_FAULTS
inline bool isPlanted(Fault fault)
{
    static const int s_Planted = qEnvironmentVariableIntValue("ORV_PLANTED_FAULT");
    return s_Planted == fault;
}
#else
constexpr bool isPlanted(Fault)
{
    return false;
}
#endif

} // namespace OrvNgPlantedFault
