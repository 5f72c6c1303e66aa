// SPDX-License-Identifier: MIT
// Hides the interpreter's standard library from whoever asks whether it is there.
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <sys/stat.h>

extern "C" __attribute__((visibility("default"))) int stat(const char* path, struct stat* status) noexcept
{
    if (std::strstr(path, "/python2.7/os.py") != nullptr) {
        errno = ENOENT;
        return -1;
    }
    static const auto next = reinterpret_cast<decltype(&stat)>(dlsym(RTLD_NEXT, "stat"));
    return next(path, status);
}
