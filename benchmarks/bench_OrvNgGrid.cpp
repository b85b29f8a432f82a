// What the grid costs a frame of a 1600 x 1000 view, background included: "still" repaints the same frame,
// "panning" moves the scroll bars, by whole pixels, and "drifting" moves each frame by a fraction of a pixel.
// At most 1 ms is the goal; on a busy machine judge by the ratio to "background alone".

#include "BenchTiming.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScrollBar>

#include <OrvNodeGraph/OrvNgView.h>
#include <cstdio>

namespace {

class GridView : public OrvNgView
{
public:
    GridView()
        : OrvNgView(nullptr)
    {
        setGridEnabled(true);
    }
    using OrvNgView::drawBackground;
};

struct Motion
{
    int m_Scroll = 0; // device pixels a frame
    double m_Drift = 0.0;
};

/// Median milliseconds of a frame.
double paintGrid(double scale, const Motion& motion, bool gridEnabled)
{
    constexpr int kFrames = 200;
    GridView view;
    view.setGridEnabled(gridEnabled);
    view.resize(1600, 1000);
    view.show();
    view.setSceneRect(
        QRectF(-50000.0, -50000.0, 100000.0, 100000.0)
            .united(QRectF(-2000.0 / scale, -2000.0 / scale, 4000.0 / scale, 4000.0 / scale)));
    view.setTransform(QTransform::fromScale(scale, scale));
    view.centerViewOn(QPointF(3.3, -7.16), false);
    QImage frame(1600, 1000, QImage::Format_ARGB32_Premultiplied);
    QScrollBar* const bars[] = {view.horizontalScrollBar(), view.verticalScrollBar()};
    const int starts[] = {bars[0]->value(), bars[1]->value()};
    double drift = 0.0;
    QVector<double> times;
    for (int i = 0; i < kFrames; ++i) {
        times.append(benchTime([&] {
            for (int bar : {0, 1})
                bars[bar]->setValue(starts[bar] + i * motion.m_Scroll % 300);
            QPainter painter(&frame);
            painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
            painter.setWorldTransform(
                view.viewportTransform() * QTransform::fromTranslate(drift, drift));
            const QTransform toScene = painter.worldTransform().inverted();
            view.drawBackground(&painter, toScene.mapRect(QRectF(frame.rect())));
        }));
        drift += motion.m_Drift;
    }
    if (motion.m_Scroll > 0 && bars[0]->value() == starts[0])
        qFatal("the view did not scroll");
    return benchMedian(times);
}

void printRow(const char* motionName, double scale, const Motion& motion, bool gridEnabled)
{
    std::printf(
        "%-18s scale %-7g %8.3f ms\n", motionName, scale, paintGrid(scale, motion, gridEnabled));
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OrvBenchmark"));

    printRow("background alone", 1.0, {}, false);
    for (const double scale : {0.0176, 0.07, 0.3, 1.0, 4.0}) {
        printRow("still", scale, {}, true);
        printRow("panning", scale, {7, 0.0}, true);
        printRow("drifting", scale, {0, 0.37}, true);
    }
    return 0;
}
