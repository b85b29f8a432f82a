#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgNodeHeaderButton.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/ExtendedRig.h"

#include <QGraphicsView>
#include <QSignalSpy>
#include <QtTest>

namespace {

using Node = OrvNgExtendedNode;

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
        // Mode, the next one with clusters, the next one without.
        // clang-format off
        const Node::PortListMode rows[][3]
            = {{Node::PORT_LIST_EXPANDED, Node::PORT_LIST_GROUPED, Node::PORT_LIST_ONLY_CONNECTED},
                {Node::PORT_LIST_GROUPED, Node::PORT_LIST_ONLY_CONNECTED, Node::PORT_LIST_ONLY_CONNECTED},
                {Node::PORT_LIST_ONLY_CONNECTED, Node::PORT_LIST_COLLAPSED, Node::PORT_LIST_COLLAPSED},
                {Node::PORT_LIST_COLLAPSED, Node::PORT_LIST_EXPANDED, Node::PORT_LIST_EXPANDED}};
        // clang-format on
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

    void nodeDrawnAtThreshold_losesButtonAndText()
    {
        Node node(nullptr);
        OrvNgNodeHeaderButton button(&node);
        button.setSide(80);
        OrvNgLodTextItem text(QStringLiteral("WWWW"), nullptr);
        const QImage nothing = painted(button, 0.0);
        for (QGraphicsItem* item : std::initializer_list<QGraphicsItem*>{&button, &text}) {
            QCOMPARE(painted(*item, threshold()), nothing);
            QVERIFY(painted(*item, threshold() * 1.02) != nothing);
            QVERIFY(!item->boundingRect().isEmpty());
        }
    }

    void click_withoutButton_goesToTheNode()
    {
        for (const bool isSmall : {false, true}) {
            Rig rig(isSmall ? threshold() : 1.0);
            const QSignalSpy proposals(rig.m_Node, &OrvNgNode::nodePortListModeChanged);
            rig.m_Node->setPortListMode(isSmall ? Node::PORT_LIST_COLLAPSED : Node::PORT_LIST_T2B);
            rig.click();
            QCOMPARE(proposals.size(), 0);
            QVERIFY(rig.m_Node->isSelected());
            const QPointF middle = rig.m_Node->mapFromScene(rig.buttonCentre());
            QVERIFY(!rig.m_Node->isDoubleClickValid(middle));
            QVERIFY(rig.m_Node->isDoubleClickValid(QPointF(2, 2)));
        }
    }
};

QTEST_MAIN(tst_OrvNgNodeHeaderButton)
#include "tst_OrvNgNodeHeaderButton.moc"
