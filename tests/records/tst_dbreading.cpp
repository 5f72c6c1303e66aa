// SPDX-License-Identifier: MIT
#include "driverpeer.h"
#include "messagelog.h"
#include "steppeddatabase.h"

#include <QSqlQuery>
#include <QtTest>

using namespace DriverPeer;

// What is read goes from SQLite's columns to the maps, with the driver's conversions and names.
class tst_DBReading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKindOfValueIsReadAsTheDriverReadsIt();
    void fieldsAreNamedAsTheDriverNamesThem();
};

void tst_DBReading::everyKindOfValueIsReadAsTheDriverReadsIt()
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
        SteppedDatabase library;
        QVERIFY(library.initDatabase(QStringLiteral(":memory:")));
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
            const QVariantList found = library.selectFromDatabase(table, false);
            const QVariantList expected = run(connection, QStringLiteral("SELECT * FROM ") + table).rows;
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

void tst_DBReading::fieldsAreNamedAsTheDriverNamesThem()
{
    SteppedDatabase library;
    QVERIFY(library.initDatabase(QStringLiteral(":memory:")));
    const QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"));
    for (const char* fields : {"1 AS a, 2 AS A, 3 AS a", "1 AS \"a.b\", 2 AS \"c\"\"d\"", "1, 2 + 3",
                               "1 AS \"\u4e2d\"", "1 AS ''"}) {
        const QString table = QStringLiteral("(SELECT %1)").arg(QString::fromUtf8(fields));
        QCOMPARE(library.selectFromDatabase(table, false),
                 run(connection, QStringLiteral("SELECT * FROM ") + table).rows);
    }
}

QTEST_GUILESS_MAIN(tst_DBReading)
#include "tst_dbreading.moc"
