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

QColor squareColor(OrvNgPort& port)
{
    return painted(port).pixelColor(port.portRect().center().toPoint());
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

    void square_showsConnection_data()
    {
        const TestTable<QString, int, QColor> row("input", "mode", "expected");
        const OrvNgStyle& style = OrvNgStyle::instance();
        const int expanded = OrvNgExtendedNode::PORT_LIST_EXPANDED;
        const int grouped = OrvNgExtendedNode::PORT_LIST_GROUPED;
        const QString empty = QStringLiteral("empty");
        row("free input", kA, expanded, style.getPortNoConnectionColor());
        row("connected input", kB, expanded, style.getPortColor());
        row("cluster with a connected member, grouped", kGroup, grouped,
            style.getClusteredPortColor());
        row("the same cluster, expanded", kGroup, expanded,
            style.getClusteredPortNoConnectionColor());
        row("cluster without connection", empty, grouped,
            style.getClusteredPortNoConnectionColor());
    }
    void square_showsConnection()
    {
        QFETCH(QString, input);
        QFETCH(int, mode);
        QFETCH(QColor, expected);
        ExtendedRig rig;
        rig.m_Node->setInputPortClusterMap(
            {{kGroup, {kB}}, {QStringLiteral("empty"), {kA, QStringLiteral("missing")}}});
        rig.setMode(mode);
        rig.connectInput(kB);
        OrvNgPort* port = rig.m_Node->inputPort(input);
        port->setVisible(true);
        QCOMPARE(squareColor(*port), expected);

        port->setSpecialPortColor(QColor(1, 2, 3));
        QCOMPARE(squareColor(*port), QColor(1, 2, 3));
        port->setSpecialPortColor(QColor());
        QCOMPARE(squareColor(*port), expected);

        const OrvNgStyle& style = OrvNgStyle::instance();
        QCOMPARE(squareColor(*rig.m_Source->outputPort(kOut)), style.getPortColor());
        // The tail of an output, which has no destination, does not count.
        rig.m_Node->setOutputPortVisible(kRest, true);
        QCOMPARE(squareColor(*rig.m_Node->outputPort(kRest)), style.getPortNoConnectionColor());
        OrvNgInputPort stray(rig.m_Node, QString(), QStringLiteral("unknown"), false);
        QCOMPARE(squareColor(stray), style.getPortNoConnectionColor());
    }
};

QTEST_MAIN(tst_OrvNgPort)
#include "tst_OrvNgPort.moc"
