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
const QString kInBackticks = "`([^`\\n]+)`"_q;
const QStringList kFromSheet{"file"_q, "read-only"_q};

QString read(const QString& path)
{
    QFile file(ORV_SOURCE_DIR "/"_q + path);
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

} // namespace

/// The document of the style sheet against the style.
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

private:
    QTemporaryDir m_Dir; ///< settings of the host, and the user's configuration
};

QTEST_GUILESS_MAIN(tst_Documentation)
#include "tst_Documentation.moc"
