// SPDX-License-Identifier: MIT
#include "recordsscene.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

const QString RecordsScene::game = QStringLiteral("Sky Harbour");

QDateTime RecordsScene::timeAt(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(Q_INT64_C(1700000000000) + ms, Qt::UTC);
}

QString RecordsScene::folder(int channel)
{
    return QStringLiteral("channel%1").arg(channel, 5, 10, QLatin1Char('0'));
}

BuildStep RecordsScene::step(const QString& name, qint64 ms, BuildStep::Outcome outcome,
                             const QString& message)
{
    return {name, timeAt(ms), timeAt(ms + 7), outcome, message};
}

ChannelOutcome RecordsScene::channelOutcome(int number, ChannelOutcome::Outcome outcome)
{
    ChannelOutcome channel;
    channel.folder = folder(number);
    channel.name = QStringLiteral("Channel %1").arg(number);
    channel.outcome = outcome;
    channel.inputs = QStringLiteral("inputs %1").arg(number);
    channel.digest = QStringLiteral("digest %1").arg(number);
    return channel;
}

Job RecordsScene::jobOf(int channels)
{
    Job job;
    job.path = QStringLiteral("/jobs/job.json");
    job.game = game;
    job.base = QStringLiteral("/jobs/base.apk");
    for (int i = 0; i < channels; ++i) {
        JobChannel channel;
        channel.folder = folder(i);
        channel.name = QStringLiteral("Channel %1").arg(i);
        channel.number = QString::number(100 + i);
        job.channels.append(channel);
    }
    job.sdks.insert(QStringLiteral("pay"), {QStringLiteral("pay"), QStringLiteral("/jobs/pay.zip"), 7});
    return job;
}

BuildOutcome RecordsScene::buildOf(const QVector<ChannelOutcome>& channels)
{
    BuildOutcome build;
    build.job = QStringLiteral("/jobs/job.json");
    build.game = game;
    build.start = timeAt(0);
    build.end = timeAt(5000);
    build.channels = channels;
    return build;
}

bool RecordsScene::runAll(BuildRecords& records, const QVector<ChannelOutcome>& channels)
{
    records.begin(jobOf(channels.size()), buildOf());
    for (const ChannelOutcome& channel : channels)
        records.finish(channel);
    records.end(buildOf(channels));
    return records.flush();
}

int RecordsScene::writeOnce(const QString& file)
{
    BuildRecords records;
    return records.open(file) && runAll(records, {channelOutcome(0, ChannelOutcome::Built)}) ? 0 : 1;
}

QVector<QStringList> RecordsScene::rows(const QString& sql) const
{
    QVector<QStringList> found;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test"));
        database.setDatabaseName(path());
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        if (!query.exec(sql))
            qFatal("%s: %s", qUtf8Printable(sql), qUtf8Printable(query.lastError().text()));
        while (query.next()) {
            QStringList row;
            for (int i = 0; !query.isNull(i) || query.value(i).isValid(); ++i)
                row.append(query.value(i).toString());
            found.append(row);
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test"));
    return found;
}
