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
class QGraphicsWidget;

/// Internal. The items of an extended node's header: its widget with the title, the icons, the mode
/// button and the auto-insert marker. The items belong to the node; the header makes, measures and
/// places them.
///
/// Called by  OrvNgExtendedNode, which holds one and lays itself out after each change.
/// Uses       OrvNgHeaderLayout, OrvNgStyle.
/// Tells      nobody.
class OrvNgNodeHeader
{
public:
    /// The header's widget becomes a child of mainWidget, which is the node's.
    OrvNgNodeHeader(OrvNgExtendedNode& node, QGraphicsWidget& mainWidget);
    Q_DISABLE_COPY(OrvNgNodeHeader)

    QGraphicsWidget& widget() const { return *m_Widget; }
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
    void resizeWidget(const QSizeF& size);
    /// Moves title, button and marker to their places in a widget that has its size already.
    void place(const OrvNgHeaderLayout::Arrangement& arrangement);

private:
    double visibleIconsWidth() const;
    bool isShown(const QGraphicsItem& item) const;

    OrvNgExtendedNode& m_Node;
    QGraphicsWidget* const m_Widget;
    OrvNgLodTextItem* const m_Title;
    QGraphicsEllipseItem* const m_AutoInsertMarker;
    OrvNgNodeHeaderButton* const m_Button;
    QList<OrvNgSvgIconItem*> m_Icons; ///< from left to right
};
