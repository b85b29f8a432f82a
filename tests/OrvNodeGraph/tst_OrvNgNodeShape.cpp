#include "OrvNodeGraph/OrvNgNodeShape.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

using Points = QVector<QPoint>;

class tst_OrvNgNodeShape : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void givenShape_beatsTheCategorys()
    {
        const auto shape = [](int type, const char* category) {
            return static_cast<int>(OrvNgNodeShape::resolve(type, QLatin1String(category)));
        };
        QCOMPARE(shape(1, "Basic"), 1);
        QCOMPARE(shape(0, "Environment"), 2);
        QCOMPARE(shape(0, "TeleportBroadcast"), 8);
        QCOMPARE(shape(9, "Geometry"), 2); // too large
        QCOMPARE(shape(0, ""), 1);
    }

    void draw_data()
    {
        const TestTable<int, Points, Points> row("type", "inside", "outside");
        // Pixels of a body of 160 × 40 at (20, 20), with an indent of 8; each is tested with its
        // mirror image on the right. Those beside a slope tell the shape from its nearest
        // relatives.
        row("rectangle", 1, Points{{20, 20}, {20, 59}}, Points{{19, 40}, {60, 19}, {60, 60}});
        row("capsule", 2, Points{{20, 40}, {40, 20}, {27, 26}, {27, 53}},
            Points{{24, 24}, {24, 55}, {27, 23}});
        row("hexagon", 4, Points{{21, 40}, {27, 23}, {27, 56}, {25, 30}},
            Points{{25, 23}, {25, 56}, {22, 30}, {22, 49}});
        row("funnel", 5, Points{{21, 21}, {25, 40}, {29, 58}}, Points{{22, 40}, {26, 58}});
        row("trapezoid", 6, Points{{29, 21}, {25, 40}, {21, 58}}, Points{{26, 21}, {22, 40}});
        row("rounded hexagon", 8, Points{{22, 40}, {27, 30}, {27, 49}, {38, 20}, {33, 23}},
            Points{{20, 40}, {24, 30}, {24, 49}, {30, 21}, {30, 58}});
    }

    void draw()
    {
        QFETCH(int, type);
        QFETCH(Points, inside);
        QFETCH(Points, outside);
        OrvNgStyle::instance().setNodeShapeIndentX(8.0F);
        QImage image(200, 80, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        OrvNgNodeShape::draw(
            &painter, QRectF(20, 20, 160, 40), static_cast<OrvNgNode::NodeShapeType>(type));
        painter.end();

        const auto isFilled
            = [&image](const QPoint& pixel) { return image.pixelColor(pixel) == Qt::black; };
        for (const Points& points : {inside, outside}) {
            for (const QPoint& left : points) {
                for (const QPoint& pixel : {left, QPoint(199 - left.x(), left.y())}) {
                    QVERIFY2(isFilled(pixel) == inside.contains(left),
                        qPrintable(QStringLiteral("pixel (%1, %2)").arg(pixel.x()).arg(pixel.y())));
                }
            }
        }
    }
};

QTEST_MAIN(tst_OrvNgNodeShape)
#include "tst_OrvNgNodeShape.moc"
