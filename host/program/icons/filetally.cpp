// SPDX-License-Identifier: MIT
#include "icons/filetally.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// Invalid for what is no file, and for an empty one, which the library leaves where it could write no more.
QDateTime changeOf(const QString& path)
{
    const QFileInfo file(path);
    return file.isFile() && file.size() > 0 ? file.lastModified() : QDateTime();
}

} // namespace

FileTally::FileTally(const QStringList& paths)
    : m_start(QDateTime::currentDateTime())
{
    for (const QString& path : paths)
        m_expected.append({path, changeOf(path)});
    m_unseen = m_expected;
}

int FileTally::seen()
{
    const auto written = [this](const Expected& file) { return isWritten(file); };
    m_unseen.erase(std::remove_if(m_unseen.begin(), m_unseen.end(), written), m_unseen.end());
    return m_expected.size() - m_unseen.size();
}

QStringList FileTally::missing() const
{
    QStringList paths;
    for (const Expected& file : m_expected) {
        if (!isWritten(file))
            paths.append(file.path);
    }
    return paths;
}

bool FileTally::isWritten(const Expected& file) const
{
    const QDateTime change = changeOf(file.path);
    if (!change.isValid() || change != file.changedBefore)
        return change.isValid();
    // Some file systems count whole seconds: a file that is written twice within one keeps its time.
    return change.time().msec() == 0 && change.addSecs(1) > m_start;
}
