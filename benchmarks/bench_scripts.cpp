// SPDX-License-Identifier: MIT
// Script calls against the interpreter's own interface and against starting python2.7, and the interpreter's
// start.
#include <Python.h>

#include <pythonforqt.h>
#include <quenzotool.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace {

constexpr char source[] = "COUNT = 40\n\ndef add(number, text):\n    return number + len(text)\n\n"
                          "if __name__ == '__main__':\n    add(2, 'abc')\n";

QString scriptPath()
{
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("bench_script.py"));
    static const bool written = [] {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(source) == qint64(sizeof source) - 1;
    }();
    return written ? path : QString();
}

bool runToEnd(std::initializer_list<const char*> words)
{
    std::vector<char*> arguments;
    for (const char* word : words)
        arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    return posix_spawn(&child, arguments.front(), nullptr, nullptr, arguments.data(), environ) == 0
        && waitpid(child, &status, 0) == child && status == 0;
}

void callScript(benchmark::State& state, bool unload)
{
    PythonForQt python;
    for (auto _ : state) {
        python.callScript(scriptPath(), QStringLiteral("add"), {2, QStringLiteral("abc")}, unload);
        if (python.getResultAsInt() != 5)
            state.SkipWithError("wrong answer");
    }
}

void callDirectly(benchmark::State& state)
{
    PythonForQt::initPythonEnv();
    const PyThreadStateLock lock;
    const std::string folder = QFileInfo(scriptPath()).path().toStdString();
    PyRun_SimpleString(("import sys;sys.path.append('" + folder + "')").c_str());
    for (auto _ : state) {
        PyObject* module = PyImport_ImportModule("bench_script");
        PyObject* function = PyObject_GetAttrString(module, "add");
        PyObject* result = PyObject_CallFunction(function, const_cast<char*>("is"), 2, "abc");
        if (PyInt_AsLong(result) != 5)
            state.SkipWithError("wrong answer");
        Py_DECREF(result);
        Py_DECREF(function);
        Py_DECREF(module);
    }
    PyRun_SimpleString("sys.path.pop()");
}

// The same statements and the same call, each statement compiled anew.
void callCompiling(benchmark::State& state, bool unload)
{
    PythonForQt::initPythonEnv();
    const std::string folder = "str('" + QFileInfo(scriptPath()).path().toStdString() + "').decode('utf8')";
    for (auto _ : state) {
        const PyThreadStateLock lock;
        PyRun_SimpleString("import sys");
        PyRun_SimpleString("import os");
        PyRun_SimpleString("reload(sys);sys.setdefaultencoding('utf8');");
        PyRun_SimpleString(("sys.path.append(" + folder + ")").c_str());
        PyObject* module = PyImport_ImportModule("bench_script");
        PyObject* function = PyObject_GetAttrString(module, "add");
        PyObject* result = PyObject_CallFunction(function, const_cast<char*>("is"), 2, "abc");
        if (PyInt_AsLong(result) != 5)
            state.SkipWithError("wrong answer");
        Py_DECREF(result);
        Py_DECREF(function);
        Py_DECREF(module);
        if (unload)
            PyRun_SimpleString("del sys.modules['bench_script']");
        PyRun_SimpleString(("if " + folder + " in sys.path:sys.path.remove(" + folder + ")").c_str());
    }
}

// The limit of a call that unloads: finding, reading and dropping the module.
void importAlone(benchmark::State& state)
{
    PythonForQt::initPythonEnv();
    const PyThreadStateLock lock;
    const std::string folder = QFileInfo(scriptPath()).path().toStdString();
    PyRun_SimpleString(("import sys;sys.path.append('" + folder + "')").c_str());
    for (auto _ : state) {
        PyDict_DelItemString(PyImport_GetModuleDict(), "bench_script");
        PyErr_Clear();
        Py_DECREF(PyImport_ImportModule("bench_script"));
    }
    PyRun_SimpleString("sys.path.pop()");
}

void startPython(benchmark::State& state)
{
    const QByteArray path = scriptPath().toUtf8();
    for (auto _ : state) {
        if (!runToEnd({"/usr/bin/python2.7", path.constData()}))
            state.SkipWithError("python2.7 failed");
    }
}

void startProcess(benchmark::State& state, const char* how)
{
    const QByteArray self = QCoreApplication::applicationFilePath().toUtf8();
    for (auto _ : state) {
        if (!runToEnd({self.constData(), how}))
            state.SkipWithError("the child failed");
    }
}

// The same statements on a bare interpreter.
int startBare()
{
    const std::string folder = QuenzoTool::getToolPath().toStdString() + "/Python";
    Py_Initialize();
    PyEval_InitThreads();
    PyEval_ReleaseThread(PyThreadState_Get());
    const PyGILState_STATE lock = PyGILState_Ensure();
    PyRun_SimpleString("import sys");
    PyRun_SimpleString("import os");
    PyRun_SimpleString(("os.environ['PYTHON_QUENZO_ENV'] = '" + folder + "'").c_str());
    PyRun_SimpleString(("sys.path.append(str('" + folder + "').decode('utf8'))").c_str());
    PyRun_SimpleString("import init_python_env");
    PyGILState_Release(lock);
    return 0;
}

void writeStartUpModule()
{
    const QString folder = QuenzoTool::getToolPath() + QStringLiteral("/Python");
    QDir().mkpath(folder);
    QFile module(folder + QStringLiteral("/init_python_env.py"));
    if (!module.open(QIODevice::WriteOnly))
        qFatal("cannot write the start-up module");
}

} // namespace

int main(int argc, char* argv[])
{
    setenv("LC_ALL", "C.UTF-8", 1);
    const QCoreApplication application(argc, argv);
    if (argc == 2 && qstrcmp(argv[1], "quenzo") == 0)
        return PythonForQt::initPythonEnv() ? 0 : 1;
    if (argc == 2 && qstrcmp(argv[1], "bare") == 0)
        return startBare();
    writeStartUpModule();

    using benchmark::kMicrosecond;
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("call_with_the_module_kept/quenzo", callScript, false)->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_kept/statements_compiled_each_time", callCompiling, false)
        ->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_kept/direct_call", callDirectly)->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_kept/starting_python2.7", startPython)
        ->Unit(kMicrosecond)
        ->UseRealTime();
    RegisterBenchmark("call_with_the_module_unloaded/quenzo", callScript, true)->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_unloaded/statements_compiled_each_time", callCompiling, true)
        ->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_unloaded/direct_import_alone", importAlone)->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_unloaded/direct_call", callDirectly)->Unit(kMicrosecond);
    RegisterBenchmark("call_with_the_module_unloaded/starting_python2.7", startPython)
        ->Unit(kMicrosecond)
        ->UseRealTime();
    RegisterBenchmark("start_of_a_process_with_interpreter/quenzo", startProcess, "quenzo")
        ->Unit(kMicrosecond)
        ->UseRealTime();
    RegisterBenchmark("start_of_a_process_with_interpreter/bare_Py_Initialize", startProcess, "bare")
        ->Unit(kMicrosecond)
        ->UseRealTime();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
