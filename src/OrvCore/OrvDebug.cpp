#include "OrvCore/OrvDebug.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QMutexLocker>

#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcOrvDebug, "orv.debug")

struct HandlerSlot
{
    QMutex Mutex;
    OrvDebugHandler Handler;
};

// Never destroyed: destructors of other static objects may still report.
HandlerSlot& handlerSlot()
{
    static auto* const s_Slot = new HandlerSlot;
    return *s_Slot;
}

void writeToLog(const char* file, int line, const QString& message, bool fatal)
{
    const QMessageLogger logger(file, line, nullptr, lcOrvDebug().categoryName());
    if (fatal)
        logger.critical(lcOrvDebug()).noquote() << message;
    else if (message.startsWith(QLatin1String("[ -- ]")))
        logger.debug(lcOrvDebug()).noquote() << message;
    else
        logger.warning(lcOrvDebug()).noquote() << message;
}

} // namespace

void OrvDebug(const char* file, int line, const QString& message, bool fatal, bool showDialog)
{
    OrvDebugHandler handler; // a copy, called unlocked: it may replace itself or report again
    {
        HandlerSlot& slot = handlerSlot();
        const QMutexLocker lock(&slot.Mutex);
        handler = slot.Handler;
    }
    if (handler)
        handler(QString::fromUtf8(file), line, message, fatal, showDialog);
    else
        writeToLog(file, line, message, fatal);
}

OrvDebugHandler OrvSetDebugHandler(OrvDebugHandler handler)
{
    HandlerSlot& slot = handlerSlot();
    const QMutexLocker lock(&slot.Mutex);
    std::swap(slot.Handler, handler);
    return handler;
}
