// SPDX-License-Identifier: MIT
#include "records/dbstatement.h"

#include "records/connectionlock.h"
#include "records/sqlitedirect.h"
#include "records/statementtext.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>
#include <QSqlResult>
#include <QVector>

#include <algorithm>
#include <utility>

namespace {

// A row without its values, and where these stand in the result: of fields with the same name the last one
// counts.
struct RowPattern {
    QMap<QString, QVariant> row;
    QVector<int> indexes; // in the row's order
};

RowPattern patternOf(const QSqlRecord& record)
{
    QMap<QString, int> indexes;
    for (int i = 0; i < record.count(); ++i)
        indexes.insert(record.fieldName(i), i);
    RowPattern pattern;
    for (auto field = indexes.cbegin(); field != indexes.cend(); ++field) {
        pattern.row.insert(field.key(), QVariant());
        pattern.indexes.append(field.value());
    }
    return pattern;
}

// Qt looks a placeholder up by its name for each value. The values themselves are for drivers to read;
// writing them there takes a third of the time.
struct BoundValues : QSqlResult {
    static QVector<QVariant>& of(const QSqlQuery& query)
    {
        return (query.result()->*(&BoundValues::boundValues))();
    }
};

// What Qt takes for the whole name of a placeholder.
bool isPlainName(const QString& column)
{
    return !column.isEmpty() && std::all_of(column.cbegin(), column.cend(), [](QChar letter) {
        return letter == QLatin1Char('_') || (letter.unicode() < 128 && letter.isLetterOrNumber());
    });
}

// Rows are often made of the same literals.
bool isSame(const QString& one, const QString& other)
{
    return one.size() == other.size() && (one.constData() == other.constData() || one == other);
}

} // namespace

DBStatement::DBStatement(QSqlDatabase& database, Text text, Conversion convert, const QString& lastColumn,
                         const QVariant& lastValue)
    : m_database(database)
    , m_makeText(std::move(text))
    , m_convert(convert)
    , m_lastColumn(lastColumn)
    , m_lastValue(lastValue)
{
    const ConnectionLock lock;
    if (database.isOpen()) {
        m_query = std::make_unique<QSqlQuery>(database);
        m_query->setForwardOnly(true);
    }
}

DBStatement::~DBStatement()
{
    const ConnectionLock lock;
    m_query.reset();
}

bool DBStatement::run(const QMap<QString, QVariant>& row)
{
    const ConnectionLock lock;
    return execute(row);
}

bool DBStatement::runOrRollBack(const QMap<QString, QVariant>& row)
{
    const ConnectionLock lock;
    const bool done = execute(row);
    if (!done)
        m_database.rollback();
    return done;
}

bool DBStatement::execute(const QMap<QString, QVariant>& row)
{
    // Asked each time: between two rows another thread may have closed the connection.
    const QSqlDriver* const driver = m_query ? m_query->driver() : nullptr;
    if (driver == nullptr || !driver->isOpen()) {
        takeColumns(row);
        m_error =
            m_database.isOpenError() ? m_database.lastError().text() : QStringLiteral("Database not open");
        return false;
    }
    const bool again = rebind(row);
    const SqliteRun run =
        again ? runBySqlite(*m_query, BoundValues::of(*m_query), m_error) : SqliteRun::NotTried;
    if (run != SqliteRun::NotTried)
        return run == SqliteRun::Done;
    const bool done = (again || prepare(row)) && m_query->exec();
    if (!done)
        m_error = m_query->lastError().text();
    return done;
}

bool DBStatement::fetch(QList<QVariant>& rows)
{
    const ConnectionLock lock;
    const RowPattern pattern = patternOf(m_query->record());
    while (m_query->next()) {
        // Copying a map costs less than sorting each name in anew.
        QMap<QString, QVariant> row = pattern.row;
        auto value = row.begin();
        for (const int index : pattern.indexes)
            *value++ = m_query->value(index);
        rows.append(row);
    }
    // Reading may fail on the way, in a damaged file for one.
    if (m_query->lastError().isValid())
        m_error = m_query->lastError().text();
    return !m_query->lastError().isValid();
}

void DBStatement::takeColumns(const QMap<QString, QVariant>& row)
{
    m_columns = row.keys();
    m_text = m_makeText(m_columns);
}

bool DBStatement::prepare(const QMap<QString, QVariant>& row)
{
    m_rebindable = false;
    takeColumns(row);
    // A failed preparation would show as a failing run, too, but with a text that does not tell why.
    if (!m_query->prepare(m_text))
        return false;
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        m_query->bindValue(StatementText::placeholder(value.key()), converted(*value), QSql::In);
    if (!m_lastColumn.isNull())
        m_query->bindValue(StatementText::placeholder(m_lastColumn), m_lastValue, QSql::In);
    m_rebindable = bindsInOrder();
    return true;
}

bool DBStatement::bindsInOrder() const
{
    // Qt numbers the placeholders of the whole text: those of plain names, and no others, are the values in
    // order.
    const int last = m_lastColumn.isNull() ? 0 : 1;
    return std::all_of(m_columns.cbegin(), m_columns.cend(), isPlainName)
        && (last == 0 || (isPlainName(m_lastColumn) && !m_columns.contains(m_lastColumn)))
        && BoundValues::of(*m_query).size() == m_columns.size() + last;
}

bool DBStatement::rebind(const QMap<QString, QVariant>& row)
{
    if (!m_rebindable || row.size() != m_columns.size())
        return false;
    auto column = m_columns.cbegin();
    QVariant* bound = BoundValues::of(*m_query).data();
    for (auto value = row.cbegin(); value != row.cend(); ++value, ++column, ++bound) {
        if (!isSame(*column, value.key()))
            return false;
        if (m_convert == nullptr)
            *bound = *value;
        else
            *bound = m_convert(*value);
    }
    return true;
}
