#include <QCoreApplication>
#include <QLocale>

#include <clocale>
#include <cstdio>

/// Each test program has the name by which settings are found from the start. ORV_TEST_LOCALE, say de_DE,
/// becomes the locale of Qt and of the C library, as if the user had chosen it.
static void startTest()
{
    QCoreApplication::setOrganizationName(QStringLiteral("OrvTests"));
    const QByteArray name = qgetenv("ORV_TEST_LOCALE");
    if (name.isEmpty())
        return;
    QLocale::setDefault(QLocale(QString::fromLatin1(name)));
    if (!std::setlocale(LC_ALL, (name + ".UTF-8").constData()))
        (void)std::fprintf(stderr, "the C library has no locale %s\n", name.constData());
}
Q_COREAPP_STARTUP_FUNCTION(startTest)
