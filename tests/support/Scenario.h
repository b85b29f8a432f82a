#pragma once

#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "support/DebugRecorder.h"
#include "support/Literals.h"
#include "support/ScenarioFile.h"
#include "support/ViewStage.h"

#include "OrvCore/OrvUndoManager.h"

#include <QPointer>
#include <QTimer>
#include <QUndoStack>
#include <QVariant>

#include <functional>

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
    /// Steps between ", "; "QUESTION = ANSWER", "QUESTION ~ PART OF THE ANSWER", where "{QUESTION}" may stand
    /// for the answer; "on KIND: STEPS" for the next signal of a kind.
    void run(const QString& line);
    QStringList m_Faults;

private:
    using Extended = OrvNgExtendedNode;

    // Tables, a word after another

    void addHostWords();
    void addFrameWords();
    void addLookWords();
    void addMouseWords();
    void addQuestions();
    /// Adds what carries a word out, or answers it.
    template <typename Call> void word(const char* name, Call call)
    {
        m_Words[QLatin1String(name)] = [call]() -> QVariant {
            if constexpr (std::is_void_v<decltype(call())>)
                return call(), QVariant();
            else
                return call();
        };
    }
    /// Adds a word for steps about the texts behind it, $1 to $5.
    void word(const char* name, const QString& steps);

    // The texts behind the word that is carried out, counted from 0

    QString text(int i) const { return m_Args.value(i); }
    QStringList textsFrom(int i) const { return m_Args.mid(i); }
    QSet<QString> tagsFrom(int i) const;
    double number(int i) const { return text(i).toDouble(); }
    int whole(int i) const { return int(number(i)); }
    bool isOn(int i = 0) const { return text(i) == QLatin1String("on"); }
    QColor color(int i) const { return QColor(text(i)); }
    QPointF pair(int i) const { return pairOf(text(i)); }
    QSizeF size(int i) const { return {pair(i).x(), pair(i).y()}; }
    QRectF rect(int i) const { return {pair(i), size(i + 1)}; }
    OrvNgNode& node(int i = 0) const { return *nodeOf(text(i)); }
    template <typename Node> Node& nodeAs() const { return dynamic_cast<Node&>(node()); }
    Extended& extended() const { return nodeAs<Extended>(); }
    OrvNgBackdropNode& frame() const { return nodeAs<OrvNgBackdropNode>(); }
    /// "N.x", an input or an output of N; "N.?", the edge that N would be inserted into; "N.tmp".
    OrvNgEdge* edge(int i = 0) const { return edgeOf(text(i)); }
    /// The "x" of "N.x".
    QString point(int i) const { return text(i).section(QLatin1Char('.'), 1); }
    OrvNgPort* port(int i) const { return portOf(extended(), text(i)); }
    QPoint pixel(int i = 0) { return viewPos(text(i)); }
    int keys() const;
    Qt::MouseButton button(Qt::MouseButton otherwise) const;

    QVariant runStep(const QString& step);
    void tell(const QString& kind, const QString& what);
    void introduce(OrvNgNode* node);
    void chooseInMenu(const QString& entry);
    static QPointF pairOf(const QString& text);
    OrvNgNode* nodeOf(const QString& path) const;
    OrvNgEdge* edgeOf(const QString& path) const;
    static OrvNgPort* portOf(Extended& node, const QString& name);
    static QString nameOf(const OrvNgEdge* edge);
    QPoint viewPos(const QString& place);
    QPointF scenePos(const QString& place);
    void putCursor(const QPoint& viewPos);
    void press(QEvent::Type type, const QPoint& pos);
    void drop(const QPoint& pos);
    /// Of the nodes that pass a test.
    template <typename Test> QStringList namesOf(Test test) const
    {
        QStringList names;
        for (auto each = m_Nodes.begin(); each != m_Nodes.end(); ++each) {
            if (*each && std::invoke(test, each->data()))
                names.append(each.key());
        }
        return names;
    }

    QUndoStack& m_UndoStack = *OrvUndoManager::instance().undoStack();
    QHash<QString, std::function<QVariant()>> m_Words;
    QStringList m_Args;
    QMap<QString, QPointer<OrvNgNode>> m_Nodes;
    QMap<QString, QPointF> m_MarkedPositions;
    QPoint m_MarkedScroll;
    QMap<QString, QPointF> m_Places; ///< named by the scenario
    QMap<QString, QStringList> m_Heard;
    QHash<QString, QString> m_Reactions;
    QStringList m_MenuEntries;
    QMap<QByteArray, QVariant> m_Style; ///< what it was
    Qt::MouseButton m_Held = Qt::NoButton;
    DebugRecorder m_Recorder;
    QTimer m_MenuCloser;
};

/// As scenarios write it: numbers to four places, "x,y", "x,y WxH", yes or no.
QString scenarioText(const QVariant& value);
