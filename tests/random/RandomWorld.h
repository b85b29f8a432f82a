#pragma once

#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgView.h"
#include "RandomDice.h"

#include <QEvent>
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
    using OrvNgView::autoScroll;
    using OrvNgView::calculateVisibleNodesBoundingRect;
    using OrvNgView::cursorTrackingMode;
    using OrvNgView::drawingEdgeSeverPath;
    using OrvNgView::OrvNgView;
    using OrvNgView::scaleView;
    using OrvNgView::setCursorTrackingMode;
    using OrvNgView::setNavigationSchemeName;

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
    bool m_IsHost; ///< acts on the graph by program, of which no signal need tell
    RandomAct m_Run;
};

/// A scene, a view and a host that does to them what the steps say. From inside the library's signals it
/// sometimes does more, within what hosts may do there. Time stands still: what waits for a timer happens
/// in a step of its own.
///
/// Called by  the test's main function.
/// Uses       the whole public interface of the library.
/// Tells      nobody; RandomInvariants looks.
class RandomWorld : public QObject
{
public:
    using Connections = QHash<QPair<OrvNgNode*, QString>, QPair<OrvNgNode*, QString>>;

    RandomWorld();
    ~RandomWorld() override;

    static const QList<RandomOperation>& operations();
    static RandomStep drawStep(RandomDice& dice, int index);
    /// False for a name that is no operation.
    bool run(const RandomStep& step);
    /// Deletes everything and runs what is due.
    void tearDown();

    // What there is

    /// Those that the host has not given up.
    QList<OrvNgNode*> nodes() const;
    QList<OrvNgEdge*> edges() const;
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
    QString anyOutput(OrvNgNode* node);
    QString anyName();
    QSet<QString> anyTags();
    QString anyText();
    QColor anyColor();
    /// Mostly a coordinate within reach, now and then one that no host should give.
    double anyNumber();
    bool maybe(double probability = 0.5) { return m_Dice.chance(probability); }

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
    void fail(const QString& text);
    /// A broken promise that showed in the middle of a step.
    QString takeFailure() { return std::exchange(m_Failure, QString()); }

    // For the nodes of the host

    bool accepts() { return !m_Reacts || !maybe(0.1); }
    void deathBegins(OrvNgNode* node);

    RandomDice m_Dice;
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

QList<RandomOperation> host(); ///< with deaths and the undo stack
QList<RandomOperation> input(); ///< with time
QList<RandomOperation> checks(); ///< at fixed steps: what is too dear to look at after each

/// What a slot may do; with true also what deletes at once.
QList<RandomAct> reactions(bool mayDelete);
QList<RandomAct> deaths();
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
