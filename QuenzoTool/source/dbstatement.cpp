// SPDX-License-Identifier: MIT
#include "dbstatement.h"

#include "connectionlock.h"
#include "statementtext.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>
#include <QVector>

#include <algorithm>
#include <utility>

namespace {

// The fields of a result in the order of a row's map; of fields with the same name the last one.
struct Field {
    QString name;
    int index;
};

QVector<Field> fieldsOf(const QSqlRecord& record)
{
    QMap<QString, int> indexes;
    for (int i = 0; i < record.count(); ++i)
        indexes.insert(record.fieldName(i), i);
    QVector<Field> fields;
    for (auto field = indexes.cbegin(); field != indexes.cend(); ++field)
        fields.append({field.key(), field.value()});
    return fields;
}

} // namespace

DBStatement::DBStatement(const QSqlDatabase& database, Text text, Conversion convert,
                         const QString& lastColumn, const QVariant& lastValue)
    : m_database(database)
    , m_makeText(std::move(text))
    , m_convert(convert)
    , m_lastPlaceholder(lastColumn.isNull() ? QString() : StatementText::placeholder(lastColumn))
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
    const bool prepared = !m_text.isEmpty() && hasColumnsOf(row);
    if (!prepared)
        takeColumns(row);

    const ConnectionLock lock;
    // Asked each time: between two rows another thread may have closed the connection.
    if (!m_query || m_query->driver() == nullptr || !m_query->driver()->isOpen()) {
        m_error =
            m_database.isOpenError() ? m_database.lastError().text() : QStringLiteral("Database not open");
        return false;
    }
    // A failed preparation would show as a failing run, with a text that does not tell why.
    const bool done = (prepared || m_query->prepare(m_text)) && execute(row);
    if (!done)
        m_error = m_query->lastError().text();
    return done;
}

bool DBStatement::fetch(QList<QVariant>& rows)
{
    const ConnectionLock lock;
    const QVector<Field> fields = fieldsOf(m_query->record());
    while (m_query->next()) {
        QMap<QString, QVariant> row;
        for (const Field& field : fields)
            row.insert(row.cend(), field.name, m_query->value(field.index));
        rows.append(row);
    }
    // Reading may fail on the way, in a damaged file for one.
    if (m_query->lastError().isValid())
        m_error = m_query->lastError().text();
    return !m_query->lastError().isValid();
}

bool DBStatement::hasColumnsOf(const QMap<QString, QVariant>& row) const
{
    return std::equal(row.keyBegin(), row.keyEnd(), m_columns.cbegin(), m_columns.cend());
}

void DBStatement::takeColumns(const QMap<QString, QVariant>& row)
{
    m_columns = row.keys();
    m_placeholders.clear();
    for (const QString& column : qAsConst(m_columns))
        m_placeholders.append(StatementText::placeholder(column));
    m_text = m_makeText(m_columns);
}

bool DBStatement::execute(const QMap<QString, QVariant>& row)
{
    auto placeholder = m_placeholders.cbegin();
    for (const QVariant& value : row)
        m_query->bindValue(*placeholder++, m_convert != nullptr ? m_convert(value) : value, QSql::In);
    if (!m_lastPlaceholder.isEmpty())
        m_query->bindValue(m_lastPlaceholder, m_lastValue, QSql::In);
    return m_query->exec();
}
