#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/DebugRecorder.h"

#include <OrvCore/OrvPreferenceManager.h>
#include <OrvCore/OrvResourceInfo.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMetaProperty>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

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

/// The contrast ratio of the Web Content Accessibility Guidelines, 1 to 21.
double contrast(const QColor& a, const QColor& b)
{
    const auto channel = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto light = [&](const QColor& color) {
        return 0.05 + 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF())
            + 0.0722 * channel(color.blueF());
    };
    return qMax(light(a), light(b)) / qMin(light(a), light(b));
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

    void set_tellsChangesAndIgnoresWhatIsNotFinite()
    {
        OrvNgStyle style;
        style.setNodeHeight(31.f);
        const QSignalSpy changes(&style, &OrvNgStyle::NodeHeightChanged);
        for (const double height : {31.0, qQNaN(), qInf(), 32.0})
            style.setNodeHeight(float(height));
        QCOMPARE(changes.size(), 1);
        QCOMPARE(style.getNodeHeight(), 32.f);
        QVERIFY(style.setProperty("SceneBackgroundColor", QColor(Qt::blue)));
        QCOMPARE(style.getSceneBackgroundColor(), OrvColor(0.f, 0.f, 1.f, 1.f));
    }

    void load_takesWhatPeopleWrite()
    {
        writeUserSheet("\xef\xbb\xbf[Edge]\r\nEdgeColor=(1,2,3,4)\r\nSelectedEdgeColor=5,6,7,8\r\n"
                       "SeveredEdgeColor=\"(1,2,3,400)\"\r\n[NodeStateColors]\r\n"
                       "DefaultNodeColor=(1,2,3,4),(5,6,7,8)\r\n");
        OrvNgStyle style;
        QCOMPARE(style.getEdgeColor(), QColor(1, 2, 3, 4));
        QCOMPARE(style.getSelectedEdgeColor(), QColor(5, 6, 7, 8));
        QVERIFY(!style.getSeveredEdgeColor().isValid());
        QCOMPARE(style.getDefaultNodeColor(), ColorPair(QColor(1, 2, 3, 4), QColor(5, 6, 7, 8)));
        const auto stops = style.getDefaultNodeBrush().stops(); // derived from it
        QCOMPARE(stops, QGradientStops({{0.0, QColor(1, 2, 3, 4)}, {1.0, QColor(5, 6, 7, 8)}}));
        QCOMPARE(m_Recorder.messages(), QStringList());
    }

    void defaultSheet_textIsReadableOnEveryColor()
    {
        const OrvNgStyle style;
        const QColor text = style.getNodeTextColor();
        const QColor scene = style.getSceneBackgroundColor().toQColor();
        int checked = 0;
        const auto check
            = [&](const QString& name, const QColor& a, const QColor& b, double least) {
                  ++checked;
                  if (contrast(a, b) < least)
                      QFAIL(qPrintable(QStringLiteral("%1: %2").arg(name).arg(contrast(a, b))));
              };
        for (const GoldenRow& row : goldenRows()) {
            const QVariant color = value(style, row.name);
            const bool isBypassed = row.name == QLatin1String("BypassedNodeColor");
            const QColor& onNode = isBypassed ? style.getBypassedTextColor() : text;
            if (row.type == QLatin1String("QPair<QColor,QColor>")) {
                check(row.name, onNode, color.value<ColorPair>().first, 4.5);
                check(row.name, onNode, color.value<ColorPair>().second, 4.5);
            } else if (row.group == QLatin1String("CategoryColors")
                || row.name == QLatin1String("CurrentPaintNodeColor")) {
                const QColor node = color.value<OrvColor>().toQColor();
                check(row.name, text, node, 4.5);
                check(row.name + QStringLiteral(" in the scene"), node, scene, 1.3);
            }
        }
        QCOMPARE(checked, 2 * 8 + 2 * 16);
        for (const QColor& state : {style.getCachedNodeColor(), style.getBakedNodeColor(),
                 style.getOutdatedBakedNodeColor()})
            check(state.name(), text, state, 4.5);
        for (const QColor& edge :
            {style.getEdgeLabelColor(), style.getEdgeColor(), style.getSelectedEdgeColor()})
            check(edge.name(), edge, scene, 4.5);
        const int hovered = qRound(64 + (255 - 64) * style.getPortHighlightColor().alphaF());
        for (const int body : {64, hovered})
            check(QStringLiteral("Port"), style.getPortTextColor(), QColor(body, body, body), 4.5);
    }

    void preferences_areRegisteredInOrder()
    {
        const OrvNgStyle style;
        QStringList registered;
        for (const auto& preference : OrvPreferenceManager::instance().preferences()) {
            if (preference.object != &style)
                continue;
            QCOMPARE(preference.page, QStringLiteral("Node Graph"));
            registered.append(preference.section + QLatin1Char(':') + preference.propertyName);
        }
        QStringList expected;
        for (const char* category : {"Basic", "Environment", "Filter", "Geometry", "Layer",
                 "Lighting", "Math", "Misc", "Procedural", "Surface", "System", "Paint",
                 "TeleportBroadcast", "TeleportReceiver", "CurrentPaint"})
            expected.append(
                QStringLiteral("Node Category Colors:%1NodeColor").arg(QLatin1String(category)));
        for (const char* property : {"GridLinesColor", "GridLinesWidth", "SceneBackgroundColor"})
            expected.append(QStringLiteral("Grid:") + QLatin1String(property));
        QCOMPARE(registered, expected);
    }

    void refresh_makesPens()
    {
        OrvNgStyle source;
        source.setEdgeColor(QColor(10, 0, 0));
        source.setPrefferedEdgeColor(QColor(20, 0, 0)); // no pen's colour
        source.setSelectedEdgeColor(QColor(30, 0, 0));
        source.setSelectableEdgeColor(QColor(40, 0, 0));
        source.setHighlightForNodeInsertEdgeColor(QColor(50, 0, 0));
        source.setSeveredEdgeColor(QColor(60, 0, 0));
        source.setActivatedEdgeColor(QColor(70, 0, 0));
        source.setGridLinesColor({0.5f, 0.f, 0.f});
        source.setEdgePenWidth(5);
        source.setPrefferedEdgePenWidth(6);
        source.setSharedEdgePenWidth(7); // no pen's width
        source.setBypassedEdgePenWidth(8);
        source.setGridLinesWidth(9);
        Q_EMIT source.colorsUpdated();

        const struct
        {
            const char* m_Name;
            int m_Red, m_Width;
            Qt::PenStyle m_Style;
        } pens[] = {{"NormalEdgePen", 10, 5, Qt::SolidLine},
            {"PrefferedEdgePen", 10, 6, Qt::SolidLine}, {"SharedEdgePen", 10, 5, Qt::DotLine},
            {"SelectedNormalEdgePen", 30, 5, Qt::SolidLine},
            {"SelectedPrefferedEdgePen", 30, 6, Qt::SolidLine},
            {"SelectedSharedEdgePen", 30, 5, Qt::DotLine},
            {"SelectableNormalEdgePen", 40, 5, Qt::SolidLine},
            {"SelectablePrefferedEdgePen", 40, 6, Qt::SolidLine},
            {"SelectableSharedEdgePen", 40, 5, Qt::DotLine},
            {"HighlightForNodeInsertPen", 50, 5, Qt::SolidLine},
            {"SeveredEdgePen", 60, 5, Qt::DashDotDotLine},
            {"BypassedEdgePen", 10, 8, Qt::SolidLine}, {"ActivatedEdgePen", 70, 5, Qt::SolidLine},
            {"GridPen", 128, 9, Qt::SolidLine}};
        for (const auto& expected : pens) {
            QPen pen(QColor(expected.m_Red, 0, 0), expected.m_Width, expected.m_Style,
                Qt::SquareCap, Qt::BevelJoin);
            QVERIFY2(source.property(expected.m_Name).value<QPen>() == pen, expected.m_Name);
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
