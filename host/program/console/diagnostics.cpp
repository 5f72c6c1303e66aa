// SPDX-License-Identifier: MIT
#include "console/diagnostics.h"

#include "console/console.h"

#include <QLoggingCategory>
#include <QMutex>

#include <utility>

namespace {

QBasicMutex mutex;
// Workers may still have something to say while the program leaves main.
QStringList& texts = *new QStringList;
QStringList& stepTexts = *new QStringList;
std::function<void(const QString&)>& stepFollower = *new std::function<void(const QString&)>;
QByteArray& divertedCategory = *new QByteArray;
std::function<void(QtMsgType, const QString&)>& divertedTo =
    *new std::function<void(QtMsgType, const QString&)>;
QtMessageHandler handlerBefore = nullptr;
QLoggingCategory::CategoryFilter filterBefore = nullptr;

bool isOfTheLibrary(const char* category)
{
    return category != nullptr && qstrncmp(category, "quenzo.", 7) == 0;
}

bool isFollowed()
{
    const QMutexLocker locker(&mutex);
    return stepFollower != nullptr;
}

// Whether somebody has taken a message for himself.
bool isDiverted(QtMsgType type, const char* category, const QString& text)
{
    std::function<void(QtMsgType, const QString&)> taker;
    {
        const QMutexLocker locker(&mutex);
        if (divertedTo && divertedCategory == category)
            taker = divertedTo;
    }
    if (taker)
        taker(type, text);
    return bool(taker);
}

// Rules in the environment or in files come before this, and cannot take away what outcomes are told by.
void switchOn(QLoggingCategory* category)
{
    filterBefore(category);
    if (!isOfTheLibrary(category->categoryName()))
        return;
    for (const QtMsgType type : {QtInfoMsg, QtWarningMsg, QtCriticalMsg})
        category->setEnabled(type, true);
    category->setEnabled(QtDebugMsg, isFollowed()); // details that nobody reads are not even worded
}

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // A build server has no session folder, and nothing here needs one.
    if (text.startsWith(QLatin1String("QStandardPaths:")))
        return;
    const bool isDescribed = type == QtDebugMsg && qstrncmp(context.file, "QuenzoTool/source/", 18) == 0;
    if (isDiverted(type, context.category, text))
        return;
    if (isOfTheLibrary(context.category)) {
        std::function<void(const QString&)> follower;
        {
            const QMutexLocker locker(&mutex);
            if (type != QtDebugMsg)
                (type == QtInfoMsg ? stepTexts : texts).append(text);
            if (type == QtInfoMsg || type == QtDebugMsg)
                follower = stepFollower;
        }
        if (follower)
            follower(text);
    } else if (!isDescribed) {
        handlerBefore(type, context, Console::shown(text));
    }
}

} // namespace

void Diagnostics::install()
{
    handlerBefore = qInstallMessageHandler(keep);
    // Known before ours is in force, which it is at once for the categories there are.
    filterBefore = QLoggingCategory::installFilter(nullptr);
    QLoggingCategory::installFilter(switchOn);
}

QStringList Diagnostics::takeAll()
{
    const QMutexLocker locker(&mutex);
    return std::exchange(texts, {});
}

void Diagnostics::followSteps(const std::function<void(const QString&)>& follower)
{
    {
        const QMutexLocker locker(&mutex);
        stepFollower = follower;
    }
    QLoggingCategory::installFilter(switchOn); // asks again for every category
}

void Diagnostics::divert(const char* category, const std::function<void(QtMsgType, const QString&)>& taker)
{
    const QMutexLocker locker(&mutex);
    divertedCategory = category;
    divertedTo = taker;
}

QStringList Diagnostics::steps()
{
    const QMutexLocker locker(&mutex);
    return stepTexts;
}

QString Diagnostics::take()
{
    return takeAll().join(QStringLiteral("; "));
}
