// SPDX-License-Identifier: MIT
#include "build/buildrecords.h"

#include "build/job.h"
#include "build/outcomejson.h"
#include "build/recordsfile.h"
#include "console/diagnostics.h"

#include <dbhelper.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QMutex>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

struct RecordsTexts {
    Q_DECLARE_TR_FUNCTIONS(BuildRecords)
};

const char* const category = "quenzo.records";

// The tag of the rows that say how far the queue has come.
QString tagOf(int mark)
{
    return QStringLiteral("build records, %1").arg(mark);
}

} // namespace

/** What the library has said of the records: failures, and whether the last commit is through. */
class RecordsLog {
public:
    void add(QtMsgType type, const QString& line)
    {
        const QMutexLocker locker(&m_mutex);
        if (line.endsWith(QLatin1String("no transaction is active"))) {
            return; // a failure has ended it, which was told
        }
        if (line.startsWith(QLatin1String("cannot commit: "))) {
            m_uncommitted = line;
        } else if (line == QLatin1String("committed at last")) {
            m_uncommitted.clear();
        } else if (type != QtInfoMsg) {
            ++m_failures;
            if (m_first.isEmpty())
                m_first = line;
        }
    }

    // All that was queued before has run. What is committed from now on takes what failed to be with it.
    void reach(const QString& mark)
    {
        const QMutexLocker locker(&m_mutex);
        m_reached = mark;
        m_uncommitted.clear();
    }

    bool hasReached(const QString& mark)
    {
        const QMutexLocker locker(&m_mutex);
        return m_reached == mark;
    }

    // Another program's lock has kept a row out; the ones behind it wait as long, each.
    bool isLockedOut()
    {
        const QMutexLocker locker(&m_mutex);
        return !m_isGivenUp && m_first.contains(QLatin1String("database is locked"));
    }

    // Nothing more is expected to be committed.
    void giveUp()
    {
        const QMutexLocker locker(&m_mutex);
        m_isGivenUp = true;
    }

    bool isCommitted()
    {
        const QMutexLocker locker(&m_mutex);
        return m_isGivenUp || m_uncommitted.isEmpty();
    }

    // The first failure since the last call; of a file that is in trouble all others say the same.
    QString take()
    {
        const QMutexLocker locker(&m_mutex);
        QString first = std::exchange(m_first, QString());
        if (first.isEmpty())
            first = m_uncommitted;
        const int more = std::exchange(m_failures, 0) - 1;
        if (more > 0)
            first = RecordsTexts::tr("%1, and %2 more").arg(first, QString::number(more));
        return first;
    }

private:
    QMutex m_mutex;
    QString m_first;
    QString m_uncommitted;
    QString m_reached;
    int m_failures = 0;
    bool m_isGivenUp = false;
};

BuildRecords::BuildRecords() = default;

BuildRecords::~BuildRecords()
{
    close();
}

void BuildRecords::close()
{
    if (!m_isOpen)
        return;
    flush();
    DBHelper::getInstance()->closeDB();
    DBHelper::removeDatabase();
    m_receiver.reset();
    Diagnostics::divert(category, {});
    m_isOpen = false;
}

bool BuildRecords::open(const QString& file)
{
    close();
    m_file = file;
    m_build = 0;
    m_error = RecordsFile::prepare(file);
    if (!m_error.isEmpty())
        return false;
    m_log = std::make_shared<RecordsLog>();
    Diagnostics::divert(category,
                        [log = m_log](QtMsgType type, const QString& line) { log->add(type, line); });
    DBHelper& database = *DBHelper::getInstance();
    m_receiver = std::make_unique<QObject>();
    QObject::connect(
        &database, &DBHelper::onSelectFinish, m_receiver.get(),
        [log = m_log](const QString&, const QVariantList&, const QString& tag) { log->reach(tag); },
        Qt::DirectConnection);
    m_isOpen = database.initDatabase(file);
    if (m_isOpen) {
        database.StartThread();
        // The class's own isRunning() tells of its commands.
        if (database.QThread::isRunning())
            return true;
        m_error = RecordsTexts::tr("no thread could be started for the build records");
        close();
        return false;
    }
    m_error = m_log->take();
    Diagnostics::divert(category, {});
    return false;
}

QHash<QString, EarlierBuild> BuildRecords::earlier(const QString& game)
{
    if (!flush())
        return {};
    return RecordsFile::earlier(m_file, game, m_error);
}

QVector<ListedBuild> BuildRecords::builds()
{
    if (!flush())
        return {};
    return RecordsFile::builds(m_file, m_error);
}

void BuildRecords::queue(const QString& table, QVariantMap row)
{
    m_hasQueued = true;
    m_isMarked = false;
    DBHelper::getInstance()->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString());
}

void BuildRecords::queue(const QString& table, QList<QVariant> rows)
{
    m_hasQueued = true;
    m_isMarked = false;
    DBHelper::getInstance()->threadToDatabase(DB_INSERT, table, rows, QString(), QVariant(), false,
                                              QString());
}

void BuildRecords::begin(const Job& job, const BuildOutcome& build)
{
    m_game = build.game;
    m_build = 0;
    m_refusal.clear();
    if (!m_isOpen)
        m_refusal = RecordsTexts::tr("no build records are open");
    else if (flush())
        m_build = RecordsFile::begin(m_file, build, m_refusal);
    else
        m_refusal = m_error;
    if (m_build == 0)
        return;
    queue(QStringLiteral("game"),
          QVariantMap{{QStringLiteral("name"), m_game},
                      {QStringLiteral("job"), job.path},
                      {QStringLiteral("base"), job.base}});
    QList<QVariant> channels;
    for (const JobChannel& channel : job.channels) {
        channels.append(QVariantMap{{QStringLiteral("game"), m_game},
                                    {QStringLiteral("folder"), channel.folder},
                                    {QStringLiteral("name"), channel.name},
                                    {QStringLiteral("number"), channel.number}});
    }
    queue(QStringLiteral("channel"), channels);
    QList<QVariant> sdks;
    for (const JobSdk& sdk : job.sdks) {
        sdks.append(QVariantMap{{QStringLiteral("game"), m_game},
                                {QStringLiteral("name"), sdk.name},
                                {QStringLiteral("package"), sdk.package},
                                {QStringLiteral("id"), sdk.id}});
    }
    queue(QStringLiteral("sdk"), sdks);
}

void BuildRecords::add(const QString& folder, const BuildStep& step)
{
    if (m_build == 0)
        return;
    queue(QStringLiteral("step"),
          QVariantMap{{QStringLiteral("build"), m_build},
                      {QStringLiteral("channel"), folder},
                      {QStringLiteral("name"), step.name},
                      {QStringLiteral("started"), RecordsFile::timeText(step.start)},
                      {QStringLiteral("ended"), RecordsFile::timeText(step.end)},
                      {QStringLiteral("outcome"), OutcomeJson::word(step.outcome)},
                      {QStringLiteral("message"), step.message}});
}

void BuildRecords::finish(const ChannelOutcome& channel)
{
    if (m_build == 0)
        return;
    const QString outcome = OutcomeJson::word(channel.outcome);
    queue(QStringLiteral("result"),
          QVariantMap{{QStringLiteral("build"), m_build},
                      {QStringLiteral("channel"), channel.folder},
                      {QStringLiteral("name"), channel.name},
                      {QStringLiteral("outcome"), outcome},
                      {QStringLiteral("message"), channel.message}});
    if (channel.outcome != ChannelOutcome::Built && channel.outcome != ChannelOutcome::Unchanged)
        return;
    const QString detail =
        QString::fromUtf8(QJsonDocument(OutcomeJson::object(channel)).toJson(QJsonDocument::Compact));
    queue(QStringLiteral("package"),
          QVariantMap{{QStringLiteral("game"), m_game},
                      {QStringLiteral("channel"), channel.folder},
                      {QStringLiteral("name"), channel.name},
                      {QStringLiteral("build"), m_build},
                      {QStringLiteral("made"), RecordsFile::timeText(QDateTime::currentDateTimeUtc())},
                      {QStringLiteral("outcome"), outcome},
                      {QStringLiteral("size"), channel.size},
                      {QStringLiteral("inputs"), channel.inputs},
                      {QStringLiteral("digest"), channel.digest},
                      {QStringLiteral("detail"), detail}});
}

void BuildRecords::end(const BuildOutcome& build)
{
    if (m_build == 0)
        return;
    const auto count = [&](ChannelOutcome::Outcome outcome) {
        return int(std::count_if(build.channels.cbegin(), build.channels.cend(),
                                 [&](const ChannelOutcome& channel) { return channel.outcome == outcome; }));
    };
    const int failed = count(ChannelOutcome::Failed);
    const bool done = failed + count(ChannelOutcome::NotReached) == 0;
    const QString outcome = build.interrupted ? QStringLiteral("interrupted")
        : done                                ? QStringLiteral("done")
                                              : QStringLiteral("failed");
    QVariantMap row{{QStringLiteral("ended"), RecordsFile::timeText(build.end)},
                    {QStringLiteral("outcome"), outcome},
                    {QStringLiteral("built"), count(ChannelOutcome::Built)},
                    {QStringLiteral("unchanged"), count(ChannelOutcome::Unchanged)},
                    {QStringLiteral("failed"), failed}};
    m_hasQueued = true;
    m_isMarked = false;
    DBHelper::getInstance()->threadToDatabase(DB_UPDATE, QStringLiteral("build"), row,
                                              QStringLiteral("number"), m_build, false, QString());
    mark(); // in one burst with it: the queue is looked at once a second
}

// Queued commands report nothing, but a select's rows come in their turn: these say that all before them ran.
void BuildRecords::mark()
{
    ++m_mark;
    m_isMarked = true;
    DBHelper::getInstance()->threadToDatabase(DB_SELECT, QStringLiteral("(SELECT 1)"), false, tagOf(m_mark));
}

// Waits for the queue; false when another program does not let its rows in.
bool BuildRecords::drain()
{
    constexpr int intervalMs = 10;
    constexpr int lateCommitMs = 10000; // another program may read the file for a while
    constexpr int lockedOutMs = 5000; // and what has been kept out has waited for as long already
    DBHelper& database = *DBHelper::getInstance();
    if (!m_isMarked)
        mark();
    bool hasRun = false;
    QEventLoop loop;
    QTimer timer;
    QElapsedTimer late;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        // The flag stays true from the last command to the commit of its burst.
        hasRun = m_log->hasReached(tagOf(m_mark)) && !database.isRunning();
        if (!hasRun && !m_log->isLockedOut())
            return;
        if (!late.isValid())
            late.start();
        if ((hasRun && m_log->isCommitted()) || late.elapsed() > (hasRun ? lateCommitMs : lockedOutMs))
            loop.quit();
    });
    timer.start(intervalMs);
    loop.exec();
    return hasRun;
}

bool BuildRecords::flush()
{
    m_error = m_refusal;
    if (!m_isOpen || !std::exchange(m_hasQueued, false))
        return m_error.isEmpty();
    if (!drain()) {
        // Without a file the rest fails at once, and none of it goes to the next one.
        DBHelper::getInstance()->closeDB();
        m_log->giveUp();
        drain();
    }
    const QString failure = m_log->take();
    if (!failure.isEmpty())
        m_error = RecordsTexts::tr("the build records '%1' are not complete: %2").arg(m_file, failure);
    return m_error.isEmpty();
}
