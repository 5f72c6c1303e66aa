// SPDX-License-Identifier: MIT
#include "pythonprobe.h"

#include "runroot.h"

#include <QFileInfo>

QString pythonValue(const QString& expression)
{
    const PyThreadStateLock lock;
    PyObject* const main = PyModule_GetDict(PyImport_AddModule("__main__"));
    PyObject* const value = PyRun_String(expression.toUtf8().constData(), Py_eval_input, main, main);
    QString text;
    if (value != nullptr) {
        PyObject* const representation = PyObject_Repr(value);
        text = QString::fromUtf8(PyString_AsString(representation));
        Py_DECREF(representation);
        Py_DECREF(value);
    } else {
        text = QString::fromUtf8(reinterpret_cast<PyTypeObject*>(PyErr_Occurred())->tp_name);
    }
    PyErr_Clear();
    return text;
}

int countInPath(const QString& folder)
{
    const QString escaped = QString(folder)
                                .replace(QLatin1Char('\\'), QStringLiteral("\\\\"))
                                .replace(QLatin1Char('\''), QStringLiteral("\\'"));
    return pythonValue(QStringLiteral("__import__('sys').path.count('%1'.decode('utf8'))").arg(escaped))
        .toInt();
}

bool isLoaded(const QString& module)
{
    return pythonValue(QStringLiteral("'%1' in __import__('sys').modules").arg(module))
        == QLatin1String("True");
}

QString scriptFolder()
{
    return RunRoot::path() + QStringLiteral("/Script");
}

QString writeScript(const QByteArray& content, const QString& folder)
{
    static int number = 0;
    return RunRoot::write(folder + QStringLiteral("/script%1.py").arg(++number), content);
}

QString moduleOf(const QString& scriptPath)
{
    return QFileInfo(scriptPath).completeBaseName();
}
