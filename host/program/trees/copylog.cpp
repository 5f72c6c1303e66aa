// SPDX-License-Identifier: MIT
#include "trees/copylog.h"

#include <quenzobase.h>

#include <QStringList>

namespace {

const QString opening = QStringLiteral("Copy Fail:\r\nSrc:");
const QString middle = QStringLiteral("\r\nDest:");
const QString ending = QStringLiteral("\r\n\n");

// Names may hold line ends and whatever else is in an entry. But behind the two folders both paths are the
// same, so that the length of an entry tells where the second one begins.
QString pathIn(const QString& entry, const QString& source, const QString& target)
{
    const int length = entry.size() - source.size() - middle.size() - target.size();
    const QString path = entry.mid(source.size(), length / 2);
    return length > 0 && length % 2 == 0 && entry == source + path + middle + target + path ? path
                                                                                            : QString();
}

} // namespace

CopyLog::CopyLog()
    : m_file(QuenzoBase::getRunPath() + QStringLiteral("/../log/quenzotool.log"))
    , m_before(m_file.size())
{
}

QString CopyLog::failedFile(const QString& source, const QString& target)
{
    if (!m_file.open(QIODevice::ReadOnly) || !m_file.seek(m_before))
        return {};
    const QString text = QString::fromUtf8(m_file.readAll());
    m_file.close();
    return failedFile(text, source, target);
}

QString CopyLog::failedFile(const QString& log, const QString& source, const QString& target)
{
    constexpr int longest = 16 * 1024; // two paths
    const QString from = source + QLatin1Char('/');
    const QString to = target + QLatin1Char('/');
    QStringList found;
    for (int begin = log.indexOf(opening); begin >= 0; begin = log.indexOf(opening, begin + 1)) {
        const int start = begin + opening.size();
        int end = log.indexOf(ending, start);
        for (; end >= 0 && end - start <= longest; end = log.indexOf(ending, end + 1)) {
            const QString path = pathIn(log.mid(start, end - start), from, to);
            if (!path.isEmpty() && !QString(from + path).startsWith(to))
                found.append(path);
        }
    }
    return found.size() == 1 ? found.first() : QString();
}
