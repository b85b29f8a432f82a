#include "OrvNodeGraph/OrvNgStyle.h"

#include <OrvCore/OrvResourceInfo.h>

#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString operator""_q(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, int(size));
}

const QStringList kFromSheet{"file"_q, "read-only"_q};

QString read(const QString& path)
{
    QFile file(ORV_SOURCE_DIR "/"_q + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList backticked(const QString& text)
{
    QStringList found;
    auto match = QRegularExpression("`([^`\\n]+)`"_q).globalMatch(text);
    while (match.hasNext())
        found += match.next().captured(1);
    return found;
}

/// Of tables below headings: the name that the first cell begins with, and what stands in backticks in the
/// second. Below a heading in brackets, a group of the file, the name is "group/name".
QMultiMap<QString, QStringList> rowsBelow(const QString& headingStart)
{
    QMultiMap<QString, QStringList> rows;
    QString heading;
    for (const QString& line : read("docs/style-sheet.md"_q).split(u'\n')) {
        if (line.startsWith(u'#'))
            heading = line.section(u' ', 1);
        if (!line.startsWith("| `"_q) || !heading.startsWith(headingStart))
            continue;
        const QString group
            = heading.startsWith(u'[') ? heading.mid(1).chopped(1) + u'/' : QString();
        rows.insert(group + backticked(line.section(u'|', 1, 1)).value(0),
            backticked(line.section(u'|', 2, 2)));
    }
    return rows;
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
    names.sort();
    return names;
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
    for (const QVariant& other : {QVariant::fromValue(OrvColor(color)), QVariant(color),
             QVariant::fromValue(qMakePair(color, color)), QVariant(QPoint(987, 654)),
             QVariant(QPointF(987, 654))}) {
        if (other.userType() == value.userType())
            return other;
    }
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
        const auto rows = rowsBelow("["_q);
        for (auto row = rows.begin(); row != rows.end(); ++row)
            sheet.setValue(row.key(), row.value().value(0));
        sheet.sync();
        OrvResourceInfo::instance().setResourceRoot(m_Dir.path());
    }

    void styleSheet_listsEveryKeyInItsGroupWithItsDefault()
    {
        OrvNgStyle& style = OrvNgStyle::instance();
        const QStringList keys = rowsBelow("["_q).keys();
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
        const auto rows = rowsBelow("Brushes and pens made of them"_q);
        QStringList expected = properties({"derived"_q, "unset"_q});
        for (const QByteArray& name : style.dynamicPropertyNames())
            expected += QString::fromLatin1(name);
        expected.sort();
        QCOMPARE(rows.keys(), expected);

        for (const QString& path : properties(kFromSheet)) {
            const QString key = path.section(u'/', 1);
            QHash<QString, QVariant> before;
            for (const QString& name : expected)
                before[name] = styleValue(name);
            const QVariant value = styleValue(key);
            style.setProperty(key.toLatin1().constData(), otherThan(value));
            Q_EMIT style.colorsUpdated();
            for (const QString& name : expected)
                QVERIFY2((before[name] != styleValue(name)) == rows.value(name).contains(key),
                    qPrintable(key + " changes "_q + name));
            style.setProperty(key.toLatin1().constData(), value);
            Q_EMIT style.colorsUpdated();
        }
    }

    void styleSheet_givesTheFixedValues()
    {
        const auto rows = rowsBelow("Fixed values"_q);
        QCOMPARE(rows.keys(), properties({"fixed"_q}));
        for (auto row = rows.begin(); row != rows.end(); ++row) {
            const QVariant value = styleValue(row.key());
            const auto color = value.value<QColor>();
            const QString channels
                = "(%1,%2,%3,"_q.arg(color.red()).arg(color.green()).arg(color.blue());
            QCOMPARE(row.value().value(0),
                color.isValid() ? channels + QString::number(color.alpha()) + u')'
                                : QString::number(value.toFloat()));
        }
    }

private:
    QTemporaryDir m_Dir; ///< settings of the host, and the user's configuration
};

QTEST_GUILESS_MAIN(tst_Documentation)
#include "tst_Documentation.moc"
