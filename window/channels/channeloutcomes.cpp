// SPDX-License-Identifier: MIT
#include "window/channels/channeloutcomes.h"

#include "build/buildreport.h"
#include "window/background.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

const QString reportName = QStringLiteral("/report.json");

QStringList reportsIn(const QString& output)
{
    QStringList reports{output + reportName};
    const QString slices = output + QStringLiteral("/slices");
    for (const QString& slice : QDir(slices).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        reports.append(slices + QLatin1Char('/') + slice + reportName);
    return reports;
}

} // namespace

ChannelOutcomes::ChannelOutcomes(QObject* parent)
    : QObject(parent)
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(200);
    connect(&m_soon, &QTimer::timeout, this, &ChannelOutcomes::read);
    const auto begin = QOverload<>::of(&QTimer::start);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_soon, begin);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_soon, begin);
}

void ChannelOutcomes::setOutput(const QString& output)
{
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    if (!watched.isEmpty())
        m_watcher.removePaths(watched);
    m_output = output;
    m_all.clear();
    Q_EMIT changed();
    if (!output.isEmpty())
        read();
}

const ChannelOutcomes::Last* ChannelOutcomes::of(const QString& folder) const
{
    const auto found = m_all.constFind(folder);
    return found == m_all.cend() ? nullptr : &*found;
}

void ChannelOutcomes::read()
{
    m_isStale = m_isReading;
    if (m_isStale || m_output.isEmpty())
        return;
    m_isReading = true;
    inBackground(
        this, [output = m_output] { return find(output); },
        [this, output = m_output](const Found& found) { take(output, found); });
}

// A report gets its name when it is whole, which its folder tells; the folder itself may be yet to come.
ChannelOutcomes::Found ChannelOutcomes::find(const QString& output)
{
    const QStringList reports = reportsIn(output);
    Found found;
    QStringList wanted{QFileInfo(output).path(), output, output + QStringLiteral("/slices")};
    for (const QString& report : reports)
        wanted.append(QFileInfo(report).path());
    wanted.removeDuplicates();
    for (const QString& folder : qAsConst(wanted)) {
        if (QFileInfo(folder).isDir())
            found.folders.append(folder);
    }
    found.outcomes = outcomesIn(reports);
    return found;
}

ChannelOutcomes::All ChannelOutcomes::outcomesIn(const QStringList& reports)
{
    All outcomes;
    for (const QString& path : reports) {
        QFile file(path);
        BuildOutcome build;
        if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)
            || !BuildReport::fromJson(QJsonDocument::fromJson(file.readAll()).object(), build))
            continue;
        for (const ChannelOutcome& channel : qAsConst(build.channels)) {
            Last& last = outcomes[channel.folder];
            if (!last.end.isValid() || last.end < build.end)
                last = {channel.outcome, channel.message, build.end};
        }
    }
    return outcomes;
}

void ChannelOutcomes::take(const QString& output, const Found& found)
{
    m_isReading = false;
    if (output == m_output) {
        m_all = found.outcomes;
        Q_EMIT changed();
        watch(found.folders);
    }
    if (output != m_output || m_isStale)
        read();
}

void ChannelOutcomes::watch(const QStringList& folders)
{
    const QStringList known = m_watcher.directories();
    for (const QString& folder : folders) {
        if (!known.contains(folder))
            m_watcher.addPath(folder);
    }
}
