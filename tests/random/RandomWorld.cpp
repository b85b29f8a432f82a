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

const QList<RandomOperation>& RandomWorld::operations()
{
    static const QList<RandomOperation> all
        = RandomOperations::host() + RandomOperations::input() + RandomOperations::checks();
    return all;
}

RandomStep RandomWorld::drawStep(RandomDice& dice, int index)
{
    const quint32 seed = dice.roll();
    if (index % 200 == 199)
        return {"checkPictures", seed, true};
    if (index % 50 == 49)
        return {"checkGhost", seed, true};
    if (index % 10 == 9)
        return {"checkRoutes", seed, true};
    static const int s_Total = std::accumulate(operations().cbegin(), operations().cend(), 0,
        [](int sum, const RandomOperation& operation) { return sum + operation.m_Weight; });
    int left = dice.below(s_Total);
    const auto found = std::find_if(operations().cbegin(), operations().cend(),
        [&left](const RandomOperation& operation) { return (left -= operation.m_Weight) < 0; });
    return {found->m_Name, seed, true};
}

RandomWorld::RandomWorld()
    : m_Window(new QWidget)
{
    m_View = new RandomView(m_Window.get());
    m_Watcher = new RandomView(m_Window.get());
    m_Watcher->setViewportUpdateMode(QGraphicsView::MinimalViewportUpdate);
    m_Watcher->setMinimapVisible(false);
    m_Watcher->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_Watcher->setFocusPolicy(Qt::NoFocus);
    m_Watcher->setFixedHeight(150);
    m_Edit = new QLineEdit(m_Window.get());
    auto* layout = new QVBoxLayout(m_Window.get());
    layout->addWidget(m_View);
    layout->addWidget(m_Watcher);
    layout->addWidget(m_Edit);
    qApp->installEventFilter(this);
    newScene();
    m_Window->resize(500, 450);
    m_Window->show();
    connect(m_View, &OrvNgView::shakeToExtractTriggered, this, [this] { react(true); });
    m_Window->activateWindow();
    m_View->setFocus();
    flush();
}

RandomWorld::~RandomWorld()
{
    tearDown();
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
    qDeleteAll(m_Parents);
    m_Parents.clear();
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
    const auto found = std::find_if(operations().cbegin(), operations().cend(),
        [&step](const RandomOperation& operation) { return step.m_Name == operation.m_Name; });
    if (found == operations().cend())
        return false;
    m_Dice = RandomDice(step.m_Seed);
    m_StepSeed = step.m_Seed;
    m_Born = 0;
    m_Reacts = step.m_Reacts;
    m_AtRest = false;
    m_HostActed = found->m_IsHost;
    found->m_Run(*this);
    m_Reacts = false;
    if (m_HostActed)
        m_HeardIsValid = false;
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

void RandomWorld::fail(const QString& text)
{
    if (m_Failure.isEmpty())
        m_Failure = text;
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
    const auto anything = [this, node] { react(true, node); };
    const auto gentle = [this, node] { react(false, node); };
    connect(node, &OrvNgNode::hoveredChanged, this, gentle);
    connect(node, &OrvNgNode::posChanged, this, gentle);
    connect(node, &OrvNgNode::inputSourceRefused, this, anything);
    connect(node, &OrvNgNode::clickedOnDotableMarkerOnEdge, this, anything);
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
    if (auto* backdrop = qobject_cast<OrvNgBackdropNode*>(node))
        connect(backdrop, &OrvNgBackdropNode::zOrderChanged, this, gentle);
}

void RandomWorld::react(bool mayDeleteThere, OrvNgNode* sender)
{
    if (!m_Reacts || m_Depth >= kMaxDepth || !maybe(kReactions))
        return;
    ++m_Depth;
    const auto former = std::exchange(m_Sender, sender);
    m_Gentle += mayDeleteThere ? 0 : 1;
    m_HostActed = true;
    m_Dice.of(RandomOperations::reactions(mayDelete()))(*this);
    m_Gentle -= mayDeleteThere ? 0 : 1;
    m_Sender = former;
    --m_Depth;
}

void RandomWorld::deathBegins(OrvNgNode* node)
{
    ++m_Dying;
    forget(node);
}

/// Swallows timers: their time comes in steps.
bool RandomWorld::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Timer && qobject_cast<QTimer*>(watched))
        return true;
    auto* menu = event->type() == QEvent::Show ? qobject_cast<QMenu*>(watched) : nullptr;
    if (menu)
        QMetaObject::invokeMethod(
            menu, [this, menu] { RandomOperations::answerMenu(*this, *menu); },
            Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

// What there is

QList<OrvNgNode*> RandomWorld::nodes() const
{
    QList<OrvNgNode*> alive;
    for (const QPointer<OrvNgNode>& node : m_Nodes) {
        if (node && !node->isBeingDeleted())
            alive.append(node);
    }
    return alive;
}

QList<OrvNgEdge*> RandomWorld::edges() const
{
    QList<OrvNgEdge*> all;
    const QList<OrvNgNode*> alive = nodes();
    for (OrvNgNode* node : alive) {
        all += node->inputs();
        for (OrvNgEdge* edge : node->outputs()) {
            if (!edge->destNode())
                all.append(edge);
        }
        for (OrvNgEdge* edge : {node->temporaryOutputEdge(), node->virtualInputEdge()}) {
            if (edge)
                all.append(edge);
        }
    }
    return all;
}

bool RandomWorld::isAnyEdgeCarried() const
{
    const QList<OrvNgEdge*> all = edges();
    return std::any_of(
        all.cbegin(), all.cend(), [](const OrvNgEdge* edge) { return edge->isDragging(); });
}

RandomWorld::Connections RandomWorld::realConnections() const
{
    Connections real;
    const QList<OrvNgNode*> alive = nodes();
    for (OrvNgNode* node : alive) {
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
    QList<OrvNgNode*> all;
    for (const QPointer<OrvNgNode>& node : qAsConst(m_Nodes)) {
        if (node)
            all.append(node);
    }
    return m_Depth == 0 && maybe(0.03) ? m_Dice.pick(all, keyOf) : anyLiveNode();
}

OrvNgNode* RandomWorld::anyLiveNode()
{
    const QList<OrvNgNode*> alive = nodes();
    if (m_Sender && maybe(0.4) && alive.contains(m_Sender))
        return m_Sender;
    QList<OrvNgNode*> selected;
    std::copy_if(alive.cbegin(), alive.cend(), std::back_inserter(selected),
        [](const OrvNgNode* node) { return node->isSelected(); });
    return m_Dice.pick(selected.isEmpty() || maybe(0.8) ? alive : selected, keyOf);
}

OrvNgExtendedNode* RandomWorld::anyExtended()
{
    QList<OrvNgExtendedNode*> extended;
    const QList<OrvNgNode*> alive = nodes();
    for (OrvNgNode* node : alive) {
        if (auto* candidate = qobject_cast<OrvNgExtendedNode*>(node))
            extended.append(candidate);
    }
    return m_Dice.pick(extended, keyOf);
}

OrvNgEdge* RandomWorld::anyEdge()
{
    OrvNgEdge* ofSender = m_Sender && maybe(0.4) ? anyInput(anyLiveNode()) : nullptr;
    return ofSender ? ofSender : m_Dice.pick(edges(), keyOfEdge);
}

OrvNgEdge* RandomWorld::anyInput(OrvNgNode* node)
{
    return node ? m_Dice.pick(node->inputs(), keyOfEdge) : nullptr;
}

QString RandomWorld::anyOutput(OrvNgNode* node)
{
    return node ? m_Dice.of(QList<QString>(node->outputPoints())) : QString();
}

QString RandomWorld::anyName()
{
    static const QList<QString> s_Names{QStringLiteral("a"), QStringLiteral("b"),
        QStringLiteral("c"), QStringLiteral("d"), QStringLiteral("Input"), QStringLiteral("out"),
        QStringLiteral("Output"), QString(), QStringLiteral("long name with blanks")};
    return m_Dice.of(s_Names);
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
    return maybe(0.4) ? m_Dice.of(s_Odd) : QStringLiteral("node %1").arg(m_Dice.below(1000));
}

QColor RandomWorld::anyColor()
{
    return maybe(0.2) ? QColor() : QColor::fromHsv(m_Dice.below(360), 150, 200);
}

double RandomWorld::anyNumber()
{
    static const QList<double> s_Odd{0.0, -0.0, 1e-300, qQNaN(), qInf(), -qInf(), 1e7, -1e9, 1e300};
    return maybe(0.03) ? m_Dice.of(s_Odd) : m_Dice.between(-400, 400);
}
