#include "OrvNodeGraph/OrvNgEdgePens.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <QtTest>

namespace {

QPen pen(int blue, int width = 2)
{
    return {QBrush(QColor(0, 0, blue)), static_cast<qreal>(width), Qt::SolidLine};
}

} // namespace

class tst_OrvNgEdgePens : public QObject
{
    Q_OBJECT
private Q_SLOTS:
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

    void kindOfEdge_choosesItsThreePens()
    {
        for (const int first : {1, 4, 7}) {
            OrvNgEdgePens pens;
            pens.setup(first == 4, first == 7, QColor(), {});
            QCOMPARE(pens.normal().color(), pen(first).color());
            QCOMPARE(pens.selected().color(), pen(first + 1).color());
            QCOMPARE(pens.hover().color(), pen(first + 2).color());
        }
    }

    /// Debug beats severed, that bypassed, that activated, that clustered.
    void states_beatEachOther()
    {
        OrvNgEdgePens pens;
        pens.setup(false, false, Qt::red, {});
        OrvNgEdgePens::State state{true, true, true, true, true};
        QString found = pens.forState(state).color().name();
        for (const auto flag : {&OrvNgEdgePens::State::m_Debug, &OrvNgEdgePens::State::m_Severed,
                 &OrvNgEdgePens::State::m_Bypassed, &OrvNgEdgePens::State::m_Activated}) {
            state.*flag = false;
            found += pens.forState(state).color().name();
        }
        QCOMPARE(found, QStringLiteral("#ff0000#00000c#00000a#00000b#62b3bc"));
    }

    void thin_halvesInACascade()
    {
        const double widths[][3] = {{1, 0.5, 0.5}, {2, 1.0, 0.5}, {3, 1.5, 1.0}, {5, 2.5, 1.5}};
        for (const auto& [width, normal, others] : widths) {
            OrvNgStyle::instance().setNormalEdgePen(pen(1, int(width)));
            OrvNgEdgePens pens;
            pens.setup(false, false, QColor(), {QStringLiteral("_thin")});
            QCOMPARE(pens.normal().widthF(), normal);
            QCOMPARE(pens.selected().widthF(), others);
            QCOMPARE(pens.hover().widthF(), others);
            OrvNgEdgePens::State state;
            state.m_Bypassed = true;
            QCOMPARE(pens.forState(state).widthF(), others);
            state.m_Severed = true;
            QCOMPARE(pens.forState(state).widthF(), 2.0);
        }
    }
};

QTEST_MAIN(tst_OrvNgEdgePens)
#include "tst_OrvNgEdgePens.moc"
