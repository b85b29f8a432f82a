#include "OrvNodeGraph/OrvNgNodeShape.h"

#include <QtTest>

class tst_OrvNgNodeShape : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void givenShape_beatsTheCategorys()
    {
        const auto shape = [](int type, const char* category) {
            return static_cast<int>(OrvNgNodeShape::resolve(type, QLatin1String(category)));
        };
        QCOMPARE(shape(1, "Basic"), 1);
        QCOMPARE(shape(0, "Environment"), 2);
        QCOMPARE(shape(0, "TeleportBroadcast"), 8);
        QCOMPARE(shape(9, "Geometry"), 2); // too large
        QCOMPARE(shape(0, ""), 1);
    }
};

QTEST_MAIN(tst_OrvNgNodeShape)
#include "tst_OrvNgNodeShape.moc"
