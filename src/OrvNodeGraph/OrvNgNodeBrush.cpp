#include "OrvNodeGraph/OrvNgNodeBrush.h"

#include "OrvNodeGraph/OrvNgStyle.h"

#include <QLinearGradient>
#include <QRectF>
#include <QVariant>

namespace {

QBrush fromTopToBottom(QLinearGradient gradient, const QRectF& rect)
{
    gradient.setStart(rect.topLeft());
    gradient.setFinalStop(rect.bottomLeft());
    return gradient;
}

QBrush ownBrush(const OrvNgNodeBrush::State& state, const QRectF& shapeRect)
{
    QLinearGradient gradient = OrvNgStyle::instance().getDefaultNodeBrush();
    if (state.m_NodeColor.isValid() && state.m_NodeColor2.isValid()) {
        gradient.setColorAt(0.0, state.m_NodeColor);
        gradient.setColorAt(1.0, state.m_NodeColor2);
    } else {
        OrvNgNodeBrush::categoryGradient(state.m_Category, gradient);
    }
    return fromTopToBottom(gradient, shapeRect);
}

} // namespace

namespace OrvNgNodeBrush {

QBrush resolve(const State& state, const QRectF& shapeRect)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    if (state.m_CurrentPaint)
        return fromTopToBottom(style.getCurrentPaintNodeBrush(), shapeRect);
    if (state.m_Override && state.m_OverrideColor.isValid()) {
        QLinearGradient gradient = style.getDefaultNodeBrush();
        gradient.setColorAt(0.0, state.m_OverrideColor);
        gradient.setColorAt(1.0, state.m_OverrideColor);
        return fromTopToBottom(gradient, shapeRect);
    }
    if (state.m_Bypassed)
        return fromTopToBottom(style.getBypassedNodeBrush(), shapeRect);
    if (state.m_Cached)
        return style.getCachedNodeBrush();
    if (state.m_Baked)
        return state.m_OutdatedBaked ? style.getOutdatedBakedNodeBrush()
                                     : style.getBakedNodeBrush();
    if (state.m_Locked)
        return fromTopToBottom(style.getNodeLockedBrush(), shapeRect);
    return ownBrush(state, shapeRect);
}

void categoryGradient(const QString& category, QLinearGradient& out)
{
    if (category.isEmpty())
        return;
    const QString prefix
        = category == QLatin1String("_System") ? QStringLiteral("System") : category;
    const QByteArray property = (prefix + QStringLiteral("NodeBrush")).toUtf8();
    const QVariant value = OrvNgStyle::instance().property(property.constData());
    // A property of another type ("Selected" finds a plain brush) counts as known: a default
    // gradient.
    if (value.isValid())
        out = value.value<QLinearGradient>();
}

} // namespace OrvNgNodeBrush
