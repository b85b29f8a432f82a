#include "BenchGraph.h"

#include "BenchEvents.h"

#include <OrvCore/OrvUndoManager.h>

#include <QCursor>
#include <QUndoStack>

#include <OrvNodeGraph/OrvNgEdge.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <algorithm>
#include <stdexcept>

namespace {

QString inputName(int i)
{
    return QStringLiteral("input%1").arg(i);
}

QString outputName(int i)
{
    return QStringLiteral("output%1").arg(i);
}

} // namespace

void benchRequire(bool isTrue, const char* what)
{
    if (!isTrue)
        throw std::runtime_error(what);
}

BenchGraph::BenchGraph(const BenchWorkload& workload, bool populated)
    : m_Workload(workload)
{
    if (populated)
        populate();
    m_View.setFrameShape(QFrame::NoFrame);
    m_View.setScene(&m_Scene);
    m_View.init();
    m_View.resize(BenchWorkload::kViewSize);
    m_View.viewport()->installEventFilter(this);
    m_View.viewport()->setUpdatesEnabled(false);
    m_View.show();
    // While something is dragged, the view scrolls when the cursor is near its border.
    QCursor::setPos(m_View.mapToGlobal(m_View.rect().center()));
    QCoreApplication::processEvents();
}

BenchGraph::~BenchGraph()
{
    OrvUndoManager::instance().undoStack()->clear();
    m_View.viewport()->removeEventFilter(this);
    m_View.setScene(nullptr);
    // How fast the library deletes is a row of its own; this only has to be quick.
    for (OrvNgExtendedNode* node : qAsConst(m_Nodes)) {
        m_Scene.removeItem(node);
        node->destroy();
    }
    benchRunDueEvents();
}

void BenchGraph::populate()
{
    m_Nodes.reserve(m_Workload.m_NodeCount);
    for (int i = 0; i < m_Workload.m_NodeCount; ++i)
        m_Nodes.append(makeNode(i));
    for (int i = 0; i < m_Workload.m_NodeCount; ++i) {
        for (int input = 0; input < BenchWorkload::kWiredInputs; ++input) {
            const int source = m_Workload.sourceOf(i, input);
            if (source >= 0)
                m_Nodes.at(i)
                    ->input(inputName(input))
                    ->setSourceNode(m_Nodes.at(source), outputName(input));
        }
    }
}

OrvNgExtendedNode* BenchGraph::makeNode(int index)
{
    auto* node = new OrvNgExtendedNode(nullptr);
    m_Scene.addItem(node);
    node->setCategory(QStringLiteral("Math"));
    node->setCorrectColor();
    for (int i = 0; i < BenchWorkload::kInputs; ++i)
        node->createInput(inputName(i), i == 0, {});
    for (int i = 0; i < BenchWorkload::kOutputs; ++i)
        node->createOutputPoint(outputName(i), true);
    node->setText(QStringLiteral("multiply%1").arg(index));
    node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
    node->setPos(m_Workload.posOf(index));
    return node;
}

void BenchGraph::allowPainting()
{
    m_View.viewport()->setUpdatesEnabled(true);
}

void BenchGraph::deleteAll()
{
    for (OrvNgExtendedNode* node : qAsConst(m_Nodes))
        node->destroy();
    m_Nodes.clear();
    benchRunDueEvents();
}

void BenchGraph::showAll()
{
    m_View.fitInView(m_Workload.wholeRect(), Qt::KeepAspectRatio);
    benchRunDueEvents();
    benchRequire(qAbs(m_View.transform().m11() / m_Workload.wholeScale() - 1.0) < 0.01,
        "the view did not fit the network");
}

void BenchGraph::showAtScaleOne()
{
    m_View.centerViewOn(m_Workload.posOf(m_Workload.middleNode()), true);
    benchRunDueEvents();
    benchRequire(m_View.transform().m11() == 1.0, "the view is not at scale 1");
}

void BenchGraph::frame()
{
    const int before = m_Frames;
    QCoreApplication::processEvents();
    if (m_Frames == before)
        m_View.viewport()->repaint();
    benchRequire(m_Frames == before + 1, "a frame was not painted exactly once");
}

bool BenchGraph::eventFilter(QObject* /*watched*/, QEvent* event)
{
    m_Frames += event->type() == QEvent::Paint ? 1 : 0;
    return false;
}

void BenchGraph::press(const QPoint& viewPos)
{
    move(viewPos);
    m_Held = true;
    benchSendMouse(m_View.viewport(), QEvent::MouseButtonPress, viewPos, true);
}

void BenchGraph::move(const QPoint& viewPos)
{
    m_MousePos = viewPos;
    benchSendMouse(m_View.viewport(), QEvent::MouseMove, viewPos, m_Held);
}

void BenchGraph::release()
{
    m_Held = false;
    benchSendMouse(m_View.viewport(), QEvent::MouseButtonRelease, m_MousePos, false);
}

QPoint BenchGraph::handleOf(int node) const
{
    OrvNgExtendedNode* item = m_Nodes.at(node);
    return m_View.mapFromScene(item->mapToScene(item->nodeShapeRect().center()));
}

int BenchGraph::connectionCount() const
{
    int count = 0;
    for (OrvNgExtendedNode* node : m_Nodes) {
        for (OrvNgEdge* edge : node->inputs())
            count += edge->isFullConnected() ? 1 : 0;
    }
    return count;
}

int BenchGraph::selectedNodeCount() const
{
    return int(std::count_if(m_Nodes.cbegin(), m_Nodes.cend(),
        [](const OrvNgExtendedNode* node) { return node->isSelected(); }));
}
