// SPDX-License-Identifier: MIT
#include "scripts/pythonapi.h"

#include "scripts/pythonruntime.h"

#include "scripts/pythonplatform.h"
#include "scripts/pythonstatement.h"

#include <cstring>
#include <string>

namespace {

#define QUENZO_TEXT_OF(number) #number
#define QUENZO_VERSION_TEXT(major, minor) QUENZO_TEXT_OF(major) "." QUENZO_TEXT_OF(minor)

constexpr const char* linkedVersion = QUENZO_VERSION_TEXT(PY_MAJOR_VERSION, PY_MINOR_VERSION);

// Both versions export most of the interface: where another one was loaded first, its functions answer.
bool isLinkedVersion()
{
    static const bool linked = std::strncmp(Py_GetVersion(), linkedVersion, std::strlen(linkedVersion)) == 0;
    return linked;
}

// Everything that would have a say in what runs. The interpreter keeps the pointers.
void setPlaces(const std::string& home)
{
    static auto& kept = *new std::string;
    static auto& program = *new std::string;
    kept = home;
    program = home + "/bin/python" + linkedVersion;
    Py_SetPythonHome(&kept.front());
    Py_SetProgramName(&program.front());
    Py_IgnoreEnvironmentFlag = 1;
    Py_NoUserSiteDirectory = 1;
}

// The interpreter's own start ends the process when this module fails.
QString importSite()
{
    if (const PyReference site{PyImport_ImportModule("site")})
        return {};
    QString error = takePythonError();
    Py_Finalize();
    return error;
}

} // namespace

bool PythonRuntime::isRunning()
{
    return Py_IsInitialized() != 0 && isLinkedVersion();
}

QString PythonRuntime::start()
{
    if (!isLinkedVersion())
        return QStringLiteral("the process has loaded another version of it, %1")
            .arg(QString::fromUtf8(Py_GetVersion()).section(QLatin1Char(' '), 0, 0));
    // The interpreter ends the process then.
    if (isStandardInputAFolder())
        return QStringLiteral("the standard input is a folder");
    const std::string home = pythonHome();
    if (home.empty())
        return QStringLiteral("its standard library is missing");

    setPlaces(home);
    makePythonSymbolsGlobal();
    const SignalKeeper keeper;
    Py_NoSiteFlag = 1;
    Py_Initialize();
    Py_NoSiteFlag = 0;
    return Py_IsInitialized() != 0 ? importSite() : QStringLiteral("it refused");
}
