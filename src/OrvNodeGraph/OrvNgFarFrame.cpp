#include "OrvNodeGraph/OrvNgFarFrame.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsView>

#include <cmath>
#include <cstring>

namespace {

constexpr int kTile = 64; // device pixels
constexpr int kMostChanges = 50000; // rectangles; beyond that all counts as changed
constexpr double kSpareReach = 2.0; // zooming out so far needs no other list
constexpr double kPlacesPerPixel = 1024.0;

/// The transform with its offset rounded, so that pictures of one scale differ by exactly what was
/// scrolled.
QTransform rounded(const QTransform& toView)
{
    const auto round
        = [](double offset) { return std::round(offset * kPlacesPerPixel) / kPlacesPerPixel; };
    return QTransform(toView.m11(), 0.0, 0.0, toView.m22(), round(toView.dx()), round(toView.dy()));
}

QRectF grown(const QRectF& rect, double margin)
{
    return rect.adjusted(-margin, -margin, margin, margin);
}

/// What of the scene may be seen.
QRectF sceneRectOf(const OrvNgFarPictures::Shot& shot)
{
    return shot.m_ToView.inverted().mapRect(
        grown(QRectF(shot.m_Viewport->rect()), OrvNgFarList::kMargin));
}

/// The tiles of the picture in which the scene has changed.
QRegion changedPixels(
    const QVector<QRectF>& changed, const OrvNgFarPictures::Shot& shot, const QSize& size)
{
    const int columns = (size.width() + kTile - 1) / kTile;
    const int rows = (size.height() + kTile - 1) / kTile;
    OrvNgFarTiles tiles(QRectF(0, 0, columns * kTile, rows * kTile), columns, rows);
    for (const QRectF& rect : changed) {
        const QRectF inView = grown(shot.m_ToView.mapRect(rect), OrvNgFarList::kMargin + 2.0);
        tiles.mark(QRectF(inView.topLeft() * shot.m_PixelRatio, inView.size() * shot.m_PixelRatio));
    }
    return tiles.region() & QRect(QPoint(), size);
}

} // namespace

bool OrvNgFarFrame::Setting::operator==(const Setting& other) const
{
    return m_Size == other.m_Size && m_PixelRatio == other.m_PixelRatio
        && m_ScaleX == other.m_ScaleX && m_ScaleY == other.m_ScaleY && m_Hints == other.m_Hints;
}

bool OrvNgFarFrame::suits(const QTransform& toView)
{
    return toView.type() <= QTransform::TxScale && toView.m11() > 0.0 && toView.m22() > 0.0;
}

void OrvNgFarFrame::forget()
{
    m_IsAllChanged = true;
    m_IsPictureValid = false;
    m_List.clear();
    m_Pictures.clear();
    m_OverviewPictures.clear();
}

void OrvNgFarFrame::forgetPicture()
{
    m_IsPictureValid = false;
    m_Picture = QImage();
    m_Pictures.clear();
}

void OrvNgFarFrame::leave()
{
    QObject::disconnect(m_Hearing);
    m_Scene.clear();
    m_ConnectedViews.clear();
    m_Changed.clear();
    forget();
    forgetPicture();
}

bool OrvNgFarFrame::follow(QGraphicsView* view)
{
    if (m_Scene == view->scene())
        return false;
    leave();
    m_Scene = view->scene();
    m_Hearing = QObject::connect(
        m_Scene.data(), &QGraphicsScene::changed, view, [this](const QList<QRectF>& rects) {
            noteChanges(rects);
            connectViews(rects);
            if (isEverything(rects))
                updateViews();
        });
    return true;
}

/// While somebody hears of a scene's changes, its views are told of them by the same signal. Of several views whose
/// scene is deleted the framework forgets to disconnect every other one, and so never connects it to its next scene.
void OrvNgFarFrame::connectViews(const QList<QRectF>& rects)
{
    const QList<QGraphicsView*> views = m_Scene->views();
    if (views == m_ConnectedViews)
        return;
    m_ConnectedViews = views;
    for (QGraphicsView* each : views) {
        if (QObject::connect(m_Scene, SIGNAL(changed(QList<QRectF>)), each,
                SLOT(updateScene(QList<QRectF>)), Qt::UniqueConnection))
            each->updateScene(rects);
    }
}

/// The scene's whole rectangle stands for changes whose place is not known.
bool OrvNgFarFrame::isEverything(const QList<QRectF>& rects) const
{
    return rects.size() == 1 && rects.constFirst() == m_Scene->sceneRect();
}

/// That rectangle does not hold what has just left the scene, which views were told of in another way if nobody
/// heard of the scene's changes.
void OrvNgFarFrame::updateViews()
{
    const QList<QGraphicsView*> views = m_Scene->views();
    for (QGraphicsView* each : views)
        each->viewport()->update();
}

void OrvNgFarFrame::noteChanges(const QList<QRectF>& rects)
{
    if (m_IsAllChanged)
        return;
    if (isEverything(rects) || m_Changed.size() + rects.size() > kMostChanges) {
        m_IsAllChanged = true;
        m_Changed.clear();
        return;
    }
    for (const QRectF& rect : rects)
        m_Changed.append(rect);
}

bool OrvNgFarFrame::update(QGraphicsView* view)
{
    if (m_Scene->signalsBlocked()) {
        leave();
        return false;
    }
    OrvNgFarPictures::Shot shot;
    shot.m_ToView = rounded(view->viewportTransform());
    shot.m_Viewport = view->viewport();
    shot.m_PixelRatio = shot.m_Viewport->devicePixelRatioF();
    const Setting setting = settingOf(*view);
    const QVector<QRectF> changes = m_Changed;
    const bool isListNew = !bringListUpToDate(shot.m_ToView);
    const bool isPaintable = m_List.read(sceneRectOf(shot));
    const QRegion changed = isListNew ? QRegion() : changedPixels(changes, shot, setting.m_Size);

    QRegion uncovered;
    const bool isKept = m_IsPictureValid && isPaintable && !isListNew && setting == m_Setting
        && scrollTo(shot.m_ToView, uncovered);
    m_IsPictureValid = isPaintable;
    m_Setting = setting;
    m_ToView = shot.m_ToView;
    if (isPaintable)
        paint(isKept ? changed | uncovered : QRegion(QRect(QPoint(), setting.m_Size)), shot);
    return isPaintable;
}

/// False when it had to be made anew.
bool OrvNgFarFrame::bringListUpToDate(const QTransform& toView)
{
    const double reach = OrvNgFarList::kMargin / qMin(toView.m11(), toView.m22());
    const bool holds = !m_IsAllChanged && m_RollChanges == OrvNgRollCall::changes()
        && m_List.suffices(reach) && m_List.areOthersThere(m_Scene)
        && (m_Changed.isEmpty() || m_List.refresh(m_Scene, m_Changed));
    if (!holds && !m_List.call(m_Scene, kSpareReach * reach)) {
        m_Pictures.clear();
        m_OverviewPictures.clear();
    }
    m_RollChanges = OrvNgRollCall::changes();
    m_IsAllChanged = false;
    m_Changed.clear();
    return holds;
}

bool OrvNgFarFrame::readOverview(const QImage& picture, const QTransform& toPicture)
{
    bringListUpToDate(toPicture);
    const QRectF area(QPointF(), QSizeF(picture.size()) / picture.devicePixelRatioF());
    return m_List.read(toPicture.inverted().mapRect(grown(area, OrvNgFarList::kMargin)));
}

void OrvNgFarFrame::paintOverview(
    QImage* picture, const QTransform& toPicture, QPainter::RenderHints hints)
{
    OrvNgFarPictures::Shot shot;
    shot.m_ToView = toPicture;
    shot.m_PixelRatio = picture->devicePixelRatioF();
    QPainter painter(picture);
    painter.setRenderHints(hints);
    m_List.paint(&painter, picture, shot, picture->rect(), m_OverviewPictures);
}

OrvNgFarFrame::Setting OrvNgFarFrame::settingOf(const QGraphicsView& view)
{
    const QTransform toView = view.viewportTransform();
    Setting setting;
    setting.m_PixelRatio = view.viewport()->devicePixelRatioF();
    setting.m_Size = (QSizeF(view.viewport()->size()) * setting.m_PixelRatio).toSize();
    setting.m_ScaleX = toView.m11();
    setting.m_ScaleY = toView.m22();
    setting.m_Hints = view.renderHints();
    return setting;
}

/// Moves the picture to where its items now lie. False where that is not a matter of whole pixels.
bool OrvNgFarFrame::scrollTo(const QTransform& toView, QRegion& uncovered)
{
    const double x = (toView.dx() - m_ToView.dx()) * m_Setting.m_PixelRatio;
    const double y = (toView.dy() - m_ToView.dy()) * m_Setting.m_PixelRatio;
    if (x != std::round(x) || y != std::round(y) || std::abs(x) >= m_Setting.m_Size.width()
        || std::abs(y) >= m_Setting.m_Size.height())
        return false;
    movePicture(int(x), int(y));
    const QRect all(QPoint(), m_Setting.m_Size);
    uncovered = QRegion(all).subtracted(all.translated(int(x), int(y)));
    return true;
}

/// By device pixels to the right and down. What is uncovered keeps what was there.
void OrvNgFarFrame::movePicture(int x, int y)
{
    if (x == 0 && y == 0)
        return;
    const int rows = m_Picture.height() - std::abs(y);
    const size_t length = size_t(m_Picture.width() - std::abs(x)) * sizeof(QRgb);
    for (int i = 0; i < rows; ++i) {
        const int row = y > 0 ? rows - 1 - i : i; // no row is overwritten before it has moved
        const uchar* from = m_Picture.constScanLine(row + qMax(0, -y));
        uchar* to = m_Picture.scanLine(row + qMax(0, y));
        std::memmove(to + size_t(qMax(0, x)) * sizeof(QRgb),
            from + size_t(qMax(0, -x)) * sizeof(QRgb), length);
    }
}

void OrvNgFarFrame::paint(const QRegion& pixels, const OrvNgFarPictures::Shot& shot)
{
    if (pixels.isEmpty())
        return;
    const double ratio = shot.m_PixelRatio;
    if (m_Picture.size() != m_Setting.m_Size || m_Picture.devicePixelRatioF() != ratio) {
        m_Picture = QImage(m_Setting.m_Size, QImage::Format_ARGB32_Premultiplied);
        m_Picture.setDevicePixelRatio(ratio);
    }
    QPainter painter(&m_Picture);
    painter.setRenderHints(m_Setting.m_Hints);
    painter.setWorldTransform(QTransform::fromScale(1.0 / ratio, 1.0 / ratio));
    painter.setClipRegion(pixels);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillRect(pixels.boundingRect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.resetTransform();
    m_List.paint(&painter, &m_Picture, shot, pixels, m_Pictures);
}
