#include "support/TestTable.h"

#include "OrvCore/OrvUndoManager.h"

#include <QUndoCommand>
#include <QUndoStack>
#include <QtTest>

#include <memory>
#include <vector>

/// Writes its letter in redo() and takes it away in undo().
class Letter : public QUndoCommand
{
public:
    Letter(QString& text, QChar letter)
        : m_Text(text)
        , m_Letter(letter)
    {
    }
    void redo() override { m_Text += m_Letter; }
    void undo() override { m_Text.chop(1); }

private:
    QString& m_Text;
    QChar m_Letter;
};

class tst_OrvUndoManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    /// In a script a small letter is pushed; ( and ) hold a macro, U undoes, R redoes.
    void script_data()
    {
        const TestTable<QString, QString, int, QString> row("script", "text", "count", "undoText");
        row("redo of a macro", "a(bc)dUUR", "abc", 3, "macro 1");
        row("nested macros join the outermost", "((a)b(", "ab", 1, "macro 1");
        row("an empty macro keeps what can be redone", "aU()R", "a", 1, "");
        row("undo and redo inside a macro change nothing", "a(bURc)U", "a", 2, "");
    }

    void script()
    {
        QFETCH(QString, script);
        OrvUndoManager& manager = OrvUndoManager::instance();
        QUndoStack& stack = *manager.undoStack();
        stack.clear();
        QString text;
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
                manager.push(new Letter(text, step));
        }
        while (!macros.empty())
            macros.pop_back();
        QTEST(text, "text");
        QTEST(stack.count(), "count");
        QTEST(stack.undoText(), "undoText");
        stack.clear();
    }
};

QTEST_MAIN(tst_OrvUndoManager)
#include "tst_OrvUndoManager.moc"
