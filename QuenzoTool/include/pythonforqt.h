// SPDX-License-Identifier: MIT
#ifndef PYTHONFORQT_H
#define PYTHONFORQT_H

#include "quenzotool_export.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

// A host needs the interpreter's headers only to touch Python objects itself.
struct _object; // NOLINT(bugprone-reserved-identifier): the interpreter's own name
typedef struct _object PyObject; // NOLINT(modernize-use-using)

/**
 * Holds the interpreter lock for the scope it lives in.
 *
 * @code
 * {
 *     PyThreadStateLock lock;
 *     PyList_Append(list, item);
 * }
 * @endcode
 *
 * May be nested, and used on threads that the interpreter has never seen. The interpreter must be running
 * (PythonForQt::initPythonEnv). To be destroyed on the thread that made it, in the reverse order of nesting;
 * a copy must not be destroyed as well as its source, since each taking of the lock is given back exactly
 * once.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT PyThreadStateLock {
public:
    /** Takes the interpreter lock for the calling thread; waits for it. */
    PyThreadStateLock();

    /** Gives it back. */
    ~PyThreadStateLock();

    PyThreadStateLock(const PyThreadStateLock&) = default;
    PyThreadStateLock& operator=(const PyThreadStateLock&) = default;

private:
    int m_state; // PyGILState_STATE
};

/**
 * Calls functions of Python 2.7 scripts in the embedded interpreter and reads what they return.
 *
 * @code
 * PythonForQt python;
 * python.callScript(scriptFolder + "/channels.py", "count", {"android", 7}, true);
 * const int channels = python.getResultAsInt();
 * @endcode
 *
 * The interpreter starts with the first object, or with initPythonEnv(), and runs until the process ends.
 * Start it on one thread before others call scripts.
 *
 * Threads: one object is used by one thread at a time; several objects may be used on several threads, whose
 * calls then take turns on the interpreter lock. Every function takes that lock itself, and may be called
 * with it held.
 *
 * Ownership: an object owns the result of its last call until a reader or releaseObj() takes it. Read (or
 * release) each result before the next call and before the object goes: a result not read is never released.
 *
 * A script's failure is never thrown or printed, but for the SyntaxError of a folder with a quotation mark in
 * its name, which the interpreter prints. It shows as the reader's empty value. The exception's type and text
 * go to the logging category "quenzo.scripts", which is off until the host switches it on.
 *
 * A process that leaves `main` does not wait for scripts at work on other threads: they end with it.
 *
 * @since 1.0
 */
class QUENZOTOOL_EXPORT PythonForQt : public QObject {
    Q_OBJECT

public:
    /** Starts the interpreter when it is not running yet. */
    PythonForQt(QObject* parent = nullptr);
    ~PythonForQt() override;

    /**
     * Starts the interpreter, once in a process: sets the environment variable `PYTHON_QUENZO_ENV` to the
     * folder `Python` of the tool folder, appends that folder to `sys.path` and imports `init_python_env`
     * from it. Whether these succeed is not checked: the interpreter prints their errors to the standard
     * error.
     *
     * The interpreter runs the standard library that the linked runtime was installed with or, where there is
     * none beside it, the one that this library was built with. Environment variables, the search path, the
     * working folder and modules of the person have no say.
     *
     * The calling thread does not hold the interpreter lock afterwards. The process's handling of SIGINT,
     * SIGPIPE and SIGXFSZ stays as it was. A tool folder with a single quotation mark in its path is not
     * supported.
     *
     * The process should run under a UTF-8 locale: under the POSIX locale one folder with a non-ASCII name in
     * `sys.path` makes every later import fail.
     *
     * @return false when the interpreter could not be started: its standard library is missing or damaged,
     * the standard input is a folder, or the process has loaded another version of Python; true otherwise,
     * also when it had been running. Script calls without an interpreter fail like those of a missing script.
     */
    static bool initPythonEnv();

    /**
     * Calls a function of a script and keeps its result for one of the readers below.
     *
     * The module of the script's base name is imported with the script's folder appended to `sys.path`: a
     * module that is already loaded, or another one of that name earlier on the path, is taken as it is. When
     * the import fails the folder stays in `sys.path`; otherwise it is taken off again. A folder that did not
     * exist when the interpreter first looked into it is not found later either.
     *
     * @param scriptPath the script file; a folder with a single quotation mark in its path is not found
     * @param function the function's name
     * @param arguments positional arguments: QVariant::Int goes as `int`, QVariant::String as `str` in UTF-8
     * up to its first null character. Others are left out, those after them move up, and `None` fills the
     * end. Without arguments the function is called without any.
     * @param unload whether the module is unloaded after the call, so that the next call reads the file again
     *
     * When the module or the function is missing the result of an earlier call, if it was not read, stays;
     * when the function raises there is none.
     */
    void callScript(QString scriptPath, QString function, const QList<QVariant>& arguments, bool unload);

    /** Takes the result as a number: −1 when there is none, or when it is no number that fits in an int. */
    int getResultAsInt();

    /** Takes the result as text, of a `str` in UTF-8 or a `unicode`: empty when there is none, or it is no
     * text. */
    QString getResultAsString();

    /** Takes the result as a list of texts: items that are no texts are empty; empty when it is no list. */
    QStringList getResultAsStrList();

    /** Takes the result as a dictionary of texts: keys and values that are no texts are empty; empty when it
     * is none. */
    QMap<QString, QString> getResultAsStrDict();

protected:
    /**
     * Converts one value as callScript() does. The interpreter lock must be held.
     *
     * @return a new reference, owned by the caller; null for a type that is not passed to Python
     */
    PyObject* BuildValue(QVariant value);

    /** Drops the reference in @p slot, if it holds one, and sets it to null. */
    void releaseObj(PyObject** slot);

    bool bEnvReady;
    PyObject* pResult = nullptr;

private:
    PyObject* argumentTuple(const QList<QVariant>& arguments);
};

#endif
