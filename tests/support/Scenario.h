#pragma once

#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "support/DebugRecorder.h"
#include "support/ViewStage.h"

#include <QPointer>
#include <QTimer>
#include <QVariant>

#include <functional>
#include <map>

/// The stage of ViewStage, whose node is called "node", and what a scenario puts on it. The host writes down
/// what it hears, by the kind of the signal, and keeps an undo step for each changed input.
///
/// Called by  tst_Scenarios, tst_Pictures.
/// Uses       the library's public interface, and what ViewStage opens of the view.
/// Tells      nobody; m_Faults holds the questions answered otherwise.
class ScenarioStage : public ViewStage
{
public:
    ScenarioStage();
    ~ScenarioStage();
    void run(const QString& line);
    QStringList m_Faults;

private:
    using Words = std::map<QString, std::function<QVariant()>>;
    static QVariant nothing() { return {}; }
    Words words();
    Words hostWords();
    Words lookWords();
    Words mouseWords();
    Words questions();
    QVariant runStep(const QString& step);

    // The words behind the one that is carried out

    QString s(int i) const { return m_Args.value(i); }
    QStringList rest(int i) const { return m_Args.mid(i); }
    double d(int i) const { return s(i).toDouble(); }
    bool on(int i = 0) const { return s(i) == QLatin1String("on"); }
    QSizeF sizeOf(int i) const;
    QRectF rect(int i) const;
    OrvNgNode& N(int i = 0) const { return *nodeOf(s(i)); }
    OrvNgExtendedNode& X(int i = 0) const { return dynamic_cast<OrvNgExtendedNode&>(N(i)); }
    OrvNgBackdropNode& F(int i = 0) const { return dynamic_cast<OrvNgBackdropNode&>(N(i)); }
    /// "N.x", an input or an output of N; "N.?", the edge that N would be inserted into; "N.tmp".
    OrvNgEdge* E(int i = 0) const { return edgeOf(s(i)); }
    QPoint P(int i = 0) { return viewPos(s(i)); }

    OrvNgNode* nodeOf(const QString& path) const;
    OrvNgEdge* edgeOf(const QString& path) const;
    QPoint viewPos(const QString& place);
    QPointF scenePos(const QString& place);
    static QString name(const OrvNgEdge* edge);
    QVariant make(OrvNgNode* node);
    void setMode(const QString& mode);
    void tell(const QString& kind, const QString& what);
    int keys() const;
    Qt::MouseButton button(Qt::MouseButton otherwise) const;
    void press(QEvent::Type type, const QPoint& pos, Qt::MouseButton which);
    void drop(const QPoint& pos);
    void pull(Qt::MouseButton second);
    void openMenu();
    template <typename Test> QStringList namesOf(Test&& test) const;
    template <typename Test> QStringList inputsOf(OrvNgNode& node, Test&& test) const;

    QMap<QString, QPointer<OrvNgNode>> m_Nodes;
    QMap<QString, QPointF> m_Marked; ///< where the nodes were
    QMap<QString, QPointF> m_Places; ///< named by the scenario
    QPoint m_MarkedScroll;
    QMap<QString, QStringList> m_Heard;
    QHash<QString, QString> m_Reactions;
    QStringList m_Args;
    QStringList m_MenuEntries;
    QMap<QByteArray, QVariant> m_Style; ///< what it was
    Qt::MouseButton m_Held = Qt::NoButton;
    DebugRecorder m_Recorder;
    QTimer m_MenuCloser;
    const Words m_Words;
};

/// What a scenario does; the lines are for ScenarioStage::run().
struct Scenario
{
    QString m_Name; ///< "title, row"
    QStringList m_Lines;
};

/// Those of a file, as README.md in tests/data/scenarios describes it.
QList<Scenario> readScenarios(const QString& path);
