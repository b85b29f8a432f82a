#pragma once

#include "OrvCore/OrvCoreExport.h"

#include <QPixmap>
#include <QString>

/// Pixmaps from files, sharp on every screen.
///
/// Called by  the view, for its cutting cursor; the host.
/// Uses       the device pixel ratio of the application.
/// Tells      nobody.
struct ORVCORE_EXPORT OrvPixmap
{
    /// The picture in the file. On dense screens (1.5 device pixels or more for a point)
    /// "Name@2x.png" beside "Name.png" is taken when it can be read, with a device pixel ratio of
    /// 2, so that the picture keeps its size in points. Null when unreadable. Like
    /// every pixmap it needs the application object.
    static QPixmap createQPixmapFromPath(const QString& path);
};
