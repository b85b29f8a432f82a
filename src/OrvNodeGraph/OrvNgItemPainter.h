#pragma once

class QGraphicsItem;
class QPainter;
class QTransform;
class QWidget;

/// Internal. Paints one item with everything below it, as a scene would within a paint of the whole view.
///
/// Called by  OrvNgFarList, OrvNgFarPictures.
/// Uses       QGraphicsItem.
/// Tells      nobody.
namespace OrvNgItemPainter {

/// Whether something in the subtree can only be painted by the framework itself, or changes without
/// the scene telling where: effects, items that ignore the view's transform, windows.
bool needsFramework(const QGraphicsItem* item);

/// toView maps the scene to the painter's device. Items see widget as the one they are painted on. The
/// painter is left as it was.
void paint(QPainter* painter, QGraphicsItem* item, const QTransform& toView, QWidget* widget);

} // namespace OrvNgItemPainter
