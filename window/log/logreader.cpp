// SPDX-License-Identifier: MIT
#include "window/log/logreader.h"

#include "window/log/messagetap.h"

#include <QFile>

namespace {

constexpr int betweenLooks = 250; // milliseconds
constexpr qint64 mostAtOnce = 1 << 20; // of what was written before, only the end is shown

// Whether a line begins an entry: "2026-03-01T09:30:00.125 ".
bool beginsEntry(const QString& line)
{
    const QLatin1String form("0000-00-00T00:00:00.000 ");
    if (line.size() < form.size())
        return false;
    for (int i = 0; i < form.size(); ++i) {
        const QChar character = line.at(i);
        const bool digit = character >= QLatin1Char('0') && character <= QLatin1Char('9');
        if (form.at(i) == QLatin1Char('0') ? !digit : character != form.at(i))
            return false;
    }
    return true;
}

QVector<LogEntry> entriesOf(const QString& lines)
{
    QVector<LogEntry> entries;
    for (const QString& line : lines.split(QLatin1Char('\n'))) {
        if (beginsEntry(line))
            entries.append(
                {line.left(10) + QLatin1Char(' ') + line.mid(11, 12), LogEntry::Tool, line.mid(24)});
        else if (entries.isEmpty())
            entries.append({QString(), LogEntry::Tool, line});
        else
            entries.last().text += QLatin1Char('\n') + line;
    }
    return entries;
}

} // namespace

LogReader::LogReader(const QString& file)
    : m_file(file)
{
    qRegisterMetaType<QVector<LogEntry>>();
}

void LogReader::start()
{
    timerEvent(nullptr);
    startTimer(betweenLooks);
}

void LogReader::timerEvent(QTimerEvent* /*event*/)
{
    const QVector<LogEntry> entries = readFile() + MessageTap::take();
    if (!entries.isEmpty())
        Q_EMIT entriesRead(entries);
}

QVector<LogEntry> LogReader::readFile()
{
    QFile file(m_file);
    const FileIdentity identity = identityOf(m_file);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (!(identity == m_identity) || file.size() < m_position)
        m_position = 0;
    m_identity = identity;
    const bool isCut = file.size() - m_position > mostAtOnce;
    if (isCut)
        m_position = file.size() - mostAtOnce;
    if (!file.seek(m_position))
        return {};
    QByteArray lines = file.read(mostAtOnce);
    const int end = lines.lastIndexOf('\n');
    if (end < 0)
        return {};
    m_position += end + 1;
    lines.truncate(end);
    if (isCut)
        lines.remove(0, lines.indexOf('\n') + 1); // half a line
    return entriesOf(QString::fromUtf8(lines));
}
