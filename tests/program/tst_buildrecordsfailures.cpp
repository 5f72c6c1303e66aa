// SPDX-License-Identifier: MIT
#include "console/diagnostics.h"
#include "recordsscene.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>

namespace {

// The child that gets killed: channels without end, each flush with a line for the parent.
void writeForEver(const QString& file)
{
    BuildRecords records;
    if (!records.open(file))
        qFatal("%s", qUtf8Printable(records.error()));
    records.begin(RecordsScene::jobOf(3), RecordsScene::buildOf());
    for (int i = 0;; ++i) {
        for (int j = 0; j < 8; ++j)
            records.add(
                RecordsScene::folder(i),
                RecordsScene::step(QStringLiteral("step"), i, BuildStep::Done, QString::number(8 * i + j)));
        records.finish(RecordsScene::channelOutcome(i, ChannelOutcome::Built));
        if (i % 500 == 499 && records.flush()) {
            std::puts("flushed");
            std::fflush(stdout);
        }
    }
}

// Another program that holds the file, until it is destroyed.
class Holder {
public:
    Holder(const QString& file, const QString& sql)
    {
        m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("holder"));
        m_database.setDatabaseName(file);
        m_query = std::make_unique<QSqlQuery>(m_database.open() ? m_database : QSqlDatabase());
        for (const QString& statement : sql.split(QLatin1Char(';')))
            m_holds = m_query->exec(statement);
        m_query->next();
    }
    ~Holder()
    {
        m_query.reset();
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("holder"));
    }
    bool holds() const { return m_holds; }

private:
    QSqlDatabase m_database;
    std::unique_ptr<QSqlQuery> m_query;
    bool m_holds = false;
};

} // namespace

// Records of runs that are killed, and files that other programs hold, damage or leave no room for.
class tst_BuildRecordsFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void aKilledRunLeavesWholeRowsAndIsToldSo();
    void theProcessEndsWithoutAWord();
    void aFileThatIsOfNoUseIsRefusedAndStaysAsItIs_data();
    void aFileThatIsOfNoUseIsRefusedAndStaysAsItIs();
    void aLockedFileIsRefused();
    void aRunThatCannotBeginIsToldAtTheFlush();
    void aReaderInTheWayIsWaitedFor();
    void rowsThatAreKeptOutGoToNoOtherFile();
    void rowsThatCouldNotBeWrittenAreTold();
    void aFullDiskIsTold();

private:
    std::unique_ptr<RecordsScene> m_scene;
};

// Behind the handler that tests have, which is there by now.
void tst_BuildRecordsFailures::initTestCase()
{
    Diagnostics::install();
}

void tst_BuildRecordsFailures::init()
{
    m_scene = std::make_unique<RecordsScene>();
    QVERIFY(m_scene->isValid());
}

void tst_BuildRecordsFailures::aKilledRunLeavesWholeRowsAndIsToldSo()
{
    for (int run = 1; run <= 3; ++run) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--write-for-ever"), m_scene->path()});
        QByteArray said;
        while (said.count('\n') < run && child.waitForReadyRead(60000))
            said += child.readAll();
        QVERIFY2(said.count('\n') >= run, child.readAllStandardError().constData());
        child.kill();
        QVERIFY(child.waitForFinished());

        BuildRecords records;
        QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
        QCOMPARE(m_scene->rows(QStringLiteral("PRAGMA integrity_check")),
                 (QVector<QStringList>{{QStringLiteral("ok")}}));
        const QVector<ListedBuild> builds = records.builds();
        QCOMPARE(builds.size(), run);
        QCOMPARE(builds.first().outcome, QStringLiteral("running or killed"));
        QVERIFY2(builds.first().built >= 500 * run, qPrintable(QString::number(builds.first().built)));
        const QVector<QStringList> messages = m_scene->rows(
            QStringLiteral("SELECT message FROM step WHERE build = %1 ORDER BY rowid").arg(run));
        QVERIFY(messages.size() >= 8 * builds.first().built);
        for (int i = 0; i < messages.size(); ++i)
            QCOMPARE(messages.at(i).first(), QString::number(i));
        const QHash<QString, EarlierBuild> earlier = records.earlier(RecordsScene::game);
        QVERIFY(earlier.size() >= builds.first().built);
        QCOMPARE(earlier.value(RecordsScene::folder(0)).digest, QStringLiteral("digest 0"));
    }
}

void tst_BuildRecordsFailures::theProcessEndsWithoutAWord()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--write-once"), m_scene->path()});
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(child.readAllStandardError(), QByteArray());
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT outcome FROM build")),
             (QVector<QStringList>{{QStringLiteral("done")}}));
}

void tst_BuildRecordsFailures::aFileThatIsOfNoUseIsRefusedAndStaysAsItIs_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("message");
    QTest::newRow("text") << QByteArray("this is no database, but a text that is long enough") << QString()
                          << QStringLiteral("is no file of build records, or a damaged one");
    QTest::newRow("damaged") << QByteArray("SQLite format 3\0", 16) + QByteArray(5000, 'x') << QString()
                             << QStringLiteral("is no file of build records, or a damaged one");
    QTest::newRow("newer") << QByteArray() << QStringLiteral("PRAGMA user_version = 2")
                           << QStringLiteral("are of a newer version");
    QTest::newRow("another program's version")
        << QByteArray() << QStringLiteral("PRAGMA user_version = 1") << QStringLiteral("no such table: game");
    QTest::newRow("a table of ours in another shape")
        << QByteArray() << QStringLiteral("CREATE TABLE channel(id)")
        << QStringLiteral("table channel already exists");
}

void tst_BuildRecordsFailures::aFileThatIsOfNoUseIsRefusedAndStaysAsItIs()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, sql);
    QFETCH(const QString, message);
    QFile file(m_scene->path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(content);
    file.close();
    if (!sql.isEmpty())
        m_scene->rows(sql);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();

    BuildRecords records;
    QVERIFY(!records.open(m_scene->path()));
    QVERIFY2(records.error().contains(message) && records.error().contains(m_scene->path()),
             qPrintable(records.error()));
    QVERIFY(!records.error().contains(QLatin1Char('\n')));
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(QDir(m_scene->path({})).entryList(QDir::Files), QStringList(QStringLiteral("records.db")));

    QVERIFY(!records.open(m_scene->path({})));
    QVERIFY2(records.error().endsWith(QLatin1String("are no file")), qPrintable(records.error()));
    QVERIFY(!records.open(m_scene->path() + QStringLiteral("/below/records.db")));
    QVERIFY2(records.error().contains(QLatin1String("cannot be made")), qPrintable(records.error()));
}

void tst_BuildRecordsFailures::aLockedFileIsRefused()
{
    QCOMPARE(RecordsScene::writeOnce(m_scene->path()), 0);
    const Holder holder(m_scene->path(), QStringLiteral("BEGIN EXCLUSIVE"));
    QVERIFY(holder.holds());
    BuildRecords records;
    QVERIFY(!records.open(m_scene->path()));
    QVERIFY2(records.error().contains(QLatin1String("locked by another program")),
             qPrintable(records.error()));
}

void tst_BuildRecordsFailures::aRunThatCannotBeginIsToldAtTheFlush()
{
    BuildRecords records;
    records.begin(RecordsScene::jobOf(1), RecordsScene::buildOf());
    QVERIFY(!records.flush());
    QVERIFY2(records.error().contains(QLatin1String("no build records are open")),
             qPrintable(records.error()));

    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    const Holder holder(m_scene->path(), QStringLiteral("BEGIN EXCLUSIVE"));
    QVERIFY(holder.holds());
    QVERIFY(!RecordsScene::runAll(records, {RecordsScene::channelOutcome(0, ChannelOutcome::Built)}));
    QVERIFY2(records.error().contains(QLatin1String("locked by another program")),
             qPrintable(records.error()));
}

void tst_BuildRecordsFailures::aReaderInTheWayIsWaitedFor()
{
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    records.begin(RecordsScene::jobOf(300), RecordsScene::buildOf());
    auto holder = std::make_unique<Holder>(m_scene->path(), QStringLiteral("BEGIN;SELECT number FROM build"));
    QVERIFY(holder->holds());
    // Longer than SQLite waits by itself.
    QTimer::singleShot(5500, this, [&] { holder.reset(); });
    QVERIFY2(records.flush(), qPrintable(records.error()));
    QVERIFY(holder == nullptr);
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT count(*) FROM channel")),
             (QVector<QStringList>{{QStringLiteral("300")}}));
}

// Some of them still wait for the lock when nobody waits for them any longer.
void tst_BuildRecordsFailures::rowsThatAreKeptOutGoToNoOtherFile()
{
    constexpr int steps = 20;
    const QString locked = m_scene->path(QStringLiteral("locked.db"));
    BuildRecords records;
    QVERIFY2(records.open(locked), qPrintable(records.error()));
    records.begin(RecordsScene::jobOf(1), RecordsScene::buildOf());
    QVERIFY2(records.flush(), qPrintable(records.error()));
    {
        const Holder holder(locked, QStringLiteral("BEGIN EXCLUSIVE"));
        QVERIFY(holder.holds());
        for (int i = 0; i < steps; ++i)
            records.add(RecordsScene::folder(0), RecordsScene::step(QStringLiteral("sign"), i));
        QVERIFY(!records.flush());
        QVERIFY2(records.error().contains(locked)
                     && records.error().contains(QLatin1String("database is locked")),
                 qPrintable(records.error()));
    }
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    QVERIFY(RecordsScene::runAll(records, {RecordsScene::channelOutcome(0, ChannelOutcome::Built)}));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT count(*) FROM step")),
             (QVector<QStringList>{{QStringLiteral("0")}}));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT channel FROM result")),
             (QVector<QStringList>{{RecordsScene::folder(0)}}));
}

void tst_BuildRecordsFailures::rowsThatCouldNotBeWrittenAreTold()
{
    BuildRecords records;
    QVERIFY2(records.open(m_scene->path()), qPrintable(records.error()));
    records.begin(RecordsScene::jobOf(1), RecordsScene::buildOf());
    QVERIFY(records.flush());
    m_scene->rows(QStringLiteral("DROP TABLE step"));
    records.add(RecordsScene::folder(0), RecordsScene::step(QStringLiteral("sign"), 1));
    records.add(RecordsScene::folder(0), RecordsScene::step(QStringLiteral("check"), 1));
    QVERIFY(!records.flush());
    QVERIFY2(records.error().contains(
                 QLatin1String("are not complete: cannot insert into step: no such table: step"))
                 && records.error().endsWith(QLatin1String("and 1 more")),
             qPrintable(records.error()));
    QVERIFY(Diagnostics::take().isEmpty());
    records.finish(RecordsScene::channelOutcome(0, ChannelOutcome::Built));
    QVERIFY2(records.flush(), qPrintable(records.error()));
    QCOMPARE(m_scene->rows(QStringLiteral("SELECT channel FROM result")),
             (QVector<QStringList>{{RecordsScene::folder(0)}}));
}

void tst_BuildRecordsFailures::aFullDiskIsTold()
{
    const QString small = m_scene->path(QStringLiteral("small"));
    QVERIFY(QDir().mkpath(small));
    // Who may not mount has a limit on the size of files in its place.
    const bool isMounted = mount("none", small.toLocal8Bit().constData(), "tmpfs", 0, "size=256k") == 0;
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto leave = qScopeGuard([&] {
        setrlimit(RLIMIT_FSIZE, &before);
        if (isMounted)
            umount(small.toLocal8Bit().constData());
    });
    if (!isMounted) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit low{256 * 1024, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &low), 0);
    }
    BuildRecords records;
    const QString file = small + QStringLiteral("/records.db");
    QVERIFY2(records.open(file), qPrintable(records.error()));
    QVERIFY(RecordsScene::runAll(records, {RecordsScene::channelOutcome(0, ChannelOutcome::Built)}));
    ChannelOutcome large = RecordsScene::channelOutcome(1, ChannelOutcome::Built);
    large.message = QString(1024 * 1024, QLatin1Char('x'));
    QVERIFY(!RecordsScene::runAll(records, {large}));
    QVERIFY2(records.error().contains(QLatin1String("are not complete")), qPrintable(records.error()));
    const QHash<QString, EarlierBuild> earlier = records.earlier(RecordsScene::game);
    QVERIFY2(earlier.size() == 1 && earlier.contains(RecordsScene::folder(0)), qPrintable(records.error()));
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() == 3)
        Diagnostics::install();
    if (words.value(1) == QLatin1String("--write-once"))
        return RecordsScene::writeOnce(words.value(2));
    if (words.value(1) == QLatin1String("--write-for-ever"))
        writeForEver(words.value(2));
    tst_BuildRecordsFailures test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_buildrecordsfailures.moc"
