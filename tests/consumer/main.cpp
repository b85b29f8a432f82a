// A host in one file: two nodes, one connection, a view. Exits with 0 when the graph answers as it should.
#include <QApplication>
#include <QGraphicsScene>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <OrvNodeGraph/OrvNgStyle.h>
#include <OrvNodeGraph/OrvNgView.h>
#include <cstdio>

namespace {

OrvNgExtendedNode* addNode(QGraphicsScene& scene, const QString& title, const QPointF& pos)
{
    auto* node = new OrvNgExtendedNode(nullptr);
    scene.addItem(node);
    node->setText(title);
    node->createInput("in", true, {});
    node->createOutputPoint("out", true);
    node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
    node->setPos(pos);
    return node;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("OrvConsumer");

    // The installed style sheet must have been found: without it every size is zero.
    if (OrvNgStyle::instance().getNodeHeight() <= 0.0F) {
        std::fputs("the installed style sheet was not found\n", stderr);
        return 1;
    }

    QGraphicsScene scene;
    OrvNgExtendedNode* noise = addNode(scene, "noise", QPointF(0, 0));
    OrvNgExtendedNode* mix = addNode(scene, "mix", QPointF(300, 80));
    mix->input("in")->setSourceNode(noise, "out");

    OrvNgView view(nullptr);
    view.setScene(&scene);
    view.init();
    view.resize(640, 480);
    view.show();
    QCoreApplication::processEvents();

    // Across the library's border the kinds of items must still be told apart.
    const QGraphicsItem* item = mix;
    const bool kindsAreKnown = dynamic_cast<const OrvNgExtendedNode*>(item)
        && !dynamic_cast<const OrvNgExtendedNode*>(scene.items().constLast());
    const bool isConnected
        = noise->outputs().contains(mix->input("in")) && mix->input("in")->isVisible();
    std::printf("kinds %d, connected %d\n", kindsAreKnown, isConnected);
    return kindsAreKnown && isConnected ? 0 : 1;
}
