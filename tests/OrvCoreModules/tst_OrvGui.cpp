#include "OrvCoreModules/OrvGui.h"

#include <QApplication>
#include <QComboBox>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QLineEdit>
#include <QMenu>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QtTest>

class tst_OrvGui : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void focus_isTakenOnlyFromWidgetsWithoutText()
    {
        QWidget window;
        QVBoxLayout layout(&window);
        const auto add = [&layout](auto* widget) {
            layout.addWidget(widget);
            return widget;
        };
        QWidget* const target = add(new QWidget);
        QWidget* const list = add(new QComboBox);
        QGraphicsView* const view = add(new QGraphicsView);
        QWidget* const lineEdit = add(new QLineEdit);
        QWidget* const textEdit = add(new QTextEdit);
        view->setScene(new QGraphicsScene(view));
        QGraphicsTextItem* const item = view->scene()->addText(QStringLiteral("text"));
        item->setTextInteractionFlags(Qt::TextEditorInteraction);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));

        const auto isTakenFrom = [target](QWidget* holder) {
            holder->setFocus();
            OrvGui::stealFocusGently(target);
            return QApplication::focusWidget() == target;
        };
        QVERIFY(isTakenFrom(list) && isTakenFrom(view));
        view->scene()->setFocusItem(item);
        for (QWidget* holder : {static_cast<QWidget*>(view), lineEdit, textEdit})
            QVERIFY(!isTakenFrom(holder));

        list->setFocus();
        QMenu menu;
        menu.addAction(QStringLiteral("entry"));
        menu.popup(window.pos());
        QTRY_COMPARE(QApplication::activePopupWidget(), static_cast<QWidget*>(&menu));
        OrvGui::stealFocusGently(target);
        QCOMPARE(window.focusWidget(), static_cast<QWidget*>(list));
    }
};

QTEST_MAIN(tst_OrvGui)
#include "tst_OrvGui.moc"
