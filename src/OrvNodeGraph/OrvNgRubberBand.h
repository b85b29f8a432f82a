#pragma once

#include <QPoint>
#include <QRect>
#include <QRegion>

class QPainter;
class QWidget;

/// Internal. The rectangle that the user draws from a press on empty space, in viewport pixels. It is
/// armed by the press, and active once the cursor has gone far enough to mean it.
///
/// Called by  OrvNgView.
/// Uses       the widget's style, to paint.
/// Tells      nobody.
class OrvNgRubberBand
{
public:
    bool isArmed() const { return m_IsArmed; }
    bool isActive() const { return m_IsActive; }
    /// Null until follow() has been called on an active band. Both ends are inside.
    const QRect& rect() const { return m_Rect; }

    void arm(const QPoint& viewPos);
    /// Whether the band is active with the cursor there; once it is, it stays so.
    bool activate(const QPoint& viewPos);
    /// False when the rectangle does not change.
    bool follow(const QPoint& viewPos);
    void clear();

    /// The part of a rectangle that a band of that size covers in the widget's style.
    static QRegion region(const QRect& rect, const QWidget* viewport);
    void paint(QPainter* painter, const QWidget* viewport) const;

private:
    bool m_IsArmed = false;
    bool m_IsActive = false;
    QPoint m_PressPos;
    QRect m_Rect;
};
