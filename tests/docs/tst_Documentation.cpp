#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"

#include <OrvCore/OrvResourceInfo.h>

#include <QDir>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString operator""_q(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, int(size));
}

const QString kStyleSheet = "docs/style-sheet.md"_q;
const QString kInteraction = "docs/interaction.md"_q;
const QString kInBackticks = "`([^`\\n]+)`"_q;
const QStringList kFromSheet{"file"_q, "read-only"_q};

QString read(const QString& path)
{
    QFile file(ORV_SOURCE_DIR "/"_q + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The texts of the folders' files, by name without ending.
QHash<QString, QString> readAll(const QStringList& folders, const QString& pattern)
{
    QHash<QString, QString> texts;
    for (const QString& folder : folders) {
        const QDir dir(ORV_SOURCE_DIR "/src/"_q + folder);
        for (const QFileInfo& file : dir.entryInfoList({pattern}))
            texts.insert(file.baseName(), read("src/"_q + folder + u'/' + file.fileName()));
    }
    return texts;
}

QStringList matches(const QString& text, const QString& pattern)
{
    QStringList found;
    auto match = QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    while (match.hasNext())
        found += match.next().captured(1);
    return found;
}

bool hasWord(const QString& text, const QString& word)
{
    return text.contains(QRegularExpression("\\b%1\\b"_q.arg(word)));
}

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

/// A row of a table: the name that its first cell begins with, and what stands in backticks in its
/// second. Below a heading in brackets, a group of the file, the name is "group/name".
struct Row
{
    QString m_Name;
    QStringList m_Values;
};

QVector<Row> rowsBelow(const QString& document, const QString& headingStart)
{
    QVector<Row> rows;
    QString heading;
    for (const QString& line : read(document).split(u'\n')) {
        if (line.startsWith(u'#'))
            heading = line.section(u' ', 1);
        if (!line.startsWith("| `"_q) || !heading.startsWith(headingStart))
            continue;
        QString name = matches(line.section(u'|', 1, 1), kInBackticks).value(0);
        if (heading.startsWith(u'['))
            name.prepend(heading.mid(1).chopped(1) + u'/');
        rows.append({name, matches(line.section(u'|', 2, 2), kInBackticks)});
    }
    return rows;
}

QStringList namesOf(const QVector<Row>& rows)
{
    QStringList names;
    for (const Row& row : rows)
        names += row.m_Name;
    return sorted(names);
}

/// The names of the properties of a source ("file", "derived" …), with their group where they have one.
QStringList properties(const QStringList& sources)
{
    QStringList names;
    for (const QString& line : read("tests/data/style-properties.txt"_q).split(u'\n')) {
        const QStringList words = line.simplified().split(u' ');
        if (!line.startsWith(u'#') && sources.contains(words.value(2)))
            names += (words.value(3) == "-"_q ? QString() : words.value(3) + u'/') + words.at(0);
    }
    return sorted(names);
}

QVariant styleValue(const QString& name)
{
    const QVariant value = OrvNgStyle::instance().property(name.toLatin1().constData());
    // Variants know how to compare brushes and pens, but not gradients.
    return value.userType() == qMetaTypeId<QLinearGradient>()
        ? QVariant(QBrush(value.value<QLinearGradient>()))
        : value;
}

/// Another value of the same type.
QVariant otherThan(const QVariant& value)
{
    const QColor color(1, 2, 3, 4);
    if (value.userType() == qMetaTypeId<OrvColor>())
        return QVariant::fromValue(OrvColor(color));
    if (value.userType() == QMetaType::QColor)
        return color;
    if (value.userType() == qMetaTypeId<QPair<QColor, QColor>>())
        return QVariant::fromValue(qMakePair(color, color));
    if (value.userType() == QMetaType::QPoint || value.userType() == QMetaType::QPointF)
        return QPoint(987, 654);
    return value.toInt() + 7;
}

/// The public headers of the three libraries, by class.
QHash<QString, QString> publicHeaders()
{
    QHash<QString, QString> headers = readAll({"OrvCore"_q, "OrvCoreModules"_q}, "*.h"_q);
    const QString list = read("src/OrvNodeGraph/CMakeLists.txt"_q)
                             .section("PUBLIC_HEADERS"_q, -1)
                             .section("SOURCES"_q, 0, 0);
    for (const QString& name : matches(list, "(\\w+)\\.h"_q))
        headers.insert(name, read("src/OrvNodeGraph/%1.h"_q.arg(name)));
    return headers;
}

QStringList signalsOf(const QString& header)
{
    const QRegularExpression end(
        "^(public|protected|private|\\};)"_q, QRegularExpression::MultilineOption);
    return matches(header.section("Q_SIGNALS:"_q, 1).section(end, 0, 0), "^    void (\\w+)\\("_q);
}

/// What a host meets while a user edits: signals, notify hooks, and the modes that they speak of.
QStringList hostFacingNames()
{
    QStringList names;
    const QHash<QString, QString> headers = publicHeaders();
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        if (!header.key().startsWith("OrvNg"_q) || header.key() == "OrvNgStyle"_q)
            continue;
        names += signalsOf(*header) + matches(*header, "virtual void (notify\\w+)\\("_q);
        for (const QString& name : {"OrvNgSelectMode"_q, "PortListMode"_q, "OrvNavigationMode"_q,
                 "OrvCursorTrackingMode"_q})
            names += matches(
                header->section("enum "_q + name + u' ', 1).section(u'}', 0, 0).section(u'{', 1),
                "^ +(\\w+)"_q);
    }
    return names;
}

/// Whether a name that a document gives in backticks is none of the code, or exists there.
bool isRight(const QString& code, const QHash<QString, QString>& headers)
{
    static const QRegularExpression s_Member("^(Orv\\w+)(::(\\w+))?(\\(\\))?$"_q);
    static const QRegularExpression s_Function("^(\\w+)\\(\\)$"_q);
    static const QRegularExpression s_Name(
        "^([A-Z]?[a-z]+[A-Z]\\w*|[A-Z]+(_[A-Z0-9]+)+|_[a-z]\\w*)$"_q);
    const QString everything = headers.values().join(u'\n');

    if (const auto member = s_Member.match(code); member.hasMatch()) {
        const auto header = headers.find(member.captured(1));
        if (header == headers.end())
            return hasWord(everything, member.captured(1));
        return member.captured(3).isEmpty() || hasWord(*header, member.captured(3));
    }
    if (const auto function = s_Function.match(code); function.hasMatch())
        return everything.contains(function.captured(1) + u'(');
    return !s_Name.match(code).hasMatch() || hasWord(everything, code);
}

} // namespace

/// The documents for artists and hosts against the style, the headers and the sources.
class tst_Documentation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The values of the document are the default sheet, those of the installed sheet the user's:
    /// where they agree, a reset changes nothing.
    void initTestCase()
    {
        qputenv("XDG_CONFIG_HOME", m_Dir.path().toLocal8Bit());
        QCoreApplication::setOrganizationName("settings"_q);
        QVERIFY(QDir(m_Dir.path()).mkpath("settings"_q));
        QVERIFY(QFile::copy(ORV_RESOURCES "/settings/DefaultNodeGraphStyleSheet.conf"_q,
            m_Dir.filePath("settings/NodeGraphStyleSheetVer3.ini"_q)));
        QSettings sheet(
            m_Dir.filePath("settings/DefaultNodeGraphStyleSheet.conf"_q), QSettings::IniFormat);
        for (const Row& row : rowsBelow(kStyleSheet, "["_q))
            sheet.setValue(row.m_Name, row.m_Values.value(0));
        sheet.sync();
        OrvResourceInfo::instance().setResourceRoot(m_Dir.path());
    }

    void styleSheet_listsEveryKeyInItsGroupWithItsDefault()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        const QStringList keys = namesOf(rowsBelow(kStyleSheet, "["_q));
        QCOMPARE(keys, properties(kFromSheet));
        for (const QString& key : keys) {
            const QByteArray name = key.section(u'/', 1).toLatin1();
            const QMetaObject* meta = style.metaObject();
            const QMetaProperty property = meta->property(meta->indexOfProperty(name.constData()));
            QSignalSpy changed(&style, property.notifySignal());
            QVERIFY2(property.reset(&style) && changed.isEmpty(), name.constData());
        }
    }

    void styleSheet_saysWhatIsMadeOfWhat()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        const QVector<Row> rows = rowsBelow(kStyleSheet, "Brushes and pens made of them"_q);
        QStringList expected = properties({"derived"_q, "unset"_q});
        for (const QByteArray& name : style.dynamicPropertyNames())
            expected += QString::fromLatin1(name);
        QCOMPARE(namesOf(rows), sorted(expected));

        for (const QString& path : properties(kFromSheet)) {
            const QString key = path.section(u'/', 1);
            QVariantList before;
            for (const Row& row : rows)
                before.append(styleValue(row.m_Name));
            const QVariant value = styleValue(key);
            style.setProperty(key.toLatin1().constData(), otherThan(value));
            Q_EMIT style.colorsUpdated();
            for (int i = 0; i < rows.size(); ++i) {
                const bool isChanged = before.at(i) != styleValue(rows.at(i).m_Name);
                QVERIFY2(isChanged == rows.at(i).m_Values.contains(key),
                    qPrintable(key + " changes "_q + rows.at(i).m_Name));
            }
            style.setProperty(key.toLatin1().constData(), value);
            Q_EMIT style.colorsUpdated();
        }
    }

    void styleSheet_givesTheFixedValues()
    {
        const QVector<Row> rows = rowsBelow(kStyleSheet, "Fixed values"_q);
        QCOMPARE(namesOf(rows), properties({"fixed"_q}));
        for (const Row& row : rows) {
            const QVariant value = styleValue(row.m_Name);
            const auto color = value.value<QColor>();
            const QString channels = "(%1,%2,%3,%4)"_q.arg(color.red())
                                         .arg(color.green())
                                         .arg(color.blue())
                                         .arg(color.alpha());
            QCOMPARE(row.m_Values.value(0),
                color.isValid() ? channels : QString::number(value.toFloat()));
        }
    }

    void interaction_describesWhatHostsMeet()
    {
        // The reading of headers, against what the compiler made of one.
        QStringList nodeSignals;
        const QMetaObject& node = OrvNgNode::staticMetaObject;
        for (int i = node.methodOffset(); i < node.methodCount(); ++i) {
            if (node.method(i).methodType() == QMetaMethod::Signal)
                nodeSignals += QString::fromLatin1(node.method(i).name());
        }
        QCOMPARE(signalsOf(publicHeaders()["OrvNgNode"_q]), nodeSignals);

        const QString described = matches(read(kInteraction), kInBackticks).join(u'\n');
        const QStringList names = hostFacingNames();
        for (const QString& name : names)
            QVERIFY2(hasWord(described, name), qPrintable(name + " is missing"_q));
        for (const QString& name : {"SelectToggle"_q, "PORT_LIST_T2B"_q, "NavigationMinimap"_q,
                 "CURSOR_TRACKING_SHAKE"_q, "notifyInputSourceChange"_q})
            QVERIFY2(names.contains(name), qPrintable(name));
    }

    void everyNameGivenExists()
    {
        QHash<QString, QString> headers = publicHeaders();
        // Categories' brushes are properties that exist in the running program only.
        for (const QByteArray& name : OrvNgStyle::instance().dynamicPropertyNames())
            headers["OrvNgStyle"_q] += u' ' + QString::fromLatin1(name);
        QStringList wrong;
        for (const QString& document : {kStyleSheet, kInteraction}) {
            const QStringList names = matches(read(document), kInBackticks);
            QVERIFY(names.size() > 50);
            for (const QString& name : names)
                wrong += isRight(name, headers) ? QStringList() : QStringList(name);
        }
        QCOMPARE(wrong, QStringList());
    }

    void undoTexts_areThoseOfTheSources()
    {
        const QString sources = readAll({"OrvNodeGraph"_q}, "*.cpp"_q).values().join(u'\n');
        const QStringList texts = namesOf(rowsBelow(kInteraction, "Undo steps"_q));
        QVERIFY(texts.size() > 1);
        for (QString text : texts) {
            text.replace("\""_q, "\\\""_q);
            QVERIFY2(sources.contains(u'"' + text + u'"'), qPrintable(text));
        }
    }

private:
    QTemporaryDir m_Dir; ///< settings of the host, and the user's configuration
};

QTEST_GUILESS_MAIN(tst_Documentation)
#include "tst_Documentation.moc"
