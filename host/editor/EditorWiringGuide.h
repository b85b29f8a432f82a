#pragma once

#include "network/NetEditor.h"

#include <QPointer>

#include <OrvNodeGraph/OrvNgEdge.h>

class EditorScene;
struct NetNode;

/// Shows, for as long as an edge is carried, which ports would take its loose end: they stand out, all
/// others step back, and so do nodes without any such port. Everything is worked out once, when the
/// carrying begins: types are compared, and one walk from the carried end finds the nodes that would close
/// a cycle.
///
/// Called by  EditorScene, after every event.
/// Uses       EditorPortColors, the scene's nodes.
/// Tells      nobody.
class EditorWiringGuide
{
public:
    explicit EditorWiringGuide(EditorScene* scene)
        : m_Scene(scene)
    {
    }

    /// The edge that the mouse carries now, null for none. Cheap while nothing changes.
    void follow(OrvNgEdge* carried);
    /// Nodes or connections changed: what is shown no longer holds.
    void invalidate() { m_IsValid = false; }

private:
    /// What the loose end wants.
    struct Wish
    {
        bool isInput = false; ///< an input; else an output
        QString type;
        int anchor = -1; ///< the node at the other end; it does not step back
        QVector<bool> excluded; ///< nodes, by position
    };

    bool begin();
    void end();
    bool wish(Wish* wish) const;
    void mark(int index, const Wish& wish);

    EditorScene* m_Scene;
    QPointer<OrvNgEdge> m_Carried;
    bool m_IsShown = false;
    bool m_IsValid = true;
};
