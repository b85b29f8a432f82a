#include "support/DebugRecorder.h"
#include "support/Literals.h"
#include "support/StyleValues.h"
#include "support/TestRows.h"
#include "support/TestTable.h"

#include <OrvCore/OrvResourceInfo.h>

#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using ColorPair = QPair<QColor, QColor>;

namespace {

const QString kInSheet = u"file read-only"_s;

struct GoldenRow
{
    QString name, type, source, group;
};

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QVector<GoldenRow> goldenRows()
{
    QVector<GoldenRow> rows;
    const QString text = QString::fromUtf8(fileBytes(q(ORV_TEST_DATA "/style-properties.txt")));
    for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList words = line.simplified().split(u' ');
        if (!line.startsWith(u'#'))
            rows.append({words.value(0), words.value(1), words.value(2), words.value(3)});
    }
    return rows;
}

/// Of the properties of some sources ("file", "derived" …): the name, as "Group/Name" of what stands in
/// files, and the type.
QMap<QString, QString> propertiesFrom(const QString& sources)
{
    QMap<QString, QString> types;
    for (const GoldenRow& row : goldenRows()) {
        if (sources.contains(row.source))
            types.insert((row.group == u"-" ? QString() : row.group + u'/') + row.name, row.type);
    }
    return types;
}

QMap<QString, QVariant> contents(const QString& path)
{
    const QSettings file(path, QSettings::IniFormat);
    QMap<QString, QVariant> values;
    for (const QString& key : file.allKeys())
        values.insert(key, file.value(key));
    return values;
}

QStringList backticked(const QString& text)
{
    QStringList found;
    auto match = QRegularExpression(u"`([^`\\n]+)`"_s).globalMatch(text);
    while (match.hasNext())
        found += match.next().captured(1);
    return found;
}

/// Of the tables of the document that stand below headings: the name that the first cell begins with, and
/// what stands in backticks in the second. Below a heading in brackets, a group of the file, the name is
/// "group/name".
QMultiMap<QString, QStringList> documented(const QString& headingStart)
{
    QMultiMap<QString, QStringList> rows;
    QString heading;
    const QString text = QString::fromUtf8(fileBytes(q(ORV_DOCS "/style-sheet.md")));
    for (const QString& line : text.split(u'\n')) {
        if (line.startsWith(u'#'))
            heading = line.section(u' ', 1);
        if (!line.startsWith(u"| `"_s) || !heading.startsWith(headingStart))
            continue;
        const QString group
            = heading.startsWith(u'[') ? heading.mid(1).chopped(1) + u'/' : QString();
        rows.insert(group + backticked(line.section(u'|', 1, 1)).value(0),
            backticked(line.section(u'|', 2, 2)));
    }
    return rows;
}

QVariant valueOf(const OrvNgStyle& style, const QString& name)
{
    const QVariant value = style.property(name.toLatin1().constData());
    // Variants know how to compare brushes and pens, but not gradients.
    return value.userType() == qMetaTypeId<QLinearGradient>()
        ? QVariant(QBrush(value.value<QLinearGradient>()))
        : value;
}

/// Another value of the same type.
QVariant otherThan(const QVariant& value)
{
    const QColor color(1, 2, 3, 4);
    for (const QVariant& other : {QVariant::fromValue(OrvColor(color)), QVariant(color),
             QVariant::fromValue(qMakePair(color, color)), QVariant(QPoint(987, 654)),
             QVariant(QPointF(987, 654))}) {
        if (other.userType() == value.userType())
            return other;
    }
    return value.toInt() + 7;
}

} // namespace

/// The style as hosts and users meet it: by property name, through its files, in its preferences.
class tst_OrvNgStyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("XDG_CONFIG_HOME", m_Config.path().toLocal8Bit()); }

    void init()
    {
        OrvResourceInfo::instance().setResourceRoot(q(ORV_RESOURCES));
        // Qt keeps what it could not write for the next one who opens the file: each test has its own.
        m_Organization = u"OrvStyleTest%1"_s.arg(++m_Number);
        QCoreApplication::setOrganizationName(m_Organization);
        m_UserPath = m_Config.filePath(m_Organization + u"/NodeGraphStyleSheetVer3.ini"_s);
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

    void defaultSheet_holdsWhatIsDocumented()
    {
        const auto sheet = contents(q(ORV_RESOURCES "/settings/DefaultNodeGraphStyleSheet.conf"));
        QCOMPARE(sheet.keys(), propertiesFrom(kInSheet).keys());
        QCOMPARE(sheet.size(), 87);
        const auto rows = documented(u"["_s);
        QCOMPARE(rows.keys(), sheet.keys());
        for (auto text = sheet.begin(); text != sheet.end(); ++text) {
            const bool isQuoted = text->userType() == QMetaType::QString; // a list without quotes
            QVERIFY2(isQuoted && rows.value(text.key()).value(0) == *text, qPrintable(text.key()));
        }
    }

    void derivedValues_areMadeOfWhatIsDocumented()
    {
        OrvNgStyle style;
        const auto rows = documented(u"Brushes and pens made of them"_s);
        QStringList expected = propertiesFrom(u"derived unset"_s).keys();
        for (const QByteArray& name : style.dynamicPropertyNames())
            expected += QString::fromLatin1(name);
        expected.sort();
        QCOMPARE(rows.keys(), expected);

        const auto defaults = StyleValues::of(style);
        const QMetaObject* const meta = style.metaObject();
        for (const QString& path : propertiesFrom(kInSheet).keys()) {
            const QString key = path.section(u'/', 1);
            const auto property = meta->property(meta->indexOfProperty(qPrintable(key)));
            QHash<QString, QVariant> before;
            for (const QString& name : expected)
                before[name] = valueOf(style, name);
            property.write(&style, otherThan(property.read(&style)));
            Q_EMIT style.colorsUpdated();
            for (const QString& name : expected)
                QVERIFY2((before[name] != valueOf(style, name)) == rows.value(name).contains(key),
                    qPrintable(key + u" changes "_s + name));
            property.reset(&style);
            Q_EMIT style.colorsUpdated();
            QCOMPARE(StyleValues::difference(style, defaults), QString());
        }
    }

    void fixedValues_areThoseDocumented()
    {
        const auto rows = documented(u"Fixed values"_s);
        QCOMPARE(rows.keys(), propertiesFrom(u"fixed"_s).keys());
        for (auto row = rows.begin(); row != rows.end(); ++row) {
            const QVariant value = valueOf(OrvNgStyle::instance(), row.key());
            const auto color = value.value<QColor>();
            const QString channels
                = u"(%1,%2,%3,"_s.arg(color.red()).arg(color.green()).arg(color.blue());
            QCOMPARE(row->value(0),
                color.isValid() ? channels + QString::number(color.alpha()) + u')'
                                : QString::number(value.toFloat()));
        }
    }

    void load_takesWhatPeopleWrite_data();
    void load_takesWhatPeopleWrite()
    {
        QFETCH(QByteArray, file);
        QFETCH(QByteArray, changed);
        const auto defaults = StyleValues::of(OrvNgStyle());
        writeUserSheet(file);
        OrvNgStyle style;
        QCOMPARE(StyleValues::difference(style, defaults).toUtf8(), changed);
        const ColorPair colors = style.getDefaultNodeColor();
        QCOMPARE(style.getDefaultNodeBrush().stops(), // derived from it
            QGradientStops({{0.0, colors.first}, {1.0, colors.second}}));
        QTEST(QByteArray::number(m_Recorder.messages().size()), "reports");
        style.savePreferences();
        const OrvNgStyle again;
        QCOMPARE(StyleValues::difference(again, defaults).toUtf8(), changed);
    }

    void load_whatIsNoFile_countsAsEmpty_data()
    {
        const TestTable<bool> row("isFolder");
        row("folder", true);
        row("file that must not be read", false);
    }
    void load_whatIsNoFile_countsAsEmpty()
    {
        QFETCH(bool, isFolder);
        OrvNgStyle style;
        writeUserSheet("[Edge]\nEdgePenWidth=7\n");
        if (isFolder)
            QVERIFY(QFile::remove(m_UserPath) && QDir().mkpath(m_UserPath));
        else
            QVERIFY(QFile::setPermissions(m_UserPath, {}));
        const uid_t user = geteuid();
        if (user == 0) // who may read everything
            QCOMPARE(seteuid(65534), 0);
        style.loadPreferences();
        QCOMPARE(seteuid(user), 0);
        QVERIFY(style.getEdgePenWidth() != 7);
        QVERIFY(m_Recorder.messages().join(u' ').contains(m_UserPath));
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
        const auto check = [&style](const QByteArray& name, int red, int width, Qt::PenStyle line) {
            const QPen pen(QColor(red, 0, 0), width, line, Qt::SquareCap, Qt::BevelJoin);
            QVERIFY2(style.property(name.constData()).value<QPen>() == pen, name.constData());
        };
        const QByteArray states[] = {"", "Selected", "Selectable"};
        for (int i = 0; i < 3; ++i) {
            check(states[i] + "NormalEdgePen", 1 + i, 7, Qt::SolidLine);
            check(states[i] + "PrefferedEdgePen", 1 + i, 8, Qt::SolidLine);
            check(states[i] + "SharedEdgePen", 1 + i, 7, Qt::DotLine);
        }
        check("HighlightForNodeInsertPen", 4, 7, Qt::SolidLine);
        check("SeveredEdgePen", 5, 7, Qt::DashDotDotLine);
        check("BypassedEdgePen", 1, 9, Qt::SolidLine);
        check("ActivatedEdgePen", 6, 7, Qt::SolidLine);
    }

    void save_everyValue_comesBack()
    {
        QLocale::setDefault(QLocale(QLocale::German)); // writes 0,5
        const QMap<QString, QString> forms{{u"int"_s, u"%1"_s}, {u"float"_s, u"%1.125"_s},
            {u"QPoint"_s, u"(%1,-2)"_s}, {u"QPointF"_s, u"(%1,0.125)"_s},
            {u"QColor"_s, u"(%1,2,3,4)"_s}, {u"OrvColor"_s, u"(1,2,3,%1)"_s},
            {u"QPair<QColor,QColor>"_s, u"(1,2,3,4),(5,%1,7,8)"_s}};
        QMap<QString, QVariant> expected;
        const auto keys = propertiesFrom(kInSheet);
        for (auto key = keys.begin(); key != keys.end(); ++key) { // another number for each
            expected.insert(key.key(), forms[*key].arg(100 + expected.size()));
            QSettings(m_UserPath, QSettings::IniFormat).setValue(key.key(), expected[key.key()]);
        }
        OrvNgStyle style;
        QCOMPARE(style.getSharedEdgePenWidth(),
            expected.take(u"Edge/SharedEdgePenWidth"_s).toInt()); // never written
        QCOMPARE(style.getSeveredEdgeColor().red(),
            100 + keys.keys().indexOf(u"Edge/SeveredEdgeColor"_s));
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
        QCOMPARE(contents(m_UserPath).keys().join(u' '),
            u"Edge/PrefferedEdgePenWidth Edge/SharedEdgePenWidth Own/Note"_s);
    }

    void save_nothingChanged_writesNothing()
    {
        OrvNgStyle().savePreferences();
        QVERIFY(!QFile::exists(m_UserPath));
    }

    void save_thatFails_isReportedAndLeavesTheOldFile_data()
    {
        const TestTable<QString> row("trouble");
        row("full disk", "disk");
        row("folder that takes no files", "folder");
        row("folder in place of the file", "file");
        row("no organisation", "organisation");
    }
    void save_thatFails_isReportedAndLeavesTheOldFile()
    {
        QFETCH(QString, trouble);
        const QByteArray old = "[Edge]\nEdgePenWidth=7\n";
        writeUserSheet(old);
        OrvNgStyle style;
        style.setEdgePenWidth(8);
        // A limit on the size of files fails a write half way, as a full disk does.
        rlimit limit{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &limit), 0);
        const rlimit small{trouble == u"disk" ? 5 : limit.rlim_cur, limit.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        if (trouble == u"file")
            QVERIFY(QFile::remove(m_UserPath) && QDir().mkpath(m_UserPath));
        if (trouble == u"organisation")
            QCoreApplication::setOrganizationName(QString());
        if (trouble == u"folder")
            QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, u"/proc"_s);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        style.savePreferences();
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, handler);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_Config.path());
        QCoreApplication::setOrganizationName(m_Organization);
        QCOMPARE(m_Recorder.messages().size(), 1);
        QVERIFY(m_Recorder.messages()[0].startsWith(u"[ !! ] "_s));
        QCOMPARE(style.getEdgePenWidth(), 8);
        if (trouble != u"file")
            QCOMPARE(fileBytes(m_UserPath), old);
    }

    // Of another process, or a text editor: its own keys stay, and of the style's the saved state counts.
    void save_fileChangedMeanwhile_keepsWhatIsNotTheStyles()
    {
        writeUserSheet("[Edge]\nEdgePenWidth=7\n");
        OrvNgStyle style;
        writeUserSheet("[Edge]\nPrefferedEdgePenWidth=9\n[Own]\nNote=kept\n");
        style.setBypassedEdgePenWidth(11);
        style.savePreferences();
        QCOMPARE(contents(m_UserPath),
            (QMap<QString, QVariant>{{u"Edge/EdgePenWidth"_s, u"7"_s},
                {u"Edge/BypassedEdgePenWidth"_s, u"11"_s}, {u"Own/Note"_s, u"kept"_s}}));
    }

    void save_intoMalformedFile_keepsCopy()
    {
        const QByteArray malformed = "[Edge]\nEdgePenWidth=7\nno value on this line\n";
        writeUserSheet(malformed);
        OrvNgStyle style;
        QCOMPARE(style.getEdgePenWidth(), 7);
        QCOMPARE(m_Recorder.messages().size(), 1);
        QVERIFY(m_Recorder.messages()[0].startsWith(u"[ !! ] "_s));
        QVERIFY(m_Recorder.messages()[0].contains(m_UserPath));
        style.setPrefferedEdgePenWidth(9);
        style.savePreferences();
        QCOMPARE(fileBytes(m_UserPath + u".unreadable"_s), malformed);
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
    int m_Number = 0;
    QString m_Organization, m_UserPath;
    DebugRecorder m_Recorder;
};

void tst_OrvNgStyle::load_takesWhatPeopleWrite_data()
{
    addTestRows(
        ORV_TEST_DATA "/style-sheets.txt", "sheets", {"what", "file", "changed", "reports"});
    const auto row
        = [](const char* what, const QByteArray& file, const char* changed, const char* reports) {
              QTest::newRow(what) << QByteArray(what) << file << QByteArray(changed)
                                  << QByteArray(reports);
          };
    const QByteArray width = "[Edge]\nEdgePenWidth=7\n";
    row("empty", "", "", "0");
    row("byte order mark", "\xef\xbb\xbf" + width, "EdgePenWidth=7", "0");
    row("UTF-16", QByteArray("\xff\xfe[\0E\0]\0\n\0a\0=\0b\0", 16), "", "1");
    row("10 MB", ";" + QByteArray(10'000'000, 'x') + '\n' + width, "EdgePenWidth=7", "0");
}

QTEST_GUILESS_MAIN(tst_OrvNgStyle)
#include "tst_OrvNgStyle.moc"
