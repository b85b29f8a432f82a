#pragma once

#include <QPointF>
#include <QString>

class QPoint;
class QSize;
class QTransform;

/// Internal. The rules of navigating with the mouse: which press starts a pan or a zoom drag under
/// which scheme, how far a zoom drag zooms, and which transforms a view may take.
///
/// The two schemes are named "Quill" and "Harbor". Any other name navigates by the rules that hold
/// for all of them: the middle button pans, Alt with another button pans.
///
/// Called by  OrvNgView.
/// Uses       nothing: values in, values out.
/// Tells      nobody.
class OrvNgNavigation
{
public:
    enum class Drag { None, Pan, Zoom };

    /// What a press starts, and the modifiers that must not reach the base class with it.
    struct Start
    {
        Drag m_Drag = Drag::None;
        Qt::KeyboardModifiers m_DroppedModifiers = Qt::NoModifier;
    };

    static bool isQuill(const QString& scheme);
    static bool isHarbor(const QString& scheme);

    static Start startFor(
        Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QString& scheme);

    /// The factor on the scale at the press: e for each view width to the right, and for each view
    /// height up. Infinite or 0 where the way is too long for a double.
    static double zoomDragFactor(
        const QPoint& pressViewPos, const QPoint& viewPos, const QSize& viewSize);

    /// The centre of the visible area after zooming by factor, about a point that stays in place.
    /// All points in scene coordinates.
    static QPointF centerZoomedAbout(
        const QPointF& fixedScenePos, const QPointF& sceneCenter, double factor);

    /// Whether a view can work with a transform: finite, invertible, both axes scaled by 1e-6 to
    /// 1e6.
    static bool isUsable(const QTransform& transform);
};
