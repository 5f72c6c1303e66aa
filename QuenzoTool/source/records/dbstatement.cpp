// SPDX-License-Identifier: MIT
#include "records/dbstatement.h"

#include "records/connectionlock.h"
#include "records/keptstatements.h"

#include <QSqlDriver>
#include <QSqlRecord>

#include <utility>

namespace {

// Of statements that are wrong, among others.
const QLatin1String genericError("1");

QStringList namesOf(const QSqlRecord& record)
{
    QStringList names;
    for (int i = 0; i < record.count(); ++i)
        names.append(record.fieldName(i));
    return names;
}

} // namespace

DBStatement::DBStatement(QSqlDatabase& database, KeptStatements& kept, StatementText::Shape shape,
                         Conversion conversion, QString key)
    : m_database(database)
    , m_kept(kept)
    , m_shape(std::move(shape))
    , m_conversion(conversion)
    , m_key(std::move(key))
{
}

DBStatement::~DBStatement()
{
    if (!m_query && !m_own)
        return;
    const ConnectionLock lock;
    m_query.reset();
    m_own.reset();
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

bool DBStatement::select(const QMap<QString, QVariant>& conditions, QList<QVariant>& rows)
{
    const ConnectionLock lock;
    if (!execute(conditions))
        return false;
    m_error = QSqlError();
    fetch(rows);
    m_query.reset();
    return true;
}

std::optional<bool> DBStatement::isInTransaction() const
{
    const ConnectionLock lock;
    return isOpen() ? SqliteDirect::isInTransaction(*m_database.driver()) : std::nullopt;
}

bool DBStatement::isOpen() const
{
    // Asked each time: between two rows another thread may have closed the connection.
    return m_database.isOpen();
}

bool DBStatement::execute(const QMap<QString, QVariant>& row)
{
    if (!isOpen()) {
        takeText(row);
        m_error = m_database.isOpenError() ? m_database.lastError()
                                           : QSqlError(QStringLiteral("Database not open"));
        return false;
    }
    bool done = false;
    return runReady(row, done) ? done : prepareAndRun(row);
}

// False when no statement is ready for such a row.
bool DBStatement::runReady(const QMap<QString, QVariant>& row, bool& done)
{
    const bool own = m_own && m_own->serves(m_shape, row);
    RowStatement* const ready = own ? m_own.get() : m_kept.find(m_shape, row);
    if (ready == nullptr)
        return false;
    const SqliteDirect::Outcome outcome =
        ready->run({row, m_conversion, m_shape.key.isNull() ? nullptr : &m_key}, m_error);
    done = outcome == SqliteDirect::Outcome::Done;
    // What was compiled anew may by now mean another table.
    const bool lasts = done && (own || !SqliteDirect::wasCompiledAnew(ready->query()));
    if (!lasts && !own)
        m_kept.dropFound();
    if (outcome == SqliteDirect::Outcome::NotTried) {
        m_own.reset();
        return false;
    }
    if (!done) {
        takeText(row);
        learnOfFailedPreparation();
    }
    return true;
}

bool DBStatement::prepareAndRun(const QMap<QString, QVariant>& row)
{
    takeText(row);
    m_query = std::make_unique<QSqlQuery>(m_database);
    m_query->setForwardOnly(true);
    // A failed preparation would show as a failing run, too, but with a text that does not tell why.
    const bool prepared = m_query->prepare(m_text);
    if (prepared) {
        for (auto value = row.cbegin(); value != row.cend(); ++value)
            m_query->bindValue(StatementText::placeholder(value.key()), converted(*value, m_conversion),
                               QSql::In);
        if (!m_shape.key.isNull())
            m_query->bindValue(StatementText::placeholder(m_shape.key), m_key, QSql::In);
    }
    const bool done = prepared && m_query->exec();
    if (!done)
        m_error = m_query->lastError();
    else if (m_shape.kind != StatementText::Shape::Select)
        makeReady(row.keys());
    return done;
}

void DBStatement::makeReady(const QStringList& columns)
{
    if (!RowStatement::bindsInOrder(*m_query, m_shape, columns))
        return;
    const bool direct = m_kept.isDirect(*m_query->driver());
    const bool lasting = direct && SqliteDirect::isLasting(*m_query, m_shape.table);
    RowStatement statement(m_shape, columns, std::move(m_query), direct);
    if (lasting)
        m_kept.add(std::move(statement));
    else
        m_own = std::make_unique<RowStatement>(std::move(statement));
}

void DBStatement::fetch(QList<QVariant>& rows)
{
    const QStringList names = namesOf(m_query->record());
    if (m_kept.isDirect(*m_query->driver())
        && SqliteDirect::read(*m_query, names, rows, m_error) != SqliteDirect::Outcome::NotTried)
        return;
    const RowPattern pattern(names);
    while (m_query->next()) {
        QMap<QString, QVariant> row = pattern.row;
        auto value = row.begin();
        for (const int index : pattern.indexes)
            *value++ = m_query->value(index);
        rows.append(row);
    }
    // Reading may fail on the way, in a damaged file for one.
    m_error = m_query->lastError();
}

// A statement whose table has changed fails as it runs, where a new one would fail before: that is told by
// preparing it once more, not by running it.
void DBStatement::learnOfFailedPreparation()
{
    if (m_error.nativeErrorCode() != genericError)
        return;
    QSqlQuery query(m_database);
    if (!query.prepare(m_text))
        m_error = query.lastError();
}

void DBStatement::takeText(const QMap<QString, QVariant>& row)
{
    m_text = m_shape.text(row.keys());
}
