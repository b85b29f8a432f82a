#include "RandomWorld.h"

#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include "OrvCore/OrvUndoManager.h"
#include "OrvCoreModules/OrvShaderNetworkManager.h"

#include <QApplication>
#include <QMenu>
#include <QTimer>
#include <QUndoStack>
#include <QVBoxLayout>

namespace {

constexpr double kReactions = 0.05;
constexpr int kMaxDepth = 2;

const QList<RandomOperation>& operations()
{
    static const QList<RandomOperation> s_All
        = RandomOperations::host() + RandomOperations::input() + RandomOperations::checks();
    return s_All;
}

quint32 keyOf(const OrvNgNode& node)
{
    return node.property("id").toUInt();
}

quint32 keyOfEdge(const OrvNgEdge& edge)
{
    const OrvNgNode* node = edge.destNode() ? edge.destNode() : edge.sourceNode();
    return qHash(edge.text()) ^ (node ? keyOf(*node) : 0) ^ (edge.destNode() ? 0 : 1);
}

} // namespace

RandomStep RandomWorld::drawStep(RandomDice& dice, int index)
{
    const quint32 seed = dice.roll();
    for (const auto& [period, name] :
        {std::pair(200, "checkPictures"), {50, "checkGhost"}, {10, "checkRoutes"}}) {
        if (index % period == period - 1)
            return {name, seed, true};
    }
    static const int s_Total = std::accumulate(operations().cbegin(), operations().cend(), 0,
        [](int sum, const RandomOperation& operation) { return sum + operation.m_Weight; });
    int left = dice.below(s_Total);
    const auto found = std::find_if(operations().cbegin(), operations().cend(),
        [&left](const RandomOperation& operation) { return (left -= operation.m_Weight) < 0; });
    return {found->m_Name, seed, true};
}

RandomWorld::RandomWorld()
    : m_Window(new QWidget)
    , m_View(new RandomView(m_Window.get()))
    , m_Watcher(new RandomView(m_Window.get()))
    , m_Edit(new QLineEdit)
{
    m_Watcher->setViewportUpdateMode(QGraphicsView::MinimalViewportUpdate);
    m_Watcher->setMinimapVisible(false);
    m_Watcher->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_Watcher->setFocusPolicy(Qt::NoFocus);
    m_Watcher->setFixedHeight(150);
    auto* layout = new QVBoxLayout(m_Window.get());
    for (QWidget* widget : std::initializer_list<QWidget*>{m_View, m_Watcher, m_Edit})
        layout->addWidget(widget);
    qApp->installEventFilter(this);
    newScene();
    m_Window->resize(500, 450);
    m_Window->show();
    connect(m_View, &OrvNgView::shakeToExtractTriggered, this, [this] { react(true); });
    m_Window->activateWindow();
    m_View->setFocus();
    flush();
}

void RandomWorld::tearDown()
{
    m_Reacts = false;
    m_Window.reset();
    const QList<QPointer<OrvNgNode>> left = m_Nodes;
    for (const QPointer<OrvNgNode>& node : left) {
        if (node && !node->scene())
            delete node;
    }
    delete m_Scene;
    qDeleteAll(std::exchange(m_Parents, {}));
    OrvUndoManager::instance().undoStack()->clear();
    auto* settings = OrvShaderNetworkManager::instance();
    settings->setSnapToGrid(false);
    settings->setGridWidth(20);
    settings->setGridHeight(20);
    OrvNgStyle::instance().resetSelectedNodeColor();
    OrvNgStyle::instance().resetSceneLODSwitchThreshold();
    flush();
}

void RandomWorld::newScene()
{
    m_Scene = new QGraphicsScene;
    connect(m_Scene, &QGraphicsScene::selectionChanged, this, [this] { react(false); });
    for (RandomView* view : {m_View, m_Watcher}) {
        view->setScene(m_Scene);
        view->init();
    }
    m_Watcher->fitInView(QRectF(-400, -300, 800, 600), Qt::KeepAspectRatio);
}

bool RandomWorld::run(const RandomStep& step)
{
    static const int s_HostCount = RandomOperations::host().size();
    const auto found = std::find_if(operations().cbegin(), operations().cend(),
        [&step](const RandomOperation& operation) { return step.m_Name == operation.m_Name; });
    if (found == operations().cend())
        return false;
    static_cast<RandomDice&>(*this) = RandomDice(step.m_Seed);
    m_StepSeed = step.m_Seed;
    m_Born = 0;
    m_Reacts = step.m_Reacts;
    m_AtRest = false;
    m_HostActed = found - operations().cbegin() < s_HostCount;
    found->m_Run(*this);
    m_Reacts = false;
    m_HeardIsValid = m_HeardIsValid && !m_HostActed;
    if (!m_HeardIsValid && !isAnyEdgeCarried()) {
        m_Heard = realConnections();
        m_HeardIsValid = true;
    }
    return true;
}

void RandomWorld::dealWithMoves()
{
    if (m_Scene)
        QCoreApplication::sendPostedEvents(m_Scene, QEvent::MetaCall);
}

void RandomWorld::process()
{
    dealWithMoves(); // the window's events come first and may paint
    QCoreApplication::processEvents();
}

void RandomWorld::flush()
{
    process();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    process();
}

// Reactions

void RandomWorld::adopt(OrvNgNode* node)
{
    node->setProperty("id", RandomDice::scramble(m_StepSeed + ++m_Born));
    m_Nodes.append(node);
    listenTo(node);
    if (!maybe(0.7))
        return;
    auto* parent = new OrvSerializableObject;
    m_Parents.append(parent);
    node->setParent(parent);
    connect(parent, &OrvSerializableObject::selectedChanged, this, [this] { react(false); });
}

void RandomWorld::listenTo(OrvNgNode* node)
{
    ++m_LiveNodes;
    connect(node, &QObject::destroyed, this, [this] {
        --m_LiveNodes;
        --m_Dying;
        m_HostActed = true;
    });
    const auto on = [this](auto* sender, auto signal, bool mayDeleteThere) {
        connect(sender, signal, this, [=] { react(mayDeleteThere, sender); });
    };
    on(node, &OrvNgNode::hoveredChanged, false);
    on(node, &OrvNgNode::posChanged, false);
    on(node, &OrvNgNode::inputSourceRefused, true);
    on(node, &OrvNgNode::clickedOnDotableMarkerOnEdge, true);
    if (auto* backdrop = qobject_cast<OrvNgBackdropNode*>(node))
        on(backdrop, &OrvNgBackdropNode::zOrderChanged, false);
    connect(node, &OrvNgNode::inputSourceChanged, this,
        [this, node](OrvNgNode* source, const QString& output, const QString& input) {
            if (source && nodes().contains(node)) // given up, it may still be used for a while
                m_Heard.insert({node, input}, {source, output});
            else
                m_Heard.remove({node, input});
            react(true, node);
        });
    connect(node, &OrvNgNode::nodePortListModeChanged, this, [this, node](int mode) {
        const QPointer<OrvNgNode> self(node);
        react(true, node);
        auto* extended = qobject_cast<OrvNgExtendedNode*>(self);
        if (extended && maybe(0.8))
            extended->setPortListMode(OrvNgExtendedNode::PortListMode(mode));
    });
}

void RandomWorld::react(bool mayDeleteThere, OrvNgNode* sender)
{
    if (!m_Reacts || m_Depth >= kMaxDepth || !maybe(kReactions))
        return;
    ++m_Depth;
    const auto former = std::exchange(m_Sender, sender);
    m_Gentle += mayDeleteThere ? 0 : 1;
    m_HostActed = true;
    of(RandomOperations::reactions(mayDelete()))(*this);
    m_Gentle -= mayDeleteThere ? 0 : 1;
    m_Sender = former;
    --m_Depth;
}

/// Swallows timers: their time comes in steps.
bool RandomWorld::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Timer && qobject_cast<QTimer*>(watched))
        return true;
    auto* menu = event->type() == QEvent::Show ? qobject_cast<QMenu*>(watched) : nullptr;
    const auto answer = [this, menu] { RandomOperations::answerMenu(*this, *menu); };
    if (menu)
        QMetaObject::invokeMethod(menu, answer, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

// What there is

const RandomWorld::Nodes RandomWorld::nodes() const
{
    Nodes alive;
    for (const QPointer<OrvNgNode>& node : m_Nodes) {
        if (node && !node->isBeingDeleted())
            alive.append(node);
    }
    return alive;
}

const RandomWorld::Edges RandomWorld::edges() const
{
    Edges all;
    for (OrvNgNode* node : nodes()) {
        all += node->inputs();
        all += those(node->outputs(), [](auto* edge) { return !edge->destNode(); });
        all << node->temporaryOutputEdge() << node->virtualInputEdge();
    }
    all.removeAll(nullptr);
    return all;
}

bool RandomWorld::isAnyEdgeCarried() const
{
    return !those(edges(), [](auto* edge) { return edge->isDragging(); }).isEmpty();
}

RandomWorld::Connections RandomWorld::realConnections() const
{
    Connections real;
    for (OrvNgNode* node : nodes()) {
        for (const OrvNgEdge* edge : node->inputs()) {
            if (edge->sourceNode())
                real.insert({node, edge->text()}, {edge->sourceNode(), edge->sourceOutputPoint()});
        }
    }
    return real;
}

// Chance

OrvNgNode* RandomWorld::anyNode()
{
    Nodes all;
    for (const QPointer<OrvNgNode>& node : qAsConst(m_Nodes))
        all += node ? Nodes{node} : Nodes();
    return m_Depth == 0 && maybe(0.03) ? pick(all, keyOf) : anyLiveNode();
}

OrvNgNode* RandomWorld::anyLiveNode()
{
    const Nodes alive = nodes();
    if (m_Sender && maybe(0.4) && alive.contains(m_Sender))
        return m_Sender;
    const Nodes selected = those(alive, [](auto* node) { return node->isSelected(); });
    return pick(selected.isEmpty() || maybe(0.8) ? alive : selected, keyOf);
}

OrvNgExtendedNode* RandomWorld::anyExtended()
{
    const auto isExtended = [](auto* node) { return qobject_cast<OrvNgExtendedNode*>(node); };
    return qobject_cast<OrvNgExtendedNode*>(pick(those(nodes(), isExtended), keyOf));
}

OrvNgEdge* RandomWorld::anyEdge()
{
    OrvNgEdge* ofSender = m_Sender && maybe(0.4) ? anyInput(anyLiveNode()) : nullptr;
    return ofSender ? ofSender : pick(edges(), keyOfEdge);
}

OrvNgEdge* RandomWorld::anyInput(OrvNgNode* node)
{
    return node ? pick(node->inputs(), keyOfEdge) : nullptr;
}

QString RandomWorld::anyName()
{
    const char* const names[]
        = {"a", "b", "c", "d", "Input", "out", "Output", nullptr, "long name with blanks"};
    return QLatin1String(names[below(int(std::size(names)))]);
}

QSet<QString> RandomWorld::anyTags()
{
    QSet<QString> tags;
    for (const char* tag :
        {"_hidden", "_showIfConnected", "_locked", "_dotted", "_thin", "strange"}) {
        if (maybe(0.06))
            tags.insert(QLatin1String(tag));
    }
    return tags;
}

QString RandomWorld::anyText()
{
    static const QList<QString> s_Odd{QString(), QString(300, QLatin1Char('w')),
        QStringLiteral("<b>bold</b>  <i>and  more"),
        QStringLiteral("lines\nof\ttext &nbsp; %1 %s")};
    return maybe(0.4) ? of(s_Odd) : QStringLiteral("node %1").arg(below(1000));
}

double RandomWorld::anyNumber()
{
    static const QList<double> s_Odd{0.0, -0.0, 1e-300, qQNaN(), qInf(), -qInf(), 1e7, -1e9, 1e300};
    return maybe(0.03) ? of(s_Odd) : between(-400, 400);
}
