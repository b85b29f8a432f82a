#include "editor/EditorView.h"

namespace {

constexpr qreal kFrameMargin = 40; // scene units
constexpr qreal kLargestFrameScale = 1.25;

} // namespace

EditorView::EditorView(QWidget* parent)
    : OrvNgView(parent)
{
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setFrameShape(QFrame::NoFrame);
    // Files are dropped on the window.
    setAcceptDrops(false);
    viewport()->setAcceptDrops(false);
}

void EditorView::frame(const QRectF& sceneRect)
{
    if (sceneRect.isNull())
        return;
    if (!isVisible()) {
        m_FrameWhenShown = sceneRect;
        return;
    }
    const QRectF padded
        = sceneRect.adjusted(-kFrameMargin, -kFrameMargin, kFrameMargin, kFrameMargin);
    const QSizeF smallest = QSizeF(viewport()->size()) / kLargestFrameScale;
    QRectF target(QPointF(), padded.size().expandedTo(smallest));
    target.moveCenter(padded.center());
    fitInView(target, Qt::KeepAspectRatio);
}

void EditorView::lookAt(const QPointF& scenePos, double scale)
{
    setLook({QTransform::fromScale(scale, scale), scenePos});
}

EditorView::Look EditorView::look() const
{
    return {transform(), mapToScene(viewport()->rect()).boundingRect().center()};
}

void EditorView::setLook(const Look& look)
{
    m_FrameWhenShown = {};
    setTransform(look.transform);
    setNewSceneRect(look.center);
    // The first pass may have been held back by the old scene rectangle.
    setNewSceneRect(look.center);
}

void EditorView::showEvent(QShowEvent* event)
{
    OrvNgView::showEvent(event);
    const QRectF waiting = m_FrameWhenShown;
    m_FrameWhenShown = {};
    frame(waiting);
}

void EditorView::paintEvent(QPaintEvent* event)
{
    OrvNgView::paintEvent(event);
    const double scale = transform().m11();
    if (qFuzzyCompare(scale, m_PaintedScale))
        return;
    m_PaintedScale = scale;
    Q_EMIT scaleChanged(scale);
}
