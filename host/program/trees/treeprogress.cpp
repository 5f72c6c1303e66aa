// SPDX-License-Identifier: MIT
#include "trees/treeprogress.h"

#include <algorithm>
#include <utility>

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
    constexpr int most = 2048;
    TreeCount share;
    scope.walk([&](const WalkedEntry& entry) {
        m_all.add(entry);
        share.add(entry);
        if (share.files < m_stride)
            return TreeScope::GoOn;
        m_samples.append({entry.path, std::exchange(share, {})});
        if (m_samples.size() == most)
            thinOut();
        return TreeScope::GoOn;
    });
}

void TreeProgress::thinOut()
{
    const int half = m_samples.size() / 2;
    for (int i = 0; i < half; ++i) {
        const TreeCount first = m_samples.at(2 * i).share;
        m_samples[i] = m_samples.at(2 * i + 1);
        m_samples[i].share += first;
    }
    m_samples.resize(half);
    m_stride *= 2;
}

TreeCount TreeProgress::done(const std::function<bool(const QByteArray&)>& isDone)
{
    const auto isOver = [&](const Sample& sample) {
        const bool over = isDone(sample.path);
        if (over)
            m_done += sample.share;
        return over;
    };
    m_samples.erase(std::remove_if(m_samples.begin(), m_samples.end(), isOver), m_samples.end());
    return m_done;
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
