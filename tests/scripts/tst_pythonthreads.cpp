// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "messagelog.h"
#include "runroot.h"

#include <QtTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

static_assert(std::is_copy_constructible_v<PyThreadStateLock> && std::is_copy_assignable_v<PyThreadStateLock>,
              "hosts may copy a lock");

namespace {

// Runs the work on that many threads, each given its number, and waits for all of them.
void onThreads(int count, const std::function<void(int)>& work)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back(work, number);
    for (std::thread& thread : threads)
        thread.join();
}

// Counts wrong answers and keeps the first of them.
class Answers {
public:
    void check(const QString& answer, const QString& expected)
    {
        if (answer == expected)
            return;
        const std::lock_guard<std::mutex> guard(m_mutex);
        ++m_wrong;
        if (m_first.isEmpty())
            m_first = QStringLiteral("\"%1\" instead of \"%2\"").arg(answer, expected);
    }

    QString firstWrong()
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_wrong == 0 ? QString() : QStringLiteral("%1 wrong, the first: ").arg(m_wrong) + m_first;
    }

private:
    std::mutex m_mutex;
    int m_wrong = 0;
    QString m_first;
};

QtMessageHandler handlerBefore = nullptr;
std::atomic<int> handled{0};

// Waits for another thread that needs the interpreter, as a handler that writes to a window may.
void waitForPython(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtDebugMsg || qstrcmp(context.category, "quenzo.scripts") == 0) {
        onThreads(1, [](int) { pythonValue(QStringLiteral("1")); });
        ++handled;
    } else {
        handlerBefore(type, context, text);
    }
}

} // namespace

class tst_PythonThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void lockIsFreeAfterTheStart();
    void lockNestsAndKeepsOthersOut();
    void lockIsTakenOnThreadsNeverSeenBefore();
    void callWorksUnderTheCallersLock();
    void readersWorkWhileAnotherThreadRunsPython_data();
    void readersWorkWhileAnotherThreadRunsPython();
    void objectMadeOnOneThreadIsUsedOnAnother();
    void interleavedCallsGetTheirOwnAnswers_data();
    void interleavedCallsGetTheirOwnAnswers();
    void raisingCallsDoNotDisturbOtherThreads();
    void messageHandlerMayWaitForPython();

private:
    std::unique_ptr<MessageLog> m_log;
};

void tst_PythonThreads::initTestCase()
{
    RunRoot::clear();
    RunRoot::write(QStringLiteral("tool/mac/Python/init_python_env.py"), "");
    m_log = std::make_unique<MessageLog>();
    QVERIFY(PythonForQt::initPythonEnv());
}

void tst_PythonThreads::cleanup()
{
    QCOMPARE(m_log->takeWarnings(), QStringList());
    QCOMPARE(countInPath(RunRoot::path() + QStringLiteral("/Script")), 0);
}

void tst_PythonThreads::lockIsFreeAfterTheStart()
{
    bool taken = false;
    onThreads(1, [&taken](int) {
        const PyThreadStateLock lock;
        taken = true;
    });
    QVERIFY(taken);
}

void tst_PythonThreads::lockNestsAndKeepsOthersOut()
{
    std::atomic<bool> begun{false};
    std::atomic<bool> entered{false};
    std::thread other;
    {
        const PyThreadStateLock outer;
        other = std::thread([&] {
            begun = true;
            const PyThreadStateLock lock;
            entered = true;
        });
        while (!begun)
            std::this_thread::yield();
        {
            const PyThreadStateLock inner;
            const PyThreadStateLock innermost;
        }
        // Were the lock given back by the inner ones, the other thread would soon be through.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        QVERIFY(!entered);
    }
    other.join();
    QVERIFY(entered);
}

void tst_PythonThreads::lockIsTakenOnThreadsNeverSeenBefore()
{
    std::atomic<int> sum{0};
    for (int round = 0; round < 20; ++round)
        onThreads(4, [&sum](int number) { sum += pythonValue(QString::number(number)).toInt(); });
    QCOMPARE(sum.load(), 20 * (0 + 1 + 2 + 3));
}

void tst_PythonThreads::callWorksUnderTheCallersLock()
{
    const QString script = RunRoot::write(QStringLiteral("Script/locked.py"), "def f(): return ['a', 'b']\n");
    const PyThreadStateLock lock;
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("f"), {}, true);
    QCOMPARE(bridge.getResultAsStrList().size(), 2);
}

void tst_PythonThreads::readersWorkWhileAnotherThreadRunsPython_data()
{
    QTest::addColumn<QString>("expression");
    QTest::newRow("int") << QStringLiteral("5");
    QTest::newRow("text") << QStringLiteral("u'\\xe9'");
    QTest::newRow("wrong type") << QStringLiteral("object()");
    QTest::newRow("None") << QStringLiteral("None");
    QTest::newRow("list") << QStringLiteral("['a', 1, None]");
    QTest::newRow("dictionary") << QStringLiteral("{'a': 'b', 1: None}");
}

void tst_PythonThreads::readersWorkWhileAnotherThreadRunsPython()
{
    QFETCH(const QString, expression);
    const QString script =
        RunRoot::write(QStringLiteral("Script/readers.py"), "def make(text): return eval(text)\n");
    std::atomic<bool> stop{false};
    std::thread busy([&stop] {
        while (!stop)
            pythonValue(QStringLiteral("[str(i) + repr(None) for i in range(1000)]"));
    });
    OpenBridge bridge;
    Answers answers;
    for (int round = 0; round < 100; ++round) {
        const auto make = [&] { bridge.callScript(script, QStringLiteral("make"), {expression}, false); };
        make();
        answers.check(QString::number(bridge.getResultAsInt()),
                      expression == QLatin1String("5") ? expression : QStringLiteral("-1"));
        make();
        const bool text = expression.startsWith(QLatin1String("u'"));
        answers.check(bridge.getResultAsString(), text ? QStringLiteral("é") : QString());
        make();
        const bool list = expression.startsWith(QLatin1Char('['));
        answers.check(bridge.getResultAsStrList().join(QLatin1Char('|')),
                      list ? QStringLiteral("a||") : QString());
        make();
        const bool map = expression.startsWith(QLatin1Char('{'));
        answers.check(QStringList(bridge.getResultAsStrDict().values()).join(QLatin1Char('|')),
                      map ? QStringLiteral("|b") : QString());
        make();
        bridge.releaseObj(&bridge.pResult);
    }
    stop = true;
    busy.join();
    QCOMPARE(answers.firstWrong(), QString());
}

void tst_PythonThreads::objectMadeOnOneThreadIsUsedOnAnother()
{
    const QString script = RunRoot::write(QStringLiteral("Script/moved.py"), "def f(): return object()\n");
    PythonForQt bridge;
    onThreads(1, [&](int) { bridge.callScript(script, QStringLiteral("f"), {}, true); });
    onThreads(1, [&](int) { QCOMPARE(bridge.getResultAsInt(), -1); });
}

void tst_PythonThreads::interleavedCallsGetTheirOwnAnswers_data()
{
    QTest::addColumn<bool>("unload");
    QTest::addColumn<QByteArray>("body");
    const QByteArray module = "import time\nseparator = '-'\n";
    const QByteArray function = "def join(a, b):\n    text = '%s' % a\n    time.sleep(0.0001)\n"
                                "    return text + separator + str(b)\n";
    QTest::newRow("kept") << false << module + function;
    QTest::newRow("unloaded") << true << module + function;
    QTest::newRow("unloaded, waits in its body") << true << module + "time.sleep(0.0001)\n" + function;
    QTest::newRow("unloaded, computes") << true << module + "sum(range(20000))\n" + function;
}

void tst_PythonThreads::interleavedCallsGetTheirOwnAnswers()
{
    QFETCH(const bool, unload);
    QFETCH(const QByteArray, body);
    const QString script = RunRoot::write(QStringLiteral("Script/turns.py"), body);
    Answers answers;
    onThreads(4, [&](int number) {
        for (int round = 0; round < 250; ++round) {
            PythonForQt bridge;
            const QString text = QStringLiteral("thread%1").arg(number);
            bridge.callScript(script, QStringLiteral("join"), {text, round}, unload);
            answers.check(bridge.getResultAsString(), text + QLatin1Char('-') + QString::number(round));
        }
    });
    QCOMPARE(answers.firstWrong(), QString());
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_PythonThreads::raisingCallsDoNotDisturbOtherThreads()
{
    const QString script = RunRoot::write(QStringLiteral("Script/mixed.py"),
                                          "import time\n"
                                          "def fail():\n    time.sleep(0)\n    raise SystemExit(1)\n"
                                          "def text(a):\n    time.sleep(0)\n    return a\n");
    Answers answers;
    onThreads(4, [&](int number) {
        PythonForQt bridge;
        for (int round = 0; round < 250; ++round) {
            const QString expected = QString::number(number * 1000 + round);
            if ((number + round) % 2 == 0) {
                bridge.callScript(script, QStringLiteral("fail"), {}, true);
                answers.check(QString::number(bridge.getResultAsInt()), QStringLiteral("-1"));
            } else {
                bridge.callScript(script, QStringLiteral("text"), {expected}, true);
                answers.check(bridge.getResultAsString(), expected);
            }
        }
    });
    QCOMPARE(answers.firstWrong(), QString());
    QCOMPARE(m_log->takeDebugTexts(), QStringList());
}

void tst_PythonThreads::messageHandlerMayWaitForPython()
{
    const QString script = RunRoot::write(QStringLiteral("Script/told.py"), "def fail(): raise ValueError\n");
    handled = 0;
    const CategoryOn scripts("quenzo.scripts");
    handlerBefore = qInstallMessageHandler(waitForPython);
    PythonForQt bridge;
    bridge.callScript(script, QStringLiteral("fail"), {}, true);
    bridge.callScript(script, QStringLiteral("absent"), {}, true);
    bridge.callScript(RunRoot::path() + QStringLiteral("/Script/untold/absent.py"), QStringLiteral("f"), {},
                      true);
    qInstallMessageHandler(handlerBefore);
    QCOMPARE(handled.load(), 1 + 2 + 3);
}

QTEST_GUILESS_MAIN(tst_PythonThreads)
#include "tst_pythonthreads.moc"
