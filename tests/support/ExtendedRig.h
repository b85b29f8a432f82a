#pragma once

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"

#include <QGraphicsScene>

inline const QString kA = QStringLiteral("a");
inline const QString kB = QStringLiteral("b");
inline const QString kC = QStringLiteral("c");
inline const QString kOut = QStringLiteral("out");

/// Two extended nodes in a scene: the source with the output "out" in the expanded mode, and the
/// node at (400, 60) with the inputs a, b and c and the outputs "out" and "rest", all ports still
/// hidden.
struct ExtendedRig
{
    using Node = OrvNgExtendedNode;

    ExtendedRig()
    {
        m_Scene.addItem(m_Source);
        m_Scene.addItem(m_Node);
        m_Source->createOutputPoint(kOut, true);
        m_Source->setPortListMode(Node::PORT_LIST_EXPANDED);
        m_Node->setPos(400, 60);
        for (const QString& name : {kA, kB, kC})
            m_Node->createInput(name, false, {});
        for (const QString& name : {kOut, QStringLiteral("rest")})
            m_Node->createOutputPoint(name, true);
    }
    void connectInput(const QString& input) { m_Node->input(input)->setSourceNode(m_Source, kOut); }
    void setMode(int mode) { m_Node->setPortListMode(static_cast<Node::PortListMode>(mode)); }

    QGraphicsScene m_Scene;
    Node* m_Source = new Node(nullptr);
    Node* m_Node = new Node(nullptr);
};
