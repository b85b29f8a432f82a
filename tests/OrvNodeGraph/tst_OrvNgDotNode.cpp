#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ViewStage.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsPixmapItem>

namespace {

template <typename Item> QList<Item*> childrenOf(const OrvNgNode& node)
{
    QList<Item*> found;
    const QList<QGraphicsItem*> items = node.childItems();
    for (QGraphicsItem* item : items) {
        if (auto* child = dynamic_cast<Item*>(item))
            found.append(child);
    }
    return found;
}

QGraphicsEllipseItem* disc(const OrvNgNode& node)
{
    return childrenOf<QGraphicsEllipseItem>(node).at(0);
}

QGraphicsEllipseItem* selectionDisc(const OrvNgNode& node)
{
    return childrenOf<QGraphicsEllipseItem>(node).at(1);
}

} // namespace

class tst_OrvNgDotNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void disc_isColouredByStatesAndDebugColour()
    {
        OrvNgDotNode dot(nullptr);
        dot.setCategory(QStringLiteral("Geometry")); // not looked at, nor is locking
        dot.setLocked(true);
        const auto top = [&dot] {
            const auto* gradient = disc(dot)->brush().gradient();
            return gradient ? gradient->stops().first().second : disc(dot)->brush().color();
        };
        const OrvNgStyle& style = OrvNgStyle::instance();
        QCOMPARE(top(), style.getDefaultNodeColor().first);
        dot.setBypassed(true);
        QCOMPARE(top(), style.getBypassedNodeColor().first);
        dot.setDebug(true); // without a colour yet
        QCOMPARE(top(), style.getBypassedNodeColor().first);
        dot.setDebugColor(Qt::red);
        dot.setBypassed(false);
        QCOMPARE(top(), QColor(Qt::red));
        QCOMPARE(dot.nodeUniColour(), disc(dot)->brush());
    }

    void icon_sitsInTheMiddleOfItsDisc()
    {
        QGraphicsScene scene;
        auto* dot = new OrvNgDotNode(nullptr);
        scene.addItem(dot);
        const int size = OrvNgStyle::instance().getDotNodeSize();
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, size, size));
        dot->setPixmap(QPixmap(), QPoint(5, 5));
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, size, size));

        dot->createOutputPoint(QStringLiteral("Output"), true);
        dot->setPixmap(QPixmap(30, 40), QPoint(1, -2));
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, 56, 56));
        QCOMPARE(dot->boundingRect(), disc(*dot)->boundingRect());
        QVERIFY(dot->boundingRect().contains(QRectF(-0.5, -0.5, 57, 57)));
        QCOMPARE(selectionDisc(*dot)->rect(), dot->boundingRect().adjusted(3, 3, -3, -3));
        QCOMPARE(childrenOf<QGraphicsPixmapItem>(*dot).first()->pos(), QPointF(14, 6));
        QVERIFY(!selectionDisc(*dot)->isVisible());
        dot->setSelected(true);
        QVERIFY(selectionDisc(*dot)->isVisible());
        // The scene has followed: the grown disc is found where it lies, and nowhere after removal.
        QVERIFY(scene.items(QPointF(50, 28)).contains(dot));
        scene.removeItem(dot);
        QVERIFY(!scene.items(QRectF(-100, -100, 300, 300)).contains(dot));
        delete dot;
    }
};

QTEST_MAIN(tst_OrvNgDotNode)
#include "tst_OrvNgDotNode.moc"
