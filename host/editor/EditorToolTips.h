#pragma once

#include <QString>

class NetScope;
struct NetBackdrop;
struct NetNode;

/// The texts that explain a node, a port or a backdrop under the mouse, as rich text. Made when asked for: a
/// scene may have thousands of ports.
///
/// Called by  EditorScene.
/// Uses       NetScope.
/// Tells      nobody.
namespace EditorToolTips {

QString ofNode(const NetNode& node);
/// Both positions as in the scope; an empty text when there is no such port.
QString ofInput(const NetScope& scope, int nodeIndex, int portIndex);
QString ofOutput(const NetScope& scope, int nodeIndex, int portIndex);
/// Of a port that stands for several.
QString ofCluster(const QString& name, const QStringList& members);
/// Of a backdrop or note.
QString ofBackdrop(const NetBackdrop& backdrop);

} // namespace EditorToolTips
