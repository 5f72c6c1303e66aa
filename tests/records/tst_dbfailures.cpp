// SPDX-License-Identifier: MIT
#include "recordsfixture.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <functional>
#include <memory>

using Call = std::function<bool(DBHelper& database, const QString& tableName)>;

Q_DECLARE_METATYPE(Call)

// What a statement that fails says, and where.
class tst_DBFailures : public RecordsFixture {
    Q_OBJECT

private Q_SLOTS:
    void brokenReadingYieldsWhatItReadAndWritesNoMessage();
    void brokenReadingIsToldInTheCategory();
    void causesAreToldInTheCategory_data();
    void causesAreToldInTheCategory();
    void transactionThatTheDatabaseEndedIsTold_data();
    void transactionThatTheDatabaseEndedIsTold();
    void failuresWriteThreeMessages_data();
    void failuresWriteThreeMessages();
    void failedPreparationIsNamedByItsCause();
    void closedConnectionFails_data();
    void closedConnectionFails();
    void removedConnectionNeverTurnsToTheHostsDefaultOne();
    void columnNamesBeyondAsciiFail();
    void emptyRowFails();
    void elementWithoutMapIsAnEmptyRow();

private:
    void damagedFile();
};

void tst_DBFailures::damagedFile()
{
    QList<QVariant> rows;
    for (int id = 0; id < 2000; ++id)
        rows.append(row(id, QString(200, QLatin1Char('x'))));
    QVERIFY(m_database->insertToDatabase(table, rows, false));
    m_database->closeDB();
    QFile file(m_database->path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(file.size() / 2));
    file.write(QByteArray(32 * 1024, '\xff'));
    file.close();
    QVERIFY(m_database->reopen());
}

void tst_DBFailures::brokenReadingYieldsWhatItReadAndWritesNoMessage()
{
    damagedFile();
    const QList<QVariant> found = m_database->selectFromDatabase(table, false);
    QVERIFY2(!found.isEmpty() && found.size() < 2000, qPrintable(QString::number(found.size())));
    for (int id = 0; id < found.size(); ++id)
        QCOMPARE(found.at(id).toMap().value(QStringLiteral("id")).toInt(), id);
    QVERIFY2(m_log->take().isEmpty(), "the select itself has not failed");
}

void tst_DBFailures::brokenReadingIsToldInTheCategory()
{
    damagedFile();
    const CategoryOn records("quenzo.records");
    // The second one is a statement that was kept.
    for (int i = 0; i < 2; ++i) {
        m_database->selectFromDatabase(table, false);
        QCOMPARE(
            m_log->takeWarnings(),
            QStringList{QStringLiteral("cannot read all rows of channel: database disk image is malformed "
                                       "(SELECT * FROM channel;)")});
    }
}

void tst_DBFailures::causesAreToldInTheCategory_data()
{
    QTest::addColumn<Call>("succeeds");
    QTest::addColumn<QString>("line");
    QTest::newRow("insert")
        << Call([](DBHelper& database, const QString& name) {
               return database.insertToDatabase(name, QStringLiteral("id"), 1, false);
           })
        << QStringLiteral(
               "cannot insert into missing: no such table: missing (INSERT INTO missing(id) VALUES(:id);)");
    QTest::newRow("list insert") << Call([](DBHelper& database, const QString&) {
        QList<QVariant> rows{row(1, 1), row(1, 1)};
        return database.insertToDatabase(table, rows, false);
    })
                                 << QStringLiteral(
                                        "cannot insert into channel: UNIQUE constraint failed: channel.id "
                                        "(INSERT INTO channel(id, name) VALUES(:id, :name);)");
    QTest::newRow("update") << Call([](DBHelper& database, const QString& name) {
        Row values{{QStringLiteral("name"), 1}};
        return database.updateToDatabase(name, QStringLiteral("id"), 1, values, false);
    })
                            << QStringLiteral("cannot update missing: no such table: missing (UPDATE missing "
                                              "SET name = :name WHERE id = :id;)");
    QTest::newRow("delete") << Call([](DBHelper& database, const QString& name) {
        return database.deleteFromDatabase(name);
    }) << QStringLiteral("cannot delete from missing: no such table: missing (DELETE FROM missing;)");
    QTest::newRow("select") << Call([](DBHelper& database, const QString&) {
        return !database.selectFromDatabase(QStringLiteral("no\nsuch"), false).isEmpty();
    }) << QStringLiteral("cannot select from no such: no such table: no (SELECT * FROM no such;)");
    QTest::newRow("closed") << Call([](DBHelper& database, const QString& name) {
        database.closeDB();
        return database.deleteFromDatabase(name);
    }) << QStringLiteral("cannot delete from missing: Database not open (DELETE FROM missing;)");
}

void tst_DBFailures::causesAreToldInTheCategory()
{
    QFETCH(const Call, succeeds);
    QFETCH(const QString, line);
    const CategoryOn records("quenzo.records");
    QVERIFY(!succeeds(*m_database, QStringLiteral("missing")));
    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 4);
    QCOMPARE(messages.last().type, QtWarningMsg);
    QCOMPARE(messages.last().text, line);
}

void tst_DBFailures::transactionThatTheDatabaseEndedIsTold_data()
{
    QTest::addColumn<QString>("conflict");
    QTest::addColumn<bool>("ended");
    QTest::newRow("abort") << QStringLiteral("ABORT") << false;
    QTest::newRow("fail") << QStringLiteral("FAIL") << false;
    if (SQLITE_IS_ASKED)
        QTest::newRow("rollback") << QStringLiteral("ROLLBACK") << true;
}

void tst_DBFailures::transactionThatTheDatabaseEndedIsTold()
{
    QFETCH(const QString, conflict);
    QFETCH(const bool, ended);
    m_database->outside(QStringLiteral("CREATE TABLE picky(id UNIQUE ON CONFLICT ") + conflict
                        + QStringLiteral(", name)"));
    m_database->outside(QStringLiteral("INSERT INTO picky VALUES('1', 0), ('2', 0)"));
    const CategoryOn records("quenzo.records");
    const QString picky = QStringLiteral("picky");
    QList<QVariant> changes{Row{{QStringLiteral("name"), 5}},
                            Row{{QStringLiteral("ID"), QStringLiteral("2")}}};
    QVERIFY(
        m_database->threadToDatabase(DB_UPDATE, picky, changes, QStringLiteral("id"), 1, false, QString()));
    m_database->runBurst();
    const QStringList lines = m_log->takeWarnings();
    QCOMPARE(lines.size(), ended ? 2 : 1);
    QCOMPARE(lines.first().endsWith(QLatin1String("its transaction is rolled back")), ended);
    QCOMPARE(lines.last().startsWith(QLatin1String("cannot commit: ")), ended);
    QCOMPARE(m_database->outside(QStringLiteral("SELECT name FROM picky ORDER BY id")),
             (QVariantList{ended ? 0 : 5, 0}));
}

void tst_DBFailures::failuresWriteThreeMessages_data()
{
    QTest::addColumn<Call>("succeeds");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("function");
    QTest::newRow("insert, map") << Call([](DBHelper& database, const QString& name) {
        Row values = row(1, 2);
        return database.insertToDatabase(name, values, false);
    }) << QStringLiteral("INSERT INTO no such(id, name) VALUES(:id, :name);")
                                 << QStringLiteral("Error at insert no such") << 285
                                 << QStringLiteral(
                                        "bool __cdecl DBHelper::insertToDatabase(class QString,class "
                                        "QMap<class QString,class QVariant> &,bool)");
    QTest::newRow("insert, list") << Call([](DBHelper& database, const QString& name) {
        QList<QVariant> rows{row(1, 2)};
        return database.insertToDatabase(name, rows, false);
    }) << QStringLiteral("INSERT INTO no such(id, name) VALUES(:id, :name);")
                                  << QStringLiteral("Error at insert no such") << 337
                                  << QStringLiteral(
                                         "bool __cdecl DBHelper::insertToDatabase(class QString,class "
                                         "QList<class QVariant> &,bool)");
    QTest::newRow("update, map")
        << Call([](DBHelper& database, const QString& name) {
               Row values{{QStringLiteral("name"), 1}};
               return database.updateToDatabase(name, QStringLiteral("id"), 1, values, false);
           })
        << QStringLiteral("UPDATE no such SET name = :name WHERE id = :id;")
        << QStringLiteral("Error at update no such") << 385
        << QStringLiteral("bool __cdecl DBHelper::updateToDatabase(class QString,class QString,class "
                          "QVariant,class QMap<class QString,class QVariant> &,bool)");
    QTest::newRow("update, list")
        << Call([](DBHelper& database, const QString& name) {
               QList<QVariant> rows{Row{{QStringLiteral("name"), 1}}};
               return database.updateToDatabase(name, QStringLiteral("id"), 1, rows, false);
           })
        << QStringLiteral("UPDATE no such SET name = :name WHERE id = :id;")
        << QStringLiteral("Error at update no such") << 437
        << QStringLiteral("bool __cdecl DBHelper::updateToDatabase(class QString,class QString,class "
                          "QVariant,class QList<class QVariant> &,bool)");
    QTest::newRow("delete") << Call([](DBHelper& database, const QString& name) {
        return database.deleteFromDatabase(name);
    }) << QStringLiteral("DELETE FROM no such;")
                            << QStringLiteral("Error at delete no such") << 499
                            << QStringLiteral("bool __cdecl DBHelper::deleteFromDatabase(class QString,class "
                                              "QMap<class QString,class QVariant> &,bool)");
    QTest::newRow("select") << Call([](DBHelper& database, const QString& name) {
        return !database.selectFromDatabase(name, false).isEmpty();
    }) << QStringLiteral("SELECT * FROM no such;")
                            << QStringLiteral("Error at select no such") << 562
                            << QStringLiteral(
                                   "class QList<class QVariant> __cdecl DBHelper::selectFromDatabase("
                                   "class QString,class QMap<class QString,class QVariant> &,bool)");
}

void tst_DBFailures::failuresWriteThreeMessages()
{
    QFETCH(const Call, succeeds);
    QFETCH(const QString, statement);
    QFETCH(const QString, operation);
    QFETCH(const int, line);
    QFETCH(const QString, function);
    QVERIFY(!succeeds(*m_database, QStringLiteral("no such")));

    const QVector<LoggedMessage> messages = m_log->take();
    QCOMPARE(messages.size(), 3);
    QCOMPARE(messages.at(0).text, statement);
    QCOMPARE(messages.at(1).text, operation);
    QVERIFY(!messages.at(2).text.isEmpty());
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(messages.at(i).type, QtDebugMsg);
        QCOMPARE(messages.at(i).file, QStringLiteral("QuenzoTool/source/dbhelper"));
        QCOMPARE(messages.at(i).line, line + i);
        QCOMPARE(messages.at(i).function, function);
    }
}

void tst_DBFailures::failedPreparationIsNamedByItsCause()
{
    QVERIFY(!m_database->deleteFromDatabase(QStringLiteral("missing"), QStringLiteral("id"), 1, false));
    const QString cause = m_log->takeDebugTexts().value(2);
    QVERIFY2(cause.contains(QLatin1String("no such table: missing")), qUtf8Printable(cause));
}

void tst_DBFailures::closedConnectionFails_data()
{
    QTest::addColumn<bool>("removed");
    QTest::newRow("closed") << false;
    QTest::newRow("removed") << true;
}

void tst_DBFailures::closedConnectionFails()
{
    QFETCH(const bool, removed);
    m_database->closeDB();
    if (removed)
        m_database = std::make_unique<SteppedDatabase>();
    Row values = row(1, 2);
    QList<QVariant> rows{values};
    QVERIFY(!m_database->insertToDatabase(table, values, false));
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    QVERIFY(!m_database->updateToDatabase(table, QStringLiteral("id"), 1, values, false));
    QVERIFY(!m_database->updateToDatabase(table, QStringLiteral("id"), 1, rows, false));
    QVERIFY(!m_database->deleteFromDatabase(table));
    QVERIFY(m_database->selectFromDatabase(table, false).isEmpty());
    const QStringList texts = m_log->takeDebugTexts();
    QCOMPARE(texts.size(), 18);
    for (int i = 2; i < texts.size(); i += 3)
        QCOMPARE(texts.at(i), QStringLiteral("Database not open"));
}

void tst_DBFailures::removedConnectionNeverTurnsToTheHostsDefaultOne()
{
    {
        QSqlDatabase hosts = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        hosts.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(hosts.open());
        QSqlQuery query(hosts);
        QVERIFY(query.exec(QStringLiteral("CREATE TABLE channel(id, name)")));

        SteppedDatabase never; // opened
        QVERIFY(!never.insertToDatabase(table, QStringLiteral("id"), 1, false));
        QVERIFY(never.selectFromDatabase(table, false).isEmpty());
        QVERIFY(query.exec(QStringLiteral("SELECT count(*) FROM channel")));
        QVERIFY(query.next());
        QCOMPARE(query.value(0).toInt(), 0);
    }
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
    QCOMPARE(m_log->takeDebugTexts().size(), 6);
}

void tst_DBFailures::columnNamesBeyondAsciiFail()
{
    m_database->outside(QStringLiteral("CREATE TABLE wide(\u540d)"));
    QVERIFY(!m_database->insertToDatabase(QStringLiteral("wide"), QStringLiteral("\u540d"), 1, false));
    QCOMPARE(m_log->takeDebugTexts().size(), 3);
}

void tst_DBFailures::emptyRowFails()
{
    Row nothing;
    QVERIFY(!m_database->insertToDatabase(table, nothing, false));
    QCOMPARE(m_log->takeDebugTexts().value(0), QStringLiteral("INSERT INTO channel() VALUES();"));
}

void tst_DBFailures::elementWithoutMapIsAnEmptyRow()
{
    QList<QVariant> rows{row(1, QVariant()), QStringLiteral("no map"), row(2, QVariant())};
    QVERIFY(!m_database->insertToDatabase(table, rows, false));
    QCOMPARE(m_log->takeDebugTexts().value(0), QStringLiteral("INSERT INTO channel() VALUES();"));
    QCOMPARE(m_database->committedIds(), QVariantList{1});
}

QTEST_GUILESS_MAIN(tst_DBFailures)
#include "tst_dbfailures.moc"
