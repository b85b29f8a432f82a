#pragma once

#include "OrvNodeGraph/OrvNgNode.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsRectItem>
#include <QPen>

/// The plainest concrete node: a box of a given size with its top left corner at the origin, laid out top
/// to bottom. It keeps its text and takes its brush from states and category.
class TestNode : public OrvNgNode
{
public:
    explicit TestNode(const QString& text = QStringLiteral("node"), const QSizeF& size = {100, 40})
        : OrvNgNode(nullptr)
        , m_Text(text)
        , m_Box(new QGraphicsRectItem(QRectF(QPointF(), size), this))
    {
        // The box only gives the node its size.
        m_Box->setPen(Qt::NoPen);
        m_Box->setBrush(Qt::NoBrush);
    }
    ~TestNode() override { aboutToBeDestroyed(); }

    void setText(const QString& text) override { m_Text = text; }
    QString text() override { return m_Text; }
    void setLocked(bool on) override { showState(StateLocked, on); }
    void setBypassed(bool on) override { showState(StateBypassed, on); }
    void setCached(bool on) override { showState(StateCached, on); }
    QBrush nodeUniColour() override { return nodeBrush(); }
    void setCorrectColor() override
    {
        ++m_Recolourings;
        setNodeBrush(resolvedBrush());
    }

    using OrvNgNode::setInsertionProbe;
    using OrvNgNode::setNodeBrush;
    using OrvNgNode::updateBounds;

    QGraphicsRectItem* box() { return m_Box; }
    int m_Recolourings = 0;

private:
    QString m_Text;
    QGraphicsRectItem* m_Box;
};

/// Runs what is due, deferred deletes included.
inline void flushEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}
