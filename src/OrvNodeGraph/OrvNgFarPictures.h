#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QPixmap>
#include <QPointF>
#include <QTransform>

class OrvNgExtendedNode;
class QPainter;
class QWidget;

/// Internal. Paints nodes at the present scale. Those that look alike share small pictures: one for each
/// look, width and place within a pixel, the latter two in quarters of a pixel. A look that few nodes have
/// is painted each time, as long as the scale is not so small that its parts get lost between the pixels.
///
/// Called by  OrvNgFarList, for nodes that have a look of OrvNgFarLooks.
/// Uses       the nodes and ports, which paint themselves.
/// Tells      nobody.
class OrvNgFarPictures
{
public:
    /// What one paint has in common. The painter's own transform is the identity.
    struct Shot
    {
        QTransform m_ToView; ///< scene to viewport: scales and moves only
        double m_PixelRatio = 1.0;
        QWidget* m_Viewport = nullptr;
    };

    /// Begins to paint; pictures of another scale are dropped.
    void begin(const Shot& shot);
    void clear();
    /// topLeft is that of the node's bounds in scene coordinates, width theirs; look is the node's, and uses
    /// says how many have it.
    void draw(QPainter* painter, OrvNgExtendedNode& node, int look, int uses,
        const QPointF& topLeft, double width);

private:
    bool isShared(const OrvNgExtendedNode& node, int look, int uses);
    void paintNode(QPainter* painter, OrvNgExtendedNode& node, const QPointF& corner) const;
    QPixmap make(OrvNgExtendedNode& node, quint64 key, int phaseX, int phaseY);
    QPixmap toPixmap(const QImage& image) const;
    QImage paintLarge(OrvNgExtendedNode& node) const;

    Shot m_Shot;
    double m_ScaleX = 0.0; ///< of the pictures, device pixels per scene unit
    double m_ScaleY = 0.0;
    QHash<int, bool>
        m_IsShared; ///< by look; kept, so that a node is painted in one way at this scale
    QHash<quint64, QPixmap> m_Pictures;
    qint64 m_Pixels = 0; ///< in all pictures
    QCache<quint64, QImage> m_Large{4 * 1024 * 1024}; ///< four times the size; the cost is pixels
};
