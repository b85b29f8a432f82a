#include "OrvNodeGraph/OrvNgEdgePens.h"
#include "OrvNodeGraph/OrvNgStyle.h"

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
        const auto colors = [](bool preferred, bool shared) {
            OrvNgEdgePens pens;
            pens.setup(preferred, shared, QColor(), {});
            return QStringList{
                colorName(pens.normal()), colorName(pens.selected()), colorName(pens.hover())};
        };
        const auto numbers = [](int first) {
            return QStringList{
                colorName(pen(first)), colorName(pen(first + 1)), colorName(pen(first + 2))};
        };
        QCOMPARE(colors(false, false), numbers(1));
        QCOMPARE(colors(true, false), numbers(4));
        QCOMPARE(colors(false, true), numbers(7));
    }

    /// Debug beats severed, that bypassed, that activated, that clustered.
    void states_beatEachOther()
    {
        OrvNgEdgePens pens;
        pens.setup(false, false, Qt::red, {});
        OrvNgEdgePens::State state{true, true, true, true, true};
        QStringList found(colorName(pens.forState(state)));
        for (const auto flag : {&OrvNgEdgePens::State::m_Debug, &OrvNgEdgePens::State::m_Severed,
                 &OrvNgEdgePens::State::m_Bypassed, &OrvNgEdgePens::State::m_Activated}) {
            state.*flag = false;
            found.append(colorName(pens.forState(state)));
        }
        QCOMPARE(found.join(QLatin1Char(' ')),
            QStringLiteral("#ff0000 #00000c #00000a #00000b #62b3bc"));
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
