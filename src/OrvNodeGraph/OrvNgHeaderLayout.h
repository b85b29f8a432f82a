#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

/// Internal. How big a node's header is and where title and button sit in it: icons at the left
/// end, the title centred in what remains, the mode button a square at the right end.
///
/// All lengths in scene units, all points in node coordinates; the header's top-left corner is (0,
/// 0).
///
/// Called by  OrvNgNodeHeader, with what it measured and the style's dimensions.
/// Uses       nothing.
/// Tells      nobody.
namespace OrvNgHeaderLayout {

/// What the header has to hold.
struct Contents
{
    QSizeF m_TitleSize;
    double m_EdgeSpan = 0.0; ///< as EdgeSpan measures it
    double m_InputPortsWidth = 0.0; ///< the least width of the input ports
    double m_OutputPortsWidth = 0.0; ///< the least width of the output ports
    double m_IconsWidth = 0.0; ///< of the visible icons together
    bool m_ButtonShown = false;
};

/// The style's part in it.
struct Dimensions
{
    double m_PaddingX = 0.0; ///< left and right of the title
    double m_PaddingY = 0.0; ///< above and below the title
    double m_IndentX = 0.0; ///< how far the outline's slanted ends reach in
    double m_MinimumWidth = 0.0;
    double m_MinimumHeight = 0.0;
};

struct Arrangement
{
    QSizeF m_Size;
    QRectF m_TextArea; ///< between icons and button
    QPointF m_TitlePos;
    QPointF m_ButtonPos;
};

Arrangement arrange(const Contents& contents, const Dimensions& dimensions);

/// How much width the attachment points of the shown input edges ask for, with room around each.
class EdgeSpan
{
public:
    void include(double attachmentX);
    double width() const { return m_Right - m_Left; }

private:
    double m_Left = 0.0;
    double m_Right = 0.0;
};

} // namespace OrvNgHeaderLayout
