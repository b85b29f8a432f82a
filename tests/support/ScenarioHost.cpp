#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/Scenario.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

namespace {

/// An extended node that refuses the node "Odd" as a source.
class Picky : public OrvNgExtendedNode
{
public:
    using OrvNgExtendedNode::OrvNgExtendedNode;
    ~Picky() override { aboutToBeDestroyed(); }
    bool acceptsInputSource(OrvNgNode* source, const QString&, const QString&) override
    {
        return source->text() != u"Odd";
    }
};

/// A host's object that selects the node it stands for in turn.
class Model : public OrvSerializableObject
{
public:
    using OrvSerializableObject::OrvSerializableObject;
    void setSelected(bool selected, bool withChildren = false) override
    {
        OrvSerializableObject::setSelected(selected, withChildren);
        m_Tell(selected);
    }
    std::function<void(bool)> m_Tell;
};

} // namespace

// One table: long, and as flat as a list.
void ScenarioStage::addHostWords()
{
    const auto create = [this](bool withEdge) {
        for (const QString& name : textsFrom(1))
            node().createOutputPoint(name, withEdge);
    };
    const auto isIn = [this] { return text(1) == u"in"; };
    const auto isEdge = [this] { return text(0).contains(QLatin1Char('.')); };
    // "NAME=text", from the third text on
    const auto pairs = [this] {
        QList<QPair<QString, QString>> all;
        for (const QString& each : textsFrom(2))
            all.append({each.section(QLatin1Char('='), 0, 0), each.section(QLatin1Char('='), 1)});
        return all;
    };
    const auto positions = [this] {
        const QPair<QPoint, QPoint> ends{pair(2).toPoint(), pair(3).toPoint()};
        return QHash<QString, QPair<QPoint, QPoint>>{{text(1), ends}};
    };
    // Nodes
    word("box", [this] { introduce(new TestNode(text(0), size(2))); });
    word("extended", [this] { introduce(new Picky(nullptr)); });
    word("dot", [this] { introduce(new OrvNgDotNode(nullptr)); });
    word("title", [this] { node().setText(text(1).replace(u"\\n"_s, u"\n"_s)); });
    word("hovered", [this] { node().setHovered(isOn(1)); });
    word("model", [this] {
        auto* model = new Model(&m_View);
        node().setParent(model);
        model->m_Tell = [this, item = &node()](bool isOn) {
            tell(u"models"_s, item->text() + (isOn ? u"+"_s : u"-"_s));
            static_cast<QGraphicsItem*>(item)->setSelected(isOn);
        };
    });
    word("visible", [this] { node().setVisible(isOn(1)); });
    word("system", [this] { node().setIsSystemShaderNode(isOn(1)); });
    word("unselectable", [this] { node().setFlag(QGraphicsItem::ItemIsSelectable, false); });
    word("select", [this] {
        m_Scene.clearSelection();
        for (const QString& name : m_Args)
            static_cast<QGraphicsItem*>(nodeOf(name))->setSelected(true);
    });
    word("place", [this] { node().setPos(pair(1)); });
    word("putmiddle",
        [this] { node().setPos(scenePos(text(1)) - node().nodeShapeRect().center()); });
    word("shift", [this] { node().setPos(node().pos() + pair(1)); });
    word("parent", [this] { node().setParentItem(&node(1)); });
    word("save", [this] { node().savePosition(); });
    word("mark", [this] {
        m_MarkedScroll = m_View.scrolled();
        for (auto each = m_Nodes.begin(); each != m_Nodes.end(); ++each)
            m_MarkedPositions[each.key()] = *each ? (*each)->pos() : QPointF();
    });
    word("part", [this] {
        (new QGraphicsRectItem(rect(1), &node()))->setPen(Qt::NoPen);
        nodeAs<TestNode>().updateBounds();
    });
    word("removepart", [this] { delete node().childItems().constLast(); });
    word("probe", [this] {
        auto* probe = new QGraphicsRectItem(rect(0), m_Node);
        probe->setVisible(false);
        m_Node->setInsertionProbe(text(0) == u"none" ? nullptr : probe);
    });
    word("autoinsert", [this] { node().processAutoinsert(); });
    word("replace", [this] { node().replace(text(1).isEmpty() ? nullptr : &node(1)); });
    word("grab", [this] { node().grabMouse(); });
    word("ungrab", [this] { node().ungrabMouse(); });
    word("hear", [this] { m_Heard[u"asked"_s].append(node().text()); });
    // Points
    word("inputs", [this] {
        for (const QString& name : textsFrom(1))
            node().createInput(name, false, {});
    });
    word("maininput", [this] { node().createInput(text(1), true, {}); });
    word("outputs", [=] { create(true); });
    word("points", [=] { create(false); });
    word("mode", [this] {
        const QStringList modes{
            u"expanded"_s, u"top"_s, u"grouped"_s, u"connected"_s, u"collapsed"_s};
        extended().setPortListMode(Extended::PortListMode(modes.indexOf(text(1))));
    });
    word("clusters", [=] {
        QList<QPair<QString, QStringList>> all;
        for (const auto& each : pairs())
            all.append({each.first, each.second.split(QLatin1Char(','), Qt::SkipEmptyParts)});
        isIn() ? extended().setInputPortClusterMap(all) : extended().setOutputPortClusterMap(all);
    });
    word("pretty", [=] {
        QMap<QString, QString> all;
        for (const auto& each : pairs())
            all[each.first] = each.second;
        isIn() ? node().setInputConnectionPrettyNames(all)
               : node().setOutputConnectionPrettyNames(all);
    });
    word("refresh", [this] { node().refreshPrettyName(text(1)); });
    word("comein", [=] { node().setInputConnectionPositions(positions()); });
    word("goout", [=] { node().setOutputConnectionPositions(positions()); });
    word("textat", [this] {
        node().setInputConnectionTextPositions({{text(1), float(number(2))}});
    });
    word("pause", [this] { extended().pauseInvalidation(isOn(1)); });
    word("setporttext", [this] { port(1)->setText(text(2)); });
    word("reorder", [=] {
        isIn() ? extended().reorderInputPorts(textsFrom(2))
               : extended().reorderOutputPorts(textsFrom(2));
    });
    word("rename", [=] {
        isIn() ? node().renameInput(text(2), text(3)) : node().renameOutputPoint(text(2), text(3));
    });
    word("remove",
        [=] { isIn() ? node().removeInput(text(2)) : node().removeOutputPoint(text(2)); });
    word("removeat", [=] {
        if (text(1) == u"edge")
            node().removeOutput(whole(2));
        else
            isIn() ? node().removeInput(whole(2)) : node().removeOutputPoint(whole(2));
    });
    word("showport", [this] { extended().setInputPortVisible(text(1), isOn(2)); });
    // Edges
    word("stub", [this] { node().addOutputEdge(text(1)); });
    word("virtual", [this] { node().createVirtualInputEdge(text(1)); });
    word("temporary", [this] { node().createTemporaryOutputEdge(text(1)); });
    word("connect", [this] { edge()->setSourceNode(&node(1), point(1)); });
    word("free", [this] { edge()->setSourceNode(nullptr, {}); });
    word("detach", [this] { edge()->detachFromSourceNode(); });
    word("output", [this] { edge()->setSourceOutputPoint(text(1)); });
    word("leadto", [this] { edge()->setDestNode(&node(1)); });
    word("insert", [this] { edge(1)->insertNodeIntoEdge(&node(), edge()); });
    word("setup", [this] { node().setupNodeForInsertionIntoEdge(edge(1)); });
    word("tags", [this] { node().updateInputTags(point(0), tagsFrom(1)); });
    word("dotable", [this] { edge()->switchToDotableMode(isOn(1)); });
    word("textvisible", [this] { edge()->setTextVisible(isOn(1)); });
    word("label", [this] { edge()->setText(edge()->text(), text(1)); });
    // The host
    word("pushmove", [this] {
        OrvUndoManager::instance().push(m_Args.size() == 1
                ? new OrvNgNodePositionChangeUndo(&node())
                : new OrvNgNodePositionChangeUndo(&node(), pair(1), pair(2)));
    });
    word("undo", [this] { m_UndoStack.undo(); });
    word("redo", [this] { m_UndoStack.redo(); });
    word("forget", [this] {
        m_Heard.clear();
        m_Recorder.clear();
        m_UndoStack.clear();
    });
    word("snap", [this] { OrvShaderNetworkManager::instance()->setSnapToGrid(isOn()); });
    word("spacing", [this] {
        OrvShaderNetworkManager::instance()->setGridWidth(whole(0));
        OrvShaderNetworkManager::instance()->setGridHeight(whole(0));
    });
    word("style", [this] {
        const QByteArray name = text(0).toLatin1();
        if (!m_Style.contains(name))
            m_Style[name] = OrvNgStyle::instance().property(name.constData());
        OrvNgStyle::instance().setProperty(name.constData(), number(1));
    });
    word("delete", [=] { isEdge() ? delete edge() : delete &node(); });
    word("destroy", [=] { isEdge() ? edge()->destroy() : node().destroy(); });
    word("clear", [this] { m_Scene.clear(); });
    word("item", [this] { m_Scene.addRect(rect(0))->setFlag(QGraphicsItem::ItemIsMovable); });
    word("events", [] { flushEvents(); });
}
