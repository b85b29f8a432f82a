#include "OrvNodeGraph/OrvNgNavigation.h"

#include <QPoint>
#include <QSize>
#include <QTransform>

#include <cmath>

namespace {

constexpr double kSmallestScale = 1e-6;
constexpr double kLargestScale = 1e6;

bool isUsableScale(double scale)
{
    return scale >= kSmallestScale && scale <= kLargestScale;
}

OrvNgNavigation::Start startWithMiddle(bool alt, const QString& scheme)
{
    using Drag = OrvNgNavigation::Drag;
    if (!alt)
        return {Drag::Pan, Qt::NoModifier};
    if (OrvNgNavigation::isQuill(scheme))
        return {Drag::Zoom, Qt::NoModifier};
    if (OrvNgNavigation::isHarbor(scheme))
        return {Drag::Pan, Qt::AltModifier};
    return {};
}

OrvNgNavigation::Start startInHarbor(Qt::MouseButton button, bool control)
{
    using Drag = OrvNgNavigation::Drag;
    if (button == Qt::RightButton || (button == Qt::LeftButton && control))
        return {Drag::Zoom, Qt::NoModifier};
    if (button == Qt::LeftButton)
        return {Drag::Pan, Qt::AltModifier | Qt::ControlModifier};
    return {};
}

} // namespace

bool OrvNgNavigation::isQuill(const QString& scheme)
{
    return scheme == QLatin1String("Quill");
}

bool OrvNgNavigation::isHarbor(const QString& scheme)
{
    return scheme == QLatin1String("Harbor");
}

OrvNgNavigation::Start OrvNgNavigation::startFor(
    Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QString& scheme)
{
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    if (button == Qt::MiddleButton)
        return startWithMiddle(alt, scheme);
    if (!alt)
        return {};
    if (isHarbor(scheme))
        return startInHarbor(button, modifiers.testFlag(Qt::ControlModifier));
    return {Drag::Pan, Qt::AltModifier};
}

double OrvNgNavigation::zoomDragFactor(
    const QPoint& pressViewPos, const QPoint& viewPos, const QSize& viewSize)
{
    const double right = double(viewPos.x()) - double(pressViewPos.x());
    const double up = double(pressViewPos.y()) - double(viewPos.y());
    return std::exp(right / qMax(1, viewSize.width())) * std::exp(up / qMax(1, viewSize.height()));
}

QPointF OrvNgNavigation::centerZoomedAbout(
    const QPointF& fixedScenePos, const QPointF& sceneCenter, double factor)
{
    return fixedScenePos + (sceneCenter - fixedScenePos) / factor;
}

bool OrvNgNavigation::isUsable(const QTransform& transform)
{
    const bool finite = std::isfinite(transform.dx()) && std::isfinite(transform.dy())
        && std::isfinite(transform.determinant());
    return finite && transform.isInvertible()
        && isUsableScale(std::hypot(transform.m11(), transform.m12()))
        && isUsableScale(std::hypot(transform.m21(), transform.m22()));
}
