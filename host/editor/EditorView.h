#pragma once

#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <OrvNodeGraph/OrvNgView.h>

/// The editor's view: zooms about the mouse, frames rectangles, and remembers where it looked.
///
/// Called by  EditorWindow.
/// Uses       OrvNgView.
/// Tells      the window the scale, through scaleChanged.
class EditorView : public OrvNgView
{
    Q_OBJECT

public:
    /// Where a view looks: its transform and the scene point at its centre.
    struct Look
    {
        QTransform transform;
        QPointF center;
    };

    explicit EditorView(QWidget* parent);

    /// Fits a scene rectangle with a margin, without magnifying beyond 125 %. Before the view is
    /// shown it is remembered and done then. A null rectangle is ignored.
    void frame(const QRectF& sceneRect);
    /// Looks at a point at a fixed scale (1 is 100 %).
    void lookAt(const QPointF& scenePos, double scale);

    Look look() const;
    void setLook(const Look& look);

    /// "Quill" or "Harbor": which buttons and modifiers pan and zoom.
    void setNavigationScheme(const QString& scheme) { m_NavigationScheme = scheme; }
    const QString& navigationScheme() const { return m_NavigationScheme; }

Q_SIGNALS:
    /// The scale of the last paint differs from the one before; 1 is 100 %.
    void scaleChanged(double scale);

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF m_FrameWhenShown;
    double m_PaintedScale = 0;
};
