#include "OrvCore/OrvPixmap.h"

#include <QFileInfo>
#include <QGuiApplication>

namespace {

constexpr qreal kDenseScreenRatio = 1.5; // device pixels for a point

// "dir/Name.png" -> "dir/Name@2x.png"
QString doubleSizePath(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix();
    const int nameEnd = suffix.isEmpty() ? path.size() : path.size() - suffix.size() - 1;
    return path.left(nameEnd) + QStringLiteral("@2x") + path.mid(nameEnd);
}

} // namespace

QPixmap OrvPixmap::createQPixmapFromPath(const QString& path)
{
    if (qGuiApp->devicePixelRatio() >= kDenseScreenRatio) {
        QPixmap dense;
        if (dense.load(doubleSizePath(path))) {
            dense.setDevicePixelRatio(2.0);
            return dense;
        }
    }
    return QPixmap(path);
}
