#pragma once

#include "OrvCore/OrvSerializableObject.h"

#include <QScopedValueRollback>

/// Internal. Passes an item's selection on to the host's object behind it.
namespace OrvNgModelSelection {

/// Tells the parent of a node, if it is an object with a selection. That object may select the node in turn,
/// which asks again before the first answer has taken effect: isTelling, a member of the node, stops it there.
inline void tell(QObject* parent, bool selected, bool& isTelling)
{
    auto* model = qobject_cast<OrvSerializableObject*>(parent);
    if (!model || isTelling)
        return;
    const QScopedValueRollback<bool> guard(isTelling, true);
    model->setSelected(selected);
}

} // namespace OrvNgModelSelection
