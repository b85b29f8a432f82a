#pragma once

#include "network/NetEditor.h"

#include <QPointF>
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
    /// One step for all nodes that do not stand where the scene put them.
    void commitMoves();
    /// One step; corners as the positions of the nodes.
    void arrange(const QVector<QPointF>& corners);
    /// Puts a dot between the ends of a connection, where its marker stands. Null is ignored.
    void insertDot(OrvNgEdge* edge);
    void remove(const Nodes& nodes);
    /// Takes nodes out of their chains: what a node fed gets the source of its first connected input that
    /// fits, or none.
    void extract(const Nodes& nodes);

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

    QString moveText(const QVector<NetMove>& moves) const;
    QVector<NetMove> pendingMoves();
    OrvNgEdge* inputForInsertion(OrvNgNode* node, OrvNgEdge* edge, QString* whyNot) const;
    void insert(OrvNgNode* node, OrvNgEdge* edge);
    void extract(int node);
    NetPortRef sourceInsteadOf(int node, const NetPortRef& dest) const;

    EditorScene* m_Scene;
};
