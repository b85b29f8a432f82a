#include "OrvNodeGraph/OrvNgPortClusters.h"
#include "OrvNodeGraph/OrvNgPortVisibility.h"

#include <QtTest>

using Node = OrvNgExtendedNode;

class tst_OrvNgPortVisibility : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void mode_showsThesePorts_data()
    {
        QTest::addColumn<bool>("isCluster");
        QTest::addColumn<bool>("isMember");
        QTest::addColumn<bool>("isConnected");
        QTest::addColumn<QList<bool>>(
            "shownByMode"); // expanded, T2B, grouped, only connected, collapsed
        const auto row = [](const char* tag, bool cluster, bool member, bool connected,
                             const QList<bool>& shown) {
            QTest::newRow(tag) << cluster << member << connected << shown;
        };
        row("free single port", false, false, false, {true, false, true, false, false});
        row("connected single port", false, false, true, {true, false, true, true, false});
        row("free member", false, true, false, {true, false, false, false, false});
        row("connected member", false, true, true, {true, false, false, true, false});
        row("free cluster", true, false, false, {false, false, true, false, false});
        row("connected cluster", true, false, true, {false, false, true, false, false});
        row("cluster within a cluster", true, true, true, {false, false, true, false, false});
    }
    void mode_showsThesePorts()
    {
        QFETCH(bool, isCluster);
        QFETCH(bool, isMember);
        QFETCH(bool, isConnected);
        QFETCH(QList<bool>, shownByMode);
        QList<bool> shown;
        for (int mode = 0; mode < shownByMode.size(); ++mode)
            shown.append(OrvNgPortVisibility::isShown(
                static_cast<Node::PortListMode>(mode), {isCluster, isMember, isConnected}));
        QCOMPARE(shown, shownByMode);
    }

    void click_proposesNextMode_data()
    {
        QTest::addColumn<Node::PortListMode>("mode");
        QTest::addColumn<Node::PortListMode>("withClusters");
        QTest::addColumn<Node::PortListMode>("withoutClusters");
        const auto expanded = Node::PORT_LIST_EXPANDED;
        const auto grouped = Node::PORT_LIST_GROUPED;
        const auto connected = Node::PORT_LIST_ONLY_CONNECTED;
        const auto collapsed = Node::PORT_LIST_COLLAPSED;
        QTest::newRow("expanded") << expanded << grouped << connected;
        QTest::newRow("top to bottom") << Node::PORT_LIST_T2B << grouped << connected;
        QTest::newRow("grouped") << grouped << connected << connected;
        QTest::newRow("only connected") << connected << collapsed << collapsed;
        QTest::newRow("collapsed") << collapsed << expanded << expanded;
    }
    void click_proposesNextMode()
    {
        QFETCH(Node::PortListMode, mode);
        QTEST(OrvNgPortVisibility::nextMode(mode, true), "withClusters");
        QTEST(OrvNgPortVisibility::nextMode(mode, false), "withoutClusters");
    }

    void valueOutsideTheModes_isInvalidAndShowsNothing()
    {
        QVERIFY(OrvNgPortVisibility::isValid(Node::PORT_LIST_COLLAPSED));
        for (int value : {-1, 5, 77}) {
            const auto mode = static_cast<Node::PortListMode>(value);
            QVERIFY(!OrvNgPortVisibility::isValid(mode));
            QVERIFY(!OrvNgPortVisibility::isShown(mode, {true, false, true}));
        }
    }

    void clusters_keepOrderMembersAndLastOwner()
    {
        const QString c = QStringLiteral("c"), y = QStringLiteral("y"), z = QStringLiteral("z");
        const QString a = QStringLiteral("a"), b = QStringLiteral("b"), n = QStringLiteral("n");
        OrvNgPortClusters clusters;
        clusters.assign({{c, {n}}});
        clusters.assign({{z, {a}}, {y, {b}}, {z, {b}}}); // z twice: one cluster with all members
        QVERIFY(!clusters.hasMember(n) && !clusters.hasCluster(c));
        QCOMPARE(clusters.list(), OrvNgPortClusters::List({{z, {a, b}}, {y, {b}}}));
        QCOMPARE(clusters.members(z), QStringList({a, b}));
        QCOMPARE(clusters.clusterOf(a), z);
        QCOMPARE(clusters.clusterOf(b), z);

        clusters.assign({{z, {a, b}}, {y, {b}}});
        QCOMPARE(clusters.clusterOf(b), y);
        clusters.removeCluster(y);
        QVERIFY(clusters.list().size() == 1 && !clusters.hasCluster(y));
        QCOMPARE(clusters.clusterOf(b), z);
        clusters.rename(a, n);
        QCOMPARE(clusters.members(z), QStringList({n, b}));
        QVERIFY(clusters.hasMember(n) && !clusters.hasMember(a));
    }
};

QTEST_APPLESS_MAIN(tst_OrvNgPortVisibility)
#include "tst_OrvNgPortVisibility.moc"
