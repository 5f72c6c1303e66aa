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
    const bool done = execute(row);
    rest();
    return done;
}

bool DBStatement::run(const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow)
{
    ConnectionLock lock;
    const bool done = runEach(rows, lastRow, lock);
    rest();
    return done;
}

bool DBStatement::runOrRollBack(const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow)
{
    ConnectionLock lock;
    const bool done = runEach(rows, lastRow, lock);
    rest();
    if (!done)
        m_database.rollback();
    return done;
}

bool DBStatement::select(const QMap<QString, QVariant>& conditions, QList<QVariant>& rows)
{
    const ConnectionLock lock;
    const bool done = execute(conditions);
    if (done) {
        m_error.reset();
        fetch(conditions, rows);
    }
    rest();
    m_query.reset();
    return done;
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

bool DBStatement::runEach(const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow,
                          ConnectionLock& lock)
{
    for (const QVariant& row : rows) {
        giveWay(lock);
        // A copy of a map writes into the map's memory, which costs more than reading that.
        const bool done = row.userType() == QMetaType::QVariantMap
            ? execute(*static_cast<const QMap<QString, QVariant>*>(row.constData()))
            : execute(row.toMap());
        if (!done)
            return false;
    }
    if (lastRow.isEmpty())
        return true;
    giveWay(lock);
    return execute(lastRow);
}

void DBStatement::giveWay(ConnectionLock& lock)
{
    if (!lock.isAwaited())
        return;
    rest();
    lock.giveWay();
}

bool DBStatement::execute(const QMap<QString, QVariant>& row)
{
    if (isReadyFor(row)) {
        const SqliteDirect::Outcome outcome = runReady(row);
        if (outcome != SqliteDirect::Outcome::NotTried)
            return outcome == SqliteDirect::Outcome::Done;
    }
    if (isOpen())
        return prepareAndRun(row);
    takeText(row);
    m_error =
        m_database.isOpenError() ? m_database.lastError() : QSqlError(QStringLiteral("Database not open"));
    return false;
}

bool DBStatement::isReadyFor(const QMap<QString, QVariant>& row)
{
    if (m_ready != nullptr && m_ready->fits(row))
        return true;
    rest();
    m_ready = m_own && m_own->fits(row) ? m_own.get() : m_kept.find(m_shape, row);
    if (m_ready != nullptr && !m_ready->wake())
        dropReady();
    return m_ready != nullptr;
}

SqliteDirect::Outcome DBStatement::runReady(const QMap<QString, QVariant>& row)
{
    using SqliteDirect::Outcome;
    const Outcome outcome =
        m_ready->run({row, m_conversion, m_shape.key.isNull() ? nullptr : &m_key}, m_error);
    // What was compiled anew may by now mean another table. A select has yet to be read.
    if (outcome != Outcome::Done || (!isSelect() && m_ready != m_own.get() && m_ready->wasCompiledAnew()))
        dropReady();
    if (outcome == Outcome::Failed) {
        takeText(row);
        learnOfFailedPreparation();
    }
    return outcome;
}

void DBStatement::dropReady()
{
    if (m_ready == m_own.get())
        m_own.reset();
    else
        m_kept.drop(m_ready);
    m_ready = nullptr;
}

void DBStatement::rest()
{
    if (m_ready != nullptr)
        m_ready->rest();
    m_ready = nullptr;
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
    else if (!isSelect())
        keep(row.keys());
    return done;
}

void DBStatement::keep(const QStringList& columns)
{
    if (!RowStatement::bindsInOrder(*m_query, m_shape, columns))
        return;
    const bool shared = m_kept.sharesSqlite(*m_query->driver());
    const bool lasting = shared && SqliteDirect::isLasting(*m_query, m_shape.table);
    RowStatement statement(m_shape, columns, std::move(m_query), shared);
    if (lasting)
        m_kept.add(std::move(statement));
    else
        m_own = std::make_unique<RowStatement>(std::move(statement));
}

void DBStatement::fetch(const QMap<QString, QVariant>& conditions, QList<QVariant>& rows)
{
    if (m_ready != nullptr) {
        m_ready->read(rows, m_error);
        if (m_error)
            takeText(conditions);
        if (m_ready->wasCompiledAnew())
            dropReady();
        return;
    }
    const QSqlDriver& driver = *m_query->driver();
    sqlite3_stmt* const statement = m_kept.sharesSqlite(driver) && SqliteDirect::readsAs(driver)
        ? SqliteDirect::statementOf(*m_query)
        : nullptr;
    if (statement == nullptr) {
        fetchByQt(rows);
        return;
    }
    SqliteDirect::read(statement, rows, m_error);
    m_query->finish();
    keep(conditions.keys());
}

void DBStatement::fetchByQt(QList<QVariant>& rows)
{
    const RowPattern pattern(namesOf(m_query->record()));
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
    if (m_error->nativeErrorCode() != genericError)
        return;
    QSqlQuery query(m_database);
    if (!query.prepare(m_text))
        m_error = query.lastError();
}

void DBStatement::takeText(const QMap<QString, QVariant>& row)
{
    m_text = m_shape.text(row.keys());
}
