#pragma once

#include <QtGlobal>

// Marks the classes that the core library offers to hosts; everything else is hidden.
#ifdef ORVCORE_BUILD
#define ORVCORE_EXPORT Q_DECL_EXPORT
#else
#define ORVCORE_EXPORT Q_DECL_IMPORT
#endif
