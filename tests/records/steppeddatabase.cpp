// SPDX-License-Identifier: MIT
#include "steppeddatabase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

SteppedDatabase::~SteppedDatabase()
{
    closeDB();
}

void SteppedDatabase::openNew()
{
    if (!m_folder.isValid() || !reopen())
        qFatal("cannot open %s", qUtf8Printable(path()));
    outside(QStringLiteral("CREATE TABLE channel(id UNIQUE, name, state)"));
}

bool SteppedDatabase::reopen()
{
    // No plug is pulled here, and flushing would be most of the time.
    return initDatabase(path())
        && QSqlQuery(QSqlDatabase::database(QStringLiteral("Quenzo")))
               .exec(QStringLiteral("PRAGMA synchronous = OFF"));
}

void SteppedDatabase::runBurst()
{
    do
        commandExec();
    while (isRunning());
}

bool SteppedDatabase::queueRow(int id, const QString& name)
{
    QList<QVariant> rows{QVariantMap{{QStringLiteral("id"), id}, {QStringLiteral("name"), name}}};
    return threadToDatabase(DB_INSERT, QStringLiteral("channel"), rows, QString(), QVariant(), false,
                            QString());
}

QVariantList SteppedDatabase::outside(const QString& sql) const
{
    const QString name = QStringLiteral("outside");
    QVariantList values;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path());
        if (!database.open())
            qFatal("cannot open %s from outside", qUtf8Printable(path()));
        QSqlQuery query(database);
        query.exec(QStringLiteral("PRAGMA synchronous = OFF"));
        if (!query.exec(sql))
            qFatal("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
        while (query.next())
            values.append(query.value(0));
    }
    QSqlDatabase::removeDatabase(name);
    return values;
}

QVariantList SteppedDatabase::committedIds() const
{
    return outside(QStringLiteral("SELECT id FROM channel ORDER BY rowid"));
}
