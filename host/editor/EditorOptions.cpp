#include "editor/EditorOptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

constexpr int kLargestSide = 16384; // pixels
constexpr int kSmallestSide = 64;
constexpr int kLowestZoom = 7; // percent, the limits of the view's own zoom steps
constexpr int kHighestZoom = 10000;
constexpr int kLastMode = 4;

QString tr(const char* text)
{
    return QCoreApplication::translate("EditorOptions", text);
}

const QCommandLineOption& searchPathOption()
{
    static const QCommandLineOption s_Option(QStringLiteral("search-path"),
        tr("Look for included files and node definitions in <DIR> too. May be given several "
           "times."),
        tr("DIR"));
    return s_Option;
}

const QCommandLineOption& graphOption()
{
    static const QCommandLineOption s_Option(
        QStringLiteral("graph"), tr("Show the inside of the nodegraph <NAME>."), tr("NAME"));
    return s_Option;
}

const QCommandLineOption& screenshotOption()
{
    static const QCommandLineOption s_Option(QStringLiteral("screenshot"),
        tr("Write a picture of the window to <OUT.png> and leave."), tr("OUT.png"));
    return s_Option;
}

const QCommandLineOption& measureOption()
{
    static const QCommandLineOption s_Option(QStringLiteral("measure"),
        tr("Pan, zoom, drag and select in the document, print how long the frames take, and leave. "
           "Nothing is changed or saved."));
    return s_Option;
}

const QCommandLineOption& sizeOption()
{
    static const QCommandLineOption s_Option(
        QStringLiteral("size"), tr("Size of the window in pixels."), tr("WxH"));
    return s_Option;
}

const QCommandLineOption& zoomOption()
{
    static const QCommandLineOption s_Option(QStringLiteral("zoom"),
        tr("Show the centre of the network at <PERCENT> instead of all of it."), tr("PERCENT"));
    return s_Option;
}

const QCommandLineOption& modeOption()
{
    static const QCommandLineOption s_Option(QStringLiteral("mode"),
        tr("Port list mode of all nodes: 0 expanded, 1 top to bottom, 2 grouped, 3 only connected, "
           "4 collapsed."),
        tr("N"));
    return s_Option;
}

void describe(QCommandLineParser* parser)
{
    parser->setApplicationDescription(
        tr("Shows a shader network as a node graph.\n\n"
           "Exit code 2: the command line makes no sense, the document cannot be opened, a\n"
           "connection or include of it leads nowhere, or the picture cannot be written."));
    parser->addHelpOption();
    parser->addVersionOption();
    parser->addOptions({searchPathOption(), graphOption(), screenshotOption(), measureOption(),
        sizeOption(), zoomOption(), modeOption()});
    parser->addPositionalArgument(
        tr("FILE"), tr("The document; without it a sample is shown."), tr("[FILE]"));
}

/// A whole number within limits; false when the text is none.
bool readNumber(const QString& text, int lowest, int highest, int* number)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < lowest || value > highest)
        return false;
    *number = value;
    return true;
}

bool readSize(const QString& text, QSize* size)
{
    const QStringList sides = text.split(QLatin1Char('x'), Qt::KeepEmptyParts, Qt::CaseInsensitive);
    return sides.size() == 2
        && readNumber(sides.at(0), kSmallestSide, kLargestSide, &size->rwidth())
        && readNumber(sides.at(1), kSmallestSide, kLargestSide, &size->rheight());
}

QString rangeError(const QCommandLineOption& option, const QString& text, int lowest, int highest)
{
    return tr("--%1: \"%2\" is not a whole number from %3 to %4.")
        .arg(option.names().constFirst(), text)
        .arg(lowest)
        .arg(highest);
}

/// The first fault of the values; empty when they are all right.
QString readValues(const QCommandLineParser& parser, EditorOptions* options)
{
    const QString size = parser.value(sizeOption());
    if (parser.isSet(sizeOption()) && !readSize(size, &options->size)) {
        return tr("--size: \"%1\" is not a size like 1600x1000, each side %2 to %3.")
            .arg(size)
            .arg(kSmallestSide)
            .arg(kLargestSide);
    }
    const QString zoom = parser.value(zoomOption());
    if (parser.isSet(zoomOption()) && !readNumber(zoom, kLowestZoom, kHighestZoom, &options->zoom))
        return rangeError(zoomOption(), zoom, kLowestZoom, kHighestZoom);
    const QString mode = parser.value(modeOption());
    if (parser.isSet(modeOption()) && !readNumber(mode, 0, kLastMode, &options->mode))
        return rangeError(modeOption(), mode, 0, kLastMode);
    if (parser.isSet(screenshotOption()) && parser.value(screenshotOption()).isEmpty())
        return tr("--screenshot: the name of the picture is missing.");
    if (parser.isSet(screenshotOption()) && parser.isSet(measureOption()))
        return tr("--screenshot and --measure exclude each other.");
    if (parser.positionalArguments().size() > 1)
        return tr("Only one document can be shown.");
    return {};
}

} // namespace

EditorOptions EditorOptions::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    describe(&parser);
    EditorOptions options;
    if (!parser.parse(arguments)) {
        options.error = parser.errorText();
        return options;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        options.answer = parser.helpText();
        return options;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        options.answer = QCoreApplication::applicationName() + QLatin1Char(' ')
            + QCoreApplication::applicationVersion() + QLatin1Char('\n');
        return options;
    }
    options.error = readValues(parser, &options);
    options.hasSize = parser.isSet(sizeOption());
    options.file = parser.positionalArguments().value(0);
    options.searchPath = parser.values(searchPathOption());
    options.graph = parser.value(graphOption());
    options.isMeasurement = parser.isSet(measureOption());
    options.screenshot = parser.value(screenshotOption());
    return options;
}
