// What the view paints and when: partly near by, from a kept picture far out, and what lies above the scene.
#include "OrvNodeGraph/OrvNgCursorPath.h"
#include "OrvNodeGraph/OrvNgFarFrame.h"
#include "OrvNodeGraph/OrvNgGrid.h"
#include "OrvNodeGraph/OrvNgMinimap.h"
#include "OrvNodeGraph/OrvNgPartialUpdates.h"
#include "OrvNodeGraph/OrvNgRubberBand.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgView.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QBackingStore>
#include <QGraphicsScene>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>
#include <typeinfo>

namespace {

constexpr int kMinimapDarkening = 130; // percent
constexpr double kSeverPathWidth = 1.0; // viewport pixels
constexpr int kOutlineReach = 4; // viewport pixels: how far items paint beyond their bounds
constexpr double kFarthestReach = 1e6; // viewport pixels

} // namespace

void OrvNgView::setGridEnabled(bool Enabled)
{
    if (m_GridEnabled == Enabled)
        return;
    m_GridEnabled = Enabled;
    refreshBackground();
}

void OrvNgView::refreshBackground()
{
    m_Minimap->markStale();
    spareWidgetBackground();
    // The scene's updates end where its items do while somebody hears of its changes.
    viewport()->update();
    if (scene())
        scene()->update();
}

void OrvNgView::paintEvent(QPaintEvent* event)
{
    m_OnePixelInSceneSpace = calcOnePixelInSceneSpace();
    m_PartialUpdates->follow(scene());
    const bool far = isFar(viewportTransform());
    if (!far || !updateFarPicture())
        paintNear(event);
    else
        paintFar(event);
    if (drawingEdgeSeverPath())
        paintSeverPath();
    if (m_Band->isActive())
        paintBand();
    m_MinimapShown = shouldDisplayMinimap() && !minimapRect().isEmpty();
    if (m_MinimapShown) {
        m_MinimapPainted = minimapArea();
        paintMinimap();
    }
    if (!far)
        m_Far->leave(); // near by, and after the minimap, nothing has to be heard
}

/// From the next paint on, the viewport is not filled with what nobody will see.
void OrvNgView::spareWidgetBackground()
{
    const bool isCovered
        = paintsOnlyScene() && OrvNgStyle::instance().getSceneBackgroundBrush().isOpaque();
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent, isCovered);
}

bool OrvNgView::paintsOnlyScene() const
{
    return typeid(*this) == typeid(OrvNgView);
}

bool OrvNgView::canPaintPartly() const
{
    // Far out a picture is kept, and what Qt has noted of where it painted items does not hold.
    return paintsOnlyScene() && viewportUpdateMode() == QGraphicsView::FullViewportUpdate
        && cacheMode() == QGraphicsView::CacheNone && !isFar(viewportTransform());
}

void OrvNgView::scrollContentsBy(int dx, int dy)
{
    // A jump leaves none of them in sight, and may be as far as numbers go.
    const QSize size = viewport()->size();
    const bool isJump = qAbs(qint64(dx)) >= size.width() || qAbs(qint64(dy)) >= size.height();
    if (!isJump && canMovePixels())
        movePixels(dx, dy);
    else
        QGraphicsView::scrollContentsBy(dx, dy);
}

/// Not while something is drawn that stays in its place or hangs on the cursor, nor where a step is a part of a
/// pixel of the screen. Children of the viewport would move as well.
bool OrvNgView::canMovePixels() const
{
    const double ratio = viewport()->devicePixelRatioF();
    return canPaintPartly() && ratio == std::floor(ratio) && !m_Band->isActive()
        && !drawingEdgeSeverPath() && viewport()->children().isEmpty();
}

/// How far a grid line reaches into what lies beside it, scene units.
double OrvNgView::gridReach() const
{
    const double pixel = m_OnePixelInSceneSpace;
    const double width = OrvNgStyle::instance().getGridPen().widthF();
    return m_GridEnabled ? 0.5 * width * qMax(1.0, pixel) + pixel : 0.0;
}

/// The base class moves the pixels and repaints what is uncovered when it is not to repaint everything. Items may
/// paint a little beyond their bounds, so some of what has been there before is repainted as well; and where a grid
/// line crosses the border of the view, because it is drawn only while its middle is in sight.
void OrvNgView::movePixels(int dx, int dy)
{
    setViewportUpdateMode(QGraphicsView::MinimalViewportUpdate);
    QGraphicsView::scrollContentsBy(dx, dy);
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate);

    const QRect area = viewport()->rect();
    const QRect moved = area.translated(dx, dy).adjusted(dx > 0 ? kOutlineReach : 0,
        dy > 0 ? kOutlineReach : 0, dx < 0 ? -kOutlineReach : 0, dy < 0 ? -kOutlineReach : 0);
    const int reach = int(qMin(std::ceil(gridReach() / m_OnePixelInSceneSpace), kFarthestReach));
    const int x = dx != 0 ? reach : 0;
    const int y = dy != 0 ? reach : 0;
    viewport()->update(QRegion(area) - (moved & area.adjusted(x, y, -x, -y)));
    if (m_MinimapShown) {
        m_MinimapPainted.translate(dx, dy);
        viewport()->update(m_MinimapPainted);
        viewport()->update(minimapArea());
    }
    if (m_MinimapShown != shouldDisplayMinimap())
        viewport()->update();
}

/// Whether the view paints the items itself. Where it could not do so as the base class does, or not into
/// memory, the base class goes on.
bool OrvNgView::isFar(const QTransform& toView) const
{
    return scene() && OrvNgFarFrame::suits(toView)
        && QStyleOptionGraphicsItem::levelOfDetailFromTransform(toView) <= m_FarScale
        && cacheMode() == CacheNone && !(optimizationFlags() & IndirectPainting)
        && dragMode() != RubberBandDrag && !viewport()->inherits("QOpenGLWidget")
        && !viewport()->inherits("QGLWidget");
}

/// Whether the viewport's paint goes to the window and not into a picture for somebody else.
bool OrvNgView::isPaintingOnScreen() const
{
    const QPainter painter(viewport());
    QBackingStore* const store = window()->backingStore();
    return store && painter.paintEngine()
        && painter.paintEngine()->paintDevice() == store->paintDevice();
}

/// On the screen the picture follows what the scene tells in the event loop, a turn later. Who takes a picture
/// of the view wants it as the scene is now, and what is followed for the first time is new anyway.
bool OrvNgView::updateFarPicture()
{
    if (m_Far->follow(this)) {
        QPaintEvent nothing{QRegion()};
        QGraphicsView::paintEvent(&nothing);
    } else if (!isPaintingOnScreen()) {
        m_Far->forget();
    }
    return m_Far->update(this);
}

/// Outlines reach further beyond the bounds of their items than the framework reckons with, and so into what is
/// exposed beside them. What is painted outside of that stays clipped.
void OrvNgView::paintNear(const QPaintEvent* event)
{
    QRegion reached;
    for (const QRect& rect : event->region())
        reached += rect.adjusted(-1, -1, 1, 1);
    QPaintEvent widened(reached & viewport()->rect());
    QGraphicsView::paintEvent(&widened);
}

/// The base class's paint, with the kept picture in place of the items.
void OrvNgView::paintFar(const QPaintEvent* event)
{
    const QRectF exposed = mapToScene(event->region().boundingRect()).boundingRect();
    QPainter painter(viewport());
    if (!painter.isActive())
        return;
    painter.setRenderHints(painter.renderHints(), false);
    painter.setRenderHints(renderHints(), true);
    painter.setWorldTransform(viewportTransform());
    painter.save();
    drawBackground(&painter, exposed);
    painter.restore();
    painter.save();
    painter.resetTransform();
    m_Far->draw(&painter);
    painter.restore();
    drawForeground(&painter, exposed);
}

/// Fonts, colours and the widget style belong to what items paint with.
void OrvNgView::changeEvent(QEvent* event)
{
    QGraphicsView::changeEvent(event);
    m_Far->forget();
}

void OrvNgView::paintSeverPath()
{
    if (m_Path->points().size() < 2)
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(OrvNgStyle::instance().getSeveredEdgeColor(), kSeverPathWidth));
    painter.drawPath(cursorPainterPath(m_Path->points(), true));
}

void OrvNgView::paintBand()
{
    QPainter painter(viewport());
    m_Band->paint(&painter, viewport());
}

void OrvNgView::paintMinimap()
{
    if (m_Minimap->isRendering())
        return;
    QPainter painter(viewport());
    QColor background
        = OrvNgStyle::instance().getSceneBackgroundColor().toQColor().darker(kMinimapDarkening);
    background.setAlpha(255);
    const auto paintScene = [this](QImage* picture, const QTransform& toPicture) {
        paintOverview(picture, toPicture);
    };
    m_Minimap->paint(&painter, minimapFrame(), paintScene, viewportInSceneCoords(), background,
        viewport()->devicePixelRatioF());
}

/// As the scene renders itself, from the list of the far picture where that is possible.
void OrvNgView::paintOverview(QImage* picture, const QTransform& toPicture)
{
    const QRectF target(QPointF(), QSizeF(picture->size()) / picture->devicePixelRatioF());
    const QRectF source = toPicture.inverted().mapRect(target);
    bool far = isFar(toPicture) && backgroundBrush().style() == Qt::NoBrush
        && foregroundBrush().style() == Qt::NoBrush;
    if (far) {
        m_Far->follow(this);
        far = m_Far->readOverview(*picture, toPicture);
    }
    QPainter painter(picture);
    painter.setRenderHints(renderHints());
    if (!far) {
        scene()->render(&painter, target, source);
        return;
    }
    painter.setWorldTransform(toPicture);
    QGraphicsView::drawBackground(&painter, source); // without brushes of its own: the scene's
    painter.end();
    m_Far->paintOverview(picture, toPicture, renderHints());
    painter.begin(picture);
    painter.setWorldTransform(toPicture);
    QGraphicsView::drawForeground(&painter, source);
}

void OrvNgView::updateViewportRect(const QRect& rect)
{
    if (!rect.isValid() || viewportUpdateMode() == QGraphicsView::NoViewportUpdate)
        return;
    if (viewportUpdateMode() == QGraphicsView::FullViewportUpdate && !canPaintPartly())
        viewport()->update();
    else
        viewport()->update(OrvNgRubberBand::region(rect, viewport()));
}

void OrvNgView::drawBackground(QPainter* painter, const QRectF& rect)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    if (!m_GridEnabled) {
        painter->fillRect(rect, style.getSceneBackgroundBrush());
        return;
    }
    const auto* network = OrvShaderNetworkManager::instance();
    const double reach = gridReach();
    const QRectF whole = viewportInSceneCoords();
    const QRectF exposed = (rect.adjusted(-reach, -reach, reach, reach) & whole) | rect;
    m_Grid->paint(painter, exposed, QSize(network->gridWidth(), network->gridHeight()),
        style.getGridPen(), style.getSceneBackgroundBrush());
}

/// Items read some of the style while they paint, so whatever changes there may be seen in them. They keep
/// the threshold of the time at which they were made, hence the lowest counts.
void OrvNgView::watchStyle()
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    m_FarScale = double(style.getSceneLODSwitchThreshold());
    const QMetaObject* const properties = style.metaObject();
    const QMetaMethod hear = metaObject()->method(metaObject()->indexOfSlot("forgetFarPicture()"));
    for (int i = properties->propertyOffset(); i < properties->propertyCount(); ++i) {
        if (properties->property(i).hasNotifySignal())
            connect(&style, properties->property(i).notifySignal(), this, hear);
    }
    connect(&style, &OrvNgStyle::colorsUpdated, this, &OrvNgView::forgetFarPicture);
}

void OrvNgView::forgetFarPicture()
{
    m_FarScale = qMin(m_FarScale, double(OrvNgStyle::instance().getSceneLODSwitchThreshold()));
    m_Far->forget();
}
