#pragma once

class QApplication;

/// The look of everything around the graph: dark, quiet, in the greys of the graph itself, with the
/// graph's selection colour as the only accent.
///
/// Called by  main.
/// Uses       the Fusion style.
/// Tells      nobody.
namespace EditorTheme {

/// Style, palette and font of the whole application. Call it before the first item is built: nodes
/// measure their texts in the application's font.
void apply(QApplication* application);

} // namespace EditorTheme
