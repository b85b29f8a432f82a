#pragma once

#include <QtGlobal>

// Marks the classes that the modules library offers to hosts; everything else is hidden.
#ifdef ORVCOREMODULES_BUILD
#define ORVCOREMODULES_EXPORT Q_DECL_EXPORT
#else
#define ORVCOREMODULES_EXPORT Q_DECL_IMPORT
#endif
