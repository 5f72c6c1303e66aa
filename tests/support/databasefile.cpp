// SPDX-License-Identifier: MIT
#include "databasefile.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

QVariantList askDatabase(const QString& file, const QString& sql)
{
    QVariantList answers;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        database.setDatabaseName(file);
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        if (!query.exec(sql))
            qFatal("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
        while (query.next())
            answers.append(query.value(0));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
    return answers;
}
