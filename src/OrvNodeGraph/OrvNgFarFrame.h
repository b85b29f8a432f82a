#pragma once

#include "OrvNodeGraph/OrvNgFarList.h"
#include "OrvNodeGraph/OrvNgFarTiles.h"

#include <QImage>
#include <QMetaObject>
#include <QPainter>
#include <QPointer>

class QGraphicsView;

/// Internal. The items of a scene as a view last showed them from far away, without background and
/// foreground. From one paint to the next the picture is moved with the view, and only what has come into
/// view or has changed is painted anew.
///
/// What has changed is what QGraphicsScene::changed() names. That signal waits for the event loop; a paint
/// that comes earlier shows what was there before. A change that names no place (a deleted item), another scale
/// and forget() lead to a whole new picture.
///
/// Items that mix their colours with what lies below them meet only other items there.
///
/// The minimap is painted from the same list.
///
/// Called by  OrvNgView.
/// Uses       OrvNgFarList, OrvNgFarTiles.
/// Tells      nobody.
class OrvNgFarFrame
{
public:
    OrvNgFarFrame() = default;
    ~OrvNgFarFrame() { leave(); }
    Q_DISABLE_COPY(OrvNgFarFrame)

    /// Whether a view's transform is one that pictures can be made for.
    static bool suits(const QTransform& toView);

    /// Hears of the changes of the view's scene from now on. True if it did not do so before: a change of all
    /// that came earlier, and that no paint of the framework has seen since, would keep the scene from telling
    /// any other, so the framework then has to paint something, if only an empty region.
    bool follow(QGraphicsView* view);
    /// Brings the picture up to date with what has been heard. False: only the framework can paint the items, or
    /// the scene's signals are blocked.
    bool update(QGraphicsView* view);
    /// Draws the picture in viewport coordinates.
    void draw(QPainter* painter) const { painter->drawImage(QPointF(), m_Picture); }
    /// What items look like has changed in a way that no item tells: the next picture is a new one.
    void forget();
    /// Reads what of the followed scene is to be seen in a picture. toPicture maps the scene to the picture's
    /// logical pixels. False: only the framework can paint it.
    bool readOverview(const QImage& picture, const QTransform& toPicture);
    /// Paints it, onto what the picture holds.
    void paintOverview(QImage* picture, const QTransform& toPicture, QPainter::RenderHints hints);
    /// Gives up the picture until the next update().
    void forgetPicture();
    /// Gives up picture, list and scene until the next follow().
    void leave();

private:
    /// What a kept picture depends on, besides the scene and where the view has been scrolled to.
    struct Setting
    {
        QSize m_Size; ///< device pixels
        double m_PixelRatio = 1.0;
        double m_ScaleX = 0.0;
        double m_ScaleY = 0.0;
        QPainter::RenderHints m_Hints;
        bool operator==(const Setting& other) const;
    };

    void noteChanges(const QList<QRectF>& rects);
    void connectViews(const QList<QRectF>& rects);
    bool isEverything(const QList<QRectF>& rects) const;
    void updateViews();
    bool bringListUpToDate(const QTransform& toView);
    static Setting settingOf(const QGraphicsView& view);
    bool scrollTo(const QTransform& toView, QRegion& uncovered);
    void movePicture(int x, int y);
    void paint(const QRegion& pixels, const OrvNgFarPictures::Shot& shot);

    OrvNgFarList m_List;
    OrvNgFarPictures m_Pictures;
    OrvNgFarPictures m_OverviewPictures;
    QImage m_Picture;
    Setting m_Setting;
    QTransform m_ToView; ///< of the picture
    bool m_IsPictureValid = false;

    QPointer<QGraphicsScene> m_Scene; ///< whose changes are heard
    QMetaObject::Connection m_Hearing;
    QList<QGraphicsView*> m_ConnectedViews; ///< at the scene's last change; perhaps gone
    QVector<QRectF> m_Changed; ///< since the last update, scene coordinates
    bool m_IsAllChanged = true;
    quint64 m_RollChanges = 0; ///< OrvNgRollCall::changes() when the list was made
};
