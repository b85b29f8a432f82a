#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestNode.h"

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QtTest>

#include <memory>

class tst_OrvNgDotableMarkerItem : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QCoreApplication::setOrganizationName(QStringLiteral("OrvTests"));
    }

    void geometry_isFixedByTheStyleAtTheStart()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        style.setDotDiamondNodeSize(9);
        style.setDotableMarkerBrush(QBrush(Qt::green));
        const OrvNgDotableMarkerItem marker(nullptr);
        style.setDotDiamondNodeSize(30);
        style.setDotableMarkerBrush(QBrush(Qt::red));

        const auto* diamond = dynamic_cast<QGraphicsRectItem*>(marker.childItems().value(0));
        QVERIFY(diamond);
        QCOMPARE(diamond->rect(), QRectF(-4, -4, 9, 9));
        QCOMPARE(diamond->rotation(), 45.0);
        QCOMPARE(diamond->brush(), QBrush(Qt::green));
        const double reach = 9 * 0.70710678;
        const QRectF found = marker.boundingRect();
        QVERIFY((found.topLeft() + QPointF(reach, reach)).manhattanLength() < 1e-6);
        QVERIFY((found.bottomRight() - QPointF(reach, reach)).manhattanLength() < 1e-6);
    }

    void leftPress_tellsTheRootNodeItsEdge()
    {
        QGraphicsScene scene;
        auto* source = new TestNode;
        auto* dest = new TestNode;
        scene.addItem(source);
        scene.addItem(dest);
        dest->setPos(200, 100);
        source->createOutputPoint(QStringLiteral("out"), false);
        dest->createInput(QStringLiteral("in"), false, {});
        OrvNgEdge* edge = dest->input(QStringLiteral("in"));
        QVERIFY(edge);
        edge->setSourceNode(source, QStringLiteral("out")); // shows the edge
        auto* marker = new OrvNgDotableMarkerItem(edge);
        auto root = std::make_unique<TestNode>();
        QVector<OrvNgEdge*> clicked;
        connect(root.get(), &OrvNgNode::clickedOnDotableMarkerOnEdge, this,
            [&clicked](OrvNgEdge* named) { clicked.append(named); });
        const auto isTaken = [&scene, marker](Qt::MouseButton button) {
            QGraphicsSceneMouseEvent event(QEvent::GraphicsSceneMousePress);
            event.setButton(button);
            scene.sendEvent(marker, &event);
            return event.isAccepted();
        };

        QVERIFY(isTaken(Qt::LeftButton)); // swallowed: there is no root node
        marker->setRootNode(root.get());
        QVERIFY(isTaken(Qt::LeftButton));
        QVERIFY(!isTaken(Qt::RightButton));
        QCOMPARE(clicked, QVector<OrvNgEdge*>{edge});
        root.reset();
        QVERIFY(isTaken(Qt::LeftButton)); // swallowed: the root node is gone
        QCOMPARE(clicked.size(), 1);
    }
};

QTEST_MAIN(tst_OrvNgDotableMarkerItem)
#include "tst_OrvNgDotableMarkerItem.moc"
