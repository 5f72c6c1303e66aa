// SPDX-License-Identifier: MIT
#include "messagelog.h"

#include <QLoggingCategory>

#include <mutex>
#include <utility>

namespace {

// A mutex that the thread sanitizer sees, other than Qt's.
std::mutex mutex;
QVector<LoggedMessage>* messages = nullptr;
QtMessageHandler handlerBefore = nullptr;
int living = 0;

void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    {
        const std::lock_guard<std::mutex> guard(mutex);
        if (messages != nullptr)
            messages->append({type, text, QString::fromUtf8(context.file),
                              QString::fromUtf8(context.function), context.line,
                              QString::fromUtf8(context.category)});
    }
    if (type != QtDebugMsg && type != QtInfoMsg && handlerBefore != nullptr)
        handlerBefore(type, context, text);
}

bool isOfACategory(const LoggedMessage& message)
{
    return message.category.startsWith(QLatin1String("quenzo."));
}

template <typename IsMeant> QStringList textsOf(const QVector<LoggedMessage>& taken, IsMeant isMeant)
{
    QStringList texts;
    for (const LoggedMessage& message : taken) {
        if (isMeant(message))
            texts.append(message.text);
    }
    return texts;
}

} // namespace

MessageLog::MessageLog()
{
    const std::lock_guard<std::mutex> guard(mutex);
    // The next test may make its log before it drops that of a test whose clean-up failed.
    if (living++ > 0)
        return;
    messages = new QVector<LoggedMessage>;
    handlerBefore = qInstallMessageHandler(record);
}

MessageLog::~MessageLog()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (--living > 0)
        return;
    qInstallMessageHandler(handlerBefore);
    delete std::exchange(messages, nullptr);
}

QVector<LoggedMessage> MessageLog::take()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return std::exchange(*messages, {});
}

QStringList MessageLog::takeDebugTexts()
{
    return textsOf(take(), [](const LoggedMessage& message) {
        return message.type == QtDebugMsg && !isOfACategory(message);
    });
}

QStringList MessageLog::takeDetails()
{
    return textsOf(take(), [](const LoggedMessage& message) {
        return message.type == QtDebugMsg && isOfACategory(message);
    });
}

QStringList MessageLog::takeInfoTexts()
{
    return textsOf(take(), [](const LoggedMessage& message) { return message.type == QtInfoMsg; });
}

QStringList MessageLog::takeWarnings()
{
    return textsOf(take(), [](const LoggedMessage& message) {
        return message.type != QtDebugMsg && message.type != QtInfoMsg;
    });
}

CategoryOn::CategoryOn(const char* name)
{
    QLoggingCategory::setFilterRules(QLatin1String(name) + QStringLiteral("=true"));
}

CategoryOn::~CategoryOn()
{
    QLoggingCategory::setFilterRules({});
}
