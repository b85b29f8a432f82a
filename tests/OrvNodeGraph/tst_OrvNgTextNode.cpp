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
    void body_growsWithItsTextAndNotBelowTheMinimum()
    {
        const OrvNgStyle& style = OrvNgStyle::instance();
        OrvNgTextNode node(nullptr);
        const auto* label = childOf<QGraphicsSimpleTextItem>(node);
        const auto* marker = childOf<QGraphicsEllipseItem>(node);
        for (const int length : {200, 0, 1}) { // it must be able to shrink again
            node.setText(QString(length, QLatin1Char('w')));
            const QRectF body = node.boundingRect();
            const QSizeF fitted = label->boundingRect().size() + QSizeF(6, 6);
            QCOMPARE(body.width(), length == 200 ? fitted.width() : style.getMinimumNodeWidth());
            QCOMPARE(body.height(), qMax(double(style.getNodeHeight()), fitted.height()));
            QCOMPARE(label->sceneBoundingRect().center(), body.center());
            QCOMPARE(marker->pos(), body.center());
        }
        QVERIFY(!marker->isVisible());
        QCOMPARE(marker->rect(), QRectF(-10, -10, 20, 20));
    }

    void increaseSize_multipliesTheMinimumWidth_data()
    {
        const TestTable<int, int> row("factor", "widths");
        row("one", 1, 2);
        row("five", 5, 6);
        row("none", 0, 1);
        row("negative", -1, 1);
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
        QCOMPARE(
            recorder.count(QStringLiteral("[ !! ] Factor must be atleast 1")), int(factor < 1));
        for (const auto& report : recorder.reports())
            QCOMPARE(report.file, QStringLiteral("src/OrvNodeGraph/OrvNgTextNode"));
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
