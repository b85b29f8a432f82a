#pragma once

#include <QString>
#include <QVector>

/// One thing to tell the user about a document: what, where, how bad.
///
/// An error means that no document was opened. A warning means that the document is open, but a
/// part of it is not what its author meant (a connection to nowhere, an include that is gone). An
/// info is no fault.
///
/// Called by  the main window and the command line, which show it.
/// Uses       nothing.
/// Tells      nobody.
struct NetMessage
{
    enum class Severity { Info, Warning, Error };

    Severity severity = Severity::Info;
    QString file; ///< absolute path as opened; never empty
    int line = 0; ///< counted from 1; 0 when the message is about the whole file
    QString text; ///< one translated sentence

    /// "file:line: text", or "file: text" when there is no line.
    QString toString() const;

    /// True when one of the messages is as bad as the given severity or worse.
    static bool anyAtLeast(const QVector<NetMessage>& messages, Severity severity);
};
