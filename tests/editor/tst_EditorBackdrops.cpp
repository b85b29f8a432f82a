#include "editor/EditorStage.h"
#include "support/TestTable.h"

#include <OrvCoreModules/OrvShaderNetworkManager.h>

#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

#include <OrvNodeGraph/OrvNgStyle.h>
#include <algorithm>

using namespace EditorTesting;

namespace {

// inner lies in outer, and b in it; a lies in outer alone. Far from the origin, so that the layout puts
// loose beside all of it.
const QByteArray kNested = testDocument("nested.mtlx");

struct Nested : Stage
{
    explicit Nested(const QString& file)
        : Stage(file)
    {
        m_View.resize(1600, 900);
        m_View.lookAt({3360, 260}, 1.0);
        flush();
    }
    /// A point of the title bar beside the title.
    QPoint atTitleBar(const char* name) const
    {
        const OrvNgNode* item = backdrop(name);
        return at(item->mapToScene(item->boundingRect().topRight()) + QPointF(-40, 10));
    }
    QPoint atTitle(const char* name) const
    {
        return at(backdrop(name)->scenePos() + QPointF(20, 12));
    }
    QPoint atMiddle(const char* name) const
    {
        return at(backdrop(name)->sceneBoundingRect().center());
    }
    QPoint atCorner(const char* name, Qt::Corner corner) const
    {
        const QRectF rect = backdrop(name)->sceneBoundingRect().adjusted(3, 3, -3, -3);
        return at(corner == Qt::TopLeftCorner ? rect.topLeft() : rect.bottomRight());
    }
    void dragBy(const QPoint& from, const QPoint& way) { drag(from, from + way); }
    void doubleClick(const QPoint& pos)
    {
        click(pos);
        send(QEvent::MouseButtonDblClick, pos, Qt::LeftButton);
        release(pos);
    }
};

using Gesture = void (*)(Nested&);
using Place = QPoint (*)(Nested&);

/// What differs between two texts of the same attributes: "outer: xpos ypos", by element.
QString differences(const QByteArray& before, const QByteArray& after)
{
    const QStringList oldLines = QString::fromUtf8(before).split(QLatin1Char('<'));
    const QStringList newLines = QString::fromUtf8(after).split(QLatin1Char('<'));
    static const QRegularExpression s_Pair(QStringLiteral("([a-z]+)=(\"[^\"]*\")"));
    QStringList found;
    for (const QString& line : newLines) {
        const auto isSame = [&line](const QString& old) { return old.trimmed() == line.trimmed(); };
        if (std::any_of(oldLines.cbegin(), oldLines.cend(), isSame))
            continue;
        const QString name
            = line.section(QStringLiteral("name=\""), 1).section(QLatin1Char('"'), 0, 0);
        const QStringList same = oldLines.filter(QStringLiteral(" name=\"%1\"").arg(name));
        QStringList changed;
        auto pair = s_Pair.globalMatch(line);
        while (pair.hasNext()) {
            const QString text = pair.next().captured(0);
            if (same.isEmpty() || !same.constFirst().contains(text))
                changed += text.section(QLatin1Char('='), 0, 0);
        }
        found += name + QLatin1Char(':') + changed.join(QLatin1Char(' '));
    }
    if (newLines.size() < oldLines.size())
        found += QString::number(newLines.size() - oldLines.size());
    return found.join(QLatin1String(", "));
}

} // namespace

Q_DECLARE_METATYPE(Gesture)
Q_DECLARE_METATYPE(Place)

/// Backdrops and notes under the mouse: one undo step each, and the document follows.
class tst_EditorBackdrops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gesture_isOneStepThereAndBack_data();
    void gesture_isOneStepThereAndBack();
    void contents_moveByTheBackdropsWay();
    void clickOnAHandle_isNoStep();
    void style_isFollowedWithoutAStep();
    void escape_givesAResizeUp();
    void doubleClick_asksForTheText_data();
    void doubleClick_asksForTheText();
    void color_isReadInBothForms_data();
    void color_isReadInBothForms();

private:
    const QString m_File = testPath("nested.mtlx");
};

void tst_EditorBackdrops::gesture_isOneStepThereAndBack_data()
{
    const TestTable<Gesture, QString, QString> row("gesture", "step", "written");
    row(
        "drag by the title bar",
        [](Nested& s) {
            s.dragBy(s.atTitleBar("outer"), {40, 30});
        },
        "Move 2 backdrops and 2 nodes",
        "a:xpos ypos, b:xpos ypos, outer:xpos ypos, inner:xpos ypos");
    row(
        "drag by the title",
        [](Nested& s) {
            s.dragBy(s.atTitle("inner"), {-20, 0});
        },
        "Move Inside and b", "b:xpos, inner:xpos");
    row(
        "drag on the grid",
        [](Nested& s) {
            OrvShaderNetworkManager::instance()->setSnapToGrid(true);
            s.dragBy(s.atTitle("inner"), {33, 27});
        },
        "Move Inside and b", "b:xpos ypos, inner:xpos ypos");
    row(
        "resize",
        [](Nested& s) {
            s.dragBy(s.atCorner("inner", Qt::BottomRightCorner), {30, -25});
        },
        "Resize Inside", "inner:width height");
    row(
        "resize at the origin",
        [](Nested& s) {
            s.dragBy(s.atCorner("outer", Qt::TopLeftCorner), {-30, -25});
        },
        "Resize outer", "outer:xpos ypos width height");
    row(
        "resize on the grid",
        [](Nested& s) {
            OrvShaderNetworkManager::instance()->setSnapToGrid(true);
            s.dragBy(s.atCorner("inner", Qt::TopLeftCorner), {-13, -7});
        },
        "Resize Inside", "inner:xpos ypos width height");
    row(
        "wrap",
        [](Nested& s) {
            s.node("far")->setSelected(true);
            s.node("loose")->setSelected(true);
            s.m_Scene->wrapSelection();
            const QRectF frame = s.m_Scene->backdrops().item(3)->sceneBoundingRect();
            QVERIFY(frame.contains(s.node("far")->sceneBoundingRect()));
            QVERIFY(frame.contains(s.node("loose")->sceneBoundingRect()));
            QCOMPARE(s.m_Scene->backdrops().selected(), QVector<int>{3});
            QVERIFY(s.m_Scene->selectedNodes().isEmpty());
        },
        "Add a backdrop", "loose:xpos ypos, Backdrop:name xpos ypos width height");
    row(
        "rename",
        [](Nested& s) {
            s.m_Scene->setBackdropText(s.backdropIndex("inner"), QStringLiteral("Core"), false);
        },
        "Rename Inside", "inner:uiname");
    row(
        "recolour",
        [](Nested& s) { s.m_Scene->setBackdropColor(s.backdropIndex("inner"), "#a01020"); },
        "Colour Inside", "inner:uicolor");
    row(
        "colour the first time",
        [](Nested& s) { s.m_Scene->setBackdropColor(s.backdropIndex("outer"), "#a01020"); },
        "Colour outer", "outer:uicolor");
    row(
        "delete with contents",
        [](Nested& s) {
            s.click(s.atTitleBar("outer"));
            s.m_Scene->deleteSelection();
        },
        "Delete 2 backdrops and 2 nodes", "-7");
    row(
        "delete the frame alone",
        [](Nested& s) {
            s.click(s.atTitle("outer"));
            s.m_Scene->deleteSelection();
        },
        "Delete outer", "-1");
    row(
        "move a note",
        [](Nested& s) {
            s.dragBy(s.atMiddle("remark"), {0, 40});
        },
        "Move a note", "remark:ypos");
    row(
        "change a note",
        [](Nested& s) {
            s.m_Scene->setBackdropText(s.backdropIndex("remark"), QStringLiteral("Gone"), true);
        },
        "Change the text of a note", "remark:doc");
    row(
        "delete a note and a node",
        [](Nested& s) {
            s.click(s.atMiddle("remark"));
            s.node("far")->setSelected(true);
            s.m_Scene->deleteSelection();
        },
        "Delete a note and far", "-2");
    row(
        "add a note",
        [](Nested& s) {
            const QSignalSpy asked(s.m_Scene.get(), &EditorScene::textWanted);
            s.m_Scene->addNote({3000, 600});
            QCOMPARE(asked.count(), 1);
            QCOMPARE(asked.constFirst().constFirst().toInt(), 3);
        },
        "Add a note", "Note:name xpos ypos width height doc contains");
}

void tst_EditorBackdrops::gesture_isOneStepThereAndBack()
{
    QFETCH(Gesture, gesture);
    QFETCH(QString, step);
    QFETCH(QString, written);
    const Noise noise;
    const auto release
        = qScopeGuard([] { OrvShaderNetworkManager::instance()->setSnapToGrid(false); });
    Nested stage(m_File);
    QVERIFY(stage.isTrue());
    QCOMPARE(stage.m_Scene->nodes().size(), 4); // a backdrop is none

    gesture(stage);
    flush();
    QCOMPARE(stage.m_Status, QStringList());
    QCOMPARE(history().count(), 1);
    QCOMPARE(history().undoText(), step);
    QVERIFY(stage.isTrue());
    const QByteArray changed = stage.m_Editor->text();
    QCOMPARE(differences(kNested, changed), written);

    for (int i = 0; i < 2; ++i) {
        history().undo();
        flush();
        QVERIFY(stage.isTrue());
        QCOMPARE(stage.m_Editor->text(), kNested);
        history().redo();
        flush();
        QVERIFY(stage.isTrue());
        QCOMPARE(stage.m_Editor->text(), changed);
    }
    QCOMPARE(history().count(), 1);
    for (const QString& heard : noise.heard())
        QVERIFY2(heard.contains(QStringLiteral("[ -- ]")), qPrintable(heard)); // traces only
}

void tst_EditorBackdrops::contents_moveByTheBackdropsWay()
{
    Nested stage(m_File);
    const char* const inside[] = {"a", "b"};
    QHash<QString, QPointF> before;
    for (const char* name : inside)
        before.insert(QLatin1String(name), stage.node(name)->pos());
    const QPointF inner = stage.backdrop("inner")->pos();
    const QPointF far = stage.node("far")->pos();
    // Over "far", which must not be collected, and to beside it.
    const QPoint from = stage.atTitleBar("outer");
    stage.press(from);
    for (int x = 0; x <= 1000; x += 50)
        stage.move(from + QPoint(x, 0));
    stage.move(from + QPoint(333, 17));
    stage.release(from + QPoint(333, 17));
    for (const char* name : inside)
        QVERIFY(Nested::isNear(
            stage.node(name)->pos() - before.value(QLatin1String(name)), QPointF(333, 17)));
    QVERIFY(Nested::isNear(stage.backdrop("inner")->pos() - inner, QPointF(333, 17)));
    QCOMPARE(stage.node("far")->pos(), far);
    QVERIFY(stage.backdrop("inner")->zValue() > stage.backdrop("outer")->zValue());
    QVERIFY(stage.backdrop("inner")->zValue() < stage.node("b")->zValue());
}

void tst_EditorBackdrops::clickOnAHandle_isNoStep()
{
    Nested stage(m_File);
    stage.click(stage.atCorner("inner", Qt::BottomRightCorner));
    QCOMPARE(history().count(), 0);
    QVERIFY(!stage.m_Scene->mouseGrabberItem());
    stage.dragBy(stage.atCorner("inner", Qt::BottomRightCorner), {20, 20}); // the next one is
    QCOMPARE(history().count(), 1);
}

void tst_EditorBackdrops::style_isFollowedWithoutAStep()
{
    OrvNgStyle& style = OrvNgStyle::instance();
    const QColor bar = style.getBackdropNodeTitleBarColor();
    const int width = style.getMinimumBackdropNodeWidth();
    Nested stage(m_File);
    style.setBackdropNodeTitleBarColor(QColor(200, 60, 60));
    style.setMinimumBackdropNodeWidth(600); // wider than "inner"
    flush();
    const QColor body = stage.backdrop("outer")->nodeUniColour().color();
    const QColor own = stage.backdrop("inner")->nodeUniColour().color();
    stage.dragBy(stage.atHeader("far"), {0, 30});
    style.setBackdropNodeTitleBarColor(bar);
    style.setMinimumBackdropNodeWidth(width);
    flush();
    QCOMPARE(body, QColor(180, 40, 40));
    QCOMPARE(own, QColor::fromRgbF(0.2, 0.4, 0.6));
    QCOMPARE(history().undoText(), QStringLiteral("Move node far"));
    QCOMPARE(differences(kNested, stage.m_Editor->text()), QStringLiteral("far:ypos"));
}

void tst_EditorBackdrops::escape_givesAResizeUp()
{
    Nested stage(m_File);
    const QRectF before = stage.backdrop("outer")->sceneBoundingRect();
    const QPoint corner = stage.atCorner("outer", Qt::BottomRightCorner);
    stage.press(corner);
    stage.move(corner + QPoint(60, 40));
    QVERIFY(stage.backdrop("outer")->sceneBoundingRect() != before);
    QTest::keyClick(&stage.m_View, Qt::Key_Escape);
    stage.move(corner + QPoint(80, 40));
    stage.release(corner + QPoint(80, 40));
    QCOMPARE(stage.backdrop("outer")->sceneBoundingRect(), before);
    QCOMPARE(history().count(), 0);
}

void tst_EditorBackdrops::doubleClick_asksForTheText_data()
{
    const TestTable<Place, QString> row("place", "asked");
    row(
        "title", [](Nested& s) { return s.atTitle("inner"); }, "1 title Inside");
    row(
        "title bar", [](Nested& s) { return s.atTitleBar("outer"); }, "0 title outer");
    row(
        "remark below a title",
        [](Nested& s) { return s.at(s.backdrop("outer")->scenePos() + QPointF(20, 42)); },
        "0 doc All of it");
    row(
        "note", [](Nested& s) { return s.atMiddle("remark"); }, "2 doc Mind the gap");
    row(
        "body", [](Nested& s) { return s.atMiddle("inner") + QPoint(0, 110); }, "");
    row(
        "handle", [](Nested& s) { return s.atCorner("outer", Qt::BottomRightCorner); }, "");
}

void tst_EditorBackdrops::doubleClick_asksForTheText()
{
    QFETCH(Place, place);
    Nested stage(m_File);
    QString asked;
    connect(stage.m_Scene.get(), &EditorScene::textWanted,
        [&asked](int backdrop, const QString& text, bool isDoc) {
            asked = QStringLiteral("%1 %2 %3")
                        .arg(QString::number(backdrop),
                            isDoc ? QStringLiteral("doc") : QStringLiteral("title"), text);
        });
    stage.doubleClick(place(stage));
    QTEST(asked, "asked");
    QCOMPARE(history().count(), 0);
}

void tst_EditorBackdrops::color_isReadInBothForms_data()
{
    const TestTable<QString, QColor> row("text", "color");
    row("web", "#A01020", QColor(0xa0, 0x10, 0x20));
    row("numbers", " 1.0, 0.5,0 ", QColor::fromRgbF(1.0, 0.5, 0.0));
    row("with alpha", "0 0 1 0.5", QColor(Qt::blue));
    row("too large", "7, -1, 0", QColor(Qt::red));
    row("two numbers", "1, 1", QColor());
    row("no number", "1, nan, 1", QColor());
    row("a word", "red", QColor());
    row("a torn one", "#12", QColor());
    row("nothing", "", QColor());
}

void tst_EditorBackdrops::color_isReadInBothForms()
{
    QFETCH(QString, text);
    QTEST(EditorBackdrops::colorFromText(text), "color");
}

QTEST_MAIN(tst_EditorBackdrops)
#include "tst_EditorBackdrops.moc"
