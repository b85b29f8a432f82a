#include "OrvNodeGraph/OrvGraphicsLinearLayout.h"

#include <QGraphicsWidget>
#include <QtTest>

class tst_OrvGraphicsLinearLayout : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void changesWhilePaused_showOnceAfterOneResume()
    {
        // A widget posts a layout request when its layout is invalidated after an activation.
        struct Widget : QGraphicsWidget
        {
            bool event(QEvent* event) override
            {
                m_Requests += event->type() == QEvent::LayoutRequest ? 1 : 0;
                return QGraphicsWidget::event(event);
            }
            int m_Requests = 0;
        } widget;
        auto* layout = new OrvGraphicsLinearLayout(Qt::Vertical);
        auto* row = new QGraphicsWidget;
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addItem(row);
        widget.setLayout(layout);
        row->setMinimumHeight(20);
        QCOMPARE(layout->minimumHeight(), 20.0);
        const auto requests = [&widget] {
            QCoreApplication::sendPostedEvents();
            return std::exchange(widget.m_Requests, 0);
        };
        requests();

        layout->setInvalidationPaused(true);
        layout->setInvalidationPaused(false);
        QCOMPARE(requests(), 0); // nothing was asked for

        layout->setInvalidationPaused(true);
        layout->setInvalidationPaused(true);
        row->setMinimumHeight(30);
        row->setMinimumHeight(40);
        layout->invalidate();
        QCOMPARE(requests(), 0);
        layout->setInvalidationPaused(false);
        QVERIFY(!layout->invalidationPaused());
        QCOMPARE(requests(), 1);
        QCOMPARE(layout->minimumHeight(), 40.0);

        row->setMinimumHeight(50);
        QCOMPARE(layout->minimumHeight(), 50.0);
    }
};

QTEST_MAIN(tst_OrvGraphicsLinearLayout)
#include "tst_OrvGraphicsLinearLayout.moc"
