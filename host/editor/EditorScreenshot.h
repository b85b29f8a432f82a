#pragma once

#include <QSize>
#include <QString>

class EditorWindow;

/// Pictures of the window, made without showing it to anybody.
///
/// Called by  main.
/// Uses       EditorWindow.
/// Tells      nobody.
namespace EditorScreenshot {

/// Lays the window out at that size, shows all of the network (zoomPercent 0) or its middle at a
/// fixed scale, and writes a PNG of exactly that many pixels. An empty text on success, else what
/// went wrong.
QString save(EditorWindow* window, const QString& path, const QSize& size, int zoomPercent);

} // namespace EditorScreenshot
