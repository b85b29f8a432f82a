#pragma once

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgView.h"
#include "RandomDice.h"

#include <QGraphicsScene>
#include <QHash>
#include <QLineEdit>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <numeric>

class QMenu;
class RandomWorld;

/// The view of the random host, its inner doings open to the world.
class RandomView : public OrvNgView
{
public:
    using OrvNgView::autoScroll, OrvNgView::calculateVisibleNodesBoundingRect;
    using OrvNgView::cursorTrackingMode, OrvNgView::setCursorTrackingMode;
    using OrvNgView::drawingEdgeSeverPath, OrvNgView::scaleView;
    using OrvNgView::OrvNgView, OrvNgView::setNavigationSchemeName;

protected:
    bool paintsOnlyScene() const override { return true; }
};

/// One step of a trace: a named operation and the seed of all chance in it. Steps stand for themselves:
/// any of them may be left out of a trace.
struct RandomStep
{
    QByteArray m_Name;
    quint32 m_Seed = 0;
    bool m_Reacts = true; ///< slots of the host may act while the step runs
};

using RandomAct = std::function<void(RandomWorld& world)>;

struct RandomOperation
{
    const char* m_Name;
    int m_Weight; ///< how often, against the others; 0 for what comes at fixed steps
    RandomAct m_Run;
};

template <typename T, typename Test> QList<T> those(const QList<T>& all, Test&& test)
{
    QList<T> some;
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(some), test);
    return some;
}

/// A scene, a view and a host that does to them what the steps say. From inside the library's signals it
/// sometimes does more, within what hosts may do there. Time stands still: what waits for a timer happens
/// in a step of its own.
///
/// Called by  the test's main function.
/// Uses       the whole public interface of the library.
/// Tells      nobody; RandomInvariants looks.
class RandomWorld : public QObject, public RandomDice
{
public:
    using Nodes = QList<OrvNgNode*>;
    using Edges = QList<OrvNgEdge*>;
    using End = QPair<const void*, QString>; ///< a node, perhaps gone, and a name
    using Connections = QHash<End, End>;

    RandomWorld();
    ~RandomWorld() override { tearDown(); }

    static RandomStep drawStep(RandomDice& dice, int index);
    /// False for a name that is no operation.
    bool run(const RandomStep& step);
    /// Deletes everything and runs what is due.
    void tearDown();

    // What there is

    /// Those that the host has not given up.
    const Nodes nodes() const;
    const Edges edges() const;
    bool isAnyEdgeCarried() const;
    Connections realConnections() const;
    /// What the host would know of the connections if it had only heard of them; null when it did more.
    const Connections* heardConnections() const { return m_HeardIsValid ? &m_Heard : nullptr; }

    // Chance

    /// Sometimes one that is destroyed, but not yet gone; null when there is none.
    OrvNgNode* anyNode();
    OrvNgNode* anyLiveNode();
    OrvNgExtendedNode* anyExtended();
    OrvNgEdge* anyEdge();
    OrvNgEdge* anyInput(OrvNgNode* node);
    QString anyOutput(OrvNgNode* node)
    {
        return node ? of<QString>(node->outputPoints()) : QString();
    }
    QString anyName();
    QSet<QString> anyTags();
    QString anyText();
    QColor anyColor() { return maybe(0.2) ? QColor() : QColor::fromHsv(below(360), 150, 200); }
    /// Mostly a coordinate within reach, now and then one that no host should give.
    double anyNumber();

    // For operations

    void adopt(OrvNgNode* node);
    void forget(OrvNgNode* node) { m_Nodes.removeAll(node); }
    void newScene();
    /// No slot above on the stack forbids to delete nodes at once.
    bool mayDelete() const { return m_Gentle == 0 && m_Dying == 0; }
    /// While the action runs, slots delete nothing at once.
    template <typename Action> void gently(Action&& action)
    {
        ++m_Gentle;
        action();
        --m_Gentle;
    }
    void hostActs() { m_HostActed = true; }
    /// Comes before what paints at once: the scene forgets where an item was when a view paints it before
    /// the scene has dealt with its move.
    void dealWithMoves();
    void process();
    void flush();
    /// Keeps a broken promise that showed in the middle of a step; only the first, and none for no text.
    void fail(const QString& text) { m_Failure = m_Failure.isEmpty() ? text : m_Failure; }
    QString takeFailure() { return std::exchange(m_Failure, QString()); }

    // For the nodes of the host

    bool accepts() { return !m_Reacts || !maybe(0.1); }
    void deathBegins(OrvNgNode* node)
    {
        ++m_Dying;
        forget(node);
    }

    std::unique_ptr<QWidget> m_Window;
    RandomView* m_View = nullptr;
    RandomView* m_Watcher = nullptr; ///< at rest; repaints only what it is told has changed
    QLineEdit* m_Edit = nullptr; ///< takes the focus from the view
    QPointer<QGraphicsScene> m_Scene;
    Qt::MouseButtons m_Held;
    QPoint m_MousePos; ///< where it was last, in viewport pixels
    bool m_AtRest = false; ///< no button is held, no edge carried, and what was due has run
    bool m_Reacts = false;
    int m_LiveNodes = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void react(bool mayDeleteThere, OrvNgNode* sender = nullptr);
    void listenTo(OrvNgNode* node);

    QList<QPointer<OrvNgNode>> m_Nodes;
    QList<QPointer<QObject>> m_Parents; ///< host objects of the nodes
    quint32 m_StepSeed = 0;
    quint32 m_Born = 0; ///< in this step
    int m_Depth = 0; ///< of reactions
    QPointer<OrvNgNode> m_Sender; ///< of the signal that is reacted to
    int m_Gentle = 0; ///< slots on the stack in which nothing may be deleted
    int m_Dying = 0; ///< nodes whose destructors are on the stack
    Connections m_Heard;
    bool m_HeardIsValid = false;
    bool m_HostActed = false; ///< in this step, by other means than hearing
    QString m_Failure;
};

/// The operations, and those of them that others need.
///
/// Called by  RandomWorld; operations of one another.
/// Uses       RandomWorld.
/// Tells      nobody.
namespace RandomOperations {

/// On the graph by program, of which no signal need tell: with deaths and the undo stack.
QList<RandomOperation> host();
QList<RandomOperation> input(); ///< with time
QList<RandomOperation> checks(); ///< mostly at fixed steps: what is too dear to look at after each

/// What a slot may do; with true also what deletes at once.
QList<RandomAct> reactions(bool mayDelete);
QList<RandomAct> deaths();
/// Changes how one node looks.
RandomAct dressing();
/// Picks an entry of a menu that has opened, or closes it, or does worse.
void answerMenu(RandomWorld& world, QMenu& menu);

} // namespace RandomOperations

/// What must hold after every step, whatever the step was.
///
/// Called by  the test's main function.
/// Uses       the world's scene, view and nodes through their public interface.
/// Tells      nobody.
namespace RandomInvariants {

/// The first broken promise, by its letter and number; empty when all hold.
QString broken(RandomWorld& world);

} // namespace RandomInvariants
