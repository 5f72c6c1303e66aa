// SPDX-License-Identifier: MIT
#include "quenzobase.h"

#include "platform.h"

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
    void append(const QString& text)
    {
        const QByteArray bytes = text.toUtf8();
        const std::lock_guard<std::mutex> guard(m_mutex);
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        if (!isInPlace() && !open())
            return;
        QByteArray entry;
        entry.reserve(bytes.size() + 32);
        appendTime(entry, now);
        entry.append(' ').append(bytes).append('\n');
        // One write to a file in append mode: entries of several processes do not mix either.
        m_file.write(entry);
    }

private:
    // A log that somebody removed, moved away or replaced is begun anew, or gone on with.
    bool isInPlace() const { return m_file.isOpen() && identityAt(m_path) == m_identity; }

    bool open()
    {
        m_file.close();
        QDir().mkpath(QFileInfo(m_file).path());
        if (!m_file.open(QIODevice::Append | QIODevice::Unbuffered))
            return false;
        m_identity = identityOf(m_file);
        return true;
    }

    // Formatting a time costs more than writing it, and only its milliseconds change from entry to entry.
    void appendTime(QByteArray& entry, qint64 now)
    {
        if (now / 1000 != m_second) {
            m_second = now / 1000;
            m_secondText = QDateTime::fromSecsSinceEpoch(m_second).toString(Qt::ISODate).toLatin1();
        }
        const int milliseconds = static_cast<int>(now % 1000);
        entry.append(m_secondText).append('.');
        for (const int digit : {milliseconds / 100, milliseconds / 10 % 10, milliseconds % 10})
            entry.append(static_cast<char>('0' + digit));
    }

    std::mutex m_mutex;
    QFile m_file{QDir::cleanPath(runPath() + QStringLiteral("/../log/quenzotool.log"))};
    const QByteArray m_path = QFile::encodeName(m_file.fileName());
    FileIdentity m_identity;
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
    log.append(text);
}
