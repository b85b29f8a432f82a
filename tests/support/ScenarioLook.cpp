#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "support/Scenario.h"

namespace {

template <typename Value> Value valueOf(const QHash<QString, Value>& table, const QString& name)
{
    if (!table.contains(name))
        qFatal("no look is called %s", qPrintable(name));
    return table[name];
}

} // namespace

// One table: long, and as flat as a list.
void ScenarioStage::addLookWords()
{
    const auto recolour = [this](const char* name, auto change) {
        word(name, [this, change] {
            change();
            node().setCorrectColor();
        });
    };
    // Shows the scene from its origin on.
    word("picture", [this] {
        delete m_Node;
        QCursor::setPos(790, 590);
        flushEvents();
        m_View.setMinimapVisible(false);
        m_View.setGridEnabled(false);
        m_View.resize(size(0).toSize());
        const double near = double(OrvNgStyle::instance().getSceneLODSwitchThreshold()) * 1.03;
        const double scale = text(1) == u"near" ? near : number(1);
        m_View.setTransform(QTransform::fromScale(scale, scale));
        m_View.centerViewOn(pair(0) / (2 * scale), false);
    });
    word("marble",
        u"extended $1 $2, maininput $1 a, inputs $1 b c d, outputs $1 out rest, "
        u"title $1 Marble, mode $1 $3"_s);
    word("disc", u"dot $1 $2, inputs $1 a, outputs $1 out"_s);
    // A straight edge between two dots: NAME.a.
    word("wire",
        u"disc $1from $2, disc $1 $2, shift $1 $3, connect $1.a $1from.out, tags $1.a $4 $5"_s);
    word("note", [this] { introduce(new OrvNgUINode(nullptr)); });
    word("notecolor", [this] { nodeAs<OrvNgUINode>().setNodeBackgroundColour(color(1)); });
    word("notelabel", [this] {
        const QString all = text(1).repeated(qMax(1, whole(2)));
        node().setProperty("label", QString(all).replace(u"\\n"_s, u"\n"_s));
    });
    word("increase", [this] { nodeAs<OrvNgTextNode>().increaseSize(whole(1)); });
    word("textnode", [this] { introduce(new OrvNgTextNode(nullptr)); });
    recolour("shape", [this] { node().setShapeType(whole(1)); });
    recolour("colors", [this] { node().setNodeColor(color(1), color(2)); });
    recolour("category", [this] { node().setCategory(text(1)); });
    recolour("state", [this] {
        static const QHash<QString, void (OrvNgNode::*)(bool)> s_States{
            {u"paint"_s, &OrvNgNode::setCurrentPaint}, {u"debug"_s, &OrvNgNode::setDebug},
            {u"bypassed"_s, &OrvNgNode::setBypassed}, {u"cached"_s, &OrvNgNode::setCached},
            {u"baked"_s, &OrvNgNode::setBaked}, {u"outdated"_s, &OrvNgNode::setOutdatedBaked},
            {u"locked"_s, &OrvNgNode::setLocked}};
        node().setDebugColor(QColor(0, 140, 140));
        if (text(1) == u"outdated")
            node().setBaked(true);
        (node().*valueOf(s_States, text(1)))(true);
    });
    word("look", [this] {
        static const QHash<QString, void (OrvNgEdge::*)(bool)> s_Looks{
            {u"shared"_s, &OrvNgEdge::markAsShared}, {u"activated"_s, &OrvNgEdge::setActivated},
            {u"bypassed"_s, &OrvNgEdge::setBypassed}, {u"severed"_s, &OrvNgEdge::setSevered},
            {u"debug"_s, &OrvNgEdge::setDebug}};
        edge()->setDebugColor(QColor(0, 200, 200));
        if (text(1) == u"inserting")
            edge()->hightlightForNodeInsert();
        else
            (edge()->*valueOf(s_Looks, text(1)))(true);
    });
    word("porthover", [this] { port(1)->setMouseHovered(true); });
    word("portcolor", [this] { port(1)->setSpecialPortColor(color(2)); });
    word("icon", [this] { extended().setIconVisible(true, extended().addIcon(text(1))); });
    word("hideicon", [this] { extended().setIconVisible(false, whole(1)); });
    word("pixmap", [this] {
        QPixmap icon(m_Args.size() > 2 ? size(2).toSize() : QSize(10, 10));
        icon.fill(color(1));
        node().setPixmap(icon, {2, 2});
    });
}
