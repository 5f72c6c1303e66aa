// SPDX-License-Identifier: MIT
#include "window/records/recordsbase.h"

#include <dbhelper.h>

#include <QFile>

#include <algorithm>

namespace {

const QString tablesPurpose = QStringLiteral("tables");
const QString columnsPurpose = QStringLiteral("columns");
const QString rowsPurpose = QStringLiteral("rows");

// The library pastes names into its statements as they are.
QString quoted(QString name, QChar mark)
{
    return mark + name.replace(mark, QString(2, mark)) + mark;
}

} // namespace

RecordsBase::RecordsBase(QObject* parent)
    : QObject(parent)
{
    connect(
        DBHelper::getInstance(), &DBHelper::onSelectFinish, this,
        [this](const QString&, const QVariantList& rows, const QString& purpose) { take(rows, purpose); });
}

QString RecordsBase::open(const QString& file)
{
    QFile found(file);
    if (!found.open(QIODevice::ReadOnly))
        return tr("'%1' cannot be read: %2").arg(file, found.errorString());
    const QByteArray beginning = found.read(16);
    if (!beginning.isEmpty() && beginning != QByteArray("SQLite format 3", 16))
        return tr("'%1' is no records file. Choose a file such as records.db in a job's output.").arg(file);
    DBHelper* const database = DBHelper::getInstance();
    database->closeDB();
    m_file.clear();
    if (!database->initDatabase(file) || !database->StartThread())
        return tr("'%1' cannot be opened as a records file.").arg(file);
    m_file = file;
    ask(QStringLiteral("sqlite_master"), {{QStringLiteral("type"), QStringLiteral("table")}}, tablesPurpose);
    return {};
}

void RecordsBase::read(const QString& table)
{
    ask(QStringLiteral("pragma_table_info(%1)").arg(quoted(table, QLatin1Char('\''))), {}, columnsPurpose);
    ask(quoted(table, QLatin1Char('"')), {}, rowsPurpose);
}

void RecordsBase::ask(const QString& table, const QVariantMap& conditions, const QString& purpose)
{
    QVariantMap all = conditions;
    ++m_awaited;
    DBHelper::getInstance()->threadToDatabase(DB_SELECT, table, all, {}, {}, false, purpose);
}

// The answers come in the order of the questions.
void RecordsBase::take(const QVariantList& rows, const QString& purpose)
{
    --m_awaited;
    if (purpose == rowsPurpose) {
        Q_EMIT rowsRead(std::make_shared<const QVariantList>(rows), m_columns);
        return;
    }
    QStringList names;
    for (const QVariant& row : rows)
        names.append(row.toMap().value(QStringLiteral("name")).toString());
    if (purpose == columnsPurpose) {
        // Without quotation marks, as the driver names them in the rows.
        m_columns = names.replaceInStrings(QStringLiteral("\""), QString());
        return;
    }
    names.erase(std::remove_if(names.begin(), names.end(),
                               [](const QString& name) { return name.startsWith(QLatin1String("sqlite_")); }),
                names.end());
    names.sort();
    Q_EMIT tablesRead(names);
}
