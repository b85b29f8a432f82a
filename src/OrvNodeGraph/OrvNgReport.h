#pragma once

#include <OrvCore/OrvDebug.h>

/// Internal: hands a finished text to the host's debug channel. A report never stops the host and
/// never opens a dialog; the caller returns or goes on as its own rule says. file is the source
/// path without extension, for example "src/OrvNodeGraph/OrvNgNode".
inline void orvNgReport(const char* file, int line, const QString& text)
{
    OrvDebug(file, line, text, false, false);
}
