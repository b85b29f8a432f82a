#include "editor/EditorPortColors.h"
#include "support/TestTable.h"

#include <array>
#include <cmath>

namespace {

using Lab = std::array<double, 3>;

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double labCurve(double t)
{
    return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116;
}

Lab labOf(const QColor& color)
{
    const double r = linear(color.redF());
    const double g = linear(color.greenF());
    const double b = linear(color.blueF());
    const double x = labCurve((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
    const double y = labCurve(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
    const double z = labCurve((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

// CIE 1976: about 2 is just noticeable side by side; small squares apart need ten times that.
double distance(const QColor& first, const QColor& second)
{
    const Lab a = labOf(first);
    const Lab b = labOf(second);
    return std::sqrt(
        std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2));
}

const QStringList& commonTypes()
{
    static const QStringList s_Types
        = QStringLiteral("float color3 vector3 vector2 integer boolean "
                         "string filename surfaceshader BSDF material "
                         "color4 matrix44")
              .split(QLatin1Char(' '));
    return s_Types;
}

} // namespace

/// The palette, measured: what stands side by side in a node must not be mixed up.
class tst_EditorPortColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commonTypes_canBeToldApart_data()
    {
        const TestTable<bool, double> row("connected", "smallest");
        row("connected", true, 22.0);
        row("free", false, 15.0);
    }

    void commonTypes_canBeToldApart()
    {
        QFETCH(bool, connected);
        QFETCH(double, smallest);
        for (int i = 0; i < commonTypes().size(); ++i) {
            for (int k = 0; k < i; ++k) {
                const QString& first = commonTypes().at(i);
                const QString& second = commonTypes().at(k);
                const double apart = distance(EditorPortColors::color(first, connected),
                    EditorPortColors::color(second, connected));
                QVERIFY2(apart >= smallest,
                    qPrintable(QStringLiteral("%1, %2: %3").arg(first, second).arg(apart)));
            }
        }
    }

    void everyType_isSeenOnTheBody()
    {
        const QColor body(64, 64, 64);
        for (const QString& type : commonTypes()) {
            const QColor connected = EditorPortColors::color(type, true);
            const QColor free = EditorPortColors::color(type, false);
            QVERIFY2(distance(connected, body) >= 35, qPrintable(type));
            QVERIFY2(distance(free, body) >= 25, qPrintable(type));
            QVERIFY2(labOf(connected)[0] - labOf(free)[0] >= 10, qPrintable(type));
        }
        QVERIFY(distance(EditorPortColors::brokenColor(), body) >= 60);
    }
};

QTEST_GUILESS_MAIN(tst_EditorPortColors)
#include "tst_EditorPortColors.moc"
