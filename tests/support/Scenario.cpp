#include "support/Scenario.h"

#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QAction>
#include <QMenu>
#include <QRegularExpression>

namespace {

/// Where edges attach to a header, its button, or the middle; "center" is that of the whole node.
QPointF anchorOf(OrvNgNode& node, const QString& anchor)
{
    const QRectF shape = anchor == u"center" ? node.boundingRect() : node.nodeShapeRect();
    QPointF pos = shape.center();
    if (anchor == u"left")
        pos.setX(10);
    else if (anchor == u"right")
        pos.setX(shape.width() - 10);
    else if (anchor == u"button")
        pos.setX(shape.width() - shape.height() / 2);
    return node.mapToScene(pos);
}

} // namespace

QString scenarioText(const QVariant& value)
{
    const auto number
        = [](double each) { return QString::number(std::round(each * 1e4) / 1e4 + 0.0, 'g', 12); };
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool() ? u"yes"_s : u"no"_s;
    case QMetaType::Int:
    case QMetaType::Double:
        return number(value.toDouble());
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return number(value.toPointF().x()) + u","_s + number(value.toPointF().y());
    case QMetaType::QSizeF:
        return number(value.toSizeF().width()) + u"x"_s + number(value.toSizeF().height());
    case QMetaType::QRectF:
        return scenarioText(value.toRectF().topLeft()) + u" "_s
            + scenarioText(value.toRectF().size());
    case QMetaType::QColor:
        return value.value<QColor>().name(QColor::HexArgb);
    case QMetaType::QStringList:
        return value.toStringList().join(QLatin1Char(' '));
    default:
        return value.toString();
    }
}

ScenarioStage::ScenarioStage()
{
    addHostWords();
    addFrameWords();
    addLookWords();
    addMouseWords();
    addQuestions();
    m_UndoStack.clear();
    OrvShaderNetworkManager::instance()->setSnapToGrid(false);
    m_Args = QStringList(u"node"_s);
    introduce(m_Node);
    QObject::connect(
        &m_Scene, &QGraphicsScene::selectionChanged, &m_View, [this] { tell(u"selection"_s, {}); });
    QObject::connect(&m_View, &OrvNgView::shakeToExtractTriggered, &m_View,
        [this] { tell(u"shakes"_s, u"!"_s); });
    m_MenuCloser.start(1000);
    m_MenuCloser.callOnTimeout([this] {
        if (QWidget* menu = QApplication::activePopupWidget()) {
            m_Faults.append(u"  a menu waits"_s);
            menu->close();
        }
    });
    putCursor({200, 100}); // where the view does not scroll
    flushEvents();
}

ScenarioStage::~ScenarioStage()
{
    for (auto value = m_Style.begin(); value != m_Style.end(); ++value)
        OrvNgStyle::instance().setProperty(value.key().constData(), *value);
}

void ScenarioStage::run(const QString& line)
{
    static const QRegularExpression s_Reaction(u"^on (\\w+): (.*)$"_s);
    static const QRegularExpression s_Between(u", (?=([^\"]*\"[^\"]*\")*[^\"]*$)"_s); // not quoted
    static const QRegularExpression s_Question(u"^(.*?) ([=~])(?: (.*))?$"_s);
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
            expected = scenarioText(runStep(expected.mid(1, expected.size() - 2)));
        const QString answer = scenarioText(runStep(question.captured(1)));
        const bool isPart = question.captured(2) == u"~" && answer.isEmpty() == expected.isEmpty();
        if (isPart ? !answer.contains(expected) : answer != expected)
            m_Faults.append(u"  %1\n  but it is: %2"_s.arg(step, answer));
    }
}

void ScenarioStage::word(const char* name, const QString& steps)
{
    word(name, [this, steps] {
        QString line = steps;
        for (int i = 0; i < 5; ++i)
            line.replace(u"$%1"_s.arg(i + 1), text(i));
        run(line);
    });
}

QVariant ScenarioStage::runStep(const QString& step)
{
    static const QRegularExpression s_Text(u"\"([^\"]*)\"|(\\S+)"_s);
    QStringList args;
    for (auto found = s_Text.globalMatch(step); found.hasNext();) {
        const auto match = found.next();
        args.append(match.captured(1) + match.captured(2));
    }
    const auto call = m_Words.value(args.value(0));
    if (!call)
        qFatal("no word of scenarios: %s", qPrintable(step));
    args.removeFirst();
    m_Args.swap(args); // a slot may run steps meanwhile
    const QVariant answer = call();
    m_Args.swap(args);
    return answer;
}

void ScenarioStage::tell(const QString& kind, const QString& what)
{
    m_Heard[kind].append(what);
    const QStringList steps = m_Reactions.take(kind).split(u", "_s, Qt::SkipEmptyParts);
    for (const QString& step : steps)
        runStep(step);
}

/// As text(0), at pair(1) unless the node is in the scene already.
void ScenarioStage::introduce(OrvNgNode* node)
{
    const QString name = text(0);
    m_Nodes[name] = node;
    node->setText(name);
    if (node->scene() != &m_Scene) {
        m_Scene.addItem(node);
        node->setPos(pair(1));
    }
    const auto hear = [this](auto* sender, auto signal, auto slot) {
        QObject::connect(sender, signal, &m_View, slot);
    };
    hear(node, &OrvNgNode::inputSourceChanged,
        [=](OrvNgNode* source, const QString& output, const QString& input) {
            const QString from = source ? source->text() + u"."_s + output : u"none"_s;
            const QString text = name + u"."_s + input + u"="_s + from;
            OrvUndoManager::instance().push(new QUndoCommand(text));
            tell(u"inputs"_s, text);
        });
    hear(node, &OrvNgNode::inputSourceRefused,
        [=](OrvNgNode* source, const QString&, const QString& input) {
            tell(u"inputs"_s, name + u"."_s + input + u"!"_s + source->text());
        });
    hear(node, &OrvNgNode::posChanged, [=](const QPointF& pos) {
        tell(u"places"_s, scenarioText(pos) + u"/"_s + scenarioText(node->pos()));
    });
    hear(node, &OrvNgNode::hoveredChanged,
        [=](bool isOn) { tell(u"hovers"_s, node->text() + (isOn ? u"+"_s : u"-"_s)); });
    hear(node, &OrvNgNode::nodePortListModeChanged,
        [=](int mode) { tell(u"modes"_s, QString::number(mode)); });
    hear(node, &OrvNgNode::clickedOnDotableMarkerOnEdge,
        [=](OrvNgEdge* edge) { tell(u"markers"_s, name + u"*"_s + nameOf(edge)); });
    if (auto* frame = qobject_cast<OrvNgBackdropNode*>(node))
        hear(frame, &OrvNgBackdropNode::zOrderChanged,
            [=](int order) { tell(u"raised"_s, name + QString::number(order)); });
}

/// In the menu that the next drop opens; without such an entry it is closed.
void ScenarioStage::chooseInMenu(const QString& entry)
{
    QTimer::singleShot(0, &m_View, [this, entry] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            qFatal("no menu is open");
        for (const QAction* action : menu->actions())
            m_MenuEntries.append(action->text() + (action->isChecked() ? u"*"_s : QString()));
        tell(u"menu"_s, entry);
        for (QAction* action : menu->actions()) {
            if (action->text() == entry)
                action->trigger();
        }
        menu->close();
    });
}

// What texts stand for

/// "x,y" or "WxH".
QPointF ScenarioStage::pairOf(const QString& text)
{
    static const QRegularExpression s_Between(u"[,x]"_s);
    return {text.section(s_Between, 0, 0).toDouble(), text.section(s_Between, 1, 1).toDouble()};
}

QSet<QString> ScenarioStage::tagsFrom(int i) const
{
    const QStringList texts = textsFrom(i);
    return {texts.begin(), texts.end()};
}

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
    if (point == u"?")
        return node->highlightedEdge();
    if (point == u"virtual")
        return node->virtualInputEdge();
    if (point == u"tmp")
        return node->temporaryOutputEdge();
    OrvNgEdge* input = node->input(point);
    return input ? input : node->outputEdge(point);
}

OrvNgPort* ScenarioStage::portOf(Extended& node, const QString& name)
{
    OrvNgPort* input = node.inputPort(name);
    return input ? input : node.outputPort(name);
}

QString ScenarioStage::nameOf(const OrvNgEdge* edge)
{
    return edge && edge->destNode() ? edge->destNode()->text() + u"."_s + edge->text() : QString();
}

/// "x,y" of the scene; "N", "N.port"; "N:left", "N:right" where edges attach to a header, "N:button",
/// "N:center" of the whole node; "N.x%4", the share of an edge's path; each with an offset, "N+3,-5".
QPointF ScenarioStage::scenePos(const QString& place)
{
    static const QRegularExpression s_Form(
        u"^(?:(?<pos>-?[\\d.]+,-?[\\d.]+)"
        u"|(?<node>[A-Za-z]\\w*)(?:\\.(?<point>\\w+))?(?:%(?<share>\\d+))?(?::(?<anchor>\\w+))?)"
        u"(?:\\+(?<offset>-?[\\d.]+,-?[\\d.]+))?$"_s);
    if (m_Places.contains(place))
        return m_Places[place];
    const auto match = s_Form.match(place);
    if (!match.hasMatch())
        qFatal("%s is no place", qPrintable(place));
    const auto part = [&match](const char* name) { return match.captured(QLatin1String(name)); };
    const QPointF offset = pairOf(part("offset"));
    if (!part("pos").isEmpty())
        return pairOf(part("pos")) + offset;
    OrvNgNode* node = nodeOf(part("node"));
    const QString point = part("point");
    if (!part("share").isEmpty()) {
        const QPainterPath path = edgeOf(part("node") + u"."_s + point)->mainEdge()->path();
        return path.pointAtPercent(part("share").toDouble() / 100) + offset;
    }
    auto* extended = dynamic_cast<Extended*>(node);
    if (extended && !point.isEmpty())
        return portOf(*extended, point)->portRectMappedToScene().center() + offset;
    return anchorOf(*node, part("anchor")) + offset;
}

/// "@x,y", pixels of the viewport, or a place in the scene.
QPoint ScenarioStage::viewPos(const QString& place)
{
    if (place == u"minimap")
        return m_View.minimapRect().center();
    if (place.startsWith(QLatin1Char('@')))
        return pairOf(place.mid(1)).toPoint();
    return m_View.mapFromScene(scenePos(place));
}
