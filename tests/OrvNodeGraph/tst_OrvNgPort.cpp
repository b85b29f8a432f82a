#include "OrvNodeGraph/OrvNgInputPort.h"
#include "OrvNodeGraph/OrvNgOutputPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"

#include <QFontMetrics>
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
    void initTestCase() { QCoreApplication::setOrganizationName(QStringLiteral("OrvTests")); }

    void text_decidesSizeAndStandsCentred_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("bold");
        QTest::newRow("empty: just the square") << QString() << false;
        QTest::newRow("one line") << QStringLiteral("base colour") << false;
        QTest::newRow("bold") << QStringLiteral("base colour") << true;
        QTest::newRow("a line break counts as one line") << QStringLiteral("base\ncolour") << false;
    }
    void text_decidesSizeAndStandsCentred()
    {
        QFETCH(QString, text);
        QFETCH(bool, bold);
        ExtendedRig rig;
        OrvNgInputPort input(rig.m_Node, text, kA, bold);
        QCOMPARE(textOf(input)->font().bold(), bold);
        QSizeF textSize(0, 0);
        if (!text.isEmpty())
            textSize = QFontMetrics(textOf(input)->font()).size(Qt::TextSingleLine, text);
        const QSizeF size(textSize.width() + kSquareWidth, qMax(kSquareHeight, textSize.height()));
        QCOMPARE(input.boundingRect(), QRectF(QPointF(), size));
        QCOMPARE(input.minimumSize(), size);
        QCOMPARE(input.maximumHeight(), size.height());
        QCOMPARE(input.portRect(), QRectF(0, 0, kSquareWidth, kSquareHeight));
        QCOMPARE(input.portCenterPos(), QPointF(6, 9));
        QCOMPARE(textOf(input)->pos(),
            QPointF(kSquareWidth + 2, (size.height() - textSize.height()) / 2));
    }

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
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QColor>("expected");
        const OrvNgStyle& style = OrvNgStyle::instance();
        const int expanded = OrvNgExtendedNode::PORT_LIST_EXPANDED;
        const int grouped = OrvNgExtendedNode::PORT_LIST_GROUPED;
        const QString empty = QStringLiteral("empty");
        QTest::newRow("free input") << kA << expanded << style.getPortNoConnectionColor();
        QTest::newRow("connected input") << kB << expanded << style.getPortColor();
        QTest::newRow("cluster with a connected member, grouped")
            << kGroup << grouped << style.getClusteredPortColor();
        QTest::newRow("the same cluster, expanded")
            << kGroup << expanded << style.getClusteredPortNoConnectionColor();
        QTest::newRow("cluster without connection")
            << empty << grouped << style.getClusteredPortNoConnectionColor();
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

    void colors_areReadAtConstruction()
    {
        ExtendedRig rig;
        OrvNgStyle& style = OrvNgStyle::instance();
        const QColor before = style.getPortNoConnectionColor();
        OrvNgInputPort first(rig.m_Node, QString(), kA, false);
        style.setPortNoConnectionColor(QColor(9, 8, 7));
        OrvNgInputPort second(rig.m_Node, QString(), kA, false);
        second.setGeometry(QRectF(0, 0, 150, kSquareHeight));
        style.resetPortNoConnectionColor();
        QCOMPARE(squareColor(first), before);
        QCOMPARE(squareColor(second), QColor(9, 8, 7));

        // The highlight reaches across the whole width.
        QCOMPARE(painted(second).pixelColor(140, 9).alpha(), 0);
        second.setMouseHovered(true);
        QCOMPARE(painted(second).pixelColor(140, 9).alpha(), style.getPortHighlightColor().alpha());
    }
};

QTEST_MAIN(tst_OrvNgPort)
#include "tst_OrvNgPort.moc"
