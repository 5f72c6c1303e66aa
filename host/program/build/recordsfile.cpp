// SPDX-License-Identifier: MIT
#include "build/recordsfile.h"

#include "build/outcomejson.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <array>

namespace {

struct RecordsTexts {
    Q_DECLARE_TR_FUNCTIONS(BuildRecords)
};

constexpr int version = 1;

// The queue inserts alone: what is known already is replaced by what the tables say of conflicts.
const std::array<const char*, 8> tables{
    "CREATE TABLE game(name TEXT PRIMARY KEY ON CONFLICT REPLACE, job TEXT, base TEXT)",
    "CREATE TABLE channel(game TEXT, folder TEXT, name TEXT, number TEXT,"
    " PRIMARY KEY(game, folder) ON CONFLICT REPLACE)",
    "CREATE TABLE sdk(game TEXT, name TEXT, package TEXT, id INTEGER,"
    " PRIMARY KEY(game, name) ON CONFLICT REPLACE)",
    "CREATE TABLE build(number INTEGER PRIMARY KEY AUTOINCREMENT, game TEXT, job TEXT, slice INTEGER,"
    " slices INTEGER, started TEXT, ended TEXT, outcome TEXT, built INTEGER, unchanged INTEGER,"
    " failed INTEGER)",
    "CREATE TABLE step(build INTEGER, channel TEXT, name TEXT, started TEXT, ended TEXT, outcome TEXT,"
    " message TEXT)",
    "CREATE INDEX step_of_build ON step(build)",
    "CREATE TABLE result(build INTEGER, channel TEXT, name TEXT, outcome TEXT, message TEXT,"
    " PRIMARY KEY(build, channel) ON CONFLICT REPLACE)",
    "CREATE TABLE package(game TEXT, channel TEXT, name TEXT, build INTEGER, made TEXT, outcome TEXT,"
    " size INTEGER, inputs TEXT, digest TEXT, detail TEXT, PRIMARY KEY(game, channel) ON CONFLICT REPLACE)",
};

// Finds a column missing that a file of our version has.
const std::array<const char*, 7> probes{
    "SELECT name, job, base FROM game",
    "SELECT game, folder, name, number FROM channel",
    "SELECT game, name, package, id FROM sdk",
    "SELECT number, game, job, slice, slices, started, ended, outcome, built, unchanged, failed FROM build",
    "SELECT build, channel, name, started, ended, outcome, message FROM step",
    "SELECT build, channel, name, outcome, message FROM result",
    "SELECT game, channel, name, build, made, outcome, size, inputs, digest, detail FROM package",
};

QString sentence(const QString& file, const QString& cause)
{
    if (cause.contains(QLatin1String("database is locked")))
        return RecordsTexts::tr("the build records '%1' are locked by another program").arg(file);
    if (cause.contains(QLatin1String("not a database")) || cause.contains(QLatin1String("malformed")))
        return RecordsTexts::tr("'%1' is no file of build records, or a damaged one: %2").arg(file, cause);
    return RecordsTexts::tr("the build records '%1' cannot be used: %2").arg(file, cause);
}

// A connection that lives as long as this, and keeps the first error.
class Connection {
public:
    explicit Connection(const QString& file)
        : m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("build records")))
    {
        m_database.setDatabaseName(file);
        if (!m_database.open())
            m_error = m_database.lastError().databaseText();
    }
    ~Connection()
    {
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("build records"));
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Hands each row to a function; does nothing after an error.
    template <typename Taker> void read(const char* sql, const QVariantList& values, Taker take)
    {
        if (!m_error.isEmpty())
            return;
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        bool done = query.prepare(QString::fromLatin1(sql));
        for (const QVariant& value : values)
            query.addBindValue(value);
        done = done && query.exec();
        while (done && query.next())
            take(query);
        if (query.lastError().isValid())
            m_error = query.lastError().databaseText().simplified();
    }

    void run(const char* sql, const QVariantList& values = {})
    {
        read(sql, values, [](const QSqlQuery&) {});
    }

    QVariant value(const char* sql)
    {
        QVariant found;
        read(sql, {}, [&](const QSqlQuery& row) { found = row.value(0); });
        return found;
    }

    const QString& error() const { return m_error; }

private:
    QSqlDatabase m_database;
    QString m_error;
};

// What keeps an opened file from being of use; empty when nothing does.
QString objectionTo(const QString& file, Connection& connection)
{
    const int found = connection.value("PRAGMA user_version").toInt();
    if (connection.error().isEmpty() && found > version)
        return RecordsTexts::tr("the build records '%1' are of a newer version of this program").arg(file);
    if (connection.error().isEmpty() && found == version) {
        for (const char* const probe : probes)
            connection.run(probe);
    }
    return connection.error().isEmpty() ? QString() : sentence(file, connection.error());
}

// The same for a reader, who makes no file and no tables.
QString objectionToReading(const QString& file, Connection& connection)
{
    QString objection = objectionTo(file, connection);
    if (!objection.isEmpty())
        return objection;
    if (connection.value("PRAGMA user_version").toInt() == version)
        return {};
    return RecordsTexts::tr("'%1' holds no build records").arg(file);
}

QDateTime timeOf(const QVariant& value)
{
    return QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
}

template <typename Outcome, std::size_t count>
Outcome outcomeOf(const QVariant& value, const std::array<const char*, count>& words, Outcome otherwise)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (value.toString() == QLatin1String(words.at(i)))
            return Outcome(i);
    }
    return otherwise;
}

// This file first, then the one of the whole run and those of the slices in the same output folder.
QStringList withSiblings(const QString& file)
{
    const QFileInfo info(file);
    QDir output = info.absoluteDir();
    if (output.dirName().contains(QLatin1String("-of-"))
        && QDir(output.filePath(QStringLiteral(".."))).canonicalPath().endsWith(QLatin1String("/slices")))
        output.setPath(QDir::cleanPath(output.filePath(QStringLiteral("../.."))));
    QStringList files{info.absoluteFilePath()};
    QStringList others{output.filePath(info.fileName())};
    const QDir slices(output.filePath(QStringLiteral("slices")));
    for (const QString& slice : slices.entryList({QStringLiteral("*-of-*")}, QDir::Dirs))
        others.append(slices.filePath(slice + QLatin1Char('/') + info.fileName()));
    for (const QString& other : others) {
        if (QFileInfo(other).isFile() && !files.contains(other))
            files.append(other);
    }
    return files;
}

struct DatedBuild {
    QString made;
    EarlierBuild build;
};

// Without what tells packages apart, for a row whose detail is no channel: it is built again.
DatedBuild datedBuild(const QSqlQuery& row)
{
    DatedBuild found;
    found.made = row.value(3).toString();
    bool isSound = true;
    ChannelOutcome outcome =
        OutcomeJson::channel(QJsonDocument::fromJson(row.value(4).toString().toUtf8()).object(), isSound);
    if (!isSound)
        return found;
    found.build.inputs = row.value(1).toString();
    found.build.digest = row.value(2).toString();
    found.build.isFlushed = row.value(5).toBool();
    found.build.outcome = outcome;
    return found;
}

void takeEarlier(const QString& file, const QString& game, QHash<QString, DatedBuild>& latest, QString& error)
{
    Connection connection(file);
    error = objectionToReading(file, connection);
    if (!error.isEmpty())
        return;
    connection.read("SELECT channel, inputs, digest, made, detail,"
                    " EXISTS(SELECT 1 FROM build WHERE number = package.build AND ended IS NOT NULL)"
                    " FROM package WHERE game = ?",
                    {game}, [&](const QSqlQuery& row) {
                        const auto known = latest.constFind(row.value(0).toString());
                        if (known == latest.cend() || known->made < row.value(3).toString())
                            latest.insert(row.value(0).toString(), datedBuild(row));
                    });
    if (!connection.error().isEmpty())
        error = sentence(file, connection.error());
}

} // namespace

QVariant RecordsFile::timeText(const QDateTime& time)
{
    if (!time.isValid())
        return {QVariant::String};
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QString RecordsFile::prepare(const QString& file)
{
    const QFileInfo info(file);
    if (info.exists() && !info.isFile())
        return RecordsTexts::tr("the build records '%1' are no file").arg(file);
    if (!QDir().mkpath(info.absolutePath()))
        return RecordsTexts::tr("the folder '%1' of the build records cannot be made")
            .arg(info.absolutePath());
    Connection connection(file);
    // The right to write is asked for: who could only read would notice at the first row.
    connection.run("BEGIN IMMEDIATE");
    QString objection = objectionTo(file, connection);
    if (!objection.isEmpty())
        return objection;
    if (connection.value("PRAGMA user_version").toInt() < version) {
        for (const char* const table : tables)
            connection.run(table);
        connection.run("PRAGMA user_version = 1");
    }
    // After an error there is none: the transaction ends with the connection, and nothing is changed.
    connection.run("COMMIT");
    return connection.error().isEmpty() ? QString() : sentence(file, connection.error());
}

qint64 RecordsFile::begin(const QString& file, const BuildOutcome& build, QString& error)
{
    Connection connection(file);
    connection.run("INSERT INTO build(game, job, slice, slices, started) VALUES(?, ?, ?, ?, ?)",
                   {build.game, build.job, build.slice, build.slices, timeText(build.start)});
    const qint64 number = connection.value("SELECT last_insert_rowid()").toLongLong();
    if (connection.error().isEmpty())
        return number;
    error = sentence(file, connection.error());
    return 0;
}

QVector<ListedBuild> RecordsFile::builds(const QString& file, QString& error)
{
    QVector<ListedBuild> found;
    Connection connection(file);
    error = objectionToReading(file, connection);
    if (!error.isEmpty())
        return found;
    // A run without an end has counted nothing: its channels are.
    connection.read(
        "SELECT number, game, slice, slices, started, ended, outcome,"
        " coalesce(built, (SELECT count(*) FROM result WHERE build = number AND outcome = 'built')),"
        " coalesce(unchanged, (SELECT count(*) FROM result WHERE build = number AND outcome = 'unchanged')),"
        " coalesce(failed, (SELECT count(*) FROM result WHERE build = number AND outcome = 'failed'))"
        " FROM build ORDER BY number DESC",
        {}, [&](const QSqlQuery& row) {
            ListedBuild build;
            build.number = row.value(0).toLongLong();
            build.game = row.value(1).toString();
            build.slice = row.value(2).toInt();
            build.slices = row.value(3).toInt();
            build.start = timeOf(row.value(4));
            build.end = timeOf(row.value(5));
            build.outcome =
                build.end.isValid() ? row.value(6).toString() : QStringLiteral("running or killed");
            build.built = row.value(7).toInt();
            build.unchanged = row.value(8).toInt();
            build.failed = row.value(9).toInt();
            found.append(build);
        });
    if (!connection.error().isEmpty())
        error = sentence(file, connection.error());
    return found;
}

QVector<ChannelOutcome> RecordsFile::channels(const QString& file, qint64 build, QString& error)
{
    QVector<ChannelOutcome> found;
    Connection connection(file);
    error = objectionToReading(file, connection);
    if (!error.isEmpty())
        return found;
    QHash<QString, int> places;
    const auto channel = [&](const QString& folder) -> ChannelOutcome& {
        const auto place = places.constFind(folder);
        if (place != places.cend())
            return found[*place];
        places.insert(folder, found.size());
        found.append(ChannelOutcome());
        found.last().folder = folder;
        return found.last();
    };
    connection.read("SELECT channel, name, outcome, message FROM result WHERE build = ? ORDER BY rowid",
                    {build}, [&](const QSqlQuery& row) {
                        ChannelOutcome& outcome = channel(row.value(0).toString());
                        outcome.name = row.value(1).toString();
                        outcome.outcome =
                            outcomeOf(row.value(2), OutcomeJson::channelWords, ChannelOutcome::NotReached);
                        outcome.message = row.value(3).toString();
                    });
    connection.read(
        "SELECT channel, name, started, ended, outcome, message FROM step WHERE build = ? ORDER BY rowid",
        {build}, [&](const QSqlQuery& row) {
            channel(row.value(0).toString())
                .steps.append({row.value(1).toString(), timeOf(row.value(2)), timeOf(row.value(3)),
                               outcomeOf(row.value(4), OutcomeJson::stepWords, BuildStep::Failed),
                               row.value(5).toString()});
        });
    if (!connection.error().isEmpty())
        error = sentence(file, connection.error());
    return found;
}

QHash<QString, EarlierBuild> RecordsFile::earlier(const QString& file, const QString& game, QString& error)
{
    QHash<QString, DatedBuild> latest;
    const QStringList files = withSiblings(file);
    for (const QString& each : files) {
        QString objection;
        takeEarlier(each, game, latest, objection);
        if (each != files.first() || objection.isEmpty())
            continue; // what another slice's file hides is built again
        error = objection;
        return {};
    }
    QHash<QString, EarlierBuild> found;
    found.reserve(latest.size());
    for (auto entry = latest.cbegin(); entry != latest.cend(); ++entry)
        found.insert(entry.key(), entry->build);
    return found;
}
