#include "OrvNodeGraph/OrvGraphicsLinearLayout.h"

OrvGraphicsLinearLayout::OrvGraphicsLinearLayout(QGraphicsLayoutItem* parent)
    : QGraphicsLinearLayout(parent)
{
}

OrvGraphicsLinearLayout::OrvGraphicsLinearLayout(
    Qt::Orientation orientation, QGraphicsLayoutItem* parent)
    : QGraphicsLinearLayout(orientation, parent)
{
}

void OrvGraphicsLinearLayout::invalidate()
{
    m_Pending = m_Paused;
    if (!m_Paused)
        QGraphicsLinearLayout::invalidate();
}

void OrvGraphicsLinearLayout::setInvalidationPaused(bool paused)
{
    if (m_Paused == paused)
        return;
    m_Paused = paused;
    if (!m_Paused && m_Pending)
        invalidate();
}
