#include "support/Scenario.h"

#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgDotableMarkerItem.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgLodTextItem.h"
#include "OrvNodeGraph/OrvNgNodePositionChangeUndo.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "OrvNodeGraph/OrvNgUINode.h"

#include "OrvCore/OrvUndoManager.h"
#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QUndoStack>

namespace {

using S = const QString&;
using Extended = OrvNgExtendedNode;
using Frame = OrvNgBackdropNode;

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

/// As scenarios write it: numbers to four places, "x,y", "x,y WxH", yes or no.
QString textOf(const QVariant& value)
{
    const auto number
        = [](double n) { return QString::number(std::round(n * 1e4) / 1e4 + 0.0, 'g', 12); };
    const auto pair = [&](double a, const char* between, double b) {
        return number(a) + q(between) + number(b);
    };
    switch (value.userType()) {
    case QMetaType::Bool:
        return q(value.toBool() ? "yes" : "no");
    case QMetaType::Int:
    case QMetaType::Double:
        return number(value.toDouble());
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return pair(value.toPointF().x(), ",", value.toPointF().y());
    case QMetaType::QSizeF:
        return pair(value.toSizeF().width(), "x", value.toSizeF().height());
    case QMetaType::QRectF:
        return textOf(value.toRectF().topLeft()) + q(" ") + textOf(value.toRectF().size());
    case QMetaType::QColor:
        return value.value<QColor>().name(QColor::HexArgb);
    case QMetaType::QStringList:
        return value.toStringList().join(QLatin1Char(' '));
    default:
        return value.toString();
    }
}

/// "x,y" or "WxH".
QPointF pairOf(const QString& text)
{
    static const QRegularExpression s_Between(q("[,x]"));
    return {text.section(s_Between, 0, 0).toDouble(), text.section(s_Between, 1, 1).toDouble()};
}

template <typename Item> Item* childOf(const QGraphicsItem* parent)
{
    for (QGraphicsItem* item : parent->childItems()) {
        if (auto* found = dynamic_cast<Item*>(item))
            return found;
    }
    return nullptr;
}

/// An extended node that refuses the node "Odd" as a source.
class Picky : public Extended
{
public:
    using Extended::Extended;
    ~Picky() override { aboutToBeDestroyed(); }
    bool acceptsInputSource(OrvNgNode* source, const QString&, const QString&) override
    {
        return source->text() != QLatin1String("Odd");
    }
};

/// A frame that counts how often it stands out.
class MarkedFrame : public Frame
{
public:
    using Frame::Frame;
    ~MarkedFrame() override { aboutToBeDestroyed(); }
    void hightlightBackdropForNodeInsert() override { mark(1); }
    void unHightlightBackdropForNodeInsert() override { mark(-1); }
    void mark(int change)
    {
        m_Marks += change;
        m_Marks > 0 ? Frame::hightlightBackdropForNodeInsert()
                    : Frame::unHightlightBackdropForNodeInsert();
    }
    int m_Marks = 0;
};

using Row = QMap<QString, QString>; // the tag has no name

/// A section of a file: "[title]", then steps, and tables whose rows, each with each, replace <names> in the
/// steps. A section whose title begins with "=" is what "use TITLE" stands for.
struct Section
{
    QString m_Title;
    QStringList m_Lines{};
    QStringList m_Header{};
    QList<Row> m_Rows{{}};
    QList<Row> m_Before{}; ///< rows of the tables before the last one

    /// "|: TAG | NAME | NAME" and below it "| tag | text | text".
    void addTableLine(const QString& line)
    {
        QStringList cells = line.mid(2).split(QLatin1Char('|'));
        for (QString& cell : cells)
            cell = cell.trimmed();
        if (line.startsWith(q("|:"))) {
            m_Header = cells;
            m_Before = m_Rows;
            m_Rows.clear();
            return;
        }
        for (Row row : qAsConst(m_Before)) {
            row[{}] += q(cells.first().isEmpty() ? "" : ", ") + cells.first();
            for (int i = 1; i < cells.size(); ++i)
                row[m_Header.value(i)] = cells.at(i);
            m_Rows.append(row);
        }
    }
    void addTo(QList<Scenario>& all, const QMap<QString, QStringList>& macros) const
    {
        for (const Row& row : m_Rows) {
            QString text;
            for (const QString& line : m_Lines)
                text
                    += (line.startsWith(q("use ")) ? macros.value(line.mid(4)).join(q("\n")) : line)
                    + q("\n");
            for (auto cell = row.begin(); cell != row.end(); ++cell)
                text.replace(q("<%1>").arg(cell.key()), *cell);
            const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            all.append({m_Title + row.value({}), lines});
        }
    }
};

} // namespace

QSizeF ScenarioStage::sizeOf(int i) const
{
    return {pairOf(s(i)).x(), pairOf(s(i)).y()};
}

QRectF ScenarioStage::rect(int i) const
{
    return {pairOf(s(i)), sizeOf(i + 1)};
}

ScenarioStage::ScenarioStage()
    : m_Words(words())
{
    OrvUndoManager::instance().undoStack()->clear();
    OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    m_Args = QStringList(q("node"));
    make(m_Node);
    QObject::connect(
        &m_Scene, &QGraphicsScene::selectionChanged, &m_View, [this] { tell(q("selection"), {}); });
    QObject::connect(&m_View, &OrvNgView::shakeToExtractTriggered, &m_View,
        [this] { tell(q("shakes"), q("!")); });
    m_MenuCloser.start(1000);
    m_MenuCloser.callOnTimeout([this] {
        if (QWidget* menu = QApplication::activePopupWidget()) {
            m_Faults.append(q("  a menu waits"));
            menu->close();
        }
    });
    QCursor::setPos(
        m_View.viewport()->mapToGlobal(QPoint(200, 100))); // where the view does not scroll
    flushEvents();
}

ScenarioStage::~ScenarioStage()
{
    for (auto value = m_Style.begin(); value != m_Style.end(); ++value)
        OrvNgStyle::instance().setProperty(value.key().constData(), *value);
}

void ScenarioStage::tell(const QString& kind, const QString& what)
{
    m_Heard[kind].append(what);
    const QStringList steps = m_Reactions.take(kind).split(q(", "), Qt::SkipEmptyParts);
    for (const QString& step : steps)
        runStep(step);
}

QVariant ScenarioStage::make(OrvNgNode* node)
{
    const QString name = s(0);
    m_Nodes[name] = node;
    node->setText(name);
    if (node->scene() != &m_Scene) { // all but the first
        m_Scene.addItem(node);
        node->setPos(pairOf(s(1)));
    }
    QObject* context = &m_View;
    QObject::connect(node, &OrvNgNode::inputSourceChanged, context,
        [this, name](OrvNgNode* source, const QString& output, const QString& input) {
            const QString from = source ? source->text() + q(".") + output : q("none");
            const QString text = name + q(".") + input + q("=") + from;
            OrvUndoManager::instance().push(new QUndoCommand(text));
            tell(q("inputs"), text);
        });
    QObject::connect(node, &OrvNgNode::inputSourceRefused, context,
        [this, name](OrvNgNode* source, const QString&, const QString& input) {
            tell(q("inputs"), name + q(".") + input + q("!") + source->text());
        });
    QObject::connect(node, &OrvNgNode::posChanged, context, [this, node](const QPointF& pos) {
        tell(q("places"), textOf(pos) + q("/") + textOf(node->pos()));
    });
    QObject::connect(node, &OrvNgNode::hoveredChanged, context,
        [this, node](bool isOn) { tell(q("hovers"), node->text() + q(isOn ? "+" : "-")); });
    QObject::connect(node, &OrvNgNode::nodePortListModeChanged, context,
        [this](int mode) { tell(q("modes"), QString::number(mode)); });
    QObject::connect(node, &OrvNgNode::clickedOnDotableMarkerOnEdge, context,
        [this, name](OrvNgEdge* edge) { tell(q("markers"), name + q("*") + this->name(edge)); });
    if (auto* frame = qobject_cast<Frame*>(node))
        QObject::connect(frame, &Frame::zOrderChanged, context,
            [this, name](int order) { tell(q("raised"), name + QString::number(order)); });
    return {};
}

void ScenarioStage::setMode(const QString& mode)
{
    const QStringList modes{q("expanded"), q("top"), q("grouped"), q("connected"), q("collapsed")};
    X().setPortListMode(Extended::PortListMode(modes.indexOf(mode)));
}

// Finding

OrvNgNode* ScenarioStage::nodeOf(const QString& path) const
{
    OrvNgNode* node = m_Nodes.value(path.section(QLatin1Char('.'), 0, 0));
    if (!node)
        qFatal("there is no node %s", qPrintable(path));
    return node;
}

OrvNgEdge* ScenarioStage::edgeOf(const QString& path) const
{
    OrvNgNode* node = nodeOf(path);
    const QString point = path.section(QLatin1Char('.'), 1);
    if (point == q("?"))
        return node->highlightedEdge();
    if (point == q("virtual"))
        return node->virtualInputEdge();
    if (point == q("tmp"))
        return node->temporaryOutputEdge();
    OrvNgEdge* input = node->input(point);
    return input ? input : node->outputEdge(point);
}

QString ScenarioStage::name(const OrvNgEdge* edge)
{
    return edge && edge->destNode() ? edge->destNode()->text() + q(".") + edge->text() : QString();
}

/// "x,y" of the scene; "N", "N.port"; "N:left", "N:right" where edges attach to a header, "N:button",
/// "N:center" of the whole node; "N.x%4", the share of an edge's path; each with an offset, "N+3,-5".
QPointF ScenarioStage::scenePos(const QString& place)
{
    static const QRegularExpression s_Form(
        q("^(?:(-?[\\d.]+,-?[\\d.]+)|([A-Za-z]\\w*)(?:\\.(\\w+))?(?:%(\\d+))?(?::(\\w+))?)(?:\\+(-?"
          "[\\d.]+,-?[\\d.]+))?$"));
    const QRegularExpressionMatch match = s_Form.match(place);
    if (!match.hasMatch())
        qFatal("%s is no place", qPrintable(place));
    const QPointF offset = pairOf(match.captured(6));
    if (m_Places.contains(place))
        return m_Places[place];
    if (!match.captured(1).isEmpty())
        return pairOf(match.captured(1)) + offset;
    OrvNgNode* node = nodeOf(match.captured(2));
    const QString point = match.captured(3);
    if (!match.captured(4).isEmpty())
        return edgeOf(match.captured(2) + q(".") + point)
            ->mainEdge()
            ->path()
            .pointAtPercent(match.captured(4).toDouble() / 100);
    auto* extended = dynamic_cast<Extended*>(node);
    if (extended && !point.isEmpty()) {
        OrvNgPort* port
            = extended->inputPort(point) ? extended->inputPort(point) : extended->outputPort(point);
        return port->portRectMappedToScene().center() + offset;
    }
    const QString anchor = match.captured(5);
    const QRectF shape = anchor == q("center") ? node->boundingRect() : node->nodeShapeRect();
    const double x = anchor == q("left") ? 10
        : anchor == q("right")           ? shape.width() - 10
        : anchor == q("button")          ? shape.width() - shape.height() / 2
                                         : shape.center().x();
    return node->mapToScene(QPointF(x, shape.center().y())) + offset;
}

/// "@x,y", pixels of the viewport, or a place in the scene.
QPoint ScenarioStage::viewPos(const QString& place)
{
    if (place == q("minimap"))
        return m_View.minimapRect().center();
    if (place.startsWith(QLatin1Char('@')))
        return pairOf(place.mid(1)).toPoint();
    return m_View.mapFromScene(scenePos(place));
}

template <typename Test> QStringList ScenarioStage::namesOf(Test&& test) const
{
    QStringList names;
    for (auto node = m_Nodes.begin(); node != m_Nodes.end(); ++node) {
        if (*node && test(node->data()))
            names.append(node.key());
    }
    return names;
}

template <typename Test> QStringList ScenarioStage::inputsOf(OrvNgNode& node, Test&& test) const
{
    QStringList names;
    for (OrvNgEdge* edge : node.inputs()) {
        if (test(edge))
            names.append(edge->text());
    }
    return names;
}

// The mouse

int ScenarioStage::keys() const
{
    int all = 0;
    const QMap<QString, int> keys{{q("shift"), Qt::ShiftModifier}, {q("ctrl"), Qt::ControlModifier},
        {q("alt"), Qt::AltModifier}, {q("meta"), Qt::MetaModifier}};
    for (const QString& word : m_Args)
        all |= keys.value(word);
    return all;
}

Qt::MouseButton ScenarioStage::button(Qt::MouseButton otherwise) const
{
    const QMap<QString, Qt::MouseButton> buttons{{q("left"), Qt::LeftButton},
        {q("right"), Qt::RightButton}, {q("middle"), Qt::MiddleButton},
        {q("extra"), Qt::ExtraButton1}, {q("none"), Qt::NoButton}};
    for (const QString& word : m_Args) {
        if (buttons.contains(word))
            return buttons[word];
    }
    return otherwise;
}

void ScenarioStage::press(QEvent::Type type, const QPoint& pos, Qt::MouseButton which)
{
    mouse(type, pos, m_Held = which, which, keys());
}

void ScenarioStage::drop(const QPoint& pos)
{
    const Qt::MouseButton which = std::exchange(m_Held, Qt::NoButton);
    release(pos, button(which), keys());
}

/// Pulls an edge out of a port, lets go, and presses elsewhere.
void ScenarioStage::pull(Qt::MouseButton second)
{
    const QPoint start = P(0), end = P(1);
    drag({start, (start + end) / 2, end});
    release(end, Qt::LeftButton);
    if (!m_Scene.mouseGrabberItem())
        m_Faults.append(q("the edge does not stay on the cursor"));
    move(P(1), Qt::NoButton);
    ViewStage::press(P(1), second);
    release(end, second);
}

/// An entry is chosen in the menu that the next drop opens, or it is closed.
void ScenarioStage::openMenu()
{
    QTimer::singleShot(0, &m_View, [this, entry = s(0)] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            qFatal("no menu is open");
        for (const QAction* action : menu->actions())
            m_MenuEntries.append(action->text() + q(action->isChecked() ? "*" : ""));
        tell(q("menu"), entry);
        for (QAction* action : menu->actions()) {
            if (action->text() == entry)
                action->trigger();
        }
        menu->close();
    });
}

QVariant ScenarioStage::runStep(const QString& step)
{
    static const QRegularExpression s_Word(q("\"([^\"]*)\"|(\\S+)"));
    QStringList args;
    auto found = s_Word.globalMatch(step);
    while (found.hasNext()) {
        const auto match = found.next();
        args.append(match.captured(1) + match.captured(2));
    }
    const auto word = m_Words.find(args.value(0));
    if (word == m_Words.end())
        qFatal("no word of scenarios: %s", qPrintable(step));
    args.removeFirst();
    m_Args.swap(args); // a slot may run steps meanwhile
    const QVariant answer = word->second();
    m_Args.swap(args);
    return answer;
}

/// Steps between ", "; "QUESTION = ANSWER", "QUESTION ~ PART OF THE ANSWER", where "{QUESTION}" may stand for
/// the answer; "on KIND: STEPS" for the next signal of a kind.
void ScenarioStage::run(const QString& line)
{
    static const QRegularExpression s_Reaction(q("^on (\\w+): (.*)$"));
    static const QRegularExpression s_Between(
        q(", (?=([^\"]*\"[^\"]*\")*[^\"]*$)")); // not in quotes
    static const QRegularExpression s_Question(q("^(.*?) ([=~])(?: (.*))?$"));
    const auto reaction = s_Reaction.match(line);
    if (reaction.hasMatch()) {
        m_Reactions[reaction.captured(1)] = reaction.captured(2);
        return;
    }
    for (const QString& step : line.split(s_Between, Qt::SkipEmptyParts)) {
        const auto question = s_Question.match(step.trimmed());
        if (!question.hasMatch()) {
            runStep(step);
            continue;
        }
        QString expected = question.captured(3);
        if (expected.startsWith(QLatin1Char('{')))
            expected = textOf(runStep(expected.mid(1, expected.size() - 2)));
        const QString answer = textOf(runStep(question.captured(1)));
        const bool isPart
            = question.captured(2) == q("~") && answer.isEmpty() == expected.isEmpty();
        if (isPart ? !answer.contains(expected) : answer != expected)
            m_Faults.append(q("  %1\n  but it is: %2").arg(step, answer));
    }
}

// clang-format off
ScenarioStage::Words ScenarioStage::words()
{
    Words all = hostWords();
    for (const Words& more : {lookWords(), mouseWords(), questions()})
        all.insert(more.begin(), more.end());
    return all;
}

ScenarioStage::Words ScenarioStage::hostWords()
{
    const auto clusters = [this] {
        QList<QPair<QString, QStringList>> all;
        for (const QString& cluster : rest(2))
            all.append({cluster.section(q("="), 0, 0), cluster.section(q("="), 1).split(q(","), Qt::SkipEmptyParts)});
        return all;
    };
    const auto pretty = [this] {
        QMap<QString, QString> all;
        for (const QString& word : rest(2))
            all[word.section(q("="), 0, 0)] = word.section(q("="), 1);
        return all;
    };
    const auto positions = [this] { return QHash<QString, QPair<QPoint, QPoint>>{{s(1), {pairOf(s(2)).toPoint(), pairOf(s(3)).toPoint()}}}; };
    return {
        {q("box"), [this] { return make(new TestNode(s(0), sizeOf(2))); }},
        {q("extended"), [this] { return make(new Picky(nullptr)); }},
        {q("dot"), [this] { return make(new OrvNgDotNode(nullptr)); }},
        {q("frame"), [this] { make(new MarkedFrame(nullptr)); F().resizeNode(sizeOf(2)); return nothing(); }},
        {q("inputs"), [this] { for (const QString& name : rest(1)) N().createInput(name, false, {}); return nothing(); }},
        {q("outputs"), [this] { for (const QString& name : rest(1)) N().createOutputPoint(name, true); return nothing(); }},
        {q("points"), [this] { for (const QString& name : rest(1)) N().createOutputPoint(name, false); return nothing(); }},
        {q("stub"), [this] { N().addOutputEdge(s(1)); return nothing(); }},
        {q("mode"), [this] { setMode(s(1)); return nothing(); }},
        {q("clusters"), [this, clusters] { s(1) == q("in") ? X().setInputPortClusterMap(clusters()) : X().setOutputPortClusterMap(clusters()); return nothing(); }},
        {q("pretty"), [this, pretty] { s(1) == q("in") ? N().setInputConnectionPrettyNames(pretty()) : N().setOutputConnectionPrettyNames(pretty()); return nothing(); }},
        {q("refresh"), [this] { N().refreshPrettyName(s(1)); return nothing(); }},
        {q("comein"), [this, positions] { N().setInputConnectionPositions(positions()); return nothing(); }},
        {q("goout"), [this, positions] { N().setOutputConnectionPositions(positions()); return nothing(); }},
        {q("virtual"), [this] { N().createVirtualInputEdge(s(1)); return nothing(); }},
        {q("temporary"), [this] { N().createTemporaryOutputEdge(s(1)); return nothing(); }},
        {q("reorder"), [this] { s(1) == q("in") ? X().reorderInputPorts(rest(2)) : X().reorderOutputPorts(rest(2)); return nothing(); }},
        {q("rename"), [this] { s(1) == q("in") ? N().renameInput(s(2), s(3)) : N().renameOutputPoint(s(2), s(3)); return nothing(); }},
        {q("remove"), [this] { s(1) == q("in") ? N().removeInput(s(2)) : N().removeOutputPoint(s(2)); return nothing(); }},
        {q("removeat"), [this] { s(1) == q("in") ? N().removeInput(int(d(2))) : s(1) == q("out") ? N().removeOutputPoint(int(d(2))) : N().removeOutput(int(d(2))); return nothing(); }},
        {q("replace"), [this] { N().replace(s(1).isEmpty() ? nullptr : &N(1)); return nothing(); }},
        {q("showport"), [this] { X().setInputPortVisible(s(1), on(2)); return nothing(); }},
        {q("connect"), [this] { E()->setSourceNode(&N(1), s(1).section(QLatin1Char('.'), 1)); return nothing(); }},
        {q("free"), [this] { E()->setSourceNode(nullptr, {}); return nothing(); }},
        {q("detach"), [this] { E()->detachFromSourceNode(); return nothing(); }},
        {q("output"), [this] { E()->setSourceOutputPoint(s(1)); return nothing(); }},
        {q("leadto"), [this] { E()->setDestNode(&N(1)); return nothing(); }},
        {q("insert"), [this] { E(1)->insertNodeIntoEdge(&N(), E()); return nothing(); }},
        {q("setup"), [this] { N().setupNodeForInsertionIntoEdge(E(1)); return nothing(); }},
        {q("unselectable"), [this] { N().setFlag(QGraphicsItem::ItemIsSelectable, false); return nothing(); }},
        {q("autoinsert"), [this] { N().processAutoinsert(); return nothing(); }},
        {q("tags"), [this] { N().updateInputTags(s(0).section(QLatin1Char('.'), 1), QSet<QString>(m_Args.begin() + 1, m_Args.end())); return nothing(); }},
        {q("lock"), [this] { N().updateInputTags(s(0).section(QLatin1Char('.'), 1), {q("_locked")}); return nothing(); }},
        {q("bypass"), [this] { E()->setBypassed(true); return nothing(); }},
        {q("dotable"), [this] { E()->switchToDotableMode(on(1)); return nothing(); }},
        {q("textvisible"), [this] { E()->setTextVisible(on(1)); return nothing(); }},
        {q("textat"), [this] { N().setInputConnectionTextPositions({{s(1), float(d(2))}}); return nothing(); }},
        {q("label"), [this] { E()->setText(E()->text(), s(1)); return nothing(); }},
        {q("select"), [this] { m_Scene.clearSelection(); for (const QString& name : m_Args) static_cast<QGraphicsItem*>(nodeOf(name))->setSelected(true); return nothing(); }},
        {q("place"), [this] { N().setPos(pairOf(s(1))); return nothing(); }},
        {q("putmiddle"), [this] { N().setPos(scenePos(s(1)) - N().nodeShapeRect().center()); return nothing(); }},
        {q("shift"), [this] { N().setPos(N().pos() + pairOf(s(1))); return nothing(); }},
        {q("setposition"), [this] { F().setPosition(pairOf(s(1))); return nothing(); }},
        {q("wrap"), [this] { F().wrapAroundSelection(rect(1), on(3)); return nothing(); }},
        {q("wrapnodes"), [this] { QList<OrvNgNode*> nodes{nullptr}; for (const QString& name : rest(1)) nodes.append(nodeOf(name)); F().wrapAroundNodes({}, nodes); return nothing(); }},
        {q("setrect"), [this] { F().setRect(rect(1)); return nothing(); }},
        {q("resizeframe"), [this] { F().resizeNode(sizeOf(1)); return nothing(); }},
        {q("refreshchildren"), [this] { F().refreshChildrenList(on(1)); return nothing(); }},
        {q("background"), [this] { F().setNodeBackgroundColour(QColor(s(1))); return nothing(); }},
        {q("parent"), [this] { N().setParentItem(&N(1)); return nothing(); }},
        {q("save"), [this] { N().savePosition(); return nothing(); }},
        {q("pushmove"), [this] { OrvUndoManager::instance().push(m_Args.size() == 1 ? new OrvNgNodePositionChangeUndo(&N()) : new OrvNgNodePositionChangeUndo(&N(), pairOf(s(1)), pairOf(s(2)))); return nothing(); }},
        {q("undo"), [] { OrvUndoManager::instance().undoStack()->undo(); return nothing(); }},
        {q("redo"), [] { OrvUndoManager::instance().undoStack()->redo(); return nothing(); }},
        {q("title"), [this] { N().setText(s(1).replace(q("\\n"), q("\n"))); return nothing(); }},
        {q("hovered"), [this] { N().setHovered(on(1)); return nothing(); }},
        {q("visible"), [this] { N().setVisible(on(1)); return nothing(); }},
        {q("system"), [this] { N().setIsSystemShaderNode(on(1)); return nothing(); }},
        {q("snap"), [this] { OrvShaderNetworkManager::instance()->setSnapToGrid(on()); return nothing(); }},
        {q("spacing"), [this] { auto* manager = OrvShaderNetworkManager::instance(); manager->setGridWidth(int(d(0))); manager->setGridHeight(int(d(0))); return nothing(); }},
        {q("part"), [this] { auto* part = new QGraphicsRectItem(rect(1), &N()); part->setPen(Qt::NoPen); dynamic_cast<TestNode&>(N()).updateBounds(); return nothing(); }},
        {q("removepart"), [this] { delete N().childItems().constLast(); return nothing(); }},
        {q("probe"), [this] { m_Node->setInsertionProbe(nullptr); if (s(0) != q("none")) { auto* probe = new QGraphicsRectItem(rect(0), m_Node); probe->setVisible(false); m_Node->setInsertionProbe(probe); } return nothing(); }},
        {q("autoinserts"), [this] { m_View.m_AutoInsert = on(); return nothing(); }},
        {q("delete"), [this] { s(0).contains(QLatin1Char('.')) ? delete E() : delete &N(); return nothing(); }},
        {q("destroy"), [this] { s(0).contains(QLatin1Char('.')) ? E()->destroy() : N().destroy(); return nothing(); }},
        {q("events"), [] { flushEvents(); return nothing(); }},
        {q("clear"), [this] { m_Scene.clear(); return nothing(); }},
        {q("hear"), [this] { m_Heard[q("asked")].append(N().text()); return nothing(); }},
        {q("forget"), [this] { m_Heard.clear(); m_Recorder.clear(); OrvUndoManager::instance().undoStack()->clear(); return nothing(); }},
        {q("grab"), [this] { N().grabMouse(); N().ungrabMouse(); return nothing(); }},
        {q("style"), [this] { const QByteArray name = s(0).toLatin1(); m_Style[name] = OrvNgStyle::instance().property(name.constData()); OrvNgStyle::instance().setProperty(name.constData(), d(1)); return nothing(); }}};
}

ScenarioStage::Words ScenarioStage::lookWords()
{
    const auto points = [this](OrvNgNode* node, const QString& inputs, const QStringList& outputs) {
        make(node);
        for (const QChar input : inputs)
            node->createInput(input, inputs.size() > 1 && input == QLatin1Char('a'), {});
        for (const QString& output : outputs)
            node->createOutputPoint(output, true);
    };
    return {
        // Shows the scene from its origin on.
        {q("picture"), [this] { delete m_Node; QCursor::setPos(790, 590); flushEvents(); m_View.setMinimapVisible(false); m_View.setGridEnabled(false); m_View.resize(sizeOf(0).toSize()); const double near = double(OrvNgStyle::instance().getSceneLODSwitchThreshold()) * 1.03; const double scale = s(1) == q("near") ? near : d(1); m_View.setTransform(QTransform::fromScale(scale, scale)); m_View.centerViewOn(pairOf(s(0)) / (2 * scale), false); return nothing(); }},
        {q("marble"), [this, points] { points(new Extended(nullptr), q("abcd"), {q("out"), q("rest")}); X().setText(q("Marble")); setMode(s(2)); X().setCorrectColor(); return nothing(); }},
        {q("disc"), [this, points] { points(new OrvNgDotNode(nullptr), q("a"), {q("out")}); return nothing(); }},
        // A straight edge between two dots: NAME.a.
        {q("wire"), [this] { const QStringList tags = rest(3); run(q("disc %1from %2, disc %1 %2, shift %1 %3, connect %1.a %1from.out").arg(s(0), s(1), s(2))); edgeOf(s(0) + q(".a"))->setTags(QSet<QString>(tags.begin(), tags.end())); return nothing(); }},
        {q("note"), [this] { return make(new OrvNgUINode(nullptr)); }},
        {q("textnode"), [this] { return make(new OrvNgTextNode(nullptr)); }},
        {q("grid"), [this] { m_View.setGridEnabled(on()); return nothing(); }},
        {q("shape"), [this] { N().setShapeType(int(d(1))); N().setCorrectColor(); return nothing(); }},
        {q("colors"), [this] { N().setNodeColor(QColor(s(1)), QColor(s(2))); N().setCorrectColor(); return nothing(); }},
        {q("category"), [this] { N().setCategory(s(1)); N().setCorrectColor(); return nothing(); }},
        {q("state"), [this] { const QString is = s(1); N().setCurrentPaint(is == q("paint")); N().setDebugColor(QColor(0, 140, 140)); N().setDebug(is == q("debug")); N().setBypassed(is == q("bypassed")); N().setCached(is == q("cached")); N().setBaked(is == q("baked") || is == q("outdated")); N().setOutdatedBaked(is == q("outdated")); N().setLocked(is == q("locked")); N().setCorrectColor(); return nothing(); }},
        {q("look"), [this] { auto& edge = *E(); const QString is = s(1); if (is == q("shared")) edge.markAsShared(true); edge.setActivated(is == q("activated")); edge.setBypassed(is == q("bypassed")); edge.setSevered(is == q("severed")); edge.setDebugColor(QColor(0, 200, 200)); edge.setDebug(is == q("debug")); if (is == q("inserting")) edge.hightlightForNodeInsert(); return nothing(); }},
        {q("porthover"), [this] { X().inputPort(s(1))->setMouseHovered(true); return nothing(); }},
        {q("portcolor"), [this] { X().outputPort(s(1))->setSpecialPortColor(QColor(s(2))); return nothing(); }},
        {q("icon"), [this] { X().setIconVisible(true, X().addIcon(s(1))); return nothing(); }},
        {q("hideicon"), [this] { X().setIconVisible(false, int(d(1))); return nothing(); }},
        {q("framelabel"), [this] { F().setLabel(s(1)); return nothing(); }},
        {q("frameinserting"), [this] { F().hightlightBackdropForNodeInsert(); return nothing(); }},
        {q("notecolor"), [this] { dynamic_cast<OrvNgUINode&>(N()).setNodeBackgroundColour(QColor(s(1))); return nothing(); }},
        {q("pixmap"), [this] { QPixmap icon(10, 10); icon.fill(QColor(s(1))); N().setPixmap(icon, {2, 2}); return nothing(); }}};
}

ScenarioStage::Words ScenarioStage::mouseWords()
{
    const auto focusOut = [this] { QFocusEvent event(QEvent::FocusOut, s(0) == q("popup") ? Qt::PopupFocusReason : Qt::ActiveWindowFocusReason); QApplication::sendEvent(&m_View, &event); };
    const auto carry = [this] { drag({P(0), (P(0) + P(1)) / 2, P(1)}, keys()); m_Held = Qt::LeftButton; };
    return {
        {q("press"), [this] { press(QEvent::MouseButtonPress, P(), button(Qt::LeftButton)); return nothing(); }},
        {q("double"), [this] { press(QEvent::MouseButtonDblClick, P(), button(Qt::LeftButton)); return nothing(); }},
        {q("move"), [this] { move(P(), button(m_Held), keys()); return nothing(); }},
        {q("hover"), [this] { move(P(), Qt::NoButton); return nothing(); }},
        {q("release"), [this] { drop(P()); return nothing(); }},
        {q("carry"), [carry] { carry(); return nothing(); }},
        {q("drag"), [this, carry] { carry(); drop(P(1)); return nothing(); }},
        {q("pull"), [this] { pull(Qt::LeftButton); return nothing(); }},
        {q("cancel"), [this] { pull(Qt::RightButton); return nothing(); }},
        {q("click"), [this] { const QPoint pos = P(); press(QEvent::MouseButtonPress, pos, button(Qt::LeftButton)); drop(pos); return nothing(); }},
        {q("wheel"), [this] { return wheel(0, int(d(0))); }},
        {q("cursor"), [this] { QCursor::setPos(m_View.viewport()->mapToGlobal(P())); QCoreApplication::processEvents(); return nothing(); }},
        {q("shake"), [this] { QList<QPoint> way{{200, 100}}; for (int i = 0; i < 14; ++i) way.append({i % 2 ? 180 : 240, 100}); drag(way); ViewStage::release(way.last(), Qt::LeftButton); return nothing(); }},
        {q("pickup"), [this] { m_View.pickUpEdge(P()); return nothing(); }},
        {q("leave"), [this] { QEvent leave(QEvent::Leave); QApplication::sendEvent(&m_View, &leave); return nothing(); }},
        {q("focusout"), [focusOut] { focusOut(); return nothing(); }},
        {q("ungrab"), [this] { N().ungrabMouse(); return nothing(); }},
        {q("menu"), [this] { openMenu(); return nothing(); }},
        {q("wait"), [this] { QTest::qWait(int(d(0))); return nothing(); }},
        // The view
        {q("view"), [this] { m_View.resize(sizeOf(0).toSize()); m_View.centerViewOn({0, 0}, true); QCursor::setPos(m_View.viewport()->mapToGlobal(m_View.viewport()->rect().center())); flushEvents(); return nothing(); }},
        {q("resize"), [this] { m_View.resize(sizeOf(0).toSize()); QCoreApplication::processEvents(); return nothing(); }},
        {q("window"), [this] { m_View.move(pairOf(s(0)).toPoint()); return nothing(); }},
        {q("viewvisible"), [this] { m_View.setVisible(on()); return nothing(); }},
        {q("scene"), [this] { m_View.setScene(on() ? &m_Scene : nullptr); return nothing(); }},
        {q("scaleto"), [this] { m_View.setTransform(QTransform::fromScale(d(0), d(0))); return nothing(); }},
        {q("centeron"), [this] { m_View.centerViewOn(pairOf(s(0)), false); return nothing(); }},
        {q("settle"), [this] { m_View.init(); m_View.centerViewOn({0, 0}, true); m_View.viewport()->repaint(); return nothing(); }},
        {q("zoomin"), [this] { m_View.zoomIn(d(0)); return nothing(); }},
        {q("zoomout"), [this] { m_View.zoomOut(d(0)); return nothing(); }},
        {q("fit"), [this] { m_View.init(); m_View.fitInView(rect(0), Qt::KeepAspectRatio); return nothing(); }},
        {q("scheme"), [this] { m_View.m_NavigationScheme = s(0); return nothing(); }},
        {q("anchormouse"), [this] { m_View.setTransformationAnchor(QGraphicsView::AnchorUnderMouse); return nothing(); }},
        {q("contentschanged"), [this] { m_View.contentsChanged(); return nothing(); }},
        {q("item"), [this] { m_Scene.addRect(rect(0))->setFlag(QGraphicsItem::ItemIsMovable); return nothing(); }},
        {q("autoscroll"), [this] { m_View.autoScrollAdvance(nullptr, false); return nothing(); }},
        {q("key"), [this] { QTest::keyClick(&m_View, Qt::Key_Left); return nothing(); }},
        {q("track"), [this] { m_View.setCursorTrackingMode(s(0) == q("cut") ? OrvNgView::CURSOR_TRACKING_SEVER_EDGES : OrvNgView::CURSOR_TRACKING_NONE); return nothing(); }},
        {q("shakes"), [this] { m_View.setShakeDetectionEnabled(on()); return nothing(); }},
        {q("minimap"), [this] { m_View.setMinimapVisible(on()); return nothing(); }},
        {q("mark"), [this] { m_MarkedScroll = m_View.scrolled(); for (const QString& name : m_Nodes.keys()) m_Marked[name] = m_Nodes[name] ? m_Nodes[name]->pos() : QPointF(); return nothing(); }}};
}

ScenarioStage::Words ScenarioStage::questions()
{
    const auto port = [this] { auto* in = X().inputPort(s(1)); return in ? in : X().outputPort(s(1)); };
    const auto shown = [](const QStringList& names, auto&& isShown) { QStringList all; std::copy_if(names.begin(), names.end(), std::back_inserter(all), isShown); return all; };
    const auto children = [this] { return namesOf([&](OrvNgNode* node) { return F().childrenList().contains(node); }); };
    const auto byHeight = [](QStringList names, auto&& portOf) { std::sort(names.begin(), names.end(), [&](S a, S b) { return portOf(a)->scenePos().y() < portOf(b)->scenePos().y(); }); return names; };
    return {
        {q("heard"), [this] { return m_Heard.value(s(0)); }},
        {q("heardsorted"), [this] { QStringList all = m_Heard.value(s(0)); all.sort(); return all; }},
        {q("heardcount"), [this] { return m_Heard.value(s(0)).size(); }},
        {q("reports"), [this] { return m_Recorder.messages().join(q(" | ")); }},
        {q("steps"), [] { QStringList texts; const auto* stack = OrvUndoManager::instance().undoStack(); for (int i = 0; i < stack->count(); ++i) texts.append(stack->text(i)); return texts; }},
        {q("menuentries"), [this] { return m_MenuEntries; }},
        {q("grabber"), [this] { QGraphicsItem* item = m_Scene.mouseGrabberItem(); auto* node = dynamic_cast<OrvNgNode*>(item); return node ? node->text() : q(item ? "another" : ""); }},
        // Nodes
        {q("pos"), [this] { return N().pos(); }},
        {q("previous"), [this] { return N().previousPosition(); }},
        {q("moved"), [this] { return namesOf([&](OrvNgNode* node) { return node->pos() != m_Marked[m_Nodes.key(node)]; }); }},
        {q("rect"), [this] { return N().sceneBoundingRect(); }},
        {q("let"), [this] { m_Places[s(0)] = scenePos(s(1)); return nothing(); }},
        {q("near"), [this] { return isNear(scenePos(s(0)), scenePos(s(1)), d(2)); }},
        {q("at"), [this] { return scenePos(s(0)); }},
        {q("gone"), [this] { return m_Nodes.value(s(0)).isNull(); }},
        {q("isvisible"), [this] { return N().isVisible(); }},
        {q("selection"), [this] { return namesOf([](OrvNgNode* node) { return node->isSelected(); }); }},
        {q("selected"), [this] { QStringList names; for (QGraphicsItem* item : m_View.sortedSelection()) names.append(m_Nodes.key(dynamic_cast<OrvNgNode*>(item))); return names; }},
        {q("hovering"), [this] { return namesOf([](OrvNgNode* node) { return node->hovered(); }); }},
        {q("recolourings"), [this] { return dynamic_cast<TestNode&>(N()).m_Recolourings; }},
        // Frames
        {q("children"), children},
        {q("zorder"), [this] { return F().zOrder(); }},
        {q("z"), [this] { return N().zValue(); }},
        {q("above"), [this] { return N().zValue() > N(1).zValue(); }},
        {q("marked"), [this] { return namesOf([](OrvNgNode* node) { auto* frame = dynamic_cast<MarkedFrame*>(node); return frame && frame->m_Marks == 1; }); }},
        {q("adjusted"), [this] { return F().adjustedBackgroundColor(); }},
        // Points and ports
        {q("inputpoints"), [this] { return N().sortedInputPoints(); }},
        {q("outputpoints"), [this] { return N().sortedOutputPoints(); }},
        {q("nextinput"), [this] { return N().getNextInputPointOnNode(); }},
        {q("nextfree"), [this] { return name(N().getNextFreeInputEdgeOnNode()); }},
        {q("shown"), [this, shown] { return shown(N().sortedInputPoints() + X().clusteredInputPorts(), [&](S name) { return X().isInputPortVisible(name); }); }},
        {q("shownout"), [this, shown] { return shown(N().sortedOutputPoints() + X().clusteredOutputPorts(), [&](S name) { return X().isOutputPortVisible(name); }); }},
        {q("portorder"), [this, shown, byHeight] { return byHeight(shown(N().sortedInputPoints() + X().clusteredInputPorts(), [&](S name) { return X().isInputPortVisible(name); }), [&](S name) { return X().inputPort(name); }); }},
        {q("outportorder"), [this, byHeight] { return byHeight(N().outputPoints(), [&](S name) { return X().outputPort(name); }); }},
        {q("porttext"), [port] { return port() ? port()->text() : q("none"); }},
        {q("clusterlist"), [this] { return X().inputClusterPortName2ClusterList(s(1)); }},
        {q("cluster"), [this] { return X().inputPort2ClusterName(s(1)); }},
        {q("modeof"), [this] { return int(X().portListMode()); }},
        {q("doubleclick"), [this] { return N().isDoubleClickValid(N().mapFromScene(scenePos(s(1)))); }},
        {q("dest"), [this] { return N().inputPortDestPos(s(0).section(QLatin1Char('.'), 1)); }},
        {q("approach"), [this] { return N().inputPortSourcePos(s(0).section(QLatin1Char('.'), 1)); }},
        {q("start"), [this] { return N().outputPortSourcePos(s(0).section(QLatin1Char('.'), 1)); }},
        {q("startapproach"), [this] { return N().outputPortDestPos(s(0).section(QLatin1Char('.'), 1)); }},
        // Edges
        {q("connections"), [this] { QStringList all; for (const QString& each : m_Args) for (OrvNgEdge* edge : m_Nodes[each] ? m_Nodes[each]->inputs() : QList<OrvNgEdge*>()) if (edge->sourceNode()) all.append(name(edge) + q("=") + edge->sourceNode()->text() + q(".") + edge->sourceOutputPoint()); return all; }},
        {q("outputcount"), [this] { return N().outputCount(); }},
        {q("stubs"), [this] { QStringList all; for (OrvNgEdge* edge : N().outputs()) if (!edge->destNode() && edge->isVisible()) all.append(edge->text()); return all; }},
        {q("lit"), [this] { const QColor lit = OrvNgStyle::instance().getHighlightForNodeInsertPen().color(); QStringList all; for (OrvNgEdge* edge : N().inputs()) if (edge->mainEdge()->pen().color() == lit) all.append(name(edge)); return all; }},
        {q("edge"), [this] { return name(E()); }},
        {q("texts"), [this] { return E()->text() + q("/") + E()->prettyText(); }},
        {q("stylecolor"), [this] { return OrvNgStyle::instance().property(s(0).toLatin1().constData()); }},
        {q("color"), [this] { return E()->mainEdge()->pen().color(); }},
        {q("edgeshows"), [this] { return E()->isVisible(); }},
        {q("labels"), [this] { return inputsOf(N(), [](OrvNgEdge* edge) { return edge->isTextVisible(); }); }},
        {q("edges"), [this] { return inputsOf(N(), [](OrvNgEdge* edge) { return edge->isVisible(); }); }},
        {q("carried"), [this] { return E()->isDragging() ? q(E()->isGrabbedFromPort() ? "port" : "end") : QString(); }},
        {q("path"), [this] { return textOf(E()->mainEdge()->path().pointAtPercent(0)) + q(" ") + textOf(E()->mainEdge()->path().currentPosition()); }},
        {q("hit"), [this] { return E()->shape().contains(pairOf(s(1))); }},
        {q("crossed"), [this] { auto* cross = childOf<QGraphicsLineItem>(E()); return cross && cross->isVisible(); }},
        {q("arrow"), [this] { return childOf<QGraphicsPolygonItem>(E())->pos(); }},
        {q("labelof"), [this] { auto* label = childOf<OrvNgLodTextItem>(E()); return label && label->isVisible() ? label->text() + q(" ") + textOf(label->sceneBoundingRect().center()) : QString(); }},
        {q("dotmarker"), [this] { auto* marker = childOf<OrvNgDotableMarkerItem>(E()); return marker && marker->isVisible(); }},
        // The view
        {q("center"), [this] { return m_View.center(); }},
        {q("scale"), [this] { return m_View.scaleNow(); }},
        {q("cursorshape"), [this] { return int(m_View.viewport()->cursor().shape()); }},
        {q("interactive"), [this] { return m_View.isInteractive(); }},
        {q("atrest"), [this] { return isAtRest(); }},
        {q("scrolledfar"), [this] { return m_View.scrolled().x() - m_MarkedScroll.x() >= 40; }},
        {q("scrolled"), [this] { return m_View.scrolled() - m_MarkedScroll; }},
        {q("bounds"), [this] { return m_View.visibleNodeBounds(); }},
        {q("scenerect"), [this] { return m_View.sceneRect(); }},
        {q("viewpixel"), [this] { return m_View.viewportTransform().map(pairOf(s(0))); }},
        {q("middle"), [this] { return m_View.viewportTransform().inverted().map(QRectF(QPointF(), sizeOf(0)).center()); }},
        {q("tracking"), [this] { return int(m_View.cursorTrackingMode()); }},
        {q("cuttingpath"), [this] { return m_View.drawingEdgeSeverPath(); }},
        {q("minimapat"), [this] { return m_View.isInMinimap(P()); }},
        {q("minimaprect"), [this] { return QRectF(m_View.minimapRect()); }},
        {q("minimapshows"), [this] { return m_View.shouldDisplayMinimap(); }},
        {q("minimappos"), [this] { return m_View.mapMinimapPosToScenePos(P()); }}};
}
// clang-format on

QList<Scenario> readScenarios(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    QMap<QString, QStringList> macros;
    QList<Section> sections;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString& each : lines) {
        const QString line = each.section(q("# "), 0, 0).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            sections.append(Section{line.mid(1, line.size() - 2)});
        else if (line.startsWith(QLatin1Char('|')))
            sections.last().addTableLine(line);
        else if (!line.isEmpty() && line != q("#"))
            sections.last().m_Lines.append(line);
    }
    QList<Scenario> all;
    for (const Section& section : qAsConst(sections)) {
        if (section.m_Title.startsWith(q("= ")))
            macros[section.m_Title.mid(2)] = section.m_Lines;
        else
            section.addTo(all, macros);
    }
    return all;
}
