// SPDX-License-Identifier: MIT
#include "records/statementtext.h"

#include <QtTest>

class tst_StatementText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void insertNamesColumnsAndPlaceholders_data();
    void insertNamesColumnsAndPlaceholders();
    void updateSetsColumnsWhereTheKeyEquals_data();
    void updateSetsColumnsWhereTheKeyEquals();
    void conditionsAreJoinedByAnd_data();
    void conditionsAreJoinedByAnd();
    void namesArePastedAsTheyAre();
};

void tst_StatementText::insertNamesColumnsAndPlaceholders_data()
{
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<QString>("text");
    QTest::newRow("two") << QStringList{QStringLiteral("id"), QStringLiteral("name")}
                         << QStringLiteral("INSERT INTO channel(id, name) VALUES(:id, :name);");
    QTest::newRow("one") << QStringList{QStringLiteral("id")}
                         << QStringLiteral("INSERT INTO channel(id) VALUES(:id);");
    QTest::newRow("none") << QStringList() << QStringLiteral("INSERT INTO channel() VALUES();");
}

void tst_StatementText::insertNamesColumnsAndPlaceholders()
{
    QFETCH(const QStringList, columns);
    QTEST(StatementText::insertRow(QStringLiteral("channel"), columns), "text");
}

void tst_StatementText::updateSetsColumnsWhereTheKeyEquals_data()
{
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    const QStringList two{QStringLiteral("name"), QStringLiteral("state")};
    QTest::newRow("two") << two << QStringLiteral("id")
                         << QStringLiteral("UPDATE channel SET name = :name, state = :state WHERE id = :id;");
    QTest::newRow("key among them")
        << two << QStringLiteral("name")
        << QStringLiteral("UPDATE channel SET name = :name, state = :state WHERE name = :name;");
    QTest::newRow("empty key") << QStringList{QStringLiteral("name")} << QString()
                               << QStringLiteral("UPDATE channel SET name = :name WHERE  = :;");
    QTest::newRow("none") << QStringList() << QStringLiteral("id")
                          << QStringLiteral("UPDATE channel SET  WHERE id = :id;");
}

void tst_StatementText::updateSetsColumnsWhereTheKeyEquals()
{
    QFETCH(const QStringList, columns);
    QFETCH(const QString, key);
    QTEST(StatementText::updateRow(QStringLiteral("channel"), columns, key), "text");
}

void tst_StatementText::conditionsAreJoinedByAnd_data()
{
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<QString>("condition");
    QTest::newRow("none") << QStringList() << QString();
    QTest::newRow("one") << QStringList{QStringLiteral("id")} << QStringLiteral(" WHERE id = :id");
    QTest::newRow("two") << QStringList{QStringLiteral("id"), QStringLiteral("name")}
                         << QStringLiteral(" WHERE id = :id and name = :name");
    QTest::newRow("three") << QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}
                           << QStringLiteral(" WHERE a = :a and b = :b and c = :c");
}

void tst_StatementText::conditionsAreJoinedByAnd()
{
    QFETCH(const QStringList, columns);
    QFETCH(const QString, condition);
    const QString table = QStringLiteral("channel");
    QCOMPARE(StatementText::deleteRows(table, columns),
             QStringLiteral("DELETE FROM channel") + condition + QLatin1Char(';'));
    QCOMPARE(StatementText::selectRows(table, columns),
             QStringLiteral("SELECT * FROM channel") + condition + QLatin1Char(';'));
}

void tst_StatementText::namesArePastedAsTheyAre()
{
    const QString table = QStringLiteral("my \"%1\" 'table'; --");
    const QString column = QStringLiteral("%1 [%2]");
    QCOMPARE(StatementText::insertRow(table, {column}),
             QStringLiteral("INSERT INTO my \"%1\" 'table'; --(%1 [%2]) VALUES(:%1 [%2]);"));
    QCOMPARE(StatementText::updateRow(table, {column}, column),
             QStringLiteral("UPDATE my \"%1\" 'table'; -- SET %1 [%2] = :%1 [%2] WHERE %1 [%2] = :%1 [%2];"));
}

QTEST_APPLESS_MAIN(tst_StatementText)
#include "tst_statementtext.moc"
