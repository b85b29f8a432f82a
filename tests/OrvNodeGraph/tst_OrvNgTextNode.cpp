#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "support/DebugRecorder.h"

#include <QGraphicsSimpleTextItem>
#include <QtTest>

namespace {

const QGraphicsSimpleTextItem* labelOf(const OrvNgTextNode& node)
{
    for (QGraphicsItem* child : node.childItems()) {
        if (auto* label = dynamic_cast<QGraphicsSimpleTextItem*>(child))
            return label;
    }
    return nullptr;
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
        const auto* label = labelOf(node);
        for (const int length : {200, 0, 1}) { // it must be able to shrink again
            node.setText(QString(length, QLatin1Char('w')));
            const QRectF body = node.boundingRect();
            const QSizeF fitted = label->boundingRect().size() + QSizeF(6, 6);
            QCOMPARE(body.width(), length == 200 ? fitted.width() : style.getMinimumNodeWidth());
            QCOMPARE(body.height(), qMax(double(style.getNodeHeight()), fitted.height()));
            QCOMPARE(label->sceneBoundingRect().center(), body.center());
        }
    }

    void increaseSize_multipliesTheMinimumWidth()
    {
        const QPair<int, int> rows[] = {{1, 2}, {5, 6}, {0, 1}, {-1, 1}};
        for (const auto& [factor, widths] : rows) {
            OrvNgTextNode node(nullptr);
            const DebugRecorder recorder;
            node.increaseSize(factor);
            const double width = double(OrvNgStyle::instance().getMinimumNodeWidth());
            QCOMPARE(node.boundingRect().width(), widths * width);
            const QString report = QStringLiteral("[ !! ] Factor must be atleast 1");
            QCOMPARE(recorder.messages(), factor < 1 ? QStringList(report) : QStringList());
        }
    }

    void color_followsStatesAndTheWholeBody()
    {
        const OrvNgStyle& style = OrvNgStyle::instance();
        OrvNgTextNode node(nullptr);
        node.setText(QStringLiteral("1\n2\n3\n4")); // a taller body: the gradient follows
        const auto* label = labelOf(node);
        const auto overWholeBody = [&node](QLinearGradient gradient) {
            gradient.setStart(node.boundingRect().topLeft());
            gradient.setFinalStop(node.boundingRect().bottomLeft());
            return QBrush(gradient);
        };
        node.setLocked(true);
        QCOMPARE(node.nodeUniColour(), overWholeBody(style.getNodeLockedBrush()));
        node.setCached(true);
        QCOMPARE(node.nodeUniColour(), style.getCachedNodeBrush());
        QCOMPARE(label->brush(), style.getNodeTextBrush());
        node.setBypassed(true);
        QCOMPARE(node.nodeUniColour(), overWholeBody(style.getBypassedNodeBrush()));
        QCOMPARE(label->brush(), style.getBypassedNodeTextBrush());
    }
};

QTEST_MAIN(tst_OrvNgTextNode)
#include "tst_OrvNgTextNode.moc"
