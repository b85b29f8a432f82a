#pragma once

#include <QBrush>
#include <QColor>
#include <QString>

class QLinearGradient;
class QRectF;

/// Internal. Which brush a node body is filled with.
///
/// One ladder for all node kinds; a kind that lacks a state leaves it false.
///
/// Called by  the setCorrectColor of the node kinds, OrvNgNode::getNodeBrush.
/// Uses       OrvNgStyle for every colour.
/// Tells      nobody.
namespace OrvNgNodeBrush {

struct State
{
    bool m_CurrentPaint = false;
    bool m_Override = false; ///< only counts while m_OverrideColor is valid
    bool m_Bypassed = false;
    bool m_Cached = false;
    bool m_Baked = false;
    bool m_OutdatedBaked = false;
    bool m_Locked = false;
    QColor m_OverrideColor;
    QColor
        m_NodeColor; ///< with m_NodeColor2, in place of the category's gradient while both are valid
    QColor m_NodeColor2;
    QString m_Category;
};

/// The body brush for a state, first match wins: current paint, override colour, bypassed, cached, baked
/// (outdated or not), locked, else the node's own colours or its category's. Gradients run from the top
/// left to the bottom left of shapeRect, in its coordinates.
QBrush resolve(const State& state, const QRectF& shapeRect);

/// Writes the category's gradient to out; start and final stop are left for the caller to set. An empty
/// or unknown category leaves out alone.
void categoryGradient(const QString& category, QLinearGradient& out);

} // namespace OrvNgNodeBrush
