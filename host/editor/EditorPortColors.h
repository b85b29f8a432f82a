#pragma once

#include <QColor>
#include <QString>

/// The colours of ports by type: one hue and brightness for each type of the document format, so
/// that neighbours can be told apart on the dark body of a node, and a dimmer shade of it for ports
/// without a connection. A type that the format does not know (a document's own struct) gets a
/// colour made of its name, the same on every run.
///
/// Called by  EditorScene, EditorWiringGuide.
/// Uses       nothing else.
/// Tells      nobody.
namespace EditorPortColors {

/// Of a port of that type, connected or free. Opaque.
QColor color(const QString& type, bool connected);
/// Of an input whose source does not exist.
QColor brokenColor();

// While an edge is carried

/// Of a port that would take it: stands out from both shades of color().
QColor offeredColor(const QString& type);
/// Of a port that would not: the free shade, nearly transparent.
QColor faintColor(const QString& type);

} // namespace EditorPortColors
