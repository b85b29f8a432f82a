#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgDotNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgPort.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "support/ViewStage.h"

#include <QDir>
#include <QFontDatabase>
#include <QtTest>

#include <functional>

namespace {

using Extended = OrvNgExtendedNode;
using Mode = Extended::PortListMode;

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

/// A view whose top left corner shows the scene's origin.
struct Stage : ViewStage
{
    Stage(const QSize& size, double scale)
    {
        delete m_Node;
        m_View.setMinimapVisible(false);
        m_View.setGridEnabled(false);
        m_View.resize(size);
        m_View.setTransform(QTransform::fromScale(scale, scale));
        m_View.centerViewOn(QPointF(size.width(), size.height()) / (2 * scale), false);
    }
    template <typename Node>
    Node* put(const QPointF& pos, const QString& text, const char* inputs = "",
        const QStringList& outputs = {})
    {
        auto* node = new Node(nullptr);
        m_Scene.addItem(node);
        node->setPos(pos);
        node->setText(text);
        for (const char* name = inputs; *name; ++name)
            node->createInput(QString(QLatin1Char(*name)), !text.isEmpty() && *name == 'a', {});
        for (const QString& name : outputs)
            node->createOutputPoint(name, true);
        return node;
    }
    Extended* node(const QPointF& pos, Mode mode = Extended::PORT_LIST_COLLAPSED)
    {
        auto* made = put<Extended>(pos, q("Marble"), "abcd", {q("out"), q("rest")});
        made->setPortListMode(mode);
        made->setCorrectColor();
        return made;
    }
    OrvNgDotNode* dot(const QPointF& pos) { return put<OrvNgDotNode>(pos, {}, "a", {q("out")}); }
    static OrvNgEdge* join(OrvNgNode* from, OrvNgNode* to, const char* input = "b")
    {
        to->input(q(input))->setSourceNode(from, q("out"));
        return to->input(q(input));
    }
    /// A straight edge between two dots.
    OrvNgEdge* edge(const QPointF& pos, const QPointF& way, const QSet<QString>& tags = {})
    {
        OrvNgEdge* made = join(dot(pos), dot(pos + way), "a");
        made->setTags(tags);
        return made;
    }
    QImage grab()
    {
        flushEvents();
        const double ratio = m_View.viewport()->devicePixelRatioF();
        QImage image(m_View.viewport()->size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        m_View.viewport()->render(&image);
        image.setDevicePixelRatio(1.0);
        return image;
    }
};

using Build = std::function<void(Stage&)>;

void shapes(Stage& s)
{
    for (int i = 0; i < 32; ++i) {
        Extended* node = s.node(QPointF(10 + 120 * (i % 4), 10 + 36 * (i / 4)));
        node->setShapeType(1 + i / 4);
        node->setHovered(i % 4 == 1);
        node->setSelected(i % 4 == 2, false);
        if (i % 4 == 3)
            node->setNodeColor(QColor(120, 40, 90), QColor(30, 60, 20));
        node->setCorrectColor();
    }
}

void states(Stage& s)
{
    for (int i = 0; i < 10; ++i) {
        Extended* node = s.node(QPointF(10 + 120 * (i % 5), 10 + 36 * (i / 5)));
        node->setCurrentPaint(i == 0);
        node->setDebugColor(QColor(0, 140, 140));
        node->setDebug(i == 1);
        node->setBypassed(i == 2);
        node->setCached(i == 3);
        node->setBaked(i == 4 || i == 5);
        node->setOutdatedBaked(i == 5);
        node->setLocked(i == 6);
        if (i >= 7)
            node->setCategory(
                QStringList{q("Paint"), q("_System"), q("MultiChannelMerge")}.at(i - 7));
        node->setCorrectColor();
    }
}

// clang-format off
void pens(Stage& s)
{
    int row = 0;
    for (void (*look)(OrvNgEdge&) : {+[](OrvNgEdge&) {}, +[](OrvNgEdge& e) { e.markAsShared(true); },
            +[](OrvNgEdge& e) { e.setActivated(true); }, +[](OrvNgEdge& e) { e.setBypassed(true); },
            +[](OrvNgEdge& e) { e.setSevered(true); }, +[](OrvNgEdge& e) { e.hightlightForNodeInsert(); },
            +[](OrvNgEdge& e) { e.setDebugColor(QColor(0, 200, 200)), e.setDebug(true); }}) {
        int x = 12;
        for (const QSet<QString>& tags : {QSet<QString>(), {q("_dotted")}, {q("_thin")}, {q("_dotted"), q("_thin")}}) {
            look(*s.edge(QPointF(x, 8 + 24 * row), {90, 4}, tags));
            x += 130;
        }
        ++row;
    }
}
// clang-format on

Build mode(Mode portListMode)
{
    return [portListMode](Stage& s) {
        Extended* node = s.node({170, 20}, portListMode);
        node->setInputPortClusterMap({{q("uv"), {q("c"), q("d")}}});
        node->setPortListMode(portListMode);
        Stage::join(s.node({20, 40}), node, "b");
        Stage::join(s.node({20, 100}), node, "c");
        Stage::join(node, s.node({330, 90}), "a");
        node->inputPort(q("b"))->setMouseHovered(true);
        node->outputPort(q("rest"))->setSpecialPortColor(QColor(200, 90, 200));
        for (const char* icon : {"NodeExpanded", "NodeOnlyConnected", "NodeFullyCollapsed"})
            node->setIconVisible(true, node->addIcon(q(icon)));
        node->setIconVisible(false, 1);
    };
}

/// Edges between a node in the middle and nodes around it, ahead, behind, level and close.
Build routes(Mode from, Mode to)
{
    return [from, to](Stage& s) {
        Extended* source = s.node({230, 130}, from);
        for (const QPointF& pos : {QPointF(400, 20), QPointF(400, 130), QPointF(350, 250),
                 QPointF(60, 20), QPointF(60, 250), QPointF(230, 20)})
            Stage::join(source, s.node(pos, to));
    };
}

void crossesAndMarkers(Stage& s)
{
    const QPointF ways[] = {{100, 0}, {80, 60}, {0, 70}, {-80, 50}};
    const int places[] = {30, 170, 310, 460};
    for (int i = 0; i < 4; ++i) {
        s.edge(QPointF(places[i], 20), ways[i])->setBypassed(true);
        s.edge(QPointF(places[i], 120), ways[i])->switchToDotableMode(true);
    }
}

void backdrops(Stage& s)
{
    for (int i = 0; i < 6; ++i) {
        auto* frame = s.put<OrvNgBackdropNode>(
            QPointF(14 + 220 * (i % 3), 14 + 150 * (i / 3)), q("Rust and all that belongs to it"));
        frame->resizeNode({200, 130});
        frame->setLabel(q("Kept <b>flat</b> for the close shots, as agreed on."));
        if (i % 3 != 0)
            frame->setNodeBackgroundColour(
                i % 3 == 1 ? QColor(230, 220, 120) : QColor(60, 90, 140, 120));
        frame->setSelected(i == 3, false);
        frame->setHovered(i == 4);
        if (i == 5)
            frame->hightlightBackdropForNodeInsert();
        s.node(frame->pos() + QPointF(40, 90));
    }
}

void notesAndDots(Stage& s)
{
    QPixmap icon(10, 10);
    icon.fill(Qt::cyan);
    for (int i = 0; i < 5; ++i) {
        OrvNgDotNode* dot = s.dot(QPointF(20 + 40 * i, 230));
        dot->setSelected(i == 1, false);
        dot->setHovered(i == 2);
        dot->setBypassed(i == 3);
        dot->setPixmap(i == 4 ? icon : QPixmap(), QPoint(2, 2));
    }
    const char* const labels[]
        = {"Two lines\nof plain text", "Short", "<h3>Heading</h3>and <i>rich</i> text"};
    for (int i = 0; i < 3; ++i) {
        auto* note = s.put<OrvNgUINode>(QPointF(20 + 200 * i, 20), q(labels[i]));
        auto* text = s.put<OrvNgTextNode>(QPointF(20 + 200 * i, 130), q("Text"));
        note->setSelected(i == 1, false);
        text->setSelected(i == 1, false);
        if (i == 1)
            note->setNodeBackgroundColour(QColor(230, 220, 120));
    }
}

void network(Stage& s)
{
    s.put<OrvNgBackdropNode>({0, 0}, q("Frame"))->resizeNode({330, 190});
    Extended* last = s.node({20, 60}, Extended::PORT_LIST_T2B);
    for (int x = 200; x < 560; x += 180) {
        Extended* node = s.node(QPointF(x, 60 + x % 80), Extended::PORT_LIST_T2B);
        Stage::join(last, node);
        last = node;
    }
}

/// A band, or the path that cuts edges.
Build gesture(OrvNgView::OrvCursorTrackingMode tracking, const QList<QPoint>& way)
{
    return [tracking, way](Stage& s) {
        network(s);
        s.m_View.setCursorTrackingMode(tracking);
        s.drag(way);
    };
}

void carriedEdge(Stage& s)
{
    Extended* node = s.node({20, 20}, Extended::PORT_LIST_EXPANDED);
    s.node({200, 120}, Extended::PORT_LIST_EXPANDED);
    QCursor::setPos(
        s.m_View.mapToGlobal(s.m_View.rect().center())); // at the border it would scroll
    const QPointF port = node->outputPort(q("out"))->portRectMappedToScene().center();
    s.drag({s.m_View.mapFromScene(port), {160, 60}, {250, 60}});
}

} // namespace

Q_DECLARE_METATYPE(Build)

/// The library's look, pixel by pixel, at scales at which all of it is drawn. Text is equal everywhere with a
/// font of our own choice, sized in pixels and not hinted.
class tst_Pictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char* file : {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf"})
            QVERIFY(QFontDatabase::addApplicationFont(
                        QStringLiteral(ORV_TEST_FONTS "/") + QLatin1String(file))
                >= 0);
        QFont font(q("DejaVu Sans"));
        font.setPixelSize(14);
        font.setHintingPreference(QFont::PreferNoHinting);
        QApplication::setFont(font);
        QCursor::setPos(790, 590); // hovers nothing
    }

    void picture_isAsStored_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<double>("scale");
        QTest::addColumn<Build>("build");
        const auto row
            = [](const char* name, int width, int height, double scale, const Build& build) {
                  if (qApp->devicePixelRatio() == 1.0
                      || q("mode-expanded pens grid minimap").contains(q(name)))
                      QTest::newRow(name) << QSize(width, height) << scale << build;
              };
        const Build grid = [](Stage& s) { s.m_View.setGridEnabled(true); };
        const double near = double(OrvNgStyle::instance().getSceneLODSwitchThreshold()) * 1.03;
        const auto side = Extended::PORT_LIST_COLLAPSED;
        const auto top = Extended::PORT_LIST_T2B;
        row("shapes", 490, 300, 1, shapes);
        row("states", 610, 85, 1, states);
        row("mode-expanded", 450, 210, 1, mode(Extended::PORT_LIST_EXPANDED));
        row("mode-top-to-bottom", 450, 210, 1, mode(top));
        row("mode-grouped", 450, 210, 1, mode(Extended::PORT_LIST_GROUPED));
        row("mode-only-connected", 450, 210, 1, mode(Extended::PORT_LIST_ONLY_CONNECTED));
        row("mode-collapsed", 450, 210, 1, mode(side));
        row("mode-expanded-near", 180, 90, near, mode(Extended::PORT_LIST_EXPANDED));
        row("mode-grouped-close", 700, 400, 2.5, mode(Extended::PORT_LIST_GROUPED));
        row("routes-side-to-side", 520, 300, 1, routes(side, side));
        row("routes-side-to-top", 520, 300, 1, routes(side, top));
        row("routes-top-to-side", 520, 300, 1, routes(top, side));
        row("routes-straight", 520, 300, 1, routes(top, top));
        row("pens", 520, 180, 1, pens);
        row("crosses-and-markers", 540, 220, 1, crossesAndMarkers);
        row("backdrops", 670, 310, 1, backdrops);
        row("backdrops-near", 250, 120, near, backdrops);
        row("notes-and-dots", 600, 260, 1, notesAndDots);
        row("grid-near", 200, 100, near, grid);
        row("grid", 200, 100, 1, grid);
        row("grid-close", 200, 100, 4, grid);
        row("minimap", 400, 300, 1, [](Stage& s) {
            network(s);
            s.m_View.setMinimapVisible(true);
            QTest::qWait(120); // the bounds of the nodes follow
        });
        row("band", 420, 220, 1,
            gesture(OrvNgView::CURSOR_TRACKING_NONE, {{345, 10}, {300, 100}, {210, 140}}));
        row("cutting-path", 420, 220, 1,
            gesture(OrvNgView::CURSOR_TRACKING_SEVER_EDGES,
                {{140, 20}, {150, 60}, {160, 150}, {240, 120}}));
        row("carried-edge", 420, 220, 1, carriedEdge);
    }

    void picture_isAsStored()
    {
        QFETCH(QSize, size);
        QFETCH(double, scale);
        QFETCH(Build, build);
        Stage stage(size, scale);
        build(stage);
        const QImage actual = stage.grab();

        const bool isDouble = qApp->devicePixelRatio() == 2.0;
        const QString name = q(QTest::currentDataTag()) + (isDouble ? q("@2x") : QString());
        const QString reference = QStringLiteral(ORV_REFERENCES "/%1.png").arg(name);
        if (qEnvironmentVariableIsSet("ORV_UPDATE_REFERENCES")) {
            QVERIFY(actual.convertToFormat(QImage::Format_RGB32).save(reference, "PNG", 0));
            return;
        }
        QImage expected = QImage(reference).convertToFormat(actual.format());
        expected.setDevicePixelRatio(1.0); // a file named @2x comes with 2
        QVERIFY2(expected.size() == actual.size(), "no picture of that size is stored");
        int different = 0, largest = 0; // channels of pixels
        for (qsizetype i = 0; i < actual.sizeInBytes(); ++i) {
            const int off = std::abs(actual.constBits()[i] - expected.constBits()[i]);
            different += off > 0 ? 1 : 0;
            largest = qMax(largest, off);
        }
        // For processors of another kind, whose arithmetic rounds differently.
        const bool isTolerant = qEnvironmentVariableIsSet("ORV_REFERENCE_TOLERANCE") && largest <= 2
            && different * 1000 <= actual.width() * actual.height();
        if (different == 0 || isTolerant)
            return;
        QDir().mkpath(QStringLiteral(ORV_FAILED_PICTURES));
        const QString path = QStringLiteral(ORV_FAILED_PICTURES "/") + name;
        actual.save(path + q(".actual.png"));
        expected.save(path + q(".expected.png"));
        const QString text = q("%1 channels of pixels differ, by up to %2; see %3.*.png");
        QFAIL(qPrintable(text.arg(different).arg(largest).arg(path)));
    }
};

QTEST_MAIN(tst_Pictures)
#include "tst_Pictures.moc"
