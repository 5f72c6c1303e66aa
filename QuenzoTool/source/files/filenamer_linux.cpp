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

int nameAs(int file, const FileName& becomes)
{
    if (linkat(file, "", becomes.folder, becomes.name, AT_EMPTY_PATH) == 0)
        return 0;
    // Older kernels ask for a privilege here, and say that there is no such file.
    if (errno != ENOENT && errno != EPERM && errno != EINVAL)
        return errno;
    std::array<char, 32> path{};
    std::snprintf(path.data(), path.size(), "/proc/self/fd/%d", file);
    const bool linked = linkat(AT_FDCWD, path.data(), becomes.folder, becomes.name, AT_SYMLINK_FOLLOW) == 0;
    return linked ? 0 : errno;
}

} // namespace

int giveName(int file, const FileName& becomes)
{
    fchmod(file, becomes.mode);
    return nameAs(file, becomes);
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

bool FileNamer::add(NamelessFile copy)
{
    constexpr std::size_t batch = 16;
    m_gathered.push_back(std::move(copy));
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
    std::vector<NamelessFile> copies;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_stopping || !m_handedOver.empty(); });
        if (m_handedOver.empty())
            return;
        copies.swap(m_handedOver);
        m_working = true;
        m_changed.notify_all();
        lock.unlock();
        process(copies);
        copies.clear();
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

void FileNamer::process(const std::vector<NamelessFile>& copies)
{
    for (const NamelessFile& copy : copies) {
        if (!m_failed && giveName(copy.file.number(), copy.becomes) == 0) {
            ++m_outcome.named;
            m_outcome.bytes += copy.size;
        } else {
            m_failed = true;
        }
    }
}
