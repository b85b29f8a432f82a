#include "support/Scenario.h"

int ScenarioStage::keys() const
{
    static const QHash<QString, int> s_Keys{{u"shift"_s, Qt::ShiftModifier},
        {u"ctrl"_s, Qt::ControlModifier}, {u"alt"_s, Qt::AltModifier},
        {u"meta"_s, Qt::MetaModifier}};
    int all = 0;
    for (const QString& each : m_Args)
        all |= s_Keys.value(each);
    return all;
}

Qt::MouseButton ScenarioStage::button(Qt::MouseButton otherwise) const
{
    static const QHash<QString, Qt::MouseButton> s_Buttons{{u"left"_s, Qt::LeftButton},
        {u"right"_s, Qt::RightButton}, {u"middle"_s, Qt::MiddleButton},
        {u"extra"_s, Qt::ExtraButton1}, {u"none"_s, Qt::NoButton}};
    for (const QString& each : m_Args) {
        if (s_Buttons.contains(each))
            return s_Buttons[each];
    }
    return otherwise;
}

void ScenarioStage::putCursor(const QPoint& viewPos)
{
    QCursor::setPos(m_View.viewport()->mapToGlobal(viewPos));
}

void ScenarioStage::press(QEvent::Type type, const QPoint& pos)
{
    m_Held = button(Qt::LeftButton);
    mouse(type, pos, m_Held, m_Held, keys());
}

void ScenarioStage::drop(const QPoint& pos)
{
    const Qt::MouseButton held = std::exchange(m_Held, Qt::NoButton);
    release(pos, button(held), keys());
}

// One table: long, and as flat as a list.
void ScenarioStage::addMouseWords()
{
    const auto send = [this](QEvent&& event) { QApplication::sendEvent(&m_View, &event); };
    word("press", [this] { press(QEvent::MouseButtonPress, pixel()); });
    word("double", [this] { press(QEvent::MouseButtonDblClick, pixel()); });
    word("move", [this] { move(pixel(), button(m_Held), keys()); });
    word("hover", [this] { move(pixel(), Qt::NoButton); });
    word("release", [this] { drop(pixel()); });
    word("click", [this] {
        const QPoint pos = pixel();
        press(QEvent::MouseButtonPress, pos);
        drop(pos);
    });
    word("carry", [this] {
        drag({pixel(0), (pixel(0) + pixel(1)) / 2, pixel(1)}, keys());
        m_Held = Qt::LeftButton;
    });
    word("drag", u"carry $1 $2 $3, release $2 $3"_s);
    // Out of a port, where the edge stays on the cursor
    word("pull", u"drag $1 $2, grabber = another, hover $2, click $2"_s);
    word("cancel", u"drag $1 $2, grabber = another, hover $2, click $2 right"_s);
    word("wheel", [this] { return wheel(0, whole(0)); });
    word("cursor", [this] {
        putCursor(pixel());
        QCoreApplication::processEvents();
    });
    word("leave", [=] { send(QEvent(QEvent::Leave)); });
    word("focusout", [=] {
        send(QFocusEvent(QEvent::FocusOut,
            text(0) == u"popup" ? Qt::PopupFocusReason : Qt::ActiveWindowFocusReason));
    });
    word("key", [this] { QTest::keyClick(&m_View, Qt::Key_Left); });
    word("menu", [this] { chooseInMenu(text(0)); });
    word("wait", [this] { QTest::qWait(whole(0)); });
    // The view
    word("view", [this] {
        m_View.resize(size(0).toSize());
        m_View.centerViewOn({0, 0}, true);
        putCursor(m_View.viewport()->rect().center());
        flushEvents();
    });
    word("resize", [this] {
        m_View.resize(size(0).toSize());
        QCoreApplication::processEvents();
    });
    word("window", [this] { m_View.move(pair(0).toPoint()); });
    word("viewvisible", [this] { m_View.setVisible(isOn()); });
    word("scene", [this] { m_View.setScene(isOn() ? &m_Scene : nullptr); });
    word("scaleto", [this] { m_View.setTransform(QTransform::fromScale(number(0), number(0))); });
    word("centeron", [this] { m_View.centerViewOn(pair(0), false); });
    word("settle", [this] {
        m_View.init();
        m_View.centerViewOn({0, 0}, true);
        m_View.viewport()->repaint();
    });
    word("zoomin", [this] { m_View.zoomIn(number(0)); });
    word("zoomout", [this] { m_View.zoomOut(number(0)); });
    word("fit", [this] {
        m_View.init();
        m_View.fitInView(rect(0), Qt::KeepAspectRatio);
    });
    word("grid", [this] { m_View.setGridEnabled(isOn()); });
    word("minimap", [this] { m_View.setMinimapVisible(isOn()); });
    word("shakes", [this] { m_View.setShakeDetectionEnabled(isOn()); });
    word("scheme", [this] { m_View.m_NavigationScheme = text(0); });
    word(
        "anchormouse", [this] { m_View.setTransformationAnchor(QGraphicsView::AnchorUnderMouse); });
    word("contentschanged", [this] { m_View.contentsChanged(); });
    word("autoscroll", [this] { m_View.autoScrollAdvance(nullptr, false); });
    word("autoinserts", [this] { m_View.m_AutoInsert = isOn(); });
    word("pickup", [this] { m_View.pickUpEdge(pixel()); });
    word("track", [this] {
        m_View.setCursorTrackingMode(text(0) == u"cut" ? OrvNgView::CURSOR_TRACKING_SEVER_EDGES
                                                       : OrvNgView::CURSOR_TRACKING_NONE);
    });
}
