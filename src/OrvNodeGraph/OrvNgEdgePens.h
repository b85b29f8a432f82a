#pragma once

#include <QPen>
#include <QSet>
#include <QString>

#include <memory>

/// Internal. The pens of an edge, copied from the style and adjusted by the edge's tags. Edges that draw
/// alike share one object: eight pens each took 600 bytes.
///
/// Called by  OrvNgEdge::setupPen and setEdgeColor.
/// Uses       OrvNgStyle.
/// Tells      nobody.
class OrvNgEdgePens
{
public:
    /// What decides between the pens; the first that is set wins, in this order.
    struct State
    {
        bool m_Debug = false; ///< and the debug colour is valid
        bool m_Severed = false;
        bool m_Bypassed = false;
        bool m_Activated = false;
        bool m_Clustered = false;
    };

    /// Copies all eight pens anew. preferred wins over shared; a valid debugColor replaces the debug
    /// pen's colour; tags "_dotted" and "_thin" change all but the severed and the clustered pen.
    void setup(bool preferred, bool shared, const QColor& debugColor, const QSet<QString>& tags);
    /// Pens set up so, taken over from another edge where the style has not changed since.
    static std::shared_ptr<const OrvNgEdgePens> get(
        bool preferred, bool shared, const QColor& debugColor, const QSet<QString>& tags);
    void setDebugColor(const QColor& color);

    const QPen& forState(const State& state) const;
    const QPen& normal() const { return m_Normal; }
    const QPen& hover() const { return m_Hover; }
    const QPen& selected() const { return m_Selected; }

private:
    bool operator==(const OrvNgEdgePens& other) const;
    void applyDotted();
    void applyThin();

    QPen m_Normal;
    QPen m_Selected;
    QPen m_Hover;
    QPen m_Bypassed;
    QPen m_Activated;
    QPen m_Debug;
    QPen m_Severed;
    QPen m_Clustered;
};
