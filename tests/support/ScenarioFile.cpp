#include "support/ScenarioFile.h"

#include "support/Literals.h"

#include <QFile>
#include <QMap>

namespace {

using Row = QMap<QString, QString>; // the tag has no name

/// A section of a file: "[title]", then steps, and tables whose rows, each with each, replace <names> in the
/// steps. A section whose title begins with "=" is what "use TITLE" stands for.
struct Section
{
    QString m_Title;
    QStringList m_Lines{};
    QStringList m_Header{};
    QList<Row> m_Rows{{}};
    QList<Row> m_Before{}; ///< rows of the tables before the last one

    void addTableLine(const QString& line);
    QStringList linesOf(const Row& row, const QMap<QString, QStringList>& macros) const;
};

/// "|: TAG | NAME | NAME" and below it "| tag | text | text".
void Section::addTableLine(const QString& line)
{
    QStringList cells = line.mid(2).split(QLatin1Char('|'));
    for (QString& cell : cells)
        cell = cell.trimmed();
    if (line.startsWith(u"|:"_s)) {
        m_Header = cells;
        m_Before = std::exchange(m_Rows, {});
        return;
    }
    for (Row row : qAsConst(m_Before)) {
        row[{}] += (cells.first().isEmpty() ? QString() : u", "_s) + cells.first();
        for (int i = 1; i < cells.size(); ++i)
            row[m_Header.value(i)] = cells.at(i);
        m_Rows.append(row);
    }
}

QStringList Section::linesOf(const Row& row, const QMap<QString, QStringList>& macros) const
{
    QStringList lines;
    for (const QString& line : m_Lines)
        lines += line.startsWith(u"use "_s) ? macros.value(line.mid(4)) : QStringList(line);
    for (auto cell = row.begin(); cell != row.end(); ++cell)
        lines.replaceInStrings(u"<%1>"_s.arg(cell.key()), *cell);
    return lines;
}

} // namespace

QList<Scenario> readScenarios(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    QList<Section> sections;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString& each : lines) {
        const QString line = each.section(u"# "_s, 0, 0).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            sections.append(Section{line.mid(1, line.size() - 2)});
        else if (line.startsWith(QLatin1Char('|')))
            sections.last().addTableLine(line);
        else if (!line.isEmpty() && line != u"#"_s)
            sections.last().m_Lines.append(line);
    }
    QList<Scenario> all;
    QMap<QString, QStringList> macros;
    for (const Section& section : qAsConst(sections)) {
        if (section.m_Title.startsWith(u"= "_s)) {
            macros[section.m_Title.mid(2)] = section.m_Lines;
            continue;
        }
        for (const Row& row : section.m_Rows)
            all.append({section.m_Title + row.value({}), section.linesOf(row, macros)});
    }
    return all;
}
