#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QPainter>

#include <cmath>
#include <functional>

namespace {

constexpr int kAlt = Qt::AltModifier;

using Action = std::function<void(ViewStage&)>;

/// White lines on black, so that a difference cannot hide in similar colours.
struct ContrastingGrid
{
    QBrush m_Brush = OrvNgStyle::instance().getSceneBackgroundBrush();
    QPen m_Pen = OrvNgStyle::instance().getGridPen();

    ContrastingGrid() { OrvNgStyle::instance().setSceneBackgroundBrush(QColor(Qt::black)); }
    ~ContrastingGrid()
    {
        OrvNgStyle::instance().setSceneBackgroundBrush(m_Brush);
        OrvNgStyle::instance().setGridPen(m_Pen);
    }
    void set(const QColor& color, int spacing)
    {
        QPen pen = m_Pen;
        pen.setColor(color);
        pen.setWidth(1);
        OrvNgStyle::instance().setGridPen(pen);
        OrvShaderNetworkManager::instance()->setGridWidth(spacing);
        OrvShaderNetworkManager::instance()->setGridHeight(spacing);
    }
};

QImage picture(double scale, double left, bool antialiased, double ratio,
    const std::function<void(QPainter*, const QRectF&)>& draw)
{
    QImage image(1200, 700, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::magenta);
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, antialiased);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setWorldTransform(QTransform(scale, 0, 0, scale, left, -71.6 / ratio));
    draw(&painter,
        painter.worldTransform().inverted().mapRect(QRectF(0, 0, 1200 / ratio, 700 / ratio)));
    return image;
}

void drawLineByLine(QPainter* painter, const QRectF& rect)
{
    const int spacing = OrvShaderNetworkManager::instance()->gridWidth();
    const auto first = [&](double from) { return std::floor(from / spacing + 0.5) * spacing; };
    QVector<QLineF> lines;
    for (double x = first(rect.left()); x < rect.right(); x += spacing)
        lines.append(QLineF(x, rect.top(), x, rect.bottom()));
    for (double y = first(rect.top()); y < rect.bottom(); y += spacing)
        lines.append(QLineF(rect.left(), y, rect.right(), y));
    painter->fillRect(rect, OrvNgStyle::instance().getSceneBackgroundBrush());
    painter->setPen(OrvNgStyle::instance().getGridPen());
    painter->drawLines(lines);
}

/// Of any channel of any pixel.
int largestDifference(const QImage& a, const QImage& b)
{
    int largest = 0;
    for (qsizetype i = 0; i < a.sizeInBytes(); ++i)
        largest = qMax(largest, std::abs(a.constBits()[i] - b.constBits()[i]));
    return largest;
}

} // namespace

Q_DECLARE_METATYPE(Action)

class tst_OrvNgView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
        auto* network = OrvShaderNetworkManager::instance();
        network->setGridWidth(20);
        network->setGridHeight(20);
    }

    void changes_reachTheBoundsOfVisibleNodesOnceTheyPause()
    {
        ViewStage stage;
        const QRectF before = stage.m_Node->sceneBoundingRect();
        auto* hidden = new TestNode;
        hidden->setVisible(false);
        hidden->setPos(-5000, 0);
        stage.m_Scene.addItem(hidden);
        stage.m_Scene.addRect(3000, 3000, 10, 10);
        auto* far = new TestNode;
        stage.m_Scene.addItem(far);
        far->setPos(1000, 500);
        for (int i = 0; i < 4; ++i) {
            stage.m_View.contentsChanged();
            QTest::qWait(30);
            QCOMPARE(stage.m_View.visibleNodeBounds(), before);
        }
        const QRectF expected = before | far->sceneBoundingRect();
        QTRY_COMPARE(stage.m_View.visibleNodeBounds(), expected);
        const QRectF held = expected | QRectF(-200, -100, 400, 200);
        QCOMPARE(stage.m_View.sceneRect(),
            held.adjusted(-held.width(), -held.height(), held.width(), held.height()));
        QVERIFY(isNear(stage.m_View.center(), QPointF(0, 0)));
    }

    void zoom_staysWithinItsLimits_data()
    {
        const TestTable<double, Action, double> row("from", "action", "to");
        const auto in
            = [](double factor) { return [=](ViewStage& s) { s.m_View.zoomIn(factor); }; };
        const auto out
            = [](double factor) { return [=](ViewStage& s) { s.m_View.zoomOut(factor); }; };
        const auto wheel = [](int x, int y) { return [=](ViewStage& s) { s.wheel(x, y); }; };
        const auto drag = [](int x) {
            return [=](ViewStage& s) {
                s.press(QPoint(200, 100), Qt::MiddleButton, kAlt);
                s.move(QPoint(x, 100), Qt::MiddleButton);
                s.release(QPoint(x, 100), Qt::MiddleButton);
            };
        };
        row("step in", 1.0, in(1.2), 1.2);
        row("step out", 1.0, out(1.2), 1.0 / 1.2);
        row("step in at 90", 90.0, in(1.2), 90.0);
        row("step out at 0.08", 0.08, out(1.2), 0.08);
        row("step mirroring", 1.0, in(-1.2), 1.0);
        row("wheel forth", 1.0, wheel(0, 120), 1.15);
        row("wheel back", 1.0, wheel(0, -15), 0.8695652173913044);
        row("wheel beyond those limits", 90.0, wheel(0, 120), 103.5);
        row("wheel at the upper end", 9e5, wheel(0, 120), 9e5);
        row("wheel at the lower end", 1.1e-6, wheel(0, -120), 1.1e-6);
        row("drag a million pixels right", 2.0, drag(1000000), 2.0);
    }

    void zoom_staysWithinItsLimits()
    {
        QFETCH(double, from);
        QFETCH(Action, action);
        QFETCH(double, to);
        ViewStage stage;
        stage.m_View.setTransform(QTransform::fromScale(from, from));
        stage.m_View.centerViewOn(QPointF(0, 0), false);
        action(stage);
        QCOMPARE(stage.m_View.scaleNow(), to);
        QCOMPARE(stage.m_View.transform().m22(), to);
        QVERIFY(isNear(stage.m_View.center() * to, QPointF(0, 0), 0.01));
    }

    void fitInView_showsARectangleFarOff()
    {
        const QRectF rect(90000.3, -71.7, 61.5, 47.1);
        ViewStage stage;
        stage.m_Node->setPos(rect.center());
        stage.m_View.init();
        stage.m_View.fitInView(rect, Qt::KeepAspectRatio);
        const double fitted = qMin(396 / rect.width(), 196 / rect.height());
        QVERIFY(std::abs(stage.m_View.transform().m22() - fitted) < 1e-6 * fitted);
        QVERIFY(isNear(stage.m_View.center(), rect.center()));
    }

    void press_startsPanOrZoom_data()
    {
        const TestTable<int, int, QString, QString> row("button", "modifiers", "scheme", "outcome");
        row("middle", Qt::MiddleButton, 0, "Quill", "pan");
        row("left", Qt::LeftButton, 0, "Quill", "none");
        row("Alt middle, Quill", Qt::MiddleButton, kAlt, "Quill", "zoom");
        row("Alt left, Harbor", Qt::LeftButton, kAlt, "Harbor", "pan");
        row("Alt right, Harbor", Qt::RightButton, kAlt, "Harbor", "zoom");
    }

    void press_startsPanOrZoom()
    {
        QFETCH(int, button);
        QFETCH(int, modifiers);
        QFETCH(QString, scheme);
        QFETCH(QString, outcome);
        const auto held = static_cast<Qt::MouseButton>(button);
        const bool isPan = outcome == QLatin1String("pan");
        const bool isZoom = outcome == QLatin1String("zoom");
        // The second press of a quick pair arrives as a double click.
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
            ViewStage stage;
            stage.m_View.m_NavigationScheme = scheme;
            stage.mouse(type, QPoint(300, 150), held, held, modifiers);
            QCOMPARE(stage.wheel(0, 120), !isPan && !isZoom);
            stage.m_View.centerViewOn(QPointF(0, 0), true);
            stage.move(QPoint(360, 160), held, modifiers);
            QVERIFY(isNear(stage.m_View.center(), isPan ? QPointF(-60, -10) : QPointF(0, 0)));
            QVERIFY((stage.m_View.scaleNow() != 1.0) == isZoom);
            const Qt::CursorShape cursor = stage.m_View.viewport()->cursor().shape();
            QCOMPARE(cursor == Qt::ClosedHandCursor, isPan);
            QCOMPARE(cursor == Qt::SizeFDiagCursor, isZoom);
            QVERIFY(stage.m_View.isInteractive());
            stage.release(QPoint(360, 160), held);
            QVERIFY(stage.isAtRest());
        }
    }

    void pan_leavesTheSelectionAndGetsItsMarginBack()
    {
        ViewStage stage;
        static_cast<QGraphicsItem*>(stage.m_Node)->setSelected(true);
        stage.press(QPoint(390, 190), Qt::LeftButton, kAlt);
        stage.release(QPoint(390, 190), Qt::LeftButton);
        QVERIFY(static_cast<QGraphicsItem*>(stage.m_Node)->isSelected());
        for (int i = 0; i < 5; ++i) {
            stage.press(QPoint(390, 100), Qt::MiddleButton);
            stage.move(QPoint(40, 100), Qt::MiddleButton);
            stage.release(QPoint(40, 100), Qt::MiddleButton);
        }
        QVERIFY(isNear(stage.m_View.center(), QPointF(5 * 350, 0)));
    }

    void zoomDrag_keepsThePointUnderThePress()
    {
        const QPoint from(100, 60);
        const QPoint to(200, 10);
        const double scale = double(1.3F) * std::exp(0.5); // kept in single precision
        ViewStage stage;
        stage.m_View.setTransform(QTransform::fromScale(1.3, 1.3));
        stage.m_View.setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
        const QPointF underPress = stage.m_View.mapToScene(from);
        stage.press(from, Qt::MiddleButton, kAlt);
        stage.move(QPoint(150, 90), Qt::MiddleButton, kAlt);
        stage.move(to, Qt::MiddleButton, kAlt);
        QVERIFY(std::abs(stage.m_View.scaleNow() - scale) < 1e-12);
        QVERIFY(std::abs(stage.m_View.transform().m22() - scale) < 1e-12);
        QVERIFY(isNear(stage.m_View.viewportTransform().map(underPress), from, 1e-4));
        stage.release(to, Qt::MiddleButton);
        QVERIFY(stage.isAtRest());
    }

    void autoScroll_followsTheCursorAtTheBorders_data()
    {
        // The view is 400 by 200: its last pixels are 399 and 199.
        const TestTable<QPoint, QPoint> row("cursor", "scrolled");
        row("29 from left and bottom", QPoint(29, 199 - 29), QPoint(-10, 10));
        row("30 from left and top", QPoint(30, 30), QPoint(0, 0));
        row("30 from right and bottom", QPoint(399 - 30, 199 - 30), QPoint(0, 0));
        row("29 from right and top", QPoint(399 - 29, 29), QPoint(10, -10));
        row("outside", QPoint(450, 230), QPoint(10, 10));
    }

    void autoScroll_followsTheCursorAtTheBorders()
    {
        QFETCH(QPoint, cursor);
        ViewStage stage;
        stage.m_View.move(100, 100);
        QCursor::setPos(stage.m_View.mapToGlobal(cursor));
        const QPoint before = stage.m_View.scrolled();
        stage.m_View.autoScrollAdvance(nullptr, false);
        QTEST(stage.m_View.scrolled() - before, "scrolled");
    }

    void autoScroll_goesOnWhileTheMouseRests()
    {
        ViewStage stage;
        stage.m_View.move(100, 100);
        auto* other = stage.m_Scene.addRect(100, 50, 20, 20);
        other->setFlag(QGraphicsItem::ItemIsMovable);
        const QPoint border(395, 100);
        QCursor::setPos(stage.m_View.mapToGlobal(border));
        QCoreApplication::processEvents();
        const int start = stage.m_View.scrolled().x();

        // Not for items that are neither nodes nor edges.
        stage.press(QPoint(310, 160), Qt::LeftButton);
        QCOMPARE(stage.m_Scene.mouseGrabberItem(), other);
        stage.move(border, Qt::LeftButton);
        QTest::qWait(120);
        QCOMPARE(stage.m_View.scrolled().x(), start);
        stage.release(border, Qt::LeftButton);

        stage.press(QPoint(200, 100), Qt::LeftButton);
        QCOMPARE(stage.m_Scene.mouseGrabberItem(), stage.m_Node);
        stage.move(border, Qt::LeftButton);
        QTRY_VERIFY(stage.m_View.scrolled().x() >= start + 40);
        stage.release(border, Qt::LeftButton);
        const int stopped = stage.m_View.scrolled().x();
        QTest::qWait(120);
        QCOMPARE(stage.m_View.scrolled().x(), stopped);
    }

    void arrows_doNotScroll()
    {
        ViewStage stage;
        const QPointF center = stage.m_View.center();
        for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down})
            QTest::keyClick(&stage.m_View, key);
        QCOMPARE(stage.m_View.center(), center);
    }

    void resize_keepsTheCenter()
    {
        ViewStage stage;
        stage.m_View.zoomIn(1.7);
        const QPointF center(31.4, -27.2);
        stage.m_View.centerViewOn(center, false);
        const QSize sizes[] = {{401, 203}, {1000, 700}, {1, 1}, {30000, 10}, {0, 0}, {333, 222}};
        for (const QSize& size : sizes) {
            stage.m_View.resize(size);
            QCoreApplication::processEvents();
            const QPointF middle = QRectF(QPointF(), size).center();
            QVERIFY(isNear(stage.m_View.viewportTransform().inverted().map(middle), center));
        }
        QCOMPARE(stage.m_View.scaleNow(), 1.7);
    }

    void grid_equalsLinesDrawnOneByOne_data()
    {
        const TestTable<double, double, bool, double, int, QColor> row(
            "scale", "left", "antialiased", "ratio", "spacing", "color");
        // Each differs from the frame before it, which is at 0.3, in as little as it can.
        const QColor white(Qt::white);
        row("same frame", 0.3, 333.37, true, 1.0, 20, white);
        row("phase", 0.3, 333.87, true, 1.0, 20, white);
        row("far out", 0.07, 333.37, true, 1.0, 20, white);
        row("denser than pixels", 0.0176, 333.37, true, 1.0, 20, white);
        row("scale 4", 4.0, 333.37, true, 1.0, 20, white);
        row("not antialiased", 0.3, 333.37, false, 1.0, 20, white);
        row("pixel ratio", 0.3, 333.37, true, 1.25, 20, white);
        row("spacing", 0.3, 333.37, true, 1.0, 7, white);
        row("translucent", 0.3, 333.37, true, 1.0, 20, QColor(255, 0, 0, 100));
        row("lines at every place in a pixel", 0.3173, 333.37, true, 1.0, 20, white);
        row("panned by whole pixels", 0.3, 326.37, true, 1.0, 20, white);
        row("panned by fractions far out", 0.07, 326.11, true, 1.0, 20, white);
    }

    void grid_equalsLinesDrawnOneByOne()
    {
        QFETCH(double, scale);
        QFETCH(double, left);
        QFETCH(bool, antialiased);
        QFETCH(double, ratio);
        QFETCH(int, spacing);
        QFETCH(QColor, color);
        ContrastingGrid style;
        TestView view;
        view.setGridEnabled(true);
        const auto draw
            = [&](QPainter* painter, const QRectF& rect) { view.drawBackground(painter, rect); };
        style.set(Qt::white, 20);
        picture(0.3, 333.37, true, 1.0, draw);
        style.set(color, spacing);
        const QImage drawn = picture(scale, left, antialiased, ratio, draw);
        const QImage expected = picture(scale, left, antialiased, ratio, drawLineByLine);
        const int difference = largestDifference(drawn, expected);
        QVERIFY2(difference <= 2, qPrintable(QString::number(difference)));
        QVERIFY(drawn.pixelColor(5, 5) != QColor(Qt::magenta));
    }
};

QTEST_MAIN(tst_OrvNgView)
#include "tst_OrvNgView.moc"
