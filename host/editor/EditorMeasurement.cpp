#include "editor/EditorMeasurement.h"

#include "editor/EditorView.h"
#include "editor/EditorWindow.h"

#include <QCoreApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QSysInfo>
#include <QTimer>
#include <QVector>
#include <QWheelEvent>

#include <OrvNodeGraph/OrvNgNode.h>
#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// Longer than the view takes to notice that nodes have come.
constexpr int kSettleTime = 120; // milliseconds
constexpr int kFits = 30;
constexpr int kMoves = 100; // of a pan and a drag
constexpr int kZooms = 3; // in and out again
constexpr int kZoomSteps = 8; // inwards, and as many back
constexpr int kBandMoves = 50;
constexpr QPoint kMove(2, 1); // pixels; straight on, which is no shaking

QString tr(const char* text)
{
    return QCoreApplication::translate("EditorMeasurement", text);
}

/// Keeps the user's own mouse out of the gestures.
void runDueEvents()
{
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void settle()
{
    QEventLoop loop;
    QTimer::singleShot(kSettleTime, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

using Times = QVector<double>; // milliseconds, one a frame

/// The hand on the mouse, and the eye on the view.
class Player : public QObject
{
public:
    explicit Player(EditorWindow* window)
        : m_Window(window)
        , m_View(window->view())
    {
        m_View->viewport()->installEventFilter(this);
        // While something is dragged, the view scrolls when the cursor is near its border.
        QCursor::setPos(m_View->mapToGlobal(middle()));
    }

    Times fit();
    Times panAll();
    Times panAtActualSize();
    Times zoom();
    Times dragNode();
    Times band();

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        m_WasPainted = m_WasPainted || event->type() == QEvent::Paint;
        return false;
    }

private:
    QPoint middle() const { return m_View->viewport()->rect().center(); }

    void lookAtAll()
    {
        m_Window->frameAll();
        frame([] {});
    }
    void lookAtMiddle()
    {
        m_View->lookAt(EditorScene::middleOf(m_Window->scene()->nodes()), 1.0);
        frame([] {});
    }

    double frame(const std::function<void()>& gesture)
    {
        QElapsedTimer timer;
        timer.start();
        m_WasPainted = false;
        gesture();
        runDueEvents();
        if (!m_WasPainted)
            m_View->viewport()->repaint();
        return double(timer.nsecsElapsed()) / 1e6;
    }

    void send(QEvent::Type type, const QPoint& pos, Qt::MouseButton button, Qt::MouseButton held)
    {
        QMouseEvent event(
            type, pos, m_View->viewport()->mapToGlobal(pos), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(m_View->viewport(), &event);
    }
    void press(const QPoint& pos, Qt::MouseButton button)
    {
        send(QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton);
        send(QEvent::MouseButtonPress, pos, button, button);
    }
    double move(const QPoint& pos, Qt::MouseButton held)
    {
        return frame([&] { send(QEvent::MouseMove, pos, Qt::NoButton, held); });
    }
    void release(const QPoint& pos, Qt::MouseButton button)
    {
        send(QEvent::MouseButtonRelease, pos, button, Qt::NoButton);
        frame([] {});
    }

    Times pan();
    OrvNgNode* nodeInTheMiddle() const;

    EditorWindow* m_Window;
    EditorView* m_View;
    bool m_WasPainted = false;
};

Times Player::fit()
{
    Times times;
    for (int i = 0; i < kFits; ++i) {
        lookAtMiddle();
        times.append(frame([this] { m_Window->frameAll(); }));
    }
    return times;
}

Times Player::panAll()
{
    lookAtAll();
    return pan();
}

Times Player::panAtActualSize()
{
    lookAtMiddle();
    return pan();
}

Times Player::pan()
{
    Times times;
    QPoint pos = middle();
    press(pos, Qt::MiddleButton);
    for (int i = 0; i < kMoves; ++i)
        times.append(move(pos += kMove, Qt::MiddleButton));
    release(pos, Qt::MiddleButton);
    return times;
}

Times Player::zoom()
{
    lookAtAll();
    Times times;
    for (int i = 0; i < kZooms * 2 * kZoomSteps; ++i) {
        const int angle = i % (2 * kZoomSteps) < kZoomSteps ? QWheelEvent::DefaultDeltasPerStep
                                                            : -QWheelEvent::DefaultDeltasPerStep;
        QWheelEvent event(middle(), m_View->viewport()->mapToGlobal(middle()), QPoint(),
            QPoint(0, angle), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        times.append(frame([&] { QCoreApplication::sendEvent(m_View->viewport(), &event); }));
    }
    return times;
}

OrvNgNode* Player::nodeInTheMiddle() const
{
    const QPointF target = EditorScene::middleOf(m_Window->scene()->nodes());
    const auto distance = [&](OrvNgNode* node) {
        const QPointF way = node->sceneBoundingRect().center() - target;
        return std::hypot(way.x(), way.y());
    };
    OrvNgNode* nearest = nullptr;
    for (OrvNgNode* node : m_Window->scene()->nodes()) {
        if (!nearest || distance(node) < distance(nearest))
            nearest = node;
    }
    return nearest;
}

/// Taken back before the button is up, so that no step is made. No frames where there is no node.
Times Player::dragNode()
{
    Times times;
    OrvNgNode* node = nodeInTheMiddle();
    if (!node)
        return times;
    const QPointF handle = node->mapToScene(node->nodeShapeRect().center());
    m_View->lookAt(handle, 1.0);
    frame([] {});
    QPoint pos = m_View->mapFromScene(handle);
    press(pos, Qt::LeftButton);
    for (int i = 0; i < kMoves; ++i)
        times.append(move(pos += kMove, Qt::LeftButton));
    const bool isDragged = m_View->activity() == EditorView::Activity::DraggingNode;
    m_View->cancel();
    release(pos, Qt::LeftButton);
    return isDragged ? times : Times();
}

/// From one corner to the other, with everything in view.
Times Player::band()
{
    lookAtAll();
    m_Window->scene()->clearSelection();
    Times times;
    const QPoint from(1, 1);
    const QPoint to = m_View->viewport()->rect().bottomRight() - from;
    press(from, Qt::LeftButton);
    for (int i = 1; i <= kBandMoves; ++i)
        times.append(move(from + (to - from) * i / kBandMoves, Qt::LeftButton));
    release(to, Qt::LeftButton);
    m_Window->scene()->clearSelection();
    return times;
}

/// The smallest time that so many percent of the frames do not exceed.
double percentile(const Times& sorted, int percent)
{
    return sorted.at(int(std::ceil(double(sorted.size()) * percent / 100.0)) - 1);
}

QString line(const QString& name, const QStringList& cells)
{
    QString text = name.leftJustified(24);
    for (const QString& cell : cells)
        text += cell.rightJustified(10);
    return text + QLatin1Char('\n');
}

QString line(const QString& name, Times times)
{
    std::sort(times.begin(), times.end());
    QStringList cells{QString::number(times.size())};
    for (int percent : {50, 95, 99, 100}) {
        cells.append(times.isEmpty() ? QStringLiteral("-")
                                     : QString::number(percentile(times, percent), 'f', 2));
    }
    return line(name, cells);
}

QString heading(const EditorWindow* window)
{
    const QSize size = window->view()->viewport()->size();
    return tr("%1: %2 nodes, %3 edges\n")
               .arg(QFileInfo(window->filePath()).fileName())
               .arg(window->scene()->nodes().size())
               .arg(window->scene()->connectionCount())
        + tr("%1 build, Qt %2, %3, platform %4, view %5x%6, scale factor %7\n\n")
              .arg(QStringLiteral(ORV_BUILD_TYPE), QString::fromLatin1(qVersion()),
                  QSysInfo::prettyProductName() + QLatin1Char(' ')
                      + QSysInfo::currentCpuArchitecture(),
                  QGuiApplication::platformName())
              .arg(size.width())
              .arg(size.height())
              .arg(window->view()->devicePixelRatioF())
        + line(tr("ms a frame"), {tr("frames"), tr("median"), tr("95 %"), tr("99 %"), tr("worst")});
}

} // namespace

QString EditorMeasurement::table(EditorWindow* window)
{
    window->show();
    settle();
    Player player(window);
    settle(); // items make some of their parts when they are first painted
    QString text = heading(window);
    text += line(tr("fit"), player.fit());
    text += line(tr("pan, all in view"), player.panAll());
    text += line(tr("pan at 100 %"), player.panAtActualSize());
    text += line(tr("zoom in and out"), player.zoom());
    text += line(tr("drag a node at 100 %"), player.dragNode());
    text += line(tr("band over all"), player.band());
    return text;
}
