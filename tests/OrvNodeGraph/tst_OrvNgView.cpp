#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QPainter>

namespace {

void setGrid(const QColor& color, int spacing)
{
    QPen pen = OrvNgStyle::instance().getGridPen();
    pen.setColor(color);
    pen.setWidth(1);
    OrvNgStyle::instance().setGridPen(pen);
    OrvShaderNetworkManager::instance()->setGridWidth(spacing);
    OrvShaderNetworkManager::instance()->setGridHeight(spacing);
}

template <typename Draw> QImage picture(double scale, double left, double ratio, const Draw& draw)
{
    QImage image(1200, 700, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::magenta);
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setWorldTransform(QTransform(scale, 0, 0, scale, left, -71.6 / ratio));
    const QRectF all(0, 0, 1200 / ratio, 700 / ratio);
    draw(&painter, painter.worldTransform().inverted().mapRect(all));
    return image;
}

void drawLineByLine(QPainter* painter, const QRectF& rect)
{
    const int spacing = OrvShaderNetworkManager::instance()->gridWidth();
    const auto first = [&](double from) { return std::floor(from / spacing + 0.5) * spacing; };
    painter->fillRect(rect, OrvNgStyle::instance().getSceneBackgroundBrush());
    painter->setPen(OrvNgStyle::instance().getGridPen());
    for (double x = first(rect.left()); x < rect.right(); x += spacing)
        painter->drawLine(QLineF(x, rect.top(), x, rect.bottom()));
    for (double y = first(rect.top()); y < rect.bottom(); y += spacing)
        painter->drawLine(QLineF(rect.left(), y, rect.right(), y));
}

} // namespace

class tst_OrvNgView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void grid_equalsLinesDrawnOneByOne()
    {
        TestView view;
        view.setGridEnabled(true);
        // White on black, so that a difference cannot hide in similar colours.
        OrvNgStyle::instance().setSceneBackgroundBrush(QColor(Qt::black));
        // With a part that a small change exposes painted again, lines just outside it included.
        const auto draw = [&](QPainter* painter, const QRectF& rect) {
            view.drawBackground(painter, rect);
            const QTransform toScene = painter->deviceTransform().inverted();
            painter->setClipRect(toScene.mapRect(QRectF(301, 201, 5, 40)));
            view.drawBackground(painter, toScene.mapRect(QRectF(300, 200, 7, 42)));
        };
        const struct
        {
            const char* m_Name;
            double m_Scale, m_Left, m_Ratio;
            int m_Spacing;
            QColor m_Color = Qt::white;
        } frames[] = {{"same frame", 0.3, 333.37, 1.0, 20}, {"phase", 0.3, 333.87, 1.0, 20},
            {"denser than pixels", 0.0176, 333.37, 1.0, 20}, {"scale 4", 4.0, 333.37, 1.0, 20},
            {"pixel ratio", 0.3, 333.37, 1.25, 20}, {"spacing", 0.3, 333.37, 1.0, 7},
            {"translucent", 0.3, 333.37, 1.0, 20, QColor(255, 0, 0, 100)},
            {"lines at every place in a pixel", 0.3173, 333.37, 1.0, 20},
            {"panned by whole pixels", 0.3, 326.37, 1.0, 20}, {"far out", 0.07, 326.11, 1.0, 20}};
        for (const auto& frame : frames) { // each after the first one
            setGrid(Qt::white, 20);
            picture(0.3, 333.37, 1.0, draw);
            setGrid(frame.m_Color, frame.m_Spacing);
            const QImage drawn = picture(frame.m_Scale, frame.m_Left, frame.m_Ratio, draw);
            const QImage lines
                = picture(frame.m_Scale, frame.m_Left, frame.m_Ratio, drawLineByLine);
            int largest = 0; // of any channel of any pixel
            for (qsizetype i = 0; i < drawn.sizeInBytes(); ++i)
                largest = qMax(largest, std::abs(drawn.constBits()[i] - lines.constBits()[i]));
            QVERIFY2(largest <= 2, frame.m_Name);
        }
    }
};

QTEST_MAIN(tst_OrvNgView)
#include "tst_OrvNgView.moc"
