// SPDX-License-Identifier: MIT
#include "recordsfixture.h"
#include "runroot.h"

#include <QSqlDatabase>
#include <QtTest>

// Opening, closing and removing the one connection.
class tst_DBConnection : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void secondOpeningFailsAndSaysSo();
    void fileThatCannotBeOpenedFailsAndSaysSo();
    void closedConnectionOpensAgain();
    void removedConnectionOpensAgain();
    void removingWithoutConnectionDoesNothing();
    void connectionIsNamedQuenzo();
};

void tst_DBConnection::secondOpeningFailsAndSaysSo()
{
    QVERIFY(!m_database->reopen());
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().type, QtDebugMsg);
    QCOMPARE(messages.first().text, QStringLiteral("Database was opened!"));
    QCOMPARE(messages.first().file, QStringLiteral("QuenzoTool/source/dbhelper"));
    QCOMPARE(messages.first().line, 89);
    QCOMPARE(messages.first().function, QStringLiteral("bool __cdecl DBHelper::initDatabase(class QString)"));
    QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), 1, false));
}

void tst_DBConnection::fileThatCannotBeOpenedFailsAndSaysSo()
{
    m_database->closeDB();
    QVERIFY(!m_database->initDatabase(RunRoot::path() + QStringLiteral("/no/such/folder/records.db")));
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().text, QStringLiteral("fail to open database!"));
    QCOMPARE(messages.first().line, 97);
    QCOMPARE(messages.first().function, QStringLiteral("bool __cdecl DBHelper::initDatabase(class QString)"));

    QVERIFY(!m_database->deleteFromDatabase(table));
    const QString cause = m_log->takeDebugTexts().value(2);
    QVERIFY2(cause.contains(QLatin1String("unable to open database file")), qUtf8Printable(cause));
    QVERIFY(m_database->reopen());
}

void tst_DBConnection::closedConnectionOpensAgain()
{
    for (int id = 0; id < 3; ++id) {
        QVERIFY(m_database->closeDB());
        QVERIFY(m_database->reopen());
        QVERIFY(m_database->insertToDatabase(table, QStringLiteral("id"), id, false));
    }
    QCOMPARE(m_database->committedIds().size(), 3);
}

void tst_DBConnection::removedConnectionOpensAgain()
{
    DBHelper* const instance = DBHelper::getInstance();
    QCOMPARE(DBHelper::getInstance(), instance);
    m_database->closeDB();
    const QString path = m_database->path();
    m_database.reset();
    for (int id = 0; id < 3; ++id) {
        QVERIFY(instance->initDatabase(QStringLiteral(":memory:")));
        QVERIFY(QSqlDatabase::contains(QStringLiteral("Quenzo")));
        QVERIFY(instance->closeDB());
        DBHelper::removeDatabase();
        QVERIFY(!QSqlDatabase::contains(QStringLiteral("Quenzo")));
        QVERIFY(!instance->insertToDatabase(table, QStringLiteral("id"), 1, false));
    }
}

void tst_DBConnection::removingWithoutConnectionDoesNothing()
{
    m_database.reset();
    DBHelper::removeDatabase();
    DBHelper::removeDatabase();
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("Quenzo")));
}

void tst_DBConnection::connectionIsNamedQuenzo()
{
    const QSqlDatabase connection = QSqlDatabase::database(QStringLiteral("Quenzo"), false);
    QVERIFY(connection.isOpen());
    QCOMPARE(connection.driverName(), QStringLiteral("QSQLITE"));
    QCOMPARE(connection.databaseName(), m_database->path());
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList{QStringLiteral("Quenzo")});
}

QTEST_GUILESS_MAIN(tst_DBConnection)
#include "tst_dbconnection.moc"
