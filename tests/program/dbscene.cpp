// SPDX-License-Identifier: MIT
#include "dbscene.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

void DBScene::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    ask(QStringLiteral("CREATE TABLE channel(id UNIQUE, name, state)"));
}

QStringList DBScene::ask(const QString& sql) const
{
    QStringList answers;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        database.setDatabaseName(path());
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        if (!query.exec(sql))
            qFatal("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
        while (query.next())
            answers.append(query.value(0).toString());
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
    return answers;
}

QStringList DBScene::dbWords(const QStringList& arguments) const
{
    return QStringList{QStringLiteral("db"), QStringLiteral("--file"), path()} + arguments;
}

Ended DBScene::db(const QStringList& arguments, const QByteArray& input) const
{
    return QuenzoProcess(dbWords(arguments)).end(input);
}
