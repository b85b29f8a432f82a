// What the grid costs a frame of a 1600 x 1000 view, over the background alone: "still" repaints the same
// frame, "panning" moves each by a fraction of a pixel, so that nothing can be kept. At most 1 ms is the goal.

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <OrvNodeGraph/OrvNgView.h>
#include <string>

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

void paintGrid(benchmark::State& state, double scale, double panStep, bool gridEnabled)
{
    GridView view;
    view.setGridEnabled(gridEnabled);
    QImage frame(1600, 1000, QImage::Format_ARGB32_Premultiplied);
    double left = 333.3;
    for (auto _ : state) {
        QPainter painter(&frame);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.setWorldTransform(QTransform(scale, 0, 0, scale, left, -71.6));
        const QTransform toScene = painter.worldTransform().inverted();
        view.drawBackground(&painter, toScene.mapRect(QRectF(frame.rect())));
        left += panStep;
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OrvBenchmark"));

    const auto add = [](const std::string& name, double scale, double panStep, bool gridEnabled) {
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
            paintGrid(state, scale, panStep, gridEnabled);
        })->Unit(benchmark::kMillisecond);
    };
    add("background alone", 1.0, 0.0, false);
    for (const double scale : {0.0176, 0.07, 0.3, 1.0, 4.0}) {
        const std::string at = " at scale " + std::to_string(scale).substr(0, 6);
        add("still" + at, scale, 0.0, true);
        add("panning" + at, scale, 0.37, true);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
