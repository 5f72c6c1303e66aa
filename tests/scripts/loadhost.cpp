// SPDX-License-Identifier: MIT
// A host that loads the library when it runs, with local symbols: loadhost LIBRARY (dlopen | QLibrary)
#include <QLibrary>

#include <cstdio>
#include <cstring>

#include <dlfcn.h>

int main(int argc, char* argv[])
{
    if (argc != 3)
        return 2;
    // The exported name of QuenzoTool::initPythonEnv().
    const char* const name = "_ZN10QuenzoTool13initPythonEnvEv";
    void* start = nullptr;
    if (std::strcmp(argv[2], "dlopen") == 0) {
        void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        start = library != nullptr ? dlsym(library, name) : nullptr;
    } else {
        QLibrary library(QString::fromLocal8Bit(argv[1]));
        start = reinterpret_cast<void*>(library.resolve(name));
    }
    if (start == nullptr) {
        std::printf("not loaded\n");
        return 1;
    }
    std::printf("%s\n", reinterpret_cast<bool (*)()>(start)() ? "true" : "false");
    return 0;
}
