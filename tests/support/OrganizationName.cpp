#include <QCoreApplication>

/// Settings are found by it; each test program has it from the start.
static void setOrganizationName()
{
    QCoreApplication::setOrganizationName(QStringLiteral("OrvTests"));
}
Q_COREAPP_STARTUP_FUNCTION(setOrganizationName)
