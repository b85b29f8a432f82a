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
        auto* const layout = new QVBoxLayout(&window);
        auto* const target = new QWidget;
        auto* const list = new QComboBox;
        auto* const view = new QGraphicsView;
        auto* const lineEdit = new QLineEdit;
        auto* const textEdit = new QTextEdit;
        const QVector<QWidget*> widgets{target, list, view, lineEdit, textEdit};
        for (QWidget* const widget : widgets)
            layout->addWidget(widget);
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
        QVERIFY(isTakenFrom(list));
        QVERIFY(isTakenFrom(view));
        view->scene()->setFocusItem(item);
        QVERIFY(!isTakenFrom(view));
        QVERIFY(!isTakenFrom(lineEdit));
        QVERIFY(!isTakenFrom(textEdit));

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
