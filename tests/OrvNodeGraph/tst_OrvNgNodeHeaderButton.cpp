#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"

#include <QGraphicsView>
#include <QSignalSpy>
#include <QtTest>

namespace {

using Node = OrvNgExtendedNode;

/// How many pixels an item colours when it is painted at a scale.
int paintedPixels(QGraphicsItem& item, double scale)
{
    const QImage image = painted(item, scale);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    }
    return count;
}

double threshold()
{
    return static_cast<double>(OrvNgStyle::instance().getSceneLODSwitchThreshold());
}

/// A node in a view of its own, at a scale, with its header button in the middle of the viewport.
struct Rig
{
    explicit Rig(double scale)
    {
        m_Scene.addItem(m_Node);
        m_View.setScene(&m_Scene);
        m_View.resize(300, 200);
        m_View.scale(scale, scale);
        m_View.centerOn(buttonCentre());
    }
    QPointF buttonCentre() const
    {
        const QRectF header = m_Node->nodeShapeRect();
        return m_Node->mapToScene(
            QPointF(header.width() - header.height() / 2, header.height() / 2));
    }
    void click()
    {
        QTest::mouseClick(
            m_View.viewport(), Qt::LeftButton, Qt::NoModifier, m_View.mapFromScene(buttonCentre()));
    }

    QGraphicsScene m_Scene;
    Node* m_Node = new Node(nullptr);
    QGraphicsView m_View;
};

} // namespace

class tst_OrvNgNodeHeaderButton : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void click_proposesNextModeAndChangesNothing()
    {
        const Node::PortListMode rows[][3] // mode, next with clusters, next without
            = {{Node::PORT_LIST_EXPANDED, Node::PORT_LIST_GROUPED, Node::PORT_LIST_ONLY_CONNECTED},
                {Node::PORT_LIST_GROUPED, Node::PORT_LIST_ONLY_CONNECTED,
                    Node::PORT_LIST_ONLY_CONNECTED},
                {Node::PORT_LIST_ONLY_CONNECTED, Node::PORT_LIST_COLLAPSED,
                    Node::PORT_LIST_COLLAPSED},
                {Node::PORT_LIST_COLLAPSED, Node::PORT_LIST_EXPANDED, Node::PORT_LIST_EXPANDED}};
        for (const auto& row : rows) {
            Rig rig(1.0);
            rig.m_Node->setPortListMode(row[0]);
            const QSignalSpy proposals(rig.m_Node, &OrvNgNode::nodePortListModeChanged);
            rig.click();
            rig.m_Node->setOutputPortClusterMap({{QStringLiteral("c"), {}}});
            rig.click();
            QCOMPARE(proposals.size(), 2);
            QCOMPARE(proposals.at(0).at(0).toInt(), int(row[2]));
            QCOMPARE(proposals.at(1).at(0).toInt(), int(row[1]));
            QCOMPARE(rig.m_Node->portListMode(), row[0]);
            QVERIFY(!rig.m_Node->isSelected());
        }
    }

    void click_atTheThresholdScale_goesToTheNode()
    {
        Rig rig(threshold());
        const QSignalSpy proposals(rig.m_Node, &OrvNgNode::nodePortListModeChanged);
        rig.click();
        QCOMPARE(proposals.size(), 0);
        QVERIFY(rig.m_Node->isSelected());
    }

    void hostDeletingTheNodeFromTheClick_isSafe()
    {
        Rig rig(1.0);
        connect(
            rig.m_Node, &OrvNgNode::nodePortListModeChanged, this, [&rig] { delete rig.m_Node; });
        const QPointer<OrvNgNode> node(rig.m_Node);
        rig.click();
        QVERIFY(node.isNull());
        QVERIFY(rig.m_Scene.items().isEmpty());
    }

    void nodeDrawnAtThreshold_losesButtonAndText()
    {
        Node node(nullptr);
        OrvNgNodeHeaderButton button(&node);
        button.setSide(80);
        OrvNgLodTextItem text(QStringLiteral("WWWW"), nullptr);
        for (QGraphicsItem* item : std::initializer_list<QGraphicsItem*>{&button, &text}) {
            QCOMPARE(paintedPixels(*item, threshold()), 0);
            QVERIFY(paintedPixels(*item, threshold() * 1.02) > 20);
            QVERIFY(!item->boundingRect().isEmpty());
        }
    }

    void topToBottom_hasNoButton()
    {
        Rig rig(1.0);
        rig.m_Node->setPortListMode(Node::PORT_LIST_T2B);
        const QSignalSpy proposals(rig.m_Node, &OrvNgNode::nodePortListModeChanged);
        rig.click();
        QCOMPARE(proposals.size(), 0);
        QVERIFY(rig.m_Node->isDoubleClickValid(QPointF(2, 2)));
        rig.m_Node->setPortListMode(Node::PORT_LIST_COLLAPSED);
        rig.click();
        QCOMPARE(proposals.size(), 1);
        QVERIFY(!rig.m_Node->isDoubleClickValid(rig.m_Node->mapFromScene(rig.buttonCentre())));
        QVERIFY(rig.m_Node->isDoubleClickValid(QPointF(2, 2)));
    }
};

QTEST_MAIN(tst_OrvNgNodeHeaderButton)
#include "tst_OrvNgNodeHeaderButton.moc"
