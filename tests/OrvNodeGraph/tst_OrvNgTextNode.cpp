#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "support/DebugRecorder.h"
#include "support/TestTable.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsSimpleTextItem>
#include <QtTest>

namespace {

enum State { Plain, Overridden, Bypassed, Cached, Locked };

template <typename Item> Item* childOf(const QGraphicsItem& node)
{
    for (QGraphicsItem* child : node.childItems()) {
        if (auto* item = dynamic_cast<Item*>(child))
            return item;
    }
    return nullptr;
}

QBrush overWholeBody(QLinearGradient gradient, const QRectF& body)
{
    gradient.setStart(body.topLeft());
    gradient.setFinalStop(body.bottomLeft());
    return gradient;
}

} // namespace
Q_DECLARE_METATYPE(QVector<int>)

class tst_OrvNgTextNode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void body_growsWithItsTextAndNotBelowTheMinimum_data()
    {
        const TestTable<QString, bool> row("text", "isWider");
        row("empty", "", false);
        row("short", "i", false);
        row("long", QString(200, QLatin1Char('w')), true);
    }
    void body_growsWithItsTextAndNotBelowTheMinimum()
    {
        QFETCH(QString, text);
        QFETCH(bool, isWider);
        const OrvNgStyle& style = OrvNgStyle::instance();
        OrvNgTextNode node(nullptr);
        node.setText(QString(300, QLatin1Char('m'))); // must be able to shrink again
        node.setText(text);

        auto* label = childOf<QGraphicsSimpleTextItem>(node);
        const QRectF body = node.boundingRect();
        QCOMPARE(body.width(),
            isWider ? label->boundingRect().width() + 6 : double(style.getMinimumNodeWidth()));
        QCOMPARE(
            body.height(), qMax(double(style.getNodeHeight()), label->boundingRect().height() + 6));
        QCOMPARE(label->sceneBoundingRect().center(), body.center());
        auto* marker = childOf<QGraphicsEllipseItem>(node);
        QVERIFY(!marker->isVisible());
        QCOMPARE(marker->pos(), body.center());
        QCOMPARE(marker->rect(), QRectF(-10, -10, 20, 20));
    }

    void increaseSize_multipliesTheMinimumWidth_data()
    {
        const TestTable<int, int, int> row("factor", "widths", "reports");
        row("one", 1, 2, 0);
        row("five", 5, 6, 0);
        row("none", 0, 1, 1);
        row("negative", -1, 1, 1);
    }
    void increaseSize_multipliesTheMinimumWidth()
    {
        QFETCH(int, factor);
        QFETCH(int, widths);
        OrvNgTextNode node(nullptr);
        const DebugRecorder recorder;
        node.increaseSize(factor);
        QCOMPARE(node.boundingRect().width(),
            widths * double(OrvNgStyle::instance().getMinimumNodeWidth()));
        QTEST(recorder.count(QStringLiteral("[ !! ] Factor must be atleast 1")), "reports");
        QCOMPARE(recorder.reports().value(0).file,
            recorder.reports().isEmpty() ? QString()
                                         : QStringLiteral("src/OrvNodeGraph/OrvNgTextNode"));
    }

    void color_followsTheFirstStateThatApplies_data()
    {
        const TestTable<QVector<int>, int> row("states", "shown");
        row("none", QVector<int>{}, Plain);
        row("override beats all", QVector<int>{Locked, Cached, Bypassed, Overridden}, Overridden);
        row("bypassed beats cached and locked", QVector<int>{Locked, Cached, Bypassed}, Bypassed);
        row("cached beats locked", QVector<int>{Locked, Cached}, Cached);
        row("locked", QVector<int>{Locked}, Locked);
    }
    void color_followsTheFirstStateThatApplies()
    {
        QFETCH(QVector<int>, states);
        QFETCH(int, shown);
        const OrvNgStyle& style = OrvNgStyle::instance();
        OrvNgTextNode node(nullptr);
        node.setText(QStringLiteral("1\n2\n3\n4")); // a taller body: the gradient follows
        node.setNodeColor(Qt::red, Qt::blue);
        node.setDebugColor(Qt::green);
        node.setCorrectColor();
        node.setLocked(states.contains(Locked));
        node.setCached(states.contains(Cached));
        node.setBypassed(states.contains(Bypassed));
        node.setDebug(states.contains(Overridden));

        QLinearGradient own = style.getDefaultNodeBrush();
        own.setColorAt(0, shown == Overridden ? Qt::green : Qt::red);
        own.setColorAt(1, shown == Overridden ? Qt::green : Qt::blue);
        const QRectF body = node.boundingRect();
        const QBrush expected = shown == Bypassed
            ? overWholeBody(style.getBypassedNodeBrush(), body)
            : shown == Cached ? style.getCachedNodeBrush()
            : shown == Locked ? overWholeBody(style.getNodeLockedBrush(), body)
                              : overWholeBody(own, body);
        QCOMPARE(node.nodeUniColour(), expected);
        QCOMPARE(childOf<QGraphicsSimpleTextItem>(node)->brush(),
            states.contains(Bypassed) ? style.getBypassedNodeTextBrush()
                                      : style.getNodeTextBrush());
    }
};

QTEST_MAIN(tst_OrvNgTextNode)
#include "tst_OrvNgTextNode.moc"
