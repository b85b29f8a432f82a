#include <QDir>
#include <QHash>
#include <QRegularExpression>
#include <QtTest>

namespace {

const QString kRoot = QStringLiteral(ORV_SOURCE_DIR);

QString read(const QString& path)
{
    QFile file(kRoot + QLatin1Char('/') + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList includes(const QString& text, const QString& folder)
{
    const QRegularExpression line(
        QStringLiteral("^#include [\"<](%1/[A-Za-z]+\\.h)[\">]").arg(folder),
        QRegularExpression::MultilineOption);
    QStringList found;
    auto match = line.globalMatch(text);
    while (match.hasNext())
        found += match.next().captured(1);
    return found;
}

QStringList sourcesBelow(const QString& folder)
{
    const QDir dir(kRoot + QLatin1Char('/') + folder);
    QStringList paths;
    const QStringList names = dir.entryList({QStringLiteral("*.h"), QStringLiteral("*.cpp")});
    for (const QString& name : names)
        paths += folder + QLatin1Char('/') + name;
    return paths;
}

/// The library's list file as it is read by people: which group each class belongs to, in order of data
/// flow, and which headers are public.
struct ListFile
{
    QHash<QString, int> m_GroupOfClass;
    QStringList m_PublicHeaders;

    ListFile()
    {
        QStringList groups;
        int group = -1;
        bool isPublic = false;
        const QStringList lines
            = read(QStringLiteral("src/OrvNodeGraph/CMakeLists.txt")).split(QLatin1Char('\n'));
        for (const QString& raw : lines) {
            const QString line = raw.trimmed();
            if (line == QLatin1String("PUBLIC_HEADERS") || line == QLatin1String("SOURCES"))
                isPublic = line == QLatin1String("PUBLIC_HEADERS");
            else if (line.startsWith(QLatin1String("# ")) && raw.startsWith(QLatin1Char(' '))) {
                if (!groups.contains(line))
                    groups += line;
                group = groups.indexOf(line);
            } else if (line.endsWith(QLatin1String(".h")) || line.endsWith(QLatin1String(".cpp"))) {
                const QString name = line.section(QLatin1Char('.'), 0, 0);
                if (isPublic)
                    m_PublicHeaders += QStringLiteral("OrvNodeGraph/") + line;
                else
                    m_GroupOfClass.insert(name, group);
            }
        }
    }
};

QString className(const QString& path)
{
    return path.section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
}

} // namespace

/// The rules of who may know whom, read off the #include lines.
class tst_Layering : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aGroupIncludesOnlyGroupsAboveIt();
    void everySourceIsListed();
    void libraryUsesNoOtherFrameworkHeader();
    void sampleHostUsesOnlyPublicHeaders();
    void numbersAreReadInTheCLocale();
};

void tst_Layering::aGroupIncludesOnlyGroupsAboveIt()
{
    // Where a lower group must know a higher one, it does so in one file only.
    const QStringList allowed{QStringLiteral("OrvNgNode > OrvNgView"),
        QStringLiteral("OrvNgEdgeEnds > OrvNgExtendedNode"),
        QStringLiteral("OrvNgBackdropNode > OrvNgView")};
    const ListFile list;
    QVERIFY(list.m_GroupOfClass.value(QStringLiteral("OrvNgView")) >= 3);
    QStringList broken;
    for (const QString& path : sourcesBelow(QStringLiteral("src/OrvNodeGraph"))) {
        const QString user = className(path);
        for (const QString& header : includes(read(path), QStringLiteral("OrvNodeGraph"))) {
            const QString used = className(header);
            const QString edge = user + QStringLiteral(" > ") + used;
            if (list.m_GroupOfClass.value(used) > list.m_GroupOfClass.value(user)
                && !allowed.contains(edge))
                broken += edge;
        }
    }
    QCOMPARE(broken, QStringList());
}

void tst_Layering::everySourceIsListed()
{
    const ListFile list;
    QStringList missing;
    for (const QString& path : sourcesBelow(QStringLiteral("src/OrvNodeGraph"))) {
        if (path.endsWith(QLatin1String(".cpp")) && !list.m_GroupOfClass.contains(className(path)))
            missing += path;
    }
    QCOMPARE(missing, QStringList());
}

void tst_Layering::libraryUsesNoOtherFrameworkHeader()
{
    const QStringList offered
        = includes(read(QStringLiteral("tests/data/host-framework-headers.txt")),
            QStringLiteral("OrvCore[A-Za-z]*"));
    QVERIFY(!offered.isEmpty());
    QStringList broken;
    for (const QString& path : sourcesBelow(QStringLiteral("src/OrvNodeGraph"))) {
        for (const QString& header : includes(read(path), QStringLiteral("OrvCore[A-Za-z]*"))) {
            if (!offered.contains(header))
                broken += path + QStringLiteral(" > ") + header;
        }
    }
    QCOMPARE(broken, QStringList());
}

void tst_Layering::sampleHostUsesOnlyPublicHeaders()
{
    const ListFile list;
    QStringList broken;
    int uses = 0;
    const QStringList paths = sourcesBelow(QStringLiteral("host/editor"))
        + sourcesBelow(QStringLiteral("host/network")) + sourcesBelow(QStringLiteral("benchmarks"));
    for (const QString& path : paths) {
        for (const QString& header : includes(read(path), QStringLiteral("OrvNodeGraph"))) {
            ++uses;
            if (!list.m_PublicHeaders.contains(header))
                broken += path + QStringLiteral(" > ") + header;
        }
    }
    QVERIFY(uses > 0);
    QCOMPARE(broken, QStringList());
}

void tst_Layering::numbersAreReadInTheCLocale()
{
    // QApplication sets the C library's locale, and with it what these take for a decimal point.
    const QRegularExpression calls(
        QStringLiteral("\\b(strtod|strtof|atof|sscanf|stof|stod)\\s*\\("));
    QStringList broken;
    const QStringList folders{QStringLiteral("src/OrvCore"), QStringLiteral("src/OrvCoreModules"),
        QStringLiteral("src/OrvNodeGraph"), QStringLiteral("host/network"),
        QStringLiteral("host/editor")};
    for (const QString& folder : folders) {
        for (const QString& path : sourcesBelow(folder)) {
            if (calls.match(read(path)).hasMatch())
                broken += path;
        }
    }
    QCOMPARE(broken, QStringList());
}

QTEST_GUILESS_MAIN(tst_Layering)
#include "tst_Layering.moc"
