#include "OrvNodeGraph/OrvNgEdgePens.h"

#include "OrvNodeGraph/OrvNgStyle.h"

#include <array>

namespace {
constexpr QRgb kClusteredColor = qRgb(98, 179, 188);
}

void OrvNgEdgePens::setup(
    bool preferred, bool shared, const QColor& debugColor, const QSet<QString>& tags)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    if (preferred) {
        m_Normal = style.getPrefferedEdgePen();
        m_Selected = style.getSelectedPrefferedEdgePen();
        m_Hover = style.getSelectablePrefferedEdgePen();
    } else if (shared) {
        m_Normal = style.getSharedEdgePen();
        m_Selected = style.getSelectedSharedEdgePen();
        m_Hover = style.getSelectableSharedEdgePen();
    } else {
        m_Normal = style.getNormalEdgePen();
        m_Selected = style.getSelectedNormalEdgePen();
        m_Hover = style.getSelectableNormalEdgePen();
    }
    m_Bypassed = style.getBypassedEdgePen();
    m_Activated = style.getActivatedEdgePen();
    m_Severed = style.getSeveredEdgePen();
    m_Debug = style.getNormalEdgePen();
    setDebugColor(debugColor);

    // Before the tags, which leave this pen and the severed one alone.
    m_Clustered = m_Debug;
    m_Clustered.setColor(QColor(kClusteredColor));

    if (tags.contains(QStringLiteral("_dotted")))
        applyDotted();
    if (tags.contains(QStringLiteral("_thin")))
        applyThin();
}

std::shared_ptr<const OrvNgEdgePens> OrvNgEdgePens::get(
    bool preferred, bool shared, const QColor& debugColor, const QSet<QString>& tags)
{
    OrvNgEdgePens wanted;
    wanted.setup(preferred, shared, debugColor, tags);
    // The few kinds that a network mixes.
    static std::array<std::weak_ptr<const OrvNgEdgePens>, 4> s_Latest;
    static std::size_t s_Next = 0;
    for (const auto& latest : s_Latest) {
        std::shared_ptr<const OrvNgEdgePens> pens = latest.lock();
        if (pens && *pens == wanted)
            return pens;
    }
    auto pens = std::make_shared<const OrvNgEdgePens>(wanted);
    s_Latest[s_Next] = pens;
    s_Next = (s_Next + 1) % s_Latest.size();
    return pens;
}

bool OrvNgEdgePens::operator==(const OrvNgEdgePens& other) const
{
    return m_Normal == other.m_Normal && m_Selected == other.m_Selected && m_Hover == other.m_Hover
        && m_Bypassed == other.m_Bypassed && m_Activated == other.m_Activated
        && m_Debug == other.m_Debug && m_Severed == other.m_Severed
        && m_Clustered == other.m_Clustered;
}

void OrvNgEdgePens::setDebugColor(const QColor& color)
{
    if (color.isValid())
        m_Debug.setColor(color);
}

const QPen& OrvNgEdgePens::forState(const State& state) const
{
    if (state.m_Debug)
        return m_Debug;
    if (state.m_Severed)
        return m_Severed;
    if (state.m_Bypassed)
        return m_Bypassed;
    if (state.m_Activated)
        return m_Activated;
    if (state.m_Clustered)
        return m_Clustered;
    return m_Normal;
}

void OrvNgEdgePens::applyDotted()
{
    for (QPen* pen : {&m_Normal, &m_Selected, &m_Hover, &m_Bypassed, &m_Activated, &m_Debug})
        pen->setStyle(Qt::DotLine);
}

void OrvNgEdgePens::applyThin()
{
    m_Normal.setWidthF(m_Normal.width() * 0.5);
    // Deliberate: halved from the normal pen as it is by now, and through its rounded width, so
    // that these pens come out at about a quarter of the first width.
    const double width = m_Normal.width() * 0.5;
    for (QPen* pen : {&m_Selected, &m_Hover, &m_Bypassed, &m_Activated, &m_Debug})
        pen->setWidthF(width);
}
