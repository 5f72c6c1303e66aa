// SPDX-License-Identifier: MIT
#include "pythonapi.h"

#include "pythonstatement.h"

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

} // namespace

void runPythonStatement(const std::string& text)
{
    PyObject* const main = PyModule_GetDict(PyImport_AddModule("__main__"));
    const PyReference code = compiled(text);
    const PyReference result(
        code != nullptr ? PyEval_EvalCode(reinterpret_cast<PyCodeObject*>(code.get()), main, main) : nullptr);
    if (result != nullptr)
        return;
    // Printing SystemExit would end the host's process.
    if (PyErr_ExceptionMatches(PyExc_SystemExit) != 0)
        PyErr_Clear();
    else
        PyErr_Print();
}

QString takePythonError()
{
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    if (type == nullptr)
        return {};
    PyErr_NormalizeException(&type, &value, &traceback);
    const PyReference ownedType(type);
    const PyReference ownedValue(value);
    const PyReference ownedTraceback(traceback);

    QString name =
        QString::fromUtf8(PyExceptionClass_Check(type) ? PyExceptionClass_Name(type) : "exception");
    name = name.mid(name.lastIndexOf(QLatin1Char('.')) + 1);
    const QString text = textOf(value);
    return text.isEmpty() ? name : name + QStringLiteral(": ") + text;
}
