#include "OrvCore/OrvSerializableObject.h"

#include <QtTest>

/// An object with one property of each kind that saving has to tell apart.
class Sample : public OrvSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(int count MEMBER m_Count)
    Q_PROPERTY(QPoint place MEMBER m_Place)
    Q_PROPERTY(Mode mode MEMBER m_Mode)
    Q_PROPERTY(int derived READ derived)
    Q_PROPERTY(int transient MEMBER m_Transient STORED false)
public:
    enum Mode { Slow, Fast };
    Q_ENUM(Mode)
    int derived() const { return 2 * m_Count; }

    int m_Count = 1;
    QPoint m_Place;
    Mode m_Mode = Slow;
    int m_Transient = 3;
};

class tst_OrvSerializableObject : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void restoredObject_equalsTheSavedOne()
    {
        Sample saved;
        saved.setObjectName(QStringLiteral("saved"));
        saved.m_Place = QPoint(3, -4);
        saved.m_Mode = Sample::Fast;
        saved.setProperty("note", 2.5);

        Sample restored;
        restored.setProperty("note", 0);
        QVERIFY(restored.deserialize(saved.serialize()));
        QCOMPARE(restored.serialize(), saved.serialize());
        QCOMPARE(QStringList(saved.serialize().keys()).join(QLatin1Char(' ')),
            QStringLiteral("count mode note objectName place"));
    }

    void deserialize_appliesTheNeighboursOfWhatDoesNotFit()
    {
        for (const char* name : {"cuont", "derived", "transient", "mode"}) {
            Sample sample;
            const QVariantMap values{{QStringLiteral("count"), QStringLiteral("12")},
                {QLatin1String(name), QStringLiteral("99")},
                {QStringLiteral("place"), QPoint(8, 9)}};
            QVERIFY2(!sample.deserialize(values), name);
            QCOMPARE(sample.m_Count, 12);
            QCOMPARE(sample.m_Mode, Sample::Slow);
            QCOMPARE(sample.m_Transient, 3);
            QCOMPARE(sample.m_Place, QPoint(8, 9));
        }
    }

    void prettyName_isSplitIntoWords()
    {
        const OrvGroupParameterObject object;
        QCOMPARE(object.prettyPropertyName(QStringLiteral("sceneLODSwitchThreshold")),
            QStringLiteral("Scene LOD Switch Threshold"));
    }
};

QTEST_GUILESS_MAIN(tst_OrvSerializableObject)
#include "tst_OrvSerializableObject.moc"
