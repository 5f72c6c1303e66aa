// SPDX-License-Identifier: MIT
// A process starts the interpreter once, so each way of starting it has a process of its own:
//   starthost WAY    prints what it saw, a line each
#include <Python.h>

#include <pythonforqt.h>
#include <quenzobase.h>
#include <quenzotool.h>

#include <QLoggingCategory>
#include <QMap>

#include <atomic>
#include <csignal>
#include <cstdio>
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

const QMap<QString, void (*)()>& ways()
{
    static const QMap<QString, void (*)()> all{
        {QStringLiteral("call"), startAndCall},
        {QStringLiteral("twice"), startTwice},
        {QStringLiteral("threads"), startOnTwoThreads},
        {QStringLiteral("lock"), startAndLeaveTheLock},
        {QStringLiteral("before"), startBeforeTheLibrary},
        {QStringLiteral("handlers"), keepHandlers},
        {QStringLiteral("interrupt"), waitForInterrupt},
        {QStringLiteral("failing"), startInVain},
        {QStringLiteral("ascii"), callFromAFolderBeyondAscii},
    };
    return all;
}

} // namespace

// A start-up module reaches back into the host through these.
extern "C" __attribute__((visibility("default"))) int startAgain()
{
    return PythonForQt::initPythonEnv() ? 1 : 0;
}

extern "C" __attribute__((visibility("default"))) int startAgainUnderTheLock()
{
    const PyThreadStateLock lock;
    return PythonForQt::initPythonEnv() ? 1 : 0;
}

int main(int argc, char* argv[])
{
    QLoggingCategory::setFilterRules(QStringLiteral("quenzo.scripts=true"));
    const auto way = ways().value(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (way == nullptr)
        return 2;
    way();
    return 0;
}
