#include "OrvNodeGraph/OrvNgRubberBand.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleHintReturnMask>
#include <QStyleOptionRubberBand>
#include <QWidget>

namespace {

QStyleOptionRubberBand bandOption(const QRect& rect, const QWidget* viewport)
{
    QStyleOptionRubberBand option;
    option.initFrom(viewport);
    option.rect = rect;
    option.shape = QRubberBand::Rectangle;
    return option;
}

} // namespace

void OrvNgRubberBand::arm(const QPoint& viewPos)
{
    clear();
    m_IsArmed = true;
    m_PressPos = viewPos;
}

bool OrvNgRubberBand::activate(const QPoint& viewPos)
{
    m_IsActive = m_IsActive
        || (m_IsArmed
            && (m_PressPos - viewPos).manhattanLength() >= QApplication::startDragDistance());
    return m_IsActive;
}

bool OrvNgRubberBand::follow(const QPoint& viewPos)
{
    const QPoint topLeft(qMin(m_PressPos.x(), viewPos.x()), qMin(m_PressPos.y(), viewPos.y()));
    const QPoint bottomRight(qMax(m_PressPos.x(), viewPos.x()), qMax(m_PressPos.y(), viewPos.y()));
    const QRect rect(topLeft, bottomRight);
    if (rect == m_Rect)
        return false;
    m_Rect = rect;
    return true;
}

void OrvNgRubberBand::clear()
{
    *this = OrvNgRubberBand();
}

QRegion OrvNgRubberBand::region(const QRect& rect, const QWidget* viewport)
{
    const QStyleOptionRubberBand option = bandOption(rect, viewport);
    QStyleHintReturnMask mask;
    QRegion region(rect);
    if (viewport->style()->styleHint(QStyle::SH_RubberBand_Mask, &option, viewport, &mask))
        region &= mask.region;
    return region;
}

void OrvNgRubberBand::paint(QPainter* painter, const QWidget* viewport) const
{
    const QStyleOptionRubberBand option = bandOption(m_Rect, viewport);
    QStyleHintReturnMask mask;
    painter->save();
    if (viewport->style()->styleHint(QStyle::SH_RubberBand_Mask, &option, viewport, &mask))
        painter->setClipRegion(mask.region, Qt::IntersectClip);
    viewport->style()->drawControl(QStyle::CE_RubberBand, &option, painter, viewport);
    painter->restore();
}
