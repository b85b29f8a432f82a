#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"
#include "support/ViewStage.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsPixmapItem>
#include <QLinearGradient>

namespace {

template <typename Item> QList<Item*> childrenOf(const OrvNgNode& node)
{
    QList<Item*> found;
    const QList<QGraphicsItem*> items = node.childItems();
    for (QGraphicsItem* item : items) {
        if (auto* child = dynamic_cast<Item*>(item))
            found.append(child);
    }
    return found;
}

QGraphicsEllipseItem* disc(const OrvNgNode& node)
{
    return childrenOf<QGraphicsEllipseItem>(node).at(0);
}

QGraphicsEllipseItem* selectionDisc(const OrvNgNode& node)
{
    return childrenOf<QGraphicsEllipseItem>(node).at(1);
}

enum Look { Default, Bypassed, Cached, Red, RedToBlue };

/// Top and bottom colour; twice the same for a plain brush.
QPair<QColor, QColor> colors(const QBrush& brush)
{
    if (!brush.gradient())
        return {brush.color(), brush.color()};
    const QGradientStops stops = brush.gradient()->stops();
    return {stops.first().second, stops.last().second};
}

QPair<QColor, QColor> colors(Look look)
{
    const OrvNgStyle& style = OrvNgStyle::instance();
    switch (look) {
    case Bypassed:
        return colors(QBrush(style.getBypassedNodeBrush()));
    case Cached:
        return colors(style.getCachedNodeBrush());
    case Red:
        return {Qt::red, Qt::red};
    case RedToBlue:
        return {Qt::red, Qt::blue};
    case Default:
        break;
    }
    return colors(QBrush(style.getDefaultNodeBrush()));
}

/// A model object that answers every selection of its node by selecting the node itself.
class EchoModel : public OrvSerializableObject
{
public:
    void setSelected(bool selected, bool withChildren = false) override
    {
        ++m_Calls;
        OrvSerializableObject::setSelected(selected, withChildren);
        m_Node->setSelected(selected);
    }
    OrvNgDotNode* m_Node = nullptr;
    int m_Calls = 0;
};

} // namespace

class tst_OrvNgDotNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void disc_isColouredByTheFirstStateThatHolds_data()
    {
        const TestTable<QColor, bool, bool, QColor, int> row(
            "debugColor", "bypassed", "cached", "nodeColor", "look");
        const QColor none;
        const QColor red(Qt::red);
        row("debug colour before all", red, true, true, red, Red);
        row("invalid debug colour falls through", none, true, true, red, Bypassed);
        row("bypassed before cached", none, true, true, none, Bypassed);
        row("cached before own colours", none, false, true, red, Cached);
        row("own colours", none, false, false, red, RedToBlue);
        row("the style's", none, false, false, none, Default);
    }
    void disc_isColouredByTheFirstStateThatHolds()
    {
        QFETCH(QColor, debugColor);
        QFETCH(QColor, nodeColor);
        QFETCH(bool, bypassed);
        QFETCH(bool, cached);
        QFETCH(int, look);
        OrvNgDotNode dot(nullptr);
        dot.setCategory(QStringLiteral("Geometry")); // not looked at, nor is locking
        dot.setLocked(true);
        if (nodeColor.isValid())
            dot.setNodeColor(nodeColor, Qt::blue);
        dot.setDebugColor(debugColor);
        dot.setDebug(true);
        dot.setCached(cached);
        dot.setBypassed(bypassed);
        const QBrush brush = disc(dot)->brush();
        QCOMPARE(colors(brush), colors(Look(look)));
        QCOMPARE(dot.nodeUniColour(), brush);
        if (const auto* gradient = static_cast<const QLinearGradient*>(brush.gradient())) {
            QCOMPARE(gradient->start(), dot.boundingRect().topLeft());
            QCOMPARE(gradient->finalStop(), dot.boundingRect().bottomLeft());
        }
    }

    void icon_sitsInTheMiddleOfItsDisc()
    {
        QGraphicsScene scene;
        auto* dot = new OrvNgDotNode(nullptr);
        scene.addItem(dot);
        const int size = OrvNgStyle::instance().getDotNodeSize();
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, size, size));
        dot->setPixmap(QPixmap(), QPoint(5, 5));
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, size, size));

        dot->createOutputPoint(QStringLiteral("Output"), true);
        dot->setPixmap(QPixmap(30, 40), QPoint(1, -2));
        QCOMPARE(disc(*dot)->rect(), QRectF(0, 0, 56, 56));
        QCOMPARE(dot->boundingRect(), disc(*dot)->boundingRect());
        QVERIFY(dot->boundingRect().contains(QRectF(-0.5, -0.5, 57, 57)));
        QCOMPARE(selectionDisc(*dot)->rect(), dot->boundingRect().adjusted(3, 3, -3, -3));
        QCOMPARE(childrenOf<QGraphicsPixmapItem>(*dot).first()->pos(), QPointF(14, 6));
        // The scene has followed: the grown disc is found where it lies, and nowhere after removal.
        QVERIFY(scene.items(QPointF(50, 28)).contains(dot));
        scene.removeItem(dot);
        QVERIFY(!scene.items(QRectF(-100, -100, 300, 300)).contains(dot));
        delete dot;
    }

    /// By a click, which tells the host's object first; it may echo.
    void selectionDisc_showsWhileSelected()
    {
        ViewStage stage;
        EchoModel model;
        QPointer<OrvNgDotNode> dot(new OrvNgDotNode(nullptr));
        model.m_Node = dot;
        dot->setParent(&model);
        stage.m_Scene.addItem(dot);
        dot->setPos(100, 50);
        const QPoint onDot = stage.m_View.mapFromScene(dot->sceneBoundingRect().center());
        QVERIFY(!selectionDisc(*dot)->isVisible());
        stage.press(onDot, Qt::LeftButton);
        stage.release(onDot, Qt::LeftButton);
        QVERIFY(dot->isSelected() && model.isSelected());
        QVERIFY(selectionDisc(*dot)->isVisible());
        QCOMPARE(model.m_Calls, 1);
        stage.press(onDot, Qt::LeftButton, Qt::ControlModifier);
        QVERIFY(!selectionDisc(*dot)->isVisible() && !model.isSelected());
        dot->setParent(nullptr);
    }

    void ends_carryNoLabels()
    {
        const QString input = QStringLiteral("Input");
        const QString output = QStringLiteral("Output");
        QGraphicsScene scene;
        auto* dot = new OrvNgDotNode(nullptr);
        scene.addItem(dot);
        dot->createInput(input, true, {});
        dot->createInput(output, true, {});
        QCOMPARE(dot->input(input)->prettyText(), QString());
        QCOMPARE(dot->input(output)->prettyText(), output);
        QCOMPARE(dot->outputPointPrettyName(output), QString());
        QCOMPARE(dot->outputPointPrettyName(input), input);
    }

    void badSizes_makeASmallDisc()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        for (const int size : {0, -5, 2}) {
            style.setDotNodeSize(size);
            OrvNgDotNode dot(nullptr);
            QVERIFY(disc(dot)->rect().isValid());
            QVERIFY(!(selectionDisc(dot)->rect().width() < 0.0));
        }
        style.resetDotNodeSize();
    }
};

QTEST_MAIN(tst_OrvNgDotNode)
#include "tst_OrvNgDotNode.moc"
