// SPDX-License-Identifier: MIT
#include "window/channels/channeloutcomes.h"

#include "build/buildreport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QThread>

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

ChannelOutcomes::~ChannelOutcomes()
{
    if (m_thread)
        m_thread->wait();
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
    m_isStale = m_thread != nullptr;
    if (m_isStale || m_output.isEmpty())
        return;
    const auto found = std::make_shared<All>();
    m_thread.reset(QThread::create([output = m_output, found] { *found = all(output); }));
    connect(m_thread.get(), &QThread::finished, this, [this, output = m_output, found] {
        m_thread->wait();
        m_thread.release()->deleteLater();
        take(output, *found);
    });
    m_thread->start();
}

ChannelOutcomes::All ChannelOutcomes::all(const QString& output)
{
    All outcomes;
    for (const QString& path : reportsIn(output)) {
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

void ChannelOutcomes::take(const QString& output, const All& read)
{
    if (output == m_output) {
        m_all = read;
        Q_EMIT changed();
        watch();
    }
    if (output != m_output || m_isStale)
        this->read();
}

// A report gets its name when it is whole, which its folder tells; the folder itself may be yet to come.
void ChannelOutcomes::watch()
{
    const QStringList known = m_watcher.directories();
    QStringList wanted{QFileInfo(m_output).path(), m_output, m_output + QStringLiteral("/slices")};
    for (const QString& report : reportsIn(m_output))
        wanted.append(QFileInfo(report).path());
    for (const QString& folder : qAsConst(wanted)) {
        if (!known.contains(folder) && QFileInfo(folder).isDir())
            m_watcher.addPath(folder);
    }
}
