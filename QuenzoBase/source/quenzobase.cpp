// SPDX-License-Identifier: MIT
#include "quenzobase.h"

#include "executablepath.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <mutex>

namespace {

// What lives here is never destroyed: worker threads may still log while the process leaves main.
const QString& runPath()
{
    static const QString& path = *new QString(QFileInfo(executablePath()).path());
    return path;
}

class LogFile {
public:
    void append(const QByteArray& text)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (!isOpen() && !open())
            return;
        QByteArray entry;
        entry.reserve(text.size() + 32);
        entry.append(timeStamp()).append(' ').append(text).append('\n');
        // One write to a file in append mode: entries of several processes do not mix either.
        m_file.write(entry);
    }

private:
    // A log that somebody removed or moved away is begun anew.
    bool isOpen() const { return m_file.isOpen() && m_file.exists(); }

    bool open()
    {
        m_file.close();
        QDir().mkpath(QFileInfo(m_file).path());
        return m_file.open(QIODevice::Append | QIODevice::Unbuffered);
    }

    // Formatting a time costs more than writing it, and only its milliseconds change from entry to entry.
    QByteArray timeStamp()
    {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        if (now / 1000 != m_second) {
            m_second = now / 1000;
            m_secondText = QDateTime::fromSecsSinceEpoch(m_second).toString(Qt::ISODate).toLatin1() + '.';
        }
        return m_secondText + QByteArray::number(now % 1000 + 1000).mid(1);
    }

    std::mutex m_mutex;
    QFile m_file{runPath() + QStringLiteral("/../log/quenzotool.log")};
    qint64 m_second = -1;
    QByteArray m_secondText;
};

} // namespace

QString QuenzoBase::getRunPath()
{
    return runPath();
}

void QuenzoBase::Log(QString text)
{
    static LogFile& log = *new LogFile;
    log.append(text.toUtf8());
}
