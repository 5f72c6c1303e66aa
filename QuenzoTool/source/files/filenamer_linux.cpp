// SPDX-License-Identifier: MIT
#include "files/filenamer_linux.h"

#include "files/helperthread.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

int linkInPlace(const UnnamedFile& file)
{
    if (linkat(file.target, "", file.folder, file.name, AT_EMPTY_PATH) == 0)
        return 0;
    // Older kernels ask for a privilege here, and say that there is no such file.
    if (errno != ENOENT && errno != EPERM && errno != EINVAL)
        return errno;
    std::array<char, 32> path{};
    std::snprintf(path.data(), path.size(), "/proc/self/fd/%d", file.target);
    const bool linked = linkat(AT_FDCWD, path.data(), file.folder, file.name, AT_SYMLINK_FOLLOW) == 0;
    return linked ? 0 : errno;
}

} // namespace

int giveName(const UnnamedFile& file)
{
    fchmod(file.target, file.mode);
    return linkInPlace(file);
}

FileNamer::FileNamer()
    : m_thread(startHelperThread([this] { work(); }))
{
}

FileNamer::~FileNamer()
{
    drain();
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

bool FileNamer::add(const UnnamedFile& file)
{
    constexpr std::size_t batch = 16;
    m_gathered.push_back(file);
    if (m_gathered.size() < batch)
        return true;
    if (!m_thread.joinable()) { // the system has no further one
        processGathered();
        return !m_failed;
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_handedOver.empty(); });
    m_handedOver.swap(m_gathered);
    m_changed.notify_all();
    return !m_failed;
}

FileNamer::Outcome FileNamer::drain()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_handedOver.empty() && !m_working; });
    // The rest is not worth waking the thread for.
    lock.unlock();
    processGathered();
    m_failed = false;
    return std::exchange(m_outcome, {});
}

void FileNamer::work()
{
    std::vector<UnnamedFile> files;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_stopping || !m_handedOver.empty(); });
        if (m_handedOver.empty())
            return;
        files.swap(m_handedOver);
        m_working = true;
        m_changed.notify_all();
        lock.unlock();
        process(files);
        files.clear();
        lock.lock();
        m_working = false;
        m_changed.notify_all();
    }
}

void FileNamer::processGathered()
{
    process(m_gathered);
    m_gathered.clear();
}

void FileNamer::process(const std::vector<UnnamedFile>& files)
{
    for (const UnnamedFile& file : files) {
        if (!m_failed && giveName(file) == 0) {
            ++m_outcome.named;
            m_outcome.bytes += file.size;
        } else {
            m_failed = true;
        }
        close(file.source);
        close(file.target);
    }
}
