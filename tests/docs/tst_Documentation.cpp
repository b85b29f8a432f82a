#include "OrvNodeGraph/OrvNgNode.h"
#include "OrvNodeGraph/OrvNgStyle.h"
#include "support/TestTable.h"

#include <OrvCore/OrvResourceInfo.h>

#include <QDir>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString kStyleSheet = QStringLiteral("docs/style-sheet.md");
const QString kInteraction = QStringLiteral("docs/interaction.md");

QString read(const QString& path)
{
    QFile file(QStringLiteral(ORV_SOURCE_DIR "/") + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
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
    return text.contains(QRegularExpression(QStringLiteral("\\b%1\\b").arg(word)));
}

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

/// A row of a table of a document: the heading it stands below, and its cells.
struct Row
{
    QString m_Heading;
    QStringList m_Cells;

    /// What stands in backticks in a cell.
    QStringList code(int cell) const
    {
        return matches(m_Cells.value(cell), QStringLiteral("`([^`]+)`"));
    }
};

/// The rows whose first cell begins with a backtick.
QVector<Row> rowsOf(const QString& document)
{
    QVector<Row> rows;
    QString heading;
    for (const QString& line : read(document).split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1Char('#')))
            heading = line.section(QLatin1Char(' '), 1);
        if (!line.startsWith(QLatin1String("| `")))
            continue;
        QStringList cells = line.split(QLatin1Char('|')).mid(1);
        for (QString& cell : cells)
            cell = cell.trimmed();
        rows.append({heading, cells});
    }
    return rows;
}

QVector<Row> rowsBelow(const QString& document, const QString& heading)
{
    QVector<Row> rows = rowsOf(document);
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                   [&](const Row& row) { return row.m_Heading != heading; }),
        rows.end());
    return rows;
}

/// The rows of the key tables: their headings are the groups of the file, in brackets.
QVector<Row> keyRows()
{
    QVector<Row> rows = rowsOf(kStyleSheet);
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                   [](const Row& row) { return !row.m_Heading.startsWith(QLatin1Char('[')); }),
        rows.end());
    return rows;
}

QString groupAndKey(const Row& row)
{
    return row.m_Heading.mid(1, row.m_Heading.size() - 2) + QLatin1Char('/') + row.code(0).value(0);
}

/// The names of the properties of a source ("file", "derived" …), with their group where they have one.
QStringList properties(const QStringList& sources)
{
    QStringList names;
    const QString list = read(QStringLiteral("tests/data/style-properties.txt"));
    for (const QString& line : list.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList words = line.simplified().split(QLatin1Char(' '));
        if (!line.startsWith(QLatin1Char('#')) && sources.contains(words.value(2))) {
            const QString group = words.value(3) + QLatin1Char('/');
            names += (group == QLatin1String("-/") ? QString() : group) + words.value(0);
        }
    }
    return names;
}

QVariant styleValue(const QString& name)
{
    return OrvNgStyle::instance().property(name.toLatin1().constData());
}

/// Variants know how to compare brushes and pens, but not gradients.
bool areEqual(const QVariant& a, const QVariant& b)
{
    return a.userType() == qMetaTypeId<QLinearGradient>()
        ? a.value<QLinearGradient>() == b.value<QLinearGradient>()
        : a == b;
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
    if (value.userType() == QMetaType::QPoint)
        return QPoint(987, 654);
    if (value.userType() == QMetaType::QPointF)
        return QPointF(987, 654);
    return value.userType() == QMetaType::Int ? QVariant(value.toInt() + 7)
                                              : QVariant::fromValue(value.toFloat() + 7.F);
}

/// The public headers of the three libraries, by class.
QHash<QString, QString> publicHeaders()
{
    QHash<QString, QString> headers;
    const QString list = read(QStringLiteral("src/OrvNodeGraph/CMakeLists.txt"))
                             .section(QStringLiteral("PUBLIC_HEADERS"), -1)
                             .section(QStringLiteral("SOURCES"), 0, 0);
    for (const QString& name : matches(list, QStringLiteral("(\\w+)\\.h")))
        headers.insert(name, read(QStringLiteral("src/OrvNodeGraph/%1.h").arg(name)));
    for (const char* library : {"OrvCore", "OrvCoreModules"}) {
        const QString folder = QStringLiteral("src/%1/").arg(QLatin1String(library));
        const QDir dir(QStringLiteral(ORV_SOURCE_DIR "/") + folder);
        for (const QString& file : dir.entryList({QStringLiteral("*.h")}))
            headers.insert(file.chopped(2), read(folder + file));
    }
    return headers;
}

QStringList signalsOf(const QString& header)
{
    const QString section
        = header.section(QStringLiteral("Q_SIGNALS:"), 1)
              .section(QRegularExpression(QStringLiteral("^(public|protected|private|\\};)"),
                           QRegularExpression::MultilineOption),
                  0, 0);
    return matches(section, QStringLiteral("^    void (\\w+)\\("));
}

QStringList enumerators(const QString& header, const QString& name)
{
    const QString body = header.section(QStringLiteral("enum %1 ").arg(name), 1)
                             .section(QLatin1Char('}'), 0, 0)
                             .section(QLatin1Char('{'), 1);
    return matches(body, QStringLiteral("^ +(\\w+)"));
}

/// What a host meets while a user edits: signals, notify hooks, and the modes that they speak of.
QStringList hostFacingNames()
{
    QStringList names;
    const QHash<QString, QString> headers = publicHeaders();
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        if (!header.key().startsWith(QLatin1String("OrvNg"))
            || header.key() == QLatin1String("OrvNgStyle"))
            continue;
        names += signalsOf(*header);
        names += matches(*header, QStringLiteral("virtual void (notify\\w+)\\("));
        for (const char* name :
            {"OrvNgSelectMode", "PortListMode", "OrvNavigationMode", "OrvCursorTrackingMode"})
            names += enumerators(*header, QLatin1String(name));
    }
    names.removeDuplicates();
    return names;
}

/// Why a name that a document gives in backticks is wrong; empty when it is not.
QString complaint(const QString& code, const QHash<QString, QString>& headers)
{
    static const QRegularExpression s_Member(QStringLiteral("^(Orv\\w+)(::(\\w+))?(\\(\\))?$"));
    static const QRegularExpression s_Function(QStringLiteral("^(\\w+)\\(\\)$"));
    static const QRegularExpression s_Name(
        QStringLiteral("^([A-Z]?[a-z]+[A-Z]\\w*|[A-Z]+(_[A-Z0-9]+)+|_[a-z]\\w*)$"));
    const QString everything = QStringList(headers.values()).join(QLatin1Char('\n'));

    if (const auto member = s_Member.match(code); member.hasMatch()) {
        const QString name = member.captured(1);
        if (!headers.contains(name))
            return hasWord(everything, name) ? QString() : QStringLiteral("no such class");
        return member.captured(3).isEmpty() || hasWord(headers[name], member.captured(3))
            ? QString()
            : QStringLiteral("the class declares no such member");
    }
    if (const auto function = s_Function.match(code); function.hasMatch())
        return everything.contains(function.captured(1) + QLatin1Char('('))
            ? QString()
            : QStringLiteral("no such function");
    return !s_Name.match(code).hasMatch() || hasWord(everything, code)
        ? QString()
        : QStringLiteral("no such name");
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
        QCoreApplication::setOrganizationName(QStringLiteral("OrvDocumentationTest"));
        const QString user
            = m_Dir.filePath(QStringLiteral("OrvDocumentationTest/NodeGraphStyleSheetVer3.ini"));
        QVERIFY(QDir(m_Dir.path()).mkpath(QFileInfo(user).path()));
        QVERIFY(QFile::copy(
            QStringLiteral(ORV_RESOURCES "/settings/DefaultNodeGraphStyleSheet.conf"), user));

        QVERIFY(QDir(m_Dir.path()).mkpath(QStringLiteral("settings")));
        QSettings sheet(m_Dir.filePath(QStringLiteral("settings/DefaultNodeGraphStyleSheet.conf")),
            QSettings::IniFormat);
        for (const Row& row : keyRows())
            sheet.setValue(groupAndKey(row), row.code(1).value(0));
        sheet.sync();
        OrvResourceInfo::instance().setResourceRoot(m_Dir.path());
    }

    void styleSheet_listsEveryKeyInItsGroup()
    {
        QStringList keys;
        for (const Row& row : keyRows())
            keys += groupAndKey(row);
        QCOMPARE(sorted(keys),
            sorted(properties({QStringLiteral("file"), QStringLiteral("read-only")})));
    }

    void styleSheet_givesTheDefaultsOfTheInstalledSheet()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        for (const Row& row : keyRows()) {
            const QByteArray name = row.code(0).value(0).toLatin1();
            const QMetaObject* meta = style.metaObject();
            const QMetaProperty property = meta->property(meta->indexOfProperty(name.constData()));
            QSignalSpy changed(&style, property.notifySignal());
            QVERIFY2(property.reset(&style), name.constData());
            QVERIFY2(changed.isEmpty(), name.constData());
        }
    }

    void styleSheet_saysWhatIsMadeOfWhat()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        const QVector<Row> rows
            = rowsBelow(kStyleSheet, QStringLiteral("Brushes and pens made of them"));
        QStringList names;
        for (const Row& row : rows)
            names += row.code(0);
        QStringList expected = properties({QStringLiteral("derived"), QStringLiteral("unset")});
        for (const QByteArray& name : style.dynamicPropertyNames())
            expected += QString::fromLatin1(name);
        QCOMPARE(sorted(names), sorted(expected));

        for (const QString& path :
            properties({QStringLiteral("file"), QStringLiteral("read-only")})) {
            const QString key = path.section(QLatin1Char('/'), 1);
            QVariantMap before;
            for (const QString& name : qAsConst(names))
                before.insert(name, styleValue(name));
            const QVariant value = styleValue(key);
            style.setProperty(key.toLatin1().constData(), otherThan(value));
            Q_EMIT style.colorsUpdated();

            QStringList changed, documented;
            for (const Row& row : rows) {
                const QString name = row.code(0).value(0);
                if (!areEqual(before[name], styleValue(name)))
                    changed += name;
                if (row.code(1).contains(key))
                    documented += name;
            }
            style.setProperty(key.toLatin1().constData(), value);
            Q_EMIT style.colorsUpdated();
            QVERIFY2(changed == documented,
                qPrintable(key + QStringLiteral(" changes ") + changed.join(QLatin1Char(' '))));
        }
    }

    void styleSheet_givesTheFixedValues()
    {
        QStringList names;
        for (const Row& row : rowsBelow(kStyleSheet, QStringLiteral("Fixed values"))) {
            const QString name = row.code(0).value(0);
            names += name;
            const QVariant value = styleValue(name);
            const auto color = value.value<QColor>();
            QCOMPARE(row.code(1).value(0),
                value.userType() == QMetaType::QColor ? QStringLiteral("(%1,%2,%3,%4)")
                                                            .arg(color.red())
                                                            .arg(color.green())
                                                            .arg(color.blue())
                                                            .arg(color.alpha())
                                                      : QString::number(value.toFloat()));
        }
        QCOMPARE(sorted(names), sorted(properties({QStringLiteral("fixed")})));
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
        QCOMPARE(signalsOf(publicHeaders()[QStringLiteral("OrvNgNode")]), nodeSignals);

        const QString described
            = matches(read(kInteraction), QStringLiteral("`([^`\\n]+)`")).join(QLatin1Char('\n'));
        for (const QString& name : hostFacingNames())
            QVERIFY2(hasWord(described, name), qPrintable(name + QStringLiteral(" is missing")));
        for (const char* enumerator : {"SelectToggle", "PORT_LIST_T2B", "NavigationMinimap",
                 "CURSOR_TRACKING_SHAKE", "notifyInputSourceChange"})
            QVERIFY2(hostFacingNames().contains(QLatin1String(enumerator)), enumerator);
    }

    void everyNameGivenExists_data()
    {
        const TestTable<QString> document("document");
        document("style sheet", kStyleSheet);
        document("interaction", kInteraction);
    }

    void everyNameGivenExists()
    {
        QFETCH(QString, document);
        QHash<QString, QString> headers = publicHeaders();
        // Categories' brushes are properties that exist in the running program only.
        for (const QByteArray& name : OrvNgStyle::instance().dynamicPropertyNames())
            headers[QStringLiteral("OrvNgStyle")] += QLatin1Char(' ') + QString::fromLatin1(name);
        const QStringList names = matches(read(document), QStringLiteral("`([^`\\n]+)`"));
        QVERIFY(names.size() > 50);
        QStringList complaints;
        for (const QString& name : names) {
            const QString why = complaint(name, headers);
            if (!why.isEmpty())
                complaints += name + QStringLiteral(": ") + why;
        }
        complaints.removeDuplicates();
        QVERIFY2(complaints.isEmpty(), qPrintable(complaints.join(QLatin1Char('\n'))));
    }

    void undoTexts_areThoseOfTheSources()
    {
        QString sources;
        const QDir dir(QStringLiteral(ORV_SOURCE_DIR "/src/OrvNodeGraph"));
        for (const QString& file : dir.entryList({QStringLiteral("*.cpp")}))
            sources += read(QStringLiteral("src/OrvNodeGraph/") + file);
        const QVector<Row> rows = rowsBelow(kInteraction, QStringLiteral("Undo steps"));
        QVERIFY(rows.size() > 1);
        for (const Row& row : rows) {
            QString literal = row.code(0).value(0);
            literal.replace(QLatin1Char('"'), QLatin1String("\\\""));
            QVERIFY2(sources.contains(QLatin1Char('"') + literal + QLatin1Char('"')),
                qPrintable(literal));
        }
    }

private:
    QTemporaryDir m_Dir; ///< settings of the host, and the user's configuration
};

QTEST_GUILESS_MAIN(tst_Documentation)
#include "tst_Documentation.moc"
