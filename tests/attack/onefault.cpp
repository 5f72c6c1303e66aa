// SPDX-License-Identifier: MIT
// Loaded before the C library into a program and its children: counts the calls that touch files below a
// folder, and lets one of them fail. It is told by the environment:
//   QUENZO_FAULT_FOLDER   the folder, without links in it
//   QUENZO_FAULT_STATE    a file that holds the count for all processes: see State
//   QUENZO_FAULT_TRACE    a file that gets a line a call, or none: number, call, site, place, path
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

struct State {
    std::atomic<std::int32_t> count; ///< of the calls up to now
    std::int32_t wanted; ///< the one that fails; none is 0
    std::int32_t error; ///< its error number
    std::atomic<std::int32_t> hit; ///< whether it has failed
};

using Path = std::array<char, PATH_MAX * 2>;

State* state = nullptr;
char folder[PATH_MAX];
int trace = -1;
thread_local bool isBusy = false;

template <typename Function> Function real(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

__attribute__((constructor)) void begin()
{
    const char* const below = std::getenv("QUENZO_FAULT_FOLDER");
    const char* const shared = std::getenv("QUENZO_FAULT_STATE");
    const char* const lines = std::getenv("QUENZO_FAULT_TRACE");
    if (below == nullptr || shared == nullptr)
        return;
    std::snprintf(folder, sizeof folder, "%s/", below);
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, shared, O_RDWR | O_CLOEXEC));
    if (lines != nullptr)
        trace = static_cast<int>(syscall(SYS_openat, AT_FDCWD, lines, O_WRONLY | O_APPEND | O_CLOEXEC));
    void* const mapped = mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    syscall(SYS_close, file);
    void* frame = nullptr;
    backtrace(&frame, 1); // what it loads at first is loaded now
    if (mapped != MAP_FAILED)
        state = static_cast<State*>(mapped);
}

/** The path that an open file had, or nothing. */
const char* pathOf(int file, Path& path)
{
    std::array<char, 40> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", file);
    const auto size = syscall(SYS_readlinkat, AT_FDCWD, link.data(), path.data(), path.size() / 2);
    path.at(size < 0 ? 0 : static_cast<std::size_t>(size)) = '\0';
    return path.data();
}

/** A path from the root, also of one that is relative to an open folder, or goes by the number of one. */
const char* pathOf(int start, const char* name, Path& path)
{
    const char* rest = name;
    if (name != nullptr && std::strncmp(name, "/proc/self/fd/", 14) == 0) {
        char* end = nullptr;
        start = static_cast<int>(std::strtol(name + 14, &end, 10));
        rest = *end == '/' ? end + 1 : end;
    } else if (name == nullptr || name[0] == '/') {
        return name;
    }
    if (start == AT_FDCWD)
        syscall(SYS_getcwd, path.data(), path.size() / 2);
    else
        pathOf(start, path);
    const std::size_t length = std::strlen(path.data());
    if (*rest != '\0' && std::strcmp(rest, ".") != 0)
        std::snprintf(path.data() + length, path.size() - length, "/%s", rest);
    return path.data();
}

/** The first caller of ours, by file and distance from its start, and a number for the way to it. */
void findPlace(char* place, std::size_t size, std::uint32_t& site)
{
    std::array<void*, 14> frames{};
    const int found = backtrace(frames.data(), static_cast<int>(frames.size()));
    site = 2166136261U;
    place[0] = '\0';
    for (int i = 3; i < found; ++i) {
        Dl_info about{};
        void* const frame = frames.at(static_cast<std::size_t>(i));
        if (dladdr(frame, &about) == 0 || about.dli_fname == nullptr)
            continue;
        const char* const slash = std::strrchr(about.dli_fname, '/');
        const char* const name = slash == nullptr ? about.dli_fname : slash + 1;
        const auto distance =
            static_cast<std::uintptr_t>(static_cast<char*>(frame) - static_cast<char*>(about.dli_fbase));
        if (i < 9)
            site = (site ^ static_cast<std::uint32_t>(distance)) * 16777619U;
        const bool isOurs = std::strstr(name, "uenzo") != nullptr || std::strstr(name, "python") != nullptr;
        if (isOurs && place[0] == '\0')
            std::snprintf(place, size, "%s+%lx", name, static_cast<unsigned long>(distance));
    }
    if (place[0] == '\0')
        std::snprintf(place, size, "other");
}

void tell(int number, const char* call, const char* path)
{
    std::array<char, 300> place{};
    std::uint32_t site = 0;
    findPlace(place.data(), place.size(), site);
    std::array<char, PATH_MAX> line{};
    const int length = std::snprintf(line.data(), line.size(), "%d\t%s\t%08x\t%s\t%.2000s\n", number, call,
                                     site, place.data(), path + std::strlen(folder));
    syscall(SYS_write, trace, line.data(), static_cast<std::size_t>(length));
}

/** Whether this call is the one that fails; its error number is set then. */
bool isTurn(const char* call, const char* path)
{
    if (state == nullptr || isBusy || path == nullptr || std::strncmp(path, folder, std::strlen(folder)) != 0)
        return false;
    isBusy = true;
    const int before = errno;
    const int number = ++state->count;
    const bool fails = number == state->wanted;
    if (trace >= 0 && (fails || state->wanted == 0))
        tell(number, call, path);
    isBusy = false;
    errno = before;
    if (!fails)
        return false;
    state->hit = 1;
    errno = state->error;
    return true;
}

bool isTurn(const char* call, int start, const char* name)
{
    Path path{};
    return state != nullptr && isTurn(call, pathOf(start, name, path));
}

bool isTurn(const char* call, int file)
{
    const int before = errno;
    Path path{};
    const bool fails = state != nullptr && isTurn(call, pathOf(file, path));
    if (!fails)
        errno = before;
    return fails;
}

mode_t modeFrom(int flags, va_list arguments)
{
    return (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

const char* openingOf(int flags)
{
    if ((flags & O_TMPFILE) == O_TMPFILE)
        return "open unnamed";
    if ((flags & O_CREAT) != 0)
        return "create";
    return (flags & O_DIRECTORY) != 0 ? "open folder" : "open";
}

} // namespace

// NOLINTBEGIN: the C library's declarations
#define FAULT(result, name, parameters, arguments, turn)                                                     \
    __attribute__((visibility("default"))) result name parameters                                            \
    {                                                                                                        \
        if (isTurn turn)                                                                                     \
            return static_cast<result>(-1);                                                                  \
        return real<result(*) parameters>(#name) arguments;                                                  \
    }

#define OPENING(name)                                                                                        \
    __attribute__((visibility("default"))) int name(const char* path, int flags, ...)                        \
    {                                                                                                        \
        va_list list;                                                                                        \
        va_start(list, flags);                                                                               \
        const mode_t mode = modeFrom(flags, list);                                                           \
        va_end(list);                                                                                        \
        if (isTurn(openingOf(flags), AT_FDCWD, path))                                                        \
            return -1;                                                                                       \
        return real<int (*)(const char*, int, mode_t)>(#name)(path, flags, mode);                            \
    }

#define OPENING_AT(name)                                                                                     \
    __attribute__((visibility("default"))) int name(int start, const char* path, int flags, ...)             \
    {                                                                                                        \
        va_list list;                                                                                        \
        va_start(list, flags);                                                                               \
        const mode_t mode = modeFrom(flags, list);                                                           \
        va_end(list);                                                                                        \
        if (isTurn(openingOf(flags), start, path))                                                           \
            return -1;                                                                                       \
        return real<int (*)(int, const char*, int, mode_t)>(#name)(start, path, flags, mode);                \
    }

#define STREAM(name)                                                                                         \
    __attribute__((visibility("default"))) FILE* name(const char* path, const char* mode)                    \
    {                                                                                                        \
        if (isTurn(mode[0] == 'r' ? "open" : "create", AT_FDCWD, path))                                      \
            return nullptr;                                                                                  \
        return real<FILE* (*)(const char*, const char*)>(#name)(path, mode);                                 \
    }

extern "C" {

OPENING(open)
OPENING(open64)
OPENING_AT(openat)
OPENING_AT(openat64)
STREAM(fopen)
STREAM(fopen64)

FAULT(ssize_t, read, (int file, void* to, size_t size), (file, to, size), ("read", file))
FAULT(ssize_t, pread64, (int file, void* to, size_t size, off64_t at), (file, to, size, at), ("read", file))
FAULT(ssize_t, write, (int file, const void* from, size_t size), (file, from, size), ("write", file))
FAULT(ssize_t, pwrite64, (int file, const void* from, size_t size, off64_t at), (file, from, size, at),
      ("write", file))
FAULT(ssize_t, writev, (int file, const iovec* from, int count), (file, from, count), ("write", file))
FAULT(ssize_t, sendfile64, (int to, int from, off64_t* at, size_t size) noexcept, (to, from, at, size),
      ("copy", to))
FAULT(ssize_t, copy_file_range, (int from, off64_t* in, int to, off64_t* out, size_t size, unsigned flags),
      (from, in, to, out, size, flags), ("copy", to))
FAULT(int, fsync, (int file), (file), ("flush", file))
FAULT(int, fdatasync, (int file), (file), ("flush", file))
FAULT(int, syncfs, (int file) noexcept, (file), ("flush", file))
FAULT(int, ftruncate64, (int file, off64_t size) noexcept, (file, size), ("resize", file))
FAULT(int, fallocate64, (int file, int mode, off64_t at, off64_t size), (file, mode, at, size),
      ("resize", file))
FAULT(int, fchmod, (int file, mode_t mode) noexcept, (file, mode), ("chmod", file))
FAULT(int, chmod, (const char* path, mode_t mode) noexcept, (path, mode), ("chmod", AT_FDCWD, path))
FAULT(int, fchmodat, (int start, const char* path, mode_t mode, int flags) noexcept,
      (start, path, mode, flags), ("chmod", start, path))
FAULT(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), ("mkdir", AT_FDCWD, path))
FAULT(int, mkdirat, (int start, const char* path, mode_t mode) noexcept, (start, path, mode),
      ("mkdir", start, path))
FAULT(int, rmdir, (const char* path) noexcept, (path), ("remove", AT_FDCWD, path))
FAULT(int, unlink, (const char* path) noexcept, (path), ("remove", AT_FDCWD, path))
FAULT(int, remove, (const char* path) noexcept, (path), ("remove", AT_FDCWD, path))
FAULT(int, unlinkat, (int start, const char* path, int flags) noexcept, (start, path, flags),
      ("remove", start, path))
FAULT(int, rename, (const char* from, const char* to) noexcept, (from, to), ("rename", AT_FDCWD, to))
FAULT(int, renameat, (int start, const char* from, int end, const char* to) noexcept, (start, from, end, to),
      ("rename", end, to))
FAULT(int, renameat2, (int start, const char* from, int end, const char* to, unsigned flags) noexcept,
      (start, from, end, to, flags), ("rename", end, to))
FAULT(int, link, (const char* from, const char* to) noexcept, (from, to), ("link", AT_FDCWD, to))
FAULT(int, linkat, (int start, const char* from, int end, const char* to, int flags) noexcept,
      (start, from, end, to, flags), ("link", end, to))
FAULT(int, symlink, (const char* from, const char* to) noexcept, (from, to), ("link", AT_FDCWD, to))
FAULT(ssize_t, getdents64, (int file, void* to, size_t size) noexcept, (file, to, size), ("list", file))
FAULT(int, stat64, (const char* path, struct stat64* to) noexcept, (path, to), ("stat", AT_FDCWD, path))
FAULT(int, lstat64, (const char* path, struct stat64* to) noexcept, (path, to), ("stat", AT_FDCWD, path))
FAULT(int, fstat64, (int file, struct stat64* to) noexcept, (file, to), ("stat", file))
FAULT(int, fstatat64, (int start, const char* path, struct stat64* to, int flags) noexcept,
      (start, path, to, flags), ("stat", start, path))
FAULT(int, statx, (int start, const char* path, int flags, unsigned mask, struct statx* to) noexcept,
      (start, path, flags, mask, to), ("stat", start, path))
// What is compiled for an older C library asks by these.
FAULT(int, __xstat64, (int version, const char* path, struct stat64* to) noexcept, (version, path, to),
      ("stat", AT_FDCWD, path))
FAULT(int, __lxstat64, (int version, const char* path, struct stat64* to) noexcept, (version, path, to),
      ("stat", AT_FDCWD, path))
FAULT(int, __fxstat64, (int version, int file, struct stat64* to) noexcept, (version, file, to),
      ("stat", file))

__attribute__((visibility("default"))) DIR* opendir(const char* path)
{
    return isTurn("open folder", AT_FDCWD, path) ? nullptr : real<DIR* (*)(const char*)>("opendir")(path);
}

__attribute__((visibility("default"))) dirent64* readdir64(DIR* folder)
{
    return isTurn("list", dirfd(folder)) ? nullptr : real<dirent64* (*)(DIR*)>("readdir64")(folder);
}

// What fails at its end has been closed all the same.
__attribute__((visibility("default"))) int close(int file)
{
    const bool fails = isTurn("close", file);
    const int error = errno;
    const int result = real<int (*)(int)>("close")(file);
    if (!fails)
        return result;
    errno = error;
    return -1;
}

__attribute__((visibility("default"))) int fclose(FILE* stream)
{
    const bool fails = isTurn("close", fileno(stream));
    const int error = errno;
    const int result = real<int (*)(FILE*)>("fclose")(stream);
    if (!fails)
        return result;
    errno = error;
    return EOF;
}

__attribute__((visibility("default"))) int fflush(FILE* stream)
{
    if (stream != nullptr && isTurn("write", fileno(stream)))
        return EOF;
    return real<int (*)(FILE*)>("fflush")(stream);
}

__attribute__((visibility("default"))) size_t fwrite(const void* from, size_t size, size_t count,
                                                     FILE* stream)
{
    if (isTurn("write", fileno(stream))) {
        stream->_flags |= 0x20; // the mark by which ferror() knows
        return 0;
    }
    return real<size_t (*)(const void*, size_t, size_t, FILE*)>("fwrite")(from, size, count, stream);
}

__attribute__((visibility("default"))) size_t fread(void* to, size_t size, size_t count, FILE* stream)
{
    if (isTurn("read", fileno(stream))) {
        stream->_flags |= 0x20;
        return 0;
    }
    return real<size_t (*)(void*, size_t, size_t, FILE*)>("fread")(to, size, count, stream);
}

__attribute__((visibility("default"))) int fcntl64(int file, int command, ...)
{
    va_list list;
    va_start(list, command);
    void* const argument = va_arg(list, void*);
    va_end(list);
    if ((command == F_SETLK || command == F_SETLKW) && isTurn("lock", file))
        return -1;
    return real<int (*)(int, int, void*)>("fcntl64")(file, command, argument);
}
}
// NOLINTEND
