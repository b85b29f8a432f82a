#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QGraphicsSimpleTextItem>

/// A text that is not drawn when the view is zoomed out so far that it could not be read. It keeps its
/// geometry. The threshold is the style's SceneLODSwitchThreshold at construction.
///
/// Called by  OrvNgNodeHeader, OrvNgPort, OrvNgEdge.
/// Uses       OrvNgStyle.
/// Tells      nobody.
class ORVNODEGRAPH_EXPORT OrvNgLodTextItem : public QGraphicsSimpleTextItem
{
public:
    explicit OrvNgLodTextItem(const QString& text, QGraphicsItem* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    /// Whether the text is large enough to be drawn at the painter's scale.
    bool isReadable(const QPainter* painter) const;

private:
    float m_LodThreshold;
};
