// SPDX-License-Identifier: MIT
#include "quenzobase.h"

#include "logfolder.h"
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

// Whether a line begins like an entry: with a time as appendTime() writes it, and a blank.
bool looksLikeEntry(const char* line, int size)
{
    const QLatin1String form("0000-00-00T00:00:00.000 ");
    if (size < form.size())
        return false;
    for (int i = 0; i < form.size(); ++i) {
        const bool digit = line[i] >= '0' && line[i] <= '9';
        if (form.data()[i] == '0' ? !digit : line[i] != form.data()[i])
            return false;
    }
    return true;
}

// Texts may hold line breaks, and lines in them that would pass for entries of their own.
void appendText(QByteArray& entry, const QByteArray& text)
{
    int written = 0;
    for (int i = 1; i < text.size(); ++i) {
        const bool beginsLine = text.at(i - 1) == '\n' || text.at(i - 1) == '\r';
        if (!beginsLine || !looksLikeEntry(text.constData() + i, text.size() - i))
            continue;
        entry.append(text.constData() + written, i - written).append(' ');
        written = i;
    }
    entry.append(text.constData() + written, text.size() - written);
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
        entry.append(' ');
        appendText(entry, bytes);
        entry.append('\n');
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
    QFile m_file{logFolder(runPath()) + QStringLiteral("/quenzotool.log")};
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
