#pragma once

#include "BenchWorkload.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QImage>
#include <QPainterPath>
#include <QVector>

class QGraphicsWidget;

// What the figures are compared with. Floors use nothing of the library, so that its changes cannot move them.
// Whoever changes one measures the quiet floors in bench_OrvNgGraph.cpp anew.

/// The floor of a frame: the visible nodes and edges painted straight into an image of the view's size, antialiased,
/// without scene, items or text. A node is two rounded rectangles (body, header) and a square for each port, an
/// edge one cubic curve, two units wide.
class BenchBarePainting
{
public:
    BenchBarePainting(const BenchWorkload& workload, const QTransform& sceneToView);
    void paint();

private:
    QTransform m_SceneToView;
    QImage m_Image{BenchWorkload::kViewSize, QImage::Format_ARGB32_Premultiplied};
    QVector<QPainterPath> m_Edges;
    QVector<QPointF> m_Nodes;
    QVector<QRectF> m_Ports; ///< of a node at the origin
};

/// The floor of building, deleting, hovering and keeping: the framework's own items in its own view. A node is a
/// widget with seven child widgets (header, six ports), a wired input a path item with a polygon item inside.
class BenchItemTree
{
public:
    explicit BenchItemTree(const BenchWorkload& workload, bool populated = true);
    ~BenchItemTree();

    void populate();
    /// Runs what is due and has the scene index its items, as a paint does.
    void settle();
    void deleteAll();
    void showAtScaleOne();
    void moveMouse(const QPoint& viewPos);

private:
    void addNode(int node);
    void addEdges(int node);

    BenchWorkload m_Workload;
    QGraphicsScene m_Scene;
    QGraphicsView m_View;
    QVector<QGraphicsWidget*> m_Nodes;
    QVector<QGraphicsItem*> m_Edges;
};
