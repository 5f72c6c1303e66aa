// SPDX-License-Identifier: MIT
#include "otherdriver.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>
#include <QSqlResult>
#include <QVariant>
#include <QVector>

#include <sqlite3.h>

Q_DECLARE_OPAQUE_POINTER(sqlite3*)
Q_DECLARE_METATYPE(sqlite3*)
Q_DECLARE_OPAQUE_POINTER(sqlite3_stmt*)
Q_DECLARE_METATYPE(sqlite3_stmt*)

namespace {

// Just as much of a driver as rows of texts and numbers need.
class OtherResult : public QSqlResult {
public:
    OtherResult(const QSqlDriver* driver, sqlite3* connection)
        : QSqlResult(driver)
        , m_connection(connection)
    {
    }

    ~OtherResult() override { sqlite3_finalize(m_statement); }

    bool prepare(const QString& text) override
    {
        sqlite3_finalize(m_statement);
        m_statement = nullptr;
        if (sqlite3_prepare_v2(m_connection, text.toUtf8().constData(), -1, &m_statement, nullptr)
            == SQLITE_OK)
            return true;
        return fail();
    }

    bool exec() override
    {
        sqlite3_reset(m_statement);
        const QVector<QVariant> values = boundValues();
        for (int i = 0; i < values.size(); ++i) {
            const QByteArray text = values.at(i).toString().toUtf8();
            sqlite3_bind_text(m_statement, i + 1, text.constData(), text.size(), SQLITE_TRANSIENT);
        }
        const int result = sqlite3_step(m_statement);
        m_onFirst = result == SQLITE_ROW;
        setSelect(sqlite3_column_count(m_statement) > 0);
        setActive(true);
        setAt(QSql::BeforeFirstRow);
        return m_onFirst || result == SQLITE_DONE || fail();
    }

    QVariant handle() const override { return QVariant::fromValue(m_statement); }
    QSqlRecord record() const override
    {
        QSqlRecord record;
        for (int i = 0; i < sqlite3_column_count(m_statement); ++i)
            record.append(QSqlField(QString::fromUtf8(sqlite3_column_name(m_statement, i))));
        return record;
    }

protected:
    QVariant data(int column) override
    {
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column)));
    }
    bool isNull(int column) override { return sqlite3_column_type(m_statement, column) == SQLITE_NULL; }
    bool reset(const QString& text) override { return prepare(text) && exec(); }
    bool fetchFirst() override { return fetch(0); }
    bool fetchLast() override { return false; }
    bool fetchNext() override { return fetch(at() + 1); }
    bool fetch(int row) override
    {
        const bool found = row == 0 ? m_onFirst : sqlite3_step(m_statement) == SQLITE_ROW;
        setAt(found ? row : int(QSql::AfterLastRow));
        if (!found)
            sqlite3_reset(m_statement);
        return found;
    }
    int size() override { return -1; }
    int numRowsAffected() override { return sqlite3_changes(m_connection); }

private:
    bool fail()
    {
        setLastError(QSqlError(QString(), QString::fromUtf8(sqlite3_errmsg(m_connection))));
        return false;
    }

    sqlite3* m_connection;
    sqlite3_stmt* m_statement = nullptr;
    bool m_onFirst = false;
};

class OtherDriver : public QSqlDriver {
    Q_OBJECT

public:
    ~OtherDriver() override { OtherDriver::close(); }

    bool open(const QString& name, const QString&, const QString&, const QString&, int,
              const QString&) override
    {
        setOpen(sqlite3_open(name.toUtf8().constData(), &m_connection) == SQLITE_OK);
        return isOpen();
    }
    void close() override
    {
        sqlite3_close_v2(m_connection);
        m_connection = nullptr;
        setOpen(false);
    }
    bool hasFeature(DriverFeature feature) const override
    {
        return feature == PreparedQueries || feature == NamedPlaceholders || feature == Transactions;
    }
    QSqlResult* createResult() const override { return new OtherResult(this, m_connection); }
    QVariant handle() const override { return QVariant::fromValue(m_connection); }
    bool beginTransaction() override { return execute("BEGIN"); }
    bool commitTransaction() override { return execute("COMMIT"); }
    bool rollbackTransaction() override { return execute("ROLLBACK"); }

private:
    bool execute(const char* text)
    {
        return sqlite3_exec(m_connection, text, nullptr, nullptr, nullptr) == SQLITE_OK;
    }

    sqlite3* m_connection = nullptr;
};

} // namespace

QSqlDriver* makeOtherDriver()
{
    return new OtherDriver;
}

#include "otherdriver.moc"
