// SPDX-License-Identifier: MIT
#include "window/log/messagetap.h"

#include "window/log/logmodel.h"

#include <QDateTime>

#include <mutex>
#include <utility>

namespace {

// Workers may still have something to say while the program leaves main: none of this is ever destroyed.
std::mutex& mutex = *new std::mutex;
QVector<LogEntry>& kept = *new QVector<LogEntry>;
QtMessageHandler handlerBefore = nullptr;
int living = 0;

LogEntry::Kind kindOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return LogEntry::Detail;
    case QtInfoMsg:
        return LogEntry::Information;
    case QtWarningMsg:
        return LogEntry::Warning;
    case QtCriticalMsg:
    case QtFatalMsg:
        break;
    }
    return LogEntry::Error;
}

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    LogEntry entry{QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")),
                   kindOf(type), text};
    QtMessageHandler before = nullptr;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        before = handlerBefore;
        if (living > 0 && kept.size() < LogModel::capacity)
            kept.append(std::move(entry));
    }
    if (before != nullptr)
        before(type, context, text);
}

} // namespace

MessageTap::MessageTap()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (living++ == 0)
        handlerBefore = qInstallMessageHandler(keep);
}

MessageTap::~MessageTap()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (--living > 0)
        return;
    qInstallMessageHandler(handlerBefore);
    kept.clear();
}

QVector<LogEntry> MessageTap::take()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return std::exchange(kept, {});
}
