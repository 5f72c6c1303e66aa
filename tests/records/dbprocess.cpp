// SPDX-License-Identifier: MIT
// A host's process whose end is what a test looks at: dbprocess BEHAVIOUR FILE [MILLISECONDS]
#include <dbhelper.h>
#include <quenzotool.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTextStream>
#include <QThread>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

const QString table = QStringLiteral("bursts");
constexpr int burstSize = 50;

class Stepped : public DBHelper {
public:
    using DBHelper::commandExec;
};

void queueBurst(DBHelper& database, int burst)
{
    for (int part = 0; part < burstSize; ++part) {
        QMap<QString, QVariant> row{{QStringLiteral("burst"), burst},
                                    {QStringLiteral("part"), part},
                                    {QStringLiteral("filling"), QString(500, QLatin1Char('x'))}};
        database.threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString());
    }
}

// Writes one burst after the other, as the worker would without its pause, until it is killed.
int writeBursts(const QString& file)
{
    Stepped database;
    if (!database.initDatabase(file))
        return EXIT_FAILURE;
    int burst = database.selectFromDatabase(table, false).size() / burstSize;
    QTextStream(stdout) << "ready\n" << Qt::flush;
    for (;;) {
        queueBurst(database, ++burst);
        while (database.isRunning())
            database.commandExec();
    }
}

void startWorker(const QString& file, int bursts)
{
    DBHelper* const database = DBHelper::getInstance();
    database->initDatabase(file);
    for (int burst = 0; burst < bursts; ++burst) {
        queueBurst(*database, burst);
        database->threadToDatabase(DB_SELECT, table, false, QString());
        database->threadToDatabase(DB_DELETE, QStringLiteral("missing"), false, QString());
    }
    database->StartThread();
}

// Leaves main in the middle of a burst.
int leaveMain(const QString& file, unsigned long milliseconds)
{
    startWorker(file, 400);
    QThread::msleep(milliseconds);
    return EXIT_SUCCESS;
}

// A receiver on the worker itself ends the process. The handler, as the first, runs after the library's,
// which would wait ten seconds for a worker that it took for another.
int exitOnWorker(const QString& file)
{
    static QElapsedTimer ending;
    std::atexit([] {
        if (ending.elapsed() >= 10000)
            std::_Exit(EXIT_FAILURE);
    });
    QObject::connect(DBHelper::getInstance(), &DBHelper::onSelectFinish, [] {
        ending.start();
        std::exit(EXIT_SUCCESS);
    });
    startWorker(file, 10);
    QThread::sleep(60);
    return EXIT_FAILURE;
}

// The worker's commit fails since somebody reads, who ends just before the process does. The interpreter may
// have been started before the database was opened, or be so after it.
int endWithTransactionLeftOpen(const QString& file, const QByteArray& scripts)
{
    if (scripts == "before" && !QuenzoTool::initPythonEnv())
        return EXIT_FAILURE;
    DBHelper* const database = DBHelper::getInstance();
    database->initDatabase(file);
    if (scripts == "after" && !QuenzoTool::initPythonEnv())
        return EXIT_FAILURE;
    QSqlQuery(QSqlDatabase::database(QStringLiteral("Quenzo")))
        .exec(QStringLiteral("PRAGMA busy_timeout = 1"));
    database->insertToDatabase(table, QStringLiteral("burst"), 1, false);
    QSqlDatabase reader = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
    reader.setDatabaseName(file);
    QSqlQuery query(reader.open() ? reader : QSqlDatabase());
    const bool reading = query.exec(QStringLiteral("SELECT * FROM bursts")) && query.next();
    QMap<QString, QVariant> row{{QStringLiteral("burst"), 2}};
    database->threadToDatabase(DB_INSERT, table, row, QString(), QVariant(), false, QString());
    database->StartThread();
    for (int i = 0; i < 3000 && database->isRunning(); ++i)
        QThread::msleep(10);
    return reading && !database->isRunning() ? EXIT_SUCCESS : EXIT_FAILURE;
}

// The worker goes on while one application object follows the other.
int changeApplications(int argc, char* argv[], const QString& file)
{
    static std::atomic<int> answered{0};
    for (int round = 1; round <= 3; ++round) {
        const QCoreApplication application(argc, argv);
        if (round == 1) {
            QObject::connect(DBHelper::getInstance(), &DBHelper::onSelectFinish,
                             [](const QString& /*tableName*/, const QVariantList& /*rows*/,
                                const QString& tag) { answered = tag.toInt(); });
            startWorker(file, 1);
        }
        if (!DBHelper::getInstance()->threadToDatabase(DB_SELECT, table, false, QString::number(round)))
            return EXIT_FAILURE;
        for (int i = 0; i < 3000 && answered != round; ++i)
            QThread::msleep(10);
        if (answered != round)
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

// Without an application object nothing is queued, on no thread, though the flag is set.
int queueWithoutApplication()
{
    DBHelper* const database = DBHelper::getInstance();
    bool queued = database->threadToDatabase(DB_SELECT, table, false, QString());
    bool running = database->isRunning();
    database->closeDB();
    QList<QVariant> rows{QVariantMap()};
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        queued = database->threadToDatabase(DB_INSERT, table, rows, QString(), QVariant(), false, QString())
            || queued;
    }));
    thread->start();
    thread->wait();
    running = running && !database->isRunning();
    return !queued && running ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char* argv[])
{
    const char* const behaviour = argc > 1 ? argv[1] : "";
    const QString file = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    if (std::strcmp(behaviour, "applications") == 0)
        return changeApplications(argc, argv, file);
    if (std::strcmp(behaviour, "no-application") == 0)
        return queueWithoutApplication();

    const QCoreApplication application(argc, argv);
    if (std::strcmp(behaviour, "bursts") == 0)
        return writeBursts(file);
    if (std::strcmp(behaviour, "leave") == 0)
        return leaveMain(file, QByteArray(argc > 3 ? argv[3] : "0").toULong());
    if (std::strcmp(behaviour, "left-open") == 0)
        return endWithTransactionLeftOpen(file, argc > 3 ? argv[3] : "");
    if (std::strcmp(behaviour, "exit-on-worker") == 0)
        return exitOnWorker(file);
    return EXIT_FAILURE;
}
