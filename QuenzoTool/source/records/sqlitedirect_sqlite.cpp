// SPDX-License-Identifier: MIT
#include "records/sqlitedirect.h"

#include "codec.h"
#include "records/numbertext.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QMetaType>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QSqlResult>

#include <sqlite3.h>
#include <string_view>

// Under these names the driver hands out what is SQLite's.
Q_DECLARE_OPAQUE_POINTER(sqlite3*)
Q_DECLARE_METATYPE(sqlite3*)
Q_DECLARE_OPAQUE_POINTER(sqlite3_stmt*)
Q_DECLARE_METATYPE(sqlite3_stmt*)

namespace {

// Longer texts are converted by SQLite itself: the memory for it would be kept.
constexpr int longestKeptText = 4096;

// As the driver names it.
QSqlError errorOf(sqlite3_stmt* statement)
{
    sqlite3* const connection = sqlite3_db_handle(statement);
    const auto* const text = static_cast<const QChar*>(sqlite3_errmsg16(connection));
    return {QCoreApplication::translate("QSQLiteResult", "Unable to fetch row"), QString(text),
            QSqlError::ConnectionError, QString::number(sqlite3_extended_errcode(connection) & 0xff)};
}

// The text in the form that is stored, if it has only ASCII.
bool narrow(const QString& text, std::string& bytes)
{
    const auto size = static_cast<std::size_t>(text.size());
    if (bytes.size() < size)
        bytes.resize(size);
    const ushort* const from = text.utf16();
    char* const to = bytes.data();
    ushort seen = 0;
    for (std::size_t i = 0; i < size; ++i) {
        seen = static_cast<ushort>(seen | from[i]);
        to[i] = static_cast<char>(from[i]);
    }
    return seen < 0x80;
}

// Both text and buffer outlive the run.
int bindText(sqlite3_stmt* statement, int place, const QString& text, std::string& buffer)
{
    if (text.size() <= longestKeptText && narrow(text, buffer))
        return sqlite3_bind_text(statement, place, buffer.data(), text.size(), SQLITE_STATIC);
    const auto size = static_cast<sqlite3_uint64>(text.size()) * sizeof(QChar);
    return sqlite3_bind_text64(statement, place, reinterpret_cast<const char*>(text.utf16()), size,
                               SQLITE_STATIC, SQLITE_UTF16);
}

// As the driver binds them; the values outlive the run.
int bind(sqlite3_stmt* statement, int place, const QVariant& value, std::string& buffer)
{
    if (value.isNull())
        return sqlite3_bind_null(statement, place);
    switch (value.userType()) {
    case QMetaType::QString:
        return bindText(statement, place, *static_cast<const QString*>(value.constData()), buffer);
    case QMetaType::QByteArray: {
        const auto* const bytes = static_cast<const QByteArray*>(value.constData());
        return sqlite3_bind_blob(statement, place, bytes->constData(), bytes->size(), SQLITE_STATIC);
    }
    case QMetaType::Bool:
    case QMetaType::Int:
        return sqlite3_bind_int(statement, place, value.toInt());
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return sqlite3_bind_int64(statement, place, value.toLongLong());
    case QMetaType::Double:
        return sqlite3_bind_double(statement, place, value.toDouble());
    default:
        return SQLITE_MISMATCH;
    }
}

std::size_t encode(const QVariant& value, std::string& buffer)
{
    if (value.userType() == QMetaType::QString)
        return Codec::encode(*static_cast<const QString*>(value.constData()), buffer);
    NumberText::Digits place;
    const std::string_view digits = NumberText::of(value, place);
    return digits.empty() ? Codec::encode(value.toString(), buffer) : Codec::encode(digits, buffer);
}

int bindEncoded(sqlite3_stmt* statement, int place, const QVariant& value, std::string& buffer)
{
    const std::size_t size = encode(value, buffer);
    return sqlite3_bind_text64(statement, place, buffer.data(), size, SQLITE_STATIC, SQLITE_UTF8);
}

bool bindAll(sqlite3_stmt* statement, const RowValues& values, SqliteDirect::TextBuffers& buffers)
{
    int place = 0;
    for (const QVariant& value : values.row) {
        std::string& buffer = buffers[static_cast<std::size_t>(place++)];
        const int result = values.conversion == Conversion::Encode
            ? bindEncoded(statement, place, value, buffer)
            : bind(statement, place, value, buffer);
        if (result != SQLITE_OK)
            return false;
    }
    if (values.last == nullptr)
        return true;
    const int result = values.last->isNull()
        ? sqlite3_bind_null(statement, place + 1)
        : bindText(statement, place + 1, *values.last, buffers[static_cast<std::size_t>(place)]);
    return result == SQLITE_OK;
}

void giveBackLongTexts(SqliteDirect::TextBuffers& buffers)
{
    for (std::string& buffer : buffers) {
        if (buffer.size() > std::size_t{2} * longestKeptText)
            std::string().swap(buffer);
    }
}

// Bytes are read as SQLite stores them where it says that they are that; anything but ASCII is its own
// matter.
QString textOf(sqlite3_stmt* statement, int column)
{
#if SQLITE_VERSION_NUMBER >= 3040000
    sqlite3_value* const value = sqlite3_column_value(statement, column);
    if (sqlite3_value_encoding(value) == SQLITE_UTF8) {
        const unsigned char* const bytes = sqlite3_value_text(value);
        const int size = sqlite3_value_bytes(value);
        QString text(size, Qt::Uninitialized);
        auto* const to = reinterpret_cast<ushort*>(text.data());
        unsigned char seen = 0;
        for (int i = 0; i < size; ++i) {
            seen = static_cast<unsigned char>(seen | bytes[i]);
            to[i] = bytes[i];
        }
        if (seen < 0x80 && bytes != nullptr)
            return text;
    }
#endif
    const auto* const text = static_cast<const QChar*>(sqlite3_column_text16(statement, column));
    return QString(text, sqlite3_column_bytes16(statement, column) / int(sizeof(QChar)));
}

// As the driver reads it.
QVariant valueOf(sqlite3_stmt* statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_NULL:
        return {QVariant::String};
    case SQLITE_BLOB: {
        const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
        return QByteArray(bytes, sqlite3_column_bytes(statement, column));
    }
    default:
        return textOf(statement, column);
    }
}

QMap<QString, QVariant> rowOf(sqlite3_stmt* statement, const RowPattern& pattern)
{
    // Copying a map costs less than sorting each name in anew.
    QMap<QString, QVariant> row = pattern.row;
    auto value = row.begin();
    for (const int index : pattern.indexes)
        *value++ = valueOf(statement, index);
    return row;
}

// As the driver names the fields.
QStringList namesOf(sqlite3_stmt* statement)
{
    QStringList names;
    const int count = sqlite3_column_count(statement);
    for (int i = 0; i < count; ++i) {
        const auto* const name = static_cast<const QChar*>(sqlite3_column_name16(statement, i));
        names.append(QString(name).remove(QLatin1Char('"')));
    }
    return names;
}

} // namespace

// Asked for each time: a connection that is closed takes its statements with it.
sqlite3_stmt* SqliteDirect::statementOf(const QSqlQuery& query)
{
    return query.result()->handle().value<sqlite3_stmt*>();
}

SqliteDirect::Outcome SqliteDirect::run(sqlite3_stmt* statement, const RowValues& values,
                                        TextBuffers& buffers, std::optional<QSqlError>& error)
{
    const Outcome outcome = start(statement, values, buffers, error);
    if (outcome == Outcome::Done)
        sqlite3_reset(statement);
    return outcome;
}

SqliteDirect::Outcome SqliteDirect::start(sqlite3_stmt* statement, const RowValues& values,
                                          TextBuffers& buffers, std::optional<QSqlError>& error)
{
    const auto count = static_cast<std::size_t>(values.count());
    if (buffers.size() != count)
        buffers.resize(count);
    if (sqlite3_bind_parameter_count(statement) != values.count() || !bindAll(statement, values, buffers))
        return Outcome::NotTried;
    const int result = sqlite3_step(statement);
    if (result == SQLITE_DONE || result == SQLITE_ROW)
        return Outcome::Done;
    error = errorOf(statement);
    sqlite3_reset(statement);
    return Outcome::Failed;
}

void SqliteDirect::forgetValues(sqlite3_stmt* statement, TextBuffers& buffers)
{
    sqlite3_clear_bindings(statement);
    giveBackLongTexts(buffers);
}

bool SqliteDirect::isLasting(const QSqlQuery& query, const QString& table)
{
    sqlite3_stmt* const statement = statementOf(query);
    return statement != nullptr
        && sqlite3_table_column_metadata(sqlite3_db_handle(statement), "main", table.toUtf8().constData(),
                                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)
        == SQLITE_OK;
}

bool SqliteDirect::wasCompiledAnew(sqlite3_stmt* statement)
{
    return statement != nullptr && sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_REPREPARE, 0) != 0;
}

bool SqliteDirect::readsAs(const QSqlDriver& driver)
{
    const QSql::NumericalPrecisionPolicy policy = driver.numericalPrecisionPolicy();
    return policy == QSql::LowPrecisionDouble || policy == QSql::HighPrecision;
}

void SqliteDirect::read(sqlite3_stmt* statement, QList<QVariant>& rows, std::optional<QSqlError>& error)
{
    const RowPattern pattern(namesOf(statement));
    // It has been run up to the first row, or to the end when there is none.
    int result = sqlite3_stmt_busy(statement) != 0 ? SQLITE_ROW : SQLITE_DONE;
    for (; result == SQLITE_ROW; result = sqlite3_step(statement))
        rows.append(rowOf(statement, pattern));
    if (result != SQLITE_DONE)
        error = errorOf(statement);
    sqlite3_reset(statement);
}

std::optional<bool> SqliteDirect::isInTransaction(const QSqlDriver& driver)
{
    if (!isSharedWith(driver))
        return std::nullopt;
    auto* const connection = driver.handle().value<sqlite3*>();
    if (connection == nullptr)
        return std::nullopt;
    return sqlite3_get_autocommit(connection) == 0;
}
