// SPDX-License-Identifier: MIT
#ifndef DBHELPER_H
#define DBHELPER_H

#include "quenzotool_export.h"

#include <QEvent>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QSqlDatabase>
#include <QString>
#include <QThread>
#include <QVariant>

#include <atomic>
#include <deque>
#include <memory>
#include <optional>

class KeptStatements;

/** What a queued command does. Any other value is taken from the queue and ignored. */
enum DB_COMMAND : int {
    DB_SELECT = 0, ///< read rows; they come back through DBHelper::onSelectFinish()
    DB_INSERT = 1, ///< write rows, as the list form of DBHelper::insertToDatabase() does
    DB_UPDATE = 2, ///< change rows, as the list form of DBHelper::updateToDatabase() does
    DB_DELETE = 3 ///< remove rows
};

/** One queued command. */
struct ST_DB_COMMAND {
    DB_COMMAND command = DB_SELECT;
    QString tableName;
    QString updateKey; ///< update only: the column of the condition
    QString updateValue; ///< update only: the value of that column, as text
    QMap<QString, QVariant>
        mapValue; ///< column to value: to write (insert, update), or to be met (select, delete)
    QList<QVariant> lsRecord; ///< rows to write, each a QVariant that holds a `QMap<QString, QVariant>`
    bool bEncode = false; ///< pass values through the text codec of QuenzoTool
    QString usrExt; ///< the caller's tag, handed back with the rows of a select
};

/** The event type of DBCommandEvent. */
constexpr QEvent::Type DB_EVENT_TYPE = static_cast<QEvent::Type>(QEvent::User + 1028);

/** Carries one command to DBHelper, on the stack of the call that queues it. */
class QUENZOTOOL_EXPORT DBCommandEvent : public QEvent {
public:
    DBCommandEvent();
    ~DBCommandEvent() override;

    ST_DB_COMMAND m_command;
};

/**
 * The tool's one SQLite database: a connection, a queue of commands and the worker thread that drains it.
 *
 * @code
 * DBHelper* database = DBHelper::getInstance();
 * connect(database, &DBHelper::onSelectFinish, this, &Window::showRows);
 * if (database->initDatabase(file) && database->StartThread()) {
 *     QList<QVariant> rows {QMap<QString, QVariant> {{"id", 7}, {"name", "a"}}};
 *     database->threadToDatabase(DB_INSERT, "channel", rows, QString(), QVariant(), false, QString());
 *     database->threadToDatabase(DB_SELECT, "channel", false, "all");
 * }
 * @endcode
 *
 * There are two ways in. The queued one, threadToDatabase(), records a command and returns at once; the
 * worker runs it within about a second. The direct one, the statement functions, runs on the calling thread
 * at once.
 *
 * **Bursts.** All commands that the worker finds queued are one transaction, which it commits when the queue
 * has run empty. Only a failed list insert rolls back, and then the whole burst so far; what follows it in
 * the burst runs without a transaction, each statement by itself, and the closing commit fails into the
 * tool's log. Failed updates, deletes and selects leave the burst as it is, unless the database itself ends
 * the transaction as it fails: a table's ON CONFLICT ROLLBACK or a trigger's RAISE(ROLLBACK) says so, and a
 * full disk may. Then all is as after a failed list insert. Queued commands report no result but for a
 * select's rows: failures are messages at debug level in Qt's log, and their causes are lines of the logging
 * category "quenzo.records", which is off unless a host switches it on.
 *
 * **A commit that fails** because another process reads or writes the file is reported once, into the tool's
 * log, and isRunning() becomes false; but the transaction stays open, which locks other processes out. The
 * worker tries again once a second, and once more when the process ends by exit() or by leaving main, until
 * it is through; a burst that is queued meanwhile joins the transaction. Rows that never got through are
 * lost, and so they are with closeDB().
 *
 * **Threads.** threadToDatabase() and the statement functions may be called from every thread. The connection
 * is shared: a direct statement waits for one statement of the worker at most (and the other way round), it
 * is part of the worker's transaction when one is open, and its failed list insert ends that transaction.
 * Open, close and remove while no other thread uses the object. A file that another process holds blocks a
 * statement for five seconds before it fails. A receiver of onSelectFinish() that is connected directly runs
 * on the worker.
 *
 * **Queries of the host's own** on the connection "Quenzo" (QSqlDatabase::database("Quenzo") and a QSqlQuery)
 * know nothing of the lock that the functions here take: beside a worker that has commands to run, or direct
 * statements on another thread, they corrupt the driver's state and may corrupt the file. They are safe on
 * the thread that opened the database as long as no other thread is at work: before StartThread(), or while
 * isRunning() is false and nothing is queued or called elsewhere, and no failed commit is being tried again.
 * At any time a connection of another name to the same file is safe.
 *
 * **Names and values.** Values are bound and may hold anything. **Names of tables and columns are pasted into
 * the statement as they are**, neither quoted nor checked: never take them from a person or a file, or check
 * them against the names that the host knows. A column needs a name of letters, digits and underscores of
 * ASCII, since its placeholder is found by that name.
 *
 * **Lifetime.** The instance is never destroyed, and the worker has no end but the process's: at exit the
 * step at work is waited for, at most ten seconds, and an uncommitted burst is lost as a whole. Wait until
 * isRunning() is false and nothing is queued any more to lose none.
 *
 * The library sets no pragma; the journal mode is the host's choice.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT DBHelper : public QThread {
    Q_OBJECT

public:
    ~DBHelper() override;

    /** The one instance, made on first use: let that be on the thread that it shall live in. */
    static DBHelper* getInstance();

    /**
     * Opens the database file, which is made when it is missing, as the connection "Quenzo".
     *
     * @param path the file
     * @return false, and nothing changed, when the connection is open already; false when the file cannot be
     * opened
     */
    bool initDatabase(QString path);

    /** Closes the connection. An uncommitted burst, or one whose commit failed, is lost. Always true. */
    bool closeDB();

    /** Removes the connection "Quenzo" from Qt's connections; statements fail until initDatabase(). */
    static void removeDatabase();

    /** Starts the worker. Commands that were queued before wait for it. Always true. */
    bool StartThread();

    /** Kept for hosts that call it: always false, and the worker keeps running. */
    bool StopThread();

    /**
     * Whether commands are being handled: not whether the thread runs, as QThread::isRunning() says, which
     * this hides. True from the hand-over of a command to the end of its burst; but a command queued by the
     * list form counts only once the worker has taken it.
     */
    bool isRunning();

    /**
     * Queues a command.
     *
     * @param command what to do
     * @param tableName the table
     * @param mapValue the row to write (insert, update) or the conditions (select, delete), as in the
     * statement functions
     * @param key update: the column of the condition
     * @param value update: its value, which is passed on as text. With an empty @p key, or a value without
     * text, both are left empty and the statement fails.
     * @param bEncode see the statement functions
     * @param usrExt handed back by onSelectFinish()
     * @return false when there is no application object: nothing is queued, though isRunning() is true from
     * then on
     */
    bool threadToDatabase(DB_COMMAND command, QString tableName, QMap<QString, QVariant>& mapValue,
                          QString key, QVariant value, bool bEncode, QString usrExt);

    /**
     * Queues a command with several rows to write, in the order of the list; conditions cannot be given.
     *
     * Kept: this form does not make isRunning() true.
     */
    bool threadToDatabase(DB_COMMAND command, QString tableName, QList<QVariant>& lsRecord, QString key,
                          QVariant value, bool bEncode, QString usrExt);

    /**
     * Queues a select or a delete with one condition, or an insert of one column. @p value is passed on as
     * text, whatever it holds.
     *
     * @return false also for an update: nothing is queued
     */
    bool threadToDatabase(DB_COMMAND command, QString tableName, QString key, QVariant value, bool bEncode,
                          QString usrExt);

    /**
     * Queues a select of every row, or a delete that empties the table.
     *
     * @return false also for an insert and an update: nothing is queued
     */
    bool threadToDatabase(DB_COMMAND command, QString tableName, bool bEncode, QString usrExt);

    /**
     * Inserts one column's value, as text whatever it holds.
     *
     * @param bEncode write the values scrambled, see QuenzoTool::ckEncode(): every value is turned into text
     * first
     * @return whether the row was written. Here and in all statement functions a failure also writes three
     * messages at debug level: the statement, "Error at ..." with the table's name, the cause.
     */
    bool insertToDatabase(QString tableName, QString column, QVariant value, bool bEncode);

    /** Inserts one row. An empty row fails. */
    bool insertToDatabase(QString tableName, QMap<QString, QVariant>& mapValue, bool bEncode);

    /**
     * Inserts rows, in order; elements that hold no `QMap<QString, QVariant>` count as empty rows.
     *
     * The first failing row rolls back the transaction that the connection is in, whoever began it, and the
     * rows after it are not tried. Without a transaction the rows before it stay written.
     *
     * @return true when all rows were written, or none were given
     */
    bool insertToDatabase(QString tableName, QList<QVariant>& lsRecord, bool bEncode);

    /**
     * Writes new values into the rows whose column @p whereKey equals @p whereValue.
     *
     * Kept: the condition is always compared as plain text, with @p bEncode too. A @p whereKey that is also
     * one of the new columns shares its placeholder: the column is set to the condition's value.
     *
     * @return whether the statement succeeded, also when it met no row
     */
    bool updateToDatabase(QString tableName, QString whereKey, QVariant whereValue,
                          QMap<QString, QVariant>& mapValue, bool bEncode);

    /**
     * One such update for each element, in order. The first failure ends it; the updates before it stay, but
     * where the database has ended their transaction.
     *
     * @return true when all succeeded, or none were given
     */
    bool updateToDatabase(QString tableName, QString whereKey, QVariant whereValue, QList<QVariant>& lsRecord,
                          bool bEncode);

    /** Empties a table. */
    bool deleteFromDatabase(QString tableName);

    /** Deletes the rows whose column @p key equals @p value as text. */
    bool deleteFromDatabase(QString tableName, QString key, QVariant value, bool bEncode);

    /**
     * Deletes the rows that equal @p mapValue in each of its columns; without columns, all.
     *
     * @param bEncode compare with the scrambled values
     */
    bool deleteFromDatabase(QString tableName, QMap<QString, QVariant>& mapValue, bool bEncode);

    /** Every row of a table. */
    QList<QVariant> selectFromDatabase(QString tableName, bool bEncode);

    /** The rows whose column @p key equals @p value. */
    QList<QVariant> selectFromDatabase(QString tableName, QString key, QString value, bool bEncode);

    /** The same for a number, which is compared as decimal text. */
    QList<QVariant> selectFromDatabase(QString tableName, QString key, int value, bool bEncode);

    /**
     * The rows that equal @p mapValue in each of its columns, in the order that the database yields.
     *
     * @param bEncode Kept: conditions are passed through QuenzoTool::ckDecode(), where the other statements
     * encode theirs. The rows come as they are stored; decode them yourself.
     * @return rows, each a QVariant that holds a `QMap<QString, QVariant>` of column to value (of columns
     * with the same name the last one); empty also when the select failed. When the reading breaks off half
     * way, as in a damaged file, the rows before; that is told in the category "quenzo.records" alone.
     */
    QList<QVariant> selectFromDatabase(QString tableName, QMap<QString, QVariant>& mapValue, bool bEncode);

Q_SIGNALS:
    /**
     * The rows of a queued select, emitted on the worker; a failed one has none.
     *
     * @param tableName the table
     * @param lsRecord the rows, as selectFromDatabase() returns them
     * @param usrExt the caller's tag
     */
    void onSelectFinish(QString tableName, QVariantList lsRecord, QString usrExt);

protected:
    DBHelper();

    /** Queues the command of a DBCommandEvent, on the caller's thread. Drops other events. */
    void customEvent(QEvent* event) override;

    /** Runs queued commands; looks once a second when there are none. Never returns. */
    void run() override;

    /** Runs one queued command, and commits when it was the last one. */
    void commandExec();

private:
    bool deliver(DBCommandEvent& event);
    void enqueue(ST_DB_COMMAND&& command);
    std::optional<ST_DB_COMMAND> takeCommand();
    void perform(ST_DB_COMMAND& command);
    bool insertRows(const QString& tableName, const QList<QVariant>& rows,
                    const QMap<QString, QVariant>& lastRow, bool bEncode);
    bool updateRows(const QString& tableName, const QString& whereKey, const QString& whereValue,
                    const QList<QVariant>& rows, const QMap<QString, QVariant>& lastRow, bool bEncode);
    void commit();
    void closeConnection();
    bool isTransactionOpen() const;
    void commitLeftOpen();
    static void commitAtExit();

    static DBHelper* singleInstance;
    QMutex m_mutex;
    std::deque<ST_DB_COMMAND> m_lsCommand;
    std::atomic<bool> m_bRunning{false};
    std::atomic<bool> m_bTransaction{false};
    std::atomic<int> m_nEventCount{1};
    QSqlDatabase m_db;
    // The queue's length, which the worker looks at without the queue's mutex.
    std::atomic<int> m_nQueued{0};
    // The last commit failed, and what the burst has written waits for another one.
    std::atomic<bool> m_bLeftOpen{false};
    std::unique_ptr<KeptStatements> m_kept;
};

#endif
