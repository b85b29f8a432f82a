#pragma once

#include "RandomWorld.h"

/// The operations, and those of them that others need.
///
/// Called by  RandomWorld; operations of one another.
/// Uses       RandomWorld.
/// Tells      nobody.
namespace RandomOperations {

QList<RandomOperation> host(); ///< with deaths and the undo stack
QList<RandomOperation> input(); ///< with time
QList<RandomOperation> checks(); ///< at fixed steps: what is too dear to look at after each

/// What a slot may do; with true also what deletes at once.
QList<void (*)(RandomWorld&)> reactions(bool mayDelete);
void destroyNode(RandomWorld& world);
void deleteNode(RandomWorld& world);
/// Picks an entry of a menu that has opened, or closes it, or does worse.
void answerMenu(RandomWorld& world, QMenu& menu);

} // namespace RandomOperations
