// SPDX-License-Identifier: MIT
#include "console/diagnostics.h"

#include "console/console.h"

#include <QMutex>

#include <utility>

namespace {

QBasicMutex mutex;
// Workers may still have something to say while the program leaves main.
QStringList& texts = *new QStringList;
QtMessageHandler handlerBefore = nullptr;

void keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // A build server has no session folder, and nothing here needs one.
    if (text.startsWith(QLatin1String("QStandardPaths:")))
        return;
    if (type != QtDebugMsg
        || !QString::fromUtf8(context.file).startsWith(QLatin1String("QuenzoTool/source/"))) {
        handlerBefore(type, context, Console::shown(text));
        return;
    }
    const QMutexLocker locker(&mutex);
    texts.append(text);
}

} // namespace

void Diagnostics::install()
{
    handlerBefore = qInstallMessageHandler(keep);
}

QStringList Diagnostics::takeAll()
{
    const QMutexLocker locker(&mutex);
    return std::exchange(texts, {});
}

QString Diagnostics::take()
{
    return takeAll().join(QStringLiteral("; "));
}
