// SPDX-License-Identifier: MIT
#include "records/rowstatement.h"

#include <QSqlDriver>
#include <QSqlResult>
#include <QVector>

#include <algorithm>
#include <utility>

namespace {

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

// Whether a statement is behind the driver's handle.
bool isAlive(const QVariant& handle)
{
    return qstrcmp(handle.typeName(), "sqlite3_stmt*") == 0
        && *static_cast<void* const*>(handle.constData()) != nullptr;
}

// Rows are often made of the same literals.
bool isSame(const QString& one, const QString& other)
{
    return one.size() == other.size() && (one.constData() == other.constData() || one == other);
}

} // namespace

RowStatement::RowStatement(StatementText::Shape shape, QStringList columns, std::unique_ptr<QSqlQuery> query,
                           bool sharesSqlite)
    : m_shape(std::move(shape))
    , m_columns(std::move(columns))
    , m_query(std::move(query))
    , m_sharesSqlite(sharesSqlite)
{
    forgetBoundValues();
    if (m_sharesSqlite)
        SqliteDirect::forgetValues(SqliteDirect::statementOf(*m_query), m_buffers);
}

bool RowStatement::bindsInOrder(const QSqlQuery& query, const StatementText::Shape& shape,
                                const QStringList& columns)
{
    const int last = shape.key.isNull() ? 0 : 1;
    return std::all_of(columns.cbegin(), columns.cend(), isPlainName)
        && (last == 0 || (isPlainName(shape.key) && !columns.contains(shape.key)))
        && BoundValues::of(query).size() == columns.size() + last;
}

bool RowStatement::serves(const StatementText::Shape& shape, const QMap<QString, QVariant>& row) const
{
    return shape.kind == m_shape.kind && isSame(shape.table, m_shape.table) && isSame(shape.key, m_shape.key)
        && fits(row);
}

bool RowStatement::fits(const QMap<QString, QVariant>& row) const
{
    return row.size() == m_columns.size()
        && std::equal(m_columns.cbegin(), m_columns.cend(), row.keyBegin(), isSame);
}

bool RowStatement::wake()
{
    const QSqlDriver* const driver = m_query->driver();
    if (driver == nullptr || !driver->isOpen() || (isSelect() && !SqliteDirect::readsAs(*driver)))
        return false;
    if (m_sharesSqlite)
        m_statement = SqliteDirect::statementOf(*m_query);
    m_awake = m_sharesSqlite ? m_statement != nullptr : isAlive(m_query->result()->handle());
    return m_awake;
}

SqliteDirect::Outcome RowStatement::run(const RowValues& values, std::optional<QSqlError>& error)
{
    using SqliteDirect::Outcome;
    if (m_statement != nullptr) {
        const Outcome outcome = isSelect() ? SqliteDirect::start(m_statement, values, m_buffers, error)
                                           : SqliteDirect::run(m_statement, values, m_buffers, error);
        if (outcome != Outcome::NotTried)
            return outcome;
    }
    const bool done = runByQt(values);
    if (!done)
        error = m_query->lastError();
    forgetBoundValues();
    return done ? Outcome::Done : Outcome::Failed;
}

void RowStatement::read(QList<QVariant>& rows, std::optional<QSqlError>& error)
{
    SqliteDirect::read(m_statement, rows, error);
}

void RowStatement::rest()
{
    if (m_statement != nullptr)
        SqliteDirect::forgetValues(m_statement, m_buffers);
    m_statement = nullptr;
    m_awake = false;
}

bool RowStatement::runByQt(const RowValues& values)
{
    QVector<QVariant>& bound = BoundValues::of(*m_query);
    auto place = bound.begin();
    for (const QVariant& value : values.row)
        *place++ = converted(value, values.conversion);
    if (values.last != nullptr)
        *place = *values.last;
    return m_query->exec();
}

void RowStatement::forgetBoundValues()
{
    BoundValues::of(*m_query).fill(QVariant());
}
