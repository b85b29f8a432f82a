#pragma once

#include <QFlags>
#include <QHash>
#include <QTimer>

class OrvNgEdge;
class OrvNgNode;
class QGraphicsScene;

/// Keeps the items of one scene in line with the style: nodes, edges and ports copy brushes and
/// pens when they are made, and would show them until they are made anew. However many values
/// change, the scene is brought in line once, when the event loop turns.
///
/// A changed colour is followed by OrvNgStyle::colorsUpdated(), so that what is derived from it
/// changes as well.
///
/// What items keep for life stays as it is: the colours of a port's square (the host gives each one
/// its own), the scale below which texts are left out, the size of an edge's marker.
///
/// Called by  whoever makes a scene: it is enough to make one, as the scene's child.
/// Uses       OrvNgStyle; the public functions of nodes and edges.
/// Tells      nobody.
class EditorStyleRefresh : public QObject
{
    Q_OBJECT

public:
    enum Part {
        Nodes = 1, ///< brushes and titles
        Layout = 2, ///< sizes of nodes
        Edges = 4, ///< pens, arrows and labels
        All = 7
    };
    Q_DECLARE_FLAGS(Parts, Part)

    explicit EditorStyleRefresh(QGraphicsScene* scene);

    /// Brings the items of a scene in line now. Edges are drawn as not shared: the library does not
    /// say which ones are.
    static void refresh(QGraphicsScene* scene, Parts parts);

private Q_SLOTS:
    void takeChange();

private:
    using PartsBySignal = QHash<int, Parts>;
    static const PartsBySignal& partsBySignal();
    void takeColorsUpdated();
    void schedule(Parts parts);
    void run();

    static inline bool s_IsDeriving = false; ///< colorsUpdated() comes from an object of this class
    QGraphicsScene* m_Scene;
    QTimer m_Timer;
    Parts m_Parts;
    bool m_MustDerive = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(EditorStyleRefresh::Parts)
