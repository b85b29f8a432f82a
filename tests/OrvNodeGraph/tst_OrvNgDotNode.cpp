#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ViewStage.h"

#include <QGraphicsEllipseItem>

namespace {

QGraphicsEllipseItem* disc(const OrvNgNode& node, int index = 0)
{
    QList<QGraphicsEllipseItem*> discs; // the node's, and that of the selection
    for (QGraphicsItem* item : node.childItems()) {
        if (auto* found = dynamic_cast<QGraphicsEllipseItem*>(item))
            discs.append(found);
    }
    return discs.at(index);
}

} // namespace

class tst_OrvNgDotNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void disc_isColouredByStatesAndDebugColour()
    {
        OrvNgDotNode dot(nullptr);
        const auto color = [&dot] {
            const auto* gradient = disc(dot)->brush().gradient();
            return gradient ? gradient->stops().first().second : disc(dot)->brush().color();
        };
        dot.setBypassed(true);
        dot.setDebug(true); // without a colour yet
        QCOMPARE(color(), OrvNgStyle::instance().getBypassedNodeColor().first);
        dot.setDebugColor(Qt::red); // shown with the next change of a state
        dot.setBypassed(false);
        QCOMPARE(color(), QColor(Qt::red));
    }

    void icon_sitsInTheMiddleOfItsDisc()
    {
        QGraphicsScene scene;
        auto* dot = new OrvNgDotNode(nullptr);
        scene.addItem(dot);
        const int size = OrvNgStyle::instance().getDotNodeSize();
        dot->setPixmap(QPixmap(), QPoint(5, 5));
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, size, size));

        dot->createOutputPoint(QStringLiteral("Output"), true);
        dot->setPixmap(QPixmap(30, 40), QPoint(1, -2));
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, 56, 56));
        QCOMPARE(dot->boundingRect(), disc(*dot)->boundingRect());
        QVERIFY(dot->boundingRect().contains(QRectF(-0.5, -0.5, 57, 57)));
        QCOMPARE(disc(*dot, 1)->rect(), dot->boundingRect().adjusted(3, 3, -3, -3));
        // The scene has followed: the grown disc is found where it lies, and nowhere after removal.
        QVERIFY(scene.items(QPointF(50, 28)).contains(dot));
        scene.removeItem(dot);
        QVERIFY(!scene.items(QRectF(-100, -100, 300, 300)).contains(dot));
        delete dot;
    }
};

QTEST_MAIN(tst_OrvNgDotNode)
#include "tst_OrvNgDotNode.moc"
