// SPDX-License-Identifier: MIT
#include "records/connectionlock.h"

#include <QDeadlineTimer>
#include <QtTest>

#include <atomic>
#include <optional>
#include <thread>

class tst_ConnectionLock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whoeverWaitsIsNext_data();
    void whoeverWaitsIsNext();
    void nobodyGetsATurnWithinAStatementOfAnother();
};

namespace {

/** A thread that takes the connection once. */
class OneTurn {
public:
    OneTurn()
        : m_thread([this] {
            const ConnectionLock lock;
            m_hadItsTurn = true;
        })
    {
    }

    void end() { m_thread.join(); }
    bool hadItsTurn() const { return m_hadItsTurn; }

    static void awaitBeside(const ConnectionLock& lock)
    {
        const QDeadlineTimer patience(60000);
        while (!lock.isAwaited() && !patience.hasExpired())
            std::this_thread::yield();
    }

private:
    std::atomic<bool> m_hadItsTurn{false};
    std::thread m_thread;
};

} // namespace

void tst_ConnectionLock::whoeverWaitsIsNext_data()
{
    QTest::addColumn<bool>("givesWay");
    QTest::newRow("between two rows") << true;
    QTest::newRow("between two statements") << false;
}

void tst_ConnectionLock::whoeverWaitsIsNext()
{
    QFETCH(const bool, givesWay);
    constexpr int rounds = 300;
    int turns = 0;
    for (int i = 0; i < rounds; ++i) {
        std::optional<ConnectionLock> lock(std::in_place);
        OneTurn other;
        OneTurn::awaitBeside(*lock);
        if (givesWay) {
            lock->giveWay();
        } else {
            lock.reset();
            lock.emplace();
        }
        turns += other.hadItsTurn() ? 1 : 0;
        lock.reset();
        other.end();
    }
    QCOMPARE(turns, rounds);
}

void tst_ConnectionLock::nobodyGetsATurnWithinAStatementOfAnother()
{
    std::optional<ConnectionLock> lock(std::in_place);
    OneTurn other;
    OneTurn::awaitBeside(*lock);
    const bool before = lock->isAwaited();
    bool within = false;
    {
        const ConnectionLock inner;
        within = inner.isAwaited();
    }
    const bool after = lock->isAwaited();
    lock.reset();
    other.end();
    QVERIFY(before);
    QVERIFY(!within);
    QVERIFY(after);
}

QTEST_APPLESS_MAIN(tst_ConnectionLock)
#include "tst_connectionlock.moc"
