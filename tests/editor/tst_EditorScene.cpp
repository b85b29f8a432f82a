#include "editor/EditorNodeFactory.h"
#include "editor/EditorPortColors.h"
#include "editor/EditorScene.h"
#include "editor/EditorTesting.h"

#include <QTest>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgPort.h>

using namespace EditorTesting;
using Mode = EditorScene::Mode;

namespace {

std::shared_ptr<NetEditor> open(const QString& file)
{
    return std::make_shared<NetEditor>(NetReader(NetSearchPath()).read(file).document);
}

} // namespace

/// The scene against the model, and against real mouse events.
class tst_EditorScene : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scopes_areShownWhole()
    {
        QFETCH(QString, file);
        const Noise noise;
        const std::shared_ptr<NetEditor> editor = open(file);
        for (const NetScope& scope : editor->document().scopes()) {
            EditorScene scene(editor, scope.index);
            QCOMPARE(scene.nodes().size(), scope.nodes.size());
            QCOMPARE(scene.connectionCount(), scope.connections.size());
            for (const NetConnection& each : scope.connections) {
                const OrvNgEdge* edge = scene.edgeOf({each.destNode, each.destPort});
                QVERIFY(edge && edge->sourceNode() == scene.node(each.sourceNode));
                QCOMPARE(edge->sourceOutputPoint(),
                    EditorNodeFactory::outputName(
                        scope.nodes.at(each.sourceNode), each.sourcePort));
            }
        }
        flush();
        QCOMPARE(noise.heard(), QStringList());
    }

    void ports_haveNamesFoldersAndColours()
    {
        EditorScene scene(open(m_Small), 0);
        auto* second = dynamic_cast<OrvNgExtendedNode*>(scene.node(1));
        QCOMPARE(second->text(), QStringLiteral("second"));
        QCOMPARE(second->category(), QStringLiteral("Math"));
        QCOMPARE(second->inputPort(QStringLiteral("in"))->text(), QStringLiteral("Colour"));
        // Two inputs share their name for people: the folder tells which is which.
        QCOMPARE(second->inputPort(QStringLiteral("coat"))->text(), QStringLiteral("Coat weight"));
        QVERIFY(second->isInputPortVisible(QStringLiteral("in")));

        const QString broken = second->inputPort(QStringLiteral("weight"))->text();
        QVERIFY2(broken.contains(QStringLiteral("nobody")), qPrintable(broken));

        const QStringList clusters = second->clusteredInputPorts();
        QCOMPARE(clusters.size(), 1);
        QCOMPARE(second->inputClusterPortName2ClusterList(clusters.constFirst()),
            QStringList({QStringLiteral("in"), QStringLiteral("weight")}));
        scene.setPortListMode({second}, Mode::PORT_LIST_GROUPED);
        QVERIFY(second->isInputPortVisible(clusters.constFirst()));
        QVERIFY(!second->isInputPortVisible(QStringLiteral("in")));
        QVERIFY(second->isInputPortVisible(QStringLiteral("Base")));
    }

    void portColors_areOfEvenSteps()
    {
        const auto name = [](const char* type, bool connected) {
            return EditorPortColors::color(QLatin1String(type), connected).name();
        };
        QCOMPARE(name("float", true), QStringLiteral("#6aa7f4"));
        QCOMPARE(name("float", false), QStringLiteral("#4e75a6"));
        QCOMPARE(name("color3", true), QStringLiteral("#e95145"));
        QCOMPARE(name("vector2", true), QStringLiteral("#bbec4c"));
    }

    void scopes_areShownWhole_data() { addDocumentRows(); }

private:
    const QString m_Small = testPath("small.mtlx");
};

QTEST_MAIN(tst_EditorScene)
#include "tst_EditorScene.moc"
