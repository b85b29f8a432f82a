#pragma once

#include "RandomWorld.h"

/// What must hold after every step, whatever the step was.
///
/// Called by  the test's main function.
/// Uses       the world's scene, view and nodes through their public interface.
/// Tells      nobody.
namespace RandomInvariants {

/// The first broken promise, by its letter and number; empty when all hold.
QString broken(RandomWorld& world);

} // namespace RandomInvariants
