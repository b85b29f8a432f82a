#include "OrvNodeGraph/OrvNgSvgIconItem.h"

#include <OrvCoreModules/OrvSvgManager.h>

#include <QSvgRenderer>
#include <QtMath>

OrvNgSvgIconItem::OrvNgSvgIconItem(const QString& svgName, QGraphicsItem* parent)
    : QGraphicsItem(parent)
    , m_SvgName(svgName)
{
}

void OrvNgSvgIconItem::setRect(const QRectF& rect)
{
    const bool finite = qIsFinite(rect.x()) && qIsFinite(rect.y()) && qIsFinite(rect.width())
        && qIsFinite(rect.height());
    if (!finite || rect == m_Rect)
        return;
    prepareGeometryChange();
    m_Rect = rect;
}

void OrvNgSvgIconItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (QSvgRenderer* renderer = OrvSvgManager::instance()->renderer(m_SvgName))
        renderer->render(painter, m_Rect);
}
