#include "OrvNodeGraph/OrvNgHeaderLayout.h"

#include <algorithm>

namespace {

constexpr double kPortListMargin = 5.0; // between the longest port text and the node's far side
constexpr double kRoomAroundEdge = 25.0;

} // namespace

OrvNgHeaderLayout::Arrangement OrvNgHeaderLayout::arrange(
    const Contents& contents, const Dimensions& dimensions)
{
    const QSizeF title = contents.m_TitleSize;
    const double middleWidth = std::max({contents.m_InputPortsWidth + kPortListMargin,
        contents.m_OutputPortsWidth + kPortListMargin, contents.m_EdgeSpan,
        2.0 * dimensions.m_PaddingX + title.width()});
    const double height
        = std::max(dimensions.m_MinimumHeight, 2.0 * dimensions.m_PaddingY + title.height());
    const double bareEnd = dimensions.m_IndentX * 0.5;
    const double leftEnd = std::max(contents.m_IconsWidth, bareEnd);
    const double rightEnd = contents.m_ButtonShown ? height : bareEnd; // the button is a square
    const double width = std::max(dimensions.m_MinimumWidth, leftEnd + middleWidth + rightEnd);

    Arrangement result;
    result.m_Size = QSizeF(width, height);
    result.m_TextArea = QRectF(leftEnd, 0.0, width - rightEnd - leftEnd, height);
    result.m_TitlePos
        = result.m_TextArea.center() - QPointF(title.width() * 0.5, title.height() * 0.5);
    result.m_ButtonPos = QPointF(width - height, 0.0);
    return result;
}

void OrvNgHeaderLayout::EdgeSpan::include(double attachmentX)
{
    m_Left = std::min(m_Left, attachmentX - kRoomAroundEdge);
    m_Right = std::max(m_Right, attachmentX + kRoomAroundEdge);
}
