#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QPainter>

namespace {

constexpr int kAlt = Qt::AltModifier;

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
    void cleanup() { QVERIFY(QApplication::topLevelWidgets().isEmpty()); }

    void changes_reachTheBoundsOfVisibleNodesOnceTheyPause()
    {
        ViewStage stage;
        const QRectF before = stage.m_Node->sceneBoundingRect();
        stage.add({}, {-5000, 0})->setVisible(false);
        stage.m_Scene.addRect(3000, 3000, 10, 10);
        const TestNode* far = stage.add({}, {1000, 500});
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
        const TestTable<double, QString, double, double> row("from", "action", "by", "to");
        row("step in", 1.0, "in", 1.2, 1.2);
        row("step out", 1.0, "out", 1.2, 1.0 / 1.2);
        row("step in at 90", 90.0, "in", 1.2, 90.0);
        row("step out at 0.08", 0.08, "out", 1.2, 0.08);
        row("step mirroring", 1.0, "in", -1.2, 1.0);
        row("wheel back", 1.0, "wheel", -15, 0.8695652173913044);
        row("wheel beyond those limits", 90.0, "wheel", 120, 103.5);
        row("wheel at the upper end", 9e5, "wheel", 120, 9e5);
        row("wheel at the lower end", 1.1e-6, "wheel", -120, 1.1e-6);
        row("drag a million pixels right", 2.0, "drag", 1e6, 2.0);
    }

    void zoom_staysWithinItsLimits()
    {
        QFETCH(double, from);
        QFETCH(QString, action);
        QFETCH(double, by);
        QFETCH(double, to);
        ViewStage stage;
        stage.m_View.setTransform(QTransform::fromScale(from, from));
        stage.m_View.centerViewOn(QPointF(0, 0), false);
        if (action == QLatin1String("in"))
            stage.m_View.zoomIn(by);
        else if (action == QLatin1String("out"))
            stage.m_View.zoomOut(by);
        else if (action == QLatin1String("wheel"))
            stage.wheel(0, int(by));
        else
            stage.press(QPoint(200, 100), Qt::MiddleButton, kAlt);
        stage.move(QPoint(int(by), 100), Qt::MiddleButton);
        stage.release(QPoint(int(by), 100), Qt::MiddleButton);
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
        const TestTable<int, int, QString, int> row("button", "modifiers", "scheme", "cursor");
        const int pan = Qt::ClosedHandCursor, zoom = Qt::SizeFDiagCursor, none = Qt::ArrowCursor;
        const int shift = Qt::ShiftModifier, control = Qt::ControlModifier;
        row("middle, Quill", Qt::MiddleButton, 0, "Quill", pan);
        row("middle, Harbor", Qt::MiddleButton, control | shift, "Harbor", pan);
        row("middle, other", Qt::MiddleButton, 0, "quill", pan);
        row("Alt middle, Quill", Qt::MiddleButton, kAlt, "Quill", zoom);
        row("Alt middle, Harbor", Qt::MiddleButton, kAlt | control, "Harbor", pan);
        row("Alt middle, other", Qt::MiddleButton, kAlt, "quill", none);
        row("left", Qt::LeftButton, 0, "Quill", none);
        row("Alt left, Quill", Qt::LeftButton, kAlt | control, "Quill", pan);
        row("Alt right, other", Qt::RightButton, kAlt, "quill", pan);
        row("Alt left, Harbor", Qt::LeftButton, kAlt | shift, "Harbor", pan);
        row("Alt Ctrl left, Harbor", Qt::LeftButton, kAlt | control, "Harbor", zoom);
        row("Alt right, Harbor", Qt::RightButton, kAlt, "Harbor", zoom);
        row("Alt extra button, Harbor", Qt::ExtraButton1, kAlt, "Harbor", none);
    }

    void press_startsPanOrZoom()
    {
        QFETCH(int, button);
        QFETCH(int, modifiers);
        QFETCH(QString, scheme);
        QFETCH(int, cursor);
        const auto held = static_cast<Qt::MouseButton>(button);
        const QPointF center = cursor == Qt::ClosedHandCursor ? QPointF(-60, -10) : QPointF(0, 0);
        // The second press of a quick pair arrives as a double click.
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
            ViewStage stage;
            stage.m_View.m_NavigationScheme = scheme;
            stage.mouse(type, QPoint(300, 150), held, held, modifiers);
            QCOMPARE(stage.wheel(0, 120), cursor == Qt::ArrowCursor);
            stage.m_View.setTransform({});
            stage.m_View.centerViewOn(QPointF(0, 0), true);
            stage.move(QPoint(360, 160), held, modifiers);
            QVERIFY(isNear(stage.m_View.center(), center));
            QCOMPARE(stage.m_View.scaleNow() != 1.0, cursor == Qt::SizeFDiagCursor);
            QCOMPARE(int(stage.m_View.viewport()->cursor().shape()), cursor);
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
        const double scale = double(1.3F) * std::exp(0.5); // kept in single precision
        ViewStage stage;
        stage.m_View.setTransform(QTransform::fromScale(1.3, 1.3));
        stage.m_View.setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
        const QPointF underPress = stage.m_View.mapToScene(from);
        stage.press(from, Qt::MiddleButton, kAlt);
        for (const QPoint& pos : {QPoint(150, 90), QPoint(200, 10)})
            stage.move(pos, Qt::MiddleButton, kAlt);
        QVERIFY(std::abs(stage.m_View.scaleNow() - scale) < 1e-12);
        QVERIFY(isNear(stage.m_View.viewportTransform().map(underPress), from, 1e-4));
    }

    void autoScroll_followsTheCursorAtTheBorders()
    {
        ViewStage stage;
        stage.m_View.move(100, 100);
        // The view is 400 by 200: its last pixels are 399 and 199. From each cursor, scrolled by:
        for (const QLine& row :
            {QLine(29, 199 - 29, -10, 10), QLine(30, 30, 0, 0), QLine(399 - 30, 199 - 30, 0, 0),
                QLine(399 - 29, 29, 10, -10), QLine(450, 230, 10, 10)}) {
            QCursor::setPos(stage.m_View.mapToGlobal(row.p1()));
            const QPoint before = stage.m_View.scrolled();
            stage.m_View.autoScrollAdvance(nullptr, false);
            QCOMPARE(stage.m_View.scrolled() - before, row.p2());
        }
    }

    void autoScroll_goesOnWhileTheMouseRests()
    {
        ViewStage stage;
        stage.m_View.move(100, 100);
        stage.m_Scene.addRect(100, 50, 20, 20)->setFlag(QGraphicsItem::ItemIsMovable);
        const QPoint border(395, 100);
        QCursor::setPos(stage.m_View.mapToGlobal(border));
        QCoreApplication::processEvents();
        const int start = stage.m_View.scrolled().x();
        stage.drag({{310, 160}, border}); // not for items that are neither nodes nor edges
        QVERIFY(stage.m_Scene.mouseGrabberItem());
        QTest::qWait(120);
        QCOMPARE(stage.m_View.scrolled().x(), start);
        stage.release(border, Qt::LeftButton);

        stage.drag({{200, 100}, border});
        QTRY_VERIFY(stage.m_View.scrolled().x() >= start + 40);
        stage.release(border, Qt::LeftButton);
        const int stopped = stage.m_View.scrolled().x();
        QTest::qWait(120);
        QCOMPARE(stage.m_View.scrolled().x(), stopped);
    }

    void resize_keepsTheCenter()
    {
        ViewStage stage;
        stage.m_View.zoomIn(1.7);
        const QPointF center(31.4, -27.2);
        stage.m_View.centerViewOn(center, false);
        for (const QSize& size : {QSize(401, 203), QSize(1, 1), QSize(30000, 10), QSize(0, 0)}) {
            stage.m_View.resize(size);
            QCoreApplication::processEvents();
            QTest::keyClick(&stage.m_View, Qt::Key_Left); // does not scroll
            const QPointF middle = QRectF(QPointF(), size).center();
            QVERIFY(isNear(stage.m_View.viewportTransform().inverted().map(middle), center));
        }
    }

    void grid_equalsLinesDrawnOneByOne()
    {
        TestView view;
        view.setGridEnabled(true);
        // White on black, so that a difference cannot hide in similar colours.
        OrvNgStyle::instance().setSceneBackgroundBrush(QColor(Qt::black));
        const auto draw
            = [&](QPainter* painter, const QRectF& rect) { view.drawBackground(painter, rect); };
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
