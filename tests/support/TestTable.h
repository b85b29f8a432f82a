#pragma once

#include <QString>
#include <QTest>

#include <type_traits>

/// The table of a _data slot: declares its columns once, then takes each row as a call. Values are
/// converted to their column's type, so a row may give a literal for a QString or an enumerator for
/// an int.
///
///     const TestTable<QString, int> row("text", "number");
///     row("leading zero", "012", 12);
///
/// Called by  tests.
/// Uses       QTest.
/// Tells      nobody.
template <typename... Columns> class TestTable
{
public:
    template <typename... Names> explicit TestTable(Names... names)
    {
        static_assert(sizeof...(Names) == sizeof...(Columns), "a name for each column");
        (QTest::addColumn<Columns>(names), ...);
    }

    template <typename... Values> void operator()(const char* tag, const Values&... values) const
    {
        static_assert(sizeof...(Values) == sizeof...(Columns), "a value for each column");
        (QTest::newRow(tag) << ... << cell<Columns>(values));
    }

private:
    template <typename Column, typename Value> static Column cell(const Value& value)
    {
        if constexpr (std::is_same_v<Column, QString> && std::is_convertible_v<Value, const char*>)
            return QString::fromUtf8(value);
        else
            return static_cast<Column>(value);
    }
};
