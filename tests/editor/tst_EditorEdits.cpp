#include "editor/EditorPortColors.h"
#include "editor/EditorStage.h"
#include "support/Literals.h"
#include "support/TestRows.h"
#include "support/TestTable.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QMap>
#include <QPainter>
#include <QSignalSpy>

#include <pugixml.hpp>

#include <OrvNodeGraph/OrvNgStyle.h>
#include <cmath>
#include <functional>

using namespace EditorTesting;

namespace {

/// A document and what a script says of it. In chain, a feeds b feeds c, d is free, p takes colours only. In
/// nested, inner lies in outer, and b in it; a lies in outer alone.
struct Desk : Stage
{
    explicit Desk(const QByteArray& document)
        : Stage(testPath(document + ".mtlx"))
    {
        m_View.resize(1600, 900);
        const bool isNested = backdropIndex("outer") >= 0; // far from the origin
        m_View.lookAt(
            isNested ? QPointF(3360, 260) : EditorScene::boundsOf(m_Scene->nodes()).center(), 1.0);
        QObject::connect(m_Scene.get(), &EditorScene::textWanted,
            [this](int backdrop, const QString& text, bool isDoc) {
                m_Status += q("%1 %2 %3").arg(backdrop).arg(q(isDoc ? "doc" : "title"), text);
            });
        flush();
    }
    /// "d" is a header, "a.out" a port, "end:c.in1" the edge beside it, "b>c" half way between the two;
    /// others name a part of a backdrop.
    QPoint place(const QByteArray& word) const
    {
        const QByteArrayList parts = word.split(':');
        const QByteArray& name = parts.last();
        const QByteArrayList ends = QByteArray(name).replace('>', '.').split('.');
        if (word.contains('>'))
            return (atPort(ends.first(), "out") + atPort(ends.last(), "in1")) / 2;
        if (ends.size() > 1)
            return atPort(ends.first(), ends.last()) - QPoint(parts.size() > 1 ? 14 : 0, 0);
        if (parts.size() == 1)
            return atHeader(name);
        const QRectF rect = backdrop(name)->sceneBoundingRect();
        const QMap<QByteArray, QPointF> places{{"bar", rect.topRight() + QPointF(-40, 10)},
            {"title", rect.topLeft() + QPointF(20, 12)}, {"doc", rect.topLeft() + QPointF(20, 42)},
            {"origin", rect.topLeft() + QPointF(3, 3)},
            {"corner", rect.bottomRight() - QPointF(3, 3)}, {"middle", rect.center()},
            {"body", rect.center() + QPointF(0, 110)}};
        return at(places.value(parts.first()));
    }
    /// Puts items into states that show more of the style.
    void dress()
    {
        if (backdropIndex("inner") >= 0) {
            backdrop("inner")->setSelected(true);
            node("b")->input(q("in"))->setTextVisible(true);
            return;
        }
        node("d")->setBypassed(true);
        node("b")->input(q("in1"))->switchToDotableMode(true);
        node("c")->input(q("in1"))->setBypassed(true);
    }
    /// Says in the status bar which nodes and backdrops are so.
    void tell(const std::function<bool(OrvNgNode*)>& isSo)
    {
        QStringList names;
        for (OrvNgNode* node : m_Scene->nodes() + m_Scene->backdrops().items()) {
            if (isSo(node))
                names.append(m_Scene->indexOf(node) < 0 ? node->text() : nameOf(node));
        }
        m_Status.append(names.join(QLatin1Char(' ')));
    }
    /// The shade that a port of type float has on the screen.
    QString shade(const QPoint& pos)
    {
        const QString type = QStringLiteral("float");
        const QImage image = m_View.viewport()->grab().toImage();
        const QRgb color = image.pixel(pos * image.devicePixelRatio());
        const QMap<QRgb, const char*> shades{
            {EditorPortColors::color(type, true).rgb(), "connected"},
            {EditorPortColors::color(type, false).rgb(), "free"},
            {EditorPortColors::offeredColor(type).rgb(), "offered"}};
        return QLatin1String(shades.value(color, "faint"));
    }
    void play(const QByteArray& script)
    {
        for (const QByteArray& line : script.split(',')) {
            playLine(line.trimmed().split(' '));
            flush();
        }
    }
    void playLine(const QByteArrayList& words)
    {
        const auto from = [&] { return place(words.at(1)); };
        const auto to = [&] { // "by" a way of pixels
            const QPoint way(words.value(3).toInt(), words.value(4).toInt());
            return words.value(2, "by") == "by" ? from() + way : place(words.at(2));
        };
        const QByteArray name = words.value(1);
        const auto frame = [&] { return backdropIndex(name); };
        const auto text = [&] { return QString::fromUtf8(words.at(2)); };
        auto& style = OrvNgStyle::instance();
        const QMap<QByteArray, std::function<void()>> verbs{
            {"connect", [&] { connectPorts(from(), to()); }},
            {"drag", [&] { drag(from(), to()); }},
            {"press", [&] { press(to()); }},
            {"move", [&] { glide(from(), to()); }},
            {"release", [&] { release(to()); }},
            {"click", [&] { click(to()); }},
            {"cancel", [&] { press(to(), Qt::RightButton), release(to(), Qt::RightButton); }},
            {"double", [&] { doubleClick(to()); }},
            {"C", [&] { QTest::keyPress(&m_View, Qt::Key_C); }},
            {"uncut", [&] { QTest::keyRelease(&m_View, Qt::Key_C), QTest::qWait(150); }},
            {"escape", [&] { QTest::keyClick(&m_View, Qt::Key_Escape); }},
            {"lose", [&] { m_Scene->mouseGrabberItem()->ungrabMouse(); }},
            {"snap", [&] { OrvShaderNetworkManager::instance()->setSnapToGrid(true); }},
            {"dots", [&] { m_Scene->setDotMode(words.size() == 1); }},
            {"select", [&] { node(name)->setSelected(true); }},
            {"all", [&] { m_Scene->selectAll(); }},
            {"delete", [&] { m_Scene->deleteSelection(); }},
            {"extract", [&] { m_Scene->extract(node(name)); }},
            {"arrange", [&] { m_Scene->arrange(); }},
            {"wrap", [&] { m_Scene->wrapSelection(); }},
            {"note", [&] { m_Scene->addNote(QPointF(3000, 600)); }},
            {"title", [&] { m_Scene->setBackdropText(frame(), text(), false); }},
            {"doc", [&] { m_Scene->setBackdropText(frame(), text(), true); }},
            {"colour", [&] { m_Scene->setBackdropColor(frame(), text()); }},
            {"undo", [&] { history().undo(); }},
            {"redo", [&] { history().redo(); }},
            {"selected", [&] { tell([](OrvNgNode* node) { return node->isSelected(); }); }},
            {"stepped-back", [&] { tell([](OrvNgNode* node) { return node->opacity() < 1; }); }},
            {"inside",
                [&] {
                    const QRectF rect
                        = m_Scene->backdrops().items().constLast()->sceneBoundingRect();
                    tell([&](OrvNgNode* node) { return rect.contains(node->sceneBoundingRect()); });
                }},
            {"shade", [&] { m_Status.append(shade(from())); }},
            {"body", [&] { m_Status += backdrop(name)->nodeUniColour().color().name(); }},
            {"bars", [&] { style.setBackdropNodeTitleBarColor(QColor(200, 60, 60)); }},
            {"wide", [&] { style.setMinimumBackdropNodeWidth(600); }},
        };
        QVERIFY2(verbs.contains(words.first()), words.first().constData());
        verbs.value(words.first())();
    }
};

/// Of the elements at the top: "name.attribute", and its value.
QMap<QString, QString> attributesIn(const QByteArray& text)
{
    pugi::xml_document document;
    document.load_string(text.constData());
    QMap<QString, QString> all;
    for (const pugi::xml_node element : document.document_element().children()) {
        for (const pugi::xml_attribute each : element.attributes())
            all.insert(
                q(element.attribute("name").value()) + u'.' + q(each.name()), q(each.value()));
    }
    return all;
}

/// The attributes that are new or changed, and with a minus the names that are gone.
QString changes(const QByteArray& before, const QByteArray& after)
{
    const auto old = attributesIn(before), now = attributesIn(after);
    QStringList found;
    for (const QString& name : now.keys()) {
        if (!old.contains(name) || old.value(name) != now.value(name))
            found.append(name);
    }
    for (const QString& name : old.keys()) {
        if (!now.contains(name) && name.endsWith(q(".name")))
            found.append(u'-' + name);
    }
    return found.join(u' ');
}

} // namespace

/// What a scene shows, and what a user does with it, end to end: one undo step each, and the document follows.
class tst_EditorEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        OrvShaderNetworkManager::instance()->setSnapToGrid(false);
        OrvNgStyle::instance().resetBackdropNodeTitleBarColor();
        OrvNgStyle::instance().resetMinimumBackdropNodeWidth();
    }

    void gesture_isOneStepThereAndBack_data()
    {
        addTestRows(
            ORV_TEST_DATA "/editor/gestures.txt", "gestures", {"document", "script", "outcome"});
    }

    void gesture_isOneStepThereAndBack()
    {
        QFETCH(QByteArray, document);
        QFETCH(QByteArray, script);
        QFETCH(QByteArray, outcome);
        const Noise noise;
        OrvShaderNetworkManager::instance()->setSnapToGrid(script.startsWith("snap"));
        Desk desk(document);
        QVERIFY(desk.isTrue());
        const QByteArray before = desk.m_Editor->text();
        QCOMPARE(before, contents(testPath(document + ".mtlx")));

        desk.play(script);
        const QByteArray after = desk.m_Editor->text();
        QString changed = changes(before, after);
        if (outcome.contains("; *;") && !changed.isEmpty()) // where to is Graphviz' affair
            changed = QLatin1Char('*');
        const QStringList found{
            history().undoText(), desk.shown(), changed, desk.m_Status.join(QLatin1Char('/'))};
        QCOMPARE(found.join(QLatin1String("; ")).trimmed(), QString::fromUtf8(outcome));
        QVERIFY(!desk.m_Scene->mouseGrabberItem());
        QCOMPARE(history().count(), history().undoText().isEmpty() ? 0 : 1);
        for (const QByteArray& text : {after, before, after}) {
            QVERIFY2(desk.isTrue(), qPrintable(desk.lie()));
            QCOMPARE(desk.m_Editor->text(), text);
            history().canUndo() ? history().undo() : history().redo();
            flush();
        }
        QCOMPARE(noise.heard(), QStringList());
    }

    void color_isReadInBothForms()
    {
        const auto read
            = [](const char* text) { return EditorBackdrops::colorFromText(QLatin1String(text)); };
        QCOMPARE(read("#A01020"), QColor(0xa0, 0x10, 0x20));
        QCOMPARE(read(" 1.0, 0.5,0 "), QColor::fromRgbF(1.0, 0.5, 0.0));
        QCOMPARE(read("0 0 1 0.5"), QColor(Qt::blue));
        QCOMPARE(read("7, -1, 0"), QColor(Qt::red));
        for (const char* bad : {"1, 1", "1, nan, 1", "red", "#12", ""})
            QVERIFY2(!read(bad).isValid(), bad);
    }

    void ports_haveNamesAndFolders()
    {
        EditorScene scene(std::make_shared<NetEditor>(
                              NetReader(NetSearchPath()).read(testPath("small.mtlx")).document),
            0);
        auto* second = dynamic_cast<OrvNgExtendedNode*>(scene.node(1));
        const auto text = [second](const char* port) { return second->inputPort(q(port))->text(); };
        QCOMPARE(second->text(), q("second"));
        QCOMPARE(second->category(), q("Math"));
        QCOMPARE(text("in"), q("Colour"));
        // Two inputs share their name for people: the folder tells which is which.
        QCOMPARE(text("coat"), q("Coat weight"));
        QVERIFY(second->isInputPortVisible(q("in")));
        QVERIFY2(text("weight").contains(q("nobody")), qPrintable(text("weight")));

        const QStringList clusters = second->clusteredInputPorts();
        QCOMPARE(clusters.size(), 1);
        QCOMPARE(second->inputClusterPortName2ClusterList(clusters.constFirst()).join(u' '),
            q("in weight"));
        scene.setPortListMode({second}, EditorScene::Mode::PORT_LIST_GROUPED);
        QVERIFY(second->isInputPortVisible(clusters.constFirst()));
        QVERIFY(!second->isInputPortVisible(q("in")));
        QVERIFY(second->isInputPortVisible(q("Base")));
    }

    void portColors_canBeToldApart()
    {
        const QStringList types = q("float color3 vector3 vector2 integer boolean string filename "
                                    "surfaceshader BSDF material color4 matrix44")
                                      .split(u' ');
        const auto apart = [](const QColor& a, const QColor& b) {
            return std::hypot(a.red() - b.red(), a.green() - b.green(), a.blue() - b.blue());
        };
        const auto color = &EditorPortColors::color;
        for (const QString& type : types) {
            QVERIFY2(apart(color(type, true), color(type, false)) >= 50, qPrintable(type));
            for (const bool isConnected : {false, true}) {
                const QColor own = color(type, isConnected);
                QVERIFY2(apart(own, QColor(64, 64, 64)) >= 60, qPrintable(type)); // of the body
                for (const QString& other : types)
                    QVERIFY2(type == other
                            || apart(own, color(other, isConnected)) >= (isConnected ? 50 : 30),
                        qPrintable(type + other));
            }
        }
        // Two that were worked out by hand.
        QCOMPARE(color(types.first(), true).name(), q("#6aa7f4"));
        QCOMPARE(color(types.first(), false).name(), q("#4e75a6"));
    }

    void style_isFollowedByItemsThatAreThere_data()
    {
        const TestTable<QByteArray, QVariant> row("document", "value");
        const QColor color(255, 0, 255);
        for (const char* name : {"MathNodeColor", "NodeTextColor", "EdgeColor", "PortTextColor",
                 "CrossedOutBypassedEdgeColor", "DotableMarkerColor"})
            row(name, "chain", color);
        for (const char* name : {"BackdropNodeTitleBarColor", "SelectedNodeColor",
                 "NodeOutlineColor", "EdgeLabelColor", "SceneBackgroundColor"})
            row(name, "nested", color);
        row("BypassedNodeColor", "chain", QVariant::fromValue(qMakePair(color, QColor(0, 255, 0))));
        row("NodeHeight", "chain", 70.0F);
        row("BackdropNodeTitleBarHeight", "nested", 60.0F);
        row("BackdropNodeTitleBarPaddingLeftTop", "nested", QPointF(40, 8));
    }

    void style_isFollowedByItemsThatAreThere()
    {
        QFETCH(QByteArray, document);
        QFETCH(QVariant, value);
        const char* property = QTest::currentDataTag();
        OrvNgStyle& style = OrvNgStyle::instance();
        const QVariant before = style.property(property);
        const auto picture = [](Desk& desk) {
            flush();
            QImage image(1500, 800, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::black);
            QPainter painter(&image);
            const qreal left = desk.backdropIndex("outer") < 0 ? -100 : 2650;
            desk.m_Scene->render(&painter, image.rect(), QRectF(left, -100, 1500, 800));
            return image;
        };
        Desk desk(document);
        desk.dress();
        const QImage old = picture(desk);
        QVERIFY(style.setProperty(property, value));
        flush();
        Desk made(document);
        made.dress();
        const QImage wanted = picture(made);
        const QImage refreshed = picture(desk);
        style.setProperty(property, before);
        QVERIFY(wanted != old); // the property shows at all
        QCOMPARE(refreshed, wanted);
        QCOMPARE(picture(desk), old);
    }

    void manyChangesOfTheStyle_areOnePass()
    {
        const Desk first("chain"), second("nested");
        OrvNgStyle& style = OrvNgStyle::instance();
        const QSignalSpy passes(&style, &OrvNgStyle::colorsUpdated);
        for (int i = 1; i < 6; ++i) {
            style.setGridLinesColor(OrvColor(0.1F * float(i), 0.0F, 0.0F));
            style.setMathNodeColor(OrvColor(0.0F, 0.1F * float(i), 0.0F));
        }
        QCOMPARE(passes.count(), 0);
        flush();
        QCOMPARE(passes.count(), 1); // what it derived starts no other
        QCOMPARE(style.getGridPen().color(), QColor(128, 0, 0));
        style.resetGridLinesColor();
        style.resetMathNodeColor();
    }
};

QTEST_MAIN(tst_EditorEdits)
#include "tst_EditorEdits.moc"
