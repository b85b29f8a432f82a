#pragma once

class QColor;

/// Internal. Text colours that can be read on the surface they stand on.
///
/// Called by  OrvNgUINode, OrvNgBackdropNode.
/// Uses       OrvNgStyle.
/// Tells      nobody.
namespace OrvNgTextColor {

/// The style's light text colour on dark surfaces, the dark one on light surfaces. What shines through a
/// translucent surface is the scene's background.
QColor on(const QColor& surface);

/// The preferred colour, unless it is too close to the surface to be read; then on(surface).
QColor readable(const QColor& preferred, const QColor& surface);

} // namespace OrvNgTextColor
