// SPDX-License-Identifier: MIT
#include "scripts/workcount.h"

#include "console/progress.h"

#include <QByteArray>

#include <cstddef>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr const char* variable = "QUENZO_PROGRESS";

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

WorkCount::WorkCount()
    : m_file(memfd_create("quenzo-progress", MFD_CLOEXEC))
{
    // Without a file there is no count, and the work is done all the same.
    if (m_file >= 0)
        qputenv(variable, QByteArray::number(m_file));
    else
        qunsetenv(variable);
}

WorkCount::~WorkCount()
{
    qunsetenv(variable);
    if (m_file >= 0)
        close(m_file);
}

Progress WorkCount::progress(const QString& doing) const
{
    Numbers numbers{};
    if (!read(m_file, numbers))
        return {doing};
    return {doing, Progress::Bytes, qint64(numbers.done), qint64(numbers.total)};
}

bool WorkCount::stop()
{
    Numbers numbers{};
    numbers.stop = 1;
    return read(m_file, numbers)
        && pwrite(m_file, &numbers.stop, sizeof numbers.stop, off_t(counted)) == ssize_t(sizeof numbers.stop);
}
