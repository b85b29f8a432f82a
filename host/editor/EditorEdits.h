#pragma once

#include "network/NetEditor.h"

#include <QPointF>
#include <QRectF>
#include <QVector>

class EditorScene;
class OrvNgEdge;
class OrvNgNode;

/// Turns what the user did in a scene into undo steps that change the model. What a rule of the model
/// forbids is not done: the scene shows again what the model says, and the user reads why.
///
/// Called by  EditorScene.
/// Uses       NetEditor (rules and changes), EditorCommand, OrvUndoManager.
/// Tells      the user, through EditorScene::status; the scene hears of changes from the NetEditor.
class EditorEdits
{
public:
    using Nodes = QVector<OrvNgNode*>;

    explicit EditorEdits(EditorScene* scene)
        : m_Scene(scene)
    {
    }

    /// The edge of an input got another source, null for none: connects or disconnects the input.
    void wire(OrvNgNode* source, const QString& output, OrvNgNode* dest, const QString& input);
    /// A drag of the node ended by a release: nodes that moved, moved; and the node goes into the edge that
    /// it marked.
    void drop(OrvNgNode* node);
    /// One step for all nodes, backdrops and notes that do not stand where the scene put them.
    void commitMoves();
    /// One step; corners as the positions of the nodes.
    void arrange(const QVector<QPointF>& corners);
    /// Puts a dot between the ends of a connection, where its marker stands. Null is ignored.
    void insertDot(OrvNgEdge* edge);
    /// One step; backdrops and notes by their positions in the scope.
    void remove(const Nodes& nodes, const QVector<int>& backdrops);
    /// Takes nodes out of their chains: what a node fed gets the source of its first connected input that
    /// fits, or none.
    void extract(const Nodes& nodes);

    /// Puts a new backdrop around a rectangle in scene coordinates and selects it alone. The nodes are those
    /// inside: they get the positions at which they stand, so that they are found there again.
    void wrap(const Nodes& nodes, const QRectF& bounds);
    /// Adds a note with its top left corner there and selects it alone; -1 when there is none.
    int addNote(const QPointF& scenePos);
    void setBackdropText(int backdrop, const QString& text, bool isDoc);
    /// An invalid colour is ignored.
    void setBackdropColor(int backdrop, const QColor& color);

    /// For each node of the scope whether the seeds' connections lead to it, upstream or downstream. The
    /// seeds are among them.
    static QVector<bool> reachable(const NetScope& scope, const QVector<int>& seeds, bool upstream);

private:
    NetEditor& editor() const;
    int scopeIndex() const;
    const NetNode& model(int node) const;
    QString inputText(const NetPortRef& input) const;
    bool push(NetEditor::ChangePtr change, const QString& text);
    bool connectInput(const NetPortRef& source, const NetPortRef& dest);
    bool disconnectInput(const NetPortRef& dest);

    const NetBackdrop& backdrop(int index) const;
    QString listed(const QVector<int>& nodes, const QVector<int>& backdrops) const;
    QVector<int> changeable(const QVector<int>& backdrops) const;
    bool mayChange(int backdrop) const;
    QVector<NetMove> pendingMoves(QString* whyNot);
    QVector<NetBackdropMove> pendingBackdropMoves(QString* whyNot);
    QVector<NetMove> movesOfLoose(const Nodes& nodes) const;
    int add(const NetBackdrop& backdrop, const QString& text);
    OrvNgEdge* inputForInsertion(OrvNgNode* node, OrvNgEdge* edge, QString* whyNot) const;
    void insert(OrvNgNode* node, OrvNgEdge* edge);
    void extract(int node);
    NetPortRef sourceInsteadOf(int node, const NetPortRef& dest) const;

    EditorScene* m_Scene;
};
