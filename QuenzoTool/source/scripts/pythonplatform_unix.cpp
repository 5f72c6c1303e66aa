// SPDX-License-Identifier: MIT
#include "scripts/pythonapi.h"

#include "scripts/pythonplatform.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

constexpr std::array<int, 3> takenOver{SIGINT, SIGPIPE, SIGXFSZ};

std::string runtimeFile()
{
    Dl_info runtime{};
    if (dladdr(reinterpret_cast<const void*>(&Py_Initialize), &runtime) == 0)
        return {};
    return runtime.dli_fname;
}

bool isLibraryFolder(const fs::path& folder)
{
    return folder.filename() == "lib" || folder.filename() == "lib64";
}

// HOME/lib/libpython2.7.so or HOME/lib/PLATFORM/libpython2.7.so. No folder further up is looked at: it may be
// anybody's. Empty for a runtime elsewhere, such as one within a program.
fs::path installedHome()
{
    std::error_code error;
    const fs::path file = fs::path(runtimeFile());
    const fs::path folder = file.is_absolute() ? fs::canonical(file, error).parent_path() : fs::path();
    for (const fs::path& library : {folder, folder.parent_path()}) {
        if (isLibraryFolder(library))
            return library.parent_path();
    }
    return {};
}

bool hasStandardLibrary(const fs::path& home)
{
    const std::string name =
        "python" + std::to_string(PY_MAJOR_VERSION) + '.' + std::to_string(PY_MINOR_VERSION);
    std::error_code error;
    for (const char* library : {"lib", "lib64"}) {
        for (const char* landmark : {"os.py", "os.pyc"}) {
            if (fs::is_regular_file(home / library / name / landmark, error))
                return true;
        }
    }
    return false;
}

} // namespace

struct SignalKeeper::Actions {
    std::array<struct sigaction, takenOver.size()> saved{};
};

SignalKeeper::SignalKeeper()
    : m_actions(std::make_unique<Actions>())
{
    for (std::size_t i = 0; i < takenOver.size(); ++i)
        sigaction(takenOver.at(i), nullptr, &m_actions->saved.at(i));
}

SignalKeeper::~SignalKeeper()
{
    for (std::size_t i = 0; i < takenOver.size(); ++i)
        sigaction(takenOver.at(i), &m_actions->saved.at(i), nullptr);
}

void makePythonSymbolsGlobal()
{
    const std::string file = runtimeFile();
    if (!file.empty())
        dlopen(file.c_str(), RTLD_NOLOAD | RTLD_GLOBAL | RTLD_LAZY);
}

std::string pythonHome()
{
    // A host may ship the runtime alone among its own libraries: what was built with goes with it.
    for (const fs::path& home : {installedHome(), fs::path(QUENZO_PYTHON_HOME)}) {
        if (!home.empty() && hasStandardLibrary(home))
            return home.string();
    }
    return {};
}

bool isStandardInputAFolder()
{
    struct stat status { };
    return fstat(fileno(stdin), &status) == 0 && S_ISDIR(status.st_mode);
}
