#pragma once

#include <QString>

/// Where the own sample networks lie: beside the installed program, else in the source tree of one
/// that runs from its build tree.
///
/// Called by  main.
/// Uses       the place of the program.
/// Tells      nobody.
namespace EditorSamples {

/// The first sample by name; empty when there is none.
QString first();

} // namespace EditorSamples
