// SPDX-License-Identifier: MIT
#include "treeprogress.h"

#include <algorithm>

namespace {

bool isEmpty(const QByteArray& folder)
{
    return TreeScope{folder, TreeScope::Kept}.walk([](const WalkedEntry&) { return TreeScope::Stop; });
}

struct timespec now(clockid_t clock)
{
    struct timespec time { };
    clock_gettime(clock, &time);
    return time;
}

bool isBefore(const struct timespec& one, const struct timespec& other)
{
    return one.tv_sec != other.tv_sec ? one.tv_sec < other.tv_sec : one.tv_nsec < other.tv_nsec;
}

// What is there by now is older than this, and what comes is not. The times of files come from a clock that
// may lie some milliseconds behind: it is let past first.
struct timespec moment()
{
    constexpr int patience = 100;
    const struct timespec pause {
        0, 1000000
    };
    const struct timespec exact = now(CLOCK_REALTIME);
    for (int i = 0; i < patience && !isBefore(exact, now(CLOCK_REALTIME_COARSE)); ++i)
        nanosleep(&pause, nullptr);
    return exact;
}

} // namespace

TreeProgress::TreeProgress(const TreeScope& scope)
{
    scope.walk([this](const WalkedEntry& entry) {
        m_all.add(entry);
        if (!entry.isFolder() && m_all.files % m_stride == 0)
            remember(entry);
        return TreeScope::GoOn;
    });
}

void TreeProgress::remember(const WalkedEntry& entry)
{
    constexpr int most = 4096;
    m_waypoints.append({entry.path, m_all});
    if (m_waypoints.size() < most)
        return;
    for (int i = 0; i < most / 2; ++i)
        m_waypoints[i] = m_waypoints.at(2 * i + 1);
    m_waypoints.resize(most / 2);
    m_stride *= 2;
}

TreeCount TreeProgress::done(const std::function<bool(const QByteArray&)>& isDone)
{
    // From where it was before, in growing steps, so that little is asked when little has happened.
    const int count = m_waypoints.size();
    int step = 1;
    while (m_reached + step <= count && isDone(m_waypoints.at(m_reached + step - 1).path)) {
        m_reached += step;
        step *= 2;
    }
    int beyond = std::min(m_reached + step, count + 1);
    while (beyond - m_reached > 1) {
        const int middle = m_reached + (beyond - m_reached) / 2;
        if (isDone(m_waypoints.at(middle - 1).path))
            m_reached = middle;
        else
            beyond = middle;
    }
    return m_reached == 0 ? TreeCount() : m_waypoints.at(m_reached - 1).passed;
}

TreeArrival::TreeArrival(const QVector<QByteArray>& targets)
    : m_targets(targets)
    , m_namelessBefore(bytesOfNameless())
{
    // No time is compared without need: the target's may come from another system's clock.
    if (!std::all_of(targets.cbegin(), targets.cend(), isEmpty))
        m_since = moment();
}

bool TreeArrival::has(const QByteArray& path) const
{
    return std::any_of(m_targets.cbegin(), m_targets.cend(), [&](const QByteArray& target) {
        struct stat status { };
        return lstat(QByteArray(target + '/' + path).constData(), &status) == 0 && S_ISREG(status.st_mode)
            && !isBefore(status.st_ctim, m_since);
    });
}

qint64 TreeArrival::unnamedBytes() const
{
    return std::max<qint64>(bytesOfNameless() - m_namelessBefore, 0);
}

// They are files of this process, and open.
qint64 TreeArrival::bytesOfNameless() const
{
    constexpr int mostHandles = 512;
    qint64 bytes = 0;
    for (int handle = 0; handle < mostHandles; ++handle) {
        struct stat status { };
        if (fstat(handle, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 0)
            bytes += status.st_size;
    }
    return bytes;
}
