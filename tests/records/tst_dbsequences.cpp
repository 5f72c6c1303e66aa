// SPDX-License-Identifier: MIT
#include "messagelog.h"

#include <dbhelper.h>
#include <quenzotool.h>

#include <QDate>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

#include <limits>
#include <memory>

using Row = QMap<QString, QVariant>;

namespace {

class Stepped : public DBHelper {
public:
    Stepped() = default;
    ~Stepped() override { closeDB(); }
};

// What a call reports: its result, its rows, and the cause of its failure.
struct Report {
    bool done = false;
    QVariantList rows;
    QString error;
};

// The statements once more, by Qt's driver alone: each prepared anew, bound by name, run, read field by
// field.
class ByQt {
public:
    explicit ByQt(const QSqlDatabase& database)
        : m_database(database)
    {
    }

    Report run(const QString& text, const Row& values, const QString& key = {}, const QVariant& keyValue = {})
    {
        QSqlQuery query(m_database);
        Report report;
        bool done = query.prepare(text);
        for (auto value = values.cbegin(); done && value != values.cend(); ++value)
            query.bindValue(QLatin1Char(':') + value.key(), *value);
        if (done && !key.isEmpty())
            query.bindValue(QLatin1Char(':') + key, keyValue.toString());
        report.done = done && query.exec();
        if (!report.done)
            report.error = query.lastError().text();
        while (report.done && query.next()) {
            const QSqlRecord record = query.record();
            Row row;
            for (int i = 0; i < record.count(); ++i)
                row.insert(record.fieldName(i), query.value(i));
            report.rows.append(row);
        }
        return report;
    }

private:
    QSqlDatabase m_database;
};

QStringList placeholders(const Row& row, const QString& form)
{
    QStringList parts;
    for (auto value = row.cbegin(); value != row.cend(); ++value)
        parts.append(QString(form).replace(QLatin1Char('%'), value.key()));
    return parts;
}

QString conditions(const Row& row)
{
    const QString all = placeholders(row, QStringLiteral("% = :%")).join(QStringLiteral(" and "));
    return row.isEmpty() ? QString() : QStringLiteral(" WHERE ") + all;
}

Row encoded(Row row, bool encode)
{
    for (QVariant& value : row)
        value = encode ? QVariant(QuenzoTool::ckEncode(value.toString())) : value;
    return row;
}

QString insertion(const QString& table, const Row& row)
{
    const QString separator = QStringLiteral(", ");
    return QStringLiteral("INSERT INTO %1(%2) VALUES(%3);")
        .arg(table, placeholders(row, QStringLiteral("%")).join(separator),
             placeholders(row, QStringLiteral(":%")).join(separator));
}

QString change(const QString& table, const Row& row, const QString& key)
{
    const QString values = placeholders(row, QStringLiteral("% = :%")).join(QStringLiteral(", "));
    return QStringLiteral("UPDATE %1 SET %2 WHERE %3 = :%3;").arg(table, values, key);
}

} // namespace

// Random work through the library and through Qt's driver alone, side by side: equal reports, equal
// databases.
class tst_DBSequences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void equalWorkLeavesEqualDatabases();
    void everyKindOfValueIsReadAsTheDriverReadsIt();
    void fieldsAreNamedAsTheDriverNamesThem();

private:
    QVariant value();
    QString table();
    Row row();
    void step();
    void executeOnBoth(const QString& sql);
    void compare(const Report& report, const Report& expected, const QString& what);
    Report insertMap(const QString& name, Row values, bool encode);
    Report insertList(const QString& name, QList<QVariant> rows, bool encode);
    void compareDumps(quint32 seed);

    QRandomGenerator m_random;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<Stepped> m_library;
    QSqlDatabase m_peer;
    QString m_history;
};

void tst_DBSequences::init()
{
    m_log = std::make_unique<MessageLog>();
}

void tst_DBSequences::cleanup()
{
    m_library.reset();
    m_peer = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("peer"));
    m_log.reset();
}

namespace {

const QStringList schema{
    QStringLiteral("CREATE TABLE a(id UNIQUE, name, state INTEGER, more REAL)"),
    QStringLiteral("CREATE TABLE b(id INTEGER UNIQUE ON CONFLICT ROLLBACK, name TEXT CHECK(name != 'bad'))"),
    QStringLiteral("CREATE TABLE c(id TEXT NOT NULL, name BLOB, UNIQUE(id, name) ON CONFLICT REPLACE)"),
    QStringLiteral("CREATE TABLE d(id, name REFERENCES a(id))"),
    QStringLiteral(
        "CREATE TRIGGER no13 BEFORE INSERT ON a WHEN new.state = 13 BEGIN SELECT RAISE(ABORT, 'no 13'); END"),
    QStringLiteral(
        "CREATE TRIGGER no7 AFTER UPDATE ON a WHEN new.state = 7 BEGIN SELECT RAISE(ROLLBACK, 'no 7'); END"),
    QStringLiteral(
        "CREATE TRIGGER no5 AFTER INSERT ON d WHEN new.id = 5 BEGIN SELECT RAISE(FAIL, 'no 5'); END"),
    QStringLiteral("CREATE VIEW v AS SELECT id, name FROM a"),
};

const QStringList hostsWork{
    QStringLiteral("BEGIN"),
    QStringLiteral("COMMIT"),
    QStringLiteral("ROLLBACK"),
    QStringLiteral("ALTER TABLE d ADD COLUMN extra DEFAULT 'x'"),
    QStringLiteral("ALTER TABLE d DROP COLUMN extra"),
    QStringLiteral("DROP TABLE d"),
    QStringLiteral("CREATE TABLE d(name, id INTEGER UNIQUE)"),
    QStringLiteral("CREATE TEMPORARY TABLE a(id, name, state, more)"),
    QStringLiteral("DROP TABLE temp.a"),
    QStringLiteral("CREATE INDEX i ON a(name)"),
    QStringLiteral("DROP INDEX i"),
    QStringLiteral("VACUUM"),
    QStringLiteral("PRAGMA foreign_keys = on"),
    QStringLiteral("PRAGMA foreign_keys = off"),
    QStringLiteral("ALTER TABLE c RENAME COLUMN name TO other"),
    QStringLiteral("ALTER TABLE c RENAME COLUMN other TO name"),
    QStringLiteral("ANALYZE"),
};

} // namespace

QVariant tst_DBSequences::value()
{
    switch (m_random.bounded(14)) {
    case 0:
        return {};
    case 1:
        return QString(QLatin1String(""));
    case 2:
        return QStringLiteral("bad");
    case 3:
        return QStringLiteral("text \u4e2d %1").arg(m_random.bounded(9));
    case 4:
        return m_random.bounded(100) / 8.0;
    case 5:
        return QByteArray(m_random.bounded(4), '\xff');
    case 6:
        return m_random.bounded(2) == 0;
    case 7:
        return QDate(2026, 1, 1).addDays(m_random.bounded(5));
    case 8:
        return std::numeric_limits<qint64>::max() - m_random.bounded(3);
    case 9:
        return QString(m_random.bounded(40), QLatin1Char('z'));
    default:
        return m_random.bounded(20);
    }
}

QString tst_DBSequences::table()
{
    static const char* const names[] = {"a", "a", "a", "b", "c", "d", "v", "main.a", "missing"};
    return QLatin1String(names[m_random.bounded(9)]);
}

Row tst_DBSequences::row()
{
    Row row;
    row.insert(QStringLiteral("id"), value());
    if (m_random.bounded(5) > 0)
        row.insert(QStringLiteral("name"), value());
    if (m_random.bounded(6) == 0)
        row.insert(QLatin1String(m_random.bounded(3) == 0 ? "wrong" : "state"), value());
    return row;
}

void tst_DBSequences::executeOnBoth(const QString& sql)
{
    QSqlQuery ours(QSqlDatabase::database(QStringLiteral("Quenzo")));
    QSqlQuery theirs(m_peer);
    const bool done = ours.exec(sql);
    m_history += sql + (done ? QStringLiteral("\n") : QStringLiteral(" fails\n"));
    QVERIFY2(theirs.exec(sql) == done, qUtf8Printable(m_history.right(2000)));
    QCOMPARE(ours.lastError().text(), theirs.lastError().text());
}

void tst_DBSequences::compare(const Report& report, const Report& expected, const QString& what)
{
    m_history += what + (expected.done ? QStringLiteral("\n") : QStringLiteral(" fails\n"));
    const QString texts = m_history.right(2000) + QStringLiteral("\nours: ") + report.error
        + QStringLiteral("\ntheirs: ") + expected.error;
    QVERIFY2(report.done == expected.done, qUtf8Printable(texts));
    QVERIFY2(report.error == expected.error, qUtf8Printable(texts));
    QVERIFY2(report.rows == expected.rows, qUtf8Printable(texts));
}

Report tst_DBSequences::insertMap(const QString& name, Row values, bool encode)
{
    return {m_library->insertToDatabase(name, values, encode), {}, m_log->takeDebugTexts().value(2)};
}

Report tst_DBSequences::insertList(const QString& name, QList<QVariant> rows, bool encode)
{
    return {m_library->insertToDatabase(name, rows, encode), {}, m_log->takeDebugTexts().value(2)};
}

void tst_DBSequences::step()
{
    ByQt peer(m_peer);
    const QString name = table();
    const QString id = QStringLiteral("id");
    const bool encode = m_random.bounded(6) == 0;
    Row values = row();
    switch (m_random.bounded(8)) {
    case 0:
        executeOnBoth(hostsWork.at(m_random.bounded(hostsWork.size())));
        break;
    case 1: {
        QList<QVariant> rows{values, row(), row()};
        Report expected{true, {}, {}};
        for (const QVariant& one : qAsConst(rows)) {
            if (!expected.done)
                break;
            const Row bound = encoded(one.toMap(), encode);
            expected = peer.run(insertion(name, bound), bound);
        }
        if (!expected.done)
            m_peer.rollback();
        compare(insertList(name, rows, encode), expected, QStringLiteral("list insert ") + name);
        break;
    }
    case 2: {
        const QVariant key = value();
        values.remove(id);
        const Row bound = encoded(values, encode);
        const Report expected = peer.run(change(name, bound, id), bound, id, key);
        const bool done = m_library->updateToDatabase(name, id, key, values, encode);
        compare({done, {}, m_log->takeDebugTexts().value(2)}, expected, QStringLiteral("update ") + name);
        break;
    }
    case 3: {
        const Row bound = encoded(values, encode);
        const Report expected =
            peer.run(QStringLiteral("DELETE FROM ") + name + conditions(bound) + QLatin1Char(';'), bound);
        const bool done = m_library->deleteFromDatabase(name, values, encode);
        compare({done, {}, m_log->takeDebugTexts().value(2)}, expected, QStringLiteral("delete ") + name);
        break;
    }
    case 4: {
        const Row bound = m_random.bounded(2) == 0 ? Row() : values;
        Row asked = bound;
        const Report expected =
            peer.run(QStringLiteral("SELECT * FROM ") + name + conditions(bound) + QLatin1Char(';'), bound);
        const QVariantList rows = m_library->selectFromDatabase(name, asked, false);
        const QString error = m_log->takeDebugTexts().value(2);
        compare({error.isEmpty(), rows, error}, expected, QStringLiteral("select ") + name);
        break;
    }
    default: {
        const Row bound = encoded(values, encode);
        compare(insertMap(name, values, encode), peer.run(insertion(name, bound), bound),
                QStringLiteral("insert ") + name);
        break;
    }
    }
}

void tst_DBSequences::compareDumps(quint32 seed)
{
    for (const char* name : {"main.a", "temp.a", "b", "c", "d", "sqlite_master"}) {
        const QString text = QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(QLatin1String(name));
        const Report ours = ByQt(QSqlDatabase::database(QStringLiteral("Quenzo"))).run(text, {});
        const Report theirs = ByQt(m_peer).run(text, {});
        QVERIFY2(ours.rows == theirs.rows && ours.error == theirs.error,
                 qUtf8Printable(QStringLiteral("seed %1, table %2:\n").arg(seed).arg(QLatin1String(name))
                                + m_history.right(3000)));
    }
}

void tst_DBSequences::equalWorkLeavesEqualDatabases()
{
    constexpr int sequences = 500;
    constexpr int steps = 60;
    const quint32 firstSeed =
        qEnvironmentVariableIsSet("SEED") ? qgetenv("SEED").toUInt() : QRandomGenerator::global()->generate();
    qInfo("first seed: %u (SEED chooses it)", firstSeed);
    for (int sequence = 0; sequence < sequences; ++sequence) {
        const quint32 seed = firstSeed + static_cast<quint32>(sequence);
        m_random.seed(seed);
        m_history.clear();
        m_library = std::make_unique<Stepped>();
        QVERIFY(m_library->initDatabase(QStringLiteral(":memory:")));
        m_peer = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("peer"));
        m_peer = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("peer"));
        m_peer.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(m_peer.open());
        for (const QString& sql : schema)
            executeOnBoth(sql);
        for (int i = 0; i < steps && !QTest::currentTestFailed(); ++i)
            step();
        compareDumps(seed);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("with SEED=%1").arg(seed)));
    }
    QCOMPARE(m_log->takeWarnings(), QStringList());
}

void tst_DBSequences::everyKindOfValueIsReadAsTheDriverReadsIt()
{
    const QString columns = QStringLiteral(
        "(SELECT NULL AS a, '' AS b, x'' AS c, 9223372036854775807 AS d, -9223372036854775807 - 1 AS e, 0.1 "
        "AS f, "
        "9e999 AS g, -0.0 AS h, 'text' AS i, 'a' || char(0) || 'b' AS j, char(20013, 65279, 128512) AS k, "
        "x'00ff' AS l, CAST(x'c3' AS TEXT) AS m, CAST(x'eda080' AS TEXT) AS n, CAST(x'ff41' AS TEXT) AS o, "
        "CAST(x'c080' AS TEXT) AS p, CAST(x'f0908080f5' AS TEXT) AS q, printf('%05000d', 1) AS r, 1 = 1 AS "
        "s, "
        "CAST('5' AS INTEGER) AS t, date('2026-01-01') AS u, CAST(x'efbbbf41' AS TEXT) AS v)");
    for (const char* encoding : {"UTF-8", "UTF-16le", "UTF-16be"}) {
        m_library = std::make_unique<Stepped>();
        QVERIFY(m_library->initDatabase(QStringLiteral(":memory:")));
        const QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"));
        QSqlQuery query(connection);
        QVERIFY(query.exec(QStringLiteral("PRAGMA encoding = '%1'").arg(QLatin1String(encoding))));
        QVERIFY(query.exec(QStringLiteral("CREATE TABLE declared AS SELECT * FROM ") + columns));
        QVERIFY(query.exec(QStringLiteral(
            "CREATE TABLE typed(i INTEGER, r REAL, t TEXT, b BLOB, n NUMERIC, d DATE, o BOOL)")));
        for (const char* one : {"1", "'1'", "2.5", "'x'", "x'31'", "NULL", "'2026-01-01'"})
            QVERIFY(query.exec(
                QStringLiteral("INSERT INTO typed VALUES(%1,%1,%1,%1,%1,%1,%1)").arg(QLatin1String(one))));
        query.finish();
        for (const QString& table : {columns, QStringLiteral("declared"), QStringLiteral("typed")}) {
            const QVariantList found = m_library->selectFromDatabase(table, false);
            const QVariantList expected =
                ByQt(connection).run(QStringLiteral("SELECT * FROM ") + table, {}).rows;
            QCOMPARE(found.size(), expected.size());
            for (int i = 0; i < found.size(); ++i) {
                const Row ours = found.at(i).toMap();
                const Row theirs = expected.at(i).toMap();
                QCOMPARE(ours.keys(), theirs.keys());
                for (auto value = ours.cbegin(); value != ours.cend(); ++value) {
                    const QVariant other = theirs.value(value.key());
                    const QByteArray where =
                        QByteArray(encoding) + ' ' + table.left(10).toUtf8() + ' ' + value.key().toUtf8();
                    QVERIFY2(value->userType() == other.userType(), where.constData());
                    QVERIFY2(value->isNull() == other.isNull(), where.constData());
                    QVERIFY2(*value == other, where.constData());
                }
            }
        }
    }
}

void tst_DBSequences::fieldsAreNamedAsTheDriverNamesThem()
{
    m_library = std::make_unique<Stepped>();
    QVERIFY(m_library->initDatabase(QStringLiteral(":memory:")));
    const QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"));
    for (const char* fields : {"1 AS a, 2 AS A, 3 AS a", "1 AS \"a.b\", 2 AS \"c\"\"d\"", "1, 2 + 3",
                               "1 AS \"\u4e2d\"", "1 AS ''"}) {
        const QString table = QStringLiteral("(SELECT %1)").arg(QString::fromUtf8(fields));
        QCOMPARE(m_library->selectFromDatabase(table, false),
                 ByQt(connection).run(QStringLiteral("SELECT * FROM ") + table, {}).rows);
    }
}

QTEST_GUILESS_MAIN(tst_DBSequences)
#include "tst_dbsequences.moc"
