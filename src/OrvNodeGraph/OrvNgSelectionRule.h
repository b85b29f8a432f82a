#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

/// Internal. What a rubber band does to the selection, by the modifiers held when it was begun.
///
/// Called by  OrvNgView.
/// Uses       nothing: values in, values out.
/// Tells      nobody.
namespace OrvNgSelectionRule {

/// Whether an item ends up selected that is in the band, or was selected at the press, or is selected
/// now.
inline bool selects(OrvNgNode::OrvNgSelectMode mode, bool isInBand, bool wasSelectedAtPress)
{
    switch (mode) {
    case OrvNgNode::SelectAdd:
        return isInBand || wasSelectedAtPress;
    case OrvNgNode::SelectRemove:
        return !isInBand;
    case OrvNgNode::SelectToggle:
        return isInBand != wasSelectedAtPress;
    case OrvNgNode::SelectReplace:
        break;
    }
    return isInBand;
}

} // namespace OrvNgSelectionRule
