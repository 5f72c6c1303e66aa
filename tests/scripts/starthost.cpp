// SPDX-License-Identifier: MIT
// A process starts the interpreter once, so each way of starting it has a process of its own:
//   starthost WAY    prints what it saw, a line each
#include <Python.h>

#include <dbhelper.h>
#include <pythonforqt.h>
#include <pythontoolthread.h>
#include <quenzobase.h>
#include <quenzotool.h>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMap>
#include <QTranslator>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

#include <unistd.h>

namespace {

void print(const QString& text)
{
    std::printf("%s\n", qUtf8Printable(text));
    std::fflush(stdout);
}

void printAnswer(bool answer)
{
    print(answer ? QStringLiteral("true") : QStringLiteral("false"));
}

void printValue(const char* expression)
{
    const PyThreadStateLock lock;
    PyObject* const main = PyModule_GetDict(PyImport_AddModule("__main__"));
    PyObject* const value = PyRun_String(expression, Py_eval_input, main, main);
    PyObject* const text = value != nullptr ? PyObject_Str(value) : nullptr;
    print(text != nullptr ? QString::fromUtf8(PyString_AsString(text)) : QStringLiteral("error"));
    Py_XDECREF(text);
    Py_XDECREF(value);
    PyErr_Clear();
}

int callAnswer(const char* function)
{
    PythonForQt bridge;
    bridge.callScript(QuenzoBase::getRunPath() + QStringLiteral("/../Script/answers.py"),
                      QString::fromLatin1(function), {}, true);
    return bridge.getResultAsInt();
}

void startTwice()
{
    printAnswer(PythonForQt::initPythonEnv());
    printAnswer(QuenzoTool::initPythonEnv());
    const PythonForQt bridge;
    printValue("__import__('sys').path.count(__import__('os').environ['PYTHON_QUENZO_ENV'].decode('utf8'))");
    printValue("__import__('__builtin__').__dict__.get('starts', 0)");
    print(QString::fromUtf8(qgetenv("PYTHON_QUENZO_ENV")).remove(QuenzoBase::getRunPath()));
    print(QString::number(callAnswer("five")));
}

void startTranslated()
{
    static QTranslator texts;
    printAnswer(texts.load(QuenzoBase::getRunPath() + QStringLiteral("/../texts.qm"))
                && QCoreApplication::installTranslator(&texts));
    print(PythonForQt::tr("import init_python_env"));
    startTwice();
}

void startOnTwoThreads()
{
    std::atomic<int> ready{0};
    const auto start = [&ready] {
        ++ready;
        while (ready < 2)
            std::this_thread::yield();
        const bool started = PythonForQt::initPythonEnv();
        // Whoever returns finds the environment complete.
        const PyThreadStateLock lock;
        const bool complete = PyObject_HasAttrString(PyImport_AddModule("__builtin__"), "complete") != 0;
        printAnswer(started && complete);
    };
    std::thread first(start);
    std::thread second(start);
    first.join();
    second.join();
    printValue("__import__('__builtin__').__dict__.get('starts', 0)");
}

void startAndLeaveTheLock()
{
    printAnswer(PythonForQt::initPythonEnv());
    std::thread([] { printValue("1 + 1"); }).join();
    print(QString::number(callAnswer("five")));
}

void startBeforeTheLibrary()
{
    Py_Initialize();
    PyEval_InitThreads();
    printAnswer(PythonForQt::initPythonEnv());
    printValue("'PYTHON_QUENZO_ENV' in __import__('os').environ");
    print(QString::number(callAnswer("five")));
    PyThreadState* const own = PyEval_SaveThread();
    std::thread([] { print(QString::number(callAnswer("five"))); }).join();
    PyEval_RestoreThread(own);
    print(QString::number(callAnswer("five")));
}

volatile std::sig_atomic_t interrupts = 0;

void countInterrupt(int)
{
    interrupts = interrupts + 1;
}

void keepHandlers()
{
    struct sigaction action { };
    action.sa_handler = countInterrupt;
    action.sa_flags = SA_RESTART;
    sigaddset(&action.sa_mask, SIGUSR1);
    sigaction(SIGINT, &action, nullptr);
    printAnswer(PythonForQt::initPythonEnv());

    struct sigaction interrupt { };
    struct sigaction pipe { };
    struct sigaction size { };
    sigaction(SIGINT, nullptr, &interrupt);
    sigaction(SIGPIPE, nullptr, &pipe);
    sigaction(SIGXFSZ, nullptr, &size);
    printAnswer(interrupt.sa_handler == countInterrupt && (interrupt.sa_flags & SA_RESTART) != 0
                && sigismember(&interrupt.sa_mask, SIGUSR1) == 1);
    printAnswer(pipe.sa_handler == SIG_DFL && size.sa_handler == SIG_DFL);
    std::raise(SIGINT);
    print(QString::number(int(interrupts)));
    print(QString::number(callAnswer("five")));
}

void waitForInterrupt()
{
    printAnswer(PythonForQt::initPythonEnv());
    callAnswer("wait");
    print(QStringLiteral("went on"));
}

void callFromAFolderBeyondAscii()
{
    PythonForQt bridge;
    bridge.callScript(QuenzoBase::getRunPath() + QStringLiteral("/../é/answers.py"), QStringLiteral("five"),
                      {}, true);
    print(QString::number(bridge.getResultAsInt()));
}

void startAndCall()
{
    printAnswer(PythonForQt::initPythonEnv());
    print(QString::number(callAnswer("five")));
}

// The host goes on without an interpreter, with its own handling of signals.
void startInVain()
{
    std::signal(SIGINT, countInterrupt);
    printAnswer(PythonForQt::initPythonEnv());
    printAnswer(QuenzoTool::initPythonEnv());
    print(QString::number(callAnswer("five")));
    std::raise(SIGINT);
    print(interrupts == 1 ? QStringLiteral("handled") : QStringLiteral("not handled"));
}

std::atomic<bool> ending{false};

// Made before anything of Qt, and thus destroyed after it.
struct SlowEnd {
    ~SlowEnd() { std::this_thread::sleep_for(duration); }
    std::chrono::milliseconds duration{0};
} slowEnd;

void callUntil(const std::atomic<bool>& stop)
{
    PythonForQt bridge;
    while (!stop) {
        bridge.callScript(QuenzoBase::getRunPath() + QStringLiteral("/../Script/absent.py"),
                          QStringLiteral("f"), {}, true);
    }
}

// Leaves main while other threads call scripts that fail.
void leaveWhileCallsRun()
{
    slowEnd.duration = std::chrono::milliseconds(300);
    // A long one, since it is the formatting of a message that the end would hit.
    qSetMessagePattern(QStringLiteral("%{time yyyy-MM-dd hh:mm:ss.zzz} %{threadid} ").repeated(100)
                       + QStringLiteral("%{file} %{message}"));
    PythonForQt::initPythonEnv();
    for (int i = 0; i < 3; ++i)
        std::thread(callUntil, std::cref(ending)).detach();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

// Leaves main while an exit handler waits for a thread that calls scripts: one that runs after the gate
// closed.
void leaveAndJoin()
{
    static std::thread caller;
    std::atexit([] {
        ending = true;
        caller.join();
        print(QStringLiteral("joined"));
    });
    PythonForQt::initPythonEnv();
    caller = std::thread(callUntil, std::cref(ending));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

void callInAnExitHandler()
{
    std::atexit([] { print(QString::number(callAnswer("five"))); });
    printAnswer(PythonForQt::initPythonEnv());
}

// Leaves main while a slot of the database worker is about to call a script.
void leaveWhileASlotCalls()
{
    static std::atomic<bool> inSlot{false};
    DBHelper* const database = DBHelper::getInstance();
    database->initDatabase(QStringLiteral(":memory:"));
    QObject::connect(database, &DBHelper::onSelectFinish, [] {
        inSlot = true;
        while (!ending)
            std::this_thread::yield();
        // The next exit handler is the library's.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        print(QString::number(callAnswer("five")));
    });
    printAnswer(PythonForQt::initPythonEnv());
    database->threadToDatabase(DB_SELECT, QStringLiteral("sqlite_master"), false, QString());
    database->StartThread();
    while (!inSlot)
        std::this_thread::yield();
    std::atexit([] { ending = true; });
}

int exitCode = 0;
std::atomic<bool> atWork{false};

// Starts a task whose script says when it is at work, on a thread that is never destroyed.
void startWork()
{
    auto* const worker = new PythonToolThread;
    const QString script = QuenzoBase::getRunPath() + QStringLiteral("/../Script/task.py");
    worker->StartOperate(
        PYTHON_TOOL_RUN_SCRIPT,
        {{QStringLiteral("toolPath"), script}, {QStringLiteral("main"), QStringLiteral("work")}});
    worker->start();
    while (!atWork)
        std::this_thread::yield();
}

void leaveWhileAScriptWorks()
{
    startWork();
    exitCode = 3;
}

// Leaves main for an exit handler, run after the gate closed, that needs the interpreter.
void leaveWhileAScriptCallsBack()
{
    std::atexit([] { print(QString::number(callAnswer("five"))); });
    startWork();
}

// Leaves main with the interpreter lock held, which other threads wait for.
void leaveWithTheLock()
{
    PythonForQt::initPythonEnv();
    for (int i = 0; i < 3; ++i)
        std::thread(callUntil, std::cref(ending)).detach();
    PyGILState_Ensure();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

const QMap<QString, void (*)()>& ways()
{
    static const QMap<QString, void (*)()> all{
        {QStringLiteral("call"), startAndCall},
        {QStringLiteral("twice"), startTwice},
        {QStringLiteral("translated"), startTranslated},
        {QStringLiteral("threads"), startOnTwoThreads},
        {QStringLiteral("lock"), startAndLeaveTheLock},
        {QStringLiteral("before"), startBeforeTheLibrary},
        {QStringLiteral("handlers"), keepHandlers},
        {QStringLiteral("interrupt"), waitForInterrupt},
        {QStringLiteral("failing"), startInVain},
        {QStringLiteral("leave"), leaveWhileCallsRun},
        {QStringLiteral("join"), leaveAndJoin},
        {QStringLiteral("exit handler"), callInAnExitHandler},
        {QStringLiteral("slot"), leaveWhileASlotCalls},
        {QStringLiteral("work"), leaveWhileAScriptWorks},
        {QStringLiteral("call back"), leaveWhileAScriptCallsBack},
        {QStringLiteral("held lock"), leaveWithTheLock},
        {QStringLiteral("ascii"), callFromAFolderBeyondAscii},
    };
    return all;
}

} // namespace

// Modules reach back into the host through these.
extern "C" __attribute__((visibility("default"))) int startAgain()
{
    return PythonForQt::initPythonEnv() ? 1 : 0;
}

extern "C" __attribute__((visibility("default"))) int startAgainUnderTheLock()
{
    const PyThreadStateLock lock;
    return PythonForQt::initPythonEnv() ? 1 : 0;
}

extern "C" __attribute__((visibility("default"))) void noteWork()
{
    atWork = true;
}

extern "C" __attribute__((visibility("default"))) int callAgain()
{
    return callAnswer("five");
}

int main(int argc, char* argv[])
{
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.scripts=true"));
    const auto way = ways().value(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (way == nullptr)
        return 2;
    const QCoreApplication application(argc, argv);
    way();
    return exitCode;
}
