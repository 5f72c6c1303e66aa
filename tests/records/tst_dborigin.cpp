// SPDX-License-Identifier: MIT
#include "otherdriver/otherdriver.h"

#include "records/sqlitedirect.h"

#include <dbhelper.h>

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlDriverCreatorBase>
#include <QSqlQuery>
#include <QtTest>

#include <sqlite3.h>

// Whose SQLite a driver has: two copies must never meet, however alike they are.
class tst_DBOrigin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void driverOfQtSharesOurs();
    void driverWithACopyOfItsOwnDoesNot();
    void recordsGoThroughADriverWithACopyOfItsOwn();
};

namespace {

struct OtherCreator : QSqlDriverCreatorBase {
    QSqlDriver* createObject() const override { return makeOtherDriver(); }
};

class Stepped : public DBHelper {
public:
    Stepped() = default;
    ~Stepped() override { closeDB(); }
};

QString sourceIdBy(QSqlDatabase database)
{
    QSqlQuery query(database);
    return query.exec(QStringLiteral("SELECT sqlite_source_id()")) && query.next() ? query.value(0).toString()
                                                                                   : QString();
}

} // namespace

void tst_DBOrigin::driverOfQtSharesOurs()
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("qt"));
        database.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(database.open());
        QVERIFY(SqliteDirect::isSharedWith(*database.driver()));
        QVERIFY2(!SqliteDirect::isSharedWith(*QSqlDatabase().driver()), "the driver of no connection");
    }
    QSqlDatabase::removeDatabase(QStringLiteral("qt"));
}

void tst_DBOrigin::driverWithACopyOfItsOwnDoesNot()
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(makeOtherDriver(), QStringLiteral("other"));
        database.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(database.open());
        QVERIFY2(sourceIdBy(database) == QLatin1String(sqlite3_sourceid()), "this would be easily told");
        QVERIFY(!SqliteDirect::isSharedWith(*database.driver()));
        QVERIFY(!SqliteDirect::isInTransaction(*database.driver()).has_value());
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
}

void tst_DBOrigin::recordsGoThroughADriverWithACopyOfItsOwn()
{
    QSqlDatabase::registerSqlDriver(QStringLiteral("QSQLITE"), new OtherCreator);
    const QString table = QStringLiteral("channel");
    const QString id = QStringLiteral("id");
    Stepped database;
    QVERIFY(database.initDatabase(QStringLiteral(":memory:")));
    QVERIFY(QSqlQuery(QSqlDatabase::database(QStringLiteral("Quenzo")))
                .exec(QStringLiteral("CREATE TABLE channel(id UNIQUE)")));
    for (int i = 0; i < 100; ++i)
        QVERIFY(database.insertToDatabase(table, id, i, false));
    QList<QVariant> rows;
    for (int i = 100; i < 200; ++i)
        rows.append(QVariantMap{{id, i}});
    QVERIFY(database.insertToDatabase(table, rows, false));
    QVERIFY(!database.insertToDatabase(table, rows, false));
    QVERIFY(database.deleteFromDatabase(table, id, 7, false));
    const QList<QVariant> found = database.selectFromDatabase(table, false);
    QCOMPARE(found.size(), 199);
    QCOMPARE(found.last().toMap().value(id).toString(), QStringLiteral("199"));
    database.closeDB();
    QVERIFY(!database.insertToDatabase(table, id, 1, false));
}

QTEST_GUILESS_MAIN(tst_DBOrigin)
#include "tst_dborigin.moc"
