// SPDX-License-Identifier: MIT
#include "dbscene.h"

#include "databasefile.h"

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
    const QVariantList found = askDatabase(path(), sql);
    for (const QVariant& answer : found)
        answers.append(answer.toString());
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
