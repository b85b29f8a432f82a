#pragma once

#include <QSet>
#include <QString>

class NetScope;
class OrvNgNode;
struct NetNode;
struct NetPort;

/// Makes the graphics node of one node of the model: look, ports with their names, folders as clusters,
/// title. The format's pass-through node becomes a dot, whose points have names of their own. Connections,
/// mode and place come after.
///
/// Called by  EditorScene.
/// Uses       EditorNode, EditorNodeLook, EditorPortGroups.
/// Tells      nobody.
namespace EditorNodeFactory {

/// A node that belongs to no scene and no parent; the caller owns it.
OrvNgNode* build(const NetScope& scope, int nodeIndex);
/// Writes the inputs' texts anew, which say when a source does not exist.
void nameInputs(OrvNgNode* item, const NetScope& scope, int nodeIndex);
/// Of the input's edge.
QSet<QString> tagsOf(const NetPort& port);

// Names of the points on the graphics node, and back to positions in the model (-1 for none)

QString inputName(const NetNode& node, int port);
QString outputName(const NetNode& node, int port);
int inputIndex(const NetNode& node, const QString& name);
int outputIndex(const NetNode& node, const QString& name);

} // namespace EditorNodeFactory
