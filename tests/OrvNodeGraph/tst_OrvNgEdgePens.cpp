#include "OrvNodeGraph/OrvNgEdgePens.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"

#include <QtTest>

namespace {

QPen pen(int blue, int width = 2)
{
    return {QBrush(QColor(0, 0, blue)), static_cast<qreal>(width), Qt::SolidLine};
}

QString colorName(const QPen& found)
{
    return found.color().name();
}

OrvNgEdgePens::State only(bool OrvNgEdgePens::State::*flag)
{
    OrvNgEdgePens::State state;
    state.*flag = true;
    return state;
}

} // namespace

Q_DECLARE_METATYPE(OrvNgEdgePens::State)

class tst_OrvNgEdgePens : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QCoreApplication::setOrganizationName(QStringLiteral("OrvTests"));
    }

    void init()
    {
        // Numbered by their colours.
        int number = 0;
        for (const char* name :
            {"NormalEdgePen", "SelectedNormalEdgePen", "SelectableNormalEdgePen",
                "PrefferedEdgePen", "SelectedPrefferedEdgePen", "SelectablePrefferedEdgePen",
                "SharedEdgePen", "SelectedSharedEdgePen", "SelectableSharedEdgePen",
                "BypassedEdgePen", "ActivatedEdgePen", "SeveredEdgePen"})
            QVERIFY(OrvNgStyle::instance().setProperty(name, pen(++number)));
    }

    void kindOfEdge_data()
    {
        const TestTable<bool, bool, QString, QString, QString> row(
            "preferred", "shared", "normal", "selected", "hover");
        row("plain", false, false, "#000001", "#000002", "#000003");
        row("preferred", true, false, "#000004", "#000005", "#000006");
        row("shared", false, true, "#000007", "#000008", "#000009");
    }

    void kindOfEdge()
    {
        QFETCH(bool, preferred);
        QFETCH(bool, shared);
        OrvNgEdgePens pens;
        pens.setup(preferred, shared, QColor(), {});
        QTEST(colorName(pens.normal()), "normal");
        QTEST(colorName(pens.selected()), "selected");
        QTEST(colorName(pens.hover()), "hover");
    }

    void state_data()
    {
        const TestTable<OrvNgEdgePens::State, QString> row("state", "color");
        OrvNgEdgePens::State state{true, true, true, true, true};
        row("debug beats all", state, "#ff0000");
        state.m_Debug = false;
        row("severed beats bypassed", state, "#00000c");
        state.m_Severed = false;
        row("bypassed beats activated", state, "#00000a");
        state.m_Bypassed = false;
        row("activated beats clustered", state, "#00000b");
        state.m_Activated = false;
        row("clustered", state, "#62b3bc");
    }

    void state()
    {
        QFETCH(OrvNgEdgePens::State, state);
        OrvNgEdgePens pens;
        pens.setup(false, false, Qt::red, {});
        QTEST(colorName(pens.forState(state)), "color");
    }

    void thin_halvesInACascade()
    {
        const struct
        {
            int m_Width;
            double m_Normal, m_Others;
        } rows[] = {{1, 0.5, 0.5}, {2, 1.0, 0.5}, {3, 1.5, 1.0}, {5, 2.5, 1.5}};
        for (const auto& row : rows) {
            OrvNgStyle::instance().setNormalEdgePen(pen(1, row.m_Width));
            OrvNgEdgePens pens;
            pens.setup(false, false, QColor(), {QStringLiteral("_thin")});
            QCOMPARE(pens.normal().widthF(), row.m_Normal);
            QCOMPARE(pens.selected().widthF(), row.m_Others);
            QCOMPARE(pens.hover().widthF(), row.m_Others);
            for (const auto flag : {&OrvNgEdgePens::State::m_Bypassed,
                     &OrvNgEdgePens::State::m_Activated, &OrvNgEdgePens::State::m_Debug})
                QCOMPARE(pens.forState(only(flag)).widthF(), row.m_Others);
            QCOMPARE(pens.forState(only(&OrvNgEdgePens::State::m_Severed)).widthF(), 2.0);
        }
    }
};

QTEST_MAIN(tst_OrvNgEdgePens)
#include "tst_OrvNgEdgePens.moc"
