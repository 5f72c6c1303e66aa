// SPDX-License-Identifier: MIT
#include "scripts/workcount.h"

#include "console/progress.h"

#include <cstddef>
#include <unistd.h>

namespace {

// What docs/scripts.md describes.
struct Numbers {
    quint64 done;
    quint64 total;
    quint64 stop;
};
constexpr size_t counted = offsetof(Numbers, stop);

bool read(int file, Numbers& numbers)
{
    return file >= 0 && pread(file, &numbers, counted, 0) == ssize_t(counted) && numbers.total > 0;
}

} // namespace

void WorkCount::begin()
{
    if (m_file.number() >= 0 && ftruncate(m_file.number(), 0) != 0)
        qWarning("the count of earlier work stays");
}

Progress WorkCount::progress(const QString& doing) const
{
    Numbers numbers{};
    if (!read(m_file.number(), numbers))
        return {doing};
    return {doing, Progress::Bytes, qint64(numbers.done), qint64(numbers.total)};
}

bool WorkCount::stop()
{
    Numbers numbers{};
    numbers.stop = 1;
    return read(m_file.number(), numbers)
        && pwrite(m_file.number(), &numbers.stop, sizeof numbers.stop, off_t(counted))
        == ssize_t(sizeof numbers.stop);
}
