#pragma once

#include <QString>

class EditorWindow;

/// How fast the window is on the document it shows: a fixed list of gestures, replayed through the events that
/// a mouse sends. Users send the table in when the editor is slow for them.
///
/// Called by  main.
/// Uses       EditorWindow, EditorView.
/// Tells      nobody.
namespace EditorMeasurement {

/// Shows the window and replays the gestures; the table, one line a gesture, with the times of its
/// frames in milliseconds. A frame is an event with all that it causes, up to the painted view. Nodes
/// are put back, and no undo step is left. For a window with a document.
QString table(EditorWindow* window);

} // namespace EditorMeasurement
