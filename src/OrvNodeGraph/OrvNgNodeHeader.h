#pragma once

#include "OrvNodeGraph/OrvNgHeaderLayout.h"

#include <QBrush>
#include <QList>
#include <QString>

class OrvNgExtendedNode;
class OrvNgLodTextItem;
class OrvNgNodeHeaderButton;
class OrvNgSvgIconItem;
class QGraphicsEllipseItem;
class QGraphicsItem;

/// Internal. The items of an extended node's header: the title, the icons, the mode button and the
/// auto-insert marker. They are children of the node, which owns them; the header makes, measures and
/// places them.
///
/// Called by  OrvNgExtendedNode, which holds one and lays itself out after each change.
/// Uses       OrvNgHeaderLayout, OrvNgStyle.
/// Tells      nobody.
class OrvNgNodeHeader
{
public:
    explicit OrvNgNodeHeader(OrvNgExtendedNode& node);
    Q_DISABLE_COPY(OrvNgNodeHeader)

    OrvNgNodeHeaderButton& button() const { return *m_Button; }
    /// Finds the edge into which the dragged node would go; never shown.
    QGraphicsItem* autoInsertMarker() const;

    /// True when the title was another one.
    bool setTitle(const QString& title);
    void setTitleBrush(const QBrush& brush);

    /// Adds a hidden icon; the result is its index.
    int addIcon(const QString& svgName);
    /// True when the icon was shown or hidden by this; an unknown index is ignored.
    bool setIconVisible(bool visible, int index);
    /// Places the visible icons side by side, for an outline whose left end points outwards a
    /// little further in. Hidden ones keep their places.
    void placeIcons(bool outlineIsPointed);

    /// The arrangement for the present title, icons and button beside the given widths of edges and
    /// ports.
    OrvNgHeaderLayout::Arrangement arrange(
        double edgeSpan, double inputPortsWidth, double outputPortsWidth) const;
    /// Moves title, button and marker to their places.
    void place(const OrvNgHeaderLayout::Arrangement& arrangement);

private:
    double visibleIconsWidth() const;
    bool isShown(const QGraphicsItem& item) const;

    OrvNgExtendedNode& m_Node;
    OrvNgLodTextItem* const m_Title;
    QGraphicsEllipseItem* const m_AutoInsertMarker;
    OrvNgNodeHeaderButton* const m_Button;
    QList<OrvNgSvgIconItem*> m_Icons; ///< from left to right
    QSizeF m_Size;
};
