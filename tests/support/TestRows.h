#pragma once

#include <QFile>
#include <QTest>

/// The table of a _data slot out of a text file: the lines below "[section]", whose cells, all of them
/// QByteArray, stand between " | ". Cells may be left out at the end; "\n", "\r" and "\t" are written as
/// here; # begins a remark.
///
/// Called by  tests.
/// Uses       QTest.
/// Tells      nobody.
inline void addTestRows(
    const char* path, const char* section, std::initializer_list<const char*> columns)
{
    for (const char* column : columns)
        QTest::addColumn<QByteArray>(column);
    QFile file(QString::fromUtf8(path));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is missing", path);
    QByteArray at;
    while (!file.atEnd()) {
        QByteArray line = file.readLine().trimmed();
        if (line.startsWith('['))
            at = line.mid(1, line.size() - 2);
        if (line.isEmpty() || line.startsWith('#') || line.startsWith('[') || at != section)
            continue;
        QTestData& row = QTest::newRow(line.constData());
        line.replace("\\n", "\n").replace("\\r", "\r").replace("\\t", "\t");
        const QStringList cells = QString::fromUtf8(line).split(QStringLiteral(" | "));
        for (int i = 0; i < int(columns.size()); ++i)
            row << cells.value(i).toUtf8();
    }
}
