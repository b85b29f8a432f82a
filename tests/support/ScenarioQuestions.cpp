#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/Scenario.h"

#include <QGraphicsTextItem>
#include <QTextDocument>

namespace {

/// Null unless it is shown.
template <typename Item> Item* shownChildOf(const QGraphicsItem* parent)
{
    for (QGraphicsItem* item : parent->childItems()) {
        auto* found = dynamic_cast<Item*>(item);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

/// Of the edges that pass a test.
template <typename Test, typename Text = QString (OrvNgEdge::*)() const>
QStringList textsOf(const QList<OrvNgEdge*>& edges, Test test, Text text = &OrvNgEdge::text)
{
    QStringList texts;
    for (OrvNgEdge* edge : edges) {
        if (std::invoke(test, edge))
            texts.append(std::invoke(text, edge));
    }
    return texts;
}

/// From the top down.
QStringList shownPorts(OrvNgExtendedNode& node, bool isIn)
{
    QMultiMap<double, QString> names;
    for (const QString& name : isIn ? node.sortedInputPoints() + node.clusteredInputPorts()
                                    : node.sortedOutputPoints() + node.clusteredOutputPorts()) {
        const OrvNgPort* port = isIn ? node.inputPort(name) : node.outputPort(name);
        if (isIn ? node.isInputPortVisible(name) : node.isOutputPortVisible(name))
            names.insert(port->scenePos().y(), name);
    }
    return names.values();
}

} // namespace

// One table: long, and as flat as a list.
void ScenarioStage::addQuestions()
{
    word("heard", [this] { return m_Heard.value(text(0)); });
    word("heardsorted", [this] {
        QStringList all = m_Heard.value(text(0));
        all.sort();
        return all;
    });
    word("heardcount", [this] { return m_Heard.value(text(0)).size(); });
    word("reports", [this] { return m_Recorder.messages().join(u" | "_s); });
    word("menuentries", [this] { return m_MenuEntries; });
    word("steps", [this] {
        QStringList texts;
        for (int i = 0; i < m_UndoStack.count(); ++i)
            texts.append(m_UndoStack.text(i));
        return texts;
    });
    word("stylecolor",
        [this] { return OrvNgStyle::instance().property(text(0).toLatin1().constData()); });
    word("grabber", [this] {
        QGraphicsItem* item = m_Scene.mouseGrabberItem();
        auto* node = dynamic_cast<OrvNgNode*>(item);
        return node ? node->text() : item ? u"another"_s : QString();
    });
    word("let", [this] { m_Places[text(0)] = scenePos(text(1)); });
    word("at", [this] { return scenePos(text(0)); });
    word("near", [this] { return isNear(scenePos(text(0)), scenePos(text(1)), number(2)); });
    // Nodes
    word("pos", [this] { return node().pos(); });
    word("previous", [this] { return node().previousPosition(); });
    word("moved", [this] {
        return namesOf([this](OrvNgNode* each) {
            return each->pos() != m_MarkedPositions[m_Nodes.key(each)];
        });
    });
    word("rect", [this] { return node().sceneBoundingRect(); });
    word("gone", [this] { return m_Nodes.value(text(0)).isNull(); });
    word("isvisible", [this] { return node().isVisible(); });
    word("selection", [this] { return namesOf(&OrvNgNode::isSelected); });
    word("selected", [this] {
        QStringList names;
        for (QGraphicsItem* item : m_View.sortedSelection())
            names.append(m_Nodes.key(dynamic_cast<OrvNgNode*>(item)));
        return names;
    });
    word("hovering", [this] { return namesOf(&OrvNgNode::hovered); });
    word("recolourings", [this] { return nodeAs<TestNode>().m_Recolourings; });
    word("doubleclick",
        [this] { return node().isDoubleClickValid(node().mapFromScene(scenePos(text(1)))); });
    word("shapeof", [this] { return int(node().resolvedShapeType()); });
    word("brush", [this] {
        const QBrush brush = node().nodeUniColour();
        QString colors = brush.gradient() ? QString() : brush.color().name();
        for (const auto& stop : brush.gradient() ? brush.gradient()->stops() : QGradientStops())
            colors += stop.second.name();
        return colors;
    });
    word("brushends", [this] { // how far from the node's top and bottom
        const QBrush brush = node().nodeUniColour();
        const auto* line = static_cast<const QLinearGradient*>(brush.gradient());
        const QRectF body = node().boundingRect();
        return QPointF(line->start().y() - body.top(), line->finalStop().y() - body.bottom());
    });
    // Notes and text nodes; "_" for a space that does not break, "/" for a new line
    const auto readable = [](QString text) {
        text.replace(QChar::Nbsp, u'_').replace(QChar::LineSeparator, u'/');
        return text.replace(QChar::ParagraphSeparator, u'/').replace(u'\n', u'/') + u"."_s;
    };
    const auto rich = [this] { return shownChildOf<QGraphicsTextItem>(&node()); };
    const auto plain = [this] { return shownChildOf<QGraphicsSimpleTextItem>(&node()); };
    word("labelis", [=] { return readable(node().property("label").toString()); });
    word("labelsize", [this] { return node().property("label").toString().size(); });
    word("notetext", [=] { return readable(rich()->document()->toRawText()); });
    word("textcolor",
        [=] { return rich() ? rich()->defaultTextColor() : plain()->brush().color(); });
    word("textmargin", [=] { // how much the node is larger, and how far the two middles are apart
        const QGraphicsItem* item = rich();
        item = item ? item : plain();
        return scenarioText(node().boundingRect().size() - item->boundingRect().size()) + u" "_s
            + scenarioText(
                item->sceneBoundingRect().center() - node().sceneBoundingRect().center());
    });
    // Points and ports
    word("inputpoints", [this] { return node().sortedInputPoints(); });
    word("outputpoints", [this] { return node().sortedOutputPoints(); });
    word("nextinput", [this] { return node().getNextInputPointOnNode(); });
    word("nextfree", [this] { return nameOf(node().getNextFreeInputEdgeOnNode()); });
    word("shown", [this] { return shownPorts(extended(), true); });
    word("shownout", [this] { return shownPorts(extended(), false); });
    word("porttext", [this] { return port(1) ? port(1)->text() : u"none"_s; });
    word("clusterlist", [this] { return extended().inputClusterPortName2ClusterList(text(1)); });
    word("cluster", [this] { return extended().inputPort2ClusterName(text(1)); });
    word("modeof", [this] { return int(extended().portListMode()); });
    word("dest", [this] { return node().inputPortDestPos(point(0)); });
    word("approach", [this] { return node().inputPortSourcePos(point(0)); });
    word("start", [this] { return node().outputPortSourcePos(point(0)); });
    word("startapproach", [this] { return node().outputPortDestPos(point(0)); });
    // Edges
    word("edge", [this] { return nameOf(edge()); });
    word("edgeshows", [this] { return edge()->isVisible(); });
    word("texts", [this] { return edge()->text() + u"/"_s + edge()->prettyText(); });
    word("color", [this] { return edge()->mainEdge()->pen().color(); });
    word("path", [this] {
        const QPainterPath path = edge()->mainEdge()->path();
        return scenarioText(path.pointAtPercent(0)) + u" "_s + scenarioText(path.currentPosition());
    });
    word("hit", [this] { return edge()->shape().contains(pair(1)); });
    word("carried", [this] {
        const QString how = edge()->isGrabbedFromPort() ? u"port"_s : u"end"_s;
        return edge()->isDragging() ? how : QString();
    });
    word("crossed", [this] { return shownChildOf<QGraphicsLineItem>(edge()) != nullptr; });
    word("dotmarker", [this] { return shownChildOf<OrvNgDotableMarkerItem>(edge()) != nullptr; });
    word("arrow", [this] { return shownChildOf<QGraphicsPolygonItem>(edge())->pos(); });
    word("labelof", [this] {
        auto* label = shownChildOf<OrvNgLodTextItem>(edge());
        return label ? label->text() + u" "_s + scenarioText(label->sceneBoundingRect().center())
                     : QString();
    });
    word("connections", [this] {
        const auto text = [](OrvNgEdge* edge) {
            return nameOf(edge) + u"="_s + edge->sourceNode()->text() + u"."_s
                + edge->sourceOutputPoint();
        };
        QStringList all;
        for (const QString& name : m_Args) {
            if (OrvNgNode* node = m_Nodes.value(name))
                all += textsOf(node->inputs(), &OrvNgEdge::sourceNode, text);
        }
        return all;
    });
    word("edges", [this] { return textsOf(node().inputs(), &OrvNgEdge::isVisible); });
    word("labels", [this] { return textsOf(node().inputs(), &OrvNgEdge::isTextVisible); });
    word("stubs", [this] {
        return textsOf(node().outputs(),
            [](OrvNgEdge* edge) { return !edge->destNode() && edge->isVisible(); });
    });
    word("outputcount", [this] { return node().outputCount(); });
    word("lit", [this] {
        const QColor lit = OrvNgStyle::instance().getHighlightForNodeInsertPen().color();
        const auto isLit = [=](OrvNgEdge* edge) { return edge->mainEdge()->pen().color() == lit; };
        return textsOf(node().inputs(), isLit, &ScenarioStage::nameOf);
    });
    // The view
    word("center", [this] { return m_View.center(); });
    word("scale", [this] { return m_View.scaleNow(); });
    word("scrolled", [this] { return m_View.scrolled() - m_MarkedScroll; });
    word("scrolledfar", [this] { return m_View.scrolled().x() - m_MarkedScroll.x() >= 40; });
    word("scenerect", [this] { return m_View.sceneRect(); });
    word("bounds", [this] { return m_View.visibleNodeBounds(); });
    word("viewpixel", [this] { return m_View.viewportTransform().map(pair(0)); });
    word("middle", [this] {
        return m_View.viewportTransform().inverted().map(QRectF({0, 0}, size(0)).center());
    });
    word("atrest", [this] { return isAtRest(); });
    word("interactive", [this] { return m_View.isInteractive(); });
    word("cursorshape", [this] { return int(m_View.viewport()->cursor().shape()); });
    word("tracking", [this] { return int(m_View.cursorTrackingMode()); });
    word("cuttingpath", [this] { return m_View.drawingEdgeSeverPath(); });
    word("minimapshows", [this] { return m_View.shouldDisplayMinimap(); });
    word("minimaprect", [this] { return QRectF(m_View.minimapRect()); });
    word("minimapat", [this] { return m_View.isInMinimap(pixel()); });
    word("minimappos", [this] { return m_View.mapMinimapPosToScenePos(pixel()); });
}
