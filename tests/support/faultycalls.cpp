// SPDX-License-Identifier: MIT
#include "faultycalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<int> faultyCall{-1};
std::atomic<int> remaining{0};
constexpr int none = -1;
std::atomic<int> errorNumber{none};
std::atomic<bool> hit{false};
std::atomic<bool> isLasting{false};
std::atomic<bool> unnamedFiles{true};
std::atomic<bool> renamingIfFree{true};
std::atomic<bool> kinds{true};
std::function<void()> pendingAction;
std::array<std::atomic<int>, FaultyCalls::CallCount> counts{};
std::atomic<int> linksAtFlush{0};
std::atomic<int> removalsAtFlush{0};

bool fails(FaultyCalls::Call call)
{
    ++counts.at(call);
    if (faultyCall != call || --remaining > 0)
        return false;
    hit = true;
    if (!isLasting)
        faultyCall = -1;
    if (pendingAction)
        pendingAction();
    errno = errorNumber;
    return errorNumber != none;
}

void prepare(FaultyCalls::Call call, int n)
{
    hit = false;
    remaining = n;
    faultyCall = call;
}

template <typename Function> Function real(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int openReally(const char* name, int folder, const char* path, int flags, mode_t mode)
{
    if (std::strcmp(path, "..") == 0 && fails(FaultyCalls::Climbing))
        return -1;
    const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
    if (isUnnamed && fails(FaultyCalls::OpeningUnnamed))
        return -1;
    if (isUnnamed && !unnamedFiles) {
        errno = EOPNOTSUPP;
        return -1;
    }
    const bool isFile = (flags & (O_DIRECTORY | O_PATH)) == 0 || isUnnamed;
    if (isFile && fails(FaultyCalls::Opening))
        return -1;
    return real<int (*)(int, const char*, int, mode_t)>(name)(folder, path, flags, mode);
}

bool isRegular(int file)
{
    struct stat status { };
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

mode_t modeFrom(int flags, va_list arguments)
{
    return (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

void FaultyCalls::failFromNth(Call call, int n, int error, const std::function<void()>& action)
{
    pendingAction = action;
    errorNumber = error;
    isLasting = true;
    prepare(call, n);
}

void FaultyCalls::failNth(Call call, int n, int error)
{
    pendingAction = nullptr;
    errorNumber = error;
    isLasting = false;
    prepare(call, n);
}

void FaultyCalls::actBeforeNth(Call call, int n, const std::function<void()>& action)
{
    pendingAction = action;
    errorNumber = none;
    isLasting = false;
    prepare(call, n);
}

void FaultyCalls::allowUnnamedFiles(bool allow)
{
    unnamedFiles = allow;
}

void FaultyCalls::allowRenamingIfFree(bool allow)
{
    renamingIfFree = allow;
}

void FaultyCalls::tellKinds(bool tell)
{
    kinds = tell;
}

bool FaultyCalls::wasHit()
{
    return hit;
}

void FaultyCalls::heal()
{
    faultyCall = -1;
    unnamedFiles = true;
    renamingIfFree = true;
    kinds = true;
}

void FaultyCalls::startCounting()
{
    for (auto& number : counts)
        number = 0;
}

int FaultyCalls::count(Call call)
{
    return counts.at(call);
}

int FaultyCalls::linksBeforeFlush()
{
    return linksAtFlush;
}

int FaultyCalls::removalsBeforeFlush()
{
    return removalsAtFlush;
}

extern "C" {

// NOLINTBEGIN: the C library's declarations
__attribute__((visibility("default"))) int openat(int folder, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openReally("openat", folder, path, flags, mode);
}

__attribute__((visibility("default"))) int openat64(int folder, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openReally("openat64", folder, path, flags, mode);
}

__attribute__((visibility("default"))) ssize_t write(int file, const void* content, size_t size)
{
    const bool isMeant = faultyCall == FaultyCalls::Writing && isRegular(file);
    if (isMeant && fails(FaultyCalls::Writing))
        return -1;
    return real<ssize_t (*)(int, const void*, size_t)>("write")(file, content,
                                                                isMeant ? (size + 1) / 2 : size);
}

__attribute__((visibility("default"))) int linkat(int oldFolder, const char* oldPath, int newFolder,
                                                  const char* newPath, int flags) noexcept
{
    if (fails(FaultyCalls::Linking))
        return -1;
    return real<int (*)(int, const char*, int, const char*, int)>("linkat")(oldFolder, oldPath, newFolder,
                                                                            newPath, flags);
}

__attribute__((visibility("default"))) ssize_t sendfile64(int target, int source, off64_t* offset,
                                                          size_t size) noexcept
{
    if (fails(FaultyCalls::Copying))
        return errno == FaultyCalls::nothingDone ? 0 : -1;
    return real<ssize_t (*)(int, int, off64_t*, size_t)>("sendfile64")(target, source, offset, size);
}

__attribute__((visibility("default"))) ssize_t copy_file_range(int source, off64_t* in, int target,
                                                               off64_t* out, size_t size, unsigned flags)
{
    if (fails(FaultyCalls::Copying))
        return errno == FaultyCalls::nothingDone ? 0 : -1;
    return real<ssize_t (*)(int, off64_t*, int, off64_t*, size_t, unsigned)>("copy_file_range")(
        source, in, target, out, size, flags);
}

__attribute__((visibility("default"))) ssize_t getdents64(int folder, void* buffer, size_t size) noexcept
{
    if (fails(FaultyCalls::Listing))
        return -1;
    const ssize_t length = real<ssize_t (*)(int, void*, size_t)>("getdents64")(folder, buffer, size);
    for (ssize_t at = 0; !kinds && at < length;) {
        auto* const record = reinterpret_cast<dirent64*>(static_cast<char*>(buffer) + at);
        record->d_type = DT_UNKNOWN;
        at += record->d_reclen;
    }
    return length;
}

__attribute__((visibility("default"))) int syncfs(int file) noexcept
{
    linksAtFlush = counts.at(FaultyCalls::Linking).load();
    removalsAtFlush = counts.at(FaultyCalls::Removing).load();
    if (fails(FaultyCalls::Flushing))
        return -1;
    return real<int (*)(int)>("syncfs")(file);
}

__attribute__((visibility("default"))) ssize_t pwrite64(int file, const void* content, size_t size,
                                                        off64_t at)
{
    if (fails(FaultyCalls::Storing))
        return -1;
    return real<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64")(file, content, size, at);
}

// Not done: no plug is pulled, and it would be most of a test's time.
__attribute__((visibility("default"))) int fdatasync(int /*file*/)
{
    return fails(FaultyCalls::Syncing) ? -1 : 0;
}

__attribute__((visibility("default"))) int fcntl64(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    const bool locks = command == F_SETLK && static_cast<const struct flock*>(argument)->l_type == F_WRLCK;
    if (locks && fails(FaultyCalls::Locking))
        return -1;
    return real<int (*)(int, int, void*)>("fcntl64")(file, command, argument);
}

__attribute__((visibility("default"))) int unlinkat(int folder, const char* path, int flags) noexcept
{
    if (fails(FaultyCalls::Removing))
        return -1;
    return real<int (*)(int, const char*, int)>("unlinkat")(folder, path, flags);
}

__attribute__((visibility("default"))) int renameat(int oldFolder, const char* oldPath, int newFolder,
                                                    const char* newPath) noexcept
{
    if (fails(FaultyCalls::Renaming))
        return -1;
    return real<int (*)(int, const char*, int, const char*)>("renameat")(oldFolder, oldPath, newFolder,
                                                                         newPath);
}

__attribute__((visibility("default"))) int renameat2(int oldFolder, const char* oldPath, int newFolder,
                                                     const char* newPath, unsigned flags) noexcept
{
    if (!renamingIfFree) {
        errno = ENOSYS;
        return -1;
    }
    return real<int (*)(int, const char*, int, const char*, unsigned)>("renameat2")(
        oldFolder, oldPath, newFolder, newPath, flags);
}

__attribute__((visibility("default"))) int fchmod(int file, mode_t mode) noexcept
{
    if (fails(FaultyCalls::ChangingMode))
        return -1;
    return real<int (*)(int, mode_t)>("fchmod")(file, mode);
}

__attribute__((visibility("default"))) int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                                          void* (*function)(void*), void* argument) noexcept
{
    if (fails(FaultyCalls::StartingThread))
        return errno;
    return real<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create")(
        thread, attributes, function, argument);
}
// NOLINTEND
}
