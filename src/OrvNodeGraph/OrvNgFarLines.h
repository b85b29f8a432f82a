#pragma once

#include "OrvNodeGraph/OrvNgFarPictures.h"

#include <QColor>
#include <QRect>
#include <QVector>

class QImage;
class QPainter;
class QRegion;
struct OrvNgFarEdge;

/// Internal. Draws edges far out. A line thinner than a pixel becomes a chain of antialiased lines of one
/// pixel, as transparent as the line is thin. They are written into the picture's memory: the paint engine
/// makes an outline of each line and takes ten times as long.
///
/// Called by  OrvNgFarList, during one paint.
/// Uses       QPainter for what is not thin.
/// Tells      nobody.
class OrvNgFarLines
{
public:
    /// Draws into canvas, which painter paints on in viewport coordinates, within the pixels of clip.
    OrvNgFarLines(
        QPainter* painter, QImage* canvas, const QRegion& clip, const OrvNgFarPictures::Shot& shot);

    void draw(const OrvNgFarEdge& edge);

private:
    void drawThick(const OrvNgFarEdge& edge);
    void drawArrow(const OrvNgFarEdge& edge);
    void drawThin(const QVector<QPointF>& points, const QColor& color);
    void drawLine(const QPointF& from, const QPointF& to, const QRect& clip);
    void blend(quint32& pixel, quint32 light) const; ///< light in 1/256

    QPainter* const m_Painter;
    quint32* const m_Pixels;
    const int m_Stride; ///< pixels from one line of the canvas to the next
    QVector<QRect> m_Clip; ///< device pixels
    const OrvNgFarPictures::Shot& m_Shot;
    const QTransform m_ToPixels; ///< scene to device pixels
    const double m_Scale; ///< device pixels per scene unit
    quint32 m_Color = 0; ///< of the line that is drawn, premultiplied
};
