#include "editor/EditorMeasurement.h"
#include "editor/EditorNavigator.h"
#include "editor/EditorOptions.h"
#include "editor/EditorSamples.h"
#include "editor/EditorScreenshot.h"
#include "editor/EditorTheme.h"
#include "editor/EditorWindow.h"

#include <QApplication>
#include <QSettings>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

constexpr int kFailure = 2;

void print(FILE* stream, const QString& text)
{
    (void)std::fputs(text.toLocal8Bit().constData(), stream);
}

void printLine(FILE* stream, const QString& text)
{
    print(stream, text + QLatin1Char('\n'));
}

// What runs without a window needs no display.
bool runsWithoutDisplay(int argc, char** argv)
{
    return std::any_of(argv + 1, argv + std::max(1, argc), [](const char* argument) {
        for (const char* name : {"--screenshot", "--measure", "--help", "-h", "--version", "-v"}) {
            const std::size_t length = std::strlen(name);
            if (std::strncmp(argument, name, length) == 0
                && (argument[length] == '\0' || argument[length] == '='))
                return true;
        }
        return false;
    });
}

/// False when a window is wanted where none can be shown. Without a display Qt would abort.
bool choosePlatform(int argc, char** argv)
{
#ifdef Q_OS_LINUX
    const bool hasDisplay = !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    const bool isChosen = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")
        || std::any_of(argv, argv + argc,
            [](const char* argument) { return std::strcmp(argument, "-platform") == 0; });
    if (hasDisplay || isChosen)
        return true;
    if (!runsWithoutDisplay(argc, argv))
        return false;
    qputenv("QT_QPA_PLATFORM", "offscreen");
#else
    Q_UNUSED(argc)
    Q_UNUSED(argv)
#endif
    return true;
}

void printMessages(const QVector<NetMessage>& messages)
{
    for (const NetMessage& message : messages)
        printLine(stderr, message.toString());
}

/// Opens what the command line names; false, after saying why, when that is not there.
bool open(EditorWindow* window, const EditorOptions& options)
{
    const QString file = options.file.isEmpty() ? EditorSamples::first() : options.file;
    if (file.isEmpty())
        return true; // nothing to show yet
    const bool isOpen = window->openFile(file);
    printMessages(window->messages());
    if (!isOpen)
        return false;
    if (options.graph.isEmpty() || window->showGraph(options.graph))
        return true;
    const QStringList graphs = window->graphPaths();
    printLine(stderr,
        graphs.isEmpty()
            ? QCoreApplication::translate("main", "%1: there is no graph \"%2\"; it has none.")
                  .arg(file, options.graph)
            : QCoreApplication::translate("main", "%1: there is no graph \"%2\". Its graphs: %3")
                  .arg(file, options.graph, graphs.join(QStringLiteral(", "))));
    return false;
}

int makePicture(EditorWindow* window, const EditorOptions& options)
{
    const QString error
        = EditorScreenshot::save(window, options.screenshot, options.size, options.zoom);
    if (!error.isEmpty())
        printLine(stderr, error);
    // The picture shows what could be opened; the code tells that this is not all.
    const bool isWhole = !NetMessage::anyAtLeast(window->messages(), NetMessage::Severity::Warning);
    return error.isEmpty() && isWhole ? 0 : kFailure;
}

int measure(EditorWindow* window)
{
    if (!window->scene()) {
        printLine(
            stderr, QCoreApplication::translate("main", "There is no document to measure with."));
        return kFailure;
    }
    print(stdout, EditorMeasurement::table(window));
    if (!window->isWindowModified())
        return 0;
    printLine(stderr, QCoreApplication::translate("main", "The gestures left a change behind."));
    return kFailure;
}

int run(QApplication* application)
{
    const EditorOptions options = EditorOptions::parse(QCoreApplication::arguments());
    if (!options.answer.isEmpty()) {
        print(stdout, options.answer);
        return 0;
    }
    if (!options.error.isEmpty()) {
        printLine(stderr, options.error);
        return kFailure;
    }
    EditorTheme::apply(application);
    EditorWindow window(NetSearchPath::withEnvironment(options.searchPath));
    window.navigator()->setInitialMode(static_cast<EditorScene::Mode>(options.mode));
    // Pictures and measurements are the same on every machine, and leave nothing behind.
    const bool isPicture = !options.screenshot.isEmpty();
    const bool isForUser = !isPicture && !options.isMeasurement;
    if (isForUser)
        window.useSettings(EditorSettings(std::make_unique<QSettings>()));
    if (!isForUser || options.hasSize || !window.restorePlace())
        window.resize(options.size);
    if (!open(&window, options))
        return kFailure;
    if (isPicture)
        return makePicture(&window, options);
    if (options.isMeasurement)
        return measure(&window);
    if (options.zoom > 0 && window.scene())
        window.view()->lookAt(EditorScene::middleOf(window.scene()->nodes()), options.zoom / 100.0);
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    if (!choosePlatform(argc, argv)) {
        printLine(stderr,
            QStringLiteral(
                "There is no display. --screenshot OUT.png writes a picture without one."));
        return kFailure;
    }
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    // Before the application: the style's files and the platform's window class are named by them.
    QCoreApplication::setOrganizationName(QStringLiteral("Orv"));
    QCoreApplication::setApplicationName(QStringLiteral("orv-shader-editor"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORV_EDITOR_VERSION));
    QApplication application(argc, argv);
    return run(&application);
}
