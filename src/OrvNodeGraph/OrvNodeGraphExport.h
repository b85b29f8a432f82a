#pragma once

#include <QtGlobal>

// Marks the classes that the library offers to hosts; everything else is hidden.
#ifdef ORVNODEGRAPH_BUILD
#define ORVNODEGRAPH_EXPORT Q_DECL_EXPORT
#else
#define ORVNODEGRAPH_EXPORT Q_DECL_IMPORT
#endif
