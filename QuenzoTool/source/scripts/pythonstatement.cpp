// SPDX-License-Identifier: MIT
#include "scripts/pythonapi.h"

#include "scripts/pythonstatement.h"

#include <frameobject.h>

#include <unordered_map>

namespace {

// Compiling takes most of a statement's time, and the same few texts are run for every call of a script.
// The interpreter lock guards the table, which lives as long as the interpreter: for ever.
PyReference compiled(const std::string& text)
{
    constexpr std::size_t tableLimit = 256;
    static auto& table = *new std::unordered_map<std::string, PyReference>;

    const auto known = table.find(text);
    if (known != table.end()) {
        Py_INCREF(known->second.get());
        return PyReference(known->second.get());
    }
    PyReference code(Py_CompileString(text.c_str(), "<string>", Py_file_input));
    if (code != nullptr) {
        if (table.size() >= tableLimit)
            table.clear();
        Py_INCREF(code.get());
        table.emplace(text, code.get());
    }
    return code;
}

QString textOf(PyObject* object)
{
    const PyReference text(object != nullptr ? PyObject_Str(object) : nullptr);
    const char* const bytes = text != nullptr ? PyString_AsString(text.get()) : nullptr;
    PyErr_Clear();
    return QString::fromUtf8(bytes);
}

// The pending exception, taken off; all null when none was pending.
struct PythonError {
    PyReference type;
    PyReference value;
    PyReference traceback;

    static PythonError take()
    {
        PyObject* type = nullptr;
        PyObject* value = nullptr;
        PyObject* traceback = nullptr;
        PyErr_Fetch(&type, &value, &traceback);
        if (type != nullptr)
            PyErr_NormalizeException(&type, &value, &traceback);
        return {PyReference(type), PyReference(value), PyReference(traceback)};
    }
};

// Where the exception was raised, as file:line.
QString innermostPlace(PyObject* traceback)
{
    if (traceback == nullptr || !PyTraceBack_Check(traceback))
        return {};
    const auto* innermost = reinterpret_cast<const PyTracebackObject*>(traceback);
    while (innermost->tb_next != nullptr)
        innermost = innermost->tb_next;
    return QStringLiteral("%1:%2").arg(textOf(innermost->tb_frame->f_code->co_filename),
                                       QString::number(innermost->tb_lineno));
}

// What PyErr_Print does, but for SystemExit, which would end the host's process there.
void printPythonError()
{
    const PythonError error = PythonError::take();
    const auto orNone = [](const PyReference& object) { return object != nullptr ? object.get() : Py_None; };
    if (PyObject* const hook = PySys_GetObject(const_cast<char*>("excepthook"))) {
        const PyReference printed(PyObject_CallFunctionObjArgs(hook, orNone(error.type), orNone(error.value),
                                                               orNone(error.traceback), nullptr));
    }
    PyErr_Clear();
}

} // namespace

void runPythonStatement(const std::string& text)
{
    PyObject* const main = PyModule_GetDict(PyImport_AddModule("__main__"));
    const PyReference code = compiled(text);
    const PyReference result(
        code != nullptr ? PyEval_EvalCode(reinterpret_cast<PyCodeObject*>(code.get()), main, main) : nullptr);
    if (result == nullptr)
        printPythonError();
    else if (Py_FlushLine() != 0)
        PyErr_Clear();
}

QString takePythonError()
{
    const PythonError error = PythonError::take();
    if (error.type == nullptr)
        return {};
    PyObject* const type = error.type.get();
    QString name =
        QString::fromUtf8(PyExceptionClass_Check(type) ? PyExceptionClass_Name(type) : "exception");
    name = name.mid(name.lastIndexOf(QLatin1Char('.')) + 1);
    const QString text = textOf(error.value.get());
    const QString place = innermostPlace(error.traceback.get());
    return name + (text.isEmpty() ? QString() : QStringLiteral(": ") + text)
        + (place.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(place));
}
