// SPDX-License-Identifier: MIT
#include "filetally.h"

#include <QFileInfo>

#include <algorithm>

namespace {

QDateTime changeOf(const QString& path)
{
    const QFileInfo file(path);
    return file.isFile() ? file.lastModified() : QDateTime();
}

} // namespace

FileTally::FileTally(const QStringList& paths)
{
    for (const QString& path : paths)
        m_expected.append({path, changeOf(path)});
    m_unseen = m_expected;
}

int FileTally::seen()
{
    m_unseen.erase(std::remove_if(m_unseen.begin(), m_unseen.end(), isWritten), m_unseen.end());
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

bool FileTally::isWritten(const Expected& file)
{
    const QDateTime change = changeOf(file.path);
    return change.isValid() && change != file.changedBefore;
}
