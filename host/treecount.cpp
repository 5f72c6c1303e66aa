// SPDX-License-Identifier: MIT
#include "treecount.h"

namespace {

constexpr QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

void add(TreeCount& count, const QFileInfo& info)
{
    if (info.isDir())
        return;
    ++count.files;
    count.bytes += info.size();
}

} // namespace

TreeCount TreeCount::of(const QString& path, const QString& apart)
{
    TreeCount count;
    const QString inner = apart + QLatin1Char('/');
    QDirIterator walk(path, everything, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString entry = walk.next();
        if (apart.isEmpty() || !entry.startsWith(inner))
            add(count, walk.fileInfo());
    }
    return count;
}

TreeCount& TreeCount::operator-=(const TreeCount& other)
{
    files = qMax<qint64>(files - other.files, 0);
    bytes = qMax<qint64>(bytes - other.bytes, 0);
    return *this;
}

TreeWatch::TreeWatch(const QString& path)
    : m_path(path)
{
    restart();
}

TreeCount TreeWatch::seen()
{
    constexpr int shareMs = 10;
    QElapsedTimer timer;
    timer.start();
    while (m_walk->hasNext()) {
        m_walk->next();
        add(m_counting, m_walk->fileInfo());
        if (timer.elapsed() >= shareMs)
            return m_seen;
    }
    m_seen = m_counting;
    restart();
    return m_seen;
}

void TreeWatch::restart()
{
    m_counting = {};
    m_walk = std::make_unique<QDirIterator>(m_path, everything, QDirIterator::Subdirectories);
}
