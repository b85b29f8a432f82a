#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"

#include <OrvCore/OrvResourceInfo.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMetaProperty>
#include <QTemporaryDir>
#include <QtTest>

using ColorPair = QPair<QColor, QColor>;

namespace {
struct GoldenRow
{
    QString name, type, source, group;
    bool isInSheet() const { return source == QLatin1String("file") || isReadOnly(); }
    bool isReadOnly() const { return source == QLatin1String("read-only"); }
};

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QVector<GoldenRow> goldenRows()
{
    QVector<GoldenRow> rows;
    const QString text
        = QString::fromUtf8(fileBytes(QStringLiteral(ORV_TEST_DATA "/style-properties.txt")));
    for (const QString& line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList words = line.simplified().split(QLatin1Char(' '));
        if (!line.startsWith(QLatin1Char('#')))
            rows.append({words.value(0), words.value(1), words.value(2), words.value(3)});
    }
    return rows;
}

/// "Group/Key" of every value of the default sheet, and its type.
QMap<QString, QString> sheetKeys()
{
    QMap<QString, QString> keys;
    for (const GoldenRow& row : goldenRows()) {
        if (row.isInSheet())
            keys.insert(row.group + QLatin1Char('/') + row.name, row.type);
    }
    return keys;
}

QMap<QString, QVariant> contents(const QString& path)
{
    const QSettings file(path, QSettings::IniFormat);
    QMap<QString, QVariant> values;
    for (const QString& key : file.allKeys())
        values.insert(key, file.value(key));
    return values;
}

QVariant value(const QObject& style, const QString& name)
{
    return style.property(name.toLatin1().constData());
}

} // namespace

/// The style as hosts and users meet it: by property name, through its files, in its preferences.
class tst_OrvNgStyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("XDG_CONFIG_HOME", m_Config.path().toLocal8Bit());
        QCoreApplication::setOrganizationName(QStringLiteral("OrvStyleTest"));
        m_UserPath = m_Config.filePath(QStringLiteral("OrvStyleTest/NodeGraphStyleSheetVer3.ini"));
    }

    void init()
    {
        OrvResourceInfo::instance().setResourceRoot(QStringLiteral(ORV_RESOURCES));
        QDir(QFileInfo(m_UserPath).path()).removeRecursively();
        m_Recorder.clear();
    }

    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void properties_areTheGoldenList()
    {
        const OrvNgStyle& style = OrvNgStyle::instance(); // also outlives the application, at exit
        const QMetaObject& meta = OrvNgStyle::staticMetaObject;
        const QVector<GoldenRow> rows = goldenRows();
        QCOMPARE(rows.size(), 130);
        QCOMPARE(meta.propertyCount() - meta.propertyOffset(), rows.size());
        QCOMPARE(meta.method(meta.methodOffset()).name(), QByteArray("colorsUpdated"));
        for (int i = 0; i < rows.size(); ++i) {
            const QMetaProperty property = meta.property(meta.propertyOffset() + i);
            const QByteArray name = rows[i].name.toLatin1();
            QCOMPARE(QByteArray(property.name()), name);
            QCOMPARE(QString::fromLatin1(property.typeName()), rows[i].type);
            QVERIFY2(property.isResettable() && property.isWritable(), name.constData());
            const QMetaMethod signal = meta.method(meta.methodOffset() + 1 + i);
            QCOMPARE(property.notifySignal().methodSignature(), signal.methodSignature());
            QCOMPARE(signal.methodSignature(), name + "Changed(" + property.typeName() + ')');
            QVERIFY2(property.read(&style).isValid(), name.constData());
        }
    }

    void defaultSheet_holdsEveryKeyWithCommasQuoted()
    {
        const auto sheet
            = contents(QStringLiteral(ORV_RESOURCES "/settings/DefaultNodeGraphStyleSheet.conf"));
        QCOMPARE(sheet.keys(), sheetKeys().keys());
        QCOMPARE(sheet.size(), 87);
        for (auto text = sheet.begin(); text != sheet.end(); ++text) // a list without the quotes
            QVERIFY2(text->userType() == QMetaType::QString, qPrintable(text.key()));
        const OrvNgStyle style;
        for (const GoldenRow& row : goldenRows()) {
            if (row.isInSheet() && row.type == QLatin1String("QColor"))
                QVERIFY2(value(style, row.name).value<QColor>().isValid(), qPrintable(row.name));
        }
    }

    void load_takesWhatPeopleWrite()
    {
        writeUserSheet("\xef\xbb\xbf[Edge]\r\nEdgeColor=(1,2,3,4)\r\nSelectedEdgeColor=5,6,7,8\r\n"
                       "SeveredEdgeColor=\"(1,2,3,400)\"\r\nActivatedEdgeColor=(1/2|3)\r\n"
                       "EdgePenWidth=wide\r\n[NodeStateColors]\r\n"
                       "DefaultNodeColor=(1,2,3,4),(5,6,7,8)\r\n");
        OrvNgStyle style;
        QCOMPARE(style.getEdgeColor(), QColor(1, 2, 3, 4));
        QCOMPARE(style.getSelectedEdgeColor(), QColor(5, 6, 7, 8));
        QVERIFY(!style.getSeveredEdgeColor().isValid());
        QCOMPARE(style.getActivatedEdgeColor(), QColor(1, 2, 3, 0));
        QCOMPARE(style.getEdgePenWidth(), 0);
        QCOMPARE(style.getDefaultNodeColor(), ColorPair(QColor(1, 2, 3, 4), QColor(5, 6, 7, 8)));
        const auto stops = style.getDefaultNodeBrush().stops(); // derived from it
        QCOMPARE(stops, QGradientStops({{0.0, QColor(1, 2, 3, 4)}, {1.0, QColor(5, 6, 7, 8)}}));
        QCOMPARE(m_Recorder.messages(), QStringList());
    }

    void refresh_makesPens()
    {
        OrvNgStyle style;
        int number = 0;
        for (const char* color : {"EdgeColor", "SelectedEdgeColor", "SelectableEdgeColor",
                 "HighlightForNodeInsertEdgeColor", "SeveredEdgeColor", "ActivatedEdgeColor"})
            style.setProperty(color, QColor(++number, 0, 0));
        for (const char* width : {"EdgePenWidth", "PrefferedEdgePenWidth", "BypassedEdgePenWidth"})
            style.setProperty(width, ++number);
        Q_EMIT style.colorsUpdated();
        const struct
        {
            const char* m_Name;
            int m_Red, m_Width;
            Qt::PenStyle m_Style;
        } pens[] = {{"NormalEdgePen", 1, 7, Qt::SolidLine},
            {"PrefferedEdgePen", 1, 8, Qt::SolidLine}, {"SharedEdgePen", 1, 7, Qt::DotLine},
            {"SelectedNormalEdgePen", 2, 7, Qt::SolidLine},
            {"SelectedPrefferedEdgePen", 2, 8, Qt::SolidLine},
            {"SelectedSharedEdgePen", 2, 7, Qt::DotLine},
            {"SelectableNormalEdgePen", 3, 7, Qt::SolidLine},
            {"SelectablePrefferedEdgePen", 3, 8, Qt::SolidLine},
            {"SelectableSharedEdgePen", 3, 7, Qt::DotLine},
            {"HighlightForNodeInsertPen", 4, 7, Qt::SolidLine},
            {"SeveredEdgePen", 5, 7, Qt::DashDotDotLine}, {"BypassedEdgePen", 1, 9, Qt::SolidLine},
            {"ActivatedEdgePen", 6, 7, Qt::SolidLine}};
        for (const auto& expected : pens) {
            QPen pen(QColor(expected.m_Red, 0, 0), expected.m_Width, expected.m_Style,
                Qt::SquareCap, Qt::BevelJoin);
            QVERIFY2(style.property(expected.m_Name).value<QPen>() == pen, expected.m_Name);
        }
    }

    void save_everyValue_comesBack()
    {
        QLocale::setDefault(QLocale(QLocale::German)); // writes 0,5
        const QMap<QString, QString> forms{{QStringLiteral("int"), QStringLiteral("%1")},
            {QStringLiteral("float"), QStringLiteral("%1.125")},
            {QStringLiteral("QPoint"), QStringLiteral("(%1,-2)")},
            {QStringLiteral("QPointF"), QStringLiteral("(%1,0.125)")},
            {QStringLiteral("QColor"), QStringLiteral("(%1,2,3,4)")},
            {QStringLiteral("OrvColor"), QStringLiteral("(1,2,3,%1)")},
            {QStringLiteral("QPair<QColor,QColor>"), QStringLiteral("(1,2,3,4),(5,%1,7,8)")}};
        QMap<QString, QVariant> expected;
        const auto keys = sheetKeys();
        for (auto key = keys.begin(); key != keys.end(); ++key) // another number for each
            expected.insert(key.key(), forms[*key].arg(100 + expected.size()));
        {
            QSettings user(m_UserPath, QSettings::IniFormat);
            for (auto text = expected.begin(); text != expected.end(); ++text)
                user.setValue(text.key(), *text);
        }
        OrvNgStyle style;
        QCOMPARE(style.getSharedEdgePenWidth(),
            expected.take(QStringLiteral("Edge/SharedEdgePenWidth")).toInt()); // never written
        QCOMPARE(style.getSeveredEdgeColor().red(),
            100 + keys.keys().indexOf(QStringLiteral("Edge/SeveredEdgeColor")));
        QVERIFY(QFile::remove(m_UserPath));
        style.savePreferences();
        QCOMPARE(contents(m_UserPath), expected);
        QCOMPARE(m_Recorder.messages(), QStringList());
    }

    void save_valueBackAtDefault_dropsItsKey()
    {
        writeUserSheet("[Edge]\nEdgeColor=\nEdgePenWidth=7\nPrefferedEdgePenWidth=8\n"
                       "SharedEdgePenWidth=9\n[Own]\nNote=kept\n");
        OrvNgStyle style;
        style.resetEdgeColor();
        style.resetEdgePenWidth();
        style.savePreferences();
        QCOMPARE(contents(m_UserPath).keys().join(QLatin1Char(' ')),
            QStringLiteral("Edge/PrefferedEdgePenWidth Edge/SharedEdgePenWidth Own/Note"));
    }

    void save_intoMalformedFile_keepsCopy()
    {
        const QByteArray malformed
            = "[Edge]\nEdgePenWidth=7\nno value on this line\n[Broken\nA=1\n";
        writeUserSheet(malformed);
        OrvNgStyle style;
        QCOMPARE(style.getEdgePenWidth(), 7);
        QCOMPARE(m_Recorder.messages().size(), 1);
        QVERIFY(m_Recorder.messages()[0].startsWith(QLatin1String("[ !! ] ")));
        QVERIFY(m_Recorder.messages()[0].contains(m_UserPath));

        style.setPrefferedEdgePenWidth(9);
        style.savePreferences();
        QCOMPARE(fileBytes(m_UserPath + QStringLiteral(".unreadable")), malformed);
        const OrvNgStyle reloaded;
        QCOMPARE(reloaded.getEdgePenWidth(), 7);
        QCOMPARE(reloaded.getPrefferedEdgePenWidth(), 9);
    }

private:
    void writeUserSheet(const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(m_UserPath).path());
        QFile file(m_UserPath);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    QTemporaryDir m_Config;
    QString m_UserPath;
    DebugRecorder m_Recorder;
};

QTEST_GUILESS_MAIN(tst_OrvNgStyle)
#include "tst_OrvNgStyle.moc"
