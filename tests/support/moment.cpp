// SPDX-License-Identifier: MIT
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

// Preloaded into a program. When it is about to write QUENZO_MOMENT for the first time, wherever to,
// it makes the file "reached" in the folder QUENZO_MOMENT_FOLDER, and waits until there is one "passed": a
// test can change the world at that moment. With QUENZO_FLUSH_FAILS no file system can be brought to the disk
// from then on. The file QUENZO_FLUSHES gets a byte each time that one shall be.

namespace {

std::atomic<bool> isPast{false};

void waitForTest()
{
    if (isPast.exchange(true))
        return;
    const char* const folder = getenv("QUENZO_MOMENT_FOLDER");
    const std::string reached = std::string(folder) + "/reached";
    const std::string passed = std::string(folder) + "/passed";
    const int file = open(reached.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    close(file);
    constexpr useconds_t pauseUs = 5000;
    while (access(passed.c_str(), F_OK) != 0)
        usleep(pauseUs);
}

template <typename Function> Function real(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

// NOLINTBEGIN: the C library's declarations
__attribute__((visibility("default"))) ssize_t write(int file, const void* content, size_t size)
{
    const char* const moment = getenv("QUENZO_MOMENT");
    if (moment != nullptr && memmem(content, size, moment, strlen(moment)) != nullptr)
        waitForTest();
    return real<ssize_t (*)(int, const void*, size_t)>("write")(file, content, size);
}

__attribute__((visibility("default"))) int syncfs(int file) noexcept
{
    const char* const list = getenv("QUENZO_FLUSHES");
    const int flushes = list == nullptr ? -1 : open(list, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (flushes >= 0) {
        real<ssize_t (*)(int, const void*, size_t)>("write")(flushes, "f", 1);
        close(flushes);
    }
    if (!isPast || getenv("QUENZO_FLUSH_FAILS") == nullptr)
        return real<int (*)(int)>("syncfs")(file);
    errno = EIO;
    return -1;
}
// NOLINTEND
}
