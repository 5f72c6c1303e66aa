// SPDX-License-Identifier: MIT
#include "scripts/workcount.h"

#include "console/progress.h"

#include <QByteArray>

#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr const char* variable = "QUENZO_PROGRESS";

// What docs/scripts.md describes.
struct Numbers {
    quint64 done;
    quint64 total;
};

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
    const bool counted = m_file >= 0 && pread(m_file, &numbers, sizeof numbers, 0) == ssize_t(sizeof numbers)
        && numbers.total > 0;
    if (!counted)
        return {doing};
    return {doing, Progress::Bytes, qint64(numbers.done), qint64(numbers.total)};
}
