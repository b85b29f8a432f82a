#pragma once

#include <QList>
#include <QPair>
#include <QStringList>

struct NetNode;

/// What a node's ports mean together: which input stands for the node as a whole, and which inputs
/// fold up under one name.
///
/// Called by  EditorNodeFactory.
/// Uses       NetNode.
/// Tells      nobody.
namespace EditorPortGroups {

/// Position of the main input: "in", else the first shader, else the base or diffuse colour, else
/// the texture coordinates, else the model's choice; -1 without inputs.
int mainInput(const NetNode& node);

/// Inputs by their folder, in the order in which folders first occur, each name once. Folders with
/// fewer than two inputs are left out. A name that is also an input's is made different from it,
/// because groups and inputs share their names in the library.
QList<QPair<QString, QStringList>> inputClusters(const NetNode& node);

} // namespace EditorPortGroups
