#include "OrvNodeGraph/OrvNgInputPort.h"
#include "OrvNodeGraph/OrvNgOutputPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"
#include "support/TestTable.h"

#include <QGraphicsSimpleTextItem>
#include <QtTest>

namespace {

constexpr double kSquareWidth = 12.0;
constexpr double kSquareHeight = 18.0;

QGraphicsSimpleTextItem* textOf(const OrvNgPort& port)
{
    return dynamic_cast<QGraphicsSimpleTextItem*>(port.childItems().value(0));
}

} // namespace

class tst_OrvNgPort : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stretchedOutput_keepsSquareAndTextAtTheRightEnd()
    {
        ExtendedRig rig;
        OrvNgOutputPort port(rig.m_Node, kOut, kOut);
        port.setGeometry(QRectF(0, 30, 300, kSquareHeight));
        QCOMPARE(port.portRect(), QRectF(300 - kSquareWidth, 0, kSquareWidth, kSquareHeight));
        QCOMPARE(port.portCenterPos(), QPointF(294, 9));
        QCOMPARE(port.portRectMappedToParent().topLeft(), QPointF(288, 30));
        QCOMPARE(textOf(port)->pos().x() + textOf(port)->boundingRect().width(), 286.0);
        // The scene finds items by their bounds only.
        QVERIFY(port.boundingRect().contains(port.portRect()));
    }

    void hiddenPort_takesNoRoomAndAttachesAtItsParentsCentre()
    {
        ExtendedRig rig;
        OrvNgInputPort port(rig.m_Node, kA, kA, false);
        port.setPos(5, 40);
        port.setVisible(false);
        QVERIFY(port.boundingRect().isEmpty());
        QCOMPARE(port.mapToParent(port.portCenterPos()), rig.m_Node->boundingRect().center());
        QCOMPARE(painted(port).pixelColor(6, 9).alpha(), 0);
        port.setText(QStringLiteral("a far longer text than before"));
        QCOMPARE(port.maximumHeight(), 0.0);
        QCOMPARE(port.minimumWidth(), 0.0);

        // Shown as a plain item it gets its room too.
        static_cast<QGraphicsItem&>(port).setVisible(true);
        QCOMPARE(port.maximumHeight(), port.boundingRect().height());
        QCOMPARE(port.minimumWidth(), port.boundingRect().width());
        QVERIFY(port.minimumWidth() > 4 * kSquareWidth);
        static_cast<QGraphicsItem&>(port).setVisible(false);
        QCOMPARE(port.maximumHeight(), 0.0);
    }
};

QTEST_MAIN(tst_OrvNgPort)
#include "tst_OrvNgPort.moc"
