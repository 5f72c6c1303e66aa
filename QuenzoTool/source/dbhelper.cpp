// SPDX-License-Identifier: MIT
#include "dbhelper.h"

#include "exitgate.h"
#include "messages.h"
#include "records/connectionlock.h"
#include "records/keptstatements.h"
#include "records/sqlitedirect.h"

#include <quenzobase.h>

#include <QCoreApplication>
#include <QMutexLocker>
#include <QSqlError>
#include <QSqlQuery>

#include <typeinfo>
#include <utility>

namespace {

QString connectionName()
{
    return QStringLiteral("Quenzo");
}

void writeHelperMessage(int line, const char* function, const QString& text)
{
    writeMessage("QuenzoTool/source/dbhelper", line, function, text);
}

void fill(ST_DB_COMMAND& record, DB_COMMAND command, QString& tableName, QString& key, const QVariant& value,
          bool bEncode, QString& usrExt)
{
    record.command = command;
    record.tableName = std::move(tableName);
    if (command == DB_UPDATE) {
        QString valueText = value.toString();
        if (!key.isEmpty() && !valueText.isEmpty()) {
            record.updateKey = std::move(key);
            record.updateValue = std::move(valueText);
        }
    }
    record.bEncode = bEncode;
    record.usrExt = std::move(usrExt);
}

// An event of our own call, which ends with it.
class QueuingEvent : public DBCommandEvent { };

} // namespace

DBHelper* DBHelper::singleInstance = nullptr;

DBCommandEvent::DBCommandEvent()
    : QEvent(DB_EVENT_TYPE)
{
}

DBCommandEvent::~DBCommandEvent() = default;

DBHelper::DBHelper()
    : m_kept(std::make_unique<KeptStatements>())
{
}

DBHelper::~DBHelper()
{
    closeConnection();
    const ConnectionLock lock;
    m_db = QSqlDatabase();
}

void DBHelper::closeConnection()
{
    const ConnectionLock lock;
    m_kept->clear();
    m_db.close();
    m_bLeftOpen.store(false, std::memory_order_relaxed);
}

DBHelper* DBHelper::getInstance()
{
    if (singleInstance == nullptr)
        singleInstance = new DBHelper;
    return singleInstance;
}

bool DBHelper::initDatabase(QString path)
{
    constexpr const char* function = "bool __cdecl DBHelper::initDatabase(class QString)";
    bool wasOpen = false;
    bool opened = false;
    QString cause;
    {
        const ConnectionLock lock;
        wasOpen = m_db.isOpen();
        if (!wasOpen) {
            m_kept->clear();
            m_bLeftOpen.store(false, std::memory_order_relaxed);
            // Given back first: Qt warns of a connection that is replaced or removed while somebody holds it.
            m_db = QSqlDatabase();
            QSqlDatabase::removeDatabase(connectionName());
            m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName());
            m_db.setDatabaseName(path);
            opened = m_db.open();
            cause = m_db.lastError().databaseText().simplified();
            // Makes what Qt keeps for queries, before the exit gate is armed below.
            if (opened)
                const QSqlQuery query(m_db);
        }
    }
    if (wasOpen) {
        writeHelperMessage(89, function, QStringLiteral("Database was opened!"));
        qCWarning(recordsLog) << "cannot open a database: one is open";
        return false;
    }
    if (!opened) {
        writeHelperMessage(97, function, QStringLiteral("fail to open database!"));
        qCWarning(recordsLog).noquote().nospace() << "cannot open the database '" << path << "': " << cause;
        return false;
    }
    ExitGate::arm(ExitGate::Connection, commitAtExit);
    return true;
}

bool DBHelper::closeDB()
{
    closeConnection();
    m_bRunning.store(false, std::memory_order_release);
    m_nEventCount.store(1, std::memory_order_relaxed);
    return true;
}

void DBHelper::removeDatabase()
{
    const ConnectionLock lock;
    if (singleInstance != nullptr) {
        singleInstance->closeConnection();
        singleInstance->m_db = QSqlDatabase();
    }
    QSqlDatabase::removeDatabase(connectionName());
}

bool DBHelper::StartThread()
{
    ExitGate::arm(ExitGate::Queue);
    start(QThread::InheritPriority);
    return true;
}

bool DBHelper::StopThread()
{
    exit(0);
    return false;
}

bool DBHelper::isRunning()
{
    return m_bRunning.load(std::memory_order_acquire);
}

bool DBHelper::threadToDatabase(DB_COMMAND command, QString tableName, QMap<QString, QVariant>& mapValue,
                                QString key, QVariant value, bool bEncode, QString usrExt)
{
    m_bRunning.store(true, std::memory_order_release);
    QueuingEvent event;
    fill(event.m_command, command, tableName, key, value, bEncode, usrExt);
    event.m_command.mapValue = mapValue;
    return deliver(event);
}

bool DBHelper::threadToDatabase(DB_COMMAND command, QString tableName, QList<QVariant>& lsRecord, QString key,
                                QVariant value, bool bEncode, QString usrExt)
{
    QueuingEvent event;
    fill(event.m_command, command, tableName, key, value, bEncode, usrExt);
    event.m_command.lsRecord = lsRecord;
    return deliver(event);
}

bool DBHelper::threadToDatabase(DB_COMMAND command, QString tableName, QString key, QVariant value,
                                bool bEncode, QString usrExt)
{
    if (command == DB_UPDATE) {
        writeHelperMessage(
            195,
            "bool __cdecl DBHelper::threadToDatabase(enum DB_COMMAND,class QString,class QString,"
            "class QVariant,bool,class QString)",
            QStringLiteral("Error paramater"));
        return false;
    }
    QMap<QString, QVariant> mapValue{{key, value.toString()}};
    return threadToDatabase(command, tableName, mapValue, QString(), QStringLiteral(""), bEncode, usrExt);
}

bool DBHelper::threadToDatabase(DB_COMMAND command, QString tableName, bool bEncode, QString usrExt)
{
    if (command == DB_INSERT || command == DB_UPDATE) {
        writeHelperMessage(
            184, "bool __cdecl DBHelper::threadToDatabase(enum DB_COMMAND,class QString,bool,class QString)",
            QStringLiteral("Error paramater"));
        return false;
    }
    QMap<QString, QVariant> mapValue;
    return threadToDatabase(command, tableName, mapValue, QString(), QStringLiteral(""), bEncode, usrExt);
}

bool DBHelper::deliver(DBCommandEvent& event)
{
    if (QThread::currentThread() == thread())
        return QCoreApplication::sendEvent(this, &event);
    // Sent from another thread, an event would change this thread's event state in Qt without a lock.
    if (QCoreApplication::instance() == nullptr)
        return false;
    customEvent(&event);
    return true;
}

void DBHelper::customEvent(QEvent* event)
{
    if (event == nullptr)
        return;
    // Copies of texts and rows would be most of the cost of queuing.
    if (typeid(*event) == typeid(QueuingEvent))
        enqueue(std::move(static_cast<QueuingEvent*>(event)->m_command));
    // Not by its number alone, which others may have chosen, too.
    else if (const auto* const carrier = dynamic_cast<DBCommandEvent*>(event))
        enqueue(ST_DB_COMMAND(carrier->m_command));
}

void DBHelper::enqueue(ST_DB_COMMAND&& command)
{
    const QMutexLocker locker(&m_mutex);
    const int queued = m_nQueued.load(std::memory_order_acquire);
    m_lsCommand.push_back(std::move(command));
    m_nQueued.store(queued + 1, std::memory_order_release);
    m_nEventCount.store(m_nEventCount.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

void DBHelper::run()
{
    for (;;) {
        if (m_nQueued.load(std::memory_order_acquire) == 0) {
            QThread::sleep(1);
            if (m_bLeftOpen.load(std::memory_order_relaxed)) {
                const ExitGate::Step step;
                commitLeftOpen();
            }
            continue;
        }
        const ExitGate::Step step;
        commandExec();
    }
}

void DBHelper::commandExec()
{
    if (!m_bTransaction.load(std::memory_order_acquire)) {
        const ConnectionLock lock;
        m_db.transaction();
        m_bTransaction.store(true, std::memory_order_release);
    }
    if (std::optional<ST_DB_COMMAND> command = takeCommand())
        perform(*command);
    if (m_nQueued.load(std::memory_order_acquire) == 0)
        commit();
}

std::optional<ST_DB_COMMAND> DBHelper::takeCommand()
{
    const QMutexLocker locker(&m_mutex);
    const int queued = m_nQueued.load(std::memory_order_acquire);
    if (queued == 0)
        return std::nullopt;
    m_bRunning.store(true, std::memory_order_release);
    std::optional<ST_DB_COMMAND> command = std::move(m_lsCommand.front());
    m_lsCommand.pop_front();
    m_nQueued.store(queued - 1, std::memory_order_release);
    return command;
}

void DBHelper::perform(ST_DB_COMMAND& command)
{
    switch (command.command) {
    case DB_SELECT:
        Q_EMIT onSelectFinish(command.tableName,
                              selectFromDatabase(command.tableName, command.mapValue, command.bEncode),
                              command.usrExt);
        break;
    case DB_INSERT:
        insertRows(command.tableName, command.lsRecord, command.mapValue, command.bEncode);
        break;
    case DB_UPDATE:
        updateRows(command.tableName, command.updateKey, command.updateValue, command.lsRecord,
                   command.mapValue, command.bEncode);
        break;
    case DB_DELETE:
        deleteFromDatabase(command.tableName, command.mapValue, command.bEncode);
        break;
    }
}

void DBHelper::commit()
{
    QSqlError error;
    bool committed = false;
    {
        const ConnectionLock lock;
        committed = m_db.commit();
        if (!committed)
            error = m_db.lastError();
        m_bLeftOpen.store(!committed && isTransactionOpen(), std::memory_order_relaxed);
    }
    if (!committed) {
        QuenzoBase::Log(error.text());
        qCCritical(recordsLog).noquote() << "cannot commit:" << error.databaseText().simplified();
    }
    m_bRunning.store(false, std::memory_order_release);
    m_bTransaction.store(false, std::memory_order_release);
}

bool DBHelper::isTransactionOpen() const
{
    const bool isLocked = m_db.lastError().databaseText().contains(QLatin1String("database is locked"));
    return m_db.isOpen() && SqliteDirect::isInTransaction(*m_db.driver()).value_or(isLocked);
}

// The commit that failed before, once more and quietly. Not within a later burst, which has joined the
// transaction and commits it as a whole.
void DBHelper::commitLeftOpen()
{
    if (!m_bLeftOpen.load(std::memory_order_relaxed) || m_bTransaction.load(std::memory_order_acquire))
        return;
    bool committed = false;
    {
        const ConnectionLock lock;
        committed = isTransactionOpen() && m_db.commit();
        m_bLeftOpen.store(!committed && isTransactionOpen(), std::memory_order_relaxed);
    }
    if (committed)
        qCInfo(recordsLog) << "committed at last";
}

void DBHelper::commitAtExit()
{
    if (singleInstance != nullptr)
        singleInstance->commitLeftOpen();
}
