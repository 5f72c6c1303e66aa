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

// Rows are often made of the same literals.
bool isSame(const QString& one, const QString& other)
{
    return one.size() == other.size() && (one.constData() == other.constData() || one == other);
}

} // namespace

RowStatement::RowStatement(StatementText::Shape shape, QStringList columns, std::unique_ptr<QSqlQuery> query,
                           bool direct)
    : m_shape(std::move(shape))
    , m_columns(std::move(columns))
    , m_query(std::move(query))
    , m_direct(direct)
{
    forgetValues();
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
    return shape.kind == m_shape.kind && row.size() == m_columns.size() && isSame(shape.table, m_shape.table)
        && isSame(shape.key, m_shape.key)
        && std::equal(m_columns.cbegin(), m_columns.cend(), row.keyBegin(), isSame);
}

SqliteDirect::Outcome RowStatement::run(const RowValues& values, QSqlError& error)
{
    using SqliteDirect::Outcome;
    if (!isAlive())
        return Outcome::NotTried;
    const Outcome outcome =
        m_direct ? SqliteDirect::run(*m_query, values, m_buffers, error) : Outcome::NotTried;
    if (outcome != Outcome::NotTried)
        return outcome;
    const bool done = runByQt(values);
    if (!done)
        error = m_query->lastError();
    forgetValues();
    return done ? Outcome::Done : Outcome::Failed;
}

bool RowStatement::isAlive() const
{
    const QSqlDriver* const driver = m_query->driver();
    if (driver == nullptr || !driver->isOpen())
        return false;
    const QVariant handle = m_query->result()->handle();
    return qstrcmp(handle.typeName(), "sqlite3_stmt*") == 0
        && *static_cast<void* const*>(handle.constData()) != nullptr;
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

void RowStatement::forgetValues()
{
    BoundValues::of(*m_query).fill(QVariant());
    if (m_direct)
        SqliteDirect::forgetValues(*m_query);
}
