#include "OrvCore/OrvDebug.h"

#include <QtTest>

class tst_OrvDebug : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaultHandler_writesToItsCategory()
    {
        static QStringList s_Seen;
        const auto previous = qInstallMessageHandler([](QtMsgType type,
                                                         const QMessageLogContext& context,
                                                         const QString& text) {
            s_Seen << QString::number(type) << QLatin1String(context.category) << text
                   << QStringLiteral("%1:%2").arg(QLatin1String(context.file)).arg(context.line);
        });
        OrvDebug("src/File", 7, QStringLiteral("[ -- ] 100 %s moved"), false, true);
        OrvDebug("B", 8, QStringLiteral("[ !! ] lost"), false, true);
        OrvDebug("C", 9, QStringLiteral("[ -- ] gone"), true, true);
        qInstallMessageHandler(previous);
        QCOMPARE(s_Seen.join(QLatin1Char('|')),
            QStringLiteral("0|orv.debug|[ -- ] 100 %s moved|src/File:7|"
                           "1|orv.debug|[ !! ] lost|B:8|2|orv.debug|[ -- ] gone|C:9"));
    }
};

QTEST_GUILESS_MAIN(tst_OrvDebug)
#include "tst_OrvDebug.moc"
