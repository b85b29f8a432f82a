#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

/// Internal. The eight outlines a node body can have.
///
/// Called by  OrvNgNode, for bodies, outlines and the header button.
/// Uses       OrvNgStyle for NodeShapeIndentX.
/// Tells      nobody.
namespace OrvNgNodeShape {

/// 1 to 8 stand for themselves; anything else is chosen from the category.
OrvNgNode::NodeShapeType resolve(int type, const QString& category);

/// Draws the outline into rect with the painter's pen and brush. type must be a resolved one; a value
/// outside 1 to 8 draws nothing.
void draw(QPainter* painter, const QRectF& rect, OrvNgNode::NodeShapeType type);

} // namespace OrvNgNodeShape
