#pragma once

#include <QByteArray>
#include <QTest>

#include <initializer_list>

/// Columns of one type in the data of a test.
template <typename Value> void columns(std::initializer_list<const char *> names)
{
    for (const char *name : names)
        QTest::addColumn<Value>(name);
}

/// Columns of these types in the data of a test.
template <typename... Values, typename... Names> void columnsOf(Names... names)
{
    (QTest::addColumn<Values>(names), ...);
}

inline QByteArray cell(const char *text)
{
    return text;
}

template <typename Value> const Value &cell(const Value &value)
{
    return value;
}

/// A row of data; literals are bytes.
template <typename... Values> void row(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << cell(values));
}
