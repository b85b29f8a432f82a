#pragma once

#include "BenchWorkload.h"

#include <QGraphicsScene>
#include <QObject>
#include <QPoint>
#include <QVector>

#include <OrvNodeGraph/OrvNgView.h>

class OrvNgExtendedNode;

/// The workload as a graph of the library in a view, used through the events that a platform sends.
class BenchGraph : public QObject
{
public:
    explicit BenchGraph(const BenchWorkload& workload, bool populated = true);
    ~BenchGraph() override;

    // Life

    void populate();
    /// Nothing is painted before.
    void allowPainting();
    /// As a host does it.
    void deleteAll();

    // View

    void showAll();
    void showAtScaleOne();
    OrvNgView& view() { return m_View; }
    /// Runs what is due and paints, exactly once.
    void frame();
    int frameCount() const { return m_Frames; }

    // Mouse, in viewport pixels

    void press(const QPoint& viewPos);
    void move(const QPoint& viewPos);
    void release();
    /// Where a node can be taken.
    QPoint handleOf(int node) const;

    // What has happened

    const BenchWorkload& workload() const { return m_Workload; }
    OrvNgExtendedNode* node(int index) const { return m_Nodes.at(index); }
    /// The edges that connect two nodes; counts, each call.
    int connectionCount() const;
    int selectedNodeCount() const;
    void clearSelection() { m_Scene.clearSelection(); }
    int itemCount() const { return m_Scene.items().size(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    OrvNgExtendedNode* makeNode(int index);

    BenchWorkload m_Workload;
    QGraphicsScene m_Scene;
    OrvNgView m_View{nullptr};
    QVector<OrvNgExtendedNode*> m_Nodes;
    QPoint m_MousePos;
    bool m_Held = false;
    int m_Frames = 0;
};

/// Says what went wrong and gives the row up.
void benchRequire(bool isTrue, const char* what);
