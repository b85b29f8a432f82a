#pragma once

class NetScope;
class OrvNgExtendedNode;

/// Makes the graphics node of one node of the model: look, ports with their names, folders as
/// clusters, title. Connections, mode and place come after.
///
/// Called by  EditorScene.
/// Uses       EditorNodeLook, EditorPortGroups.
/// Tells      nobody.
namespace EditorNodeFactory {

/// A node that belongs to no scene and no parent; the caller owns it.
OrvNgExtendedNode* build(const NetScope& scope, int nodeIndex);

} // namespace EditorNodeFactory
