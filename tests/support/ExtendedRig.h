#pragma once

#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgPort.h"

#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

inline const QString kA = QStringLiteral("a");
inline const QString kB = QStringLiteral("b");
inline const QString kC = QStringLiteral("c");
inline const QString kGroup = QStringLiteral("group");
inline const QString kOut = QStringLiteral("out");
inline const QString kRest = QStringLiteral("rest");

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
        for (const QString& name : {kOut, kRest})
            m_Node->createOutputPoint(name, true);
    }
    void connectInput(const QString& input) { m_Node->input(input)->setSourceNode(m_Source, kOut); }
    void setMode(int mode) { m_Node->setPortListMode(static_cast<Node::PortListMode>(mode)); }
    QStringList shownInputs() const
    {
        QStringList shown;
        for (const QString& name : {kA, kB, kC, kGroup}) {
            if (m_Node->isInputPortVisible(name))
                shown.append(name);
        }
        return shown;
    }
    QPointF inputSquare(const QString& name) const
    {
        return m_Node->inputPort(name)->portRectMappedToScene().center();
    }
    QPointF outputSquare(const QString& name) const
    {
        return m_Node->outputPort(name)->portRectMappedToScene().center();
    }

    QGraphicsScene m_Scene;
    Node* m_Source = new Node(nullptr);
    Node* m_Node = new Node(nullptr);
};

/// An item alone, as it paints itself at a scale; its origin is the image's top-left corner.
inline QImage painted(QGraphicsItem& item, double scale = 1.0)
{
    QImage image(400, 200, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    QStyleOptionGraphicsItem option;
    item.paint(&painter, &option, nullptr);
    return image;
}
