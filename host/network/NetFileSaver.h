#pragma once

#include <QByteArray>
#include <QString>

/// Writes a file whole or not at all.
///
/// Called by  NetEditor.
/// Uses       QSaveFile.
/// Tells      nobody.
class NetFileSaver
{
public:
    /// Writes the bytes; an existing file keeps its permissions, and a symbolic link leads where it led.
    /// An empty text, or one translated sentence why it cannot be done: what was there is then as it was.
    static QString save(const QString& path, const QByteArray& bytes);
};
