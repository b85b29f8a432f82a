#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QString>

#include <functional>

/// Receives every report instead of the default one. `file` is empty when the reporter named none.
using OrvDebugHandler = std::function<void(
    const QString& file, int line, const QString& message, bool fatal, bool showDialog)>;

/// Reports a broken precondition ("[ !! ] …" or plain) or a trace ("[ -- ] …") to the host. The
/// message is already formatted and is shown as it stands. `fatal` asks the host to stop,
/// `showDialog` to show the message to the user; the default handler does neither, it only raises
/// the level. Never aborts and may be called from any thread; the handler runs in the caller's.
///
/// The default handler writes to the logging category "orv.debug": traces as debug messages, fatal
/// reports as critical ones, everything else as warnings.
///
/// Called by  the whole library and the host.
/// Uses       QLoggingCategory, or the handler set by OrvSetDebugHandler.
/// Tells      the handler.
ORVCORE_EXPORT void OrvDebug(const char* file, int line, const QString& message, bool fatal = false,
    bool showDialog = false);

/// Replaces the handler and returns the previous one, which is empty when that was the default. An
/// empty handler restores the default. A handler may replace itself or report again; the handler
/// that runs stays alive until it returns.
ORVCORE_EXPORT OrvDebugHandler OrvSetDebugHandler(OrvDebugHandler handler);
