#include "OrvNodeGraph/OrvNgNodeHeader.h"

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgSvgIconItem.h"

#include <QGraphicsEllipseItem>
#include <QPen>

namespace {

constexpr double kIconMarginOfHeight = 0.1;

OrvNgHeaderLayout::Dimensions styleDimensions()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    OrvNgHeaderLayout::Dimensions dimensions;
    dimensions.m_PaddingX = static_cast<double>(style.getNodeTextPaddingX());
    dimensions.m_PaddingY = static_cast<double>(style.getNodeTextPaddingY());
    dimensions.m_IndentX = static_cast<double>(style.getNodeShapeIndentX());
    dimensions.m_MinimumWidth = static_cast<double>(style.getMinimumNodeWidth());
    dimensions.m_MinimumHeight = static_cast<double>(style.getNodeHeight());
    return dimensions;
}

/// Knows its bounds without stroking its outline, as Qt would for every node.
class AutoInsertMarker : public QGraphicsEllipseItem
{
public:
    using QGraphicsEllipseItem::QGraphicsEllipseItem;
    QRectF boundingRect() const override
    {
        const double half = pen().style() == Qt::NoPen ? 0.0 : pen().widthF() * 0.5;
        return rect().adjusted(-half, -half, half, half);
    }
};

QGraphicsEllipseItem* newAutoInsertMarker(QGraphicsItem* parent)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    const int width = static_cast<int>(style.getAutoInsertItemWidth());
    const int height = static_cast<int>(style.getAutoInsertItemHeight());
    auto* marker
        = new AutoInsertMarker(QRectF(QRect(-width / 2, -height / 2, width, height)), parent);
    marker->setVisible(false);
    return marker;
}

} // namespace

OrvNgNodeHeader::OrvNgNodeHeader(OrvNgExtendedNode& node)
    : m_Node(node)
    , m_Title(new OrvNgLodTextItem(QStringLiteral("Text Node Test"), &node))
    , m_AutoInsertMarker(newAutoInsertMarker(&node))
    , m_Button(new OrvNgNodeHeaderButton(&node))
{
    m_Title->setBrush(OrvNgStyle::instance().getNodeTextBrush());
}

QGraphicsItem* OrvNgNodeHeader::autoInsertMarker() const
{
    return m_AutoInsertMarker;
}

bool OrvNgNodeHeader::isShown(const QGraphicsItem& item) const
{
    return item.isVisibleTo(&m_Node);
}

bool OrvNgNodeHeader::setTitle(const QString& title)
{
    if (title == m_Title->text())
        return false;
    m_Title->setText(title);
    return true;
}

void OrvNgNodeHeader::setTitleBrush(const QBrush& brush)
{
    if (m_Title->brush() != brush)
        m_Title->setBrush(brush);
}

int OrvNgNodeHeader::addIcon(const QString& svgName)
{
    auto* icon = new OrvNgSvgIconItem(svgName, &m_Node);
    icon->setVisible(false);
    m_Icons.append(icon);
    return m_Icons.size() - 1;
}

bool OrvNgNodeHeader::setIconVisible(bool visible, int index)
{
    if (index < 0 || index >= m_Icons.size())
        return false;
    OrvNgSvgIconItem* icon = m_Icons.at(index);
    if (isShown(*icon) == visible)
        return false;
    icon->setVisible(visible);
    return true;
}

void OrvNgNodeHeader::placeIcons(bool outlineIsPointed)
{
    const int height = static_cast<int>(m_Size.height());
    const int margin = static_cast<int>(height * kIconMarginOfHeight);
    const int side = height - 2 * margin;
    int x = outlineIsPointed ? 2 * margin : margin;
    for (OrvNgSvgIconItem* icon : qAsConst(m_Icons)) {
        if (!isShown(*icon))
            continue;
        icon->setRect(QRectF(x, margin, side, side));
        x += side;
    }
}

double OrvNgNodeHeader::visibleIconsWidth() const
{
    double width = 0.0;
    for (const OrvNgSvgIconItem* icon : m_Icons) {
        if (isShown(*icon))
            width += icon->boundingRect().width();
    }
    return width;
}

OrvNgHeaderLayout::Arrangement OrvNgNodeHeader::arrange(
    double edgeSpan, double inputPortsWidth, double outputPortsWidth) const
{
    OrvNgHeaderLayout::Contents contents;
    contents.m_TitleSize = m_Title->boundingRect().size();
    contents.m_EdgeSpan = edgeSpan;
    contents.m_InputPortsWidth = inputPortsWidth;
    contents.m_OutputPortsWidth = outputPortsWidth;
    contents.m_IconsWidth = visibleIconsWidth();
    contents.m_ButtonShown = isShown(*m_Button);
    return OrvNgHeaderLayout::arrange(contents, styleDimensions());
}

void OrvNgNodeHeader::place(const OrvNgHeaderLayout::Arrangement& arrangement)
{
    m_Size = arrangement.m_Size;
    m_Title->setPos(arrangement.m_TitlePos);
    m_Button->setSide(m_Size.height());
    m_Button->setPos(arrangement.m_ButtonPos);
    m_AutoInsertMarker->setPos(m_Size.width() * 0.5, m_Size.height() * 0.5);
}
