#include "OrvNodeGraph/OrvNgInputPort.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"
#include "OrvNodeGraph/OrvNgOutputPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QtTest>

using Node = OrvNgExtendedNode;

namespace {

/// An item alone, as it paints itself at a scale; its origin is the image's top-left corner.
QImage painted(QGraphicsItem& item, double scale)
{
    QImage image(400, 200, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    QStyleOptionGraphicsItem option;
    item.paint(&painter, &option, nullptr);
    return image;
}

/// The last column before a limit in which the port paints something; -1 for none.
int lastPaintedColumn(OrvNgPort& port, int limit, double scale = 1.0)
{
    const QImage image = painted(port, scale);
    for (int x = limit - 1; x >= 0; --x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) > 0)
                return x;
        }
    }
    return -1;
}

} // namespace

/// Extended nodes, their ports and buttons: what does not show in a scenario.
class tst_OrvNgExtendedNode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stretchedOutput_keepsSquareAndTextAtTheRightEnd()
    {
        ExtendedRig rig;
        OrvNgOutputPort port(rig.m_Node, kOut, kOut);
        port.setGeometry(QRectF(0, 30, 300, 18));
        QCOMPARE(port.portRect(), QRectF(288, 0, 12, 18));
        QCOMPARE(port.portCenterPos(), QPointF(294, 9));
        QCOMPARE(port.portRectMappedToParent().topLeft(), QPointF(288, 30));
        // The text ends two units before the square, and is left out far away.
        const int textEnd = lastPaintedColumn(port, 288);
        QVERIFY2(textEnd >= 280 && textEnd < 287, qPrintable(QString::number(textEnd)));
        QCOMPARE(lastPaintedColumn(port, 28, 0.1), -1);
        // The scene finds items by their bounds only.
        QVERIFY(port.boundingRect().contains(port.portRect()));
    }

    void boldPort_isMeasuredInItsOwnFont()
    {
        ExtendedRig rig;
        const QString text = QStringLiteral("wide name");
        const OrvNgInputPort plain(rig.m_Node, text, kA, false);
        const OrvNgInputPort bold(rig.m_Node, text, kB, true);
        const OrvNgInputPort again(rig.m_Node, text, kC, false);
        QVERIFY(bold.minimumWidth() > plain.minimumWidth());
        QCOMPARE(again.minimumWidth(), plain.minimumWidth());
    }

    void hiddenPort_takesNoRoomAndAttachesAtItsParentsCentre()
    {
        ExtendedRig rig;
        OrvNgInputPort port(rig.m_Node, kA, kA, false);
        port.setPos(5, 40);
        port.setVisible(false);
        QVERIFY(port.boundingRect().isEmpty());
        QCOMPARE(port.mapToParent(port.portCenterPos()), rig.m_Node->boundingRect().center());
        port.setText(QStringLiteral("a far longer text than before"));
        QCOMPARE(port.maximumHeight(), 0.0);
        // Shown as a plain item it gets its room too.
        static_cast<QGraphicsItem&>(port).setVisible(true);
        QCOMPARE(port.maximumHeight(), port.boundingRect().height());
        QCOMPARE(port.minimumWidth(), port.boundingRect().width());
        QVERIFY(port.minimumWidth() > 48);
    }

    void nodeDrawnAtThreshold_losesButtonAndText()
    {
        const double threshold = double(OrvNgStyle::instance().getSceneLODSwitchThreshold());
        Node node(nullptr);
        OrvNgNodeHeaderButton button(&node);
        button.setSide(80);
        OrvNgLodTextItem text(QStringLiteral("WWWW"), nullptr);
        const QImage nothing = painted(button, 0.0);
        for (QGraphicsItem* item : std::initializer_list<QGraphicsItem*>{&button, &text}) {
            QCOMPARE(painted(*item, threshold), nothing);
            QVERIFY(painted(*item, threshold * 1.02) != nothing);
            QVERIFY(!item->boundingRect().isEmpty());
        }
    }
};

QTEST_MAIN(tst_OrvNgExtendedNode)
#include "tst_OrvNgExtendedNode.moc"
