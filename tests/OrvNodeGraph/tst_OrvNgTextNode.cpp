#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "support/DebugRecorder.h"
#include "support/TestTable.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsSimpleTextItem>
#include <QtTest>

namespace {

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

    void color_followsStatesAndTheWholeBody()
    {
        const OrvNgStyle& style = OrvNgStyle::instance();
        OrvNgTextNode node(nullptr);
        node.setText(QStringLiteral("1\n2\n3\n4")); // a taller body: the gradient follows
        const QRectF body = node.boundingRect();
        const auto* label = childOf<QGraphicsSimpleTextItem>(node);
        const auto own = [&](Qt::GlobalColor top, Qt::GlobalColor bottom) {
            QLinearGradient gradient = style.getDefaultNodeBrush();
            gradient.setColorAt(0, top);
            gradient.setColorAt(1, bottom);
            return overWholeBody(gradient, body);
        };
        node.setNodeColor(Qt::red, Qt::blue);
        node.setDebugColor(Qt::green);
        node.setCorrectColor();
        QCOMPARE(node.nodeUniColour(), own(Qt::red, Qt::blue));
        node.setLocked(true);
        QCOMPARE(node.nodeUniColour(), overWholeBody(style.getNodeLockedBrush(), body));
        node.setCached(true);
        QCOMPARE(node.nodeUniColour(), style.getCachedNodeBrush());
        QCOMPARE(label->brush(), style.getNodeTextBrush());
        node.setBypassed(true);
        QCOMPARE(node.nodeUniColour(), overWholeBody(style.getBypassedNodeBrush(), body));
        node.setDebug(true);
        QCOMPARE(node.nodeUniColour(), own(Qt::green, Qt::green));
        QCOMPARE(label->brush(), style.getBypassedNodeTextBrush());
    }
};

QTEST_MAIN(tst_OrvNgTextNode)
#include "tst_OrvNgTextNode.moc"
