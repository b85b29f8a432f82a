#include "support/TestTable.h"

#include "OrvCore/OrvUndoManager.h"

#include <QUndoCommand>
#include <QUndoStack>
#include <QtTest>

#include <memory>
#include <vector>

class tst_OrvUndoManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    /// In a script a small letter is pushed; ( and ) hold a macro, U undoes, R redoes. Of the outcome, what is
    /// done stands before the "|".
    void script_data()
    {
        const TestTable<QString, QString> row("script", "outcome");
        row("redo of a macro", "a(bc)dUUR", "a macro 1(bc) | d");
        row("nested macros join the outermost", "((a)b(", "macro 1(ab) |");
        row("an empty macro keeps what can be redone", "aU()R", "a |");
        row("undo and redo inside a macro change nothing", "a(bURc)U", "a | macro 1(bc)");
    }

    void script()
    {
        QFETCH(QString, script);
        OrvUndoManager& manager = OrvUndoManager::instance();
        QUndoStack& stack = *manager.undoStack();
        stack.clear();
        std::vector<std::unique_ptr<OrvUndoManager::AutoMacro>> macros;
        for (const QChar step : qAsConst(script)) {
            if (step == QLatin1Char('('))
                macros.push_back(std::make_unique<OrvUndoManager::AutoMacro>(
                    QStringLiteral("macro %1").arg(macros.size() + 1)));
            else if (step == QLatin1Char(')'))
                macros.pop_back();
            else if (step == QLatin1Char('U'))
                stack.undo();
            else if (step == QLatin1Char('R'))
                stack.redo();
            else
                manager.push(new QUndoCommand(step));
        }
        while (!macros.empty())
            macros.pop_back();
        QStringList outcome;
        for (int i = 0; i < stack.count(); ++i) {
            outcome.append(stack.text(i));
            for (int k = 0; k < stack.command(i)->childCount(); ++k)
                outcome.last() += QLatin1String(k ? "" : "(") + stack.command(i)->child(k)->text();
            if (stack.command(i)->childCount() > 0)
                outcome.last() += QLatin1Char(')');
        }
        outcome.insert(stack.index(), QStringLiteral("|"));
        QTEST(outcome.join(QLatin1Char(' ')), "outcome");
        stack.clear();
    }
};

QTEST_MAIN(tst_OrvUndoManager)
#include "tst_OrvUndoManager.moc"
