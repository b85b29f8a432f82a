#include "OrvNodeGraph/OrvNgFaceLayout.h"

#include <QEvent>

OrvNgFaceLayout::OrvNgFaceLayout()
    : OrvNgColumnLayout(0.0)
{
}

void OrvNgFaceLayout::layOut()
{
    setGeometry(parentLayoutItem()->contentsRect());
}

void OrvNgFaceLayout::widgetEvent(QEvent* event)
{
    if (event->type() == QEvent::GraphicsSceneResize)
        layOut();
    else if (event->type() != QEvent::LayoutRequest)
        OrvNgColumnLayout::widgetEvent(event);
}
