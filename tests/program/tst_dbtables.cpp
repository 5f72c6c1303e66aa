// SPDX-License-Identifier: MIT
#include "dbscene.h"

#include <QFile>
#include <QtTest>

// What the command db tells of tables, and the ones it makes.
class tst_DBTables : public DBScene {
    Q_OBJECT

private Q_SLOTS:
    void tablesAreToldAndMade();
    void tablesThatCannotBeAreRefused_data();
    void tablesThatCannotBeAreRefused();
    void mistypedTypeIsGuessed();
};

void tst_DBTables::tablesAreToldAndMade()
{
    QCOMPARE(db(words("tables")).output, QByteArray("channel\n"));
    const Ended made = db(words("create game id:integer name:TEXT icon:blob"));
    QVERIFY2(made.code == 0, made.error.constData());
    QCOMPARE(made.output, QByteArray("made the table game\n"));
    QCOMPARE(db(words("tables")).output, QByteArray("channel\ngame\n"));
    QCOMPARE(db(words("schema game")).output,
             QByteArray("CREATE TABLE \"game\" (\"id\" INTEGER, \"name\" TEXT, \"icon\" BLOB);\n"));
    QCOMPARE(db(words("schema")).output.count('\n'), 2);
    QCOMPARE(db(words("insert game id=7 name=one")).code, 0);
    QCOMPARE(ask(QStringLiteral("SELECT typeof(id) FROM game")), words("integer"));

    const QString fresh = m_folder->filePath(QStringLiteral("fresh.db"));
    const QStringList create = words("create game name:text --file") + QStringList(fresh);
    const Ended refused = QuenzoProcess(QStringList(QStringLiteral("db")) + create).end();
    QCOMPARE(refused.code, 1);
    QVERIFY2(refused.error.contains("create --init makes one"), refused.error.constData());
    QVERIFY(!QFile::exists(fresh));
    QCOMPARE(QuenzoProcess(QStringList(QStringLiteral("db")) + create + words("--init")).end().code, 0);
    QVERIFY(QFile::exists(fresh));
}

void tst_DBTables::tablesThatCannotBeAreRefused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("code");
    QTest::newRow("there is one") << QStringLiteral("create channel name:text") << 1;
    QTest::newRow("no columns") << QStringLiteral("create game") << 2;
    QTest::newRow("no type") << QStringLiteral("create game name") << 2;
    QTest::newRow("unknown type") << QStringLiteral("create game name:word") << 2;
    QTest::newRow("no name") << QStringLiteral("create game \"x\":text") << 2;
    QTest::newRow("no table's name") << QStringLiteral("create a-b name:text") << 2;
    QTest::newRow("no such table") << QStringLiteral("schema absent") << 1;
    QTest::newRow("too many words") << QStringLiteral("tables channel") << 2;
    QTest::newRow("init of a row") << QStringLiteral("insert channel id=1 --init") << 2;
    QTest::newRow("no table") << QStringLiteral("select") << 2;
}

void tst_DBTables::tablesThatCannotBeAreRefused()
{
    QFETCH(const QString, line);
    const Ended ended = db(line.split(QLatin1Char(' ')));
    QTEST(ended.code, "code");
    QVERIFY(ended.error.startsWith("quenzo: "));
    QCOMPARE(db(words("tables")).output, QByteArray("channel\n"));
}

void tst_DBTables::mistypedTypeIsGuessed()
{
    const Ended ended = db(words("create game name:txet"));
    QVERIFY2(ended.error.endsWith("; did you mean 'text'? (see quenzo db --help)\n"),
             ended.error.constData());
}

QTEST_GUILESS_MAIN(tst_DBTables)
#include "tst_dbtables.moc"
