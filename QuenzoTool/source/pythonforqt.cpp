// SPDX-License-Identifier: MIT
#include "scripts/pythonapi.h"

#include "pythonforqt.h"

#include "exitgate.h"
#include "messages.h"
#include "quenzotool.h"
#include "scripts/pythonruntime.h"
#include "scripts/pythonstatement.h"

#include <QFileInfo>
#include <QVector>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

namespace {

// What a script call has to say, gathered while the interpreter lock is held and written after it was given
// back: a message handler may itself wait for the interpreter.
class CallMessages {
public:
    explicit CallMessages(const char* function)
        : m_function(function)
    {
    }
    ~CallMessages()
    {
        if (m_messages.isEmpty() && m_cause.isEmpty())
            return;
        const ExitGate::Call call;
        if (!call.mayGoOn())
            return;
        for (const Message& message : qAsConst(m_messages))
            writeMessage("QuenzoTool/source/pythonforqt", message.line, m_function, message.text);
        if (!m_cause.isEmpty())
            qCWarning(scriptsLog, "%s", qUtf8Printable(m_cause));
    }
    CallMessages(const CallMessages&) = delete;
    CallMessages& operator=(const CallMessages&) = delete;

    void add(int line, const QString& text) { m_messages.append({line, text}); }

    void addNotImported(const QString& scriptName)
    {
        add(__LINE__, QStringLiteral("scriptName: ") + scriptName);
        add(__LINE__, QStringLiteral("Error:Not Found The File of srcipt"));
    }

    // Takes the pending exception off; its text, for which code of the script may run, only if somebody wants
    // to know.
    void addCause(const QString& failure)
    {
        if (scriptsLog().isWarningEnabled())
            m_cause = failure + QStringLiteral(": ") + errorText();
        else
            PyErr_Clear();
    }

private:
    struct Message {
        int line;
        QString text;
    };

    static QString errorText()
    {
        const bool byLocale = PyErr_ExceptionMatches(PyExc_UnicodeEncodeError) != 0
            && qstricmp(Py_FileSystemDefaultEncoding, "UTF-8") != 0;
        const QString error = takePythonError();
        return byLocale ? error + QStringLiteral(" (a folder in sys.path needs a UTF-8 locale)") : error;
    }

    const char* m_function;
    QVector<Message> m_messages;
    QString m_cause;
};

// A folder as it stands between the quotation marks of a statement. A backslash is a letter there. A
// quotation mark would end the text, and what follows would be code: a line feed in its place leaves the text
// without an end, so that the whole statement fails.
QString quoted(QString folder)
{
    return folder.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('\''), QLatin1Char('\n'));
}

// Statements of the start-up go through the translation context, but they are code for the interpreter and no
// texts for translators: Qt's tools do not see them here, and what a translation says of one is not run.
QString startStatement(const char* code)
{
    QString own = QString::fromUtf8(code);
    if (PythonForQt::tr(code) != own)
        qCWarning(scriptsLog, "a translation of the start-up statement \"%s\" is not used: it is code", code);
    return own;
}

std::string startStatement(const char* code, const QString& place)
{
    return startStatement(code).arg(quoted(place), 0, QLatin1Char(' ')).toStdString();
}

bool holdsInterpreterLock()
{
    const PyThreadState* const own = PyGILState_GetThisThreadState();
    return own != nullptr && own == _PyThreadState_Current;
}

// How the exit gate holds a thread, which may have the interpreter lock of a caller: others need it
// meanwhile.
void holdWithoutLock(std::chrono::seconds duration)
{
    PyThreadState* const own =
        PythonRuntime::isRunning() && holdsInterpreterLock() ? PyEval_SaveThread() : nullptr;
    std::this_thread::sleep_for(duration);
    if (own != nullptr)
        PyEval_RestoreThread(own);
}

// A turn with the interpreter: the process does not wait for it at exit, as it may last as long as a script.
// The texts that are made meanwhile need nothing that is destroyed.
struct InterpreterTurn {
    ExitGate::Outside outside;
    PyThreadStateLock lock;
};

QString textOf(PyObject* object)
{
    const char* text = nullptr;
    PyArg_Parse(object, "s", &text);
    PyErr_Clear();
    return QString::fromUtf8(text);
}

// What each reader does around its conversion: takes the result and the interpreter lock, and lets no error
// pass, neither one that was pending before nor that of a result of another kind.
class TakenResult {
public:
    explicit TakenResult(PyObject*& result)
        : m_result(std::exchange(result, nullptr))
    {
        PyErr_Clear();
    }
    ~TakenResult() { PyErr_Clear(); }
    TakenResult(const TakenResult&) = delete;
    TakenResult& operator=(const TakenResult&) = delete;

    PyObject* object() const { return m_result.get(); }

private:
    // The reference goes first, while the lock is held.
    InterpreterTurn m_turn;
    PyReference m_result;
};

// Only the caller's own module object: another task may be importing the module anew at this moment.
void unloadModule(const std::string& name, PyObject* module)
{
    PyObject* const modules = PyImport_GetModuleDict();
    if (PyDict_GetItemString(modules, name.c_str()) == module)
        PyDict_DelItemString(modules, name.c_str());
    PyErr_Clear();
}

// The statements of the start-up, made before its turn with the interpreter.
struct StartStatements {
    QString folder = QuenzoTool::getToolPath() + QStringLiteral("/Python");
    std::string variable = startStatement("os.environ['PYTHON_QUENZO_ENV'] = '%1'", folder);
    std::string path = startStatement("sys.path.append(str('%1').decode('utf8'))", folder);
    std::string module = startStatement("import init_python_env").toStdString();
};

// Begins with the interpreter lock held, and ends without.
void prepareEnvironment(const StartStatements& statements)
{
    PyEval_InitThreads();
    PyEval_ReleaseThread(PyThreadState_Get());
    const PyThreadStateLock lock;
    runPythonStatement("import sys");
    runPythonStatement("import os");
    runPythonStatement(statements.variable);
    runPythonStatement(statements.path);
    runPythonStatement(statements.module);
}

} // namespace

PyThreadStateLock::PyThreadStateLock()
    : m_state(PyGILState_Ensure())
{
}

PyThreadStateLock::~PyThreadStateLock()
{
    PyGILState_Release(static_cast<PyGILState_STATE>(m_state));
}

PythonForQt::PythonForQt(QObject* parent)
    : QObject(parent)
    , bEnvReady(initPythonEnv())
{
}

PythonForQt::~PythonForQt() = default;

// The start happens once, and three guards see to it. Who finds the interpreter running goes on without a
// lock, since every object asks. But it counts as running long before its environment is complete, so that
// callers wait at the mutex while `starting` says so: all but a thread that holds the interpreter lock, such
// as a start-up module calling back, for which the start itself would wait. The mutex is recursive, since
// such a module may call back on the starting thread without that lock.
bool PythonForQt::initPythonEnv()
{
    static std::atomic<bool> starting{false};
    static std::recursive_mutex startMutex;
    ExitGate::setHold(holdWithoutLock);
    ExitGate::arm(ExitGate::Scripts);
    if (PythonRuntime::isRunning() && (!starting || holdsInterpreterLock()))
        return true;
    const ExitGate::Call call;
    if (!call.mayGoOn())
        return false;
    QString cause;
    {
        const StartStatements statements;
        const ExitGate::Outside outside;
        const std::lock_guard<std::recursive_mutex> guard(startMutex);
        if (PythonRuntime::isRunning())
            return true;
        starting = true;
        cause = PythonRuntime::start();
        if (cause.isEmpty())
            prepareEnvironment(statements);
        starting = false;
    }
    if (!cause.isEmpty())
        qCWarning(scriptsLog, "the Python interpreter could not be started: %s", qUtf8Printable(cause));
    return cause.isEmpty();
}

void PythonForQt::callScript(QString scriptPath, QString function, const QList<QVariant>& arguments,
                             bool unload)
{
    const ExitGate::Call call;
    if (!call.mayGoOn())
        return;
    CallMessages messages("void __cdecl PythonForQt::callScript(class QString,class QString,"
                          "const class QList<class QVariant> &,bool)");
    const QFileInfo script(scriptPath);
    const QString scriptName = script.completeBaseName();
    if (!PythonRuntime::isRunning()) {
        messages.addNotImported(scriptName);
        return;
    }
    const std::string folder = "str('" + quoted(script.absolutePath()).toStdString() + "').decode('utf8')";
    const InterpreterTurn turn;
    // An error left by the caller, or by an earlier call under the caller's lock, would fail the first
    // statement.
    PyErr_Clear();
    runPythonStatement("import sys");
    runPythonStatement("import os");
    const std::string moduleName = scriptName.toStdString();
    runPythonStatement("reload(sys);sys.setdefaultencoding('utf8');");
    runPythonStatement("sys.path.append(" + folder + ")");

    PyReference module(PyImport_ImportModule(moduleName.c_str()));
    if (module == nullptr) {
        messages.addNotImported(scriptName);
        messages.addCause(QStringLiteral("the script '%1' could not be imported").arg(scriptPath));
        return;
    }
    const QByteArray functionName = function.toUtf8();
    if (PyReference callee{PyObject_GetAttrString(module.get(), functionName.constData())}) {
        const PyReference tuple(argumentTuple(arguments));
        pResult = PyEval_CallObjectWithKeywords(callee.get(), tuple.get(), nullptr);
        if (pResult == nullptr)
            messages.addCause(QStringLiteral("%1 of the script '%2' failed").arg(function, scriptPath));
    } else {
        messages.add(__LINE__, QStringLiteral("Error:Function was not found!"));
        messages.addCause(QStringLiteral("the script '%1' has no %2").arg(scriptPath, function));
    }
    if (unload)
        unloadModule(moduleName, module.get());
    // Not before the function has returned: without its module its globals turn to None.
    module.reset();
    runPythonStatement("if " + folder + " in sys.path:sys.path.remove(" + folder + ")");
}

int PythonForQt::getResultAsInt()
{
    if (pResult == nullptr)
        return -1;
    const TakenResult result(pResult);
    return _PyInt_AsInt(result.object());
}

QString PythonForQt::getResultAsString()
{
    if (pResult == nullptr)
        return {};
    const TakenResult result(pResult);
    return textOf(result.object());
}

QStringList PythonForQt::getResultAsStrList()
{
    if (pResult == nullptr)
        return {};
    const TakenResult result(pResult);
    QStringList texts;
    const Py_ssize_t count = PyList_Size(result.object());
    PyErr_Clear();
    for (Py_ssize_t i = 0; i < count; ++i)
        texts.append(textOf(PyList_GetItem(result.object(), i)));
    return texts;
}

QMap<QString, QString> PythonForQt::getResultAsStrDict()
{
    if (pResult == nullptr)
        return {};
    const TakenResult result(pResult);
    QMap<QString, QString> texts;
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(result.object(), &position, &key, &value) != 0)
        texts.insert(textOf(key), textOf(value));
    return texts;
}

PyObject* PythonForQt::BuildValue(QVariant value)
{
    switch (value.type()) {
    case QVariant::Int:
        return Py_BuildValue("i", value.toInt());
    case QVariant::String:
        return Py_BuildValue("s", value.toString().toStdString().c_str());
    default:
        return nullptr;
    }
}

PyObject* PythonForQt::argumentTuple(const QList<QVariant>& arguments)
{
    if (arguments.isEmpty())
        return nullptr;
    PyObject* const tuple = PyTuple_New(arguments.size());
    Py_ssize_t slot = 0;
    for (const QVariant& argument : arguments) {
        if (PyObject* const value = BuildValue(argument))
            PyTuple_SET_ITEM(tuple, slot++, value);
        PyErr_Clear();
    }
    // A slot left null would crash the interpreter as soon as the function looks at it.
    for (; slot < arguments.size(); ++slot) {
        Py_INCREF(Py_None);
        PyTuple_SET_ITEM(tuple, slot, Py_None);
    }
    return tuple;
}

void PythonForQt::releaseObj(PyObject** slot)
{
    if (*slot == nullptr)
        return;
    const InterpreterTurn turn;
    Py_CLEAR(*slot);
}
