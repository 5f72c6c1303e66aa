// SPDX-License-Identifier: MIT
#include "bench_records.h"
#include "records_data.h"

#include <benchmark/benchmark.h>

#include <QMutex>

#include <memory>
#include <string>
#include <utility>

namespace {

// A command as a host's line of code queues one: the texts are made at the call, the row was there before.
// Its number is none that the worker knows, so that taking it off again is cheap.
template <typename Queue, typename Append> void queueSomething(Queue& queue, Append append)
{
    static QVariantMap row = rows().at(0).toMap();
    (queue.*append)(static_cast<DB_COMMAND>(-1), QString::fromLatin1("channel"), row,
                    QString::fromLatin1("id"), QVariant(QString::fromLatin1("7")), false,
                    QString::fromLatin1("tag"));
}

// The seconds that a command takes while as many as the benchmark's argument are queued before it.
void measureQueue(benchmark::State& state, const std::function<void()>& queueOne,
                  const std::function<void()>& takeOne)
{
    constexpr int commandsAtOnce = 1000;
    for (qint64 i = 0; i < state.range(0); ++i)
        queueOne();
    for (auto iteration : state) {
        Q_UNUSED(iteration)
        const double seconds = secondsOf([&queueOne] {
            for (int i = 0; i < commandsAtOnce; ++i)
                queueOne();
        });
        state.SetIterationTime(seconds / commandsAtOnce);
        for (int i = 0; i < commandsAtOnce; ++i)
            takeOne();
    }
}

void queueCommand(benchmark::State& state)
{
    using Append = bool (DBHelper::*)(DB_COMMAND, QString, QVariantMap&, QString, QVariant, bool, QString);
    Stepped helper;
    measureQueue(
        state, [&helper] { queueSomething(helper, Append(&DBHelper::threadToDatabase)); },
        [&helper] { helper.commandExec(); });
}

// The same command put behind a plain list under a mutex.
class LockedList {
public:
    ~LockedList() { qDeleteAll(m_list); }

    bool append(DB_COMMAND command, QString tableName, QVariantMap& row, QString key, QVariant value,
                bool encode, QString tag)
    {
        Q_UNUSED(key)
        Q_UNUSED(value)
        auto record = std::make_unique<ST_DB_COMMAND>();
        record->command = command;
        record->tableName = std::move(tableName);
        record->mapValue = row;
        record->bEncode = encode;
        record->usrExt = std::move(tag);
        const QMutexLocker locker(&m_mutex);
        m_list.append(record.release());
        return true;
    }

    void takeFirst() { delete m_list.takeFirst(); }

private:
    QMutex m_mutex;
    QList<ST_DB_COMMAND*> m_list;
};

void appendToLockedList(benchmark::State& state)
{
    LockedList list;
    measureQueue(
        state, [&list] { queueSomething(list, &LockedList::append); }, [&list] { list.takeFirst(); });
}

} // namespace

void registerQueue()
{
    const auto add = [](const std::string& name, void (*function)(benchmark::State&), int queued) {
        benchmark::RegisterBenchmark(name.c_str(), function)->UseManualTime()->Arg(queued)->Iterations(500);
    };
    for (const int queued : {10, 1000000}) {
        const std::string row = "queue_a_command_behind_" + std::to_string(queued);
        add(row + "/quenzo", queueCommand, queued);
        add(row + "/locked_list", appendToLockedList, queued);
    }
}
