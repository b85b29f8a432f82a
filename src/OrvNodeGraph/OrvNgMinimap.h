#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

#include <functional>

class QColor;
class QPainter;
class QTransform;

/// Where a minimap lies and what it shows.
struct OrvNgMinimapFrame
{
    /// In the viewport's bottom right corner, a fifth of the view in both directions. Empty for a view
    /// lower than 5 pixels.
    static QSize sizeFor(const QSize& viewSize);
    /// bounds are those of the nodes in scene coordinates. An extent of 0 counts as 1; so does aspect,
    /// which is width divided by height.
    OrvNgMinimapFrame(
        const QSize& viewSize, const QSize& viewportSize, const QRectF& bounds, double aspect);

    /// The scene point at a point of the viewport.
    QPointF toScene(const QPoint& viewPos) const;
    /// The part of the minimap that a scene rectangle covers, in viewport pixels; null if none.
    QRect toViewport(const QRectF& sceneRect) const;

    QRect m_Rect; ///< viewport pixels
    QRectF m_Bounds; ///< scene coordinates, shown from the top left corner on
    double m_UnitsPerHeight = 1.0; ///< scene units that the height of m_Rect shows
};

/// Internal. The small picture of all nodes in a corner of the view, with a frame around the part that
/// the view shows. The picture is kept: it is rendered anew when it is stale or its size has changed,
/// and once in a hundred paints for the sake of changes that nobody tells.
///
/// Called by  OrvNgView, which paints the items for it.
/// Uses       QPainter.
/// Tells      nobody; items ask OrvNgView::isMinimapRendering() while they are painted here.
class OrvNgMinimap
{
public:
    /// Paints the scene into a picture; the transform leads from the scene to its logical pixels.
    using PaintScene = std::function<void(QImage*, const QTransform&)>;

    void markStale() { m_PaintsSinceRender = kStale; }
    /// The scene's items are being painted into the picture.
    bool isRendering() const { return m_IsRendering; }
    /// Paints into the viewport's coordinates. visible is the part of the scene that the view shows.
    void paint(QPainter* painter, const OrvNgMinimapFrame& frame, const PaintScene& paintScene,
        const QRectF& visible, const QColor& background, double pixelRatio);

private:
    static constexpr int kStale = 99;

    void render(const PaintScene& paintScene, const OrvNgMinimapFrame& frame,
        const QColor& background, double pixelRatio);

    QImage m_Picture;
    int m_PaintsSinceRender = kStale;
    bool m_IsRendering = false;
};
